#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableDataFilter.h"
#include "browsersweep/platform/FileManager.h"

namespace browsersweep {

/** What is asked of one table. */
struct TableQuestion {
    std::string name;  ///< the table's name
    /** Counts the rows of interest, such as those that filters select; empty: none are. */
    std::string countStatement;
};

/** What was found of one table. */
struct TableFinding {
    std::string name;     ///< the table's name, as it was asked for
    bool exists = false;  ///< whether the database has a table of that name
    /** The rows of interest; absent where they could not be counted. 0 where there is no table. */
    std::optional<std::int64_t> rows;
    /** Whether every page of the table and of its indexes could be read and made sense. */
    bool isWhole = false;

    /** Whether all fields are equal. */
    friend bool operator==(const TableFinding&, const TableFinding&) = default;
};

/**
 * What can truly be said of a database file, for a host that must not show an exact 0 where it
 * could not look. A size and a clean take a database that is locked or damaged for an empty one;
 * this tells them apart. Asked before a clean and after it, it gives what went.
 *
 * Nothing is changed: no byte of the database, of its log, its journal or the log's index, and none
 * of these files is made. Changes that wait in a log or a journal count here, other than in a size
 * of `CleanableSQLiteDatabase`, which looks at the main file alone.
 */
struct BROWSERSWEEP_EXPORT DatabaseInspection {
    /** Something is at the path, be it a link; false also where that cannot be asked. */
    bool exists = false;
    /** It is a regular file, which alone is opened. */
    bool isRegularFile = false;
    /**
     * What the system says to opening it for reading, or to the copy that reading it takes where
     * its log lies beside it without an index; no error where that succeeds.
     */
    std::error_code readError;
    /**
     * What the system says to changing it: to opening it for writing, or to making the files beside
     * it that a change takes. No error where both are allowed.
     */
    std::error_code writeError;
    /** A companion that is no regular file with one name: the database is not opened beside it. */
    std::optional<std::filesystem::path> refusedCompanion;
    /**
     * Another process has locked the database against changes at this moment, or, without a
     * write-ahead log, reads it at this moment. Only a lock says so, never an error.
     */
    bool isLocked = false;
    /** The process with that lock, where the system tells. */
    std::optional<long> lockHolder;
    /** A log with contents or an unfinished journal: what a size of the main file leaves out. */
    bool hasPendingChanges = false;
    /** All that follows is of one moment. False where the file changed during every attempt. */
    bool isOfOneMoment = false;
    /** SQLite's code for what kept from reading: 0 where nothing did. */
    int resultCode = 0;
    /** What was said of it, by SQLite or the system; empty where nothing was. */
    std::string message;
    /** One for each question, in their order; none where the database could not be read at all. */
    std::vector<TableFinding> tables;

    /** The file can be opened, and all tables asked about were read whole. */
    bool wasReadWhole() const noexcept;

    /** The rows of all tables; absent where one could not be counted. */
    std::optional<std::int64_t> rows() const noexcept;
};

/**
 * Inspects a database. Never throws but `OperationCancelled` and `std::bad_alloc`; a file that is
 * missing, or no database, is a finding. The process must hold no lock of its own on the file: the
 * system would drop it.
 */
BROWSERSWEEP_EXPORT DatabaseInspection
inspectDatabase(const std::filesystem::path& file, std::span<const TableQuestion> questions,
                const std::shared_ptr<const FileManager>& fileManager);

/** An item whose data lie in a database that can be inspected. */
class BROWSERSWEEP_EXPORT InspectableDatabase {
public:
    /** @{ */
    /** There is nothing in it to make or to copy: for the items that inherit from it. */
    InspectableDatabase() = default;
    InspectableDatabase(const InspectableDatabase&) = default;
    InspectableDatabase& operator=(const InspectableDatabase&) = default;
    /** @} */
    virtual ~InspectableDatabase();

    /** Inspects it; the rows of interest are those that the filters select. */
    virtual DatabaseInspection inspect(CleanableDataFilters filters) const = 0;
};

}  // namespace browsersweep
