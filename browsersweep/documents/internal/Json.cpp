#include "browsersweep/documents/internal/Json.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <unordered_set>

#include <nlohmann/json.hpp>

namespace browsersweep {
namespace {

constexpr std::size_t maximumDepth = 512;
constexpr std::size_t maximumLength = std::size_t{2} << 30;

constexpr std::array<std::string_view, 7> kindNames{"null",   "Boolean", "integer", "number",
                                                    "string", "array",   "object"};

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

/** Up to so many keys are compared one by one; more are remembered in a set. */
constexpr std::size_t fewKeys = 16;

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
        add(JsonDocument::Kind::null);
        return true;
    }
    bool boolean(bool value) {
        add(JsonDocument::Kind::boolean).scalar.boolean = value;
        return true;
    }
    bool number_integer(number_integer_t value) {
        add(JsonDocument::Kind::integer).scalar.integer = value;
        return true;
    }
    bool number_unsigned(number_unsigned_t value) {
        if (value > static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max())) {
            return number_float(static_cast<double>(value), {});
        }
        return number_integer(static_cast<std::int64_t>(value));
    }
    bool number_float(number_float_t value, const string_t& /*digits*/) {
        add(JsonDocument::Kind::real).scalar.real = value;
        return true;
    }
    bool string(const string_t& value) {
        const JsonDocument::Text text = keep(value);
        add(JsonDocument::Kind::string).scalar.text = text;
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
    JsonDocument::Node& add(JsonDocument::Kind kind) {
        JsonDocument::Node& node = document_.nodes_.emplace_back();
        node.key = std::exchange(key_, {});
        node.kind = kind;
        node.end = static_cast<std::uint32_t>(document_.nodes_.size());
        return node;
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
        open_.push_back(document_.nodes_.size());
        add(kind);
        return true;
    }

    bool finish() {
        document_.nodes_[open_.back()].end = static_cast<std::uint32_t>(document_.nodes_.size());
        open_.pop_back();
        return true;
    }

    JsonDocument& document_;
    JsonDocument::Text key_{};
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
    JsonBuilder builder(document);
    nlohmann::json::sax_parse(bytes.begin(), bytes.end(), &builder);
    return document;
}

JsonValue JsonDocument::root() const noexcept {
    return {*this, 0};
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
    return node().scalar.boolean;
}

std::int64_t JsonValue::integer() const {
    if (kind() == JsonDocument::Kind::real) {
        if (const auto whole = wholeNumber(node().scalar.real)) {
            return *whole;
        }
        throw DecodingError(DecodingError::Kind::dataCorrupted,
                            "Parsed JSON number does not fit in a 64-bit integer.");
    }
    require(JsonDocument::Kind::integer);
    return node().scalar.integer;
}

std::string_view JsonValue::string() const {
    require(JsonDocument::Kind::string);
    return document_->text(node().scalar.text);
}

template <typename Visitor>
void JsonValue::forEachChild(Visitor visit) const {
    const std::uint32_t end = node().end;
    for (std::uint32_t index = index_ + 1; index < end; index = document_->nodes_[index].end) {
        visit(document_->text(document_->nodes_[index].key), JsonValue(*document_, index));
    }
}

std::vector<JsonValue> JsonValue::elements() const {
    require(JsonDocument::Kind::array);
    std::vector<JsonValue> found;
    forEachChild([&](std::string_view /*key*/, JsonValue value) { found.push_back(value); });
    return found;
}

std::vector<std::pair<std::string_view, JsonValue>> JsonValue::members() const {
    require(JsonDocument::Kind::object);
    std::vector<std::pair<std::string_view, JsonValue>> found;
    std::unordered_set<std::string_view> seen;
    const auto isNew = [&](std::string_view key) {
        if (found.size() < fewKeys) {
            return std::none_of(found.begin(), found.end(),
                                [&](const auto& member) { return member.first == key; });
        }
        if (seen.empty()) {
            for (const auto& member : found) {
                seen.insert(member.first);
            }
        }
        return seen.insert(key).second;
    };
    forEachChild([&](std::string_view key, JsonValue value) {
        if (isNew(key)) {
            found.emplace_back(key, value);
        }
    });
    return found;
}

std::optional<JsonValue> JsonValue::find(std::string_view key) const {
    require(JsonDocument::Kind::object);
    std::optional<JsonValue> found;
    forEachChild([&](std::string_view own, JsonValue value) {
        if (!found && own == key) {
            found = value;
        }
    });
    return found;
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
