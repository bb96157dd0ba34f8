#pragma once

#include <filesystem>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableData.h"

namespace browsersweep {

/**
 * Whether changes of a database wait in a file beside it: in a write-ahead log that is not empty,
 * or in the journal of a transaction that was not finished. Databases are counted without them, but
 * for Safari's history, which is read together with them.
 */
BROWSERSWEEP_EXPORT bool hasPendingChanges(const std::filesystem::path& database);

/**
 * Whether another program holds a database: has a transaction open on it, or has opened it for
 * itself alone, as browsers do. Not to be asked of a database that this process has open: its own
 * locks would be lost.
 */
BROWSERSWEEP_EXPORT bool isDatabaseHeld(const std::filesystem::path& database) noexcept;

/** The databases of an item whose latest changes are not counted when it is measured. */
BROWSERSWEEP_EXPORT std::vector<std::filesystem::path> databasesWithUncountedChanges(
    const CleanableData& item);

/** The databases of an item. */
BROWSERSWEEP_EXPORT std::vector<std::filesystem::path> databasesOf(const CleanableData& item);

}  // namespace browsersweep
