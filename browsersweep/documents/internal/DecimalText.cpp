#include "browsersweep/documents/internal/DecimalText.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace browsersweep {
namespace {

struct Decimal {
    std::string digits;  // without zeros at the end
    int exponent;        // of the first digit
};

// The separator of the process's locale stands after the first digit; it is passed over, whatever
// it is and however long.
Decimal decimalFrom(std::string_view scientific) {
    Decimal result{"", 0};
    const std::size_t mark = scientific.find('e');
    for (const char character : scientific.substr(0, mark)) {
        if (character >= '0' && character <= '9') {
            result.digits.push_back(character);
        }
    }
    const std::size_t last = result.digits.find_last_not_of('0');
    result.digits.resize(last == std::string::npos ? 1 : last + 1);
    // Long enough for any exponent of a double; the sign is understood by strtol.
    result.exponent = static_cast<int>(
        std::strtol(std::string(scientific.substr(mark + 1)).c_str(), nullptr, 10));
    return result;
}

// The shortest digits that read back as the same number. Written and read in the same locale.
Decimal shortestDecimal(double magnitude) {
    constexpr int enoughDigits = 17;
    std::array<char, 64> text{};
    for (int digits = 1; digits <= enoughDigits; ++digits) {
        std::snprintf(text.data(), text.size(), "%.*e", digits - 1, magnitude);
        if (std::strtod(text.data(), nullptr) == magnitude) {
            break;
        }
    }
    return decimalFrom(text.data());
}

std::string plainForm(const Decimal& decimal) {
    const std::string& digits = decimal.digits;
    if (decimal.exponent < 0) {
        return "0." + std::string(static_cast<std::size_t>(-decimal.exponent - 1), '0') + digits;
    }
    const auto wholeCount = static_cast<std::size_t>(decimal.exponent) + 1;
    if (digits.size() <= wholeCount) {
        return digits + std::string(wholeCount - digits.size(), '0') + ".0";
    }
    return digits.substr(0, wholeCount) + "." + digits.substr(wholeCount);
}

std::string exponentForm(const Decimal& decimal) {
    std::string text = decimal.digits.substr(0, 1);
    if (decimal.digits.size() > 1) {
        text += "." + decimal.digits.substr(1);
    }
    const std::string exponent = std::to_string(std::abs(decimal.exponent));
    text += decimal.exponent < 0 ? "e-" : "e+";
    return text + (exponent.size() < 2 ? "0" : "") + exponent;
}

}  // namespace

std::string decimalText(double value) {
    if (std::isnan(value)) {
        return "nan";
    }
    const std::string sign = std::signbit(value) ? "-" : "";
    const double magnitude = std::fabs(value);
    if (std::isinf(value)) {
        return sign + "inf";
    }
    constexpr double smallestPlain = 0.0001;
    constexpr double largestPlain = 9007199254740992.0;
    const bool isPlain =
        magnitude == 0 || (magnitude >= smallestPlain && magnitude <= largestPlain);
    const Decimal decimal = shortestDecimal(magnitude);
    return sign + (isPlain ? plainForm(decimal) : exponentForm(decimal));
}

}  // namespace browsersweep
