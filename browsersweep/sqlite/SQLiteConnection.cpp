#include "browsersweep/sqlite/SQLiteConnection.h"

#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include <sqlite3.h>

#include "browsersweep/sqlite/internal/ConfinedFiles.h"
#include "browsersweep/sqlite/internal/Protection.h"

namespace browsersweep {
namespace {

std::optional<std::string> textOf(const char* message) {
    return message == nullptr ? std::nullopt : std::optional<std::string>(message);
}

/**
 * Ends a failed opening. The handle is closed first, and the message is what SQLite answers for a
 * handle that is closed: hosts have always been shown that. It is asked for without the handle,
 * whose memory is no longer there.
 */
[[noreturn]] void closeAndThrowMessage(sqlite3* failed, int resultCode) {
    sqlite3_close(failed);
    throw SQLiteError(
        textOf(failed != nullptr ? sqlite3_errstr(SQLITE_MISUSE) : sqlite3_errmsg(nullptr)),
        resultCode);
}

}  // namespace

/** Closes the handle before the way to its files and the control go. */
struct SQLiteConnection::Database {
    Database(const std::filesystem::path& path, DatabaseAccess access,
             std::shared_ptr<OperationControl> asked)
        : control(std::move(asked)), files(path, access, control) {
        int code = files.open(&handle);
        if (code == SQLITE_OK) {
            code = protect(handle);
        }
        if (code == SQLITE_OK && control) {
            code = stopBy(*control, handle);
        }
        if (code == SQLITE_INTERRUPT && control) {  // opening reads the file's first bytes
            sqlite3_close(handle);
            control->continueOrThrow();
        }
        if (code != SQLITE_OK) {
            closeAndThrowMessage(handle, code);
        }
    }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database() { sqlite3_close(handle); }

    std::shared_ptr<OperationControl> control;
    ConfinedFiles files;
    sqlite3* handle = nullptr;
    int silentResultCode = SQLITE_OK;
    std::int64_t countedRows = 0;
};

SQLiteConnection::SQLiteConnection(const std::filesystem::path& path, DatabaseAccess access,
                                   std::shared_ptr<OperationControl> control)
    : database_(std::make_shared<Database>(path, access, std::move(control))) {}

SQLiteConnection::SQLiteConnection(const std::filesystem::path& path,
                                   std::shared_ptr<OperationControl> control)
    : SQLiteConnection(path, DatabaseAccess::readWrite, std::move(control)) {}

SQLiteConnection SQLiteConnection::readingOnly(const std::filesystem::path& path,
                                               std::shared_ptr<OperationControl> control) {
    return {path, DatabaseAccess::readOnly, std::move(control)};
}

SQLiteConnection SQLiteConnection::readingAsItLies(const std::filesystem::path& path,
                                                   std::shared_ptr<OperationControl> control) {
    std::error_code ignored;  // what cannot be examined cannot be opened either
    const bool hasLog = std::filesystem::exists(std::filesystem::path(path) += "-wal", ignored);
    return {path, hasLog ? DatabaseAccess::withLog : DatabaseAccess::asItLies, std::move(control)};
}

SQLiteStatement SQLiteConnection::prepare(const std::string& sql) const {
    if (database_->control) {
        database_->control->continueOrThrow();
    }
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(database_->handle, sql.c_str(), -1, &statement, nullptr);
    if (code != SQLITE_OK) {
        throwCurrentError(code);
    }
    return SQLiteStatement(statement);
}

void SQLiteConnection::noteEnd(const SQLiteStatement& statement) const {
    const int code = statement.resultCode();
    if (code == SQLITE_INTERRUPT) {
        throwCurrentError(code);
    }
    if (code != SQLITE_ROW && code != SQLITE_DONE && code != SQLITE_ERROR && code != SQLITE_OK) {
        database_->silentResultCode = code;
    }
    if (database_->control) {
        const std::int64_t changed = changedRowCount();
        const std::int64_t before = std::exchange(database_->countedRows, changed);
        database_->control->count({0, 0, static_cast<std::uint64_t>(changed - before)});
    }
}

void SQLiteConnection::throwCurrentError(int resultCode) const {
    if (resultCode == SQLITE_INTERRUPT && database_->control) {
        database_->control->continueOrThrow();
    }
    throw SQLiteError(textOf(sqlite3_errmsg(database_->handle)), resultCode);
}

bool SQLiteConnection::hasTable(std::string_view tableName) const {
    return evaluate(tableExistenceSQL(tableName), TableExistenceEvaluator{});
}

std::int64_t SQLiteConnection::changedRowCount() const noexcept {
    return sqlite3_total_changes(database_->handle);
}

int SQLiteConnection::silentResultCode() const noexcept {
    return database_->silentResultCode;
}

sqlite3* SQLiteConnection::dbPointer() const noexcept {
    return database_->handle;
}

}  // namespace browsersweep
