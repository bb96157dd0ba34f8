#include "browsersweep/binarycoding/StringEncoding.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace browsersweep {
namespace {

constexpr std::uint8_t firstNonASCII = 0x80;

std::uint8_t byteOf(char character) noexcept {
    return static_cast<std::uint8_t>(character);
}

bool isASCII(std::string_view text) noexcept {
    // Without an early end compilers look at many bytes at once.
    unsigned bits = 0;
    for (const char character : text) {
        bits |= byteOf(character);
    }
    return bits < firstNonASCII;
}

// One well-formed UTF-8 sequence: its lead bytes and the range of the byte after the lead.
struct Sequence {
    std::uint8_t firstLead;
    std::uint8_t lastLead;
    std::size_t length;
    std::uint8_t low;
    std::uint8_t high;
};

// clang-format off
constexpr std::array<Sequence, 9> sequences{{
    {0x00, 0x7F, 1, 0x00, 0x00},
    {0xC2, 0xDF, 2, 0x80, 0xBF},
    {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF},
    {0xED, 0xED, 3, 0x80, 0x9F},
    {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF},
    {0xF1, 0xF3, 4, 0x80, 0xBF},
    {0xF4, 0xF4, 4, 0x80, 0x8F},
}};
// clang-format on

bool isContinuation(char character) noexcept {
    return (byteOf(character) & 0xC0U) == 0x80U;
}

// The length of the sequence at the start of the text, 0 where there is no valid one.
std::size_t sequenceLength(std::string_view text) noexcept {
    const auto* const row =
        std::find_if(sequences.begin(), sequences.end(), [&](const Sequence& sequence) {
            return byteOf(text[0]) >= sequence.firstLead && byteOf(text[0]) <= sequence.lastLead;
        });
    if (row == sequences.end() || text.size() < row->length) {
        return 0;
    }
    if (row->length > 1 && (byteOf(text[1]) < row->low || byteOf(text[1]) > row->high)) {
        return 0;
    }
    const std::string_view rest = text.substr(1, row->length - 1);
    return std::all_of(rest.begin(), rest.end(), isContinuation) ? row->length : 0;
}

bool isUTF8(std::string_view text) noexcept {
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string textOfLatin1(std::string_view bytes) {
    std::string text;
    for (const char character : bytes) {
        const std::uint8_t byte = byteOf(character);
        if (byte < firstNonASCII) {
            text.push_back(character);
        } else {
            text.push_back(static_cast<char>(0xC0U | (byte >> 6U)));
            text.push_back(static_cast<char>(0x80U | (byte & 0x3FU)));
        }
    }
    return text;
}

std::optional<std::string> latin1OfText(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        const std::uint8_t lead = byteOf(text[0]);
        if (length == 0 || length > 2 || lead > 0xC3U) {
            return std::nullopt;
        }
        bytes.push_back(
            length == 1 ? text[0]
                        : static_cast<char>(((lead & 0x03U) << 6U) | (byteOf(text[1]) & 0x3FU)));
        text.remove_prefix(length);
    }
    return bytes;
}

std::optional<std::string> textIf(bool isValid, std::string_view text) {
    return isValid ? std::optional<std::string>(text) : std::nullopt;
}

}  // namespace

std::string_view displayName(StringEncoding encoding) noexcept {
    constexpr std::array<std::string_view, 3> names{"ASCII", "UTF-8", "ISO-8859-1"};
    return names.at(static_cast<std::size_t>(encoding));
}

std::optional<std::string> decodedText(std::span<const std::uint8_t> bytes,
                                       StringEncoding encoding) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (encoding == StringEncoding::isoLatin1) {
        return textOfLatin1(text);
    }
    return textIf(encoding == StringEncoding::ascii ? isASCII(text) : isUTF8(text), text);
}

std::optional<std::string> encodedText(std::string_view text, StringEncoding encoding) {
    if (encoding == StringEncoding::isoLatin1) {
        return latin1OfText(text);
    }
    return textIf(encoding == StringEncoding::ascii ? isASCII(text) : isUTF8(text), text);
}

}  // namespace browsersweep
