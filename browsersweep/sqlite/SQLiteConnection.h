#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "browsersweep/Export.h"
#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/sqlite/SQLiteStatement.h"
#include "browsersweep/sqlite/SQLiteStatementEvaluators.h"

struct sqlite3;

namespace browsersweep {

/**
 * The only door to SQLite files: one open database, closed when the last copy of the connection
 * goes away. Nothing is set on it: no pragma, no busy timeout, no read-only mode. One thread at a
 * time.
 */
class BROWSERSWEEP_EXPORT SQLiteConnection {
public:
    /** Opens a file, which SQLite creates if it is missing. Throws `SQLiteError`. */
    explicit SQLiteConnection(const std::filesystem::path& path);

    /**
     * Prepares one statement, lets the evaluator run it, and finalizes it. Throws `SQLiteError`
     * with SQLite's message where preparing or stepping fails; what else an evaluator throws
     * passes.
     */
    template <SQLiteStatementEvaluator Evaluator>
    typename Evaluator::EvaluationResult evaluate(const std::string& sql,
                                                  const Evaluator& evaluator) const {
        SQLiteStatement statement = prepare(sql);
        try {
            return evaluator.evaluate(statement);
        } catch (const SQLiteStatementEvaluationError&) {
            throwCurrentError();
        }
    }

    /** Whether the database has a table of this name. Throws `SQLiteError`. */
    bool hasTable(std::string_view tableName) const;

private:
    SQLiteStatement prepare(const std::string& sql) const;
    [[noreturn]] void throwCurrentError() const;

    std::shared_ptr<sqlite3> database_;
};

}  // namespace browsersweep
