#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/base/Bytes.h"

namespace browsersweep {

/**
 * Takes members and elements out of a JSON document and leaves every other byte as it was: the
 * order of keys, the texts of numbers, and what no reader of ours knows.
 */
class JsonEditor {
public:
    /** A piece of the document's text: a value, without the space around it. */
    struct Value {
        std::size_t begin = 0;
        std::size_t end = 0;
    };

    /** What stands between two commas of an array or object. */
    struct Member {
        std::string key;        ///< empty in an array
        Value value;            ///< what stands for it
        std::size_t begin = 0;  ///< where the text of the member begins, space included
        std::size_t end = 0;    ///< where it ends: at a comma or a bracket
    };

    /**
     * Throws a `DecodingError` where the bytes are no document that `JsonDocument` accepts. Half of
     * a pair of UTF-16 that stands alone as an escape is allowed here, and stays as it is.
     */
    explicit JsonEditor(BytesView bytes);

    /** The outermost value. */
    Value root() const noexcept { return root_; }
    /** The value's text as it stands in the document. */
    std::string_view text(Value value) const noexcept;
    /** The string that a value is, its escapes read, U+FFFD for half a pair; else empty. */
    std::string string(Value value) const;
    /** The members of an object, equal keys too, or the elements of an array; else none. */
    std::vector<Member> members(Value value) const;
    /** The members of this key: where a key stands twice, each reader may see another one. */
    std::vector<Member> members(Value value, std::string_view key) const;

    /**
     * Takes some of the members that `members` gave for a value out of the document, each with one
     * comma. What is within a member that is taken out may be taken out too. One call for a value.
     */
    void remove(const std::vector<Member>& members, const std::vector<bool>& isRemoved);

    /** Puts another text in the place of a value. What was taken out within it goes as well. */
    void replace(Value value, std::string text);

    /** Whether anything was taken out or replaced. */
    bool isChanged() const noexcept { return !edits_.empty(); }
    /** The document without what was taken out, and with what was replaced. */
    std::string edited() const;

private:
    /** A text that stands for a piece of the document: none where that was taken out. */
    struct Edit {
        std::size_t begin = 0;
        std::size_t end = 0;
        std::string text;
    };

    std::size_t afterSpace(std::size_t place) const noexcept;
    std::size_t afterString(std::size_t place) const noexcept;
    std::size_t afterValue(std::size_t place) const noexcept;
    Member memberAt(std::size_t place, bool hasKey) const;

    std::string text_;
    Value root_;
    std::vector<Edit> edits_;
};

}  // namespace browsersweep
