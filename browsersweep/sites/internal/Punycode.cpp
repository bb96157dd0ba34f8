#include "browsersweep/sites/internal/Punycode.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "browsersweep/documents/internal/UTF16.h"

namespace browsersweep {
namespace {

using CodePoints = std::u32string;

/** The code points of a text that is well-formed UTF-8. */
CodePoints codePointsOf(std::string_view text) {
    CodePoints points;
    for (const char each : text) {
        const auto byte = static_cast<unsigned char>(each);
        if (byte < 0x80) {
            points.push_back(byte);
        } else if (byte >= 0xC0) {
            points.push_back(byte & (byte >= 0xF0 ? 0x07U : byte >= 0xE0 ? 0x0FU : 0x1FU));
        } else {
            points.back() = points.back() << 6U | (byte & 0x3FU);
        }
    }
    return points;
}

/** Capital letters, and how far from them their small ones stand. */
struct Capitals {
    char32_t first;
    char32_t last;
    char32_t distance;
};

constexpr std::array capitals{
    Capitals{U'A', U'Z', 32},   Capitals{0xC0, 0xD6, 32},   Capitals{0xD8, 0xDE, 32},
    Capitals{0x391, 0x3A1, 32}, Capitals{0x3A3, 0x3AB, 32}, Capitals{0x400, 0x40F, 80},
    Capitals{0x410, 0x42F, 32},
};

char32_t inSmall(char32_t letter) noexcept {
    const auto* const found = std::find_if(
        capitals.begin(), capitals.end(),
        [letter](const Capitals& each) { return letter >= each.first && letter <= each.last; });
    return found == capitals.end() ? letter : letter + found->distance;
}

/** Points that no name has: the first and the last of some in a row. */
struct NoLetters {
    char32_t first;
    char32_t last;
};

// Accents as marks of their own; then blanks, dots and marks that look like nothing or like ASCII,
// as they come along when a name is copied. The joiners between them are letters of some names.
constexpr std::array noLetters{
    NoLetters{0x300, 0x36F},   NoLetters{0x80, 0xA0},     NoLetters{0xAD, 0xAD},
    NoLetters{0x2000, 0x200B}, NoLetters{0x200E, 0x206F}, NoLetters{0x3000, 0x3002},
    NoLetters{0xFEFF, 0xFEFF}, NoLetters{0xFF0E, 0xFF0E}, NoLetters{0xFF61, 0xFF61},
};

bool isNoLetter(char32_t point) noexcept {
    return std::any_of(noLetters.begin(), noLetters.end(), [point](const NoLetters& each) {
        return point >= each.first && point <= each.last;
    });
}

constexpr std::uint32_t base = 36;

char digitOf(std::uint32_t value) noexcept {
    return static_cast<char>(value < 26 ? 'a' + value : '0' + (value - 26));
}

/** RFC 3492, section 6.1: how the digits' weights follow what was written so far. */
std::uint32_t adapted(std::uint32_t delta, std::uint32_t count, bool isFirst) noexcept {
    constexpr std::uint32_t damping = 700;
    constexpr std::uint32_t skew = 38;
    delta = isFirst ? delta / damping : delta / 2;
    delta += delta / count;
    std::uint32_t steps = 0;
    for (; delta > (base - 1) * 26 / 2; steps += base) {
        delta /= base - 1;
    }
    return steps + base * delta / (delta + skew);
}

void writeNumber(std::uint32_t number, std::uint32_t bias, std::string& text) {
    for (std::uint32_t place = base;; place += base) {
        const std::uint32_t threshold =
            place <= bias ? 1 : std::min<std::uint32_t>(place - bias, 26);
        if (number < threshold) {
            text += digitOf(number);
            return;
        }
        text += digitOf(threshold + (number - threshold) % (base - threshold));
        number = (number - threshold) / (base - threshold);
    }
}

/** RFC 3492, section 6.3. A label has 63 letters at most, so no number is too large. */
std::string punycode(const CodePoints& label) {
    std::string text;
    for (const char32_t point : label) {
        if (point < 0x80) {
            text += static_cast<char>(point);
        }
    }
    const auto basic = static_cast<std::uint32_t>(text.size());
    auto handled = basic;
    text += basic > 0 ? "-" : "";
    std::uint32_t bias = 72;
    std::uint32_t delta = 0;
    for (char32_t next = 0x80; handled < label.size(); ++next, ++delta) {
        char32_t lowest = 0x10FFFF;
        for (const char32_t point : label) {
            lowest = point >= next ? std::min(lowest, point) : lowest;
        }
        delta += static_cast<std::uint32_t>(lowest - next) * (handled + 1);
        next = lowest;
        for (const char32_t point : label) {
            delta += point < next ? 1 : 0;
            if (point == next) {
                writeNumber(delta, bias, text);
                bias = adapted(delta, handled + 1, handled == basic);
                delta = 0;
                ++handled;
            }
        }
    }
    return text;
}

bool isASCII(const CodePoints& label) noexcept {
    return std::all_of(label.begin(), label.end(), [](char32_t point) { return point < 0x80; });
}

std::string asciiLabel(const CodePoints& label) {
    return isASCII(label) ? std::string(label.begin(), label.end()) : "xn--" + punycode(label);
}

}  // namespace

std::string asciiHost(std::string_view host) {
    constexpr std::size_t longestName = 253;
    if (host.size() > 4 * longestName || !isUTF8(host)) {
        return {};
    }
    CodePoints points = codePointsOf(host);
    if (std::any_of(points.begin(), points.end(), isNoLetter)) {
        return {};
    }
    std::transform(points.begin(), points.end(), points.begin(), inSmall);
    std::string result;
    for (std::size_t begin = 0; begin <= points.size();) {
        const auto end = std::min(points.find(U'.', begin), points.size());
        result += (begin > 0 ? "." : "") + asciiLabel(points.substr(begin, end - begin));
        begin = end + 1;
    }
    return result;
}

}  // namespace browsersweep
