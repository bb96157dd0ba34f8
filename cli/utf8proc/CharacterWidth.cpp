#include "cli/CharacterWidth.h"

#include <utf8proc.h>

namespace browsersweep::cli {

std::size_t characterWidth(char32_t codePoint) noexcept {
    return static_cast<std::size_t>(utf8proc_charwidth(static_cast<utf8proc_int32_t>(codePoint)));
}

}  // namespace browsersweep::cli
