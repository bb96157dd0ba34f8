#pragma once

#include <string_view>

#include "browsersweep/base/Bytes.h"

namespace browsersweep::tests {

/** The bytes of a literal. */
inline Bytes bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

}  // namespace browsersweep::tests
