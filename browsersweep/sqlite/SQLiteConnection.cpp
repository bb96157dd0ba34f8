#include "browsersweep/sqlite/SQLiteConnection.h"

#include <array>
#include <optional>
#include <utility>

#include <sqlite3.h>

#include "browsersweep/sqlite/internal/ConfinedFiles.h"

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

// What a schema could make run, and what it could change of itself.
constexpr std::array<std::pair<int, int>, 5> protections{{
    {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
    {SQLITE_DBCONFIG_ENABLE_VIEW, 0},
    {SQLITE_DBCONFIG_ENABLE_FKEY, 0},
    {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
    {SQLITE_DBCONFIG_DEFENSIVE, 1},
}};

/** Returns SQLite's code: a connection that cannot be protected is not used. */
int protect(sqlite3* database) noexcept {
    for (const auto& [setting, value] : protections) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): SQLite has no other form
        const int code = sqlite3_db_config(database, setting, value, static_cast<int*>(nullptr));
        if (code != SQLITE_OK) {
            return code;
        }
    }
    sqlite3_limit(database, SQLITE_LIMIT_ATTACHED, 0);
    return sqlite3_drop_modules(database, nullptr);
}

/** Often enough to stop within a millisecond, seldom enough to cost nothing. */
constexpr int instructionsBetweenQuestions = 1000;

int isToStop(void* control) {
    return static_cast<OperationControl*>(control)->shouldStop() ? 1 : 0;
}

void countRow(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/) {
    void* const rows = sqlite3_aggregate_context(context, sizeof(sqlite3_int64));
    if (rows != nullptr) {
        ++*static_cast<sqlite3_int64*>(rows);
    }
}

void giveCount(sqlite3_context* context) {
    const void* const rows = sqlite3_aggregate_context(context, 0);
    sqlite3_result_int64(context, rows == nullptr ? 0 : *static_cast<const sqlite3_int64*>(rows));
}

/**
 * Lets the control stop statements. SQLite counts a whole table in one instruction, during which it
 * asks nobody; a damaged tree whose pages point to the same page again and again keeps it there for
 * ever. A function of our own makes it go from row to row.
 */
int stopBy(OperationControl& control, sqlite3* database) noexcept {
    sqlite3_progress_handler(database, instructionsBetweenQuestions, isToStop, &control);
    return sqlite3_create_function(database, "count", 0, SQLITE_UTF8 | SQLITE_INNOCUOUS, nullptr,
                                   nullptr, countRow, giveCount);
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
