#pragma once

#include <string>

#include "cli/Appearance.h"
#include "cli/Report.h"

namespace browsersweep::cli {

/** Every file, table and cookie file of a report, where it was asked for; otherwise empty. */
std::string entriesText(const SizesReport& report, const Appearance& appearance);

}  // namespace browsersweep::cli
