#include "browsersweep/documents/propertylist/internal/TextPropertyList.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/internal/UTF16.h"

namespace browsersweep {
namespace {

constexpr std::string_view whiteSpace = " \t\r\n\v\f";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// The second half of the character set in which octal escapes are written; the first is ASCII.
// clang-format off
constexpr std::array<char16_t, 128> nextStep = {
    0x00A0, 0x00C0, 0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C7,
    0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC, 0x00CD, 0x00CE, 0x00CF,
    0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D9,
    0x00DA, 0x00DB, 0x00DC, 0x00DD, 0x00DE, 0x00B5, 0x00D7, 0x00F7,
    0x00A9, 0x00A1, 0x00A2, 0x00A3, 0x2044, 0x00A5, 0x0192, 0x00A7,
    0x00A4, 0x2019, 0x201C, 0x00AB, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x00AE, 0x2013, 0x2020, 0x2021, 0x00B7, 0x00A6, 0x00B6, 0x2022,
    0x201A, 0x201E, 0x201D, 0x00BB, 0x2026, 0x2030, 0x00AC, 0x00BF,
    0x00B9, 0x02CB, 0x00B4, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9,
    0x00A8, 0x00B2, 0x02DA, 0x00B8, 0x00B3, 0x02DD, 0x02DB, 0x02C7,
    0x2014, 0x00B1, 0x00BC, 0x00BD, 0x00BE, 0x00E0, 0x00E1, 0x00E2,
    0x00E3, 0x00E4, 0x00E5, 0x00E7, 0x00E8, 0x00E9, 0x00EA, 0x00EB,
    0x00EC, 0x00C6, 0x00ED, 0x00AA, 0x00EE, 0x00EF, 0x00F0, 0x00F1,
    0x0141, 0x00D8, 0x0152, 0x00BA, 0x00F2, 0x00F3, 0x00F4, 0x00F5,
    0x00F6, 0x00E6, 0x00F9, 0x00FA, 0x00FB, 0x0131, 0x00FC, 0x00FD,
    0x0142, 0x00F8, 0x0153, 0x00DF, 0x00FE, 0x00FF, 0xFFFD, 0xFFFD,
};
// clang-format on

std::optional<unsigned> hexadecimalDigit(char character) noexcept {
    if (character >= '0' && character <= '9') {
        return static_cast<unsigned>(character - '0');
    }
    const char lower = static_cast<char>(character | 0x20);
    return lower >= 'a' && lower <= 'f' ? std::optional(static_cast<unsigned>(lower - 'a') + 10)
                                        : std::nullopt;
}

bool isWordCharacter(char character) noexcept {
    constexpr std::string_view others = "_$/:.-";
    const char lower = static_cast<char>(character | 0x20);
    return (lower >= 'a' && lower <= 'z') || (character >= '0' && character <= '9') ||
           others.find(character) != std::string_view::npos;
}

// A text from escapes that may give the halves of a character one by one.
class EscapedText {
public:
    void append(char character) {
        requireWhole();
        text_.push_back(character);
    }
    void appendUnit(std::uint32_t unit) {
        const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
        if (high_ != 0 && isLow) {
            appendUTF8(text_, 0x10000 + ((high_ - 0xD800) << 10) + (unit - 0xDC00));
            high_ = 0;
            return;
        }
        requireWhole();
        if (isLow) {
            throw DecodingError::dataCorrupted("a text property list holds half a character");
        }
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            high_ = unit;
        } else {
            appendUTF8(text_, unit);
        }
    }
    std::string take() {
        requireWhole();
        return std::move(text_);
    }

private:
    void requireWhole() const {
        if (high_ != 0) {
            throw DecodingError::dataCorrupted("a text property list holds half a character");
        }
    }

    std::string text_;
    std::uint32_t high_ = 0;
};

class Reader {
public:
    explicit Reader(std::string_view text) noexcept
        : text_(text), valuesLeft_(fewValues + text.size() / bytesPerValue) {}

    PropertyList read();

private:
    // A value takes much more room than the two characters that it may have in a text. No program
    // writes so many with so little in them.
    static constexpr std::size_t fewValues = std::size_t{1} << 14;
    static constexpr std::size_t bytesPerValue = 64;

