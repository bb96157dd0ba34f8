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
#include "browsersweep/documents/propertylist/internal/XMLElement.h"

namespace browsersweep {
namespace {

struct ParserDeleter {
    void operator()(XML_Parser parser) const noexcept { XML_ParserFree(parser); }
};
using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, ParserDeleter>;

/** Only the outermost element has any. The parser keeps each name that it has seen. */
constexpr std::size_t mostAttributes = 4;

/**
 * Counts from expat's events how many values each array and dictionary holds, in their order. What
 * is no property list is not looked into further than where that shows: the builder says why.
 */
class Counter {
public:
    Counter(XML_Parser parser, std::size_t length) : parser_(parser) {
        // No more can be in it, and what is not used costs nothing.
        counts_.reserve(length / shortestContainer + 1);
    }

    void start(std::string_view name, std::size_t attributes) {
        const std::optional<XMLElement> element = elementNamed(name);
        if (!element || attributes > mostAttributes || open_.size() > deepest) {
            XML_StopParser(parser_, XML_FALSE);
            return;
        }
        if (!open_.empty() && open_.back() && *element != XMLElement::key) {
            ++counts_[*open_.back()];
        }
        open_.push_back(isContainer(*element) ? std::optional(counts_.size()) : std::nullopt);
        if (isContainer(*element)) {
            counts_.push_back(0);
        }
    }

    /** What cannot be read ends the counting: the second reading says why. */
    void fail(std::string_view /*why*/) noexcept { XML_StopParser(parser_, XML_FALSE); }

    // The parser tells of the end of an empty element even where it was stopped at its start.
    void end() noexcept {
        if (!open_.empty()) {
            open_.pop_back();
        }
    }

    std::vector<std::uint32_t> takeCounts() noexcept { return std::move(counts_); }

private:
    static constexpr std::size_t shortestContainer = std::string_view("<dict/>").size();
    static constexpr std::size_t deepest = PropertyList::maximumDepth + 1;  // and the outermost

    XML_Parser parser_;
    std::vector<std::uint32_t> counts_;
    std::vector<std::optional<std::size_t>> open_;  // where the count of a container stands
};

/**
 * Builds the value from expat's events. An error is kept and ends the parsing: no exception may
 * pass through the parser, which is C. Running out of memory within it ends the process.
 */
class Builder {
public:
    /** With how many values the arrays and dictionaries hold, as far as that is known. */
    Builder(XML_Parser parser, std::vector<std::uint32_t> counts)
        : parser_(parser), counts_(std::move(counts)) {}

    void start(std::string_view name, std::size_t attributes);
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

    bool mayStart(XMLElement element) const noexcept;
    void startContainer(bool isDictionary);
    std::optional<PropertyList> scalar(XMLElement element);
    void finish(PropertyList value);
    void finishContainer();

