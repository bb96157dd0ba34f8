#pragma once

#include <cstdint>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/OperationControl.h"
#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/hosting/ItemExamination.h"
#include "browsersweep/hosting/ItemVerdict.h"

namespace browsersweep {

/** What is known of one item while it is measured or cleaned. */
struct ItemEvidence {
    std::optional<CleanableDataSize> before;  ///< its size before anything was deleted
    std::optional<CleanableDataSize> after;   ///< and after
    /** What a clean deleted by its own count: one that was stopped, or not measured before. */
    std::optional<CleanableDataSize> deleted;
    ItemExamination lookBefore;          ///< empty where none was made
    ItemExamination lookAfter;           ///< empty where none was made
    std::vector<LeftOutFolder> leftOut;  ///< what was not entered
    std::int64_t freedBytes = 0;         ///< what the disk gained
    bool isBegun = false;                ///< it was its turn, or it failed before
    bool isCleaned = false;              ///< cleaning did not fail
    bool isUncounted = false;            ///< there was no room to count it before
    bool isDeletion = false;             ///< the error is one of deleting
    bool isHeld = false;                 ///< another program has locked it
    std::exception_ptr error;            ///< why it failed; null where it did not
    std::exception_ptr ignored;          ///< an error that the host wanted ignored

    /** How many of the selected are still there after a clean, as far as it is known. */
    BROWSERSWEEP_EXPORT std::int64_t left() const noexcept;

    /** How many of the selected there were before a clean, as far as it is known. */
    BROWSERSWEEP_EXPORT std::int64_t selected() const noexcept;
};

/** A verdict and its reasons. */
struct ItemJudgement {
    ItemVerdict verdict = ItemVerdict::leftOut;  ///< what became of the item
    std::filesystem::path path;                  ///< what it is about; empty: the item itself
    std::string detail;                          ///< why, for people; may be empty
};

/** What the evidence says of an item that was measured or failed to be. */
BROWSERSWEEP_EXPORT ItemJudgement judgeMeasured(const ItemEvidence& evidence);

/** What the evidence says of an item that was cleaned and measured again, or failed in between. */
BROWSERSWEEP_EXPORT ItemJudgement judgeCleaned(const ItemEvidence& evidence);

}  // namespace browsersweep
