#pragma once

#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableDataFilter.h"
#include "browsersweep/cleanable/CleanableDataList.h"
#include "browsersweep/cleanable/FilterSight.h"

namespace browsersweep {

/**
 * An item by what a list of filters sees of it. Both halves are items; a host that wants nothing
 * taken unseen sweeps the first one alone, and one that tells its user measures the second.
 */
struct FilterDivision {
    /** What all parts of the filters see; selects nothing where that is nothing. Never null. */
    CleanableDataList::Item seen;
    /** What goes whatever some part of the filters says; null where there is nothing of it. */
    CleanableDataList::Item unseen;
    FilterSight blindTo;              ///< the parts of the filters that `unseen` is not told by
    std::vector<std::string> tables;  ///< of `unseen`, where it is rows of a database
};

/**
 * Divides an item by what filters see of it. One that does not say (`CleanableData::parts`) is
 * unseen as a whole; without filters everything is seen. Reads no file.
 */
BROWSERSWEEP_EXPORT FilterDivision divide(const CleanableDataList::Item& item,
                                          CleanableDataFilters filters);

}  // namespace browsersweep
