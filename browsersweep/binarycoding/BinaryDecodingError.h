#pragma once

#include <stdexcept>
#include <string>

#include "browsersweep/Export.h"

namespace browsersweep {

/** Bytes that are not what their reader needs. `what()` is the description. */
class BROWSERSWEEP_EXPORT BinaryDecodingError : public std::runtime_error {
public:
    enum class Kind { dataCorrupted };

    struct Context {
        std::string debugDescription;
    };

    BinaryDecodingError(Kind kind, Context context);

    Kind kind() const noexcept { return kind_; }
    const Context& context() const noexcept { return context_; }

    /** The error of this kind with a description. */
    static BinaryDecodingError dataCorrupted(std::string description);

private:
    Kind kind_;
    Context context_;
};

}  // namespace browsersweep
