#include "cli/Text.h"

#include <algorithm>

#include <fmt/format.h>

#include "cli/CharacterWidth.h"

namespace browsersweep::cli {
namespace {

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

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
        } else if (!character.isValid || characterWidth(character.codePoint) > 0) {
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
        width += character.isValid ? characterWidth(character.codePoint) : 1;
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
