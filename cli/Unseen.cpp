#include "cli/Unseen.h"

#include <algorithm>
#include <utility>

namespace browsersweep::cli {

namespace {

/**
 * Whether what is to be kept for good would go with an item: data that is told by exclusions alone
 * hears none of them beside another filter.
 */
bool takesWhatIsKept(const SweepItem& item, const Options& options) {
    if (!options.keep || options.keep->sites.empty()) {
        return false;
    }
    const auto parts = item.data->parts();
    return std::any_of(parts.begin(), parts.end(), [](const CleanableDataPart& part) {
        return part.sight.exclusions && !part.sight.inclusions;
    });
}

}  // namespace

Unseen::Unseen(const std::vector<SweepItem>& items, const Options& options,
               const Observer& observer)
    : isStrict_(options.strict), acted_(items), sizes_(items.size()) {
    for (SweepItem& item : acted_) {
        divisions_.push_back(divide(item.data, options.filters));
        const bool mustStay = divisions_.back().unseen && takesWhatIsKept(item, options);
        if (isStrict_ || mustStay) {
            item.data = divisions_.back().seen;
        }
        if (mustStay) {
            divisions_.back() = {item.data, nullptr, {}, {}};
        }
    }
    measure(options, observer);
}

/** The figure of an item that goes as a whole is the item's own, and not measured twice. */
void Unseen::measure(const Options& options, const Observer& observer) {
    std::vector<SweepItem> unseen;
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < acted_.size(); ++i) {
        const FilterDivision& division = divisions_[i];
        if (division.unseen && (isStrict_ || division.unseen != acted_[i].data)) {
            unseen.push_back({acted_[i].profile, acted_[i].category, division.unseen});
            places.push_back(i);
        }
    }
    SweepOptions how;
    how.filters = options.filters;
    how.keepsGoing = true;
    how.examines = true;
    how.control = observer.control();
    ItemSweep sweep(std::move(unseen), std::move(how),
                    [&observer](const SweepItem& /*next*/, std::size_t /*done*/,
                                std::size_t /*all*/) { return !observer.isInterrupted(); });
    const SweepResult result = sweep.measure();
    for (std::size_t i = 0; i < places.size(); ++i) {
        sizes_[places[i]] = result.items[i].size;
    }
}

std::optional<UnseenRow> Unseen::rowOf(std::size_t index, const ItemResult& result) const {
    const FilterDivision& division = divisions_[index];
    if (!division.unseen) {
        return std::nullopt;
    }
    const bool isItemItself = !isStrict_ && division.unseen == acted_[index].data;
    // Where the item failed nobody knows how much of the part went.
    const bool isKnown = isStrict_ || isSuccess(result.verdict);
    const auto part = isKnown ? sizes_[index] : std::nullopt;
    return UnseenRow{division.blindTo, division.tables, isItemItself ? result.size : part};
}

}  // namespace browsersweep::cli
