#include <gtest/gtest.h>

#include "browsersweep/platform/internal/Calendar.h"
#include "browsersweep/profiles/chromium/internal/ChromiumTime.h"

namespace browsersweep {
namespace {

TEST(ChromiumTime, microsecondsSinceTheEpochCutOffTowardZero) {
    const Date epoch = dateFrom1970Seconds(-11644473600);  // 1601 in UTC
    EXPECT_EQ(chromiumTimeText(dateFrom1970Seconds(0), epoch), "11644473600000000");
    EXPECT_EQ(chromiumTimeText(dateFromReferenceSeconds(0), epoch), "12622780800000000");
    EXPECT_EQ(chromiumTimeText(dateFrom1970Seconds(0.75), epoch), "11644473600750000");
    EXPECT_EQ(chromiumTimeText(epoch, epoch), "0");
    EXPECT_EQ(chromiumTimeText(dateFrom1970Seconds(-11644473601.5), epoch), "-1500000");
}

TEST(ChromiumTime, theEpochIsMidnightOf1601InTheDevicesZone) {
    EXPECT_EQ(chromiumTimeText(localMidnightOf1601()), "0");
    const Date date = dateFromReferenceSeconds(700000000);
    EXPECT_EQ(chromiumTimeText(date), chromiumTimeText(date, localMidnightOf1601()));
}

}  // namespace
}  // namespace browsersweep
