#pragma once

#include <string>

#include "cli/Report.h"

namespace browsersweep::cli {

/** The report for people: an aligned table. What failed is told elsewhere, see `failures`. */
std::string peopleText(const Report& report);

}  // namespace browsersweep::cli
