#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace browsersweep {

/**
 * Takes a number from the beginning of a text, as LevelDB and Protocol Buffers write it: seven bits
 * in each byte, the lowest first, and the eighth says that there are more. Absent where the text
 * ends before the number does; what was looked at is taken then, too.
 */
inline std::optional<std::uint64_t> takeVarint(std::string_view& text) noexcept {
    constexpr unsigned bitsPerByte = 7;
    constexpr unsigned more = 0x80;
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < 64 && !text.empty(); shift += bitsPerByte) {
        const auto byte = static_cast<unsigned char>(text.front());
        text.remove_prefix(1);
        number |= std::uint64_t{byte & (more - 1)} << shift;
        if (byte < more) {
            return number;
        }
    }
    return std::nullopt;
}

}  // namespace browsersweep
