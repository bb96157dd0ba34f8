#include "browsersweep/sqlite/FilterFault.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <sqlite3.h>

#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/sqlite/SQLiteStatementComponents.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

namespace browsersweep {
namespace {

using Connection = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;

/** A database in memory with a table of each kind, to ask SQLite itself. */
Connection openSample() {
    constexpr const char* tables =
        "CREATE TABLE pages (url, visited, kept);"
        "CREATE TABLE history_items (id, url);"
        "CREATE TABLE history_visits (id, history_item, visit_time);";
    constexpr int access = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MEMORY;
    sqlite3* handle = nullptr;
    int code = sqlite3_open_v2(":memory:", &handle, access, nullptr);
    Connection connection(handle, &sqlite3_close);
    if (code == SQLITE_OK) {
        code = sqlite3_exec(handle, tables, nullptr, nullptr, nullptr);
    }
    if (code != SQLITE_OK) {
        throw SQLiteError(sqlite3_errstr(code), code);
    }
    return connection;
}

/** With all that a table can have, so that its condition nests as deep as any. */
SQLiteStatementComponents sampleTable() {
    const auto encode = [](const Date& /*date*/) { return std::string("-1"); };
    return {"pages",
            SQLiteStatementComponents::ColumnsForFiltering{
                "url", SQLiteStatementComponents::EncodableColumn<Date>{"visited", encode}},
            {"pages.kept=0"}};
}

std::vector<std::string> statementsWith(CleanableDataFilters filters, FilteredStatement statement) {
    if (statement == FilteredStatement::ofTable) {
        const auto table = sampleTable();
        return {table.sql("SELECT COUNT(*)", filters), table.sql("DELETE", filters)};
    }
    const SafariHistoryCleanableDatabase history({}, nullptr);
    return {history.countStatement(filters), history.deleteStatement(filters)};
}

bool canPrepare(const Connection& connection, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(connection.get(), sql.c_str(), -1, &statement, nullptr);
    sqlite3_finalize(statement);
    return code == SQLITE_OK;
}

bool isAnyPatternTooLong(const Connection& connection, CleanableDataFilters filters) {
    constexpr std::size_t wildcards = 2;
    const int limit = sqlite3_limit(connection.get(), SQLITE_LIMIT_LIKE_PATTERN_LENGTH, -1);
    return std::any_of(filters.begin(), filters.end(), [limit](const CleanableDataFilter& filter) {
        const auto& patterns = filter.patterns();
        return std::any_of(patterns.begin(), patterns.end(), [limit](const std::string& pattern) {
            return pattern.size() + wildcards > static_cast<std::size_t>(limit);
        });
    });
}

}  // namespace

FilteredStatement filteredStatement(Browser browser, CleanableDataCategory category) noexcept {
    return browser == Browser::safari && category == CleanableDataCategory::history
               ? FilteredStatement::ofSafariHistory
               : FilteredStatement::ofTable;
}

std::optional<FilterFault> filterFault(CleanableDataFilters filters, FilteredStatement statement) {
    if (filters.empty()) {
        return std::nullopt;
    }
    const Connection connection = openSample();
    if (isAnyPatternTooLong(connection, filters)) {
        return FilterFault::tooLong;
    }
    const auto statements = statementsWith(filters, statement);
    const bool doAllFit =
        std::all_of(statements.begin(), statements.end(),
                    [&connection](const std::string& sql) { return canPrepare(connection, sql); });
    return doAllFit ? std::nullopt : std::optional(FilterFault::tooMany);
}

}  // namespace browsersweep
