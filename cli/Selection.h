#pragma once

#include <string>
#include <vector>

#include "browsersweep/base/Browser.h"
#include "browsersweep/cleanable/CleanableDataCategory.h"
#include "browsersweep/profiles/BrowserProfile.h"

namespace browsersweep::cli {

/** What the command is about. Nothing given selects everything. */
struct Selection {
    std::vector<Browser> browsers;
    std::vector<std::string> profileNames;
    bool primaryOnly = false;
    std::vector<CleanableDataCategory> categories;

    bool includes(Browser browser) const;
    bool includes(const BrowserProfile& profile) const;
    bool includes(CleanableDataCategory category) const;
    /** The browsers it is about, in the order of the catalogue. */
    std::vector<Browser> selectedBrowsers() const;
};

}  // namespace browsersweep::cli
