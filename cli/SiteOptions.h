#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "browsersweep/cleanable/CleanableDataCategory.h"

namespace browsersweep::cli {

/** What the commands about sites are told. */
struct SiteOptions {
    std::vector<std::string> names;                     ///< the sites to forget, as typed
    bool all = false;                                   ///< every site is to be forgotten
    std::vector<std::string> kept;                      ///< the sites to keep, as typed
    std::optional<std::filesystem::path> keepList;      ///< a file with more of them
    std::vector<std::string> alwaysKept;                ///< the sites of the lasting keep list
    std::vector<CleanableDataCategory> keptCategories;  ///< and its categories
    std::vector<std::string> kinds;                     ///< raw values of kinds
    bool takesMixed = false;
    bool takesSettings = false;
    std::optional<double> olderThan;  ///< only sites last used so many seconds ago or earlier
};

}  // namespace browsersweep::cli
