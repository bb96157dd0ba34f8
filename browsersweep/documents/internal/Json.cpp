#include "browsersweep/documents/internal/Json.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <iterator>
#include <limits>

#include <nlohmann/json.hpp>

namespace browsersweep {
namespace {

constexpr std::size_t maximumDepth = 512;
constexpr std::size_t maximumLength = std::size_t{2} << 30;

constexpr std::array<std::string_view, 8> kindNames{"null",   "Boolean", "integer", "number",
                                                    "string", "array",   "object",  "integer"};

[[noreturn]] void throwCorrupted(const std::string& why) {
    throw DecodingError(DecodingError::Kind::dataCorrupted,
                        "The given data was not valid JSON: " + why);
}

constexpr double twoTo63 = 9223372036854775808.0;

std::optional<std::int64_t> wholeNumber(double value) noexcept {
    const bool fits = value >= -twoTo63 && value < twoTo63;
    if (!fits || std::trunc(value) != value) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(value);
}

template <typename Kind>
std::string kindName(Kind kind) {
    return std::string(kindNames[static_cast<std::size_t>(kind)]);
}

/** Whole numbers of so many bits, with their sign, stand in the first word of their value. */
constexpr unsigned smallBits = 28;
constexpr std::int64_t smallLimit = std::int64_t{1} << (smallBits - 1);

constexpr unsigned wordBits = 32;

/** How many words a document can have beyond the bytes of its text: those of one outermost value.
 */
constexpr std::size_t slack = 8;

}  // namespace

/** Receives the parser's events and lays the values down one after the other. */
class JsonBuilder {
public:
    using number_integer_t = nlohmann::json::number_integer_t;
    using number_unsigned_t = nlohmann::json::number_unsigned_t;
    using number_float_t = nlohmann::json::number_float_t;
    using string_t = nlohmann::json::string_t;
    using binary_t = nlohmann::json::binary_t;

    explicit JsonBuilder(JsonDocument& document) noexcept : document_(document) {}

    bool null() {
        add(JsonDocument::Kind::null, 0);
        return true;
    }
    bool boolean(bool value) {
        add(JsonDocument::Kind::boolean, value ? 1 : 0);
        return true;
    }
    bool number_integer(number_integer_t value) {
        if (value >= -smallLimit && value < smallLimit) {
            add(JsonDocument::Kind::small, static_cast<std::uint32_t>(value));
        } else {
            add(JsonDocument::Kind::integer, 0);
            addLarge(static_cast<std::uint64_t>(value));
        }
        return true;
    }
    bool number_unsigned(number_unsigned_t value) {
        if (value > static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max())) {
            return number_float(static_cast<double>(value), {});
        }
        return number_integer(static_cast<std::int64_t>(value));
    }
    bool number_float(number_float_t value, const string_t& /*digits*/) {
        add(JsonDocument::Kind::real, 0);
        addLarge(std::bit_cast<std::uint64_t>(value));
        return true;
    }
    bool string(const string_t& value) {
        add(JsonDocument::Kind::string, 0);
        addPiece(keep(value));
        return true;
    }
    bool binary(const binary_t& /*value*/) { return false; }  // no part of JSON texts
    bool key(const string_t& name) {
        key_ = keep(name);
        return true;
    }
    bool start_object(std::size_t /*count*/) { return start(JsonDocument::Kind::object); }
    bool start_array(std::size_t /*count*/) { return start(JsonDocument::Kind::array); }
    bool end_object() { return finish(); }
    bool end_array() { return finish(); }
    bool parse_error(std::size_t /*position*/, const std::string& /*last*/,
                     const nlohmann::detail::exception& error) {
        throwCorrupted(error.what());
    }

private:
    void add(JsonDocument::Kind kind, std::uint32_t value) {
        const std::uint32_t keyMark = key_ ? JsonDocument::keyBit : 0;
        document_.words_.push_back(static_cast<std::uint32_t>(kind) | keyMark |
                                   value << JsonDocument::valueShift);
        if (key_) {
            addPiece(*key_);
            key_.reset();
        }
    }

    void addPiece(JsonDocument::Text piece) {
        document_.words_.push_back(piece.offset);
        document_.words_.push_back(piece.length);
    }

    void addLarge(std::uint64_t value) {
        document_.words_.push_back(static_cast<std::uint32_t>(value));
        document_.words_.push_back(static_cast<std::uint32_t>(value >> wordBits));
    }

    JsonDocument::Text keep(const std::string& text) {
        const auto offset = static_cast<std::uint32_t>(document_.text_.size());
        document_.text_ += text;
        return {offset, static_cast<std::uint32_t>(text.size())};
    }

    bool start(JsonDocument::Kind kind) {
        if (open_.size() == maximumDepth) {
            throwCorrupted("too many nested arrays or dictionaries");
        }
        add(kind, 0);
        open_.push_back(document_.words_.size());
        document_.words_.push_back(0);
        return true;
    }

    bool finish() {
        document_.words_[open_.back()] = static_cast<std::uint32_t>(document_.words_.size());
        open_.pop_back();
        return true;
    }

    JsonDocument& document_;
    std::optional<JsonDocument::Text> key_;
    std::vector<std::size_t> open_;
};

