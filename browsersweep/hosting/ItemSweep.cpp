#include "browsersweep/hosting/ItemSweep.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "browsersweep/hosting/DatabaseState.h"
#include "browsersweep/hosting/FailureKind.h"

namespace browsersweep {
namespace {

constexpr std::array<std::string_view, 10> verdictNames{
    "measured",       "emptied", "partlyEmptied", "nothingThere", "couldNotLook",
    "couldNotDelete", "held",    "notUnderstood", "leftOut",      "cancelled",
};

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

ItemVerdict verdictOfFailure(const std::exception_ptr& error, bool isDeletion) noexcept {
    switch (kindOf(error)) {
        case FailureKind::locked:
            return ItemVerdict::held;
        case FailureKind::notUnderstood:
            return ItemVerdict::notUnderstood;
        case FailureKind::cancelled:
            return ItemVerdict::cancelled;
        case FailureKind::nothingThere:
        case FailureKind::noPermission:
        case FailureKind::other:
            break;
    }
    return isDeletion ? ItemVerdict::couldNotDelete : ItemVerdict::couldNotLook;
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

std::string_view rawValue(ItemVerdict verdict) noexcept {
    return verdictNames[static_cast<std::size_t>(verdict)];
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
    if (goThrough(&ItemSweep::measureBefore) && goThrough(&ItemSweep::cleanOne)) {
        goThrough(&ItemSweep::measureAfter);
    }
    return finish();
}

void ItemSweep::begin(std::size_t rounds) {
    states_.assign(items_.size(), {});
    firstError_ = nullptr;
    done_ = 0;
    all_ = rounds * items_.size();
}

/** One round. False where it ended early. */
bool ItemSweep::goThrough(Work work) {
    for (std::size_t i = 0; i < items_.size(); ++i) {
        State& state = states_[i];
        try {
            step(items_[i]);
            if (!state.error) {
                (this->*work)(state, items_[i]);
            }
        } catch (...) {
            state.error = std::current_exception();
            state.isDeletion = work == &ItemSweep::cleanOne;
            if (!firstError_) {
                firstError_ = state.error;
            }
            // A stop concerns every item that would follow, one's own failure that item alone.
            if (!options_.keepsGoing || kindOf(state.error) == FailureKind::cancelled) {
                firstError_ = state.error;
                return false;
            }
        }
    }
    return true;
}

void ItemSweep::step(const SweepItem& next) {
    if (progress_ && !progress_(next, done_, all_)) {
        throw OperationCancelled(options_.control ? options_.control->progress()
                                                  : OperationProgress{});
    }
    ++done_;
}

CleanableDataSize ItemSweep::sizeOf(const SweepItem& item) const {
    return options_.ignoresErrors ? item.data->sizeIgnoringErrors(options_.filters)
                                  : item.data->size(options_.filters);
}

void ItemSweep::measureBefore(State& state, const SweepItem& item) {
    state.before = sizeOf(item);
}

void ItemSweep::measureAfter(State& state, const SweepItem& item) {
    state.after = sizeOf(item);
}

void ItemSweep::cleanOne(State& state, const SweepItem& item) {
    if (options_.ignoresErrors) {
        item.data->cleanIgnoringErrors(options_.filters);
        state.isCleaned = true;
        return;
    }
    const auto counted = options_.control ? options_.control->progress() : OperationProgress{};
    try {
        item.data->clean(options_.filters);
        state.isCleaned = true;
    } catch (const OperationCancelled&) {
        if (options_.control) {
            state.stoppedAfter = difference(counted, options_.control->progress());
        }
        throw;
    }
}

/** What is gone of an item that was cleaned and not measured again: at most what was there. */
std::optional<CleanableDataSize> ItemSweep::whatWasThere(const State& state) noexcept {
    auto size = state.before;
    if (size) {
        size->itemCount.isApproximate = true;
        size->byteCount.isApproximate = true;
    }
    return size;
}

ItemResult ItemSweep::resultOf(const State& state, const SweepItem& item) const {
    if (state.error) {
        const auto verdict = verdictOfFailure(state.error, state.isDeletion);
        const bool isKnownGone = verdict == ItemVerdict::cancelled && state.isCleaned;
        return {verdict, isKnownGone ? whatWasThere(state) : state.stoppedAfter, state.error};
    }
    if (state.after) {
        const CleanableDataSize removed = *state.before - *state.after;
        if (state.after->itemCount.value > 0) {
            return {isHeld(*item.data) ? ItemVerdict::held : ItemVerdict::partlyEmptied, removed,
                    nullptr};
        }
        const bool wasEmpty = state.before->itemCount.value == 0;
        return {wasEmpty ? ItemVerdict::nothingThere : ItemVerdict::emptied, removed, nullptr};
    }
    if (state.isCleaned) {
        return {ItemVerdict::emptied, whatWasThere(state), nullptr};
    }
    if (state.before && all_ == items_.size()) {
        const bool isEmpty = state.before->itemCount.value == 0;
        return {isEmpty ? ItemVerdict::nothingThere : ItemVerdict::measured, state.before, nullptr};
    }
    const bool isStopped = firstError_ && kindOf(firstError_) == FailureKind::cancelled;
    return {isStopped ? ItemVerdict::cancelled : ItemVerdict::leftOut, std::nullopt, nullptr};
}

SweepResult ItemSweep::finish() const {
    SweepResult result;
    result.error = firstError_;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        result.items.push_back(resultOf(states_[i], items_[i]));
    }
    return result;
}

}  // namespace browsersweep
