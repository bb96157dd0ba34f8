#include <limits>

#include <gtest/gtest.h>

#include "cli/SiteReport.h"

namespace browsersweep::cli {
namespace {

TEST(SiteReport, writesADateAsDocumentsHaveIt) {
    EXPECT_EQ(momentText(dateFrom1970Seconds(1709209800.75)), "2024-02-29T12:30:00Z");
    EXPECT_EQ(momentText(dateFrom1970Seconds(-0.5)), "1969-12-31T23:59:59Z");
    EXPECT_EQ(dayText(dateFrom1970Seconds(1709209800)), "2024-02-29");
}

TEST(SiteReport, saysNothingOfADateThatNoCalendarHas) {
    for (const double seconds : {1e300, -1e300, std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::quiet_NaN(), 253402300800.0}) {
        EXPECT_EQ(momentText(dateFrom1970Seconds(seconds)), std::nullopt) << seconds;
        EXPECT_EQ(dayText(dateFrom1970Seconds(seconds)), "") << seconds;
    }
}

}  // namespace
}  // namespace browsersweep::cli
