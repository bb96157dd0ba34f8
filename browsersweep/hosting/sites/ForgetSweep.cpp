#include "browsersweep/hosting/sites/ForgetSweep.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "browsersweep/hosting/DatabaseState.h"
#include "browsersweep/hosting/ItemEvidence.h"
#include "browsersweep/hosting/ItemExamination.h"
#include "browsersweep/sites/ListingParts.h"

namespace browsersweep {
namespace {

std::int64_t allocatedBytes(const TraceStore& store, OperationControl* control) {
    std::int64_t sum = 0;
    for (const auto& place : store.places()) {
        sum += browsersweep::allocatedBytes(place, control);
    }
    return sum;
}

bool isHeld(const TraceStore& store) {
    const auto places = store.places();
    return std::any_of(places.begin(), places.end(), isDatabaseHeld);
}

/** What a listing that did not fail may lack. */
std::optional<ItemObstacle> obstacleOf(const StoreListing& listing) {
    if (listing.error || isSuccess(listing.verdict)) {
        return std::nullopt;
    }
    return ItemObstacle{listing.verdict, listing.what, listing.detail};
}

std::string counted(std::int64_t count, const std::string& thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

/** What is not keyed by a site, and was not asked for by everything or by name. */
void addMixed(const TraceListing& listing, const ForgetRequest& request,
              std::vector<KeptTrace>& kept) {
    for (const MixedTrace& each : listing.notBySite) {
        if (request.takes(each.kind) && !request.takesMixedOf(each.kind) && !each.goesAlong) {
            kept.push_back({each.kind, each.what, each.meaning});
        }
    }
}

/** What the user decided for sites that are meant; only where no kinds were named. */
void addSettings(const TraceListing& listing, const ForgetRequest& request,
                 const std::filesystem::path& what, std::vector<KeptTrace>& kept) {
    if (!request.kinds.empty() || request.takes(TraceKind::settings)) {
        return;
    }
    const auto count =
        std::count_if(listing.bySite.begin(), listing.bySite.end(), [&request](const Trace& each) {
            return each.kind == TraceKind::settings && request.sites.selects(each.site);
        });
    if (count > 0) {
        kept.push_back({TraceKind::settings, what,
                        "what you decided about " + counted(count, "site") +
                            ", such as permissions; it goes only on request"});
    }
}

/** What belongs to a site that is meant and to one that is kept. */
void addShared(const TraceListing& listing, const ForgetRequest& request,
               const std::filesystem::path& what, std::vector<KeptTrace>& kept) {
    if (request.sites.isOnly()) {
        return;
    }
    for (const Trace& trace : listing.bySite) {
        if (!request.takes(trace.kind) || !request.sites.selects(trace.site)) {
            continue;
        }
        for (const auto& [others, size] : trace.shared) {
            const auto holder = std::find_if(
                others.begin(), others.end(),
                [&request](const Site& other) { return request.sites.sites().contains(other); });
            if (holder != others.end()) {
                kept.push_back({trace.kind, what,
                                counted(size.itemCount.value, "item") + " of " + trace.site.name() +
                                    " within " + holder->name() + ", which is kept"});
            }
        }
    }
}

/** Whether something goes for its own sake. */
bool isAnythingMeant(const std::optional<TraceListing>& gone) {
    return gone && (!gone->bySite.empty() ||
                    std::any_of(gone->notBySite.begin(), gone->notBySite.end(),
                                [](const MixedTrace& each) { return !each.goesAlong; }));
}

bool isSameThing(const KeptTrace& one, const KeptTrace& other) {
    return one.kind == other.kind && one.what == other.what;
}

/** A store knows best why something stays; what it is silent about is told by the plan. */
std::vector<KeptTrace> keptAfterAll(std::vector<KeptTrace> told,
                                    const std::vector<KeptTrace>& planned) {
    const auto size = told.size();
    for (const KeptTrace& each : planned) {
        const bool isTold =
            std::any_of(told.begin(), told.begin() + static_cast<std::ptrdiff_t>(size),
                        [&each](const KeptTrace& other) { return isSameThing(each, other); });
        if (!isTold) {
            told.push_back(each);
        }
    }
    return told;
}

bool isStop(const std::exception_ptr& error) noexcept {
    try {
        std::rethrow_exception(error);
    } catch (const OperationCancelled&) {
        return true;
    } catch (...) {  // a store may be anybody's, and so may be its errors
        return false;
    }
}

void stop(StoreForgetting& result) {
    result.verdict = ItemVerdict::cancelled;
    result.detail.clear();
    result.gone = TraceListing();
}

}  // namespace

ForgetSweep::ForgetSweep(std::vector<SweepStore> stores, ForgetOptions options,
                         StoreProgress progress)
    : stores_(std::move(stores)), options_(std::move(options)), progress_(std::move(progress)) {
    if (options_.request.sites.isEverything()) {
        return;  // where everything goes nothing is read twice
    }
    for (SweepStore& each : stores_) {
        if (auto remembering = each.store->remembering()) {
            each.store = std::move(remembering);
        }
    }
}

SiteInventory ForgetSweep::inventoryOf(StoreProgress progress) const {
    auto kinds = options_.request.kinds;
    if (!kinds.empty() && options_.request.takesSettings) {
        kinds.insert(TraceKind::settings);
    }
    return {stores_,
            {std::move(kinds), options_.request.knownHosts, options_.control},
            std::move(progress)};
}

Inventory ForgetSweep::takeInventory(std::size_t rounds) {
    const auto tell = [&](const SweepStore& next, std::size_t done, std::size_t all) {
        return !progress_ || progress_(next, done, rounds * all);
    };
    auto inventory = inventoryOf(tell).list();
    options_.request.knownHosts = inventory.knownHosts;
    return inventory;
}

ForgetResult ForgetSweep::plan() {
    return planOf(takeInventory(1));
}

ForgetResult ForgetSweep::planOf(const Inventory& inventory) const {
    ForgetResult result;
    result.wasStopped = inventory.wasStopped;
    for (std::size_t i = 0; i < stores_.size(); ++i) {
        result.stores.push_back(planned(*stores_[i].store, inventory.listings[i]));
        for (const Trace& trace : inventory.listings[i].listing.bySite) {
            result.foundSites.insert(trace.site);
        }
    }
    if (!isWorthwhile(result)) {
        for (StoreForgetting& store : result.stores) {
            leaveAlone(store);
        }
    }
    return result;
}

/** Where nothing of the sites is found, nothing goes along with it. */
void ForgetSweep::leaveAlone(StoreForgetting& plan) {
    if (plan.gone) {
        plan.gone = TraceListing();
    }
    if (plan.verdict == ItemVerdict::measured) {
        plan.verdict = ItemVerdict::nothingThere;
    }
}

StoreForgetting ForgetSweep::planned(const TraceStore& store, const StoreListing& before) const {
    const ForgetRequest& request = options_.request;
    StoreForgetting plan;
    plan.verdict = before.verdict;
    plan.what = before.what;
    plan.detail = before.detail;
    plan.error = before.error;
    plan.isConcerned = before.isConcerned;
    if (before.error || before.verdict == ItemVerdict::cancelled) {
        return plan;
    }
    plan.gone = selectedPart(before.listing, request);
    if (before.verdict == ItemVerdict::measured && plan.gone == TraceListing()) {
        plan.verdict = ItemVerdict::nothingThere;
    }
    addMixed(before.listing, request, plan.kept);
    addSettings(before.listing, request, store.path(), plan.kept);
    addShared(before.listing, request, store.path(), plan.kept);
    return plan;
}

bool ForgetSweep::isWorthwhile(const ForgetResult& plan) const {
    return !options_.request.sites.isOnly() ||
           std::any_of(plan.stores.begin(), plan.stores.end(),
                       [](const StoreForgetting& each) { return isAnythingMeant(each.gone); });
}

ForgetResult ForgetSweep::forget() {
    const Inventory inventory = takeInventory(2);
    ForgetResult result = planOf(inventory);
    if (!result.wasStopped && !isWorthwhile(result)) {
        return result;
    }
    refusals_.clear();
    for (std::size_t i = 0; i < stores_.size(); ++i) {
        StoreForgetting& store = result.stores[i];
        if (!store.isConcerned || store.error) {
            continue;
        }
        if (result.wasStopped) {
            stop(store);
        } else if (mayBegin(i, store)) {
            forgetOne(*stores_[i].store, inventory.listings[i], store);
        }
        result.wasStopped |= store.verdict == ItemVerdict::cancelled;
    }
    return result;
}

/** Whether a store has its turn; the result says why it has not. */
bool ForgetSweep::mayBegin(std::size_t index, StoreForgetting& result) {
    const SweepStore& next = stores_[index];
    const bool isStopped = options_.control && options_.control->shouldStop();
    if (isStopped || (progress_ && !progress_(next, stores_.size() + index, 2 * stores_.size()))) {
        stop(result);
        return false;
    }
    auto found = refusals_.find(next.browser);
    if (found == refusals_.end()) {
        auto refusal = options_.refusal ? options_.refusal(next.browser) : std::nullopt;
        found = refusals_.emplace(next.browser, std::move(refusal)).first;
    }
    if (!found->second) {
        return true;
    }
    result.verdict = ItemVerdict::held;
    result.detail = *found->second;
    result.gone = TraceListing();
    return false;
}

void ForgetSweep::forgetOne(const TraceStore& store, const StoreListing& before,
                            StoreForgetting& result) {
    result.wasBegun = true;
    if (removeFrom(store, result)) {
        listAgain(store, before, result);
        return;
    }
    // To list a large store now would keep the user waiting.
    result.verdict = ItemVerdict::cancelled;
    result.detail = "it was interrupted; part of what was to go may be gone";
    result.gone.reset();
}

/** False where it was stopped. */
bool ForgetSweep::removeFrom(const TraceStore& store, StoreForgetting& result) const {
    const auto occupied = allocatedBytes(store, nullptr);
    try {
        ForgetOutcome outcome = store.forget(options_.request);
        result.kept = keptAfterAll(std::move(outcome.kept), result.kept);
        result.isWithoutRemains = outcome.isWithoutRemains;
    } catch (...) {  // a store may be anybody's, and so may be its errors
        result.error = std::current_exception();
    }
    if (result.error && isStop(result.error)) {
        return false;
    }
    result.freedBytes = occupied - allocatedBytes(store, nullptr);
    return true;
}

void ForgetSweep::listAgain(const TraceStore& store, const StoreListing& before,
                            StoreForgetting& result) const {
    const auto after = inventoryOf({}).listOne(store, options_.request.knownHosts);
    ItemEvidence evidence;
    evidence.before = totalSize(*result.gone);
    evidence.lookBefore.toSeeing = obstacleOf(before);
    evidence.isDeletion = result.error != nullptr;
    result.gone.reset();
    if (after.error) {
        result.error = result.error ? result.error : after.error;
    } else {
        evidence.after = totalSize(selectedPart(after.listing, options_.request));
        evidence.lookAfter.toSeeing = obstacleOf(after);
        result.gone = goneBetween(before.listing, after.listing);
    }
    evidence.error = result.error;
    evidence.isHeld = (evidence.error || evidence.left() > 0) && isHeld(store);
    auto judgement = judgeCleaned(evidence);
    result.verdict = judgement.verdict;
    result.detail = std::move(judgement.detail);
    result.what = judgement.path.empty() ? store.path() : std::move(judgement.path);
}

}  // namespace browsersweep
