#pragma once

#include "cli/JSONValues.h"
#include "cli/SiteReport.h"

namespace browsersweep::cli {

/** The document of `sites`. */
JSON toJSON(const SiteListReport& report);

/** The document of `forget`. */
JSON toJSON(const ForgetReport& report);

}  // namespace browsersweep::cli
