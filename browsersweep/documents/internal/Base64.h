#pragma once

#include <string>
#include <string_view>

namespace browsersweep {

/** Bytes as a text in base 64, with the padding at its end. */
std::string toBase64(std::string_view bytes);

}  // namespace browsersweep
