#include "tests/support/DatabaseContents.h"

#include <algorithm>
#include <memory>
#include <stdexcept>

#include <sqlite3.h>

#include "tests/support/TemporaryFolder.h"

namespace browsersweep::tests {
namespace {

using Lines = std::vector<std::string>;
using Row = std::vector<std::string>;

std::vector<Row> rowsOf(sqlite3* database, const std::string& sql) {
    std::vector<Row> rows;
    const auto add = [](void* into, int columns, char** values, char** /*names*/) {
        Row row;
        for (int column = 0; column < columns; ++column) {
            row.emplace_back(values[column] == nullptr ? "NULL" : values[column]);
        }
        static_cast<std::vector<Row>*>(into)->push_back(row);
        return 0;
    };
    if (sqlite3_exec(database, sql.c_str(), add, &rows, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(database));
    }
    return rows;
}

std::string lineOf(const std::string& table, const Row& row) {
    std::string line = table + ": ";
    for (std::size_t column = 0; column < row.size(); ++column) {
        line += (column == 0 ? "" : "|") + row[column];
    }
    return line;
}

}  // namespace

Lines contentsOf(const std::filesystem::path& database) {
    sqlite3* opened = nullptr;
    const int code = sqlite3_open(database.c_str(), &opened);
    const std::shared_ptr<sqlite3> closing(opened, sqlite3_close);
    if (code != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(opened));
    }
    Lines lines;
    for (const Row& table : rowsOf(opened,
                                   "SELECT name FROM sqlite_master WHERE type = 'table' AND name "
                                   "NOT LIKE 'sqlite_%'")) {
        for (const Row& row : rowsOf(opened, "SELECT * FROM \"" + table.front() + "\"")) {
            lines.push_back(lineOf(table.front(), row));
        }
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

Lines filesHolding(const std::filesystem::path& database, const std::string& text) {
    Lines files;
    for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
        const auto file = std::filesystem::path(database) += suffix;
        if (std::filesystem::exists(file) && readFile(file).find(text) != std::string::npos) {
            files.push_back(file.filename().string());
        }
    }
    return files;
}

}  // namespace browsersweep::tests
