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

/** What stands before the question about a plan: what the filters cannot see; may be empty. */
std::string unseenRemark(const Report& plan, const Appearance& appearance);

}  // namespace browsersweep::cli
