#pragma once

#include <stdexcept>
#include <string>

#include "browsersweep/Export.h"

namespace browsersweep {

/** Bytes that are not what their reader needs. `what()` is the description. */
class BROWSERSWEEP_EXPORT BinaryDecodingError : public std::runtime_error {
public:
    /** What went wrong. */
    enum class Kind {
        dataCorrupted,  ///< too few bytes, or not those of the format
    };

    /** What is known of the failure. */
    struct Context {
        std::string debugDescription;  ///< a sentence in English, for developers
    };

    /** An error whose `what()` is the context's description. */
    BinaryDecodingError(Kind kind, Context context);

    /** What went wrong, for a program to tell apart. */
    Kind kind() const noexcept { return kind_; }
    /** What went wrong, for people to read. */
    const Context& context() const noexcept { return context_; }

    /** The error of this kind with a description. */
    static BinaryDecodingError dataCorrupted(std::string description);

private:
    Kind kind_;
    Context context_;
};

}  // namespace browsersweep
