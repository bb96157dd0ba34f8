#pragma once

#include <stdexcept>
#include <string>

#include "browsersweep/Export.h"

namespace browsersweep {

/** A value that cannot be written in the format asked for. `what()` is the description. */
class BROWSERSWEEP_EXPORT BinaryEncodingError : public std::runtime_error {
public:
    enum class Kind { incompatibleStringEncoding };

    struct Context {
        std::string debugDescription;
    };

    BinaryEncodingError(Kind kind, Context context);

    Kind kind() const noexcept { return kind_; }
    const Context& context() const noexcept { return context_; }

    /** The error of this kind with a description. */
    static BinaryEncodingError incompatibleStringEncoding(std::string description);

private:
    Kind kind_;
    Context context_;
};

}  // namespace browsersweep
