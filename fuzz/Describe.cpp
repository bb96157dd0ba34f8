/**
 * Says what the library's readers make of each input that it is sent, for `differential/run.py`,
 * which compares that with what other readers make of it.
 *
 * An input on standard input is a letter (`j` JSON, `p` property list, `c` cookie file), its length
 * and its bytes. The answer on standard output is `+` or `-`, then two pieces, each a length and
 * bytes: the value or the reader's error, and what the library writes for the value. Lengths are
 * four bytes, the big end first.
 */

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDataEncoder.h"
#include "browsersweep/binarycoding/BinaryDecodingError.h"
#include "browsersweep/cookies/BinaryCookies.h"
#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/internal/Json.h"
#include "browsersweep/documents/propertylist/PropertyList.h"

namespace browsersweep::fuzz {
namespace {

struct Answer {
    bool isAccepted = false;
    std::string value;
    std::string written;
};

std::string textOf(BytesView bytes) {
    return {bytes.begin(), bytes.end()};
}

/** A value as a text that says its kinds, lengths and bits; every value has exactly one. */
class Description {
public:
    void add(const JsonValue& value);
    void add(const PropertyList& value);
    void add(const BinaryCookies& cookies);
    std::string take() { return std::move(text_); }

private:
    void addText(std::string_view text) { addBytes('s', text); }
    void addBytes(char kind, std::string_view bytes) {
        addCount(kind, bytes.size());
        text_ += bytes;
    }
    void addCount(char kind, std::size_t count) {
        text_ += kind;
        text_ += std::to_string(count);
        text_ += ':';
    }
    void addNumber(char kind, const std::string& digits) {
        text_ += kind;
        text_ += digits;
        text_ += ';';
    }
    void addDouble(char kind, double value);
    void addNumber(const JsonValue& value);
    void add(const BinaryCookies::Cookie& cookie);
    void add(const OptionalText& text);

