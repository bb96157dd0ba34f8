#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "browsersweep/Export.h"

struct sqlite3_stmt;

namespace browsersweep {

/** A prepared statement, finalized when it goes away. Made by a connection. */
class BROWSERSWEEP_EXPORT SQLiteStatement {
public:
    /** What a step came to. Everything but a row and the plain error counts as "no row". */
    enum class Step {
        row,    ///< there is a row to read
        error,  ///< SQLite's plain error, code 1
        noRow,  ///< the end, or a database that is locked, damaged, full...
    };

    /** Takes the statement over. */
    explicit SQLiteStatement(sqlite3_stmt* statement) noexcept;

    /**
     * Goes one step on. Only SQLite's plain error (code 1) is an error: a locked or busy database
     * is one that gives no row.
     */
    Step step() noexcept;

    /** SQLite's code of the last step, which tells the end from what only counts as "no row". */
    int resultCode() const noexcept { return resultCode_; }

    /** A column of the present row as a 32-bit integer. */
    std::int32_t integer(int column) const noexcept;

    /** A column of the present row as text; absent where it is NULL. */
    std::optional<std::string> text(int column) const;

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };

    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
    int resultCode_ = 0;
};

}  // namespace browsersweep
