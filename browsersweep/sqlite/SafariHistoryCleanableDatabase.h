#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableData.h"
#include "browsersweep/cleanable/CleanableDataCategory.h"
#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sqlite/DatabaseInspection.h"
#include "browsersweep/sqlite/SQLiteConnection.h"
#include "browsersweep/sqlite/SQLiteStatementComponents.h"

namespace browsersweep {

/**
 * Safari's history: visits, each of an address. Visits are counted and deleted, by the address
 * ("history_items.url") and the time ("history_visits.visit_time"); addresses that no visit refers
 * to any more go with them. Only rows are deleted. A file that is missing, is a directory, or lacks
 * one of the two tables holds nothing: that is no error, and no file is created for it. While
 * another program writes, a deletion is silently not done; a database that it has locked against
 * reading too is an error.
 *
 * Sizing changes nothing, neither the file nor what lies beside it. The file is read in place, also
 * while a running browser keeps a log with its index beside it. Where reading in place would write
 * (a log without an index, a journal left by a crash), the file and what belongs to it are copied
 * to a private temporary folder, and the copy counts once it is shown to be of one moment. A file
 * that keeps changing meanwhile gives a size that is marked approximate.
 *
 * The file manager's control is asked while statements run, and told of rows: visits that were
 * counted, and visits and addresses that were deleted.
 */
class BROWSERSWEEP_EXPORT SafariHistoryCleanableDatabase : public CleanableData,
                                                           public InspectableDatabase {
public:
    /** Filters by the columns of Safari's own tables. */
    SafariHistoryCleanableDatabase(std::filesystem::path file,
                                   std::shared_ptr<const FileManager> fileManager);

    /** Of the components, what turns filters into a condition is used. */
    SafariHistoryCleanableDatabase(std::filesystem::path file, SQLiteStatementComponents components,
                                   std::shared_ptr<const FileManager> fileManager);

    /** The database file, whether or not it exists. */
    const std::filesystem::path& file() const noexcept { return file_; }
    /** The columns that filters act on. */
    const SQLiteStatementComponents& components() const noexcept { return components_; }
    /** What reaches the file wherever SQLite does not. */
    const std::shared_ptr<const FileManager>& fileManager() const noexcept { return fileManager_; }

    /** Always history. */
    static constexpr CleanableDataCategory category() noexcept {
        return CleanableDataCategory::history;
    }

    /** Always true: Safari keeps the database open. */
    bool requiresClosedBrowserToClean() const noexcept override { return true; }

    std::vector<CleanableDataLocation> locations() const override {
        return {{CleanableDataLocation::Kind::database, file_, true}};
    }

    /** One part: the visits. */
    std::vector<CleanableDataPart> parts() const override;

    using CleanableData::clean;
    using CleanableData::size;
    /**
     * The number of selected visits, exact unless the file kept changing; where it is not 0, the
     * size of the whole file, approximate. Throws `SQLiteError`, `filesystem_error` and
     * `OperationCancelled`.
     */
    CleanableDataSize size(CleanableDataFilters filters) const override;

    /**
     * Deletes the selected visits in place, then all addresses without visits. Throws
     * `SQLiteError` and `OperationCancelled`; visits that were deleted before it stay deleted.
     */
    void clean(CleanableDataFilters filters) const override;

    /** What can truly be said of the file, of the addresses' table and of the selected visits. */
    DatabaseInspection inspect(CleanableDataFilters filters) const override;

    /** The statement that counts the selected visits. */
    std::string countStatement(CleanableDataFilters filters) const;

    /** The statement that deletes the selected visits. */
    std::string deleteStatement(CleanableDataFilters filters) const;

    /** The statement that then deletes the addresses that no visit refers to. */
    static std::string addressStatement();

private:
    std::optional<std::int32_t> countIn(const SQLiteConnection& connection,
                                        CleanableDataFilters filters) const;

    std::filesystem::path file_;
    SQLiteStatementComponents components_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
