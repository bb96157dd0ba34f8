#include "browsersweep/documents/propertylist/internal/PropertyListScalars.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <utility>

#include "browsersweep/documents/internal/Base64.h"

namespace browsersweep {
namespace {

constexpr std::string_view whiteSpace = " \t\r\n";
constexpr std::string_view digits = "0123456789";

std::string_view trimmed(std::string_view text) noexcept {
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

char lowercase(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

std::string lowercase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char character) { return lowercase(character); });
    return result;
}

// Takes a "+" or "-" off the text; true for "-".
bool takeSign(std::string_view& text) noexcept {
    const bool isSigned = !text.empty() && (text.front() == '+' || text.front() == '-');
    const bool isNegative = isSigned && text.front() == '-';
    text.remove_prefix(isSigned ? 1 : 0);
    return isNegative;
}

// NOLINTNEXTLINE(bugprone-easily-swappable-parameters)
std::optional<std::uint64_t> magnitude(std::string_view text, unsigned base) noexcept {
    constexpr std::string_view hexadecimalDigits = "0123456789abcdef";
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t value = 0;
    for (const char character : text) {
        const std::size_t digit = hexadecimalDigits.find(lowercase(character));
        if (digit >= base || value > (largest - digit) / base) {
            return std::nullopt;
        }
        value = value * base + digit;
    }
    return text.empty() ? std::nullopt : std::optional(value);
}

std::size_t takeDigits(std::string_view& text) noexcept {
    const std::size_t count = std::min(text.find_first_not_of(digits), text.size());
    text.remove_prefix(count);
    return count;
}

bool isDecimalNumber(std::string_view text) noexcept {
    takeSign(text);
    std::size_t digitCount = takeDigits(text);
    if (!text.empty() && text.front() == '.') {
        text.remove_prefix(1);
        digitCount += takeDigits(text);
    }
    if (digitCount == 0) {
        return false;
    }
    if (text.empty()) {
        return true;
    }
    const bool hasExponent = lowercase(text.front()) == 'e';
    text.remove_prefix(1);
    takeSign(text);
    return hasExponent && takeDigits(text) > 0 && text.empty();
}

std::optional<double> namedNumber(std::string_view text) {
    std::string_view rest = text;
    const bool isNegative = takeSign(rest);
    const std::string name = lowercase(rest);
    if (name == "nan") {
        return std::numeric_limits<double>::quiet_NaN();
    }
    if (name == "inf" || name == "infinity") {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        return isNegative ? -infinity : infinity;
    }
    return std::nullopt;
}

// The digits of a date's field; the field's value is at most four digits long.
std::optional<int> field(std::string_view text) noexcept {
    const std::optional<std::uint64_t> value = magnitude(text, 10);
    return value ? std::optional(static_cast<int>(*value)) : std::nullopt;
}

std::string padded(int value, std::size_t width) {
    const std::string text = std::to_string(value);
    return std::string(width - std::min(width, text.size()), '0') + text;
}

}  // namespace

bool isOnlyWhiteSpace(std::string_view text) noexcept {
    return text.find_first_not_of(whiteSpace) == std::string_view::npos;
}

std::optional<PropertyList> integerFromText(std::string_view text) {
    text = trimmed(text);
    const bool isNegative = takeSign(text);
    const bool isHexadecimal = text.size() > 2 && text.front() == '0' && lowercase(text[1]) == 'x';
    const std::optional<std::uint64_t> value =
        isHexadecimal ? magnitude(text.substr(2), 16) : magnitude(text, 10);
    if (!value || !isNegative) {
        return value ? std::optional(PropertyList::unsignedInteger(*value)) : std::nullopt;
    }
    if (*value > std::uint64_t{1} << 63) {
        return std::nullopt;
    }
    return PropertyList::integer(static_cast<std::int64_t>(std::uint64_t{0} - *value));
}

