#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/internal/TemporaryFolder.h"
#include "browsersweep/sqlite/internal/ConfinedFiles.h"

struct sqlite3;

namespace browsersweep {

/**
 * A database that is open for changes after which nothing of what went stays in its files. The same
 * bounds hold as for `SQLiteConnection`: no file but its own, and nothing in a schema runs. But a
 * database that is locked is an error here, never one without rows.
 *
 * `VACUUM` builds a second database of what is kept. Of a small file that is done in memory, of a
 * large one in a private folder for temporary files.
 */
class SiteDatabase {
public:
    /** Opens a file that is there. Throws `SQLiteError`, `filesystem_error`, `OperationCancelled`.
     */
    SiteDatabase(const std::filesystem::path& file,
                 const std::shared_ptr<const FileManager>& fileManager);
    SiteDatabase(const SiteDatabase&) = delete;
    SiteDatabase& operator=(const SiteDatabase&) = delete;
    ~SiteDatabase();

    /** SQLite's own handle. */
    sqlite3* handle() const noexcept { return handle_; }

    /** Runs a statement; throws like a query. */
    void run(const std::string& sql) const;
    /** The first number that a statement gives; throws like a query. */
    std::int64_t number(const std::string& sql) const;

    /**
     * Whether rows that were deleted earlier still stand in the page that a table without rows, or
     * an index of it, begins with: such a page is never free. False for a table that has rows.
     */
    bool hasRemains(std::string_view table) const;

    /**
     * Makes changes in one transaction that no other program can come between, in a database that
     * is whole: a damaged one is refused as it is. What goes is overwritten. Whatever is thrown,
     * nothing is changed then.
     */
    void change(const std::function<void()>& changes) const;

    /**
     * Writes the file anew with what is kept, and empties its log. False where a disk has less room
     * than 2.5 times what is kept: then only the log is emptied. The file is whole afterwards, or
     * an error is thrown.
     */
    bool compact();

private:
    void checkWholeness() const;
    bool isBlank(std::int64_t page) const;
    void emptyLog() const;
    void vacuum();
    bool hasRoomToCompact() const;

    std::filesystem::path file_;
    std::shared_ptr<OperationControl> control_;
    std::optional<TemporaryFolder> folder_;
    ConfinedFiles files_;
    sqlite3* handle_ = nullptr;
};

}  // namespace browsersweep
