#include "cli/Dates.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <string>

#include <fmt/format.h>

#include "cli/Text.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

constexpr double secondsPerDay = 86400;

// Databases hold whole microseconds in 64 bits, since 1970 or since 1601-01-01 in the local time
// zone; the day of reserve covers every time zone.
constexpr double microsecondRange = 9223372036854.0;
constexpr double from1601To1970 = 11644473600.0;
constexpr double earliestSince1970 = -microsecondRange + secondsPerDay;
constexpr double latestSince1970 = microsecondRange - from1601To1970 - secondsPerDay;

bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

/** Reads a text from the front, piece by piece. A piece that is not there stays unread. */
class Scanner {
public:
    explicit Scanner(std::string_view text) noexcept : rest_(text) {}

    bool isAtEnd() const noexcept { return rest_.empty(); }

    bool skip(char expected) noexcept {
        if (rest_.empty() || rest_.front() != expected) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    std::string_view digits() noexcept {
        const auto count = static_cast<std::size_t>(
            std::find_if_not(rest_.begin(), rest_.end(), isDigit) - rest_.begin());
        const auto found = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return found;
    }

    /** A number of exactly so many digits. */
    std::optional<int> number(std::size_t width) noexcept {
        if (rest_.size() < width) {
            return std::nullopt;
        }
        int value = 0;
        for (const char c : rest_.substr(0, width)) {
            if (!isDigit(c)) {
                return std::nullopt;
            }
            value = value * 10 + (c - '0');
        }
        rest_.remove_prefix(width);
        return value;
    }

private:
    std::string_view rest_;
};

/** The days since 1970 of "YYYY-MM-DD". */
std::optional<double> scanDay(Scanner& scanner) {
    const auto year = scanner.number(4);
    if (!year || !scanner.skip('-')) {
        return std::nullopt;
    }
    const auto month = scanner.number(2);
    if (!month || !scanner.skip('-')) {
        return std::nullopt;
    }
    const auto day = scanner.number(2);
    if (!day) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date{std::chrono::year{*year},
                                           std::chrono::month{static_cast<unsigned>(*month)},
                                           std::chrono::day{static_cast<unsigned>(*day)}};
    if (!date.ok()) {
        return std::nullopt;
    }
    return static_cast<double>(std::chrono::sys_days{date}.time_since_epoch().count());
}

/** ".250" as a part of a second; 0 where no point follows. */
std::optional<double> scanFraction(Scanner& scanner) {
    if (!scanner.skip('.')) {
        return 0.0;
    }
    const auto digits = scanner.digits();
    if (digits.empty()) {
        return std::nullopt;
    }
    return std::strtod(("0." + std::string(digits)).c_str(), nullptr);
}

/** The seconds since midnight of "HH:MM:SS[.fff]". */
std::optional<double> scanTime(Scanner& scanner) {
    const auto hour = scanner.number(2);
    if (!hour || *hour > 23 || !scanner.skip(':')) {
        return std::nullopt;
    }
    const auto minute = scanner.number(2);
    if (!minute || *minute > 59 || !scanner.skip(':')) {
        return std::nullopt;
    }
    const auto second = scanner.number(2);
    if (!second || *second > 59) {
        return std::nullopt;
    }
    const auto fraction = scanFraction(scanner);
    if (!fraction) {
        return std::nullopt;
    }
    return *hour * 3600.0 + *minute * 60.0 + *second + *fraction;
}

/** Seconds since 1970 of the two calendar forms. */
std::optional<double> calendarSeconds(std::string_view text) {
    Scanner scanner(text);
    const auto days = scanDay(scanner);
    if (!days) {
        return std::nullopt;
    }
    if (scanner.isAtEnd()) {
        return *days * secondsPerDay;
    }
    if (!scanner.skip('T')) {
        return std::nullopt;
    }
    const auto time = scanTime(scanner);
    if (!time || !scanner.skip('Z') || !scanner.isAtEnd()) {
        return std::nullopt;
    }
    return *days * secondsPerDay + *time;
}

bool skipExponent(Scanner& scanner) {
    if (!scanner.skip('e') && !scanner.skip('E')) {
        return true;
    }
    if (!scanner.skip('-')) {
        scanner.skip('+');
    }
    return !scanner.digits().empty();
}

/** A plain decimal number; not the hexadecimal, infinite and other forms of the C library. */
std::optional<double> plainNumber(std::string_view text) {
    Scanner scanner(text);
    if (!scanner.skip('-')) {
        scanner.skip('+');
    }
    if (scanner.digits().empty() || (scanner.skip('.') && scanner.digits().empty()) ||
        !skipExponent(scanner) || !scanner.isAtEnd()) {
        return std::nullopt;
    }
    return std::strtod(std::string(text).c_str(), nullptr);  // no locale is ever set
}

Date checkedDate(double since1970, Date date, std::string_view text) {
    if (!(since1970 >= earliestSince1970 && since1970 <= latestSince1970)) {
        throw UsageError(fmt::format(
            "the date '{}' is too far away: browsers store dates in 64 bits of microseconds, so "
            "give one between @{:.0f} and @{:.0f}",
            printable(text), earliestSince1970, latestSince1970));
    }
    return date;
}

/** The form "2024-02-29T12:30:00Z", as far as its years of four digits go. */
std::string calendarText(double since1970) {
    constexpr double year0 = -62167219200;
    constexpr double year10000 = 253402300800;
    if (since1970 < year0 || since1970 >= year10000) {
        return since1970 < 0 ? "before the year 0" : "after the year 9999";
    }
    const auto whole =
        std::chrono::floor<std::chrono::seconds>(std::chrono::duration<double>(since1970));
    const auto day = std::chrono::floor<std::chrono::days>(whole);
    const std::chrono::year_month_day date{std::chrono::sys_days{day}};
    const std::chrono::hh_mm_ss time{whole - day};
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                       time.hours().count(), time.minutes().count(), time.seconds().count());
}

