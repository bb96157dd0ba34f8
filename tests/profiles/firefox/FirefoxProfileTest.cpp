#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/notifications/FirefoxSubscription.h"
#include "browsersweep/profiles/firefox/FirefoxCleanableLocalStorage.h"
#include "browsersweep/profiles/firefox/FirefoxProfile.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/SQLiteError.h"

#include "tests/support/FirefoxDatabases.h"
#include "tests/support/GuardedFileManager.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using Category = CleanableDataCategory;
using Rule = CleanableDataFilter::Rule;
using DatesRule = CleanableDataFilter::Dates::Rule;
using Filters = std::vector<CleanableDataFilter>;

/** A home folder with one profile, relative or absolute. */
class FirefoxProfileTest : public testing::Test {
protected:
    fs::path support(const fs::path& below) const {
        return home_ / "Library/Application Support" / below;
    }
    fs::path databaseFile(const char* name) const {
        return support("Firefox/Profiles/x.default") / name;
    }

    std::shared_ptr<const FileManager> fileManager() const {
        return tests::GuardedFileManager::forFixture(home_);
    }
    FirefoxProfile relative() const {
        return {"default", true, true, "Firefox/Profiles/x.default", fileManager()};
    }
    FirefoxProfile absolute() const {
        return {std::nullopt, false, false, home_ / "elsewhere/x", fileManager()};
    }

    /** Nothing that was copied to be read is left. */
    void expectNoCopies() const { EXPECT_TRUE(fs::is_empty(fileManager()->temporaryDirectory())); }

    tests::TemporaryFolder home_;
};

const CleanableData& onlyItem(const CleanableDataMap& data, Category category) {
    const CleanableDataList* list = data.find(category);
    if (list == nullptr || list->items().size() != 1) {
        throw std::logic_error("not exactly one item");
    }
    return *list->items()[0];
}

template <typename Item>
const Item& itemAs(const CleanableDataMap& data, Category category) {
    return dynamic_cast<const Item&>(onlyItem(data, category));
}

const CleanableSQLiteDatabase& localStorageDatabase(const CleanableDataMap& data) {
    return dynamic_cast<const CleanableSQLiteDatabase&>(
        *itemAs<FirefoxCleanableLocalStorage>(data, Category::localStorage)
             .cleanableSQLiteDatabase());
}

TEST_F(FirefoxProfileTest, tellsWhatItWasMadeOf) {
    const FirefoxProfile profile = relative();
    EXPECT_EQ(profile.name(), "default");
    EXPECT_EQ(profile.sourceBrowser(), Browser::firefox);
    EXPECT_TRUE(profile.isPrimary());
    EXPECT_TRUE(profile.isRelative());
    EXPECT_EQ(profile.path(), "Firefox/Profiles/x.default");
    EXPECT_EQ(absolute().name(), std::nullopt);
    EXPECT_FALSE(absolute().isPrimary());
}

TEST_F(FirefoxProfileTest, relativeProfileHasItsCacheBelowCachesAndTheRestBelowApplicationSupport) {
    const CleanableDataMap data = relative().cleanableData();
    EXPECT_EQ(itemAs<CleanableDirectory>(data, Category::cache).directory(),
              home_ / "Library/Caches/Firefox/Profiles/x.default/cache2");
    EXPECT_EQ(itemAs<CleanableSQLiteDatabase>(data, Category::history).file(),
              databaseFile("places.sqlite"));
    EXPECT_EQ(itemAs<CleanableSQLiteDatabase>(data, Category::httpCookies).file(),
              databaseFile("cookies.sqlite"));
    EXPECT_EQ(itemAs<CleanableSQLiteDatabase>(data, Category::formData).file(),
              databaseFile("formhistory.sqlite"));
    EXPECT_EQ(localStorageDatabase(data).file(), databaseFile("webappsstore.sqlite"));
    EXPECT_EQ(itemAs<CleanableDirectory>(data, Category::flashCookies).directory(),
              home_ / "Library/Preferences/Macromedia/");
}

TEST_F(FirefoxProfileTest, absoluteProfileHasItsCacheAndDatabasesInOneFolder) {
    const CleanableDataMap data = absolute().cleanableData();
    const fs::path folder = home_ / "elsewhere/x";
    EXPECT_EQ(itemAs<CleanableDirectory>(data, Category::cache).directory(), folder / "cache2");
    EXPECT_EQ(itemAs<CleanableSQLiteDatabase>(data, Category::history).file(),
              folder / "places.sqlite");
    EXPECT_EQ(itemAs<CleanableSQLiteDatabase>(data, Category::httpCookies).file(),
              folder / "cookies.sqlite");
    EXPECT_EQ(itemAs<CleanableSQLiteDatabase>(data, Category::formData).file(),
              folder / "formhistory.sqlite");
    EXPECT_EQ(localStorageDatabase(data).file(), folder / "webappsstore.sqlite");
    EXPECT_EQ(itemAs<CleanableDirectory>(data, Category::flashCookies).directory(),
              home_ / "Library/Preferences/Macromedia/");
}

