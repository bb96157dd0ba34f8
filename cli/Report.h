#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "browsersweep/base/Browser.h"
#include "browsersweep/cleanable/CleanableDataCategory.h"
#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/hosting/ItemVerdict.h"
#include "browsersweep/profiles/Bookmark.h"
#include "browsersweep/profiles/BrowserProfile.h"

#include "cli/SiteReport.h"

namespace browsersweep::cli {

// What the commands found, before anything is written for people or machines. Every browser, every
// category and every profile that can fail carries its own error text.

struct BrowserRow {
    Browser browser = allBrowsers.front();
    std::string displayName;
    std::string bundleIdentifier;
};
struct BrowsersReport {
    std::vector<BrowserRow> browsers;
};

struct ProfileRow {
    std::optional<std::string> name;
    bool isPrimary = false;
    std::optional<std::string> folder{};
    bool isNameShared = false;  ///< another profile of the browser goes by the same name
};
/** A profile whose folder is not its own to name: nothing of it is looked at. */
struct LeftOutProfile {
    ProfileRow profile;
    std::string why;
};
struct BrowserProfiles {
    Browser browser = allBrowsers.front();
    std::optional<std::string> error;
    std::vector<ProfileRow> profiles;
    std::vector<LeftOutProfile> leftOut{};
};
struct ProfilesReport {
    std::vector<BrowserProfiles> browsers;
};

/** One item of a category: a folder, a database or a file of a profile. */
struct ItemRow {
    std::optional<std::string> profile;
    std::optional<std::string> folder;
    std::string what;
    ItemVerdict verdict = ItemVerdict::leftOut;
    std::optional<std::string> detail;
    std::optional<CleanableDataSize> size;
    std::int64_t freedBytes = 0;
    bool wasBegun = false;
    bool isNameShared = false;  ///< as in the row of its profile
};
struct CategorySize {
    CleanableDataCategory category = CleanableDataCategory::cache;
    std::optional<std::string> error;
    std::optional<CleanableDataSize> size;  ///< absent where the category failed
    bool requiresClosedBrowserToClean = false;
    std::vector<ItemRow> items{};
    std::int64_t freedBytes = 0;
};
struct ProfileSizes {
    ProfileRow profile;
    std::vector<CategorySize> categories;
    const BrowserProfile* source = nullptr;  ///< tells profiles of one name apart
    std::int64_t freedBytes = 0;
};
struct BrowserSizes {
    Browser browser = allBrowsers.front();
    std::optional<std::string> error;
    std::optional<CleanableDataSize> size;  ///< absent where the profiles cannot be read
    bool requiresClosedBrowserToClean = false;
    std::vector<CategorySize> categories;
    std::vector<ProfileSizes> profiles;
    std::vector<LeftOutProfile> leftOut{};
    std::int64_t freedBytes = 0;
};
enum class Measure { present, removed, wouldBeRemoved };
struct SizesReport {
    Measure measure = Measure::present;
    CleanableDataSize total;
    std::vector<BrowserSizes> browsers;
    std::int64_t freedBytes = 0;
};

struct BrowserBookmarks {
    Browser browser = allBrowsers.front();
    std::optional<std::string> error;
    std::vector<Bookmark> bookmarks;
    std::vector<LeftOutProfile> leftOut{};
};
struct BookmarksReport {
    std::vector<BrowserBookmarks> browsers;
};

struct SubscriptionRow {
    std::string sourceURL;
    std::filesystem::path store;
};
struct ProfileSubscriptions {
    ProfileRow profile;
    std::optional<std::string> error;
    std::vector<SubscriptionRow> subscriptions;
};
struct BrowserNotifications {
    Browser browser = allBrowsers.front();
    std::optional<std::string> error;
    std::vector<ProfileSubscriptions> profiles;
    std::vector<LeftOutProfile> leftOut{};
};
struct NotificationsReport {
    std::vector<BrowserNotifications> browsers;
};

using Report = std::variant<BrowsersReport, ProfilesReport, SizesReport, BookmarksReport,
                            NotificationsReport, SiteListReport, ForgetReport>;

/** One thing that failed: of which browser, where, for people, and the text of its error. */
struct Failure {
    Browser browser = allBrowsers.front();
    std::string where;
    std::string error;
};

/** Everything in a report that failed, in the report's order. */
std::vector<Failure> failures(const Report& report);

/** The browsers that were measured without an error and keep nothing, by name. */
std::vector<std::string_view> namesOfEmptyBrowsers(const SizesReport& report);

/** The name of a profile for people, with its folder where another has the same name. */
std::string displayName(const ProfileRow& profile);

/** The sum of these categories; absent where all of them failed. */
std::optional<CleanableDataSize> sumOf(const std::vector<CategorySize>& parts);

}  // namespace browsersweep::cli
