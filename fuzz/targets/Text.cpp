#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

#include "browsersweep/base/URL.h"
#include "browsersweep/documents/internal/DecimalText.h"

#include "fuzz/targets/Input.h"
#include "fuzz/targets/Rule.h"
#include "fuzz/targets/Targets.h"

namespace browsersweep::fuzz {
namespace {

constexpr std::string_view hexadecimalDigits = "0123456789ABCDEFabcdef";

/** The rule of addresses once more, said as a replacement of its parts until nothing is left. */
bool isAddress(std::string text) {
    constexpr std::string_view plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!$&'()*+,-./:;=?@_~[]";
    if (text.empty() || std::count(text.begin(), text.end(), '#') > 1) {
        return false;
    }
    for (auto place = text.find('%'); place != std::string::npos; place = text.find('%')) {
        const std::string digits = text.substr(place + 1, 2);
        if (digits.size() != 2 ||
            digits.find_first_not_of(hexadecimalDigits) != std::string::npos) {
            return false;
        }
        text.replace(place, 3, "A");
    }
    std::erase(text, '#');
    return text.find_first_not_of(plain) == std::string::npos;
}

}  // namespace

void urlText(BytesView input) {
    const std::string text = textOf(input);
    const auto url = URL::parse(text);
    require(url.has_value() == isAddress(text), "a text parses exactly where the rule allows it");
    require(!url || url->absoluteString() == text, "an address keeps its text");
}

void decimalNumber(BytesView input) {
    Input values(input);
    const double value = values.number();
    const std::string text = decimalText(value);
    if (!std::isfinite(value)) {
        return;
    }
    // strtod is what SQLite and everybody else reads numbers with.
    const double back = std::strtod(text.c_str(), nullptr);
    require(std::bit_cast<std::uint64_t>(back) == std::bit_cast<std::uint64_t>(value),
            "the text reads back as the same number");
    require(text.find_first_not_of("0123456789.-+e") == std::string::npos, "the text is a number");
    require((text.find('e') == std::string::npos) == (text.find('.') != std::string::npos) ||
                text.find('e') != std::string::npos,
            "without an exponent there is a point");
}

}  // namespace browsersweep::fuzz
