#pragma once

#include <string>

#include "cli/Appearance.h"
#include "cli/Report.h"

namespace browsersweep::cli {

/**
 * The filters that a report was made under, and what they cannot see, for people; empty where there
 * are none.
 */
std::string filtersText(const SizesReport& report, const Appearance& appearance);

/** What the question about a plan says of data that the filters cannot see; may be empty. */
std::string unseenRemark(const SizesReport& plan);

}  // namespace browsersweep::cli
