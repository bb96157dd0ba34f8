#pragma once

#include <string>

#include "browsersweep/Export.h"
#include "browsersweep/platform/Date.h"

namespace browsersweep {

/**
 * A date as Firefox's databases store it: whole microseconds since 1970-01-01 00:00 UTC, in decimal
 * digits. A date that does not fit in 64 bits ends the process.
 */
BROWSERSWEEP_EXPORT std::string firefoxTimeText(Date date);

}  // namespace browsersweep
