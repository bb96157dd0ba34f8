#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/sqlite/SQLiteStatement.h"

namespace browsersweep {

/** Runs a prepared statement and makes a result of it, or throws. */
template <typename T>
concept SQLiteStatementEvaluator = requires(const T& evaluator, SQLiteStatement& statement) {
    typename T::EvaluationResult;
    { evaluator.evaluate(statement) } -> std::same_as<typename T::EvaluationResult>;
};

/** Whether the first row's first column is exactly 1. No row is false. */
struct BROWSERSWEEP_EXPORT TableExistenceEvaluator {
    using EvaluationResult = bool;  ///< whether the table is there
    /** Makes one step. Throws `SQLiteStatementEvaluationError` where it fails. */
    bool evaluate(SQLiteStatement& statement) const;
};

/** The first row's first column. No row is 0. */
struct BROWSERSWEEP_EXPORT CountEvaluator {
    using EvaluationResult = std::int32_t;  ///< a count, as SQLite's 32-bit integers have it
    /** Makes one step. Throws `SQLiteStatementEvaluationError` where it fails. */
    std::int32_t evaluate(SQLiteStatement& statement) const;
};

/** Runs a statement for its effect. Only a first step that fails is an error. */
struct BROWSERSWEEP_EXPORT ExecuteEvaluator {
    using EvaluationResult = void;  ///< nothing: only the effect counts
    /** Steps to the end. Throws `SQLiteStatementEvaluationError` as the first step fails. */
    void evaluate(SQLiteStatement& statement) const;
};

/**
 * Converts row after row. A conversion may give nothing, which skips the row, and may throw. What
 * ends the rows is not examined: an error while stepping ends the list like its end.
 */
template <typename Row>
class TextRowsEvaluator {
public:
    using EvaluationResult = std::vector<Row>;  ///< the rows in the statement's order
    /** Makes a row of the statement's present one; nothing skips it. */
    using Conversion = std::function<std::optional<Row>(const SQLiteStatement&)>;

    /** The conversion may not be empty. */
    explicit TextRowsEvaluator(Conversion convert) : convert_(std::move(convert)) {}

    /** Steps to the end. Throws what the conversion throws. */
    std::vector<Row> evaluate(SQLiteStatement& statement) const {
        std::vector<Row> rows;
        while (statement.step() == SQLiteStatement::Step::row) {
            if (auto row = convert_(statement)) {
                rows.push_back(*std::move(row));
            }
        }
        return rows;
    }

private:
    Conversion convert_;
};

/** The statement that `TableExistenceEvaluator` is for. The name is inserted as it stands. */
BROWSERSWEEP_EXPORT std::string tableExistenceSQL(std::string_view tableName);

}  // namespace browsersweep
