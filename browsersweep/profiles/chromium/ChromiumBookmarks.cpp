#include "browsersweep/profiles/chromium/ChromiumBookmarks.h"

#include <algorithm>

#include "browsersweep/documents/internal/Json.h"

namespace browsersweep {
namespace {

/** A member that may be absent or null, but must be text otherwise. */
bool isTextOrAbsent(const std::optional<JsonValue>& member) {
    return !member || member->isString();
}

std::optional<std::string> textOf(const std::optional<JsonValue>& member) {
    return member ? std::optional(std::string(member->string())) : std::nullopt;
}

bool isNode(JsonValue value) {
    if (!value.isObject() || !isTextOrAbsent(value.optional("name")) ||
        !isTextOrAbsent(value.optional("url"))) {
        return false;
    }
    const auto children = value.optional("children");
    if (!children) {
        return true;
    }
    if (!children->isArray()) {
        return false;
    }
    const JsonElements elements = children->elements();
    return std::all_of(elements.begin(), elements.end(), isNode);
}

}  // namespace

/** Makes the records of a document, which nests no deeper than its parser allows. */
class ChromiumBookmarks::Decoder {
public:
    explicit Decoder(std::shared_ptr<const JsonDocument> document) noexcept
        : document_(std::move(document)) {}

    /** Where the roots lie that are nodes. */
    static std::vector<std::uint32_t> placesOfNodes(JsonValue roots) {
        std::vector<std::uint32_t> places;
        for (const auto& [key, member] : roots.members()) {
            if (!addRoot(member, places)) {
                throw DecodingError(DecodingError::Kind::dataCorrupted,
                                    "Could not decode bookmarks root", {std::string(key)});
            }
        }
        return places;
    }

    /** Of an object whose members are roots. */
    Roots rootsOf(JsonValue group) const {
        const auto members = group.members();
        Roots roots;
        roots.reserve(members.size());
        for (const auto& [key, member] : members) {
            roots.push_back({std::string(key), rootOf(member)});
        }
        return roots;
    }

    Node nodeAt(JsonValue value) const { return {document_, value.place()}; }

    static JsonValue valueOf(const Node& node) noexcept { return node.document_->at(node.place_); }

    static std::vector<Node> nodesBelow(const Node& parent, JsonValue children) {
        const Decoder decoder(parent.document_);
        std::vector<Node> nodes;
        for (const JsonValue child : children.elements()) {
            nodes.push_back(decoder.nodeAt(child));
        }
        return nodes;
    }

private:
    Root rootOf(JsonValue value) const {
        std::vector<std::uint32_t> places;
        return addGroup(value, places) ? Root{rootsOf(value)} : Root{nodeAt(value)};
    }

    /** False, and nothing added, where a value is neither a group nor a node. */
    static bool addRoot(JsonValue value, std::vector<std::uint32_t>& places) {
        if (addGroup(value, places)) {
            return true;
        }
        if (!isNode(value)) {
            return false;
        }
        places.push_back(value.place());
        return true;
    }

    static bool addGroup(JsonValue value, std::vector<std::uint32_t>& places) {
        if (!value.isObject()) {
            return false;
        }
        const auto members = value.members();
        const auto size = places.size();
        const bool isGroup =
            std::all_of(members.begin(), members.end(),
                        [](const auto& member) { return member.second.isObject(); }) &&
            std::all_of(members.begin(), members.end(),
                        [&places](const auto& member) { return addRoot(member.second, places); });
        if (!isGroup) {
            places.resize(size);
        }
        return isGroup;
    }

    std::shared_ptr<const JsonDocument> document_;
};

namespace {

using ChromiumBookmark = ChromiumBookmarks::ChromiumBookmark;

void appendNode(JsonValue node, std::vector<ChromiumBookmark>& bookmarks) {
    if (const auto children = node.optional("children")) {
        for (const JsonValue child : children->elements()) {
            appendNode(child, bookmarks);
        }
    }
    const auto url = node.optional("url");
    if (auto address = url ? URL::parse(url->string()) : std::nullopt) {
        bookmarks.push_back({textOf(node.optional("name")), *std::move(address)});
    }
}

}  // namespace

std::optional<std::vector<ChromiumBookmarks::Node>> ChromiumBookmarks::Node::children() const {
    const auto found = Decoder::valueOf(*this).optional("children");
    return found ? std::optional(Decoder::nodesBelow(*this, *found)) : std::nullopt;
}

std::optional<std::string> ChromiumBookmarks::Node::name() const {
    return textOf(Decoder::valueOf(*this).optional("name"));
}

std::optional<std::string> ChromiumBookmarks::Node::url() const {
    return textOf(Decoder::valueOf(*this).optional("url"));
}

ChromiumBookmarks ChromiumBookmarks::decode(BytesView bytes) {
    auto document = std::make_shared<const JsonDocument>(JsonDocument::parse(bytes));
    const JsonValue roots = document->root().required("roots");
    auto nodes = decodingBelow("roots", [&] { return Decoder::placesOfNodes(roots); });
    return {std::move(document), std::move(nodes)};
}

ChromiumBookmarks::Roots ChromiumBookmarks::roots() const {
    return Decoder(document_).rootsOf(document_->root().required("roots"));
}

std::vector<ChromiumBookmark> ChromiumBookmarks::bookmarks() const {
    std::vector<ChromiumBookmark> found;
    for (const std::uint32_t place : nodes_) {
        appendNode(document_->at(place), found);
    }
    return found;
}

}  // namespace browsersweep
