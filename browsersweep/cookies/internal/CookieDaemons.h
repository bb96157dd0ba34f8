#pragma once

#include "browsersweep/platform/ProcessLauncher.h"

namespace browsersweep {

/** Stops the system's two cookie daemons, which would write the old cookies back. */
void stopCookieDaemons(const ProcessLauncher& launcher);

}  // namespace browsersweep
