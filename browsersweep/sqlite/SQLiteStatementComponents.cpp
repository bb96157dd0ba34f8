#include "browsersweep/sqlite/SQLiteStatementComponents.h"

#include <exception>
#include <initializer_list>
#include <utility>

namespace browsersweep {
namespace {

using Components = SQLiteStatementComponents;
using Patterns = CleanableDataFilter::Patterns;
using Dates = CleanableDataFilter::Dates;

void appendJoined(std::string& text, std::string_view separator, std::string_view added) {
    if (!text.empty() && !added.empty()) {
        text += separator;
    }
    text += added;
}

/** The non-empty ones in parentheses, all of which must hold. */
std::string conjunction(std::initializer_list<std::string_view> conditions) {
    std::string text;
    for (const auto condition : conditions) {
        if (!condition.empty()) {
            appendJoined(text, " AND ", "(");
            text.append(condition).append(")");
        }
    }
    return text;
}

/** How the patterns of one rule become SQL. */
struct PatternWording {
    std::string_view comparison;
    std::string_view separator;
};

constexpr PatternWording exclusionWording{" NOT LIKE '%", " AND "};
constexpr PatternWording inclusionWording{" LIKE '%", " OR "};

/** The three groups of conditions that a list of filters adds to. */
struct Accumulators {
    std::string exclusions;
    std::string inclusions;
    std::string dates;

    void add(const std::string& column, const Patterns& patterns) {
        const bool excludes = patterns.rule == Patterns::Rule::exclude;
        const auto& [comparison, separator] = excludes ? exclusionWording : inclusionWording;
        std::string& group = excludes ? exclusions : inclusions;
        for (const std::string& pattern : patterns.patterns) {
            appendJoined(group, separator, column);
            group.append(comparison).append(pattern).append("%'");
        }
    }
};

using DateColumn = Components::EncodableColumn<Date>;

/** A bound as SQL text, where it is present and can be encoded. */
std::optional<std::string> encoded(const DateColumn& column, const std::optional<Date>& bound) {
    if (!bound) {
        return std::nullopt;
    }
    try {
        return column.encode(*bound);
    } catch (...) {
        return std::nullopt;  // a bound that the column has no text for does not restrict it
    }
}

std::string dateTerm(const DateColumn& column, const Dates& dates) {
    const auto start = encoded(column, dates.startDate);
    const auto end = encoded(column, dates.endDate);
    const bool inside = dates.rule == Dates::Rule::insideRange;
    if (start && end) {
        return column.name + (inside ? " BETWEEN " : " NOT BETWEEN ") + *start + " AND " + *end;
    }
    if (start) {
        return column.name + (inside ? " >= " : " < ") + *start;
    }
    if (end) {
        return column.name + (inside ? " <= " : " > ") + *end;
    }
    return {};
}

}  // namespace

SQLiteStatementComponents::SQLiteStatementComponents(std::string table,
                                                     std::optional<ColumnsForFiltering> columns,
                                                     std::vector<std::string> clauses)
    : tableName(std::move(table)),
      columnsForFiltering(std::move(columns)),
      whereClauses(std::move(clauses)) {}

SQLiteStatementComponents SQLiteStatementComponents::withPatternColumn(
    std::string tableName, std::optional<std::string> columnName,
    std::vector<std::string> whereClauses) {
    return {std::move(tableName), ColumnsForFiltering{std::move(columnName), std::nullopt},
            std::move(whereClauses)};
}

std::optional<std::string> SQLiteStatementComponents::columnName() const {
    return columnsForFiltering ? columnsForFiltering->byPattern : std::nullopt;
}

FilterSight SQLiteStatementComponents::sight() const noexcept {
    if (!columnsForFiltering) {
        return {};
    }
    const auto& [byPattern, byDate] = *columnsForFiltering;
    const bool hasText = byPattern && !byPattern->empty();
    return {hasText, hasText, byDate && !byDate->name.empty()};
}

std::string SQLiteStatementComponents::sql(std::string_view prefix,
                                           CleanableDataFilters filters) const {
    std::string fixed;
    for (const std::string& clause : whereClauses) {
        appendJoined(fixed, " AND ", clause);
    }
    const std::string condition = conjunction({fixed, filterCondition(filters)});
    std::string statement(prefix);
    statement.append(" FROM ").append(tableName);
    if (!condition.empty()) {
        statement.append(" WHERE ").append(condition);
    }
    return statement + ";";
}

std::string SQLiteStatementComponents::filterCondition(CleanableDataFilters filters) const {
    if (!columnsForFiltering) {
        return {};
    }
    const auto& [byPattern, byDate] = *columnsForFiltering;
    Accumulators groups;
    for (const CleanableDataFilter& filter : filters) {
        if (byPattern && !byPattern->empty() && filter.patternsData) {
            groups.add(*byPattern, *filter.patternsData);
        }
        if (byDate && !byDate->name.empty() && filter.datesData) {
            appendJoined(groups.dates, " OR ", dateTerm(*byDate, *filter.datesData));
        }
    }
    return conjunction({groups.exclusions, groups.inclusions, groups.dates});
}

}  // namespace browsersweep