std::optional<PropertyList> realFromText(std::string_view text) {
    text = trimmed(text);
    if (const std::optional<double> named = namedNumber(text)) {
        return PropertyList::real(*named);
    }
    if (!isDecimalNumber(text)) {
        return std::nullopt;
    }
    // strtod would follow the process's locale.
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    double value = 0;
    stream >> value;
    // A number too small to be told from zero may set the failure flag too; it is no failure here.
    if (stream.fail() && (value > 1 || value < -1)) {
        return std::nullopt;
    }
    return PropertyList::real(value);
}

std::optional<PropertyList> dateFromText(std::string_view text) {
    text = trimmed(text);
    constexpr std::string_view pattern = "dddd-dd-ddTdd:dd:ddZ";
    const auto fits = [](char expected, char character) {
        return expected == 'd' ? digits.find(character) != std::string_view::npos
                               : character == expected;
    };
    if (!std::equal(pattern.begin(), pattern.end(), text.begin(), text.end(), fits)) {
        return std::nullopt;
    }
    const auto part = [text](std::size_t start, std::size_t length) {
        return field(text.substr(start, length)).value_or(0);
    };
    const std::chrono::year_month_day day{std::chrono::year(part(0, 4)),
                                          std::chrono::month(static_cast<unsigned>(part(5, 2))),
                                          std::chrono::day(static_cast<unsigned>(part(8, 2)))};
    const int hour = part(11, 2);
    const int minute = part(14, 2);
    const int second = part(17, 2);
    if (!day.ok() || hour > 23 || minute > 59 || second > 59) {
        return std::nullopt;
    }
    constexpr double secondsPerDay = 86400;
    const auto days = static_cast<double>(std::chrono::sys_days(day).time_since_epoch().count());
    return PropertyList::date(
        dateFrom1970Seconds(days * secondsPerDay + hour * 3600 + minute * 60 + second));
}

std::optional<std::string> textOfDate(Date date) {
    constexpr double firstSecond = -62167219200;  // of the year 0
    constexpr double lastSecond = 253402300799;   // of the year 9999
    const double seconds = std::floor(secondsSince1970(date));
    if (!(seconds >= firstSecond && seconds <= lastSecond)) {
        return std::nullopt;
    }
    const std::chrono::sys_seconds time{std::chrono::seconds(static_cast<std::int64_t>(seconds))};
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day calendar(day);
    const std::chrono::hh_mm_ss clock(time - day);
    std::string text;
    text += padded(static_cast<int>(calendar.year()), 4) + "-";
    text += padded(static_cast<int>(static_cast<unsigned>(calendar.month())), 2) + "-";
    text += padded(static_cast<int>(static_cast<unsigned>(calendar.day())), 2) + "T";
    text += padded(static_cast<int>(clock.hours().count()), 2) + ":";
    text += padded(static_cast<int>(clock.minutes().count()), 2) + ":";
    return text + padded(static_cast<int>(clock.seconds().count()), 2) + "Z";
}

std::optional<PropertyList> dataFromBase64(std::string_view text) {
    Bytes bytes;
    std::uint32_t group = 0;
    std::size_t count = 0;
    std::size_t padding = 0;
    for (const char character : text) {
        if (whiteSpace.find(character) != std::string_view::npos) {
            continue;
        }
        const std::optional<std::uint32_t> digit =
            character == '=' ? std::optional<std::uint32_t>(0) : base64Digit(character);
        padding += character == '=' ? 1 : 0;
        if (!digit || (padding > 0 && character != '=')) {
            return std::nullopt;
        }
        group = (group << 6) | *digit;
        if (++count % 4 == 0) {
            bytes.push_back(static_cast<std::uint8_t>(group >> 16));
            bytes.push_back(static_cast<std::uint8_t>(group >> 8));
            bytes.push_back(static_cast<std::uint8_t>(group));
        }
    }
    if (count % 4 != 0 || padding > 2 || padding > bytes.size()) {
        return std::nullopt;
    }
    bytes.resize(bytes.size() - padding);
    return PropertyList::data(std::move(bytes));
}

}  // namespace browsersweep
