#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
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

    /** Throws a `DecodingError` where the bytes are no document that `JsonDocument` accepts. */
    explicit JsonEditor(BytesView bytes);

    /** The outermost value. */
    Value root() const noexcept { return root_; }
    /** The value's text as it stands in the document. */
    std::string_view text(Value value) const noexcept;
    /** The string that a value is, its escapes read; empty where it is none. */
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

    /** Whether anything was taken out. */
    bool isChanged() const noexcept { return !cuts_.empty(); }
    /** The document without what was taken out. */
    std::string edited() const;

private:
    std::size_t afterSpace(std::size_t place) const noexcept;
    std::size_t afterString(std::size_t place) const noexcept;
    std::size_t afterValue(std::size_t place) const noexcept;
    Member memberAt(std::size_t place, bool hasKey) const;

    std::string text_;
    Value root_;
    std::vector<std::pair<std::size_t, std::size_t>> cuts_;
};

}  // namespace browsersweep
