#include "browsersweep/sites/internal/TableCatalogue.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/sites/internal/DatabaseQuery.h"

namespace browsersweep {
namespace {

struct Column {
    std::string name;
    bool isRequired = false;
    bool isRowNumber = false;
    bool isLarge = false;
};

using Columns = std::vector<Column>;

std::string inSingleQuotes(std::string_view name) {
    return "'" + std::string(name) + "'";
}

// What is no table of its own has no page that it begins with.
bool isTable(sqlite3* database, std::string_view name, OperationControl* control) {
    return numberOf(database,
                    "SELECT EXISTS (SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = " +
                        inSingleQuotes(name) + " AND rootpage > 0)",
                    control) != 0;
}

bool isSameLetter(char one, char other) noexcept {
    return (one | 0x20) == other;
}

bool isInteger(std::string_view type) {
    constexpr std::string_view integer = "integer";
    return std::equal(type.begin(), type.end(), integer.begin(), integer.end(), isSameLetter);
}

// As SQLite tells what is kept as it is.
bool isOfBytes(std::string_view type) {
    constexpr std::string_view blob = "blob";
    return type.empty() || std::search(type.begin(), type.end(), blob.begin(), blob.end(),
                                       isSameLetter) != type.end();
}

Columns columnsOf(sqlite3* database, std::string_view table, OperationControl* control) {
    Columns columns;
    if (table.empty() || !isTable(database, table, control)) {
        return columns;
    }
    DatabaseQuery query(database, "PRAGMA table_info(" + inSingleQuotes(table) + ")", control);
    int keys = 0;
    while (query.next()) {
        const bool isKey = query.number(5) != 0;
        keys += isKey ? 1 : 0;
        const bool isRowNumber = isKey && isInteger(query.text(2));
        columns.push_back({std::string(query.text(1)), query.number(3) != 0, isRowNumber,
                           isOfBytes(query.text(2))});
    }
    for (Column& column : columns) {
        column.isRowNumber = column.isRowNumber && keys == 1;
    }
    return columns;
}

const Column* find(const Columns& columns, std::string_view name) {
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&](const Column& column) { return column.name == name; });
    return found == columns.end() ? nullptr : &*found;
}

}  // namespace

TableColumns columnsIn(sqlite3* database, const TraceTable& table, OperationControl* control) {
    const Columns own = columnsOf(database, table.name, control);
    const Columns other = columnsOf(database, table.relation.other, control);
    TableColumns result;
    for (const Column& column : own) {
        result.own.insert(column.name);
        if (column.isLarge) {
            result.large.insert(column.name);
        }
    }
    for (const Column& column : other) {
        result.other.insert(column.name);
    }
    const Column* const refers = find(own, table.relation.column);
    const Column* const referred = find(other, table.relation.otherColumn);
    result.ownIsRequired = refers != nullptr && (refers->isRequired || refers->isRowNumber);
    result.otherIsRowNumber = referred != nullptr && referred->isRowNumber;
    return result;
}

}  // namespace browsersweep
