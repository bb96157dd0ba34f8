#include "browsersweep/profiles/chromium/ChromiumBasedProfile.h"

#include <array>
#include <string_view>
#include <utility>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/notifications/ChromeSubscription.h"
#include "browsersweep/profiles/chromium/ChromiumBookmarks.h"
#include "browsersweep/profiles/chromium/ChromiumPreferences.h"
#include "browsersweep/profiles/chromium/internal/ChromiumTime.h"
#include "browsersweep/profiles/internal/AppendingPath.h"
#include "browsersweep/profiles/internal/RecordedFolder.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"

namespace browsersweep {
namespace {

using Category = CleanableDataCategory;
using Columns = SQLiteStatementComponents::ColumnsForFiltering;

/** One table of a profile's databases. Without a pattern column, filters do nothing to it. */
struct TableRow {
    std::string_view file;
    std::string_view table;
    std::string_view patternColumn;
    std::string_view dateColumn;
};

// clang-format off
constexpr std::array<TableRow, 15> tableRows{{
    // file                       table                        pattern     date
    {"Favicons",                 "favicons",                   "url",      ""},
    {"Favicons",                 "icon_mapping",               "page_url", ""},
    {"History",                  "urls",                       "url",      "last_visit_time"},
    {"History",                  "segments",                   "name",     ""},
    {"History",                  "downloads",                  "",         ""},
    {"Network Action Predictor", "network_action_predictor",   "url",      ""},
    {"Top Sites",                "top_sites",                  "url",      ""},
    {"Cookies",                  "cookies",                    "host_key", ""},
    {"Web Data",                 "autofill",                   "",         ""},
    {"Web Data",                 "autofill_profile_addresses", "",         ""},
    {"Web Data",                 "autofill_profile_emails",    "",         ""},
    {"Web Data",                 "autofill_profile_names",     "",         ""},
    {"Web Data",                 "autofill_profile_phones",    "",         ""},
    {"Web Data",                 "autofill_profiles",          "",         ""},
    {"Web Data",                 "autofill_profiles_trash",    "",         ""},
}};

/** A database of the profile folder. */
struct DatabaseRow {
    Category category;
    std::string_view file;
};

constexpr std::array<DatabaseRow, 6> databaseRows{{
    {Category::history,     "Favicons"},
    {Category::history,     "History"},
    {Category::history,     "Network Action Predictor"},
    {Category::history,     "Top Sites"},
    {Category::httpCookies, "Cookies"},
    {Category::formData,    "Web Data"},
}};
// clang-format on

std::optional<Columns> columnsForFiltering(const TableRow& row) {
    if (row.patternColumn.empty()) {
        return std::nullopt;
    }
    Columns columns{std::string(row.patternColumn), std::nullopt};
    if (!row.dateColumn.empty()) {
        columns.byDate = {std::string(row.dateColumn),
                          [](const Date& date) { return chromiumTimeText(date); }};
    }
    return columns;
}

std::vector<SQLiteStatementComponents> tablesOf(std::string_view file) {
    std::vector<SQLiteStatementComponents> tables;
    for (const TableRow& row : tableRows) {
        if (row.file == file) {
            tables.emplace_back(std::string(row.table), columnsForFiltering(row),
                                std::vector<std::string>{});
        }
    }
    return tables;
}

CleanableDataFilter sessionFilesOfTabs() {
    return {CleanableDataFilter::Rule::include, {"Tabs"}};
}

}  // namespace

ChromiumBasedProfile::ChromiumBasedProfile(std::optional<std::string> name, Browser browser,
                                           bool isPrimary, std::filesystem::path relativePath,
                                           const Home& home,
                                           std::optional<std::string> recordedFolder)
    : name_(std::move(name)),
      browser_(browser),
      isPrimary_(isPrimary),
      relativePath_(std::move(relativePath)),
      fileManager_(home.fileManager()),
      directoryProvider_(home.directoryProvider()),
      recordedFolder_(std::move(recordedFolder)) {}

std::optional<std::string> ChromiumBasedProfile::folder() const {
    return recordedFolder_ ? recordedFolder_ : relativePath_.filename().string();
}

std::optional<std::string> ChromiumBasedProfile::leftOutReason() const {
    auto reason = recordedFolder_ ? reasonAgainstName(*recordedFolder_) : std::nullopt;
    return reason ? reason : reasonAgainstRelativePath(relativePath_.native());
}

std::optional<ProfileFolders> ChromiumBasedProfile::folders() const {
    return leftOutReason() ? std::nullopt
                           : std::optional(ProfileFolders{profileFolder(), cacheFolder()});
}

std::filesystem::path ChromiumBasedProfile::profileFolder() const {
    return appendingPath(directoryProvider_->applicationSupportDirectory(), relativePath_);
}

std::filesystem::path ChromiumBasedProfile::cacheFolder() const {
    return appendingPath(directoryProvider_->cachesDirectory(), relativePath_);
}

CleanableDataMap ChromiumBasedProfile::cleanableData() const {
    if (leftOutReason()) {
        return {};
    }
    const std::filesystem::path folder = profileFolder();
    std::map<Category, std::vector<CleanableDataList::Item>> items;
    const auto addDirectory = [&](Category category, std::filesystem::path path,
                                  bool requiresClosed, std::vector<CleanableDataFilter> filters) {
        items[category].push_back(std::make_shared<CleanableDirectory>(
            std::move(path), requiresClosed, std::move(filters), fileManager_));
    };
    for (const DatabaseRow& row : databaseRows) {
        items[row.category].push_back(std::make_shared<CleanableSQLiteDatabase>(
            folder / row.file, tablesOf(row.file), fileManager_));
    }
    addDirectory(Category::cache, cacheFolder(), true, {});
    addDirectory(Category::history, folder / "Sessions", true, {sessionFilesOfTabs()});
    addDirectory(Category::flashCookies, folder / "Pepper Data/", false, {});
    addDirectory(Category::localStorage, folder / "Local Storage/", true, {});

    CleanableDataMap::Lists lists;
    for (auto& [category, list] : items) {
        lists.emplace(category, CleanableDataList(std::move(list)));
    }
    return CleanableDataMap(std::move(lists));
}

std::vector<Bookmark> ChromiumBasedProfile::bookmarks() const {
    const std::filesystem::path file = profileFolder() / "Bookmarks";
    if (leftOutReason() || !fileManager_->fileExists(file).isFile()) {
        return {};
    }
    std::vector<Bookmark> bookmarks;
    for (auto& [title, url] : ChromiumBookmarks::decode(fileManager_->contents(file)).bookmarks()) {
        bookmarks.push_back({std::move(title), std::move(url)});
    }
    return bookmarks;
}

std::vector<std::shared_ptr<const NotificationSubscription>>
ChromiumBasedProfile::notificationSubscriptions() const {
    const std::filesystem::path file = profileFolder() / "Preferences";
    if (leftOutReason() || !fileManager_->fileExists(file).isFile()) {
        return {};
    }
    std::vector<std::shared_ptr<const NotificationSubscription>> subscriptions;
    for (URL& site : ChromiumPreferences::decode(fileManager_->contents(file)).allowedSites()) {
        subscriptions.push_back(
            std::make_shared<ChromeSubscription>(std::move(site), browser_, file));
    }
    return subscriptions;
}

}  // namespace browsersweep