TEST_F(FirefoxProfileTest, itsFoldersAreOneOrTwo) {
    EXPECT_EQ(relative().folders(),
              (ProfileFolders{home_ / "Library/Application Support/Firefox/Profiles/x.default",
                              home_ / "Library/Caches/Firefox/Profiles/x.default"}));
    EXPECT_EQ(absolute().folders(), (ProfileFolders{home_ / "elsewhere/x", home_ / "elsewhere/x"}));
}

TEST_F(FirefoxProfileTest, everyItemButFlashCookiesRequiresAClosedBrowserAndHasNoFiltersOfItsOwn) {
    const CleanableDataMap data = relative().cleanableData();
    EXPECT_EQ(data.lists().size(), allCleanableDataCategories.size());
    for (const Category category : allCleanableDataCategories) {
        SCOPED_TRACE(rawValue(category));
        const CleanableData& item = onlyItem(data, category);
        EXPECT_EQ(item.requiresClosedBrowserToClean(), category != Category::flashCookies);
        if (const auto* directory = dynamic_cast<const CleanableDirectory*>(&item)) {
            EXPECT_TRUE(directory->filters().empty());
        }
    }
}

TEST_F(FirefoxProfileTest, tablesAreNarrowedAsEachOneAllows) {
    const Filters none;
    const Filters both{{CleanableDataFilter::Patterns{CleanableDataFilter::Patterns::Rule::include,
                                                      {"example.com"}},
                        CleanableDataFilter::Dates{DatesRule::insideRange,
                                                   dateFromReferenceSeconds(0.0), std::nullopt}}};
    struct Row {
        std::string all;
        std::string filtered;
    };
    const auto expectTables = [&](const CleanableSQLiteDatabase& item,
                                  const std::vector<Row>& rows) {
        SCOPED_TRACE(item.file());
        ASSERT_EQ(item.components().size(), rows.size());
        for (std::size_t index = 0; index < rows.size(); ++index) {
            EXPECT_EQ(item.components()[index].sql("DELETE", none), rows[index].all);
            EXPECT_EQ(item.components()[index].sql("DELETE", both), rows[index].filtered);
        }
    };
    const CleanableDataMap data = relative().cleanableData();
    expectTables(itemAs<CleanableSQLiteDatabase>(data, Category::history),
                 {{"DELETE FROM moz_historyvisits;",
                   "DELETE FROM moz_historyvisits WHERE ((visit_date >= 978307200000000));"},
                  {"DELETE FROM moz_inputhistory;", "DELETE FROM moz_inputhistory;"},
                  {"DELETE FROM moz_keywords;", "DELETE FROM moz_keywords;"},
                  {"DELETE FROM moz_places WHERE (moz_places.foreign_count=0);",
                   "DELETE FROM moz_places WHERE (moz_places.foreign_count=0) AND "
                   "((url LIKE '%example.com%') AND (last_visit_date >= 978307200000000));"}});
    expectTables(itemAs<CleanableSQLiteDatabase>(data, Category::httpCookies),
                 {{"DELETE FROM moz_cookies;",
                   "DELETE FROM moz_cookies WHERE ((host LIKE '%example.com%'));"}});
    expectTables(itemAs<CleanableSQLiteDatabase>(data, Category::formData),
                 {{"DELETE FROM moz_formhistory;", "DELETE FROM moz_formhistory;"}});
    expectTables(localStorageDatabase(data),
                 {{"DELETE FROM webappsstore2;",
                   "DELETE FROM webappsstore2 WHERE ((originKey LIKE '%example.com%'));"}});
}

/** The profile's places: three visited ones, of which a bookmark refers to the second. */
class FirefoxPlacesTest : public FirefoxProfileTest {
protected:
    FirefoxPlacesTest() : places_(tests::makePlacesDatabase(databaseFile("places.sqlite"))) {
        places_.execute(R"(
            INSERT INTO moz_places(id, url, guid, last_visit_date, foreign_count) VALUES
                (1, 'https://example.com/one', 'a', 1000000, 0),
                (2, 'https://example.com/two', 'b', 2000000, 1),
                (3, 'https://example.org/three', 'c', 3000000, 0);
            INSERT INTO moz_historyvisits(id, place_id, visit_date) VALUES
                (10, 1, 1000000), (20, 2, 2000000), (30, 3, 3000000);
            INSERT INTO moz_inputhistory VALUES (1, 'on', 1), (3, 'th', 1);
            INSERT INTO moz_keywords(keyword, place_id) VALUES ('two', 2);
            INSERT INTO moz_bookmarks(id, type, fk, title) VALUES
                (1, 2, NULL, 'menu'), (2, 1, 2, 'Two');)");
    }

