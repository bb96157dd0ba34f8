#pragma once

#include <cstddef>

namespace browsersweep::cli {

/**
 * How many columns of a terminal a character takes, in any locale: two for a wide one, none for an
 * accent and for what is never seen. The character is not one of Unicode's control characters.
 */
std::size_t characterWidth(char32_t codePoint) noexcept;

}  // namespace browsersweep::cli
