#include "browsersweep/profiles/firefox/FirefoxProfile.h"

#include <array>
#include <string_view>
#include <utility>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/notifications/FirefoxSubscription.h"
#include "browsersweep/profiles/firefox/FirefoxCleanableLocalStorage.h"
#include "browsersweep/profiles/firefox/internal/FirefoxTime.h"
#include "browsersweep/profiles/internal/AppendingPath.h"
#include "browsersweep/profiles/internal/RecordedFolder.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/SQLiteConnection.h"
#include "browsersweep/sqlite/internal/TemporaryDatabaseCopy.h"

namespace browsersweep {
namespace {

using Category = CleanableDataCategory;
using Columns = SQLiteStatementComponents::ColumnsForFiltering;
using Item = CleanableDataList::Item;

/** One table of a profile's databases. One with neither column is not narrowed by filters. */
struct TableRow {
    std::string_view file;
    std::string_view table;
    std::string_view patternColumn;
    std::string_view dateColumn;
    std::string_view whereClause;
};

// clang-format off
constexpr std::array<TableRow, 7> tableRows{{
    // file                 table                pattern      date               condition
    {"places.sqlite",       "moz_historyvisits", "",          "visit_date",      ""},
    {"places.sqlite",       "moz_inputhistory",  "",          "",                ""},
    {"places.sqlite",       "moz_keywords",      "",          "",                ""},
    // places that bookmarks refer to stay
    {"places.sqlite",       "moz_places",        "url",       "last_visit_date", "moz_places.foreign_count=0"},
    {"cookies.sqlite",      "moz_cookies",       "host",      "",                ""},
    {"formhistory.sqlite",  "moz_formhistory",   "",          "",                ""},
    {"webappsstore.sqlite", "webappsstore2",     "originKey", "",                ""},
}};
// clang-format on

constexpr const char* bookmarksSQL =
    "SELECT moz_bookmarks.title, moz_places.url\n"
    "FROM moz_bookmarks JOIN moz_places ON moz_bookmarks.fk == moz_places.id\n"
    "WHERE moz_bookmarks.fk NOT NULL;";

constexpr const char* allowedSitesSQL =
    "SELECT id, origin\n"
    "FROM moz_perms\n"
    "WHERE type == 'desktop-notification' AND permission == 1;";

std::optional<Columns> columnsForFiltering(const TableRow& row) {
    if (row.patternColumn.empty() && row.dateColumn.empty()) {
        return std::nullopt;
    }
    Columns columns;
    if (!row.patternColumn.empty()) {
        columns.byPattern = std::string(row.patternColumn);
    }
    if (!row.dateColumn.empty()) {
        columns.byDate = {std::string(row.dateColumn),
                          [](const Date& date) { return firefoxTimeText(date); }};
    }
    return columns;
}

std::vector<SQLiteStatementComponents> tablesOf(const std::filesystem::path& fileName) {
    std::vector<SQLiteStatementComponents> tables;
    for (const TableRow& row : tableRows) {
        if (fileName == row.file) {
            std::vector<std::string> clauses;
            if (!row.whereClause.empty()) {
                clauses.emplace_back(row.whereClause);
            }
            tables.emplace_back(std::string(row.table), columnsForFiltering(row),
                                std::move(clauses));
        }
    }
    return tables;
}

std::optional<URL> urlInColumn(const SQLiteStatement& row, int column) {
    const std::optional<std::string> text = row.text(column);
    return text ? URL::parse(*text) : std::nullopt;
}

std::optional<Bookmark> bookmarkInRow(const SQLiteStatement& row) {
    std::optional<URL> url = urlInColumn(row, 1);
    if (!url) {
        return std::nullopt;
    }
    return Bookmark{row.text(0), *std::move(url)};
}

template <typename Row>
std::vector<Row> rowsOfCopy(const std::filesystem::path& database, const std::string& sql,
                            typename TextRowsEvaluator<Row>::Conversion convert,
                            const std::shared_ptr<const FileManager>& fileManager) {
    const TemporaryDatabaseCopy copy(database, fileManager);
    return SQLiteConnection(copy.path(), fileManager->control())
        .evaluate(sql, TextRowsEvaluator<Row>(std::move(convert)));
}

}  // namespace

FirefoxProfile::FirefoxProfile(std::optional<std::string> name, bool isPrimary, bool isRelative,
                               std::filesystem::path path, const Home& home,
                               std::optional<std::string> recordedPath)
    : name_(std::move(name)),
      isPrimary_(isPrimary),
      isRelative_(isRelative),
      path_(std::move(path)),
      fileManager_(home.fileManager()),
      directoryProvider_(home.directoryProvider()),
      recordedPath_(std::move(recordedPath)) {}

std::optional<std::string> FirefoxProfile::folder() const {
    return recordedPath_ ? recordedPath_ : path_.string();
}

std::optional<std::string> FirefoxProfile::leftOutReason() const {
    return isRelative_ ? reasonAgainstRelativePath(path_.native())
                       : reasonAgainstAbsolutePath(path_.native());
}

std::optional<ProfileFolders> FirefoxProfile::folders() const {
    return leftOutReason() ? std::nullopt
                           : std::optional(ProfileFolders{profileDirectory(), cacheDirectory()});
}

std::filesystem::path FirefoxProfile::directoryBelowApplicationSupport() const {
    return appendingPath(directoryProvider_->applicationSupportDirectory(), path_);
}

std::filesystem::path FirefoxProfile::profileDirectory() const {
    return isRelative_ ? directoryBelowApplicationSupport() : path_;
}

std::filesystem::path FirefoxProfile::cacheDirectory() const {
    return isRelative_ ? appendingPath(directoryProvider_->cachesDirectory(), path_) : path_;
}

Item FirefoxProfile::databaseItem(const std::filesystem::path& fileName) const {
    return std::make_shared<CleanableSQLiteDatabase>(profileDirectory() / fileName,
                                                     tablesOf(fileName), fileManager_);
}

CleanableDataMap FirefoxProfile::cleanableData() const {
    if (leftOutReason()) {
        return {};
    }
    const auto directoryItem = [this](const std::filesystem::path& directory, bool closed) -> Item {
        return std::make_shared<CleanableDirectory>(
            directory, closed, std::vector<CleanableDataFilter>{}, fileManager_);
    };
    const auto list = [](Item item) { return CleanableDataList({std::move(item)}); };
    const std::filesystem::path library = directoryProvider_->libraryDirectory();
    return CleanableDataMap({
        {Category::cache, list(directoryItem(cacheDirectory() / "cache2", true))},
        {Category::history, list(databaseItem("places.sqlite"))},
        {Category::httpCookies, list(databaseItem("cookies.sqlite"))},
        {Category::flashCookies, list(directoryItem(library / "Preferences/Macromedia/", false))},
        {Category::formData, list(databaseItem("formhistory.sqlite"))},
        {Category::localStorage,
         list(std::make_shared<FirefoxCleanableLocalStorage>(databaseItem("webappsstore.sqlite")))},
    });
}

std::vector<Bookmark> FirefoxProfile::bookmarks() const {
    if (leftOutReason()) {
        return {};
    }
    return rowsOfCopy<Bookmark>(directoryBelowApplicationSupport() / "places.sqlite", bookmarksSQL,
                                bookmarkInRow, fileManager_);
}

std::vector<std::shared_ptr<const NotificationSubscription>>
FirefoxProfile::notificationSubscriptions() const {
    const std::filesystem::path file = directoryBelowApplicationSupport() / "permissions.sqlite";
    if (leftOutReason() || !fileManager_->fileExists(file).isFile()) {
        return {};
    }
    const auto originInRow = [](const SQLiteStatement& row) { return urlInColumn(row, 1); };
    std::vector<std::shared_ptr<const NotificationSubscription>> subscriptions;
    for (URL& origin : rowsOfCopy<URL>(file, allowedSitesSQL, originInRow, fileManager_)) {
        subscriptions.push_back(
            std::make_shared<FirefoxSubscription>(std::move(origin), Browser::firefox, file));
    }
    return subscriptions;
}

}  // namespace browsersweep
