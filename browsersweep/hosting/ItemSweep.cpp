#include "browsersweep/hosting/ItemSweep.h"

#include <algorithm>
#include <exception>
#include <map>
#include <system_error>
#include <utility>

#include "browsersweep/hosting/DatabaseState.h"
#include "browsersweep/hosting/FailureKind.h"
#include "browsersweep/platform/internal/posix/FileFacts.h"
#include "browsersweep/sqlite/internal/NoRoom.h"

namespace browsersweep {
namespace {

using ItemsByCategory = std::map<CleanableDataCategory, std::vector<SweepItem>>;

void add(const std::shared_ptr<const BrowserProfile>& profile, ItemsByCategory& items) {
    // Held by a name: a loop over a member of a temporary would outlive it.
    const CleanableDataMap data = profile->cleanableData();
    for (const auto& [category, list] : data.lists()) {
        for (const CleanableDataList::Item& item : list.items()) {
            items[category].push_back({profile, category, item});
        }
    }
}

std::vector<SweepItem> inOneList(const ItemsByCategory& items) {
    std::vector<SweepItem> all;
    for (const auto& [category, own] : items) {
        all.insert(all.end(), own.begin(), own.end());
    }
    return all;
}

FailureKind kindOf(const std::exception_ptr& error) noexcept {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& known) {
        return failureKind(known);
    } catch (...) {  // an item may be anybody's, and so may be its errors
        return FailureKind::other;
    }
}

bool isHeld(const CleanableData& item) {
    const auto databases = databasesOf(item);
    return std::any_of(databases.begin(), databases.end(), isDatabaseHeld);
}

/** What lies between two counts of a control. */
CleanableDataSize difference(const OperationProgress& before, const OperationProgress& after) {
    const auto items = after.files - before.files + after.rows - before.rows;
    return {{static_cast<std::int64_t>(items), true},
            {static_cast<std::int64_t>(after.bytes - before.bytes), true}};
}

/** Where an item lies: the first of its places that is there. */
std::filesystem::path placeOf(const CleanableData& item) {
    const auto places = item.locations();
    const auto found = std::find_if(places.begin(), places.end(), [](const auto& place) {
        std::error_code error;
        return std::filesystem::exists(std::filesystem::symlink_status(place.path, error));
    });
    if (places.empty()) {
        return {};
    }
    const auto& path = found != places.end() ? found->path : places.front().path;
    return path.has_filename() ? path : path.parent_path();  // without a "/" at its end
}

/** Whether a transaction of one of its databases may wait to be finished or taken back. */
bool hasJournal(const CleanableData& item) {
    const auto databases = databasesOf(item);
    return std::any_of(databases.begin(), databases.end(), [](std::filesystem::path database) {
        std::error_code error;
        return hasPendingChanges(database) ||
               std::filesystem::exists(
                   std::filesystem::symlink_status(database += "-journal", error));
    });
}

/** What a clean deleted of an item's databases, as its control counted it. */
CleanableDataSize rowsBetween(const OperationProgress& before, const OperationProgress& after,
                              std::int64_t fileSize) {
    const auto rows = static_cast<std::int64_t>(after.rows - before.rows);
    return {{rows, true}, {rows > 0 ? fileSize : 0, true}};
}

bool differs(const std::optional<CleanableDataSize>& size,
             const std::optional<std::int64_t>& rows) noexcept {
    return size && rows && size->itemCount.value != *rows;
}

/** Whether a figure may lack something, or counts what changes beside the file have undone. */
bool isUncertain(const ItemEvidence& evidence, ItemVerdict verdict) noexcept {
    return verdict == ItemVerdict::couldNotLook || verdict == ItemVerdict::notUnderstood ||
           verdict == ItemVerdict::leftOut || verdict == ItemVerdict::held ||
           evidence.ignored != nullptr || differs(evidence.before, evidence.lookBefore.rows) ||
           differs(evidence.after, evidence.lookAfter.rows);
}

}  // namespace

std::vector<SweepItem> sweepItems(const std::shared_ptr<const BrowserProfile>& profile) {
    ItemsByCategory items;
    add(profile, items);
    return inOneList(items);
}

std::vector<SweepItem> sweepItems(const BrowserCleaner& cleaner,
                                  const ProfilePredicate& shouldIncludeProfile) {
    ItemsByCategory items;
    for (const auto& profile : cleaner.profileReader().profiles()) {
        if (shouldIncludeProfile(*profile)) {
            add(profile, items);
        }
    }
    return inOneList(items);
}

