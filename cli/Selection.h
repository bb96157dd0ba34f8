#pragma once

#include <string>
#include <utility>
#include <vector>

#include "browsersweep/base/Browser.h"
#include "browsersweep/cleanable/CleanableDataCategory.h"
#include "browsersweep/profiles/BrowserProfile.h"

namespace browsersweep::cli {

/** What the command is about. Nothing given selects everything. */
struct Selection {
    std::vector<Browser> browsers;
    std::vector<std::string> profileNames;  ///< as given: names, or folders
    /** Where a text given for a name is the folder of a profile of the browser. */
    std::vector<std::pair<Browser, std::string>> profileFolders;
    bool primaryOnly = false;
    std::vector<CleanableDataCategory> categories;
    /** @{ */
    /** What is left alone whatever else is selected. */
    std::vector<Browser> keptBrowsers;
    std::vector<CleanableDataCategory> keptCategories;
    /** @} */

    bool includes(Browser browser) const;
    bool includes(const BrowserProfile& profile) const;
    bool includes(CleanableDataCategory category) const;
    /** The browsers it is about, in the order of the catalogue. */
    std::vector<Browser> selectedBrowsers() const;
};

}  // namespace browsersweep::cli
