#pragma once

#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "browsersweep/Export.h"

namespace browsersweep {

/** A failure of SQLite, with SQLite's own message. Its codes are not told apart. */
class BROWSERSWEEP_EXPORT SQLiteError : public std::exception {
public:
    /** An error with SQLite's message. */
    explicit SQLiteError(std::optional<std::string> errorDescription)
        : errorDescription_(std::move(errorDescription)) {}

    /** The message at the moment of the failure; absent where SQLite gave none. */
    const std::optional<std::string>& errorDescription() const noexcept {
        return errorDescription_;
    }

    /** The message, or an empty text. */
    const char* what() const noexcept override {
        return errorDescription_ ? errorDescription_->c_str() : "";
    }

private:
    std::optional<std::string> errorDescription_;
};

/** Raised by a statement evaluator when stepping fails; the connection makes it a `SQLiteError`. */
class BROWSERSWEEP_EXPORT SQLiteStatementEvaluationError : public std::exception {
public:
    /** A fixed text: the message is the connection's to find. */
    const char* what() const noexcept override { return "stepping a statement failed"; }
};

}  // namespace browsersweep
