#include "browsersweep/documents/internal/UTF16.h"

#include <cstddef>
#include <cstdint>

namespace browsersweep {
namespace {

constexpr char32_t firstSupplementary = 0x10000;
constexpr char32_t lastCodePoint = 0x10FFFF;

bool isHighSurrogate(char32_t unit) noexcept {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool isLowSurrogate(char32_t unit) noexcept {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

std::size_t lengthFromLead(std::uint8_t lead) noexcept {
    if (lead < 0x80) {
        return 1;
    }
    if (lead < 0xC2) {
        return 0;
    }
    if (lead < 0xE0) {
        return 2;
    }
    return lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
}

// The code point at the text's start, which is removed from the text; nothing if it is malformed.
std::optional<char32_t> takeCodePoint(std::string_view& text) noexcept {
    const auto lead = static_cast<std::uint8_t>(text.front());
    const std::size_t length = lengthFromLead(lead);
    if (length == 0 || length > text.size()) {
        return std::nullopt;
    }
    char32_t codePoint = length == 1 ? lead : lead & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index) {
        const auto next = static_cast<std::uint8_t>(text[index]);
        if ((next & 0xC0U) != 0x80U) {
            return std::nullopt;
        }
        codePoint = (codePoint << 6) | (next & 0x3FU);
    }
    const bool overlong =
        (length == 3 && codePoint < 0x800) || (length == 4 && codePoint < firstSupplementary);
    if (overlong || codePoint > lastCodePoint || isHighSurrogate(codePoint) ||
        isLowSurrogate(codePoint)) {
        return std::nullopt;
    }
    text.remove_prefix(length);
    return codePoint;
}

void appendUnit(Bytes& bytes, char32_t unit) {
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFFU));
}

char32_t unitAt(BytesView bytes, std::size_t index, ByteOrder order) noexcept {
    const char32_t first = bytes[index];
    const char32_t second = bytes[index + 1];
    return order == ByteOrder::bigEndian ? (first << 8) | second : (second << 8) | first;
}

}  // namespace

bool isUTF8(std::string_view text) noexcept {
    while (!text.empty()) {
        if (!takeCodePoint(text)) {
            return false;
        }
    }
    return true;
}

void appendUTF8(std::string& text, char32_t codePoint) {
    const auto append = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (codePoint < 0x80) {
        append(codePoint);
        return;
    }
    if (codePoint < 0x800) {
        append(0xC0U | (codePoint >> 6));
    } else if (codePoint < firstSupplementary) {
        append(0xE0U | (codePoint >> 12));
        append(0x80U | ((codePoint >> 6) & 0x3FU));
    } else {
        append(0xF0U | (codePoint >> 18));
        append(0x80U | ((codePoint >> 12) & 0x3FU));
        append(0x80U | ((codePoint >> 6) & 0x3FU));
    }
    append(0x80U | (codePoint & 0x3FU));
}

std::optional<std::string> utf8FromUTF16(BytesView bytes, ByteOrder order) {
    if (bytes.size() % 2 != 0) {
        return std::nullopt;
    }
    std::string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t index = 0; index < bytes.size(); index += 2) {
        char32_t unit = unitAt(bytes, index, order);
        if (isHighSurrogate(unit) && bytes.size() - index >= 4) {
            const char32_t low = unitAt(bytes, index + 2, order);
            if (isLowSurrogate(low)) {
                unit = firstSupplementary + ((unit - 0xD800) << 10) + (low - 0xDC00);
                index += 2;
            }
        }
        if (isHighSurrogate(unit) || isLowSurrogate(unit)) {
            return std::nullopt;
        }
        appendUTF8(text, unit);
    }
    return text;
}

Bytes utf16BigEndianFromUTF8(std::string_view text) {
    Bytes bytes;
    bytes.reserve(text.size() * 2);
    while (!text.empty()) {
        const std::optional<char32_t> codePoint = takeCodePoint(text);
        if (!codePoint) {
            break;
        }
        if (*codePoint < firstSupplementary) {
            appendUnit(bytes, *codePoint);
        } else {
            appendUnit(bytes, 0xD800 + ((*codePoint - firstSupplementary) >> 10));
            appendUnit(bytes, 0xDC00 + ((*codePoint - firstSupplementary) & 0x3FFU));
        }
    }
    return bytes;
}

}  // namespace browsersweep
