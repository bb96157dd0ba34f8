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

    Roots decodeRoots(JsonValue value) const {
        const auto members = value.members();
        Roots roots;
        roots.reserve(members.size());
        for (const auto& [key, member] : members) {
            auto root = rootOf(member);
            if (!root) {
                throw DecodingError(DecodingError::Kind::dataCorrupted,
                                    "Could not decode bookmarks root", {std::string(key)});
            }
            roots.push_back({std::string(key), *std::move(root)});
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
    std::optional<Root> rootOf(JsonValue value) const {
        if (auto group = groupOf(value)) {
            return Root{*std::move(group)};
        }
        return isNode(value) ? std::optional(Root{nodeAt(value)}) : std::nullopt;
    }

    std::optional<Roots> groupOf(JsonValue value) const {
        if (!value.isObject()) {
            return std::nullopt;
        }
        const auto members = value.members();
        if (!std::all_of(members.begin(), members.end(),
                         [](const auto& member) { return member.second.isObject(); })) {
            return std::nullopt;
        }
        Roots group;
        group.reserve(members.size());
        for (const auto& [key, member] : members) {
            auto root = rootOf(member);
            if (!root) {
                return std::nullopt;
            }
            group.push_back({std::string(key), *std::move(root)});
        }
        return group;
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

template <typename AppendNode>
void forEachNode(const ChromiumBookmarks::Roots& roots, const AppendNode& visit) {
    for (const auto& [key, root] : roots) {
        if (const auto* const group = std::get_if<ChromiumBookmarks::Roots>(&root.value)) {
            forEachNode(*group, visit);
        } else {
            visit(std::get<ChromiumBookmarks::Node>(root.value));
        }
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
    const auto document = std::make_shared<const JsonDocument>(JsonDocument::parse(bytes));
    const JsonValue roots = document->root().required("roots");
    return ChromiumBookmarks(
        decodingBelow("roots", [&] { return Decoder(document).decodeRoots(roots); }));
}

std::vector<ChromiumBookmark> ChromiumBookmarks::bookmarks() const {
    std::vector<ChromiumBookmark> found;
    forEachNode(roots_, [&](const Node& node) { appendNode(Decoder::valueOf(node), found); });
    return found;
}

}  // namespace browsersweep
