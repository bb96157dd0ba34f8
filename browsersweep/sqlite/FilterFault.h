#pragma once

#include <optional>

#include "browsersweep/Export.h"
#include "browsersweep/base/Browser.h"
#include "browsersweep/cleanable/CleanableDataCategory.h"
#include "browsersweep/cleanable/CleanableDataFilter.h"

namespace browsersweep {

/** What keeps databases from taking filters of which each pattern is fit by itself. */
enum class FilterFault {
    tooMany,  ///< together they are more than one statement takes
    tooLong,  ///< a pattern is longer than any text is compared with
};

/** The statements that filters become a part of. */
enum class FilteredStatement {
    ofTable,          ///< on a table of a `CleanableSQLiteDatabase`
    ofSafariHistory,  ///< of `SafariHistoryCleanableDatabase`, which nest deeper and take half
};

/** What filters become a part of where this data of a browser is measured and cleaned. */
BROWSERSWEEP_EXPORT FilteredStatement filteredStatement(Browser browser,
                                                        CleanableDataCategory category) noexcept;

/**
 * What is wrong with a list of filters; absent where databases take them. Filters become one
 * condition, and SQLite bounds how deep that may nest and how long a pattern may be. As SQLite is
 * usually built, a table takes 997 excluded patterns, or 998 included ones or ranges of dates, and
 * Safari's history 496 or 497; of several kinds together a few less; a pattern may have 49,998
 * bytes. The bounds are fixed where SQLite is built: a connection cannot raise them. Beyond them
 * sizing and cleaning throw `SQLiteError`, maybe after other data was deleted, so a host asks
 * before. Reads no file. Throws `SQLiteError` where SQLite cannot be asked.
 */
BROWSERSWEEP_EXPORT std::optional<FilterFault> filterFault(CleanableDataFilters filters,
                                                           FilteredStatement statement);

}  // namespace browsersweep
