#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Bytes.h"
#include "browsersweep/base/URL.h"

namespace browsersweep {

class JsonDocument;

/** The file "Bookmarks" of a Chromium-based profile. */
class BROWSERSWEEP_EXPORT ChromiumBookmarks {
    class Decoder;

public:
    /** One bookmark, taken out of its folder. */
    struct BROWSERSWEEP_EXPORT ChromiumBookmark {
        std::optional<std::string> title;  ///< the node's name; absent where it has none
        URL url;                           ///< what it leads to

        /** Whether all fields are equal. */
        friend bool operator==(const ChromiumBookmark&, const ChromiumBookmark&) = default;
    };

    /**
     * A bookmark, a folder, or both. Its fields stay in the document that was read, which the nodes
     * share and keep: a file of a million folders takes no more than its own length a few times.
     */
    class BROWSERSWEEP_EXPORT Node {
    public:
        /** The nodes below it; absent where the key "children" is missing or null. */
        std::optional<std::vector<Node>> children() const;
        /** Its title; absent where the key "name" is missing or null. */
        std::optional<std::string> name() const;
        /** Any text, which need not parse; absent where the key "url" is missing or null. */
        std::optional<std::string> url() const;

    private:
        friend Decoder;
        Node(std::shared_ptr<const JsonDocument> document, std::uint32_t place) noexcept
            : document_(std::move(document)), place_(place) {}

        std::shared_ptr<const JsonDocument> document_;
        std::uint32_t place_;
    };

    struct NamedRoot;

    /** Roots with their keys, in the file's order; every key once. */
    using Roots = std::vector<NamedRoot>;

    /** A group of roots where every value of the object is a root in turn; a node otherwise. */
    struct BROWSERSWEEP_EXPORT Root {
        std::variant<Roots, Node> value;  ///< the one or the other
    };

    /** One entry of a group, or of the file. */
    struct BROWSERSWEEP_EXPORT NamedRoot {
        std::string key;  ///< such as "bookmark_bar"
        Root root;        ///< what lies under the key
    };

    /**
     * Reads the file's bytes. A value below "roots" that is neither a group nor a node makes the
     * whole file fail with a `DecodingError` (dataCorrupted, "Could not decode bookmarks root").
     */
    static ChromiumBookmarks decode(BytesView bytes);

    /** Key "roots", made anew at each call: roots take more room than the document. */
    Roots roots() const;

    /**
     * The bookmarks of all roots in the file's order: what lies in a folder or below a node comes
     * before the node itself. A node whose "url" does not parse as an address gives nothing but
     * what is below it.
     */
    std::vector<ChromiumBookmark> bookmarks() const;

private:
    ChromiumBookmarks(std::shared_ptr<const JsonDocument> document,
                      std::vector<std::uint32_t> nodes) noexcept
        : document_(std::move(document)), nodes_(std::move(nodes)) {}

    std::shared_ptr<const JsonDocument> document_;
    std::vector<std::uint32_t> nodes_;  // where the roots lie that are nodes, in the file's order
};

}  // namespace browsersweep
