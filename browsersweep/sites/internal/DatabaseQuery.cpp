#include "browsersweep/sites/internal/DatabaseQuery.h"

#include <cstddef>

#include <sqlite3.h>

#include "browsersweep/sqlite/SQLiteError.h"

namespace browsersweep {
namespace {

[[noreturn]] void throwError(sqlite3* database, int code, OperationControl* control) {
    if (code == SQLITE_INTERRUPT) {
        continueOrThrow(control);
    }
    throw SQLiteError(sqlite3_errmsg(database), code);
}

}  // namespace

DatabaseQuery::DatabaseQuery(sqlite3* database, const std::string& sql, OperationControl* control)
    : database_(database), control_(control) {
    continueOrThrow(control_);
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr);
    if (code != SQLITE_OK) {
        throwError(database_, code, control_);
    }
    statement_.reset(statement);
}

void DatabaseQuery::Finalizer::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

bool DatabaseQuery::next() {
    const int code = sqlite3_step(statement_.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE) {
        throwError(database_, code, control_);
    }
    return code == SQLITE_ROW;
}

std::int64_t DatabaseQuery::number(int column) const noexcept {
    return sqlite3_column_int64(statement_.get(), column);
}

double DatabaseQuery::real(int column) const noexcept {
    return sqlite3_column_double(statement_.get(), column);
}

std::string_view DatabaseQuery::text(int column) const noexcept {
    const bool isBlob = sqlite3_column_type(statement_.get(), column) == SQLITE_BLOB;
    const void* const bytes =
        isBlob ? sqlite3_column_blob(statement_.get(), column)
               : static_cast<const void*>(sqlite3_column_text(statement_.get(), column));
    const auto count = static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column));
    return bytes == nullptr ? std::string_view()
                            : std::string_view(static_cast<const char*>(bytes), count);
}

bool DatabaseQuery::isNull(int column) const noexcept {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

void runStatement(sqlite3* database, const std::string& sql, OperationControl* control) {
    DatabaseQuery query(database, sql, control);
    while (query.next()) {
    }
}

std::int64_t numberOf(sqlite3* database, const std::string& sql, OperationControl* control) {
    DatabaseQuery query(database, sql, control);
    return query.next() ? query.number(0) : 0;
}

}  // namespace browsersweep
