#include "browsersweep/profiles/chromium/ChromiumBookmarks.h"

#include <algorithm>
#include <optional>
#include <string>

#include "browsersweep/documents/internal/Json.h"

namespace browsersweep {
namespace {

using Bookmarks = std::vector<Bookmark>;

/** A member that may be absent or null, but must be text otherwise. */
bool isTextOrAbsent(const std::optional<JsonValue>& member) {
    return !member || member->isString();
}

/** Appends the node's bookmarks. False where the value is no node: it may then have added some. */
bool appendNode(JsonValue node, Bookmarks& bookmarks) {
    if (!node.isObject()) {
        return false;
    }
    const auto children = node.optional("children");
    const auto name = node.optional("name");
    const auto url = node.optional("url");
    if ((children && !children->isArray()) || !isTextOrAbsent(name) || !isTextOrAbsent(url)) {
        return false;
    }
    if (children) {
        const auto elements = children->elements();
        if (!std::all_of(elements.begin(), elements.end(),
                         [&](JsonValue child) { return appendNode(child, bookmarks); })) {
            return false;
        }
    }
    if (auto address = url ? URL::parse(url->string()) : std::nullopt) {
        bookmarks.push_back({name ? std::optional(std::string(name->string())) : std::nullopt,
                             *std::move(address)});
    }
    return true;
}

bool appendRoot(JsonValue root, Bookmarks& bookmarks);

/** The same for an object whose every value is a root. */
bool appendGroup(JsonValue group, Bookmarks& bookmarks) {
    if (!group.isObject()) {
        return false;
    }
    const auto members = group.members();
    return std::all_of(members.begin(), members.end(),
                       [](const auto& member) { return member.second.isObject(); }) &&
           std::all_of(members.begin(), members.end(),
                       [&](const auto& member) { return appendRoot(member.second, bookmarks); });
}

bool appendRoot(JsonValue root, Bookmarks& bookmarks) {
    const auto before = static_cast<Bookmarks::difference_type>(bookmarks.size());
    if (appendGroup(root, bookmarks)) {
        return true;
    }
    bookmarks.erase(bookmarks.begin() + before, bookmarks.end());
    return appendNode(root, bookmarks);
}

Bookmarks decodeRoots(JsonValue roots) {
    Bookmarks bookmarks;
    for (const auto& [key, root] : roots.members()) {
        if (!appendRoot(root, bookmarks)) {
            throw DecodingError(DecodingError::Kind::dataCorrupted,
                                "Could not decode bookmarks root", {std::string(key)});
        }
    }
    return bookmarks;
}

}  // namespace

std::vector<Bookmark> decodeChromiumBookmarks(BytesView bytes) {
    const JsonDocument document = JsonDocument::parse(bytes);
    const JsonValue roots = document.root().required("roots");
    return decodingBelow("roots", [&] { return decodeRoots(roots); });
}

}  // namespace browsersweep
