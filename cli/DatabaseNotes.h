#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "browsersweep/cleanable/CleanableDataFilter.h"
#include "browsersweep/cleanable/CleanableDataList.h"

namespace browsersweep::cli {

/**
 * Whether changes of a database wait in a file beside it: in a write-ahead log that is not empty,
 * or in the journal of a transaction that was not finished. Databases are counted without them, but
 * for Safari's history, which is read together with them.
 */
bool hasPendingChanges(const std::filesystem::path& database);

/**
 * What should be known of the databases in a list: whose latest changes are not counted and, after
 * a clean, in which of them rows are left that should be gone.
 */
std::vector<std::string> remarksOnDatabases(const CleanableDataList& list,
                                            CleanableDataFilters filters, bool wereCleaned);

}  // namespace browsersweep::cli