CleanableDataSize SweepResult::sum() const noexcept {
    CleanableDataSize sum;
    for (const ItemResult& item : items) {
        sum = sum + item.size.value_or(CleanableDataSize::zero);
    }
    return sum;
}

ItemSweep::ItemSweep(std::vector<SweepItem> items, SweepOptions options, Progress progress)
    : items_(std::move(items)), options_(std::move(options)), progress_(std::move(progress)) {}

SweepResult ItemSweep::measure() {
    begin(1);
    goThrough(&ItemSweep::measureBefore);
    return finish();
}

SweepResult ItemSweep::clean() {
    begin(1);
    goThrough(&ItemSweep::cleanOne);
    return finish();
}

// All items are measured before the first is cleaned, and again after the last: two that share a
// folder then count the same before and after.
SweepResult ItemSweep::cleanAndMeasure() {
    begin(3);
    if (goThrough(&ItemSweep::measureBefore)) {
        goThrough(&ItemSweep::cleanOne);
        if (!firstError_ || kindOf(firstError_) != FailureKind::cancelled) {
            goThrough(&ItemSweep::measureAfter);
        }
    }
    return finish();
}

void ItemSweep::begin(std::size_t rounds) {
    states_.assign(items_.size(), {});
    firstError_ = nullptr;
    done_ = 0;
    all_ = rounds * items_.size();
}

/** Whether an item takes part in a round. What was cleaned in part is measured again. */
bool ItemSweep::isConcerned(const State& state, Work work) const noexcept {
    if (work == &ItemSweep::measureAfter) {
        return state.isCleaned || state.isDeletion;
    }
    return !state.error;
}

/** One round. False where it ended early. */
bool ItemSweep::goThrough(Work work) {
    for (std::size_t i = 0; i < items_.size(); ++i) {
        State& state = states_[i];
        if (!isConcerned(state, work)) {
            ++done_;
            continue;
        }
        try {
            step(items_[i]);
            state.isBegun |= work != &ItemSweep::measureBefore || all_ == items_.size();
            (this->*work)(state, items_[i]);
            takeLeftOut(state);
        } catch (...) {
            takeLeftOut(state);
            if (fail(state, work)) {
                return false;
            }
        }
    }
    return true;
}

/** Notes the error that is being handled. True where it ends the round. */
bool ItemSweep::fail(State& state, Work work) {
    const auto error = std::current_exception();
    const bool isStopped = kindOf(error) == FailureKind::cancelled;
    state.isBegun |= !isStopped;
    if (!state.error) {
        state.error = error;
        state.isDeletion = work == &ItemSweep::cleanOne;
    }
    if (!firstError_ || isStopped) {
        firstError_ = error;
    }
    // A stop concerns every item that would follow, one's own failure that item alone. What was
    // begun is measured again whatever else fails.
    return isStopped || (!options_.keepsGoing && work != &ItemSweep::measureAfter);
}

void ItemSweep::step(const SweepItem& next) {
    if (progress_ && !progress_(next, done_, all_)) {
        throw OperationCancelled(options_.control ? options_.control->progress()
                                                  : OperationProgress{});
    }
    ++done_;
}

void ItemSweep::takeLeftOut(State& state) const {
    if (!options_.examines || !options_.control) {
        return;
    }
    for (LeftOutFolder& folder : options_.control->takeLeftOut()) {
        const auto found = std::find(state.leftOut.begin(), state.leftOut.end(), folder);
        if (found == state.leftOut.end()) {
            state.leftOut.push_back(std::move(folder));
        }
    }
}

CleanableDataSize ItemSweep::sizeOf(State& state, const SweepItem& item) const {
    try {
        return item.data->size(options_.filters);
    } catch (const OperationCancelled&) {
        throw;
    } catch (const std::exception& error) {
        const auto counted = options_.examines && saysNoRoom(error)
                                 ? sizeWithoutCopy(*item.data, options_.filters)
                                 : std::nullopt;
        if (counted) {
            return *counted;
        }
        if (!options_.ignoresErrors) {
            throw;
        }
        state.ignored = std::current_exception();
    } catch (...) {
        if (!options_.ignoresErrors) {
            throw;
        }
        state.ignored = std::current_exception();
    }
    return item.data->sizeIgnoringErrors(options_.filters);
}

