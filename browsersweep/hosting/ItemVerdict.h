#pragma once

#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/** What became of one item. */
enum class ItemVerdict {
    measured,        ///< there is something, and so much
    emptied,         ///< nothing of what was selected is left
    partlyEmptied,   ///< something of what was selected is left
    nothingThere,    ///< nothing was selected, or nothing is there
    couldNotLook,    ///< measuring failed, or something of it cannot be seen
    couldNotDelete,  ///< deleting failed
    held,            ///< another program holds the data
    notUnderstood,   ///< the data is of no form that is known
    leftOut,         ///< a link or a mount is not entered, or an item before it failed
    cancelled,       ///< the item was stopped, or not begun for that reason
};

/** What a verdict is called in reports, such as "partlyEmptied". */
BROWSERSWEEP_EXPORT std::string_view rawValue(ItemVerdict verdict) noexcept;

/** The same in words, such as "only partly emptied". */
BROWSERSWEEP_EXPORT std::string_view displayName(ItemVerdict verdict) noexcept;

/** Whether all that was asked for is known and done. */
BROWSERSWEEP_EXPORT bool isSuccess(ItemVerdict verdict) noexcept;

}  // namespace browsersweep
