#include "cli/Selection.h"

#include <algorithm>
#include <iterator>

namespace browsersweep::cli {
namespace {

template <typename Value>
bool holds(const std::vector<Value>& values, const Value& value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

template <typename Value>
bool isEmptyOrHolds(const std::vector<Value>& values, const Value& value) {
    return values.empty() || holds(values, value);
}

}  // namespace

bool Selection::includes(Browser browser) const {
    return isEmptyOrHolds(browsers, browser) && !holds(keptBrowsers, browser);
}

bool Selection::includes(CleanableDataCategory category) const {
    return isEmptyOrHolds(categories, category) && !holds(keptCategories, category);
}

bool Selection::includes(const BrowserProfile& profile) const {
    if (primaryOnly && !profile.isPrimary()) {
        return false;
    }
    if (profileNames.empty()) {
        return true;
    }
    const auto name = profile.name();
    const auto folder = profile.folder();
    return (name && holds(profileNames, *name)) ||
           (folder && holds(profileFolders, std::pair(profile.sourceBrowser(), *folder)));
}

std::vector<Browser> Selection::selectedBrowsers() const {
    std::vector<Browser> selected;
    std::copy_if(allBrowsers.begin(), allBrowsers.end(), std::back_inserter(selected),
                 [this](Browser browser) { return includes(browser); });
    return selected;
}

}  // namespace browsersweep::cli
