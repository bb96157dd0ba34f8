#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "browsersweep/base/Date.h"
#include "browsersweep/documents/propertylist/PropertyList.h"
#include "browsersweep/sites/internal/SiteMatcher.h"

namespace browsersweep {

/** A tab in one of Safari's property lists. */
struct ListedTab {
    std::vector<std::string> hosts;    ///< of the page that it shows; none where it is of no site
    std::vector<std::string> earlier;  ///< of other sites, in the list of pages to go back to
    std::optional<Date> lastUsed;
    std::size_t bytes = 0;  ///< about what it takes
};

/**
 * The tabs in a property list, at any depth, also in property lists within it. Throws a
 * `DecodingError` where those add up to too much.
 */
std::vector<ListedTab> tabsIn(const PropertyList& root);

/**
 * The list without the tabs that are selected, and without the windows that have no other; a tab
 * of another site stays, but loses the list of pages to go back to where that names a selected
 * one. Throws as `tabsIn` does.
 */
PropertyList withoutTabs(const PropertyList& root, SiteMatcher& matcher);

}  // namespace browsersweep
