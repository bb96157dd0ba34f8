#pragma once

#include <stdexcept>

namespace browsersweep::cli {

/** A wrong command line. The message is one line: what is wrong, and what would be right. */
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace browsersweep::cli
