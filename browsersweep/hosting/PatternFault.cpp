#include "browsersweep/hosting/PatternFault.h"

#include <cstddef>

#include "browsersweep/documents/internal/UTF16.h"

namespace browsersweep {
namespace {

/** Whether a reserved character begins at a place of well-formed UTF-8. */
bool isReservedAt(std::string_view text, std::size_t place) noexcept {
    const auto byte = static_cast<unsigned char>(text[place]);
    if (byte < 0x20 || byte == 0x7F || byte == '\'' || byte == '%' || byte == '_') {
        return true;
    }
    // The control characters from U+0080 to U+009F are C2 80 to C2 9F.
    return byte == 0xC2 && static_cast<unsigned char>(text[place + 1]) < 0xA0;
}

}  // namespace

std::optional<PatternFault> patternFault(std::string_view pattern) noexcept {
    if (pattern.empty()) {
        return PatternFault::empty;
    }
    if (!isUTF8(pattern)) {
        return PatternFault::encoding;
    }
    for (std::size_t place = 0; place < pattern.size(); ++place) {
        if (isReservedAt(pattern, place)) {
            return PatternFault::reserved;
        }
    }
    return std::nullopt;
}

}  // namespace browsersweep
