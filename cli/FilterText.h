#pragma once

#include <string>
#include <vector>

#include "browsersweep/cleanable/CleanableDataFilter.h"
#include "browsersweep/cleanable/FilterSight.h"

namespace browsersweep::cli {

/** What each filter says, in words and for a terminal; dates in the time zone of the device. */
std::vector<std::string> filterTexts(CleanableDataFilters filters);

/** What data would have to have for parts of filters to tell it: "a text", "a date", or both. */
std::string sightText(const FilterSight& parts);

}  // namespace browsersweep::cli
