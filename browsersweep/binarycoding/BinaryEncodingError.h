#pragma once

#include <stdexcept>
#include <string>

#include "browsersweep/Export.h"

namespace browsersweep {

/** A value that cannot be written in the format asked for. `what()` is the description. */
class BROWSERSWEEP_EXPORT BinaryEncodingError : public std::runtime_error {
public:
    /** What went wrong. */
    enum class Kind {
        incompatibleStringEncoding,  ///< a text that its encoding has no bytes for
    };

    /** What is known of the failure. */
    struct Context {
        std::string debugDescription;  ///< a sentence in English, for developers
    };

    /** An error whose `what()` is the context's description. */
    BinaryEncodingError(Kind kind, Context context);

    /** What went wrong, for a program to tell apart. */
    Kind kind() const noexcept { return kind_; }
    /** What went wrong, for people to read. */
    const Context& context() const noexcept { return context_; }

    /** The error of this kind with a description. */
    static BinaryEncodingError incompatibleStringEncoding(std::string description);

private:
    Kind kind_;
    Context context_;
};

}  // namespace browsersweep
