#include "cli/Text.h"

#include <algorithm>
#include <array>
#include <iterator>

#include <fmt/format.h>

namespace browsersweep::cli {
namespace {

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

struct CodePointRange {
    char32_t first;
    char32_t last;
};

// The C library's own widths depend on the locale, and the program must align in any of them.
// clang-format off
constexpr CodePointRange wideRanges[] = {  // NOLINT(cppcoreguidelines-avoid-c-arrays,modernize-avoid-c-arrays)
    {0x1100, 0x115F},   {0x231A, 0x231B},   {0x2329, 0x232A},   {0x23E9, 0x23EC},
    {0x23F0, 0x23F0},   {0x23F3, 0x23F3},   {0x25FD, 0x25FE},   {0x2614, 0x2615},
    {0x2648, 0x2653},   {0x267F, 0x267F},   {0x2693, 0x2693},   {0x26A1, 0x26A1},
    {0x26AA, 0x26AB},   {0x26BD, 0x26BE},   {0x26C4, 0x26C5},   {0x26CE, 0x26CE},
    {0x26D4, 0x26D4},   {0x26EA, 0x26EA},   {0x26F2, 0x26F3},   {0x26F5, 0x26F5},
    {0x26FA, 0x26FA},   {0x26FD, 0x26FD},   {0x2705, 0x2705},   {0x270A, 0x270B},
    {0x2728, 0x2728},   {0x274C, 0x274C},   {0x274E, 0x274E},   {0x2753, 0x2755},
    {0x2757, 0x2757},   {0x2795, 0x2797},   {0x27B0, 0x27B0},   {0x27BF, 0x27BF},
    {0x2B1B, 0x2B1C},   {0x2B50, 0x2B50},   {0x2B55, 0x2B55},   {0x2E80, 0x303E},
    {0x3041, 0x33FF},   {0x3400, 0x4DBF},   {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},
    {0xA960, 0xA97F},   {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE10, 0xFE19},
    {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},   {0x16FE0, 0x18DFF},
    {0x1AFF0, 0x1B2FF}, {0x1F004, 0x1F004}, {0x1F0CF, 0x1F0CF}, {0x1F18E, 0x1F18E},
    {0x1F191, 0x1F19A}, {0x1F200, 0x1F320}, {0x1F32D, 0x1F335}, {0x1F337, 0x1F37C},
    {0x1F37E, 0x1F393}, {0x1F3A0, 0x1F3CA}, {0x1F3CF, 0x1F3D3}, {0x1F3E0, 0x1F3F0},
    {0x1F3F4, 0x1F3F4}, {0x1F3F8, 0x1F43E}, {0x1F440, 0x1F440}, {0x1F442, 0x1F4FC},
    {0x1F4FF, 0x1F53D}, {0x1F54B, 0x1F54E}, {0x1F550, 0x1F567}, {0x1F57A, 0x1F57A},
    {0x1F595, 0x1F596}, {0x1F5A4, 0x1F5A4}, {0x1F5FB, 0x1F64F}, {0x1F680, 0x1F6C5},
    {0x1F6CC, 0x1F6CC}, {0x1F6D0, 0x1F6D2}, {0x1F6D5, 0x1F6D7}, {0x1F6DC, 0x1F6DF},
    {0x1F6EB, 0x1F6EC}, {0x1F6F4, 0x1F6FC}, {0x1F7E0, 0x1F7EB}, {0x1F7F0, 0x1F7F0},
    {0x1F90C, 0x1F93A}, {0x1F93C, 0x1F945}, {0x1F947, 0x1F9FF}, {0x1FA70, 0x1FAFF},
    {0x20000, 0x2FFFD}, {0x30000, 0x3FFFD},
};

constexpr CodePointRange zeroWidthRanges[] = {  // NOLINT(cppcoreguidelines-avoid-c-arrays,modernize-avoid-c-arrays)
    {0x00AD, 0x00AD},   {0x0300, 0x036F},   {0x0483, 0x0489},   {0x0591, 0x05BD},
    {0x05BF, 0x05BF},   {0x05C1, 0x05C2},   {0x05C4, 0x05C5},   {0x05C7, 0x05C7},
    {0x0610, 0x061A},   {0x061C, 0x061C},   {0x064B, 0x065F},   {0x0670, 0x0670},
    {0x06D6, 0x06DC},   {0x06DF, 0x06E4},   {0x06E7, 0x06E8},   {0x06EA, 0x06ED},
    {0x0711, 0x0711},   {0x0730, 0x074A},   {0x07A6, 0x07B0},   {0x07EB, 0x07F3},
    {0x0816, 0x0819},   {0x081B, 0x0823},   {0x0825, 0x0827},   {0x0829, 0x082D},
    {0x0859, 0x085B},   {0x08D3, 0x0902},   {0x093A, 0x093A},   {0x093C, 0x093C},
    {0x0941, 0x0948},   {0x094D, 0x094D},   {0x0951, 0x0957},   {0x0962, 0x0963},
    {0x0E31, 0x0E31},   {0x0E34, 0x0E3A},   {0x0E47, 0x0E4E},   {0x0EB1, 0x0EB1},
    {0x0EB4, 0x0EBC},   {0x0EC8, 0x0ECE},   {0x1160, 0x11FF},   {0x1AB0, 0x1ACE},
    {0x1DC0, 0x1DFF},   {0x200B, 0x200F},   {0x202A, 0x202E},   {0x2060, 0x2064},
    {0x20D0, 0x20F0},   {0x302A, 0x302D},   {0x3099, 0x309A},   {0xFE00, 0xFE0F},
    {0xFE20, 0xFE2F},   {0xFEFF, 0xFEFF},   {0x1F3FB, 0x1F3FF}, {0xE0001, 0xE007F},
    {0xE0100, 0xE01EF},
};
// clang-format on

template <std::size_t count>
bool contains(const CodePointRange (&ranges)[count], char32_t codePoint) noexcept {  // NOLINT
    const auto* const found =
        std::lower_bound(std::begin(ranges), std::end(ranges), codePoint,
                         [](const CodePointRange& range, char32_t c) { return range.last < c; });
    return found != std::end(ranges) && found->first <= codePoint;
}

struct LeadByte {
    std::size_t length;
    unsigned char payload;
    char32_t smallest;  ///< what is shorter in a longer form is no UTF-8
};

LeadByte leadByte(unsigned char byte) noexcept {
    if (byte < 0x80) {
        return {1, byte, 0};
    }
    if ((byte & 0xE0) == 0xC0) {
        return {2, static_cast<unsigned char>(byte & 0x1F), 0x80};
    }
    if ((byte & 0xF0) == 0xE0) {
        return {3, static_cast<unsigned char>(byte & 0x0F), 0x800};
    }
    if ((byte & 0xF8) == 0xF0) {
        return {4, static_cast<unsigned char>(byte & 0x07), 0x10000};
    }
    return {0, 0, 0};
}

bool isScalarValue(char32_t codePoint) noexcept {
    return codePoint <= 0x10FFFF && (codePoint < 0xD800 || codePoint > 0xDFFF);
}

/** Line and paragraph separators, and what turns the direction of the text around it. */
bool changesLayout(char32_t codePoint) noexcept {
    return codePoint == 0x061C || codePoint == 0x200E || codePoint == 0x200F ||
           (codePoint >= 0x2028 && codePoint <= 0x202E) ||
           (codePoint >= 0x2066 && codePoint <= 0x2069);
}

/** JSON has an escape of its own for what lies below. */
bool isHarmfulInDocument(char32_t codePoint) noexcept {
    return codePoint >= 0x7F && (isControlCharacter(codePoint) || changesLayout(codePoint));
}

std::size_t widthOf(char32_t codePoint) noexcept {
    if (contains(zeroWidthRanges, codePoint)) {
        return 0;
    }
    return contains(wideRanges, codePoint) ? 2 : 1;
}

}  // namespace

Character characterAt(std::string_view text, std::size_t position) noexcept {
    constexpr Character invalid{0, 1, false};
    const auto lead = leadByte(static_cast<unsigned char>(text[position]));
    if (lead.length == 0 || position + lead.length > text.size()) {
        return invalid;
    }
    char32_t codePoint = lead.payload;
    for (std::size_t i = 1; i < lead.length; ++i) {
        const auto byte = static_cast<unsigned char>(text[position + i]);
        if ((byte & 0xC0) != 0x80) {
            return invalid;
        }
        codePoint = (codePoint << 6U) | (byte & 0x3FU);
    }
    if (codePoint < lead.smallest || !isScalarValue(codePoint)) {
        return invalid;
    }
    return {codePoint, lead.length, true};
}

bool isWellFormed(std::string_view text) noexcept {
    for (std::size_t i = 0; i < text.size();) {
        const auto character = characterAt(text, i);
        if (!character.isValid) {
            return false;
        }
        i += character.length;
    }
    return true;
}

bool isControlCharacter(char32_t codePoint) noexcept {
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
}

std::string printable(std::string_view text) {
    std::string shown;
    for (std::size_t i = 0; i < text.size();) {
        const auto character = characterAt(text, i);
        if (character.isValid && !isControlCharacter(character.codePoint) &&
            !changesLayout(character.codePoint)) {
            shown += text.substr(i, character.length);
        } else {
            shown += replacementCharacter;
        }
        i += character.length;
    }
    return shown;
}

std::string escapedDocument(std::string json) {
    std::string escaped;
    std::size_t taken = 0;
    for (std::size_t i = 0; i < json.size();) {
        const auto character = characterAt(json, i);
        if (character.isValid && isHarmfulInDocument(character.codePoint)) {
            escaped.append(json, taken, i - taken);
            escaped += fmt::format("\\u{:04x}", static_cast<unsigned>(character.codePoint));
            taken = i + character.length;
        }
        i += character.length;
    }
    if (taken == 0) {
        return json;  // as hardly any document holds one, a large one is not copied
    }
    escaped.append(json, taken);
    return escaped;
}

std::string asciiOf(std::string_view text) {
    std::string ascii;
    for (std::size_t i = 0; i < text.size();) {
        const auto character = characterAt(text, i);
        if (character.isValid && character.codePoint < 0x80) {
            ascii += text[i];
        } else if (!character.isValid || widthOf(character.codePoint) > 0) {
            ascii += '?';
        }
        i += character.length;
    }
    return ascii;
}

std::size_t displayWidth(std::string_view text) noexcept {
    std::size_t width = 0;
    for (std::size_t i = 0; i < text.size();) {
        const auto character = characterAt(text, i);
        width += character.isValid ? widthOf(character.codePoint) : 1;
        i += character.length;
    }
    return width;
}

std::string shortened(std::string_view text, std::size_t width, CharacterSet characters) {
    if (displayWidth(text) <= width) {
        return std::string(text);
    }
    const std::string_view sign = characters == CharacterSet::utf8 ? "\u2026" : "..";
    const std::size_t room = width - std::min(width, displayWidth(sign));
    std::string kept;
    while (!text.empty()) {
        const auto length = characterAt(text, 0).length;
        if (displayWidth(kept) + displayWidth(text.substr(0, length)) > room) {
            break;
        }
        kept += text.substr(0, length);
        text.remove_prefix(length);
    }
    return kept.append(sign);
}

std::string shortenedInFront(std::string_view text, std::size_t width, CharacterSet characters) {
    if (displayWidth(text) <= width) {
        return std::string(text);
    }
    std::string cut(characters == CharacterSet::utf8 ? "\u2026" : "..");
    const std::size_t room = width - std::min(width, displayWidth(cut));
    while (displayWidth(text) > room) {
        text.remove_prefix(characterAt(text, 0).length);
    }
    return cut.append(text);
}

}  // namespace browsersweep::cli
