#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/base/Browser.h"
#include "browsersweep/cleanable/CleanableDataCategory.h"

namespace browsersweep::cli {

struct Options;

/** What the user's keep list says is to be left alone, whatever is cleaned or forgotten. */
struct KeepRules {
    std::filesystem::path file;  ///< where they stand
    std::vector<std::string> sites;
    std::vector<Browser> browsers;
    std::vector<CleanableDataCategory> categories;

    bool isEmpty() const noexcept {
        return sites.empty() && browsers.empty() && categories.empty();
    }
};

/**
 * The rules of the keep list below a home folder; absent where there is no such file. Throws a
 * `UsageError` for one that cannot be read or is wrong, so that nothing is deleted in spite of it.
 */
std::optional<KeepRules> readKeepFile(const std::filesystem::path& home);

/** The rules of a keep list's text. Throws a `UsageError` that names the line that is wrong. */
KeepRules parseKeepRules(std::string_view text, std::filesystem::path file);

/**
 * Takes what is to be kept out of what a command acts on. Throws a `UsageError` where it names a
 * site that is to be kept, or where no filter can keep one.
 */
void keep(const KeepRules& rules, Options& options);

/** One line that says what is kept, and by which file. */
std::string keepText(const KeepRules& rules);

}  // namespace browsersweep::cli
