#include "browsersweep/sqlite/SQLiteStatementEvaluators.h"

#include "browsersweep/sqlite/SQLiteError.h"

namespace browsersweep {
namespace {

SQLiteStatement::Step stepOrThrow(SQLiteStatement& statement) {
    const auto step = statement.step();
    if (step == SQLiteStatement::Step::error) {
        throw SQLiteStatementEvaluationError();
    }
    return step;
}

}  // namespace

bool TableExistenceEvaluator::evaluate(SQLiteStatement& statement) const {
    return stepOrThrow(statement) == SQLiteStatement::Step::row && statement.integer(0) == 1;
}

std::int32_t CountEvaluator::evaluate(SQLiteStatement& statement) const {
    return stepOrThrow(statement) == SQLiteStatement::Step::row ? statement.integer(0) : 0;
}

void ExecuteEvaluator::evaluate(SQLiteStatement& statement) const {
    auto last = stepOrThrow(statement);
    while (last == SQLiteStatement::Step::row) {
        last = statement.step();
    }
}

std::string tableExistenceSQL(std::string_view tableName) {
    return "SELECT COUNT(*)\nFROM sqlite_master\nWHERE type = 'table' AND name = '" +
           std::string(tableName) + "';";
}

}  // namespace browsersweep
