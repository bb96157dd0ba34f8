#pragma once

#include <cstdint>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>

#include "browsersweep/Export.h"
#include "browsersweep/base/OperationControl.h"
#include "browsersweep/cleanable/CleanableData.h"
#include "browsersweep/hosting/ItemVerdict.h"

namespace browsersweep {

/** What keeps an item from being seen, or from being cleaned. */
struct ItemObstacle {
    ItemVerdict verdict = ItemVerdict::couldNotLook;  ///< what it makes of the item
    std::filesystem::path path;                       ///< the file or folder in question
    std::string detail;                               ///< why, for people
};

/** What can truly be said of an item besides the size that it tells itself. */
struct ItemExamination {
    /** Why its size may lack something; absent where all of it was seen and made sense. */
    std::optional<ItemObstacle> toSeeing;
    /** Why nothing of it can be deleted; absent where nothing is known to forbid it. */
    std::optional<ItemObstacle> toDeleting;
    /** Of a database: the selected rows, with changes that wait beside it. Absent if not known. */
    std::optional<std::int64_t> rows;
    /** Of a database: another process has locked it. */
    bool isLocked = false;
};

/**
 * Looks at an item where sizing takes what cannot be seen for nothing: at a folder that may not be
 * opened, at a database that is locked, damaged or denied, at Safari's cookie files. Changes
 * nothing. Of a folder's subfolders the control of the file manager tells. Throws
 * `OperationCancelled` and `std::bad_alloc` only.
 */
BROWSERSWEEP_EXPORT ItemExamination examine(const CleanableData& item,
                                            CleanableDataFilters filters);

/**
 * The size of a database as an examination counts it, which takes no copy; absent where that is not
 * known, and for other items. For a host whose temporary folder is full. Throws
 * `OperationCancelled` and `std::bad_alloc` only.
 */
BROWSERSWEEP_EXPORT std::optional<CleanableDataSize> sizeWithoutCopy(const CleanableData& item,
                                                                     CleanableDataFilters filters);

/**
 * Why what lies at a path cannot be opened; absent where it can be, or where nothing is there.
 * Never fails but for want of memory.
 */
BROWSERSWEEP_EXPORT std::optional<ItemObstacle> obstacleToOpening(
    const std::filesystem::path& path);

/**
 * The bytes that an item's files occupy on the disk, a database's log and journal among them: the
 * difference of two such numbers is what a clean freed. Files with a second name are not counted,
 * since they stay under it. Stops early where the control says so. Never fails.
 */
BROWSERSWEEP_EXPORT std::int64_t allocatedBytes(const CleanableData& item,
                                                OperationControl* control);

/** The same of a folder with all that is below it, or of a file with a database's companions. */
BROWSERSWEEP_EXPORT std::int64_t allocatedBytes(const std::filesystem::path& place,
                                                OperationControl* control);

}  // namespace browsersweep
