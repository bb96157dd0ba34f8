#include "browsersweep/binarycoding/BinaryDecodingError.h"

#include <utility>

namespace browsersweep {

BinaryDecodingError::BinaryDecodingError(Kind kind, Context context)
    : std::runtime_error(context.debugDescription), kind_(kind), context_(std::move(context)) {}

BinaryDecodingError BinaryDecodingError::dataCorrupted(std::string description) {
    return {Kind::dataCorrupted, Context{std::move(description)}};
}

}  // namespace browsersweep
