#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "browsersweep/documents/internal/Base64.h"
#include "browsersweep/documents/internal/DecimalText.h"
#include "browsersweep/documents/propertylist/internal/PropertyListScalars.h"
#include "browsersweep/documents/propertylist/internal/XMLPropertyList.h"

namespace browsersweep {
namespace {

using Kind = PropertyList::Kind;

constexpr std::string_view beginning =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";

/** The platform breaks lines of data so that they end here, with a tab counted as eight. */
constexpr std::size_t lineWidth = 76;
constexpr std::size_t tabWidth = 8;
constexpr std::size_t deepestIndentation = 8;

bool isWritable(char character) noexcept {
    const auto value = static_cast<unsigned char>(character);
    return value >= 0x20 || character == '\t' || character == '\n';
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char character : text) {
        if (character == '\r') {
            result += "&#13;";  // a bare one would be read as the end of a line
            continue;
        }
        if (!isWritable(character)) {
            throw std::invalid_argument("XML has no word for a control character");
        }
        if (character == '&') {
            result += "&amp;";
        } else if (character == '<') {
            result += "&lt;";
        } else if (character == '>') {
            result += "&gt;";
        } else {
            result += character;
        }
    }
    return result;
}

std::string textOfReal(double value) {
    if (std::isnan(value)) {
        return "nan";
    }
    if (std::isinf(value)) {
        return value > 0 ? "+infinity" : "-infinity";
    }
    return decimalText(value);
}

std::string textOfInteger(const PropertyList& value) {
    const auto positive = value.asUnsignedInteger();
    return positive ? std::to_string(*positive) : std::to_string(value.asInteger().value());
}

class Writer {
public:
    void write(const PropertyList& value, std::size_t depth);
    std::string text() && { return std::move(text_); }

private:
    void indent(std::size_t depth) { text_.append(depth, '\t'); }
    void element(std::string_view name, std::string_view content, std::size_t depth);
    void data(const Bytes& bytes, std::size_t depth);
    void array(const PropertyList::Array& values, std::size_t depth);
    void dictionary(const PropertyList::Dictionary& entries, std::size_t depth);

    std::string text_{beginning};
};

void Writer::element(std::string_view name, std::string_view content, std::size_t depth) {
    indent(depth);
    text_.append("<").append(name).append(">").append(content);
    text_.append("</").append(name).append(">\n");
}

void Writer::data(const Bytes& bytes, std::size_t depth) {
    const std::size_t indentation = std::min(depth, deepestIndentation);
    const std::size_t width = (lineWidth - tabWidth * indentation) / 4 * 4;
    const std::string digits = toBase64(std::string(bytes.begin(), bytes.end()));
    indent(depth);
    text_ += "<data>\n";
    for (std::size_t place = 0; place < digits.size(); place += width) {
        indent(indentation);
        text_.append(digits.substr(place, width)).append("\n");
    }
    indent(depth);
    text_ += "</data>\n";
}

void Writer::array(const PropertyList::Array& values, std::size_t depth) {
    indent(depth);
    text_ += values.empty() ? "<array/>\n" : "<array>\n";
    for (const PropertyList& value : values) {
        write(value, depth + 1);
    }
    if (!values.empty()) {
        indent(depth);
        text_ += "</array>\n";
    }
}

void Writer::dictionary(const PropertyList::Dictionary& entries, std::size_t depth) {
    indent(depth);
    text_ += entries.empty() ? "<dict/>\n" : "<dict>\n";
    for (const PropertyList::Entry& entry : entries) {
        element("key", escaped(entry.key), depth + 1);
        write(entry.value, depth + 1);
    }
    if (!entries.empty()) {
        indent(depth);
        text_ += "</dict>\n";
    }
}

// Recursive: a property list cannot be deeper than its limit.
void Writer::write(const PropertyList& value, std::size_t depth) {
    switch (value.kind()) {
        case Kind::boolean:
            indent(depth);
            text_ += value.asBoolean() == true ? "<true/>\n" : "<false/>\n";
            return;
        case Kind::integer:
            return element("integer", textOfInteger(value), depth);
        case Kind::real:
            return element("real", textOfReal(value.asReal().value()), depth);
        case Kind::string:
            return element("string", escaped(*value.asString()), depth);
        case Kind::date: {
            const auto text = textOfDate(value.asDate().value());
            if (!text) {
                throw std::invalid_argument("XML has no word for a date beyond its years");
            }
            return element("date", *text, depth);
        }
        case Kind::data:
            return data(*value.asData(), depth);
        case Kind::array:
            return array(*value.asArray(), depth);
        case Kind::dictionary:
            return dictionary(*value.asDictionary(), depth);
        case Kind::uid:
            break;
    }
    throw std::invalid_argument("XML has no word for a reference within an archive");
}

}  // namespace

Bytes xmlPropertyListData(const PropertyList& value) {
    Writer writer;
    writer.write(value, 0);
    const std::string text = std::move(writer).text() + "</plist>\n";
    return {text.begin(), text.end()};
}

}  // namespace browsersweep