    std::string left(const std::string& table) const {
        return places_.text("SELECT group_concat(rowid, ' ') FROM " + table + ";");
    }

    const CleanableDataMap& data() const { return data_; }
    CleanableDataSize size(const Filters& filters) const {
        return onlyItem(data_, Category::history).size(filters);
    }
    void clean(const Filters& filters) const { onlyItem(data_, Category::history).clean(filters); }

    CleanableDataMap data_ = relative().cleanableData();
    tests::Database places_;
};

CleanableDataFilter between(double first, double last) {
    return {std::nullopt,
            CleanableDataFilter::Dates{DatesRule::insideRange, dateFrom1970Seconds(first),
                                       dateFrom1970Seconds(last)}};
}

TEST_F(FirefoxPlacesTest, historyWithoutFiltersIsAllButTheBookmarkedPlaces) {
    EXPECT_EQ(size({}).itemCount, 3 + 2 + 1 + 2);
    clean({});
    EXPECT_EQ(left("moz_historyvisits"), "NULL");
    EXPECT_EQ(left("moz_inputhistory"), "NULL");
    EXPECT_EQ(left("moz_keywords"), "NULL");
    EXPECT_EQ(left("moz_places"), "2");
    EXPECT_EQ(left("moz_bookmarks"), "1 2");
    EXPECT_EQ(size({}), CleanableDataSize::zero);
}

TEST_F(FirefoxPlacesTest, dateRangeNarrowsVisitsAndPlacesAloneAndKeepsBookmarkedPlaces) {
    const Filters filters{between(0.5, 2.0)};
    EXPECT_EQ(size(filters).itemCount, 2 + 2 + 1 + 1);
    clean(filters);
    EXPECT_EQ(left("moz_historyvisits"), "30");
    EXPECT_EQ(left("moz_places"), "2 3");
    EXPECT_EQ(left("moz_inputhistory"), "NULL");
    EXPECT_EQ(left("moz_keywords"), "NULL");
}

TEST_F(FirefoxPlacesTest, patternNarrowsPlacesAlone) {
    const Filters filters{{Rule::include, {"example.org"}}};
    EXPECT_EQ(size(filters).itemCount, 3 + 2 + 1 + 1);
    clean(filters);
    EXPECT_EQ(left("moz_historyvisits"), "NULL");
    EXPECT_EQ(left("moz_places"), "1 2");
    EXPECT_EQ(left("moz_inputhistory"), "NULL");
    EXPECT_EQ(left("moz_keywords"), "NULL");
}

TEST_F(FirefoxPlacesTest, bookmarksAreTheEntriesWithAPlaceWhoseAddressParses) {
    places_.execute(R"(
        INSERT INTO moz_places(id, url, guid) VALUES
            (4, NULL, 'd'), (5, 'http://not a url/', 'e'), (6, 'about:config', 'f'),
            (7, 'https://example.net/?q=%C3%A9', 'g');
        INSERT INTO moz_bookmarks(id, type, fk, title) VALUES
            (3, 1, 4, 'no address'), (4, 1, 5, 'bad address'), (5, 1, 6, NULL),
            (6, 1, 7, 'Caf' || char(233)), (7, 1, 99, 'no place'), (8, 3, NULL, NULL),
            (9, 1, 6, '');)");
    EXPECT_EQ(relative().bookmarks(),
              (std::vector<Bookmark>{{"Two", *URL::parse("https://example.com/two")},
                                     {std::nullopt, *URL::parse("about:config")},
                                     {"Caf\u00E9", *URL::parse("https://example.net/?q=%C3%A9")},
                                     {"", *URL::parse("about:config")}}));
    expectNoCopies();
}

TEST_F(FirefoxPlacesTest, bookmarksOfAnAbsoluteProfileAreLookedForBelowApplicationSupport) {
    const fs::path path = home_ / "elsewhere/x";
    fs::create_directories(support(path.relative_path()));
    fs::copy_file(databaseFile("places.sqlite"), support(path.relative_path()) / "places.sqlite");
    EXPECT_EQ(absolute().bookmarks(),
              (std::vector<Bookmark>{{"Two", *URL::parse("https://example.com/two")}}));
}

TEST_F(FirefoxProfileTest, bookmarksOfAFolderThatIsGoneAreAnError) {
    EXPECT_THROW(relative().bookmarks(), fs::filesystem_error);
    home_.write("elsewhere/x/places.sqlite", "in the profile's own folder");
    EXPECT_THROW(absolute().bookmarks(), fs::filesystem_error);
}

