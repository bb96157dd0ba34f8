#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/base/Bytes.h"
#include "browsersweep/documents/DecodingError.h"

namespace browsersweep {

class JsonValue;

/**
 * A parsed JSON document: a flat list of its values in the order of the file, so that neither
 * parsing nor letting go of it ever recurses. Accepted are RFC 8259 texts in UTF-8, with or without
 * a byte order mark, of at most 512 nested levels and 2 GiB. A number beyond the range of a double
 * is an error wherever it stands, also under a key that nobody reads.
 */
class JsonDocument {
public:
    /** Throws a `DecodingError` (dataCorrupted) where the bytes are no such text. */
    static JsonDocument parse(BytesView bytes);

    /** The outermost value. Valid as long as the document. */
    JsonValue root() const noexcept;

private:
    friend class JsonValue;
    friend class JsonBuilder;

    enum class Kind : std::uint8_t { null, boolean, integer, real, string, array, object };

    /** A piece of `text_`. */
    struct Text {
        std::uint32_t offset;
        std::uint32_t length;
    };

    struct Node {
        Text key{};             ///< the own key, where the value is an object's member
        std::uint32_t end = 0;  ///< the index after the last value below this one
        Kind kind = Kind::null;
        /** The value, where it is none that has values below it. */
        union Scalar {
            std::int64_t integer;  ///< of the kind `integer`
            double real;           ///< of the kind `real`
            bool boolean;          ///< of the kind `boolean`
            Text text;             ///< of the kind `string`
        } scalar{};
    };

    std::string_view text(Text piece) const noexcept {
        return std::string_view(text_).substr(piece.offset, piece.length);
    }

    std::vector<Node> nodes_;
    std::string text_;
};

/**
 * One value of a document, with the rules of a standard decoder: a number is no Boolean and a
 * Boolean no number, 1.0 is the integer 1 and 1.5 is none, of equal keys the first one counts.
 * `is...` ask; the others throw a `DecodingError` (typeMismatch) for a value of another type.
 */
class JsonValue {
public:
    /** Whether it is `null`. */
    bool isNull() const noexcept { return kind() == JsonDocument::Kind::null; }
    /** Whether `members`, `find`, `required` and `optional` may be asked. */
    bool isObject() const noexcept { return kind() == JsonDocument::Kind::object; }
    /** Whether `elements` may be asked. */
    bool isArray() const noexcept { return kind() == JsonDocument::Kind::array; }
    /** Whether `string` may be asked. */
    bool isString() const noexcept { return kind() == JsonDocument::Kind::string; }

    /** `true` or `false`; no number stands for either. */
    bool boolean() const;
    /** A whole number. One with a fraction, or too large for 64 bits, throws dataCorrupted. */
    std::int64_t integer() const;
    /** A text in UTF-8. Valid as long as the document. */
    std::string_view string() const;

    /** The elements of an array in their order. */
    std::vector<JsonValue> elements() const;

    /** The members of an object in the file's order; of equal keys the first one alone. */
    std::vector<std::pair<std::string_view, JsonValue>> members() const;

    /** The member of this key, which may be null; absent where the object has no such key. */
    std::optional<JsonValue> find(std::string_view key) const;

    /** The member of this key. Throws keyNotFound or, where it is null, valueNotFound. */
    JsonValue required(std::string_view key) const;

    /** The member of this key, where it is there and not null. */
    std::optional<JsonValue> optional(std::string_view key) const;

private:
    friend class JsonDocument;

    JsonValue(const JsonDocument& document, std::uint32_t index) noexcept
        : document_(&document), index_(index) {}

    JsonDocument::Kind kind() const noexcept { return node().kind; }
    const JsonDocument::Node& node() const noexcept { return document_->nodes_[index_]; }
    void require(JsonDocument::Kind wanted) const;
    template <typename Visitor>
    void forEachChild(Visitor visit) const;

    const JsonDocument* document_;
    std::uint32_t index_;
};

}  // namespace browsersweep
