#include "browsersweep/documents/internal/Base64.h"

#include <cstdint>

namespace browsersweep {

std::string toBase64(std::string_view bytes) {
    constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr unsigned bitsOfDigit = 6;
    constexpr unsigned bitsOfByte = 8;
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

}  // namespace browsersweep
