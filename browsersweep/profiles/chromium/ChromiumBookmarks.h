#pragma once

#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Bytes.h"
#include "browsersweep/profiles/Bookmark.h"

namespace browsersweep {

/**
 * The bookmarks in the file "Bookmarks" of a Chromium-based profile, in the file's order: what lies
 * in a folder or below a node comes before the node itself. A node whose "url" does not parse as an
 * address gives nothing but what is below it.
 *
 * Every value under "roots" is a group of roots if it is an object whose every value is a root in
 * turn, and a node otherwise; a value that is neither makes the whole file fail with a
 * `DecodingError` (dataCorrupted, "Could not decode bookmarks root").
 */
BROWSERSWEEP_EXPORT std::vector<Bookmark> decodeChromiumBookmarks(BytesView bytes);

}  // namespace browsersweep
