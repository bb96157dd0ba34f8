#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Browser.h"
#include "browsersweep/base/OperationControl.h"
#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/hosting/ItemVerdict.h"
#include "browsersweep/hosting/sites/SiteInventory.h"
#include "browsersweep/hosting/sites/SweepStore.h"
#include "browsersweep/sites/Site.h"
#include "browsersweep/sites/Trace.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/** How to forget. */
struct ForgetOptions {
    ForgetRequest request;  ///< what; hosts found in the stores are added to its known hosts
    std::shared_ptr<OperationControl> control;  ///< that of the stores' home
    /**
     * Asked before the first store of each browser: why the browser is to be left alone, such as
     * that it runs. Absent answer: it is not.
     */
    std::function<std::optional<std::string>(Browser)> refusal;
};

/** What became of one store. */
struct StoreForgetting {
    /** What became of what was meant: `measured` in a plan. */
    ItemVerdict verdict = ItemVerdict::leftOut;
    /** What went, by a second listing; in a plan what would go. Absent where it is not known. */
    std::optional<TraceListing> gone;
    std::vector<KeptTrace> kept;  ///< what stays on purpose, though it was or may have been meant
    /** Whether no byte of what went stays in the files (`ForgetOutcome`). */
    bool isWithoutRemains = true;
    std::int64_t freedBytes = 0;  ///< what the disk gained; negative where it lost
    std::filesystem::path what;   ///< the file or folder that the verdict is about
    std::string detail;           ///< why the verdict is what it is, for people; may be empty
    std::exception_ptr error;     ///< what failed; null where nothing did
    bool isConcerned = false;     ///< whether it may hold what was asked for
    bool wasBegun = false;        ///< whether it was its turn to be changed
};

/** What became of all stores. */
struct ForgetResult {
    std::vector<StoreForgetting> stores;  ///< one for each store, in their order
    std::set<Site> foundSites;            ///< every site that anything was found of
    bool wasStopped = false;              ///< the host stopped it
};

/**
 * Forgets sites store by store, so that a host can show where it is, stop it, and tell what became
 * of each store. A store that fails hides no other. What went is never taken from what was asked
 * for: each store is listed before and after.
 */
class BROWSERSWEEP_EXPORT ForgetSweep {
public:
    /** Nothing is touched yet. Without a function to tell, the sweep goes on to its end. */
    ForgetSweep(std::vector<SweepStore> stores, ForgetOptions options, StoreProgress progress = {});

    /** Lists all stores and says what would go and what would stay. Only reads. */
    ForgetResult plan();

    /**
     * Lists all stores, then has each one forget and lists it again. A store that cannot be listed
     * is not touched. Each may also hold unlisted remains, so each is asked where anything of the
     * request was found in any; where nothing was, none is touched, unless all sites are meant.
     */
    ForgetResult forget();

private:
    SiteInventory inventoryOf(StoreProgress progress) const;
    Inventory takeInventory(std::size_t rounds);
    ForgetResult planOf(const Inventory& inventory) const;
    StoreForgetting planned(const TraceStore& store, const StoreListing& before) const;
    static void leaveAlone(StoreForgetting& plan);
    bool isWorthwhile(const ForgetResult& plan) const;
    bool mayBegin(std::size_t index, StoreForgetting& result);
    void forgetOne(const TraceStore& store, const StoreListing& before, StoreForgetting& result);
    bool removeFrom(const TraceStore& store, StoreForgetting& result) const;
    void listAgain(const TraceStore& store, const StoreListing& before,
                   StoreForgetting& result) const;

    std::vector<SweepStore> stores_;
    ForgetOptions options_;
    StoreProgress progress_;
    std::map<Browser, std::optional<std::string>> refusals_;
};

}  // namespace browsersweep
