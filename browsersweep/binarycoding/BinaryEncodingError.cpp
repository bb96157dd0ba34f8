#include "browsersweep/binarycoding/BinaryEncodingError.h"

#include <utility>

namespace browsersweep {

BinaryEncodingError::BinaryEncodingError(Kind kind, Context context)
    : std::runtime_error(context.debugDescription), kind_(kind), context_(std::move(context)) {}

BinaryEncodingError BinaryEncodingError::incompatibleStringEncoding(std::string description) {
    return {Kind::incompatibleStringEncoding, Context{std::move(description)}};
}

}  // namespace browsersweep
