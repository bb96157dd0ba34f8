#include "browsersweep/sqlite/SQLiteConnection.h"

#include <optional>

#include <sqlite3.h>

namespace browsersweep {
namespace {

std::optional<std::string> currentMessage(sqlite3* database) {
    const char* const message = sqlite3_errmsg(database);
    return message == nullptr ? std::nullopt : std::optional<std::string>(message);
}

/**
 * Ends a failed opening. The handle is closed first and its message read after that: hosts have
 * always been shown what SQLite answers in this order, so it stays. SQLite marks a handle before it
 * lets go of it and answers from the mark, which is why this reads nothing that was reused; no
 * other place may do the same.
 */
[[noreturn]] void closeAndThrowMessage(sqlite3* failed) {
    sqlite3_close(failed);
    throw SQLiteError(currentMessage(failed));
}

}  // namespace

SQLiteConnection::SQLiteConnection(const std::filesystem::path& path) {
    sqlite3* opened = nullptr;
    if (sqlite3_open(path.c_str(), &opened) != SQLITE_OK) {
        closeAndThrowMessage(opened);
    }
    database_ = std::shared_ptr<sqlite3>(opened, sqlite3_close);
}

SQLiteStatement SQLiteConnection::prepare(const std::string& sql) const {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database_.get(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
        throwCurrentError();
    }
    return SQLiteStatement(statement);
}

void SQLiteConnection::throwCurrentError() const {
    throw SQLiteError(currentMessage(database_.get()));
}

bool SQLiteConnection::hasTable(std::string_view tableName) const {
    return evaluate(tableExistenceSQL(tableName), TableExistenceEvaluator{});
}

}  // namespace browsersweep