TEST_F(FirefoxProfileTest, bookmarksOfADatabaseWithoutTheirTablesAreAnError) {
    tests::Database(databaseFile("places.sqlite")).execute("CREATE TABLE other(id INTEGER);");
    EXPECT_THROW(relative().bookmarks(), SQLiteError);
    expectNoCopies();
}

TEST_F(FirefoxProfileTest, bookmarksOfAFileThatIsNoDatabaseAreAnError) {
    home_.write("Library/Application Support/Firefox/Profiles/x.default/places.sqlite",
                std::string(8192, 'x'));
    EXPECT_THROW(relative().bookmarks(), SQLiteError);
    expectNoCopies();
}

TEST_F(FirefoxProfileTest, folderThatIsGoneHoldsNothing) {
    const CleanableDataMap data = relative().cleanableData();
    EXPECT_EQ(data.size(), CleanableDataSize::zero);
    EXPECT_NO_THROW(data.clean());
    EXPECT_TRUE(relative().notificationSubscriptions().empty());
    EXPECT_FALSE(fs::exists(home_ / "Library"));
}

std::vector<std::string> sitesOf(const FirefoxProfile& profile) {
    std::vector<std::string> sites;
    for (const auto& subscription : profile.notificationSubscriptions()) {
        sites.push_back(subscription->sourceURL().absoluteString());
    }
    return sites;
}

constexpr const char* permissionRows = R"(
    INSERT INTO moz_perms(id, origin, type, permission) VALUES
        (1, 'https://allowed.example.com', 'desktop-notification', 1),
        (2, 'https://blocked.example.com', 'desktop-notification', 2),
        (3, 'https://camera.example.com', 'camera', 1),
        (4, NULL, 'desktop-notification', 1),
        (5, 'https://push.example.com^userContextId=2', 'desktop-notification', 1),
        (6, 'https://second.example.com:8443', 'desktop-notification', 1);)";

TEST_F(FirefoxProfileTest, notificationSubscriptionsAreTheAllowedSitesWhoseAddressParses) {
    const fs::path file = databaseFile("permissions.sqlite");
    tests::makePermissionsDatabase(file).execute(permissionRows);
    const auto subscriptions = relative().notificationSubscriptions();
    ASSERT_EQ(subscriptions.size(), 2U);
    const std::vector<FirefoxSubscription> expected{
        {*URL::parse("https://allowed.example.com"), Browser::firefox, file},
        {*URL::parse("https://second.example.com:8443"), Browser::firefox, file}};
    for (std::size_t index = 0; index < expected.size(); ++index) {
        EXPECT_EQ(dynamic_cast<const FirefoxSubscription&>(*subscriptions[index]), expected[index]);
    }
    expectNoCopies();
}

TEST_F(FirefoxProfileTest, blockingNotificationsChangesNoFile) {
    tests::makePermissionsDatabase(databaseFile("permissions.sqlite")).execute(permissionRows);
    const std::vector<std::string> before = sitesOf(relative());
    const auto files = home_.snapshot();
    for (const auto& subscription : relative().notificationSubscriptions()) {
        subscription->blockNotifications();
        subscription->blockNotifications();
    }
    EXPECT_EQ(home_.snapshot(), files);
    EXPECT_EQ(sitesOf(relative()), before);
}

TEST_F(FirefoxProfileTest, permissionsThatAreMissingOrADirectoryGiveNoSubscriptions) {
    EXPECT_EQ(sitesOf(relative()), std::vector<std::string>{});
    fs::create_directories(databaseFile("permissions.sqlite"));
    EXPECT_EQ(sitesOf(relative()), std::vector<std::string>{});
}

TEST_F(FirefoxProfileTest, permissionsThatAreNoDatabaseOrLackTheirTableAreAnError) {
    const fs::path file = databaseFile("permissions.sqlite");
    tests::Database(file).execute("CREATE TABLE other(id INTEGER);");
    EXPECT_THROW(relative().notificationSubscriptions(), SQLiteError);
    fs::resize_file(file, 0);
    EXPECT_THROW(relative().notificationSubscriptions(), SQLiteError);
    expectNoCopies();
}

TEST_F(FirefoxProfileTest, permissionsOfAnAbsoluteProfileAreLookedForBelowApplicationSupport) {
    const fs::path path = home_ / "elsewhere/x";
    tests::makePermissionsDatabase(path / "permissions.sqlite").execute(permissionRows);
    EXPECT_EQ(sitesOf(absolute()), std::vector<std::string>{});
    tests::makePermissionsDatabase(support(path.relative_path()) / "permissions.sqlite")
        .execute(permissionRows);
    EXPECT_EQ(sitesOf(absolute()).size(), 2U);
}

}  // namespace
}  // namespace browsersweep