    XML_Parser parser_;
    std::string error_;
    std::vector<std::uint32_t> counts_;
    std::size_t containersStarted_ = 0;
    // What takes as much room as a long text, and of which there may be millions.
    PropertyList yes_ = PropertyList::boolean(true);
    PropertyList no_ = PropertyList::boolean(false);
    PropertyList emptyArray_ = PropertyList::array({});
    PropertyList emptyDictionary_ = PropertyList::dictionary({});
    PropertyList emptyText_ = PropertyList::string({});
    PropertyList emptyData_ = PropertyList::data({});
    std::vector<Container> containers_;
    std::optional<XMLElement> leaf_;
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

bool Builder::mayStart(XMLElement element) const noexcept {
    if (leaf_) {
        return false;
    }
    if (element == XMLElement::plist) {
        return containers_.empty() && !hasPlist_;
    }
    if (containers_.empty()) {
        return element != XMLElement::key && !root_;
    }
    const Container& container = containers_.back();
    const bool keyIsDue = container.isDictionary && !container.key;
    return keyIsDue == (element == XMLElement::key);
}

void Builder::start(std::string_view name, std::size_t attributes) {
    const std::optional<XMLElement> element = elementNamed(name);
    if (!element || !mayStart(*element)) {
        fail("an element stands where it may not in an XML property list");
    } else if (attributes > mostAttributes) {
        fail("an element of an XML property list has too many attributes");
    } else if (*element == XMLElement::plist) {
        hasPlist_ = true;
    } else if (!isContainer(*element)) {
        leaf_ = element;
        text_.clear();
    } else if (containers_.size() == PropertyList::maximumDepth) {
        fail("an XML property list is nested too deeply");
    } else {
        startContainer(*element == XMLElement::dictionary);
    }
}

// Reserved to the value: the room that growth leaves would be more than the values themselves.
void Builder::startContainer(bool isDictionary) {
    const bool isCounted = containersStarted_ < counts_.size();
    const std::size_t count = isCounted ? counts_[containersStarted_] : 0;
    ++containersStarted_;
    Container container{isDictionary, std::nullopt, {}, {}};
    container.values.reserve(isDictionary ? 0 : count);
    container.entries.reserve(isDictionary ? count : 0);
    containers_.push_back(std::move(container));
}

std::optional<PropertyList> Builder::scalar(XMLElement element) {
    const bool isEmpty = text_.empty();
    switch (element) {
        case XMLElement::string:
            return isEmpty ? emptyText_ : PropertyList::string(std::exchange(text_, {}));
        case XMLElement::integer:
            return integerFromText(text_);
        case XMLElement::real:
            return realFromText(text_);
        case XMLElement::date:
            return dateFromText(text_);
        case XMLElement::data:
            return isEmpty ? emptyData_ : dataFromBase64(text_);
        case XMLElement::yes:
        case XMLElement::no:
            return isEmpty ? std::optional(element == XMLElement::yes ? yes_ : no_) : std::nullopt;
        case XMLElement::plist:
        case XMLElement::array:
        case XMLElement::dictionary:
        case XMLElement::key:
            break;
    }
    return std::nullopt;
}

void Builder::end() {
    if (!leaf_) {
        if (!containers_.empty()) {
            finishContainer();
        }
        return;
    }
    const XMLElement element = *std::exchange(leaf_, std::nullopt);
    if (element == XMLElement::key) {
        containers_.back().key = std::exchange(text_, {});
        return;
    }
    std::optional<PropertyList> value = scalar(element);
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
        finish(container.entries.empty() ? emptyDictionary_
                                         : PropertyList::dictionary(std::move(container.entries)));
    } else {
        finish(container.values.empty() ? emptyArray_
                                        : PropertyList::array(std::move(container.values)));
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

template <typename Receiver>
void onStart(void* receiver, const XML_Char* name, const XML_Char** attributes) noexcept {
    std::size_t texts = 0;  // names and values in turn, and a null behind the last
    while (attributes[texts] != nullptr) {
        ++texts;
    }
    static_cast<Receiver*>(receiver)->start(name, texts / 2);
}

template <typename Receiver>
void onEnd(void* receiver, const XML_Char* /*name*/) noexcept {
    static_cast<Receiver*>(receiver)->end();
}

void onText(void* builder, const XML_Char* text, int length) noexcept {
    static_cast<Builder*>(builder)->text({text, static_cast<std::size_t>(length)});
}

template <typename Receiver>
void onEntity(void* receiver, const XML_Char* /*name*/, int /*isParameter*/,
              const XML_Char* /*value*/, int /*length*/, const XML_Char* /*base*/,
              const XML_Char* /*system*/, const XML_Char* /*publicIdentifier*/,
              const XML_Char* /*notation*/) noexcept {
    static_cast<Receiver*>(receiver)->fail("an XML property list declares an entity");
}

Parser makeParser() {
    Parser parser(XML_ParserCreate(nullptr));
    if (!parser) {
        throw std::bad_alloc();
    }
    return parser;
}

constexpr std::size_t chunkSize = std::size_t{1} << 16;

/** The parser takes many times the length of an element or a comment that it has not seen whole. */
constexpr std::size_t longestPending = std::size_t{1} << 18;

enum class Outcome { wellFormed, malformed, tooLong };

/** Whether what the parser reads just now began too long ago. */
bool isTooLong(XML_Parser parser, std::size_t position) noexcept {
    const XML_Index begin = XML_GetCurrentByteIndex(parser);  // negative before anything was read
    return position - static_cast<std::size_t>(std::max<XML_Index>(begin, 0)) > longestPending;
}

Outcome feed(XML_Parser parser, BytesView bytes) {
    for (std::size_t position = 0; position < bytes.size();) {
        const BytesView chunk =
            bytes.subspan(position, std::min(bytes.size() - position, chunkSize));
        position += chunk.size();
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the parser's type of a byte
        const auto* text = reinterpret_cast<const char*>(chunk.data());
        const auto length = static_cast<int>(chunk.size());
        if (XML_Parse(parser, text, length, XML_FALSE) != XML_STATUS_OK) {
            return Outcome::malformed;
        }
        if (isTooLong(parser, position)) {
            return Outcome::tooLong;
        }
    }
    // The end by itself: told with the last bytes, the parser can miss that half a character of
    // UTF-16 is left.
    return XML_Parse(parser, "", 0, XML_TRUE) == XML_STATUS_OK ? Outcome::wellFormed
                                                               : Outcome::malformed;
}

// A document that cannot be read is counted to where that shows: the second reading says why.
std::vector<std::uint32_t> countsOf(BytesView document) {
    const Parser parser = makeParser();
    Counter counter(parser.get(), document.size());
    XML_SetUserData(parser.get(), &counter);
    XML_SetElementHandler(parser.get(), onStart<Counter>, onEnd<Counter>);
    XML_SetEntityDeclHandler(parser.get(), onEntity<Counter>);
    feed(parser.get(), document);
    return counter.takeCounts();
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
    std::vector<std::uint32_t> counts = countsOf(document);
    const Parser parser = makeParser();
    Builder builder(parser.get(), std::move(counts));
    XML_SetUserData(parser.get(), &builder);
    XML_SetElementHandler(parser.get(), onStart<Builder>, onEnd<Builder>);
    XML_SetCharacterDataHandler(parser.get(), onText);
    XML_SetEntityDeclHandler(parser.get(), onEntity<Builder>);
    const Outcome outcome = feed(parser.get(), document);
    if (!builder.error().empty()) {
        throw DecodingError::dataCorrupted(builder.error());
    }
    if (outcome == Outcome::tooLong) {
        throw DecodingError::dataCorrupted("an XML property list holds an element of great length");
    }
    if (outcome == Outcome::malformed) {
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
