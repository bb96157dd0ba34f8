#pragma once

#include <string>
#include <string_view>

#include "cli/Appearance.h"

namespace browsersweep::cli {

/** A remark below a table, faint and in lines that fit; nothing for an empty text. */
std::string remark(std::string_view text, const Appearance& appearance);

}  // namespace browsersweep::cli
