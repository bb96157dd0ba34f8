#include "cli/Ages.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <utility>

#include <fmt/format.h>

#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

constexpr double hour = 3600;
constexpr std::array ages{
    std::pair{'h', hour},
    std::pair{'d', 24 * hour},
    std::pair{'w', 7 * 24 * hour},
    std::pair{'y', 365 * 24 * hour},
};

}  // namespace

std::optional<double> secondsOfAge(std::string_view age) {
    constexpr std::size_t mostDigits = 6;
    if (age.size() < 2 || age.size() > mostDigits + 1) {
        return std::nullopt;
    }
    double number = 0;
    for (const char digit : age.substr(0, age.size() - 1)) {
        if (std::isdigit(static_cast<unsigned char>(digit)) == 0) {
            return std::nullopt;
        }
        number = 10 * number + (digit - '0');
    }
    const auto* const unit = std::find_if(
        ages.begin(), ages.end(), [age](const auto& each) { return each.first == age.back(); });
    return unit == ages.end() ? std::nullopt : std::optional(number * unit->second);
}

std::string faultOfAge(const std::string& age) {
    return secondsOfAge(age)
               ? ""
               : fmt::format(
                     "'{}' is not an age; write a number and h, d, w or y, such as 30d for "
                     "thirty days",
                     printable(age));
}

}  // namespace browsersweep::cli
