#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Browser.h"
#include "browsersweep/catalogue/BrowserCleaner.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfile.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/** One store with what it belongs to. */
struct SweepStore {
    Browser browser = allBrowsers.front();          ///< whose it is
    std::shared_ptr<const BrowserProfile> profile;  ///< null where all profiles share the store
    std::shared_ptr<const TraceStore> store;        ///< never null
};

/**
 * Told before each store which one comes next and how many steps of all are done. False stops the
 * work there.
 */
using StoreProgress =
    std::function<bool(const SweepStore& next, std::size_t done, std::size_t all)>;

/**
 * The stores of a browser's chosen profiles, profile after profile, also of those that no reader of
 * the cleaner lists (`profilesBeside`), and then those that all its profiles share: these only
 * where every profile is chosen that is not left out. Throws what reading the profiles throws, and
 * what the predicate throws.
 */
BROWSERSWEEP_EXPORT std::vector<SweepStore> sweepStores(
    Browser browser, const BrowserCleaner& cleaner, const ProfilePredicate& shouldIncludeProfile,
    const Home& home);

}  // namespace browsersweep
