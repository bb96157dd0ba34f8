#pragma once

#include "cli/Gather.h"

// The commands that list what browsers hold, and measure nothing.

namespace browsersweep::cli {

/** The selected browsers. */
BrowsersReport gatherBrowsers(const Options& options, const CleanerFactory& cleanerOf,
                              Observer& observer);

/** Their selected profiles. */
ProfilesReport gatherProfiles(const Options& options, const CleanerFactory& cleanerOf,
                              Observer& observer);

/** The bookmarks of these; none of Safari in a home where it was never used. */
BookmarksReport gatherBookmarks(const Options& options, const CleanerFactory& cleanerOf,
                                Observer& observer);

/** The sites that may send notifications, profile by profile. */
NotificationsReport gatherNotifications(const Options& options, const CleanerFactory& cleanerOf,
                                        Observer& observer);

}  // namespace browsersweep::cli
