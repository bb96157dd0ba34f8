#pragma once

#include <cstddef>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Date.h"
#include "browsersweep/base/OperationControl.h"
#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/hosting/ItemVerdict.h"
#include "browsersweep/hosting/sites/SweepStore.h"
#include "browsersweep/sites/Site.h"
#include "browsersweep/sites/Trace.h"
#include "browsersweep/sites/TraceKind.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/** What one store was found to hold. */
struct StoreListing {
    TraceListing listing;  ///< empty where the store could not be listed
    /** `measured`, `nothingThere`, or why the listing is missing or may lack something. */
    ItemVerdict verdict = ItemVerdict::leftOut;
    std::filesystem::path what;  ///< the file or folder that the verdict is about
    std::string detail;          ///< why the verdict is what it is, for people; may be empty
    std::exception_ptr error;    ///< why it could not be listed; null where it was
    /** Whether it was asked for; one that was not may be listed all the same, for its hosts. */
    bool isConcerned = false;
};

/** What all stores were found to hold. */
struct Inventory {
    std::vector<StoreListing> listings;  ///< one for each store, in their order
    KnownHosts knownHosts;               ///< of all traces found, and those known before
    bool wasStopped = false;             ///< the host stopped it
};

/** How to take an inventory. */
struct InventoryOptions {
    std::set<TraceKind> kinds;  ///< only of these kinds; empty: of all
    KnownHosts knownHosts;      ///< hosts that are known before anything is read
    /** The control of the stores' home: what it says was not entered is told in the verdicts. */
    std::shared_ptr<OperationControl> control;
};

/**
 * Lists what sites left in stores. One that fails hides no other. Those that know hosts only by a
 * hash come last, when all other hosts are known; a host sees them in the stores' own order.
 */
class BROWSERSWEEP_EXPORT SiteInventory {
public:
    /** Nothing is touched yet. Without a function to tell, the work goes on to its end. */
    SiteInventory(std::vector<SweepStore> stores, InventoryOptions options,
                  StoreProgress progress = {});

    /** Lists all stores: one step for each. Only reads. */
    Inventory list();

    /** Lists one store, with these hosts known. Only reads; fails only for want of memory. */
    StoreListing listOne(const TraceStore& store, const KnownHosts& knownHosts) const;

private:
    bool isOfKinds(const TraceStore& store) const;
    bool listRound(bool needingHosts, Inventory& inventory);

    std::vector<SweepStore> stores_;
    InventoryOptions options_;
    StoreProgress progress_;
    bool areHostsNeeded_ = false;
    std::size_t done_ = 0;
};

/** What one site left in one profile, in all its stores together. */
struct ProfileTrace {
    Browser browser = allBrowsers.front();          ///< whose profile it is
    std::shared_ptr<const BrowserProfile> profile;  ///< null for what all profiles share
    Trace trace;                                    ///< of one kind
};

/** What one site left in all browsers. */
struct SiteSummary {
    Site site;                         ///< whose it is
    CleanableDataSize size;            ///< all of it
    std::optional<Date> lastUsed;      ///< when the site was last used, as far as known
    std::vector<ProfileTrace> traces;  ///< one for each profile and kind, in the stores' order
};

/**
 * Puts together what the sites left in all stores, in the order of the sites. There must be as many
 * listings as stores.
 */
BROWSERSWEEP_EXPORT std::vector<SiteSummary> summarize(const std::vector<SweepStore>& stores,
                                                       std::vector<TraceListing> listings);

}  // namespace browsersweep
