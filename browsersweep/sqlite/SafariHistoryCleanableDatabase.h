#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableData.h"
#include "browsersweep/platform/FileManager.h"
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
 * Sizing reads the file in place, not a copy. A database with a write-ahead log or a journal left
 * by a crash is the exception: reading it in place would write to it (the log would be moved into
 * the file, the journal played back), and sizing must not change what it measures. So it is copied
 * together with its log or journal to a private temporary folder and read there. What is counted is
 * the same; files that Safari is just writing to may not fit together when copied, which counts as
 * damaged.
 */
class BROWSERSWEEP_EXPORT SafariHistoryCleanableDatabase : public CleanableData {
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

    /** Always true: Safari keeps the database open. */
    bool requiresClosedBrowserToClean() const noexcept override { return true; }

    using CleanableData::clean;
    using CleanableData::size;
    /**
     * The number of selected visits, exact; where it is not 0, the size of the whole file,
     * approximate. Throws `SQLiteError` and `filesystem_error`.
     */
    CleanableDataSize size(CleanableDataFilters filters) const override;

    /**
     * Deletes the selected visits in place, then all addresses without visits. Throws
     * `SQLiteError`; visits that were deleted before it stay deleted.
     */
    void clean(CleanableDataFilters filters) const override;

    /** The statement that counts the selected visits. */
    std::string countStatement(CleanableDataFilters filters) const;

    /** The statement that deletes the selected visits. */
    std::string deleteStatement(CleanableDataFilters filters) const;

private:
    std::optional<std::int32_t> count(CleanableDataFilters filters) const;
    std::optional<std::int32_t> countIn(const std::filesystem::path& database,
                                        CleanableDataFilters filters) const;

    std::filesystem::path file_;
    SQLiteStatementComponents components_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
