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

std::vector<std::string_view> lines(std::string_view text) {
    std::vector<std::string_view> result;
    std::size_t lineStart = 0;
    std::size_t position = 0;
    while (position < text.size()) {
        const std::size_t newline = leadingNewlineLength(text.substr(position));
        if (newline == 0) {
            ++position;
            continue;
        }
        result.push_back(text.substr(lineStart, position - lineStart));
        position += newline;
        lineStart = position;
    }
    result.push_back(text.substr(lineStart));
    return result;
}

}  // namespace browsersweep
