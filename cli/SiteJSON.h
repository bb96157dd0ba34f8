#pragma once

#include <string>

#include "cli/SiteReport.h"

namespace browsersweep::cli {

/** The document of `sites`. */
std::string jsonText(const SiteListReport& report);

/** The document of `forget`. */
std::string jsonText(const ForgetReport& report);

}  // namespace browsersweep::cli