    void countValue();
    bool atEnd() const noexcept { return position_ == text_.size(); }
    char peek() const noexcept { return atEnd() ? '\0' : text_[position_]; }
    bool takeIf(char character) noexcept;
    void skip();
    void skipComment();
    std::string word();
    std::string quoted(char quote);
    void escape(EscapedText& text);
    std::uint32_t number(unsigned base, std::size_t maximumLength);
    std::string text();
    Bytes data();
    PropertyList value(std::size_t depth);
    PropertyList array(std::size_t depth);
    PropertyList dictionary(std::size_t depth);
    PropertyList::Dictionary entries(std::size_t depth);

    std::string_view text_;
    std::size_t valuesLeft_;
    std::size_t position_ = 0;
};

void Reader::countValue() {
    if (valuesLeft_ == 0) {
        throw DecodingError::dataCorrupted(
            "a text property list holds more values than its length allows");
    }
    --valuesLeft_;
}

PropertyList Reader::read() {
    skip();
    if (atEnd()) {
        return PropertyList::dictionary({});
    }
    const std::size_t start = position_;
    PropertyList root = value(0);
    skip();
    if (atEnd()) {
        return root;
    }
    if (root.kind() != PropertyList::Kind::string) {
        throw DecodingError::dataCorrupted("something follows the value of a text property list");
    }
    // A text that something follows can only be the first key of a strings file.
    position_ = start;
    PropertyList::Dictionary found = entries(1);
    if (!atEnd()) {
        throw DecodingError::dataCorrupted("something follows the entries of a text property list");
    }
    return PropertyList::dictionary(std::move(found));
}

bool Reader::takeIf(char character) noexcept {
    const bool isNext = !atEnd() && text_[position_] == character;
    position_ += isNext ? 1 : 0;
    return isNext;
}

void Reader::skip() {
    while (true) {
        position_ = std::min(text_.find_first_not_of(whiteSpace, position_), text_.size());
        const std::string_view next = text_.substr(position_, 2);
        if (next != "//" && next != "/*") {
            return;
        }
        skipComment();
    }
}

void Reader::skipComment() {
    if (text_.substr(position_, 2) == "//") {
        position_ = std::min(text_.find_first_of("\r\n", position_), text_.size());
        return;
    }
    const std::size_t end = text_.find("*/", position_ + 2);
    if (end == std::string_view::npos) {
        throw DecodingError::dataCorrupted("a comment of a text property list does not end");
    }
    position_ = end + 2;
}

std::string Reader::word() {
    const std::size_t start = position_;
    while (!atEnd() && isWordCharacter(peek())) {
        ++position_;
    }
    if (position_ == start) {
        throw DecodingError::dataCorrupted(
            "a text property list holds a character that begins no value");
    }
    return std::string(text_.substr(start, position_ - start));
}

std::string Reader::quoted(char quote) {
    EscapedText result;
    while (!atEnd()) {
        const char character = text_[position_++];
        if (character == quote) {
            return result.take();
        }
        if (character == '\\') {
            escape(result);
        } else {
            result.append(character);
        }
    }
    throw DecodingError::dataCorrupted("a text in quotes does not end");
}

void Reader::escape(EscapedText& text) {
    constexpr std::string_view letters = "abfnrtv";
    constexpr std::string_view meanings = "\a\b\f\n\r\t\v";
    const char character = peek();
    if (character >= '0' && character <= '7') {
        const std::uint32_t code = number(8, 3) & 0xFFU;
        text.appendUnit(code < 0x80 ? code : nextStep.at(code - 0x80));
        return;
    }
    if (atEnd()) {
        return;
    }
    ++position_;
    const std::size_t letter = letters.find(character);
    if (character == 'U') {
        text.appendUnit(number(16, 4));
    } else {
        text.append(letter == std::string_view::npos ? character : meanings[letter]);
    }
}

std::uint32_t Reader::number(unsigned base, std::size_t maximumLength) {
    std::uint32_t value = 0;
    for (std::size_t length = 0; length < maximumLength; ++length) {
        const std::optional<unsigned> digit = hexadecimalDigit(peek());
        if (!digit || *digit >= base) {
            break;
        }
        value = value * base + *digit;
        ++position_;
    }
    return value;
}

std::string Reader::text() {
    if (takeIf('"')) {
        return quoted('"');
    }
    return takeIf('\'') ? quoted('\'') : word();
}

Bytes Reader::data() {
    Bytes bytes;
    std::optional<unsigned> high;
    while (!takeIf('>')) {
        const char character = peek();
        if (whiteSpace.find(character) != std::string_view::npos && !atEnd()) {
            ++position_;
            continue;
        }
        const std::optional<unsigned> digit = hexadecimalDigit(character);
        if (!digit) {
            throw DecodingError::dataCorrupted(
                "the data of a text property list is not hexadecimal");
        }
        ++position_;
        if (high) {
            bytes.push_back(static_cast<std::uint8_t>(*high << 4 | *digit));
            high.reset();
        } else {
            high = digit;
        }
    }
    if (high) {
        throw DecodingError::dataCorrupted("the data of a text property list ends within a byte");
    }
    return bytes;
}

PropertyList Reader::value(std::size_t depth) {
    countValue();
    if (takeIf('<')) {
        return PropertyList::data(data());
    }
    if (peek() != '(' && peek() != '{') {
        return PropertyList::string(text());
    }
    if (depth == PropertyList::maximumDepth) {
        throw DecodingError::dataCorrupted("a text property list is nested too deeply");
    }
    return takeIf('(') ? array(depth + 1) : dictionary(depth + 1);
}

PropertyList Reader::array(std::size_t depth) {
    PropertyList::Array values;
    skip();
    while (!takeIf(')')) {
        values.push_back(value(depth));
        skip();
        if (takeIf(',')) {
            skip();
        } else if (peek() != ')') {
            throw DecodingError::dataCorrupted("a list of a text property list does not end");
        }
    }
    return PropertyList::array(std::move(values));
}

PropertyList Reader::dictionary(std::size_t depth) {
    ++position_;
    PropertyList::Dictionary found = entries(depth);
    if (!takeIf('}')) {
        throw DecodingError::dataCorrupted("a dictionary of a text property list does not end");
    }
    return PropertyList::dictionary(std::move(found));
}

// The entries up to a closing brace or to the end of the text.
PropertyList::Dictionary Reader::entries(std::size_t depth) {
    PropertyList::Dictionary found;
    skip();
    while (!atEnd() && peek() != '}') {
        std::string key = text();
        skip();
        // A key alone stands for itself.
        std::optional<PropertyList> element;
        if (takeIf('=')) {
            skip();
            element = value(depth);
            skip();
        } else {
            countValue();
            element = PropertyList::string(key);
        }
        if (!takeIf(';')) {
            throw DecodingError::dataCorrupted("an entry of a text property list does not end");
        }
        found.push_back({std::move(key), std::move(*element)});
        skip();
    }
    return found;
}

std::string decoded(BytesView bytes) {
    const bool hasMark = bytes.size() >= 2;
    const bool isBig = hasMark && bytes[0] == 0xFE && bytes[1] == 0xFF;
    const bool isLittle = hasMark && bytes[0] == 0xFF && bytes[1] == 0xFE;
    std::optional<std::string> text;
    if (isBig || isLittle) {
        text =
            utf8FromUTF16(bytes.subspan(2), isBig ? ByteOrder::bigEndian : ByteOrder::littleEndian);
    } else {
        text = std::string(bytes.begin(), bytes.end());
        if (text->starts_with(byteOrderMark)) {
            text->erase(0, byteOrderMark.size());
        }
    }
    if (!text || !isUTF8(*text)) {
        throw DecodingError::dataCorrupted(
            "the bytes are no property list: neither binary nor text");
    }
    return *std::move(text);
}

}  // namespace

BytesView withoutLeadingWhiteSpace(BytesView bytes) noexcept {
    constexpr std::string_view skipped = " \t\r\n";
    BytesView rest = bytes;
    if (rest.size() >= byteOrderMark.size() &&
        std::equal(byteOrderMark.begin(), byteOrderMark.end(), rest.begin(),
                   [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; })) {
        rest = rest.subspan(byteOrderMark.size());
    }
    while (!rest.empty() && skipped.find(static_cast<char>(rest[0])) != std::string_view::npos) {
        rest = rest.subspan(1);
    }
    return rest;
}

PropertyList parseTextPropertyList(BytesView bytes) {
    const std::string text = decoded(bytes);
    return Reader(text).read();
}

}  // namespace browsersweep
