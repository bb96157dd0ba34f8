#include "browsersweep/platform/internal/Text.h"

#include <array>
#include <cstddef>

namespace browsersweep {
namespace {

// clang-format off
/** Every single newline character as UTF-8. */
constexpr std::array<std::string_view, 7> newlines{
    "\n", "\v", "\f", "\r", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"};
// clang-format on

/** The length of the newline at the front; 0 if there is none. */
std::size_t leadingNewlineLength(std::string_view text) noexcept {
    for (const std::string_view newline : newlines) {
        if (text.substr(0, newline.size()) == newline) {
            return newline.size();
        }
    }
    return 0;
}

}  // namespace

std::string_view takeLine(std::optional<std::string_view>& text) noexcept {
    const std::string_view whole = text.value_or(std::string_view());
    for (std::size_t place = 0; place < whole.size(); ++place) {
        const std::size_t newline = leadingNewlineLength(whole.substr(place));
        if (newline != 0) {
            text = whole.substr(place + newline);
            return whole.substr(0, place);
        }
    }
    text.reset();
    return whole;
}

}  // namespace browsersweep
