#pragma once

#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "browsersweep/Export.h"

namespace browsersweep {

/** A failure of SQLite: its own message, and the code that came with it. */
class BROWSERSWEEP_EXPORT SQLiteError : public std::exception {
public:
    /** What a result code means to those who must tell errors apart. */
    enum class Kind {
        statement,    ///< SQLite's plain error: the statement does not fit the database
        locked,       ///< another program holds the database
        denied,       ///< the system does not allow it
        cannotOpen,   ///< a file cannot be opened, or is none that may be: SQLite does not say why
        damaged,      ///< it is no database, or a broken one
        full,         ///< there is no room
        inputOutput,  ///< the system failed to read or write
        other,
    };

    /** An error with SQLite's message and result code, 0 where that is not known. */
    explicit SQLiteError(std::optional<std::string> errorDescription, int resultCode = 0)
        : errorDescription_(std::move(errorDescription)), resultCode_(resultCode) {}

    /** The message at the moment of the failure; absent where SQLite gave none. */
    const std::optional<std::string>& errorDescription() const noexcept {
        return errorDescription_;
    }

    /** SQLite's code, as the call that failed returned it. An extended code has its bits too. */
    int resultCode() const noexcept { return resultCode_; }

    /** What the code means. The message need not be looked at. */
    Kind kind() const noexcept { return kindOf(resultCode_); }

    /** The meaning of one of SQLite's result codes that is an error. */
    static Kind kindOf(int resultCode) noexcept;

    /** The message, or an empty text. */
    const char* what() const noexcept override {
        return errorDescription_ ? errorDescription_->c_str() : "";
    }

private:
    std::optional<std::string> errorDescription_;
    int resultCode_;
};

/** Raised by a statement evaluator when stepping fails; the connection makes it a `SQLiteError`. */
class BROWSERSWEEP_EXPORT SQLiteStatementEvaluationError : public std::exception {
public:
    /** A fixed text: the message is the connection's to find. */
    const char* what() const noexcept override { return "stepping a statement failed"; }
};

}  // namespace browsersweep
