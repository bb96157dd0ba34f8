#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableData.h"
#include "browsersweep/cleanable/CleanableDataFilter.h"
#include "browsersweep/cleanable/CleanableDataSize.h"

namespace browsersweep {

/** One thing that filters select of an item: a file, rows of a table, or the cookies of a file. */
struct ItemEntry {
    std::filesystem::path path;            ///< the file
    std::string table;                     ///< of a database; empty for what is no rows
    CleanableDataSize::Measurement items;  ///< rows, cookies, or 1 for a file
    /** Absent for rows: nobody can tell how many bytes they take. */
    std::optional<CleanableDataSize::Measurement> bytes;

    /** Whether all fields are equal. */
    friend bool operator==(const ItemEntry&, const ItemEntry&) = default;
};

/**
 * What a clean with these filters would take of an item, one by one, so that a person can look
 * before it goes. A file or a table of which nothing is selected is left out; rows that could not
 * be counted are an approximate 0. Changes nothing. Rows are counted in place, with changes that
 * wait beside the database, which the item's size may leave out. Throws what measuring throws.
 */
BROWSERSWEEP_EXPORT std::vector<ItemEntry> entriesOf(const CleanableData& item,
                                                     CleanableDataFilters filters);

}  // namespace browsersweep
