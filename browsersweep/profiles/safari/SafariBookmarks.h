#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Bytes.h"
#include "browsersweep/documents/propertylist/PropertyList.h"
#include "browsersweep/profiles/Bookmark.h"

namespace browsersweep {

/** What Safari's file "Bookmarks.plist" holds, as far as bookmarks need it. */
class BROWSERSWEEP_EXPORT SafariBookmarks {
public:
    /**
     * A folder, a bookmark, or both. Its fields stay in the property list that was read: a file of
     * a million folders takes no more than its own length a few times.
     */
    class BROWSERSWEEP_EXPORT Child {
    public:
        /** What Safari keeps beside a bookmark's address. */
        struct BROWSERSWEEP_EXPORT URIDictionary {
            std::optional<std::string> title;  ///< key "title"
        };

        /** Key "Children"; absent where it is missing. */
        std::optional<std::vector<Child>> children() const;
        /** Key "URLString", any text; absent where it is missing. */
        std::optional<std::string> urlString() const;
        /** Key "URIDictionary"; absent where it is missing. */
        std::optional<URIDictionary> uriDictionary() const;

    private:
        friend SafariBookmarks;
        explicit Child(PropertyList value) noexcept : value_(std::move(value)) {}

        PropertyList value_;
    };

    /** Key "Children"; absent where it is missing. */
    std::optional<std::vector<Child>> children() const;

    /**
     * Reads them from a property list of any form. Other keys are ignored. Throws `DecodingError`:
     * `dataCorrupted` for bytes that are no property list, `typeMismatch` with its coding path for
     * a value of another type than its key needs.
     */
    static SafariBookmarks decode(BytesView bytes);

    /**
     * The bookmarks, depth first in the file's order: what lies below a child comes before the
     * child itself. A child without an address, or with one that does not parse, gives nothing but
     * what is below it.
     */
    std::vector<Bookmark> bookmarks() const;

private:
    explicit SafariBookmarks(PropertyList root) noexcept : root_(std::move(root)) {}

    static std::optional<std::vector<Child>> childrenOf(const PropertyList& parent);

    PropertyList root_;
};

}  // namespace browsersweep
