#pragma once

#include <memory>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfile.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/** The stores of a profile, or of a browser. */
using TraceStores = std::vector<std::shared_ptr<const TraceStore>>;

/**
 * Every store of a profile, in a fixed order, whether it exists or not; none of a profile that is
 * left out. Touches no file. The home must be the one that the profile was read from.
 */
BROWSERSWEEP_EXPORT TraceStores traceStores(const BrowserProfile& profile, const Home& home);

/** The stores that all profiles of a browser share, beside their folders. Touches no file. */
BROWSERSWEEP_EXPORT TraceStores traceStores(Browser browser, const Home& home);

/**
 * The profiles that have stores beside those that the browser's own reader lists: Safari's named
 * ones, which have nothing that is measured or cleaned. Changes no file. Throws `filesystem_error`
 * and `OperationCancelled`.
 */
BROWSERSWEEP_EXPORT std::vector<std::shared_ptr<const BrowserProfile>> profilesBeside(
    Browser browser, const Home& home);

}  // namespace browsersweep
