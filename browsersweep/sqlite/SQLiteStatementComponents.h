#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableDataFilter.h"
#include "browsersweep/cleanable/FilterSight.h"

namespace browsersweep {

/**
 * One table of a database and how its rows are narrowed: by fixed conditions, by patterns and by
 * dates. The one place where SQL for sizing and cleaning is made, as plain text.
 *
 * Patterns go into the text as they stand: quotes, "%" and "_" are not escaped. Patterns are meant
 * to be parts of host names; a host that takes them from elsewhere must refuse such characters.
 */
struct BROWSERSWEEP_EXPORT SQLiteStatementComponents {
    /** A column and how a value is written for comparison with it. */
    template <typename Value>
    struct EncodableColumn {
        std::string name;  ///< as it stands in the statement
        /** Gives an SQL literal, which is inserted as it stands. It may throw. */
        std::function<std::string(const Value&)> encode;
    };

    /** The columns that filters act on. Either may be absent (or empty): it is not filtered by. */
    struct BROWSERSWEEP_EXPORT ColumnsForFiltering {
        std::optional<std::string> byPattern;         ///< compared with `LIKE '%pattern%'`
        std::optional<EncodableColumn<Date>> byDate;  ///< compared with the bounds of ranges
    };

    std::string tableName;  ///< inserted into statements as it stands
    /** Absent: filters do nothing to this table, all its rows are selected. */
    std::optional<ColumnsForFiltering> columnsForFiltering;
    /** Conditions that always hold; empty ones are skipped. */
    std::vector<std::string> whereClauses;

    /** A table with its columns and conditions; no part is examined here. */
    SQLiteStatementComponents(std::string tableName,
                              std::optional<ColumnsForFiltering> columnsForFiltering,
                              std::vector<std::string> whereClauses);

    /** A table with a pattern column alone. Without a name it still counts as having columns. */
    static SQLiteStatementComponents withPatternColumn(std::string tableName,
                                                       std::optional<std::string> columnName,
                                                       std::vector<std::string> whereClauses);

    /** The pattern column; absent where there is none. */
    std::optional<std::string> columnName() const;

    /** What its rows can be told by: the columns that it has. */
    FilterSight sight() const noexcept;

    /**
     * The statement: the prefix ("SELECT COUNT(*)" or "DELETE"), the table, and the conditions.
     * All exclusions must hold; one inclusion of any filter is enough, one date range of any filter
     * is enough; the three groups must all hold. A bound that cannot be encoded counts as absent.
     */
    std::string sql(std::string_view prefix, CleanableDataFilters filters) const;

    /** The condition that the filters come to, without any "WHERE"; empty for no restriction. */
    std::string filterCondition(CleanableDataFilters filters) const;
};

}  // namespace browsersweep
