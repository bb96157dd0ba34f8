#include <cstdlib>
#include <ctime>
#include <iostream>
#include <string>

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

/** Tells the time of the same date before and after the zone of the process has changed. */
void keepsItsEpoch() {
    const auto in = [](const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
        return chromiumTimeText(dateFromReferenceSeconds(700000000));
    };
    const std::string first = in("Asia/Tokyo");
    const std::string second = in("America/New_York");
    std::cerr << (first == second ? "kept " : "asked anew ") << first << "\n";
    std::exit(0);
}

TEST(ChromiumTimeDeathTest, theEpochIsFoundOnceInAProcess) {
    // In a process of its own, in which no time has been asked for: 1601 in Tokyo's mean time,
    // which is 9:18:59 ahead, is earlier than in UTC.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(keepsItsEpoch(), testing::ExitedWithCode(0), "kept 13322814339000000");
}

}  // namespace
}  // namespace browsersweep
