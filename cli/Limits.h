#pragma once

#include <string>
#include <vector>

#include "cli/Options.h"

namespace browsersweep::cli {

/** What narrows a report to a part of what there is, in words; nothing where all was asked for. */
std::vector<std::string> limitsOf(const Options& options);

}  // namespace browsersweep::cli
