#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Dates.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

using Dates = CleanableDataFilter::Dates;

TEST(Dates, everyFormMeansOnePointInTime) {
    struct Row {
        std::string text;
        double secondsSince1970;
    };
    const std::vector<Row> rows = {
        {"1970-01-01", 0},
        {"2001-01-01", 978307200},
        {"2024-02-29", 1709164800},
        {"2000-02-29", 951782400},
        {"1601-01-01", -11644473600},
        {"9999-12-31", 253402214400},
        {"2024-02-29T12:30:01Z", 1709209801},
        {"2024-02-29T12:30:01.25Z", 1709209801.25},
        {"2024-02-29T23:59:59.999Z", 1709251199.999},
        {"0", 978307200},
        {"-1", 978307199},
        {"+1.5", 978307201.5},
        {"7e8", 1678307200},
        {"@0", 0},
        {"@-1.5", -1.5},
        {"@1709164800", 1709164800},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_DOUBLE_EQ(secondsSince1970(parseDate(row.text)), row.secondsSince1970);
    }
}

TEST(Dates, aNumberIsKeptToItsLastBit) {
    EXPECT_EQ(referenceSeconds(parseDate("730857600.123456")), 730857600.123456);
}

TEST(Dates, anythingElseIsRefused) {
    for (const std::string text : {"",
                                   " ",
                                   "2024-02",
                                   "2023-02-29",
                                   "2100-02-29",
                                   "2024-04-31",
                                   "2024-00-10",
                                   "2024-01-00",
                                   "2024-01-01T",
                                   "2024-01-01TZ",
                                   "2024-01-01T10:00Z",
                                   "2024-01-01T10:00:00",
                                   "2024-01-01T10:00:00.Z",
                                   "2024-01-01T24:00:00Z",
                                   "2024-01-01T10:00:60Z",
                                   "1.",
                                   ".1",
                                   "1e",
                                   "1e+",
                                   "0x1",
                                   "inf",
                                   "nan",
                                   "1 ",
                                   "@",
                                   "@2024-01-01",
                                   "+-1",
                                   "tomorrow"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(parseDate(text), UsageError);
    }
}

TEST(Dates, aDateThatMicrosecondsIn64BitsCannotHoldIsRefused) {
    for (const std::string text : {"@9223372036854", "@-9223372036854", "9223372036854", "1e400",
                                   "-1e400", "@9211727563255"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(parseDate(text), UsageError);
    }
    for (const std::string text : {"@9211727476854", "@-9223371950454"}) {
        SCOPED_TRACE(text);
        EXPECT_NO_THROW(parseDate(text));
    }
}

TEST(Dates, aBareNumberThatIsProbablySecondsSince1970IsRefusedWithBothReadings) {
    try {
        parseDate("1709164800");
        FAIL() << "the number was taken";
    } catch (const UsageError& error) {
        EXPECT_STREQ(error.what(),
                     "'1709164800' can be read as seconds since 1970, which is "
                     "2024-02-29T00:00:00Z, or since 2001, which is 2055-03-01T00:00:00Z; write "
                     "@1709164800 for the first, or the date itself");
    }
    for (const std::string text : {"+1709164800", "-1709164800.5", "0000000001", "1000000000e1",
                                   "253402300800", "-99999999999"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(parseDate(text), UsageError);
    }
    for (const std::string text : {"999999999", "999999999.1234567890", "1.7091648e9"}) {
        SCOPED_TRACE(text);
        EXPECT_NO_THROW(parseDate(text));
    }
}

TEST(Dates, eitherEndOfARangeMayBeOpen) {
    const auto first = parseDate("2024-01-01");
    const auto last = parseDate("@1709164800.5");
    const auto rule = Dates::Rule::outsideRange;
    EXPECT_EQ(parseDateRange(rule, "2024-01-01..@1709164800.5"), (Dates{rule, first, last}));
    EXPECT_EQ(parseDateRange(rule, "2024-01-01.."), (Dates{rule, first, std::nullopt}));
    EXPECT_EQ(parseDateRange(rule, "..@1709164800.5"), (Dates{rule, std::nullopt, last}));
    EXPECT_EQ(parseDateRange(rule, ".."), (Dates{rule, std::nullopt, std::nullopt}));
    EXPECT_EQ(parseDateRange(rule, "5..5").startDate, parseDateRange(rule, "5..5").endDate);
}

TEST(Dates, aRangeNeedsItsDotsAndItsOrder) {
    for (const std::string text : {"", "2024-01-01", "2024-01-01...", "2..1", "1..2..3", "1.5.2"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(parseDateRange(Dates::Rule::insideRange, text), UsageError);
    }
}

}  // namespace
}  // namespace browsersweep::cli
