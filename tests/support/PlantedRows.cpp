#include "tests/support/PlantedRows.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <sstream>

namespace browsersweep::tests {
namespace {

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

std::string hexadecimal(const std::string& bytes) {
    constexpr std::array digits{'0', '1', '2', '3', '4', '5', '6', '7',
                                '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
    std::string result;
    for (const char each : bytes) {
        const auto value = static_cast<unsigned char>(each);
        result.push_back(digits.at(value / 16));
        result.push_back(digits.at(value % 16));
    }
    return result;
}

/** A message whose second field is a message with an address as its first. */
std::string messageNaming(const std::string& site) {
    const std::string address = "https://www." + site + "/in-message";
    const std::string inner = "\x0a" + std::string(1, static_cast<char>(address.size())) + address;
    const std::string outer = "\x12" + std::string(1, static_cast<char>(inner.size())) + inner;
    return "x'" + hexadecimal(std::string("\x08\x01", 2) + outer) + "'";
}

std::string insertion(const Database& database, const std::string& row) {
    std::istringstream parts(row);
    std::string table;
    std::getline(parts, table, '|');
    std::string columns;
    std::string values;
    std::string quoted;
    for (std::string part; std::getline(parts, part, '|');) {
        const auto equals = part.find('=');
        columns += (columns.empty() ? "" : ", ") + part.substr(0, equals);
        values += (values.empty() ? "" : ", ") + part.substr(equals + 1);
        quoted += (quoted.empty() ? "'" : ", '") + part.substr(0, equals) + "'";
    }
    const std::string info = "pragma_table_info('" + table + "')";
    const std::string others =
        " FROM " + info + " WHERE [notnull] AND dflt_value IS NULL AND name NOT IN (" + quoted +
        ") AND NOT (pk AND type = 'INTEGER' AND (SELECT COUNT(*) FROM " + info + " WHERE pk) = 1)";
    columns += database.text("SELECT coalesce(group_concat(', ' || name, ''), '')" + others);
    values += database.text(
        "SELECT coalesce(group_concat(CASE WHEN type LIKE 'INT%' OR type LIKE "
        "'BOOL%' OR type = 'REAL' THEN ', 0' ELSE ', ''''' END, ''), '')" +
        others);
    return "INSERT INTO " + table + " (" + columns + ") VALUES (" + values + ")";
}

std::string forSite(const std::string& row, const std::string& site, int number) {
    return replaced(replaced(replaced(row, "{s}", site), "{n}", std::to_string(number)), "{m}",
                    messageNaming(site));
}

}  // namespace

PlantedRows withSecondSite(PlantedRows rows, const std::string& site) {
    for (std::string& row : rows) {
        for (auto at = row.find("{t}"); at != std::string::npos; at = row.find("{t}")) {
            row.replace(at, 3, site);
        }
    }
    return rows;
}

void plant(const Database& database, const PlantedRows& rows, const std::string& site, int number) {
    for (std::string rest : rows) {
        while (!rest.empty()) {
            const auto end = std::min(rest.find(";;"), rest.size());
            database.execute(insertion(database, forSite(rest.substr(0, end), site, number)));
            rest.erase(0, end + 2);
        }
    }
}

void plantDeleted(const Database& database, const PlantedRows& rows, const std::string& site,
                  int number) {
    database.execute("PRAGMA secure_delete = OFF");
    for (const std::string& row : rows) {
        const std::string table = row.substr(0, row.find('|'));
        database.execute("CREATE TEMP TABLE before AS SELECT * FROM " + table);
        plant(database, {row}, site, number);
        std::string takingBack = "DELETE FROM " + table;
        takingBack.append("; INSERT INTO ").append(table);
        takingBack.append(" SELECT * FROM before; DROP TABLE before");
        database.execute(takingBack);
    }
}

}  // namespace browsersweep::tests
