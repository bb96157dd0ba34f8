#pragma once

#include <string>
#include <vector>

#include "cli/Report.h"

namespace browsersweep::cli {

/** What a page says about itself. */
struct PageFacts {
    std::string date;                   ///< when it was made, in UTC, such as "2024-02-29 12:30"
    std::vector<std::string> limits{};  ///< what narrows the report, in words
};

/**
 * The sizes as one page of HTML for people: charts and a table of every browser, category and
 * profile, the largest first. It loads nothing and runs nothing but what sorts the table, and its
 * own policy forbids all else. Names are escaped.
 */
std::string htmlText(const SizesReport& report, const PageFacts& facts);

/** The page of a report that has one: of `size` and of `sites`. */
std::string pageText(const Report& report, const PageFacts& facts);

}  // namespace browsersweep::cli