JsonDocument JsonDocument::parse(BytesView bytes) {
    if (bytes.size() > maximumLength) {
        throwCorrupted("it is longer than 2 GiB");
    }
    // The parser takes a zero byte for the end and would not look at what follows.
    if (std::find(bytes.begin(), bytes.end(), 0) != bytes.end()) {
        throwCorrupted("it holds a zero byte");
    }
    JsonDocument document;
    // More would have to be copied in growing, and what is not used costs nothing.
    document.words_.reserve(bytes.size() + slack);
    document.text_.reserve(bytes.size());
    JsonBuilder builder(document);
    nlohmann::json::sax_parse(bytes.begin(), bytes.end(), &builder);
    return document;
}

JsonValue JsonDocument::root() const noexcept {
    return at(0);
}

JsonValue JsonDocument::at(std::uint32_t place) const noexcept {
    return {*this, place};
}

JsonDocument::Kind JsonValue::kind() const noexcept {
    constexpr std::uint32_t mask = (1U << JsonDocument::kindBits) - 1;
    return static_cast<JsonDocument::Kind>(word() & mask);
}

/** The upper bits of the first word, with their sign. */
std::int32_t JsonValue::smallValue() const noexcept {
    return static_cast<std::int32_t>(word()) >> JsonDocument::valueShift;
}

/** Where what follows the key begins. */
std::uint32_t JsonValue::contents() const noexcept {
    return place_ + ((word() & JsonDocument::keyBit) != 0 ? 3 : 1);
}

std::uint64_t JsonValue::largeValue() const noexcept {
    const auto [low, high] = document_->pieceAt(contents());
    return std::uint64_t{high} << wordBits | low;
}

std::string_view JsonValue::key() const noexcept {
    return document_->text(document_->pieceAt(place_ + 1));
}

std::uint32_t JsonValue::end() const noexcept {
    switch (kind()) {
        case JsonDocument::Kind::array:
        case JsonDocument::Kind::object:
            return document_->words_[contents()];
        case JsonDocument::Kind::integer:
        case JsonDocument::Kind::real:
        case JsonDocument::Kind::string:
            return contents() + 2;
        default:
            return contents();
    }
}

void JsonValue::require(JsonDocument::Kind wanted) const {
    if (kind() != wanted) {
        throw DecodingError(DecodingError::Kind::typeMismatch,
                            "Expected to decode " + kindName(wanted) + " but found " +
                                kindName(kind()) + " instead.");
    }
}

bool JsonValue::boolean() const {
    require(JsonDocument::Kind::boolean);
    return smallValue() != 0;
}

std::int64_t JsonValue::integer() const {
    if (kind() == JsonDocument::Kind::real) {
        if (const auto whole = wholeNumber(std::bit_cast<double>(largeValue()))) {
            return *whole;
        }
        throw DecodingError(DecodingError::Kind::dataCorrupted,
                            "Parsed JSON number does not fit in a 64-bit integer.");
    }
    if (kind() == JsonDocument::Kind::small) {
        return smallValue();
    }
    require(JsonDocument::Kind::integer);
    return static_cast<std::int64_t>(largeValue());
}

std::string_view JsonValue::string() const {
    require(JsonDocument::Kind::string);
    return document_->text(document_->pieceAt(contents()));
}

/** Of an array or object. */
JsonElements JsonValue::below() const noexcept {
    return {*document_, contents() + 1, end()};
}

JsonElements JsonValue::elements() const {
    require(JsonDocument::Kind::array);
    return below();
}

std::vector<std::pair<std::string_view, JsonValue>> JsonValue::members() const {
    require(JsonDocument::Kind::object);
    std::vector<std::uint32_t> places;
    places.reserve(static_cast<std::size_t>(std::distance(below().begin(), below().end())));
    for (const JsonValue value : below()) {
        places.push_back(value.place_);
    }
    // By key, those of equal keys in the file's order; then the first of each, as in the file.
    const auto keyAt = [this](std::uint32_t place) { return JsonValue(*document_, place).key(); };
    std::sort(places.begin(), places.end(), [&](std::uint32_t a, std::uint32_t b) {
        const int order = keyAt(a).compare(keyAt(b));
        return order == 0 ? a < b : order < 0;
    });
    const auto isSameKey = [&](std::uint32_t a, std::uint32_t b) { return keyAt(a) == keyAt(b); };
    places.erase(std::unique(places.begin(), places.end(), isSameKey), places.end());
    std::sort(places.begin(), places.end());
    std::vector<std::pair<std::string_view, JsonValue>> found;
    found.reserve(places.size());
    for (const std::uint32_t place : places) {
        found.emplace_back(keyAt(place), JsonValue(*document_, place));
    }
    return found;
}

std::optional<JsonValue> JsonValue::find(std::string_view key) const {
    require(JsonDocument::Kind::object);
    for (const JsonValue value : below()) {
        if (value.key() == key) {
            return value;
        }
    }
    return std::nullopt;
}

JsonValue JsonValue::required(std::string_view key) const {
    const auto found = find(key);
    if (!found) {
        throw DecodingError(DecodingError::Kind::keyNotFound,
                            "No value associated with key \"" + std::string(key) + "\".");
    }
    if (found->isNull()) {
        throw DecodingError(DecodingError::Kind::valueNotFound,
                            "Found null instead of a value for key \"" + std::string(key) + "\".");
    }
    return *found;
}

std::optional<JsonValue> JsonValue::optional(std::string_view key) const {
    const auto found = find(key);
    return found && !found->isNull() ? found : std::nullopt;
}

}  // namespace browsersweep
