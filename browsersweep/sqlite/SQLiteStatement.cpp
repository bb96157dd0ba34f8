#include "browsersweep/sqlite/SQLiteStatement.h"

#include <sqlite3.h>

namespace browsersweep {

SQLiteStatement::SQLiteStatement(sqlite3_stmt* statement) noexcept : statement_(statement) {}

void SQLiteStatement::Finalizer::operator()(sqlite3_stmt* statement) const noexcept {
    sqlite3_finalize(statement);
}

SQLiteStatement::Step SQLiteStatement::step() noexcept {
    resultCode_ = sqlite3_step(statement_.get());
    switch (resultCode_) {
        case SQLITE_ROW:
            return Step::row;
        case SQLITE_ERROR:
            return Step::error;
        default:
            return Step::noRow;
    }
}

std::int32_t SQLiteStatement::integer(int column) const noexcept {
    return sqlite3_column_int(statement_.get(), column);
}

std::optional<std::string> SQLiteStatement::text(int column) const {
    const unsigned char* const bytes = sqlite3_column_text(statement_.get(), column);
    if (bytes == nullptr) {
        return std::nullopt;
    }
    return reinterpret_cast<const char*>(bytes);
}

}  // namespace browsersweep
