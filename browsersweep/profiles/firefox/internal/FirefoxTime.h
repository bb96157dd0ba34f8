#pragma once

#include <string>

#include "browsersweep/base/Date.h"

namespace browsersweep {

/**
 * A date as Firefox's databases store it: whole microseconds since 1970-01-01 00:00 UTC, in decimal
 * digits. A date that does not fit in 64 bits ends the process.
 */
std::string firefoxTimeText(Date date);

}  // namespace browsersweep
