#pragma once

#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfile.h"
#include "browsersweep/traces/TraceStores.h"

namespace browsersweep {

/** The stores of one of Safari's profiles. Touches no file. */
TraceStores safariStores(const BrowserProfile& profile, const Home& home);

/** The stores that its profiles share. Touches no file. */
TraceStores sharedSafariStores(const Home& home);

}  // namespace browsersweep
