#include "cli/Gather.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "browsersweep/hosting/DatabaseState.h"
#include "browsersweep/hosting/ItemSweep.h"

#include "cli/GatherLists.h"
#include "cli/GatherPieces.h"
#include "cli/ProfileLabels.h"
#include "cli/Text.h"
#include "cli/Unseen.h"

namespace browsersweep::cli {
namespace {

/** Measures, and maybe cleans, the selected categories of one browser. */
class BrowserMeasurer {
public:
    BrowserMeasurer(const Options& options, Measure measure, Observer& observer)
        : options_(options), measure_(measure), observer_(observer) {}

    void fill(BrowserSizes& row, const BrowserCleaner& cleaner,
              const BrowserRefusal& refusal) const {
        std::vector<SweepItem> items;
        ProfileLabels labels;
        const auto isSelected = [&](const BrowserProfile& profile) {
            labels.add(profile);
            return selects(options_, profile, row.leftOut);
        };
        row.error = attempt(observer_, [&] { items = sweepItems(cleaner, isSelected); });
        if (!row.error && measure_ == Measure::removed && refusal) {
            row.error = refusal(row.browser);
        }
        if (row.error) {
            return;
        }
        row.size = CleanableDataSize::zero;
        for (const auto category : allCleanableDataCategories) {
            const auto own = itemsOf(category, items);
            if (!own.empty() && options_.selection.includes(category)) {
                add(category, own, row);
            }
        }
        tellApart(labels, row);
    }

private:
    using Items = std::vector<SweepItem>;

    static Items itemsOf(CleanableDataCategory category, const Items& items) {
        Items own;
        std::copy_if(items.begin(), items.end(), std::back_inserter(own),
                     [category](const SweepItem& item) { return item.category == category; });
        return own;
    }

    void add(CleanableDataCategory category, const Items& items, BrowserSizes& row) const {
        observer_.begin(category);
        auto part = sizeOf(category, items);
        addToProfiles(items, part, row);
        tellOfDatabases(items, part, row.browser);
        row.size = *row.size + part.size.value_or(CleanableDataSize::zero);
        row.freedBytes += part.freedBytes;
        row.requiresClosedBrowserToClean |= part.requiresClosedBrowserToClean;
        row.categories.push_back(std::move(part));
    }

    CategorySize sizeOf(CleanableDataCategory category, const Items& items) const {
        CategorySize part{};
        part.category = category;
        part.requiresClosedBrowserToClean = std::any_of(
            items.begin(), items.end(),
            [](const SweepItem& item) { return item.data->requiresClosedBrowserToClean(); });
        part.error = attempt(observer_, [&] { sweep(items, part); });
        return part;
    }

    SweepOptions howToSweep() const {
        SweepOptions how;
        how.filters = options_.filters;
        how.ignoresErrors = options_.ignoreErrors;
        // A page shows the figures of one profile also where another fails.
        how.keepsGoing = options_.keepGoing || options_.html;
        how.examines = true;
        how.control = observer_.control();
        return how;
    }

    void sweep(const Items& items, CategorySize& part) const {
        const Unseen unseen(items, options_, observer_);
        ItemSweep sweep(unseen.acted(), howToSweep(),
                        [this](const SweepItem& /*next*/, std::size_t /*done*/,
                               std::size_t /*all*/) { return !observer_.isInterrupted(); });
        const auto result =
            measure_ == Measure::removed ? sweep.cleanAndMeasure() : sweep.measure();
        addRows(items, unseen, result, part);
        // What a clean had deleted when it was stopped is gone, so it is told beside the error.
        if (!result.error || options_.keepGoing ||
            (measure_ == Measure::removed && observer_.isInterrupted())) {
            part.size = result.sum();
        }
        if (result.error) {
            std::rethrow_exception(result.error);
        }
    }

    void addRows(const Items& items, const Unseen& unseen, const SweepResult& result,
                 CategorySize& part) const {
        for (std::size_t i = 0; i < items.size(); ++i) {
            const ItemResult& item = result.items[i];
            const auto& profile = *items[i].profile;
            const auto detail =
                item.detail.empty() ? std::nullopt : std::optional(printable(item.detail));
            const auto what = item.what.empty() ? placeOf(*items[i].data) : item.what;
            part.items.push_back({profile.name(), profile.folder(), what.string(), item.verdict,
                                  detail, item.size, item.freedBytes, item.wasBegun,
                                  unseen.rowOf(i, item)});
            part.freedBytes += item.freedBytes;
            if (options_.list && item.size) {
                part.items.back().entries = entriesOf(*unseen.acted()[i].data, options_.filters);
            }
        }
    }

    static std::filesystem::path placeOf(const CleanableData& item) {
        const auto places = item.locations();
        return places.empty() ? std::filesystem::path() : places.front().path;
    }

    /** What each profile has is told by its items. */
    void addToProfiles(const Items& items, const CategorySize& all, BrowserSizes& row) const {
        for (std::size_t begin = 0; begin < all.items.size();) {
            auto end = begin;
            while (end < items.size() && items[end].profile == items[begin].profile) {
                ++end;
            }
            addToProfile(*items[begin].profile, partOf(all, begin, end), row);
            begin = end;
        }
    }