/**
 * Most programs count seconds from 1970, and today that takes ten digits. Taken as seconds since
 * 2001 it would be a date 31 years later, and a filter of it would spare or delete far too much.
 */
void refuseTwoReadings(double number, std::string_view text) {
    constexpr std::size_t digitsOfToday = 10;
    Scanner scanner(text);
    if (!scanner.skip('-')) {
        scanner.skip('+');
    }
    if (scanner.digits().size() >= digitsOfToday) {
        throw UsageError(fmt::format(
            "'{0}' can be read as seconds since 1970, which is {1}, or since 2001, which is {2}; "
            "write @{0} for the first, or the date itself",
            text, calendarText(number),
            calendarText(secondsSince1970(dateFromReferenceSeconds(number)))));
    }
}

}  // namespace

Date dateFromNumber(double secondsSince2001, std::string_view text) {
    const Date date = dateFromReferenceSeconds(secondsSince2001);
    checkedDate(secondsSince1970(date), date, text);
    refuseTwoReadings(secondsSince2001, text);
    return date;
}

Date parseDate(std::string_view text) {
    if (!text.empty() && text.front() == '@') {
        if (const auto seconds = plainNumber(text.substr(1))) {
            return checkedDate(*seconds, dateFrom1970Seconds(*seconds), text);
        }
    } else if (const auto seconds = plainNumber(text)) {
        return dateFromNumber(*seconds, text);
    } else if (const auto calendar = calendarSeconds(text)) {
        return dateFrom1970Seconds(*calendar);
    }
    throw UsageError(
        fmt::format("'{}' is not a date; write YYYY-MM-DD, YYYY-MM-DDTHH:MM:SS[.fff]Z, a number of "
                    "seconds since 2001-01-01, or @ and a number of seconds since 1970-01-01",
                    printable(text)));
}

void requireOrder(const CleanableDataFilter::Dates& dates, std::string_view text) {
    if (dates.startDate && dates.endDate && *dates.startDate > *dates.endDate) {
        throw UsageError(fmt::format(
            "the range '{}' starts after it ends; put the earlier date first", printable(text)));
    }
}

CleanableDataFilter::Dates parseDateRange(CleanableDataFilter::Dates::Rule rule,
                                          std::string_view text) {
    const auto dots = text.find("..");
    if (dots == std::string_view::npos) {
        throw UsageError(
            fmt::format("'{}' is not a range of dates; write START..END, where either end may be "
                        "left empty",
                        printable(text)));
    }
    const auto bound = [](std::string_view end) {
        return end.empty() ? std::nullopt : std::optional(parseDate(end));
    };
    const CleanableDataFilter::Dates dates{rule, bound(text.substr(0, dots)),
                                           bound(text.substr(dots + 2))};
    requireOrder(dates, text);
    return dates;
}

}  // namespace browsersweep::cli
