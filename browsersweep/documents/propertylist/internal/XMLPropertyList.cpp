#include "browsersweep/documents/propertylist/internal/XMLPropertyList.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <expat.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/propertylist/internal/PropertyListScalars.h"
#include "browsersweep/documents/propertylist/internal/TextPropertyList.h"

namespace browsersweep {
namespace {

struct ParserDeleter {
    void operator()(XML_Parser parser) const noexcept { XML_ParserFree(parser); }
};
using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, ParserDeleter>;

enum class Element { plist, array, dictionary, key, string, integer, real, date, data, yes, no };

std::optional<Element> elementNamed(std::string_view name) noexcept {
    // clang-format off
    static constexpr std::pair<std::string_view, Element> elements[] = {  // NOLINT(*-c-arrays)
        {"plist",   Element::plist},   {"array", Element::array}, {"dict", Element::dictionary},
        {"key",     Element::key},     {"string", Element::string},
        {"integer", Element::integer}, {"real",  Element::real},  {"date", Element::date},
        {"data",    Element::data},    {"true",  Element::yes},   {"false", Element::no},
    };
    // clang-format on
    const auto* const found = std::find_if(std::begin(elements), std::end(elements),
                                           [name](const auto& row) { return row.first == name; });
    return found == std::end(elements) ? std::nullopt : std::optional(found->second);
}

bool isContainer(Element element) noexcept {
    return element == Element::array || element == Element::dictionary;
}

std::optional<PropertyList> scalar(Element element, std::string&& text) {
    switch (element) {
        case Element::string:
            return PropertyList::string(std::move(text));
        case Element::integer:
            return integerFromText(text);
        case Element::real:
            return realFromText(text);
        case Element::date:
            return dateFromText(text);
        case Element::data:
            return dataFromBase64(text);
        case Element::yes:
        case Element::no:
            return text.empty() ? std::optional(PropertyList::boolean(element == Element::yes))
                                : std::nullopt;
        case Element::plist:
        case Element::array:
        case Element::dictionary:
        case Element::key:
            break;
    }
    return std::nullopt;
}

/**
 * Builds the value from expat's events. An error is kept and ends the parsing: no exception may
 * pass through the parser, which is C. Running out of memory within it ends the process.
 */
class Builder {
public:
    explicit Builder(XML_Parser parser) noexcept : parser_(parser) {}

    void start(std::string_view name);
    void end();
    void text(std::string_view characters);
    void fail(std::string_view description);

    const std::string& error() const noexcept { return error_; }
    std::optional<PropertyList> takeRoot() noexcept { return std::move(root_); }

private:
    struct Container {
        bool isDictionary;
        std::optional<std::string> key;
        PropertyList::Array values;
        PropertyList::Dictionary entries;
    };

    bool mayStart(Element element) const noexcept;
    void finish(PropertyList value);
    void finishContainer();