    /** What some items of a category come to; an error is theirs only where one of them failed. */
    CategorySize partOf(const CategorySize& all, std::size_t begin, std::size_t end) const {
        CategorySize part{};
        part.category = all.category;
        part.size = CleanableDataSize::zero;
        for (std::size_t i = begin; i < end; ++i) {
            const ItemRow& item = all.items[i];
            part.items.push_back(item);
            part.freedBytes += item.freedBytes;
            part.size = *part.size + item.size.value_or(CleanableDataSize::zero);
            if (all.error && !part.error && !isSuccess(item.verdict)) {
                part.error = item.detail ? item.detail : all.error;
            }
        }
        if (part.error && !all.size) {
            part.size.reset();
        }
        return part;
    }

    static void addToProfile(const BrowserProfile& profile, const CategorySize& part,
                             BrowserSizes& row) {
        auto& own = profileRow(profile, row);
        own.freedBytes += part.freedBytes;
        own.categories.push_back(part);
    }

    static void tellApart(const ProfileLabels& labels, BrowserSizes& row) {
        for (auto& part : row.profiles) {
            part.profile.isNameShared = labels.isShared(part.profile.name);
        }
        for (auto& part : row.categories) {
            for (auto& item : part.items) {
                item.isNameShared = labels.isShared(item.profile);
            }
        }
    }

    static ProfileSizes& profileRow(const BrowserProfile& profile, BrowserSizes& row) {
        const auto found =
            std::find_if(row.profiles.begin(), row.profiles.end(),
                         [&](const ProfileSizes& each) { return each.source == &profile; });
        return found != row.profiles.end()
                   ? *found
                   : row.profiles.emplace_back(ProfileSizes{rowOf(profile), {}, &profile});
    }

    /** Says of what was counted where changes wait beside it that were not. */
    void tellOfDatabases(const Items& items, const CategorySize& part, Browser browser) const {
        for (std::size_t i = 0; i < part.items.size(); ++i) {
            if (!part.items[i].wasBegun) {
                continue;
            }
            for (const auto& database : databasesWithUncountedChanges(*items[i].data)) {
                observer_.note(
                    fmt::format("{}, {}: the browser's latest changes to {} are not counted",
                                displayName(browser), displayName(part.category),
                                database.filename().string()));
            }
        }
    }

    const Options& options_;
    Measure measure_;
    Observer& observer_;
};

CleanableDataSize unseenOf(const std::vector<BrowserSizes>& browsers) {
    CleanableDataSize sum;
    for (const BrowserSizes& row : browsers) {
        for (const CategorySize& part : row.categories) {
            for (const ItemRow& item : part.items) {
                const auto size = item.unseen ? item.unseen->size : std::nullopt;
                sum = sum + size.value_or(CleanableDataSize::zero);
                sum = item.unseen && !size ? sum.approximate() : sum;
            }
        }
    }
    return sum;
}

SizesReport gatherSizes(const Options& options, Measure measure, const CleanerFactory& cleanerOf,
                        Observer& observer, const BrowserRefusal& refusal = {}) {
    const BrowserMeasurer measurer(options, measure, observer);
    SizesReport report;
    report.measure = measure;
    report.browsers = forEachBrowser<BrowserSizes>(
        options, cleanerOf, observer, [&](BrowserSizes& row, const BrowserCleaner& cleaner) {
            measurer.fill(row, cleaner, refusal);
        });
    for (const auto& row : report.browsers) {
        report.total = report.total + row.size.value_or(CleanableDataSize::zero);
        report.freedBytes += row.freedBytes;
    }
    report.keep = options.keep;
    report.filters = options.filters;
    if (!options.filters.empty()) {
        report.unseen = UnseenSum{!options.strict, unseenOf(report.browsers)};
    }
    return report;
}

}  // namespace

Observer::~Observer() = default;

SizesReport preview(const Options& options, const CleanerFactory& cleanerOf, Observer& observer) {
    return gatherSizes(options, Measure::wouldBeRemoved, cleanerOf, observer);
}

Report gather(const Options& options, const CleanerFactory& cleanerOf, Observer& observer,
              const BrowserRefusal& refusal) {
    switch (options.command) {
        case Command::browsers:
            return gatherBrowsers(options, cleanerOf, observer);
        case Command::profiles:
            return gatherProfiles(options, cleanerOf, observer);
        case Command::size:
            return gatherSizes(options, Measure::present, cleanerOf, observer);
        case Command::clean:
            return gatherSizes(options, options.dryRun ? Measure::wouldBeRemoved : Measure::removed,
                               cleanerOf, observer, refusal);
        case Command::bookmarks:
            return gatherBookmarks(options, cleanerOf, observer);
        case Command::notifications:
            return gatherNotifications(options, cleanerOf, observer);
        case Command::doctor:
        case Command::sites:
        case Command::forget:
            break;  // gathered elsewhere, or not at all
    }
    throw std::logic_error("a command that gathers nothing");
}

}  // namespace browsersweep::cli
