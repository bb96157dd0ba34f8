#include "browsersweep/documents/internal/Base64.h"

namespace browsersweep {
namespace {

constexpr std::string_view digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr unsigned bitsOfDigit = 6;
constexpr unsigned bitsOfByte = 8;

}  // namespace

std::optional<std::uint32_t> base64Digit(char letter) noexcept {
    const auto digit = digits.find(letter);
    return digit == std::string_view::npos ? std::nullopt
                                           : std::optional(static_cast<std::uint32_t>(digit));
}

std::string toBase64(std::string_view bytes) {
    constexpr unsigned mask = (1U << bitsOfDigit) - 1;
    std::string text;
    std::uint32_t waiting = 0;
    unsigned count = 0;
    for (const char byte : bytes) {
        waiting = waiting << bitsOfByte | static_cast<unsigned char>(byte);
        for (count += bitsOfByte; count >= bitsOfDigit; count -= bitsOfDigit) {
            text += digits[waiting >> (count - bitsOfDigit) & mask];
        }
    }
    if (count > 0) {
        text += digits[waiting << (bitsOfDigit - count) & mask];
    }
    while (text.size() % 4 != 0) {
        text += '=';
    }
    return text;
}

std::string fromBase64(std::string_view text) {
    std::string bytes;
    std::uint32_t waiting = 0;
    unsigned count = 0;
    for (const char letter : text) {
        const auto digit = base64Digit(letter);
        if (!digit) {
            break;
        }
        waiting = waiting << bitsOfDigit | *digit;
        count += bitsOfDigit;
        if (count >= bitsOfByte) {
            count -= bitsOfByte;
            bytes += static_cast<char>(waiting >> count & 0xFFU);
        }
    }
    return bytes;
}

}  // namespace browsersweep
