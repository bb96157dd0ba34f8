#include "browsersweep/hosting/sites/SiteInventory.h"

#include <algorithm>
#include <map>
#include <utility>

#include "browsersweep/hosting/DatabaseState.h"
#include "browsersweep/hosting/ItemEvidence.h"
#include "browsersweep/hosting/ItemExamination.h"
#include "browsersweep/sites/ListingParts.h"

namespace browsersweep {
namespace {

/** The outermost folder that may not be opened: all stores below it meet the same, told once. */
ItemObstacle outermost(ItemObstacle obstacle, const std::filesystem::path& place) {
    for (auto path = place.parent_path(); path.has_relative_path(); path = path.parent_path()) {
        auto above = obstacleToOpening(path);
        if (!above) {
            break;
        }
        obstacle = std::move(*above);
    }
    return obstacle;
}

/** What keeps a place from being seen, though listing it finds nothing. */
std::optional<ItemObstacle> obstacleTo(const TraceStore& store) {
    for (const auto& place : store.places()) {
        if (auto obstacle = obstacleToOpening(place)) {
            return outermost(std::move(*obstacle), place);
        }
    }
    return std::nullopt;
}

bool isHeld(const TraceStore& store) {
    const auto places = store.places();
    return std::any_of(places.begin(), places.end(), isDatabaseHeld);
}

void addHosts(const TraceListing& listing, KnownHosts& hosts) {
    for (const Trace& trace : listing.bySite) {
        hosts.insert(trace.hosts.begin(), trace.hosts.end());
    }
}

void addTrace(const SweepStore& store, Trace&& trace, SiteSummary& summary) {
    summary.size = summary.size + trace.size;
    summary.lastUsed = std::max(summary.lastUsed, trace.lastUsed);
    const auto found =
        std::find_if(summary.traces.begin(), summary.traces.end(), [&](const ProfileTrace& each) {
            return each.browser == store.browser && each.profile == store.profile &&
                   each.trace.kind == trace.kind;
        });
    if (found != summary.traces.end()) {
        merge(found->trace, trace);
    } else {
        summary.traces.push_back({store.browser, store.profile, std::move(trace)});
    }
}

}  // namespace

SiteInventory::SiteInventory(std::vector<SweepStore> stores, InventoryOptions options,
                             StoreProgress progress)
    : stores_(std::move(stores)), options_(std::move(options)), progress_(std::move(progress)) {
    areHostsNeeded_ = std::any_of(stores_.begin(), stores_.end(), [this](const SweepStore& each) {
        return each.store->needsKnownHosts() && isOfKinds(*each.store);
    });
}

bool SiteInventory::isOfKinds(const TraceStore& store) const {
    const auto kinds = store.kinds();
    return options_.kinds.empty() ||
           std::any_of(kinds.begin(), kinds.end(),
                       [this](TraceKind kind) { return options_.kinds.contains(kind); });
}

Inventory SiteInventory::list() {
    Inventory inventory;
    inventory.knownHosts = options_.knownHosts;
    for (const SweepStore& each : stores_) {
        StoreListing listing;
        listing.isConcerned = isOfKinds(*each.store);
        listing.what = each.store->path();
        listing.verdict = ItemVerdict::cancelled;  // until it has its turn
        inventory.listings.push_back(std::move(listing));
    }
    done_ = 0;
    inventory.wasStopped = !listRound(false, inventory) || !listRound(true, inventory);
    return inventory;
}

/** One of the two rounds. False where the host stopped it. */
bool SiteInventory::listRound(bool needingHosts, Inventory& inventory) {
    for (std::size_t i = 0; i < stores_.size(); ++i) {
        const TraceStore& store = *stores_[i].store;
        if (store.needsKnownHosts() != needingHosts) {
            continue;
        }
        StoreListing& place = inventory.listings[i];
        const bool isWanted = place.isConcerned || (areHostsNeeded_ && !needingHosts);
        if (isWanted && progress_ && !progress_(stores_[i], done_, stores_.size())) {
            return false;
        }
        ++done_;
        if (!isWanted) {
            continue;
        }
        const bool isConcerned = place.isConcerned;
        place = listOne(store, inventory.knownHosts);
        place.isConcerned = isConcerned;
        if (place.verdict == ItemVerdict::cancelled) {
            return false;
        }
        if (!needingHosts) {
            addHosts(place.listing, inventory.knownHosts);
        }
    }
    return true;
}

StoreListing SiteInventory::listOne(const TraceStore& store, const KnownHosts& knownHosts) const {
    StoreListing result;
    ItemEvidence evidence;
    try {
        result.listing = store.list(knownHosts);
        evidence.before = totalSize(result.listing);
        evidence.lookBefore.toSeeing = obstacleTo(store);
    } catch (...) {  // a store may be anybody's, and so may be its errors
        result.listing = {};
        result.error = evidence.error = std::current_exception();
        evidence.isHeld = isHeld(store);
        evidence.lookBefore.toSeeing = obstacleTo(store);
        evidence.error = evidence.lookBefore.toSeeing ? nullptr : evidence.error;
    }
    if (options_.control) {
        evidence.leftOut = options_.control->takeLeftOut();
    }
    auto judgement = judgeMeasured(evidence);
    result.verdict = judgement.verdict;
    result.detail = std::move(judgement.detail);
    result.what = judgement.path.empty() ? store.path() : std::move(judgement.path);
    return result;
}

std::vector<SiteSummary> summarize(const std::vector<SweepStore>& stores,
                                   std::vector<TraceListing> listings) {
    std::map<Site, SiteSummary> sites;
    for (std::size_t i = 0; i < stores.size(); ++i) {
        for (Trace& trace : listings[i].bySite) {
            auto& summary =
                sites.try_emplace(trace.site, SiteSummary{trace.site, {}, {}, {}}).first->second;
            addTrace(stores[i], std::move(trace), summary);
        }
        listings[i] = {};
    }
    // One by one: there may be a million, which need not be there twice.
    std::vector<SiteSummary> all;
    all.reserve(sites.size());
    while (!sites.empty()) {
        all.push_back(std::move(sites.extract(sites.begin()).mapped()));
    }
    return all;
}

}  // namespace browsersweep
