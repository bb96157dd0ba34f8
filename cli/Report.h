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
#include "browsersweep/cleanable/CleanableDataFilter.h"
#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/cleanable/FilterSight.h"
#include "browsersweep/hosting/ItemEntries.h"
#include "browsersweep/hosting/ItemVerdict.h"
#include "browsersweep/profiles/Bookmark.h"
#include "browsersweep/profiles/BrowserProfile.h"

#include "cli/KeepFile.h"
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

/** What the filters cannot see of an item. */
struct UnseenRow {
    FilterSight blindTo;                    ///< the parts of the filters that it does not hear
    std::vector<std::string> tables;        ///< of a database
    std::optional<CleanableDataSize> size;  ///< absent where it could not be measured
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
    std::optional<UnseenRow> unseen{};
    std::optional<std::vector<ItemEntry>> entries{};  ///< only where they are asked for
    bool isNameShared = false;                        ///< as in the row of its profile
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
/** What the filters of a command cannot see of all its data. */
struct UnseenSum {
    bool isTaken = true;  ///< otherwise it is left out
    CleanableDataSize size;
};
struct SizesReport {
    Measure measure = Measure::present;
    CleanableDataSize total;
    std::vector<BrowserSizes> browsers;
    std::int64_t freedBytes = 0;
    std::vector<CleanableDataFilter> filters{};
    std::optional<UnseenSum> unseen{};  ///< absent where there are no filters
    std::optional<KeepRules> keep{};    ///< the lasting keep list; absent where there is none
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
