#include "cli/Gather.h"

#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

#include "cli/DatabaseNotes.h"
#include "cli/ErrorText.h"

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
    return {profile.name(), profile.isPrimary()};
}

/** The selected profiles of a browser, in the reader's order. */
std::vector<std::shared_ptr<const BrowserProfile>> selectedProfiles(const Options& options,
                                                                    const BrowserCleaner& cleaner) {
    std::vector<std::shared_ptr<const BrowserProfile>> selected;
    for (auto& profile : cleaner.profileReader().profiles()) {
        if (options.selection.includes(*profile)) {
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
                for (const auto& profile : selectedProfiles(options, cleaner)) {
                    row.profiles.push_back(rowOf(*profile));
                }
            });
        })};
}

ProfilePredicate predicateOf(const Options& options) {
    return
        [&options](const BrowserProfile& profile) { return options.selection.includes(profile); };
}

BookmarksReport gatherBookmarks(const Options& options, const CleanerFactory& cleanerOf,
                                Observer& observer) {
    return {forEachBrowser<BrowserBookmarks>(
        options, cleanerOf, observer, [&](BrowserBookmarks& row, const BrowserCleaner& cleaner) {
            row.error =
                attempt(observer, [&] { row.bookmarks = cleaner.bookmarks(predicateOf(options)); });
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
                for (const auto& profile : selectedProfiles(options, cleaner)) {
                    row.profiles.push_back(subscriptionsOf(*profile, observer));
                }
            });
        })};
}

CleanableDataSize measured(const CleanableData& data, Measure measure, const Options& options) {
    if (measure == Measure::removed) {
        return options.ignoreErrors ? data.cleanAndReturnSizeIgnoringErrors(options.filters)
                                    : data.cleanAndReturnSize(options.filters);
    }
    return options.ignoreErrors ? data.sizeIgnoringErrors(options.filters)
                                : data.size(options.filters);
}

/** Measures, and maybe cleans, the selected categories of one browser. */
class BrowserMeasurer {
public:
    BrowserMeasurer(const Options& options, Measure measure, Observer& observer)
        : options_(options), measure_(measure), observer_(observer) {}

    void fill(BrowserSizes& row, const BrowserCleaner& cleaner) const {
        CleanableDataMap data;
        std::vector<ProfileData> profiles;
        row.error = attempt(observer_, [&] {
            data = cleaner.cleanableData(predicateOf(options_));
            if (options_.html) {
                profiles = profileData(cleaner);
            }
        });
        if (row.error) {
            return;
        }
        row.size = CleanableDataSize::zero;
        for (const auto& [category, list] : data.lists()) {
            if (options_.selection.includes(category)) {
                add(category, list, row);
            }
        }
        addProfiles(profiles, row);
    }

private:
    struct ProfileData {
        ProfileRow profile;
        CleanableDataMap data;
    };

    std::vector<ProfileData> profileData(const BrowserCleaner& cleaner) const {
        std::vector<ProfileData> all;
        for (const auto& profile : selectedProfiles(options_, cleaner)) {
            all.push_back({rowOf(*profile), profile->cleanableData()});
        }
        return all;
    }

    /** A browser's only profile has the browser's sizes, so that nothing is measured twice. */
    void addProfiles(const std::vector<ProfileData>& profiles, BrowserSizes& row) const {
        for (const auto& each : profiles) {
            row.profiles.push_back(
                {each.profile, profiles.size() == 1 ? row.categories : sizesOf(each.data)});
        }
    }

    std::vector<CategorySize> sizesOf(const CleanableDataMap& data) const {
        std::vector<CategorySize> parts;
        for (const auto& [category, list] : data.lists()) {
            if (options_.selection.includes(category)) {
                parts.push_back(sizeOf(category, list));
            }
        }
        return parts;
    }

    CategorySize sizeOf(CleanableDataCategory category, const CleanableDataList& list) const {
        CategorySize part{};
        part.category = category;
        part.requiresClosedBrowserToClean = list.requiresClosedBrowserToClean();
        part.error = attempt(observer_, [&] { part.size = measured(list, measure_, options_); });
        return part;
    }

    void add(CleanableDataCategory category, const CleanableDataList& list,
             BrowserSizes& row) const {
        observer_.begin(category);
        auto part = sizeOf(category, list);
        tellOfDatabases(category, list, row.browser);
        row.size = *row.size + part.size.value_or(CleanableDataSize::zero);
        row.requiresClosedBrowserToClean |= part.requiresClosedBrowserToClean;
        row.categories.push_back(std::move(part));
    }

    /** Says where a browser's hold on a database makes the figures less than they seem. */
    void tellOfDatabases(CleanableDataCategory category, const CleanableDataList& list,
                         Browser browser) const {
        for (const auto& remark :
             remarksOnDatabases(list, options_.filters, measure_ == Measure::removed)) {
            observer_.note(std::string(displayName(browser)) + ", " +
                           std::string(displayName(category)) + ": " + remark);
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
            break;  // it gathers no data
    }
    throw std::logic_error("a command that gathers nothing");
}

}  // namespace browsersweep::cli
