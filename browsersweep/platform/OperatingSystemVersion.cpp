#include "browsersweep/platform/OperatingSystemVersion.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <system_error>

namespace browsersweep {
namespace {

std::optional<int> number(std::string_view text) noexcept {
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc{} && stop == end && value >= 0 ? std::optional(value) : std::nullopt;
}

}  // namespace

std::optional<OperatingSystemVersion> OperatingSystemVersion::parse(
    std::string_view text) noexcept {
    std::array<int, 3> parts{};
    for (std::size_t index = 0; index < parts.size(); ++index) {
        const std::size_t point = text.find('.');
        const std::optional<int> part = number(text.substr(0, point));
        if (!part) {
            return std::nullopt;
        }
        parts.at(index) = *part;
        if (point == std::string_view::npos) {
            return OperatingSystemVersion{parts[0], parts[1], parts[2]};
        }
        text.remove_prefix(point + 1);
    }
    return std::nullopt;
}

}  // namespace browsersweep