    std::string text_;
};

void Description::addDouble(char kind, double value) {
    // What else a NaN holds is lost in other readers' hands.
    std::array<char, 17> digits{"nan"};
    if (!std::isnan(value)) {
        std::snprintf(digits.data(), digits.size(), "%016llx",
                      static_cast<unsigned long long>(std::bit_cast<std::uint64_t>(value)));
    }
    addNumber(kind, digits.data());
}

/** A Boolean or a number. Of numbers that are no integer the library knows only that. */
void Description::addNumber(const JsonValue& value) {
    try {
        addNumber('i', std::to_string(value.integer()));
    } catch (const DecodingError& error) {
        if (error.kind() == DecodingError::Kind::typeMismatch) {
            text_ += value.boolean() ? 't' : 'f';
        } else {
            text_ += 'r';
        }
    }
}

void Description::add(const JsonValue& value) {
    if (value.isNull()) {
        text_ += 'n';
    } else if (value.isString()) {
        addText(value.string());
    } else if (value.isArray()) {
        const auto elements = value.elements();
        addCount('[', static_cast<std::size_t>(std::distance(elements.begin(), elements.end())));
        for (const JsonValue element : elements) {
            add(element);
        }
    } else if (value.isObject()) {
        const auto members = value.members();
        addCount('{', members.size());
        for (const auto& [key, member] : members) {
            addText(key);
            add(member);
        }
    } else {
        addNumber(value);
    }
}

void Description::add(const PropertyList& value) {
    if (const auto* const text = value.asString()) {
        addText(*text);
    } else if (const auto* const data = value.asData()) {
        addBytes('x', fuzz::textOf(*data));
    } else if (const auto* const array = value.asArray()) {
        addCount('[', array->size());
        for (const PropertyList& element : *array) {
            add(element);
        }
    } else if (const auto* const dictionary = value.asDictionary()) {
        addCount('{', dictionary->size());
        for (const auto& [key, element] : *dictionary) {
            addText(key);
            add(element);
        }
    } else if (const auto boolean = value.asBoolean()) {
        text_ += *boolean ? 't' : 'f';
    } else if (const auto integer = value.asInteger()) {
        addNumber('i', std::to_string(*integer));
    } else if (const auto large = value.asUnsignedInteger()) {
        addNumber('i', std::to_string(*large));
    } else if (const auto real = value.asReal()) {
        addDouble('r', *real);
    } else if (const auto date = value.asDate()) {
        addDouble('d', referenceSeconds(*date));
    } else if (const auto uid = value.asUID()) {
        addNumber('u', std::to_string(*uid));
    } else {
        throw std::logic_error("a property list of no kind");
    }
}

void Description::add(const OptionalText& text) {
    if (text.isPresent()) {
        addText(text.value());
    } else {
        text_ += 'n';
    }
}

void Description::add(const BinaryCookies::Cookie& cookie) {
    for (const std::uint32_t field :
         {cookie.size, cookie.version, cookie.flags.rawValue(), cookie.urlOffset, cookie.nameOffset,
          cookie.pathOffset, cookie.valueOffset, cookie.commentOffset, cookie.commentURLOffset}) {
        addNumber('i', std::to_string(field));
    }
    addNumber('i', cookie.port ? std::to_string(*cookie.port) : "none");
    addDouble('d', referenceSeconds(cookie.expirationDate));
    addDouble('d', referenceSeconds(cookie.creationDate));
    addText(cookie.urlString);
    addText(cookie.name);
    addText(cookie.path);
    addText(cookie.value);
    add(cookie.comment);
    add(cookie.commentURLString);
}

void Description::add(const BinaryCookies& cookies) {
    addCount('[', cookies.pages.size());
    for (const BinaryCookies::Page& page : cookies.pages) {
        addCount('[', page.cookies.size());
        for (const BinaryCookies::Cookie& cookie : page.cookies) {
            add(cookie);
        }
    }
    add(cookies.metadata);
}

template <typename Value>
std::string describe(const Value& value) {
    Description description;
    description.add(value);
    return description.take();
}

Answer json(BytesView input) {
    return {true, describe(JsonDocument::parse(input).root()), {}};
}

Answer propertyList(BytesView input) {
    const auto list = PropertyList::parse(input);
    return {true, describe(list), textOf(list.binaryData())};
}

std::string written(const BinaryCookies& cookies) {
    try {
        return textOf(BinaryDataEncoder().encode(cookies));
    } catch (const std::length_error&) {  // sizes that a damaged file claims need not fit
        return {};
    }
}

Answer cookieFile(BytesView input) {
    const auto cookies = BinaryDataDecoder().decode<BinaryCookies>(input);
    return {true, describe(cookies), written(cookies)};
}

Answer answer(char kind, BytesView input) {
    try {
        switch (kind) {
            case 'j':
                return json(input);
            case 'p':
                return propertyList(input);
            case 'c':
                return cookieFile(input);
            default:
                throw std::invalid_argument("there is no reader of this letter");
        }
    } catch (const DecodingError& error) {
        return {false, error.what(), {}};
    } catch (const BinaryDecodingError& error) {
        return {false, error.what(), {}};
    }
}

/** Nothing at the end of the input. An input that is cut off is an error of the sender. */
std::optional<Bytes> received(std::size_t length, bool mayEnd) {
    Bytes bytes(length);
    const std::size_t count = std::fread(bytes.data(), 1, length, stdin);
    if (count == 0 && length > 0 && mayEnd) {
        return std::nullopt;
    }
    if (count != length) {
        throw std::runtime_error("an input is cut off");
    }
    return bytes;
}

constexpr std::size_t headLength = 5;

std::size_t lengthIn(BytesView head) {
    std::size_t length = 0;
    for (const std::uint8_t byte : head.subspan(1)) {
        length = length << 8U | byte;
    }
    return length;
}

void append(std::string& message, std::string_view piece) {
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        message += static_cast<char>(piece.size() >> shift & 0xFFU);
    }
    message += piece;
}

void send(const Answer& answer) {
    std::string message(1, answer.isAccepted ? '+' : '-');
    append(message, answer.value);
    append(message, answer.written);
    // What was answered before an input that ends the process must not be lost with it.
    if (std::fwrite(message.data(), 1, message.size(), stdout) != message.size() ||
        std::fflush(stdout) != 0) {
        throw std::runtime_error("an answer cannot be written");
    }
}

void answerAll() {
    while (const auto head = received(headLength, true)) {
        const auto input = received(lengthIn(*head), false);
        send(answer(static_cast<char>(head->front()), *input));
    }
}

}  // namespace
}  // namespace browsersweep::fuzz

int main() {
    try {
        browsersweep::fuzz::answerAll();
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
