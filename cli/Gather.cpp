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

#include "cli/ErrorText.h"
#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

/** Runs one part of the work. Its failure becomes its error text and ends nothing else. */
template <typename Work>
std::optional<std::string> attempt(const Observer& observer, const Work& work) {
    if (observer.isInterrupted()) {
        return std::string(interruptedText);
    }
    try {
        work();
        return std::nullopt;
    } catch (const OperationCancelled&) {
        return std::string(stoppedText);
    } catch (const std::exception& error) {
        return errorText(error);
    }
}

/** Goes through the selected browsers in the catalogue's order. */
template <typename Row, typename Fill>
std::vector<Row> forEachBrowser(const Options& options, const CleanerFactory& cleanerOf,
                                Observer& observer, const Fill& fill) {
    std::vector<Row> rows;
    const auto browsers = options.selection.selectedBrowsers();
    for (const Browser browser : browsers) {
        observer.begin(browser, rows.size(), browsers.size());
        Row row{};
        row.browser = browser;
        fill(row, *cleanerOf(browser));
        rows.push_back(std::move(row));
    }
    return rows;
}

BrowsersReport gatherBrowsers(const Options& options, const CleanerFactory& cleanerOf,
                              Observer& observer) {
    return {forEachBrowser<BrowserRow>(options, cleanerOf, observer,
                                       [](BrowserRow& row, const BrowserCleaner& cleaner) {
                                           row.displayName = cleaner.name();
                                           row.bundleIdentifier = cleaner.bundleIdentifier();
                                       })};
}

ProfileRow rowOf(const BrowserProfile& profile) {
    return {profile.name(), profile.isPrimary(), profile.folder()};
}

/** Whether a profile is selected; one that is, and is left out, is added to the list. */
bool selects(const Options& options, const BrowserProfile& profile,
             std::vector<LeftOutProfile>& leftOut) {
    const bool isSelected = options.selection.includes(profile);
    const auto reason = isSelected ? profile.leftOutReason() : std::nullopt;
    if (reason) {
        leftOut.push_back({rowOf(profile), *reason});
    }
    return isSelected;
}

/** The selected profiles of a browser, in the reader's order. */
std::vector<std::shared_ptr<const BrowserProfile>> selectedProfiles(
    const Options& options, const BrowserCleaner& cleaner, std::vector<LeftOutProfile>& leftOut) {
    std::vector<std::shared_ptr<const BrowserProfile>> selected;
    for (auto& profile : cleaner.profileReader().profiles()) {
        if (selects(options, *profile, leftOut)) {
            selected.push_back(std::move(profile));
        }
    }
    return selected;
}

ProfilesReport gatherProfiles(const Options& options, const CleanerFactory& cleanerOf,
                              Observer& observer) {
    return {forEachBrowser<BrowserProfiles>(
        options, cleanerOf, observer, [&](BrowserProfiles& row, const BrowserCleaner& cleaner) {
            row.error = attempt(observer, [&] {
                for (const auto& profile : selectedProfiles(options, cleaner, row.leftOut)) {
                    row.profiles.push_back(rowOf(*profile));
                }
            });
        })};
}

ProfilePredicate predicateOf(const Options& options, std::vector<LeftOutProfile>& leftOut) {
    return [&options, &leftOut](const BrowserProfile& profile) {
        return selects(options, profile, leftOut);
    };
}

BookmarksReport gatherBookmarks(const Options& options, const CleanerFactory& cleanerOf,
                                Observer& observer) {
    return {forEachBrowser<BrowserBookmarks>(
        options, cleanerOf, observer, [&](BrowserBookmarks& row, const BrowserCleaner& cleaner) {
            row.error = attempt(observer, [&] {
                row.bookmarks = cleaner.bookmarks(predicateOf(options, row.leftOut));
            });
        })};
}

ProfileSubscriptions subscriptionsOf(const BrowserProfile& profile, const Observer& observer) {
    ProfileSubscriptions part;
    part.profile = rowOf(profile);
    part.error = attempt(observer, [&] {
        std::vector<SubscriptionRow> rows;
        for (const auto& subscription : profile.notificationSubscriptions()) {
            rows.push_back({subscription->sourceURL().absoluteString(), subscription->store()});
        }
        part.subscriptions = std::move(rows);
    });
    return part;
}

NotificationsReport gatherNotifications(const Options& options, const CleanerFactory& cleanerOf,
                                        Observer& observer) {
    return {forEachBrowser<BrowserNotifications>(
        options, cleanerOf, observer,
        [&](BrowserNotifications& row, const BrowserCleaner& cleaner) {
            row.error = attempt(observer, [&] {
                for (const auto& profile : selectedProfiles(options, cleaner, row.leftOut)) {
                    row.profiles.push_back(subscriptionsOf(*profile, observer));
                }
            });
        })};
}

