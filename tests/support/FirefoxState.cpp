#include "tests/support/FirefoxState.h"

namespace browsersweep::tests {
namespace {

std::string number(unsigned value) {
    return {static_cast<char>(value / 256U), static_cast<char>(value % 256U)};
}

std::string padded(std::string_view text, std::size_t size) {
    std::string result(text);
    result.resize(size, '\0');
    return result;
}

unsigned byteAt(const std::string& bytes, std::size_t place) {
    return static_cast<unsigned char>(bytes[place]);
}

}  // namespace

std::string stateSlot(std::string_view key, std::string_view value, std::size_t valueSize,
                      unsigned day) {
    constexpr std::size_t keySize = 256;
    const std::string body =
        number(1) + number(day) + padded(key, keySize) + padded(value, valueSize);
    unsigned sum = 0;
    for (std::size_t place = 0; place < body.size(); place += 2) {
        sum ^= 256U * byteAt(body, place) + byteAt(body, place + 1);
    }
    return number(sum) + body;
}

}  // namespace browsersweep::tests
