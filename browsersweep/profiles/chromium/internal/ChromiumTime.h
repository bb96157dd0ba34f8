#pragma once

#include <string>

#include "browsersweep/base/Date.h"

namespace browsersweep {

/**
 * A date as the databases of Chromium-based browsers are compared with: whole microseconds since an
 * epoch, in decimal digits. A date that does not fit in 64 bits ends the process.
 */
std::string chromiumTimeText(Date date, Date epoch);

/**
 * The same since midnight of 1 January 1601 in the device's time zone, on purpose not in UTC. The
 * epoch is found at the first call and kept.
 */
std::string chromiumTimeText(Date date);

}  // namespace browsersweep
