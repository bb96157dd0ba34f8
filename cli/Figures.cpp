#include "cli/Figures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include <fmt/format.h>

namespace browsersweep::cli {
namespace {

std::string_view mark(const CleanableDataSize::Measurement& measurement) noexcept {
    return measurement.isApproximate ? "~" : "";
}

std::string grouped(std::int64_t value) {
    std::string digits = fmt::format("{}", value);
    const std::size_t first = value < 0 ? 1 : 0;
    for (std::size_t place = digits.size(); place > first + 3;) {
        place -= 3;
        digits.insert(place, ",");
    }
    return digits;
}

std::string scaled(double value) {
    constexpr std::array<std::string_view, 6> units{"KB", "MB", "GB", "TB", "PB", "EB"};
    constexpr double step = 1000;
    constexpr double roundsUp = 999.95;  // would be shown as 1000.0
    std::size_t unit = 0;
    value /= step;
    while (std::fabs(value) >= roundsUp && unit + 1 < units.size()) {
        value /= step;
        ++unit;
    }
    return fmt::format("{:.1f} {}", value, units.at(unit));
}

}  // namespace

std::string countText(const CleanableDataSize::Measurement& count) {
    return fmt::format("{}{}", mark(count), grouped(count.value));
}

std::string bytesText(const CleanableDataSize::Measurement& bytes) {
    const bool isSmall = bytes.value > -1000 && bytes.value < 1000;
    return std::string(mark(bytes)) +
           (isSmall ? fmt::format("{} B", bytes.value) : scaled(static_cast<double>(bytes.value)));
}

std::string bar(std::int64_t value, std::int64_t largest, std::size_t width) {
    if (value <= 0 || largest <= 0) {
        return {};
    }
    const double share = static_cast<double>(value) / static_cast<double>(largest);
    const auto marks = static_cast<std::size_t>(std::lround(share * static_cast<double>(width)));
    std::string text;
    text.append(std::clamp<std::size_t>(marks, 1, width), '#');
    return text;
}

}  // namespace browsersweep::cli
