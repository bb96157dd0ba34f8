#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "browsersweep/Export.h"
#include "browsersweep/base/OperationControl.h"
#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/sqlite/SQLiteStatement.h"
#include "browsersweep/sqlite/SQLiteStatementEvaluators.h"

struct sqlite3;

namespace browsersweep {

enum class DatabaseAccess;

/**
 * The only door to SQLite files: one open database, closed when the last copy of the connection
 * goes away. No pragma, no busy timeout and no read-only mode is set on it. One thread at a time.
 *
 * A database is data, and may have been made by anybody. So a connection touches no file but the
 * database and its own companions ("-journal", "-wal", "-shm"): nothing can be attached, a file
 * that a journal names stays, a companion that is no regular file with one name is refused, and a
 * link at the end of a path is not followed. What is refused is "unable to open database file".
 * Nothing in a schema runs: no trigger, no view, no virtual table, no function that could reach
 * outside, no action of a foreign key.
 *
 * This takes calls beside those that open, evaluate and close: `sqlite3_open_v2` stands for
 * `sqlite3_open`, with the very flags of that one, for the sake of its last argument, which names
 * the way to files; `sqlite3_db_config`, `sqlite3_limit` and `sqlite3_drop_modules` follow a
 * successful opening. With a control there are `sqlite3_progress_handler`, and
 * `sqlite3_create_function` for a `count` that can be stopped. `sqlite3_total_changes` tells what
 * was deleted. The statements and their order are not affected.
 */
class BROWSERSWEEP_EXPORT SQLiteConnection {
public:
    /**
     * Opens a file, which SQLite creates if it is missing. Throws `SQLiteError`. The control, if
     * there is one, is asked while statements run, and told of the rows that they change.
     */
    explicit SQLiteConnection(const std::filesystem::path& path,
                              std::shared_ptr<OperationControl> control = nullptr);

    /**
     * The same for a file that is there already, of which and beside which no byte is changed: a
     * log is read with its index as it is, and where reading would need a change, such as the
     * playing back of a journal, statements fail. Throws `SQLiteError`.
     */
    static SQLiteConnection readingOnly(const std::filesystem::path& path,
                                        std::shared_ptr<OperationControl> control = nullptr);

    /**
     * The same for a file beside which there is no journal: no lock is taken, and no index of a log
     * is needed; one is made in memory. What is read is a state of the files only if nobody changed
     * them meanwhile, which is for the caller to find out. Throws `SQLiteError`.
     */
    static SQLiteConnection readingAsItLies(const std::filesystem::path& path,
                                            std::shared_ptr<OperationControl> control = nullptr);

    /**
     * Prepares one statement, lets the evaluator run it, and finalizes it. Throws `SQLiteError`
     * with SQLite's message where preparing or stepping fails, and `OperationCancelled` where the
     * control stopped the statement, which is then taken back; what else an evaluator throws
     * passes.
     */
    template <SQLiteStatementEvaluator Evaluator>
    typename Evaluator::EvaluationResult evaluate(const std::string& sql,
                                                  const Evaluator& evaluator) const {
        SQLiteStatement statement = prepare(sql);
        try {
            if constexpr (std::is_void_v<typename Evaluator::EvaluationResult>) {
                evaluator.evaluate(statement);
                noteEnd(statement);
            } else {
                typename Evaluator::EvaluationResult result = evaluator.evaluate(statement);
                noteEnd(statement);
                return result;
            }
        } catch (const SQLiteStatementEvaluationError&) {
            throwCurrentError(statement.resultCode());
        }
    }

    /** Whether the database has a table of this name. Throws `SQLiteError`. */
    bool hasTable(std::string_view tableName) const;

    /** How many rows the statements of this connection have changed so far. */
    std::int64_t changedRowCount() const noexcept;

    /**
     * The code of the last statement that ended neither with a row, nor with its end, nor with an
     * error: the database was locked, damaged, full, and that counts as "no row". 0 where there
     * was none.
     */
    int silentResultCode() const noexcept;

    /** SQLite's own handle, open as long as a copy of this connection. */
    sqlite3* dbPointer() const noexcept;

private:
    struct Database;

    SQLiteConnection(const std::filesystem::path& path, DatabaseAccess access,
                     std::shared_ptr<OperationControl> control);

    SQLiteStatement prepare(const std::string& sql) const;
    void noteEnd(const SQLiteStatement& statement) const;
    [[noreturn]] void throwCurrentError(int resultCode) const;

    std::shared_ptr<Database> database_;
};

}  // namespace browsersweep
