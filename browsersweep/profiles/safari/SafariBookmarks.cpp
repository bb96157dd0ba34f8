#include "browsersweep/profiles/safari/SafariBookmarks.h"

#include <cstddef>
#include <string_view>

#include "browsersweep/documents/DecodingError.h"

namespace browsersweep {
namespace {

using Child = SafariBookmarks::Child;
using URIDictionary = SafariBookmarks::Child::URIDictionary;

[[noreturn]] void mismatch(std::string_view needed, const CodingPath& path) {
    throw DecodingError(DecodingError::Kind::typeMismatch, "the value is no " + std::string(needed),
                        path);
}

/** Decodes a value with its place in the path, which is as before afterwards. */
template <typename Decode>
auto decodeBelow(CodingPath& path, std::string step, Decode decode) {
    path.push_back(std::move(step));
    auto value = decode();
    path.pop_back();
    return value;
}

/** A key's value, decoded; absent if the key is. */
template <typename Decode>
auto optional(const PropertyList& parent, std::string_view key, CodingPath& path, Decode decode) {
    const PropertyList* value = parent.find(key);
    return value == nullptr ? std::nullopt : std::optional(decodeBelow(path, std::string(key), [&] {
        return decode(*value, path);
    }));
}

void requireDictionary(const PropertyList& value, const CodingPath& path) {
    if (value.asDictionary() == nullptr) {
        mismatch("dictionary", path);
    }
}

std::string decodeText(const PropertyList& value, const CodingPath& path) {
    const std::string* text = value.asString();
    if (text == nullptr) {
        mismatch("text", path);
    }
    return *text;
}

URIDictionary decodeURIDictionary(const PropertyList& value, CodingPath& path) {
    requireDictionary(value, path);
    return {optional(value, "title", path, decodeText)};
}

std::vector<Child> decodeChildren(const PropertyList& value, CodingPath& path);

Child decodeChild(const PropertyList& value, CodingPath& path) {
    requireDictionary(value, path);
    return {optional(value, "Children", path, decodeChildren),
            optional(value, "URLString", path, decodeText),
            optional(value, "URIDictionary", path, decodeURIDictionary)};
}

// Recursive: a property list cannot be deeper than its limit.
std::vector<Child> decodeChildren(const PropertyList& value, CodingPath& path) {
    const PropertyList::Array* elements = value.asArray();
    if (elements == nullptr) {
        mismatch("list", path);
    }
    std::vector<Child> children;
    children.reserve(elements->size());
    for (const PropertyList& element : *elements) {
        children.push_back(decodeBelow(path, "Index " + std::to_string(children.size()),
                                       [&] { return decodeChild(element, path); }));
    }
    return children;
}

void append(const std::vector<Child>& children, std::vector<Bookmark>& bookmarks) {
    for (const Child& child : children) {
        if (child.children) {
            append(*child.children, bookmarks);
        }
        std::optional<URL> url = child.urlString ? URL::parse(*child.urlString) : std::nullopt;
        if (url) {
            bookmarks.push_back(
                {child.uriDictionary ? child.uriDictionary->title : std::nullopt, *std::move(url)});
        }
    }
}

}  // namespace

SafariBookmarks SafariBookmarks::decode(BytesView bytes) {
    const PropertyList root = PropertyList::parse(bytes);
    CodingPath path;
    requireDictionary(root, path);
    return {optional(root, "Children", path, decodeChildren)};
}

std::vector<Bookmark> SafariBookmarks::bookmarks() const {
    std::vector<Bookmark> found;
    if (children) {
        append(*children, found);
    }
    return found;
}

}  // namespace browsersweep
