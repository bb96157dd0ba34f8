#include "browsersweep/sites/internal/TraceTableSQL.h"

#include <algorithm>
#include <utility>

namespace browsersweep {
namespace {

// The names are this library's own or come from the database, so any character may be in them.
std::string identifier(std::string_view name) {
    std::string result = "\"";
    for (const char letter : name) {
        result.append(letter == '"' ? 2 : 1, letter);
    }
    return result + '"';
}

std::string formAndColumn(const SiteColumn& column) {
    return std::to_string(static_cast<int>(column.form)) + ", " + identifier(column.name);
}

void append(std::string& text, std::string_view between, const std::string& more) {
    text.append(text.empty() || more.empty() ? "" : between).append(more);
}

std::string withWhere(const std::string& condition) {
    return condition.empty() ? std::string() : " WHERE " + condition;
}

}  // namespace

TraceTableSQL::TraceTableSQL(const TraceTable& table, TableColumns columns)
    : table_(table), columns_(std::move(columns)) {}

bool TraceTableSQL::has(std::string_view column) const {
    return !column.empty() && columns_.own.contains(column);
}

bool TraceTableSQL::hasRelation() const {
    return has(table_.relation.column) && columns_.other.contains(table_.relation.otherColumn);
}

bool TraceTableSQL::isNamedByRelation() const {
    return hasRelation() && columns_.other.contains(table_.relation.names.name);
}

bool TraceTableSQL::applies() const {
    if (columns_.own.empty()) {
        return false;
    }
    switch (table_.rule) {
        case TableRule::orphans:
        case TableRule::loosens:
            return hasRelation();
        case TableRule::follows:
            return isNamedByRelation();
        case TableRule::resets:
            return !isMixed() && !resetCondition().empty();
        default:
            return true;
    }
}

bool TraceTableSQL::isAboutOrphans() const {
    return table_.rule == TableRule::orphans || table_.rule == TableRule::loosens;
}

bool TraceTableSQL::isMixed() const {
    return !isAboutOrphans() && namesAny(true).empty();
}

std::string TraceTableSQL::ownNames() const {
    std::string arguments;
    for (const SiteColumn& column : table_.columns) {
        if (has(column.name)) {
            append(arguments, ", ", formAndColumn(column));
        }
    }
    return arguments.empty() ? arguments : "namesSite(" + arguments + ")";
}

// Asked once for all rows: the other table is searched once. NULL is in no table.
std::string TraceTableSQL::relatedNames() const {
    if (!isNamedByRelation()) {
        return {};
    }
    const TableRelation& relation = table_.relation;
    return "coalesce(" + identifier(relation.column) + " IN (SELECT " +
           identifier(relation.otherColumn) + " FROM " + identifier(relation.other) +
           " WHERE namesSite(" + formAndColumn(relation.names) + ") AND " +
           identifier(relation.otherColumn) + " IS NOT NULL), 0)";
}

std::string TraceTableSQL::namesAny(bool alsoWhatOnlyRemoves) const {
    std::string names = ownNames();
    if (table_.relation.keeps || alsoWhatOnlyRemoves) {
        append(names, " OR ", relatedNames());
    }
    return names;
}

std::string TraceTableSQL::selected(const SiteSelection& selection) const {
    if (selection.isEverything() || isMixed()) {
        return {};
    }
    const std::string names = namesAny(selection.isOnly());
    if (names.empty()) {
        return "0";  // what only makes rows go says nothing of which are kept
    }
    return (selection.isOnly() ? "(" : "NOT (") + names + ")";
}

std::string TraceTableSQL::isTrace() const {
    return table_.condition.empty() ? std::string() : "(" + std::string(table_.condition) + ")";
}

std::string TraceTableSQL::orphanCondition() const {
    const TableRelation& relation = table_.relation;
    std::string parents =
        "SELECT " + identifier(relation.otherColumn) + " FROM " + identifier(relation.other);
    if (!columns_.otherIsRowNumber) {
        parents += " WHERE " + identifier(relation.otherColumn) + " IS NOT NULL";
    }
    return identifier(relation.column) + " NOT IN (" + parents + ")";
}

std::string TraceTableSQL::resetCondition() const {
    std::string condition;
    for (const ColumnReset& reset : table_.resets) {
        if (reset.tellsOfUse && has(reset.name)) {
            append(condition, " OR ",
                   identifier(reset.name) + " IS NOT " + std::string(reset.value));
        }
    }
    return condition.empty() ? condition : "(" + condition + ")";
}

std::string TraceTableSQL::condition(const SiteSelection& selection) const {
    std::string condition = isTrace();
    if (isAboutOrphans()) {
        append(condition, " AND ", orphanCondition());
        return condition;
    }
    if (table_.rule == TableRule::resets) {
        append(condition, " AND ", resetCondition());
    }
    append(condition, " AND ", selected(selection));
    return condition;
}

std::string TraceTableSQL::removal(const SiteSelection& selection) const {
    if (table_.rule == TableRule::loosens) {
        return "UPDATE " + identifier(table_.name) + " SET " + identifier(table_.relation.column) +
               " = NULL" + withWhere(condition(selection));
    }
    if (table_.rule != TableRule::resets) {
        return "DELETE FROM " + identifier(table_.name) + withWhere(condition(selection));
    }
    std::string changes;
    for (const ColumnReset& reset : table_.resets) {
        if (has(reset.name)) {
            append(changes, ", ", identifier(reset.name) + " = " + std::string(reset.value));
        }
    }
    return "UPDATE " + identifier(table_.name) + " SET " + changes +
           withWhere(condition(selection));
}

std::string TraceTableSQL::parentQuestion() const {
    const bool mayRowsStay =
        table_.rule != TableRule::orphans || !columns_.ownIsRequired || !table_.condition.empty();
    return mayRowsStay ? std::string()
                       : "SELECT EXISTS (SELECT 1 FROM " + identifier(table_.relation.other) + ")";
}

std::string TraceTableSQL::removalOfAll() const {
    return "DELETE FROM " + identifier(table_.name);
}

std::string TraceTableSQL::question(const SiteSelection& selection) const {
    return "SELECT EXISTS (SELECT 1 FROM " + identifier(table_.name) +
           withWhere(condition(selection)) + ")";
}

// SQLite knows the length of a large value without reading it; the rest is asked for at once.
std::string TraceTableSQL::bytes() const {
    constexpr std::size_t mostArguments = 64;
    std::string sum;
    std::string arguments;
    std::size_t count = 0;
    for (const std::string& column : columns_.own) {
        if (columns_.large.contains(column)) {
            append(sum, " + ", "coalesce(length(" + identifier(column) + "), 0)");
            continue;
        }
        append(arguments, ", ", identifier(column));
        if (++count % mostArguments == 0) {
            append(sum, " + ", "lengths(" + std::exchange(arguments, {}) + ")");
        }
    }
    append(sum, " + ", arguments.empty() ? arguments : "lengths(" + arguments + ")");
    return sum;
}

std::string TraceTableSQL::allValues(std::string_view expression) const {
    return "SELECT " + std::string(expression) + " FROM " + identifier(table_.name);
}

std::string TraceTableSQL::listing(std::string_view expression) const {
    const TableRelation& relation = table_.relation;
    std::string result = has(table_.lastUsed.name) ? identifier(table_.lastUsed.name) : "NULL";
    result += ", " + bytes() + ", " + std::string(expression);
    for (const SiteColumn& column : table_.columns) {
        if (has(column.name)) {
            result += ", " + identifier(column.name);
        }
    }
    if (isNamedByRelation()) {
        result += ", (SELECT group_concat(o." + identifier(relation.names.name) +
                  ", char(10)) FROM " + identifier(relation.other) + " AS o WHERE o." +
                  identifier(relation.otherColumn) + " = t." + identifier(relation.column) + ")";
    }
    return "SELECT " + result + " FROM " + identifier(table_.name) + " AS t" +
           withWhere(condition(SiteSelection::everything()));
}

std::vector<SiteForm> TraceTableSQL::listedForms() const {
    std::vector<SiteForm> forms;
    for (const SiteColumn& column : table_.columns) {
        if (has(column.name)) {
            forms.push_back(column.form);
        }
    }
    if (isNamedByRelation()) {
        forms.push_back(table_.relation.names.form);
    }
    return forms;
}

std::string TraceTableSQL::totals() const {
    return "SELECT count(*), coalesce(sum(" + bytes() + "), 0) FROM " + identifier(table_.name) +
           withWhere(condition(SiteSelection::everything()));
}

}  // namespace browsersweep
