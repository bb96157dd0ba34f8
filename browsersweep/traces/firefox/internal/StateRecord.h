#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "browsersweep/base/Date.h"

namespace browsersweep {

/**
 * An entry of one of the files in which Firefox keeps what it knows of servers: a key and a value,
 * and the day on which they were used last.
 */
struct StateRecord {
    std::string_view bytes;        ///< all of it: what goes when it goes
    std::string_view key;          ///< empty where it is damaged, or of no known form
    std::string_view value;        ///< the same
    std::optional<Date> lastUsed;  ///< at midnight UTC
    bool isUnused = false;         ///< a place for an entry, with nothing in it

    /** Whether all fields are equal. */
    friend bool operator==(const StateRecord&, const StateRecord&) = default;
};

/**
 * The records of a file of today: in each there is room for a key and for a value of so many bytes.
 * What follows the last whole one is a record that is damaged. Valid as long as the file's bytes.
 */
std::vector<StateRecord> stateRecordsInSlots(std::string_view file, std::size_t valueSize);

/**
 * The records of a file of older versions, one in each line; empty lines in a row are one that is
 * unused, and a line longer than Firefox writes is damaged. Valid as above.
 */
std::vector<StateRecord> stateRecordsInLines(std::string_view file);

}  // namespace browsersweep
