#include <optional>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "browsersweep/sqlite/SQLiteError.h"

namespace browsersweep {
namespace {

using Kind = SQLiteError::Kind;

TEST(SQLiteError, everyCodeHasItsMeaning) {
    const std::vector<std::pair<int, Kind>> rows{
        {SQLITE_OK, Kind::other},
        {SQLITE_ERROR, Kind::statement},
        {SQLITE_INTERNAL, Kind::other},
        {SQLITE_PERM, Kind::denied},
        {SQLITE_ABORT, Kind::other},
        {SQLITE_BUSY, Kind::locked},
        {SQLITE_LOCKED, Kind::locked},
        {SQLITE_NOMEM, Kind::other},
        {SQLITE_READONLY, Kind::denied},
        {SQLITE_INTERRUPT, Kind::other},
        {SQLITE_IOERR, Kind::inputOutput},
        {SQLITE_CORRUPT, Kind::damaged},
        {SQLITE_NOTFOUND, Kind::other},
        {SQLITE_FULL, Kind::full},
        {SQLITE_CANTOPEN, Kind::cannotOpen},
        {SQLITE_PROTOCOL, Kind::locked},
        {SQLITE_EMPTY, Kind::other},
        {SQLITE_SCHEMA, Kind::other},
        {SQLITE_TOOBIG, Kind::damaged},
        {SQLITE_CONSTRAINT, Kind::other},
        {SQLITE_MISMATCH, Kind::other},
        {SQLITE_MISUSE, Kind::other},
        {SQLITE_NOLFS, Kind::other},
        {SQLITE_AUTH, Kind::denied},
        {SQLITE_FORMAT, Kind::damaged},
        {SQLITE_RANGE, Kind::other},
        {SQLITE_NOTADB, Kind::damaged},
        {SQLITE_NOTICE, Kind::other},
    };
    for (const auto& [code, kind] : rows) {
        EXPECT_EQ(SQLiteError::kindOf(code), kind) << code;
        EXPECT_EQ(SQLiteError::kindOf(code | 0x2A00), kind) << code;
        EXPECT_EQ(SQLiteError("", code).kind(), kind) << code;
    }
}

TEST(SQLiteError, saysWhatSQLiteSaidOrNothing) {
    EXPECT_STREQ(SQLiteError("no such table", SQLITE_ERROR).what(), "no such table");
    EXPECT_STREQ(SQLiteError(std::nullopt).what(), "");
    EXPECT_STREQ(SQLiteStatementEvaluationError().what(), "stepping a statement failed");
}

}  // namespace
}  // namespace browsersweep
