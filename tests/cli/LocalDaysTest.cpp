#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "cli/Dates.h"
#include "cli/LocalDays.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

using Dates = CleanableDataFilter::Dates;

/** Runs in a time zone that is written out, so that no data of the system is needed. */
class LocalDaysTest : public testing::Test {
protected:
    void SetUp() override {
        const char* const found = std::getenv("TZ");
        before_ = found == nullptr ? std::nullopt : std::optional<std::string>(found);
        // Central Europe: summer time from the last Sunday of March to that of October.
        setZone("CET-1CEST,M3.5.0,M10.5.0/3");
    }
    void TearDown() override {
        if (before_) {
            setZone(before_->c_str());
        } else {
            ::unsetenv("TZ");
            ::tzset();
        }
    }

    static void setZone(const char* zone) {
        ::setenv("TZ", zone, 1);
        ::tzset();
    }

    static Dates from(const std::string& start, const std::string& end) {
        const auto bound = [](const std::string& text) {
            return text.empty() ? std::nullopt : std::optional(parseDate(text));
        };
        return {Dates::Rule::insideRange, bound(start), bound(end)};
    }

    static void expectRange(const std::string& text, const Dates& expected) {
        SCOPED_TRACE(text);
        const Dates found = parseDays(text, parseDate("2024-03-01T00:30:00Z"));
        ASSERT_EQ(found.startDate.has_value(), expected.startDate.has_value());
        ASSERT_EQ(found.endDate.has_value(), expected.endDate.has_value());
        if (found.startDate) {
            EXPECT_DOUBLE_EQ(referenceSeconds(*found.startDate),
                             referenceSeconds(*expected.startDate));
        }
        if (found.endDate) {
            EXPECT_DOUBLE_EQ(referenceSeconds(*found.endDate), referenceSeconds(*expected.endDate));
        }
    }

private:
    std::optional<std::string> before_;
};

TEST_F(LocalDaysTest, aDayIsWholeAndLocal) {
    expectRange("2024-01-15", from("2024-01-14T23:00:00Z", "2024-01-15T22:59:59.999999Z"));
    expectRange("2024-03-31", from("2024-03-30T23:00:00Z", "2024-03-31T21:59:59.999999Z"));
    expectRange("2024-02", from("2024-01-31T23:00:00Z", "2024-02-29T22:59:59.999999Z"));
    expectRange("2024-12", from("2024-11-30T23:00:00Z", "2024-12-31T22:59:59.999999Z"));
}

TEST_F(LocalDaysTest, todayIsThatOfTheZone) {
    expectRange("today", from("2024-02-29T23:00:00Z", "2024-03-01T22:59:59.999999Z"));
    expectRange("yesterday", from("2024-02-28T23:00:00Z", "2024-02-29T22:59:59.999999Z"));
}

TEST_F(LocalDaysTest, theLastDayBelongsToARange) {
    expectRange("2024-01-01..2024-01-31",
                from("2023-12-31T23:00:00Z", "2024-01-31T22:59:59.999999Z"));
    expectRange("2024-01-01..", from("2023-12-31T23:00:00Z", ""));
    expectRange("..2023-12", from("", "2023-12-31T22:59:59.999999Z"));
    expectRange("2024-01..2024-02", from("2023-12-31T23:00:00Z", "2024-02-29T22:59:59.999999Z"));
}

TEST_F(LocalDaysTest, aDayThatBeginsAtOneBeginsThere) {
    setZone("XXX3YYY,M10.3.0/0,M2.3.0/0");  // clocks are put forward at midnight
    expectRange("2024-10-20", from("2024-10-20T03:00:00Z", "2024-10-21T01:59:59.999999Z"));
}

TEST_F(LocalDaysTest, whatIsNoDayIsRefused) {
    for (const std::string text :
         {"", "2024", "2024-13", "2023-02-29", "2024-1-1", "tomorrow", "2024-01-01T00:00:00Z",
          "2024-01-02..2024-01-01", "-024-01-01", "today..yesterday", "0"}) {
        EXPECT_THROW(parseDays(text, parseDate("2024-03-01")), UsageError) << text;
    }
}

TEST_F(LocalDaysTest, anAgeIsCountedFromNow) {
    const Date now = parseDate("2024-03-01T00:30:00Z");
    EXPECT_EQ(parseLast("7d", now), from("2024-02-23T00:30:00Z", ""));
    EXPECT_EQ(parseLast("1h", now), from("2024-02-29T23:30:00Z", ""));
    EXPECT_THROW(parseLast("soon", now), UsageError);
    EXPECT_THROW(parseLast("300000y", now), UsageError);  // no browser's date is so long ago
    EXPECT_THROW(parseDays("..", now), UsageError);
}

TEST_F(LocalDaysTest, aDateIsShownWithItsZone) {
    EXPECT_EQ(localText(parseDate("2024-01-15T12:00:00Z")), "2024-01-15 13:00:00 CET");
    EXPECT_EQ(localText(parseDate("2024-07-15T12:00:00Z")), "2024-07-15 14:00:00 CEST");
    EXPECT_EQ(localText(parseDate("@9000000000000")), "@9000000000000");
}

TEST_F(LocalDaysTest, historyOfChromiumIsShiftedByTheZone) {
    EXPECT_EQ(hoursAheadIn1601(), 1);
    setZone("EST5");
    EXPECT_EQ(hoursAheadIn1601(), -5);
    setZone("UTC0");
    EXPECT_EQ(hoursAheadIn1601(), 0);
}

}  // namespace
}  // namespace browsersweep::cli
