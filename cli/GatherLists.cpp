#include "cli/GatherLists.h"

#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "browsersweep/platform/Accessibility.h"

#include "cli/GatherPieces.h"
#include "cli/ProfileLabels.h"

namespace browsersweep::cli {
namespace {

/** Some profiles of a browser, in the reader's order, and what all its profiles are called. */
struct SelectedProfiles {
    std::vector<std::shared_ptr<const BrowserProfile>> profiles;
    ProfileLabels labels;
};

SelectedProfiles selectedProfiles(const Options& options, const BrowserCleaner& cleaner,
                                  std::vector<LeftOutProfile>& leftOut) {
    SelectedProfiles selected;
    for (auto& profile : cleaner.profileReader().profiles()) {
        selected.labels.add(*profile);
        if (selects(options, *profile, leftOut)) {
            selected.profiles.push_back(std::move(profile));
        }
    }
    return selected;
}

ProfilePredicate predicateOf(const Options& options, std::vector<LeftOutProfile>& leftOut) {
    return [&options, &leftOut](const BrowserProfile& profile) {
        return selects(options, profile, leftOut);
    };
}

/** Whether an error is that Safari, whose profile is always listed, was never used in a home. */
bool saysSafariIsMissing(Browser browser, const std::filesystem::filesystem_error& error) {
    return browser == Browser::safari && error.code() == std::errc::no_such_file_or_directory &&
           accessibility(error.path1().parent_path()) == Accessibility::missing;
}

std::vector<Bookmark> bookmarksOf(Browser browser, const BrowserCleaner& cleaner,
                                  const ProfilePredicate& isSelected) {
    try {
        return cleaner.bookmarks(isSelected);
    } catch (const std::filesystem::filesystem_error& error) {
        if (saysSafariIsMissing(browser, error)) {
            return {};
        }
        throw;
    }
}

ProfileSubscriptions subscriptionsOf(const BrowserProfile& profile, const ProfileLabels& labels,
                                     const Observer& observer) {
    ProfileSubscriptions part;
    part.profile = rowOf(profile, labels);
    part.error = attempt(observer, [&] {
        std::vector<SubscriptionRow> rows;
        for (const auto& subscription : profile.notificationSubscriptions()) {
            rows.push_back({subscription->sourceURL().absoluteString(), subscription->store()});
        }
        part.subscriptions = std::move(rows);
    });
    return part;
}

}  // namespace

BrowsersReport gatherBrowsers(const Options& options, const CleanerFactory& cleanerOf,
                              Observer& observer) {
    return {forEachBrowser<BrowserRow>(options, cleanerOf, observer,
                                       [](BrowserRow& row, const BrowserCleaner& cleaner) {
                                           row.displayName = cleaner.name();
                                           row.bundleIdentifier = cleaner.bundleIdentifier();
                                       })};
}

ProfilesReport gatherProfiles(const Options& options, const CleanerFactory& cleanerOf,
                              Observer& observer) {
    return {forEachBrowser<BrowserProfiles>(
        options, cleanerOf, observer, [&](BrowserProfiles& row, const BrowserCleaner& cleaner) {
            row.error = attempt(observer, [&] {
                const auto selected = selectedProfiles(options, cleaner, row.leftOut);
                for (const auto& profile : selected.profiles) {
                    row.profiles.push_back(rowOf(*profile, selected.labels));
                }
            });
        })};
}

BookmarksReport gatherBookmarks(const Options& options, const CleanerFactory& cleanerOf,
                                Observer& observer) {
    return {forEachBrowser<BrowserBookmarks>(
        options, cleanerOf, observer, [&](BrowserBookmarks& row, const BrowserCleaner& cleaner) {
            row.error = attempt(observer, [&] {
                row.bookmarks =
                    bookmarksOf(row.browser, cleaner, predicateOf(options, row.leftOut));
            });
        })};
}

NotificationsReport gatherNotifications(const Options& options, const CleanerFactory& cleanerOf,
                                        Observer& observer) {
    return {forEachBrowser<BrowserNotifications>(
        options, cleanerOf, observer,
        [&](BrowserNotifications& row, const BrowserCleaner& cleaner) {
            row.error = attempt(observer, [&] {
                const auto selected = selectedProfiles(options, cleaner, row.leftOut);
                for (const auto& profile : selected.profiles) {
                    row.profiles.push_back(subscriptionsOf(*profile, selected.labels, observer));
                }
            });
        })};
}

}  // namespace browsersweep::cli
