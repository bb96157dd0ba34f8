#pragma once

#include "browsersweep/base/Date.h"

namespace browsersweep {

/**
 * Midnight at the start of 1 January 1601 of the Gregorian calendar in the device's current time
 * zone: the epoch that Chromium-based browsers are compared against. The zone's local mean time
 * holds for it where the zone's rules begin later.
 */
Date localMidnightOf1601();

}  // namespace browsersweep
