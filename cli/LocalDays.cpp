#include "cli/LocalDays.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <optional>
#include <system_error>

#include <fmt/format.h>

#include "cli/Ages.h"
#include "cli/Dates.h"
#include "cli/Text.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

using Day = std::chrono::year_month_day;
using Dates = CleanableDataFilter::Dates;

constexpr double microsecond = 1e-6;

/** Days that follow on each other. */
struct Days {
    Day first;
    Day last;
};

std::optional<int> numberOf(std::string_view digits) {
    int value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    const bool isWhole = error == std::errc() && stop == end && digits.front() != '-';
    return isWhole ? std::optional(value) : std::nullopt;
}

/** "2024-02-29", or with "-01" for a month. */
std::optional<Day> dayOf(std::string_view text) {
    constexpr std::size_t length = std::string_view("2024-02-29").size();
    if (text.size() != length || text[4] != '-' || text[7] != '-') {
        return std::nullopt;
    }
    const auto year = numberOf(text.substr(0, 4));
    const auto month = numberOf(text.substr(5, 2));
    const auto day = numberOf(text.substr(8, 2));
    if (!year || !month || !day) {
        return std::nullopt;
    }
    const Day found{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                    std::chrono::day(static_cast<unsigned>(*day))};
    return found.ok() ? std::optional(found) : std::nullopt;
}

std::optional<Days> monthOf(std::string_view text) {
    const auto first = dayOf(std::string(text) + "-01");
    if (!first) {
        return std::nullopt;
    }
    return Days{*first, Day(first->year() / first->month() / std::chrono::last)};
}

std::tm calendarOf(Date date) {
    const auto seconds = static_cast<std::time_t>(std::floor(secondsSince1970(date)));
    std::tm calendar{};
    ::localtime_r(&seconds, &calendar);
    return calendar;
}

Day dayOf(Date date) {
    const std::tm calendar = calendarOf(date);
    return {std::chrono::year(calendar.tm_year + 1900),
            std::chrono::month(static_cast<unsigned>(calendar.tm_mon + 1)),
            std::chrono::day(static_cast<unsigned>(calendar.tm_mday))};
}

Day dayAfter(Day day, int count) {
    return std::chrono::sys_days(day) + std::chrono::days(count);
}

/** The first moment of a day in the zone of the device. */
Date startOf(Day day) {
    std::tm calendar{};
    calendar.tm_year = static_cast<int>(day.year()) - 1900;
    calendar.tm_mon = static_cast<int>(static_cast<unsigned>(day.month())) - 1;
    calendar.tm_mday = static_cast<int>(static_cast<unsigned>(day.day()));
    calendar.tm_isdst = -1;
    const int wanted = calendar.tm_mday;
    auto seconds = static_cast<double>(std::mktime(&calendar));
    if (calendar.tm_mday != wanted) {
        seconds += 3600;  // the clock was put forward at midnight, and this is the hour before
    }
    return dateFrom1970Seconds(seconds);
}

Days daysOf(std::string_view text, Date now) {
    if (text == "today" || text == "yesterday") {
        const Day day = dayAfter(dayOf(now), text == "today" ? 0 : -1);
        return {day, day};
    }
    if (const auto day = dayOf(text)) {
        return {*day, *day};
    }
    if (const auto month = monthOf(text)) {
        return *month;
    }
    throw UsageError(fmt::format(
        "'{}' is not a day; write YYYY-MM-DD, YYYY-MM for a whole month, today or yesterday",
        printable(text)));
}

}  // namespace

Dates parseDays(std::string_view text, Date now) {
    constexpr std::string_view dots = "..";
    const auto place = text.find(dots);
    const auto first = text.substr(0, place);
    const auto last = place == std::string_view::npos ? first : text.substr(place + dots.size());
    Dates dates;
    if (!first.empty() || place == std::string_view::npos) {
        dates.startDate = startOf(daysOf(first, now).first);
    }
    if (!last.empty()) {
        const Date next = startOf(dayAfter(daysOf(last, now).last, 1));
        dates.endDate = dateFrom1970Seconds(secondsSince1970(next) - microsecond);
    }
    // Such as of a script whose variables are empty.
    if (!dates.startDate && !dates.endDate) {
        throw UsageError(fmt::format(
            "'{}' has neither a first day nor a last and would take everything; give one",
            printable(text)));
    }
    requireOrder(dates, text);
    return dates;
}

Dates parseLast(std::string_view age, Date now) {
    const auto seconds = secondsOfAge(age);
    if (!seconds) {
        throw UsageError(faultOfAge(std::string(age)));
    }
    // As a date that is typed: one that no browser can store is refused.
    const auto start = fmt::format("@{:.6f}", secondsSince1970(now) - *seconds);
    return {Dates::Rule::insideRange, parseDate(start), std::nullopt};
}

double hoursAheadIn1601() {
    constexpr double secondsBefore1970 = 11644473600;
    constexpr double hour = 3600;
    const Date local = startOf(std::chrono::year(1601) / 1 / 1);
    return (-secondsBefore1970 - secondsSince1970(local)) / hour;
}

std::string localText(Date date) {
    constexpr double year10000 = 253402300800;
    const double seconds = secondsSince1970(date);
    if (!(seconds > -year10000 && seconds < year10000)) {
        return fmt::format("@{:.0f}", seconds);  // no calendar of four digits has it
    }
    const std::tm calendar = calendarOf(date);
    std::array<char, 64> text{};
    const auto length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S %Z", &calendar);
    return {text.data(), length};
}

}  // namespace browsersweep::cli