/** Measures, and maybe cleans, the selected categories of one browser. */
class BrowserMeasurer {
public:
    BrowserMeasurer(const Options& options, Measure measure, Observer& observer)
        : options_(options), measure_(measure), observer_(observer) {}

    void fill(BrowserSizes& row, const BrowserCleaner& cleaner) const {
        std::vector<SweepItem> items;
        row.error = attempt(
            observer_, [&] { items = sweepItems(cleaner, predicateOf(options_, row.leftOut)); });
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
        auto part = options_.html ? sizeByProfile(category, items, row) : sizeOf(category, items);
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

    void sweep(const Items& items, CategorySize& part) const {
        SweepOptions how;
        how.filters = options_.filters;
        how.ignoresErrors = options_.ignoreErrors;
        how.keepsGoing = options_.keepGoing;
        how.examines = true;
        how.control = observer_.control();
        ItemSweep sweep(items, std::move(how),
                        [this](const SweepItem& /*next*/, std::size_t /*done*/,
                               std::size_t /*all*/) { return !observer_.isInterrupted(); });
        const auto result =
            measure_ == Measure::removed ? sweep.cleanAndMeasure() : sweep.measure();
        addRows(items, result, part);
        // What a clean had deleted when it was stopped is gone, so it is told beside the error.
        if (!result.error || options_.keepGoing ||
            (measure_ == Measure::removed && observer_.isInterrupted())) {
            part.size = result.sum();
        }
        if (result.error) {
            std::rethrow_exception(result.error);
        }
    }

    static void addRows(const Items& items, const SweepResult& result, CategorySize& part) {
        for (std::size_t i = 0; i < items.size(); ++i) {
            const ItemResult& item = result.items[i];
            const auto& profile = *items[i].profile;
            const auto detail =
                item.detail.empty() ? std::nullopt : std::optional(printable(item.detail));
            part.items.push_back({profile.name(), profile.folder(), item.what.string(),
                                  item.verdict, detail, item.size, item.freedBytes, item.wasBegun});
            part.freedBytes += item.freedBytes;
        }
    }

    /** The same profile by profile: a page shows the figures of one also where another fails. */
    CategorySize sizeByProfile(CleanableDataCategory category, const Items& items,
                               BrowserSizes& row) const {
        CategorySize all{};
        all.category = category;
        all.size = CleanableDataSize::zero;
        for (auto begin = items.begin(); begin != items.end();) {
            const auto end = std::find_if(begin, items.end(), [&](const SweepItem& item) {
                return item.profile != begin->profile;
            });
            const auto part = sizeOf(category, Items(begin, end));
            all.items.insert(all.items.end(), part.items.begin(), part.items.end());
            all.requiresClosedBrowserToClean |= part.requiresClosedBrowserToClean;
            all.error = all.error ? all.error : part.error;
            all.size = *all.size + part.size.value_or(CleanableDataSize::zero);
            profileRow(*begin->profile, row).categories.push_back(part);
            begin = end;
        }
        if (all.error && !options_.keepGoing) {
            all.size.reset();
        }
        return all;
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

SizesReport gatherSizes(const Options& options, Measure measure, const CleanerFactory& cleanerOf,
                        Observer& observer) {
    const BrowserMeasurer measurer(options, measure, observer);
    SizesReport report;
    report.measure = measure;
    report.browsers = forEachBrowser<BrowserSizes>(
        options, cleanerOf, observer,
        [&](BrowserSizes& row, const BrowserCleaner& cleaner) { measurer.fill(row, cleaner); });
    for (const auto& row : report.browsers) {
        report.total = report.total + row.size.value_or(CleanableDataSize::zero);
        report.freedBytes += row.freedBytes;
    }
    return report;
}

}  // namespace

Observer::~Observer() = default;

SizesReport preview(const Options& options, const CleanerFactory& cleanerOf, Observer& observer) {
    return gatherSizes(options, Measure::wouldBeRemoved, cleanerOf, observer);
}

Report gather(const Options& options, const CleanerFactory& cleanerOf, Observer& observer) {
    switch (options.command) {
        case Command::browsers:
            return gatherBrowsers(options, cleanerOf, observer);
        case Command::profiles:
            return gatherProfiles(options, cleanerOf, observer);
        case Command::size:
            return gatherSizes(options, Measure::present, cleanerOf, observer);
        case Command::clean:
            return gatherSizes(options, options.dryRun ? Measure::wouldBeRemoved : Measure::removed,
                               cleanerOf, observer);
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
