#include "browsersweep/profiles/safari/SafariBookmarks.h"

#include <cstddef>
#include <string_view>

#include "browsersweep/documents/DecodingError.h"

namespace browsersweep {
namespace {

constexpr std::string_view childrenKey = "Children";
constexpr std::string_view addressKey = "URLString";
constexpr std::string_view dictionaryKey = "URIDictionary";
constexpr std::string_view titleKey = "title";

[[noreturn]] void mismatch(std::string_view needed, const CodingPath& path) {
    throw DecodingError(DecodingError::Kind::typeMismatch, "the value is no " + std::string(needed),
                        path);
}

/** Checks a value with its place in the path, which is as before afterwards. */
template <typename Require>
void requireBelow(const PropertyList& value, std::string step, CodingPath& path, Require require) {
    path.push_back(std::move(step));
    require(value, path);
    path.pop_back();
}

/** Checks a key's value, if the key is there. */
template <typename Require>
void requireOptional(const PropertyList& parent, std::string_view key, CodingPath& path,
                     Require require) {
    if (const PropertyList* const value = parent.find(key)) {
        requireBelow(*value, std::string(key), path, require);
    }
}

void requireDictionary(const PropertyList& value, const CodingPath& path) {
    if (value.asDictionary() == nullptr) {
        mismatch("dictionary", path);
    }
}

void requireText(const PropertyList& value, const CodingPath& path) {
    if (value.asString() == nullptr) {
        mismatch("text", path);
    }
}

void requireURIDictionary(const PropertyList& value, CodingPath& path) {
    requireDictionary(value, path);
    requireOptional(value, titleKey, path, requireText);
}

void requireChildren(const PropertyList& value, CodingPath& path);

void requireChild(const PropertyList& value, CodingPath& path) {
    requireDictionary(value, path);
    requireOptional(value, childrenKey, path, requireChildren);
    requireOptional(value, addressKey, path, requireText);
    requireOptional(value, dictionaryKey, path, requireURIDictionary);
}

// Recursive: a property list cannot be deeper than its limit.
void requireChildren(const PropertyList& value, CodingPath& path) {
    const PropertyList::Array* const elements = value.asArray();
    if (elements == nullptr) {
        mismatch("list", path);
    }
    std::size_t index = 0;
    for (const PropertyList& element : *elements) {
        requireBelow(element, "Index " + std::to_string(index), path, requireChild);
        ++index;
    }
}

// From here on every value is known to have the type that its key needs.

const PropertyList::Array* arrayOf(const PropertyList& parent) noexcept {
    const PropertyList* const found = parent.find(childrenKey);
    return found == nullptr ? nullptr : found->asArray();
}

std::optional<std::string> textOf(const PropertyList& parent, std::string_view key) {
    const PropertyList* const found = parent.find(key);
    return found == nullptr ? std::nullopt : std::optional(*found->asString());
}

std::optional<std::string> titleOf(const PropertyList& child) {
    const PropertyList* const dictionary = child.find(dictionaryKey);
    return dictionary == nullptr ? std::nullopt : textOf(*dictionary, titleKey);
}

void appendBelow(const PropertyList& parent, std::vector<Bookmark>& bookmarks) {
    const PropertyList::Array* const children = arrayOf(parent);
    if (children == nullptr) {
        return;
    }
    for (const PropertyList& child : *children) {
        appendBelow(child, bookmarks);
        const PropertyList* const address = child.find(addressKey);
        auto url = address == nullptr ? std::nullopt : URL::parse(*address->asString());
        if (url) {
            bookmarks.push_back({titleOf(child), *std::move(url)});
        }
    }
}

}  // namespace

std::optional<std::vector<SafariBookmarks::Child>> SafariBookmarks::childrenOf(
    const PropertyList& parent) {
    const PropertyList::Array* const found = arrayOf(parent);
    if (found == nullptr) {
        return std::nullopt;
    }
    std::vector<Child> children;
    children.reserve(found->size());
    for (const PropertyList& value : *found) {
        children.push_back(Child(value));
    }
    return children;
}

std::optional<std::vector<SafariBookmarks::Child>> SafariBookmarks::Child::children() const {
    return childrenOf(value_);
}

std::optional<std::string> SafariBookmarks::Child::urlString() const {
    return textOf(value_, addressKey);
}

std::optional<SafariBookmarks::Child::URIDictionary> SafariBookmarks::Child::uriDictionary() const {
    const PropertyList* const found = value_.find(dictionaryKey);
    return found == nullptr ? std::nullopt : std::optional(URIDictionary{textOf(*found, titleKey)});
}

std::optional<std::vector<SafariBookmarks::Child>> SafariBookmarks::children() const {
    return childrenOf(root_);
}

SafariBookmarks SafariBookmarks::decode(BytesView bytes) {
    PropertyList root = PropertyList::parse(bytes);
    CodingPath path;
    requireDictionary(root, path);
    requireOptional(root, childrenKey, path, requireChildren);
    return SafariBookmarks(std::move(root));
}

std::vector<Bookmark> SafariBookmarks::bookmarks() const {
    std::vector<Bookmark> found;
    appendBelow(root_, found);
    return found;
}

}  // namespace browsersweep