    XML_Parser parser_;
    std::string error_;
    std::vector<Container> containers_;
    std::optional<Element> leaf_;
    std::string text_;
    bool hasPlist_ = false;
    std::optional<PropertyList> root_;
};

void Builder::fail(std::string_view description) {
    if (error_.empty()) {
        error_ = description;
        XML_StopParser(parser_, XML_FALSE);
    }
}

bool Builder::mayStart(Element element) const noexcept {
    if (leaf_) {
        return false;
    }
    if (element == Element::plist) {
        return containers_.empty() && !hasPlist_;
    }
    if (containers_.empty()) {
        return element != Element::key && !root_;
    }
    const Container& container = containers_.back();
    const bool keyIsDue = container.isDictionary && !container.key;
    return keyIsDue == (element == Element::key);
}

void Builder::start(std::string_view name) {
    const std::optional<Element> element = elementNamed(name);
    if (!element || !mayStart(*element)) {
        fail("an element stands where it may not in an XML property list");
    } else if (*element == Element::plist) {
        hasPlist_ = true;
    } else if (!isContainer(*element)) {
        leaf_ = element;
        text_.clear();
    } else if (containers_.size() == PropertyList::maximumDepth) {
        fail("an XML property list is nested too deeply");
    } else {
        containers_.push_back({*element == Element::dictionary, std::nullopt, {}, {}});
    }
}

void Builder::end() {
    if (!leaf_) {
        if (!containers_.empty()) {
            finishContainer();
        }
        return;
    }
    const Element element = *std::exchange(leaf_, std::nullopt);
    if (element == Element::key) {
        containers_.back().key = std::move(text_);
        return;
    }
    std::optional<PropertyList> value = scalar(element, std::move(text_));
    if (value) {
        finish(std::move(*value));
    } else {
        fail("an XML property list holds text that is no value of its element");
    }
}

void Builder::finishContainer() {
    Container container = std::move(containers_.back());
    containers_.pop_back();
    if (container.key) {
        fail("a key of an XML property list has no value");
    } else if (container.isDictionary) {
        finish(PropertyList::dictionary(std::move(container.entries)));
    } else {
        finish(PropertyList::array(std::move(container.values)));
    }
}

void Builder::finish(PropertyList value) {
    if (containers_.empty()) {
        root_ = std::move(value);
        return;
    }
    Container& container = containers_.back();
    if (container.isDictionary) {
        container.entries.push_back(
            {*std::exchange(container.key, std::nullopt), std::move(value)});
    } else {
        container.values.push_back(std::move(value));
    }
}

void Builder::text(std::string_view characters) {
    if (leaf_) {
        text_ += characters;
    } else if (!isOnlyWhiteSpace(characters)) {
        fail("an XML property list holds text between its elements");
    }
}

void onStart(void* builder, const XML_Char* name, const XML_Char** /*attributes*/) noexcept {
    static_cast<Builder*>(builder)->start(name);
}

void onEnd(void* builder, const XML_Char* /*name*/) noexcept {
    static_cast<Builder*>(builder)->end();
}

void onText(void* builder, const XML_Char* text, int length) noexcept {
    static_cast<Builder*>(builder)->text({text, static_cast<std::size_t>(length)});
}

void onEntity(void* builder, const XML_Char* /*name*/, int /*isParameter*/,
              const XML_Char* /*value*/, int /*length*/, const XML_Char* /*base*/,
              const XML_Char* /*system*/, const XML_Char* /*publicIdentifier*/,
              const XML_Char* /*notation*/) noexcept {
    static_cast<Builder*>(builder)->fail("an XML property list declares an entity");
}

// The parser takes lengths as int.
constexpr std::size_t chunkSize = std::size_t{1} << 20;

bool feed(XML_Parser parser, BytesView bytes) {
    while (!bytes.empty()) {
        const BytesView chunk = bytes.first(std::min(bytes.size(), chunkSize));
        bytes = bytes.subspan(chunk.size());
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the parser's type of a byte
        const auto* text = reinterpret_cast<const char*>(chunk.data());
        const auto length = static_cast<int>(chunk.size());
        if (XML_Parse(parser, text, length, XML_FALSE) != XML_STATUS_OK) {
            return false;
        }
    }
    // The end by itself: told with the last bytes, the parser can miss that half a character of
    // UTF-16 is left.
    return XML_Parse(parser, "", 0, XML_TRUE) == XML_STATUS_OK;
}

// What stands between "<" and ">" is data of an old-style text if it is nothing but hexadecimal.
bool isHexadecimalData(BytesView bytes) noexcept {
    constexpr std::string_view allowed = "0123456789abcdefABCDEF \t\r\n";
    const auto isOther = [allowed](std::uint8_t byte) {
        return allowed.find(static_cast<char>(byte)) == std::string_view::npos;
    };
    const auto end = std::find_if(bytes.begin() + 1, bytes.end(), isOther);
    return end != bytes.end() && *end == '>';
}

bool startsWith(BytesView bytes, std::uint8_t first, std::uint8_t second) noexcept {
    return bytes.size() >= 2 && bytes[0] == first && bytes[1] == second;
}

bool isUTF16XML(BytesView bytes) noexcept {
    const bool hasMark = startsWith(bytes, 0xFE, 0xFF) || startsWith(bytes, 0xFF, 0xFE);
    const BytesView start = hasMark ? bytes.subspan(2) : bytes;
    return startsWith(start, '<', 0) || startsWith(start, 0, '<');
}

}  // namespace

bool isXMLPropertyList(BytesView bytes) noexcept {
    if (isUTF16XML(bytes)) {
        return true;
    }
    const BytesView rest = withoutLeadingWhiteSpace(bytes);
    return !rest.empty() && rest.front() == '<' && !isHexadecimalData(rest);
}

PropertyList parseXMLPropertyList(BytesView bytes) {
    // The parser does not accept white space in front of the XML declaration.
    const BytesView document = withoutLeadingWhiteSpace(bytes);
    const Parser parser(XML_ParserCreate(nullptr));
    if (!parser) {
        throw std::bad_alloc();
    }
    Builder builder(parser.get());
    XML_SetUserData(parser.get(), &builder);
    XML_SetElementHandler(parser.get(), onStart, onEnd);
    XML_SetCharacterDataHandler(parser.get(), onText);
    XML_SetEntityDeclHandler(parser.get(), onEntity);
    const bool isWellFormed = feed(parser.get(), document);
    if (!builder.error().empty()) {
        throw DecodingError::dataCorrupted(builder.error());
    }
    if (!isWellFormed) {
        throw DecodingError::dataCorrupted(std::string("an XML property list is malformed: ") +
                                           XML_ErrorString(XML_GetErrorCode(parser.get())));
    }
    std::optional<PropertyList> root = builder.takeRoot();
    if (!root) {
        throw DecodingError::dataCorrupted("an XML property list holds no value");
    }
    return *root;
}

}  // namespace browsersweep