void ItemSweep::measureBefore(State& state, const SweepItem& item) {
    try {
        state.before = sizeOf(state, item);
    } catch (const std::exception& error) {
        const bool isToBeCleaned = all_ != items_.size();
        if (!isToBeCleaned || !options_.examines || !saysNoRoom(error) || !hasJournal(*item.data)) {
            throw;
        }
        // A clean needs no copy: SQLite finishes or takes back in place what waits.
        state.isUncounted = true;
        return;
    }
    if (options_.examines) {
        state.lookBefore = examine(*item.data, options_.filters);
    }
}

void ItemSweep::measureAfter(State& state, const SweepItem& item) {
    state.after = sizeOf(state, item);
    if (options_.examines) {
        state.lookAfter = examine(*item.data, options_.filters);
    }
}

void ItemSweep::cleanOne(State& state, const SweepItem& item) {
    if (!options_.examines) {
        deleteFrom(state, item);
        return;
    }
    // Around the item's own deletion: what two items share is then freed once.
    const auto occupied = allocatedBytes(*item.data, options_.control.get());
    continueOrThrow(options_.control.get());
    const auto tellFreed = [&] {
        state.freedBytes = occupied - allocatedBytes(*item.data, nullptr);
    };
    try {
        deleteFrom(state, item);
    } catch (const OperationCancelled&) {
        throw;  // to look through a large folder now would keep the user waiting
    } catch (...) {
        tellFreed();
        throw;
    }
    tellFreed();
}

void ItemSweep::deleteFrom(State& state, const SweepItem& item) const {
    const auto counted = options_.control ? options_.control->progress() : OperationProgress{};
    const std::int64_t fileSize = state.isUncounted ? posix::factsOf(placeOf(*item.data)).size : 0;
    try {
        item.data->clean(options_.filters);
    } catch (const OperationCancelled&) {
        if (options_.control) {
            state.deleted = difference(counted, options_.control->progress());
        }
        throw;
    } catch (...) {
        if (!options_.ignoresErrors) {
            throw;
        }
        state.ignored = std::current_exception();
        item.data->cleanIgnoringErrors(options_.filters);
    }
    state.isCleaned = true;
    if (state.isUncounted && options_.control) {
        state.deleted = rowsBetween(counted, options_.control->progress(), fileSize);
    }
}

/** What is gone of an item that was cleaned and not measured again: at most what was there. */
std::optional<CleanableDataSize> ItemSweep::whatWasThere(const State& state) noexcept {
    return state.before ? std::optional(state.before->approximate()) : std::nullopt;
}

std::optional<CleanableDataSize> ItemSweep::figureOf(const State& state) const noexcept {
    if (state.after && state.before) {
        return *state.before - *state.after;
    }
    if (state.deleted || state.isCleaned) {
        return state.deleted ? state.deleted : whatWasThere(state);
    }
    const bool isMeasured = all_ == items_.size();
    return isMeasured && !state.error ? state.before : std::nullopt;
}

ItemResult ItemSweep::resultOf(const State& state, const SweepItem& item) const {
    ItemResult result;
    result.error = state.error ? state.error : state.ignored;
    result.wasBegun = state.isBegun;
    result.freedBytes = state.freedBytes;
    result.size = figureOf(state);
    const bool isMeasured = state.before && all_ == items_.size();
    ItemJudgement judgement;
    if (state.error || state.after) {
        judgement = (state.before || state.isUncounted) && (state.after || state.isDeletion)
                        ? judgeCleaned(state)
                        : judgeMeasured(state);
    } else if (state.isCleaned) {
        judgement.verdict = ItemVerdict::emptied;
    } else if (isMeasured) {
        judgement = judgeMeasured(state);
    } else {
        const bool isStopped = firstError_ && kindOf(firstError_) == FailureKind::cancelled;
        judgement.verdict = isStopped ? ItemVerdict::cancelled : ItemVerdict::leftOut;
    }
    result.verdict = judgement.verdict;
    result.detail = std::move(judgement.detail);
    result.what = judgement.path.empty() ? placeOf(*item.data) : std::move(judgement.path);
    if (result.size && isUncertain(state, result.verdict)) {
        result.size = result.size->approximate();
    }
    return result;
}

SweepResult ItemSweep::finish() {
    SweepResult result;
    result.error = firstError_;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        State& state = states_[i];
        const bool isLeft = state.after && state.left() > 0;
        state.isHeld = (isLeft || state.error || state.ignored) &&
                       (state.lookAfter.isLocked || isHeld(*items_[i].data));
        result.items.push_back(resultOf(state, items_[i]));
    }
    return result;
}

}  // namespace browsersweep
