#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableData.h"
#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sqlite/DatabaseInspection.h"
#include "browsersweep/sqlite/SQLiteStatementComponents.h"

namespace browsersweep {

/**
 * Rows of a database's tables. Only rows are deleted; the file is never deleted, truncated or
 * compacted. A file that is missing or is a directory, and a table that is missing, hold nothing:
 * that is no error. Neither is a database that is locked at the moment of counting or deleting: it
 * counts as empty, and the deletion is silently not done.
 *
 * The file manager's control is asked while statements run, and told of the rows that were counted
 * or deleted. A statement that is stopped is taken back; those before it hold.
 */
class BROWSERSWEEP_EXPORT CleanableSQLiteDatabase : public CleanableData,
                                                    public InspectableDatabase {
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
    /** What reaches the file wherever SQLite does not. */
    const std::shared_ptr<const FileManager>& fileManager() const noexcept { return fileManager_; }

    /** Always true: the browser keeps the database open. */
    bool requiresClosedBrowserToClean() const noexcept override { return true; }

    std::vector<CleanableDataLocation> locations() const override {
        return {{CleanableDataLocation::Kind::database, file_}};
    }

    /** A part for each of the components. */
    std::vector<CleanableDataPart> parts() const override;

    using CleanableData::clean;
    using CleanableData::size;
    /**
     * The number of selected rows, exact, counted on a temporary copy; where it is not 0, the size
     * of the whole file, approximate. Throws `filesystem_error`, also where the temporary folder
     * has no room for a copy, `SQLiteError` and `OperationCancelled`.
     */
    CleanableDataSize size(CleanableDataFilters filters) const override;

    /**
     * Deletes the selected rows in place, table after table, without any room in the temporary
     * folder. Throws `SQLiteError` and `OperationCancelled`.
     */
    void clean(CleanableDataFilters filters) const override;

    /** What can truly be said of the file, and of the selected rows of each table. */
    DatabaseInspection inspect(CleanableDataFilters filters) const override;

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
