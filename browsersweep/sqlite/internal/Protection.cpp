#include "browsersweep/sqlite/internal/Protection.h"

#include <array>
#include <utility>

#include <sqlite3.h>

namespace browsersweep {
namespace {

// What a schema could make run, and what it could change of itself.
constexpr std::array<std::pair<int, int>, 5> protections{{
    {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
    {SQLITE_DBCONFIG_ENABLE_VIEW, 0},
    {SQLITE_DBCONFIG_ENABLE_FKEY, 0},
    {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
    {SQLITE_DBCONFIG_DEFENSIVE, 1},
}};

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

}  // namespace

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

int stopBy(OperationControl& control, sqlite3* database) noexcept {
    sqlite3_progress_handler(database, instructionsBetweenQuestions, isToStop, &control);
    return sqlite3_create_function(database, "count", 0, SQLITE_UTF8 | SQLITE_INNOCUOUS, nullptr,
                                   nullptr, countRow, giveCount);
}

}  // namespace browsersweep
