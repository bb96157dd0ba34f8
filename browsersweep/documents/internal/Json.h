#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/base/Bytes.h"
#include "browsersweep/documents/DecodingError.h"

namespace browsersweep {

class JsonElements;
class JsonValue;

/**
 * A parsed JSON document: a flat list of its values in the order of the file, so that neither
 * parsing nor letting go of it ever recurses. Accepted are RFC 8259 texts in UTF-8, with or without
 * a byte order mark, of at most 512 nested levels and 2 GiB. A number beyond the range of a double
 * is an error wherever it stands, also under a key that is not read. Whatever the text holds, a
 * document takes at most five times its length.
 */
class JsonDocument {
public:
    /** Throws a `DecodingError` (dataCorrupted) where the bytes are no such text. */
    static JsonDocument parse(BytesView bytes);

    /** The outermost value. Valid as long as the document. */
    JsonValue root() const noexcept;

    /** The value at its `place`. Valid as long as the document. */
    JsonValue at(std::uint32_t place) const noexcept;

private:
    friend class JsonElements;
    friend class JsonValue;
    friend class JsonBuilder;

    enum class Kind : std::uint8_t { null, boolean, integer, real, string, array, object, small };

    /** A piece of `text_`. */
    struct Text {
        std::uint32_t offset;
        std::uint32_t length;
    };

    // A value is a row of words. The first has its kind, whether it has a key, and a small value
    // itself. Offset and length of the key follow, if there is one; then two words of a large
    // number or of a text, or where the values below an array or object end. The shortest value,
    // a digit and its comma, takes one word, and no value more words than its text has bytes.
    static constexpr unsigned kindBits = 3;
    static constexpr unsigned keyBit = 1U << kindBits;
    static constexpr unsigned valueShift = kindBits + 1;

    std::string_view text(Text piece) const noexcept {
        return std::string_view(text_).substr(piece.offset, piece.length);
    }
    Text pieceAt(std::uint32_t place) const noexcept { return {words_[place], words_[place + 1]}; }

    std::vector<std::uint32_t> words_;
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

    /** The elements of an array in their order. Valid as long as the document. */
    JsonElements elements() const;

    /** The members of an object in the file's order; of equal keys the first one alone. */
    std::vector<std::pair<std::string_view, JsonValue>> members() const;

    /** The member of this key, which may be null; absent where the object has no such key. */
    std::optional<JsonValue> find(std::string_view key) const;

    /** The member of this key. Throws keyNotFound or, where it is null, valueNotFound. */
    JsonValue required(std::string_view key) const;

    /** The member of this key, where it is there and not null. */
    std::optional<JsonValue> optional(std::string_view key) const;

    /** Where `JsonDocument::at` finds it again, for those who keep many values. */
    std::uint32_t place() const noexcept { return place_; }

private:
    friend class JsonDocument;
    friend class JsonElements;

    JsonValue(const JsonDocument& document, std::uint32_t place) noexcept
        : document_(&document), place_(place) {}

    JsonDocument::Kind kind() const noexcept;
    std::uint32_t word() const noexcept { return document_->words_[place_]; }
    std::int32_t smallValue() const noexcept;
    std::uint64_t largeValue() const noexcept;
    std::string_view key() const noexcept;
    std::uint32_t contents() const noexcept;
    std::uint32_t end() const noexcept;
    void require(JsonDocument::Kind wanted) const;
    JsonElements below() const noexcept;

    const JsonDocument* document_;
    std::uint32_t place_;
};

/** The values below another one, found one after the other as they are asked for. */
class JsonElements {
public:
    /** Goes from value to value. */
    class Iterator {
    public:
        /** @{ */
        /** As the standard library asks for. */
        using iterator_category = std::input_iterator_tag;
        using value_type = JsonValue;
        using difference_type = std::ptrdiff_t;
        using pointer = const JsonValue*;
        using reference = JsonValue;
        /** @} */

        JsonValue operator*() const noexcept { return {*document_, place_}; }
        Iterator& operator++() noexcept {
            place_ = (**this).end();
            return *this;
        }
        Iterator operator++(int) noexcept {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        friend bool operator==(const Iterator&, const Iterator&) = default;

    private:
        friend class JsonElements;
        Iterator(const JsonDocument& document, std::uint32_t place) noexcept
            : document_(&document), place_(place) {}

        const JsonDocument* document_;
        std::uint32_t place_;
    };

    Iterator begin() const noexcept { return begin_; }
    Iterator end() const noexcept { return end_; }

private:
    friend class JsonValue;
    JsonElements(const JsonDocument& document, std::uint32_t begin, std::uint32_t end) noexcept
        : begin_(document, begin), end_(document, end) {}

    Iterator begin_;
    Iterator end_;
};

}  // namespace browsersweep
