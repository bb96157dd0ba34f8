#include "browsersweep/platform/internal/UniqueString.h"

#include <random>
#include <string_view>

namespace browsersweep {

std::string uniqueString() {
    constexpr std::string_view digits = "0123456789abcdef";
    constexpr std::size_t length = 32;
    std::random_device source;
    std::uniform_int_distribution<std::size_t> digit(0, digits.size() - 1);
    std::string text(length, '\0');
    for (char& character : text) {
        character = digits[digit(source)];
    }
    return text;
}

}  // namespace browsersweep
