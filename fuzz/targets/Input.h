#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "browsersweep/base/Bytes.h"

namespace browsersweep::fuzz {

/** Takes values off the front of any bytes. Where they have run out it gives zeros. */
class Input {
public:
    explicit Input(BytesView bytes) noexcept : bytes_(bytes) {}

    bool isAtEnd() const noexcept { return bytes_.empty(); }

    std::uint8_t byte() noexcept {
        const BytesView taken = take(1);
        return taken.empty() ? std::uint8_t{0} : taken.front();
    }
    bool flag() noexcept { return byte() % 2 == 1; }

    /** Any bit pattern of a double. */
    double number() noexcept {
        std::uint64_t bits = 0;
        for (int index = 0; index < 8; ++index) {
            bits = (bits << 8U) | byte();
        }
        return std::bit_cast<double>(bits);
    }

    /** A length of one byte and the text after it. */
    std::string text() {
        const BytesView taken = take(byte());
        return {taken.begin(), taken.end()};
    }

    /** Up to so many bytes. */
    BytesView take(std::size_t count) noexcept {
        const BytesView taken = bytes_.first(std::min(count, bytes_.size()));
        bytes_ = bytes_.subspan(taken.size());
        return taken;
    }
    BytesView rest() noexcept { return take(bytes_.size()); }

private:
    BytesView bytes_;
};

/** The bytes as a text. */
inline std::string textOf(BytesView bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace browsersweep::fuzz
