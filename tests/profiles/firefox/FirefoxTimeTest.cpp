#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/profiles/firefox/internal/FirefoxTime.h"

namespace browsersweep {
namespace {

TEST(FirefoxTime, countsMicrosecondsSince1970CutOffTowardZero) {
    struct Row {
        Date date;
        std::string expected;
    };
    // clang-format off
    const std::vector<Row> rows{
        {dateFromReferenceSeconds(0.0),       "978307200000000"},
        {dateFrom1970Seconds(0.0),            "0"},
        {dateFrom1970Seconds(1.5),            "1500000"},
        {dateFrom1970Seconds(-1.5),           "-1500000"},
        {dateFrom1970Seconds(1719748800.25),  "1719748800250000"},
        {dateFrom1970Seconds(-11644473600.0), "-11644473600000000"},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(firefoxTimeText(row.date), row.expected);
    }
}

TEST(FirefoxTime, dateThatDoesNotFitEndsTheProcess) {
    EXPECT_DEATH(firefoxTimeText(dateFromReferenceSeconds(1e300)), "does not fit");
    EXPECT_DEATH(firefoxTimeText(dateFromReferenceSeconds(std::numeric_limits<double>::infinity())),
                 "does not fit");
    EXPECT_DEATH(
        firefoxTimeText(dateFromReferenceSeconds(std::numeric_limits<double>::quiet_NaN())),
        "does not fit");
}

}  // namespace
}  // namespace browsersweep
