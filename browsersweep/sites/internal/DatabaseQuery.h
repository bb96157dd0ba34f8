#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "browsersweep/base/OperationControl.h"

struct sqlite3;
struct sqlite3_stmt;

namespace browsersweep {

/**
 * A statement that is run row by row. Everything but a row and the end is an error, a locked
 * database as well: nothing counts as "no row".
 */
class DatabaseQuery {
public:
    /** Throws `SQLiteError` with SQLite's message. The control may be null. */
    DatabaseQuery(sqlite3* database, const std::string& sql, OperationControl* control);

    /** Goes to the next row. Throws `SQLiteError`, and `OperationCancelled` where it was stopped.
     */
    bool next();

    /** A column of the present row as a number; 0 where it is NULL. */
    std::int64_t number(int column) const noexcept;

    /** The same as a number with a fraction. */
    double real(int column) const noexcept;

    /** The bytes of a column of the present row, valid until the next call; empty of NULL. */
    std::string_view text(int column) const noexcept;

    /** Whether a column of the present row is NULL. */
    bool isNull(int column) const noexcept;

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };

    sqlite3* database_;
    OperationControl* control_;
    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

/** Runs a statement to its end. Throws as a query does. */
void runStatement(sqlite3* database, const std::string& sql, OperationControl* control);

/** The first column of the first row; 0 where there is no row. Throws as a query does. */
std::int64_t numberOf(sqlite3* database, const std::string& sql, OperationControl* control);

}  // namespace browsersweep
