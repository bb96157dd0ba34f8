#pragma once

#include <optional>
#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Bytes.h"
#include "browsersweep/documents/propertylist/PropertyList.h"
#include "browsersweep/profiles/Bookmark.h"

namespace browsersweep {

/** What Safari's file "Bookmarks.plist" holds, as far as bookmarks need it. */
struct BROWSERSWEEP_EXPORT SafariBookmarks {
    /** A folder, a bookmark, or both. */
    struct BROWSERSWEEP_EXPORT Child {
        /** What Safari keeps beside a bookmark's address. */
        struct BROWSERSWEEP_EXPORT URIDictionary {
            std::optional<std::string> title;  ///< key "title"
        };

        std::optional<std::vector<Child>> children;  ///< key "Children"
        std::optional<std::string> urlString;        ///< key "URLString"
        std::optional<URIDictionary> uriDictionary;  ///< key "URIDictionary"
    };

    std::optional<std::vector<Child>> children;  ///< key "Children"

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
};

}  // namespace browsersweep
