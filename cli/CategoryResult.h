#pragma once

#include <string>
#include <vector>

#include "cli/Report.h"

namespace browsersweep::cli {

/** What became of a category, for people. */
struct CategoryResult {
    std::string text;
    bool isSuccess = true;
};

/**
 * The worst that happened to the items of a category and, where not all of several fared so, to how
 * many of them. Of no items there is nothing to tell.
 */
CategoryResult resultOf(const std::vector<ItemRow>& items);

}  // namespace browsersweep::cli
