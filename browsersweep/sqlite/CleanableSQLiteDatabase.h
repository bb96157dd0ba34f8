#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableData.h"
#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sqlite/SQLiteStatementComponents.h"

namespace browsersweep {

/**
 * Rows of a database's tables. Only rows are deleted; the file is never deleted, truncated or
 * compacted. A file that is missing or is a directory, and a table that is missing, hold nothing:
 * that is no error. Neither is a database that is locked at the moment of counting or deleting: it
 * counts as empty, and the deletion is silently not done.
 */
class BROWSERSWEEP_EXPORT CleanableSQLiteDatabase : public CleanableData {
public:
    /** The components are handled in their order; a table may occur more than once. */
    CleanableSQLiteDatabase(std::filesystem::path file,
                            std::vector<SQLiteStatementComponents> components,
                            std::shared_ptr<const FileManager> fileManager);

    /** The database file, whether or not it exists. */
    const std::filesystem::path& file() const noexcept { return file_; }
    /** The tables, in the order in which they are handled. */
    const std::vector<SQLiteStatementComponents>& components() const noexcept {
        return components_;
    }

    /** Always true: the browser keeps the database open. */
    bool requiresClosedBrowserToClean() const noexcept override { return true; }

    using CleanableData::clean;
    using CleanableData::size;
    /**
     * The number of selected rows, exact, counted on a temporary copy; where it is not 0, the size
     * of the whole file, approximate. Throws `filesystem_error` and `SQLiteError`.
     */
    CleanableDataSize size(CleanableDataFilters filters) const override;

    /** Deletes the selected rows in place, table after table. Throws `SQLiteError`. */
    void clean(CleanableDataFilters filters) const override;

private:
    bool hasWork() const noexcept;
    std::int64_t countOnCopy(CleanableDataFilters filters) const;

    std::filesystem::path file_;
    std::vector<SQLiteStatementComponents> components_;
    std::shared_ptr<const FileManager> fileManager_;
};

/**
 * The size of a database of which so many rows are selected: the count is exact, the bytes are the
 * whole file's, approximate, or none for no row. Throws `filesystem_error` where the file's
 * attributes cannot be read, also for no row.
 */
BROWSERSWEEP_EXPORT CleanableDataSize databaseSize(std::int64_t rowCount,
                                                   const std::filesystem::path& file,
                                                   const FileManager& fileManager);

}  // namespace browsersweep
