#include "browsersweep/profiles/firefox/IniFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

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

/** A line without its comment. */
std::string_view contentOf(std::string_view line) noexcept {
    return line.substr(0, line.find(';'));
}

/** Tells of the properties up to the next header, in their order. */
template <typename Visit>
void forEachProperty(std::string_view below, Visit visit) {
    for (auto rest = std::optional(below); rest;) {
        const std::string_view content = contentOf(takeLine(rest));
        if (sectionIn(content)) {
            return;
        }
        if (const auto property = propertyIn(content)) {
            visit(*property);
        }
    }
}

}  // namespace

std::optional<std::string> IniFile::Section::find(std::string_view key) const {
    std::optional<std::string> found;
    forEachProperty(below_, [&](const Property& property) {
        if (property.key == key) {
            found = std::string(property.value);
        }
    });
    return found;
}

IniFile::Properties IniFile::Section::properties() const {
    Properties found;
    forEachProperty(below_, [&found](const Property& property) {
        found[std::string(property.key)] = property.value;
    });
    return found;
}

std::vector<IniFile::Header> IniFile::headersIn(std::string_view text) {
    constexpr std::size_t shortestHeader = std::string_view("[s]\n").size();
    std::vector<Header> headers;
    // More would have to be copied in growing, and what is not used costs nothing.
    headers.reserve(text.size() / shortestHeader + 1);
    for (auto rest = std::optional(text); rest;) {
        if (const auto name = sectionIn(contentOf(takeLine(rest)))) {
            const auto place = static_cast<std::size_t>(name->data() - text.data());
            headers.push_back({place, name->size()});
        }
    }
    return headers;
}

std::string_view IniFile::nameIn(const Header& header) const noexcept {
    return std::string_view(text_).substr(header.place, header.length);
}

IniFile::IniFile(std::string_view text) : text_(text), headers_(headersIn(text_)) {
    // The last of equal names first, which is the one that stays.
    std::sort(headers_.begin(), headers_.end(), [this](const Header& a, const Header& b) {
        const int order = nameIn(a).compare(nameIn(b));
        return order == 0 ? a.place > b.place : order < 0;
    });
    const auto isSameName = [this](const Header& a, const Header& b) {
        return nameIn(a) == nameIn(b);
    };
    headers_.erase(std::unique(headers_.begin(), headers_.end(), isSameName), headers_.end());
}

IniFile::Section IniFile::section(std::size_t number) const {
    const Header& header = headers_.at(number);
    auto below = std::optional(std::string_view(text_).substr(header.place));
    takeLine(below);
    return {nameIn(header), below.value_or(std::string_view())};
}

IniFile::Sections IniFile::sections() const {
    Sections found;
    for (std::size_t number = 0; number < headers_.size(); ++number) {
        const Section each = section(number);
        found.emplace(each.name(), each.properties());
    }
    return found;
}

}  // namespace browsersweep
