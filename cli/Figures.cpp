#include "cli/Figures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include <fmt/format.h>

namespace browsersweep::cli {
namespace {

constexpr std::string_view fullBlock = "\u2588";
/** Blocks of no to seven eighths of a column, from the left. */
constexpr std::array<std::string_view, 8> partialBlocks{
    "", "\u258F", "\u258E", "\u258D", "\u258C", "\u258B", "\u258A", "\u2589",
};

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

std::string bar(std::int64_t value, std::int64_t largest, std::size_t width,
                CharacterSet characters) {
    if (value <= 0 || largest <= 0) {
        return {};
    }
    const std::size_t steps = characters == CharacterSet::utf8 ? partialBlocks.size() : 1;
    const double share = static_cast<double>(value) / static_cast<double>(largest);
    const double exact = share * static_cast<double>(width * steps);
    const auto length =
        std::clamp<std::size_t>(static_cast<std::size_t>(std::lround(exact)), 1, width * steps);
    std::string text;
    for (std::size_t i = 0; i < length / steps; ++i) {
        text += characters == CharacterSet::utf8 ? fullBlock : "#";
    }
    return text + std::string(partialBlocks.at(length % steps));
}

}  // namespace browsersweep::cli
