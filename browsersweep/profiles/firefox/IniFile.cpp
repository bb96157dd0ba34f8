#include "browsersweep/profiles/firefox/IniFile.h"

#include <array>
#include <cstddef>
#include <optional>
#include <utility>

#include "browsersweep/platform/internal/Text.h"

namespace browsersweep {
namespace {

// What a line gives is fixed by three regular expressions, which read as follows. Run by an engine,
// they try every start of a long word again and again; read by hand, a line takes linear time.
//
//     comment   ^([^;]+)[;]?.*$
//     section   ^\s*\[(.+?)\]
//     property  (\S+)\s?=\s?(\S+)

// clang-format off
/** The white space of those expressions, which is that of Unicode, as UTF-8. */
constexpr std::array<std::string_view, 25> whiteSpace{
    " ", "\t", "\n", "\v", "\f", "\r", "\xC2\x85", "\xC2\xA0", "\xE1\x9A\x80",
    "\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82", "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85",
    "\xE2\x80\x86", "\xE2\x80\x87", "\xE2\x80\x88", "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xA8",
    "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F", "\xE3\x80\x80"};
// clang-format on

/** The length of the white-space character at a place; 0 if there is none. */
std::size_t whiteSpaceAt(std::string_view line, std::size_t place) noexcept {
    constexpr unsigned char firstBeyondASCII = 0xC2;
    const auto byte = place < line.size() ? static_cast<unsigned char>(line[place]) : ' ';
    if (byte > ' ' && byte < firstBeyondASCII) {
        return 0;
    }
    for (const std::string_view character : whiteSpace) {
        if (line.compare(place, character.size(), character) == 0) {
            return character.size();
        }
    }
    return 0;
}

std::size_t skipWhiteSpace(std::string_view line, std::size_t place) noexcept {
    while (place < line.size()) {
        const std::size_t length = whiteSpaceAt(line, place);
        if (length == 0) {
            break;
        }
        place += length;
    }
    return place;
}

/** Where the word that begins at a place ends. */
std::size_t endOfWord(std::string_view line, std::size_t place) noexcept {
    while (place < line.size() && whiteSpaceAt(line, place) == 0) {
        ++place;
    }
    return place;
}

std::string_view piece(std::string_view line, std::size_t start, std::size_t end) noexcept {
    return line.substr(start, end - start);
}

std::optional<std::string_view> sectionIn(std::string_view line) noexcept {
    const std::size_t start = skipWhiteSpace(line, 0);
    if (line.substr(start, 1) != "[") {
        return std::nullopt;
    }
    // A name has at least one character, which may be the bracket itself.
    const std::size_t end = line.find(']', start + 2);
    return end == std::string_view::npos ? std::nullopt
                                         : std::optional(piece(line, start + 1, end));
}

/** The word after a "=", which one white-space character may stand before. */
std::optional<std::string_view> valueAt(std::string_view line, std::size_t place) noexcept {
    const std::size_t start = place + whiteSpaceAt(line, place);
    if (start == line.size() || whiteSpaceAt(line, start) != 0) {
        return std::nullopt;
    }
    return piece(line, start, endOfWord(line, start));
}

struct Property {
    std::string_view key;
    std::string_view value;
};

/** A property whose key begins with the word. The longest key that leads to one counts. */
std::optional<Property> propertyIn(std::string_view line, std::size_t start,
                                   std::size_t end) noexcept {
    const std::size_t next = end + (end < line.size() ? whiteSpaceAt(line, end) : 0);
    if (next > end && line.substr(next, 1) == "=") {
        if (const auto value = valueAt(line, next + 1)) {
            return Property{piece(line, start, end), *value};
        }
    }
    const std::string_view word = piece(line, start, end);
    if (word.size() > 1 && word.back() == '=') {
        if (const auto value = valueAt(line, end)) {
            return Property{word.substr(0, word.size() - 1), *value};
        }
    }
    const std::size_t sign = word.size() > 2 ? word.rfind('=', word.size() - 2) : 0;
    if (sign == 0 || sign == std::string_view::npos) {
        return std::nullopt;
    }
    return Property{word.substr(0, sign), word.substr(sign + 1)};
}

/** The first property of a line. A word that is no key holds none either. */
std::optional<Property> propertyIn(std::string_view line) noexcept {
    std::size_t start = skipWhiteSpace(line, 0);
    while (start < line.size()) {
        const std::size_t end = endOfWord(line, start);
        if (const auto property = propertyIn(line, start, end)) {
            return property;
        }
        start = skipWhiteSpace(line, end);
    }
    return std::nullopt;
}

/** The sections read so far, and the one that the next property goes to. */
class Parser {
public:
    void parseLine(std::string_view line) {
        const std::string_view content = line.substr(0, line.find(';'));
        if (content.find_first_not_of(" \t") == std::string_view::npos) {
            return;
        }
        if (const auto section = sectionIn(content)) {
            currentSection_ = &(sections_[std::string(*section)] = {});
            return;
        }
        const auto property = currentSection_ == nullptr ? std::nullopt : propertyIn(content);
        if (property) {
            (*currentSection_)[std::string(property->key)] = property->value;
        }
    }

    IniFile::Sections takeSections() { return std::exchange(sections_, {}); }

private:
    IniFile::Sections sections_;
    IniFile::Properties* currentSection_ = nullptr;  // values of a map stay where they are
};

}  // namespace

IniFile::IniFile(std::string_view text) {
    Parser parser;
    for (const std::string_view line : lines(text)) {
        parser.parseLine(line);
    }
    sections_ = parser.takeSections();
}

}  // namespace browsersweep
