#include <map>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/notifications/ChromeSubscription.h"
#include "browsersweep/platform/internal/Calendar.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfile.h"
#include "browsersweep/profiles/chromium/internal/ChromiumTime.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"

#include "tests/support/Database.h"
#include "tests/support/FaultyFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using Category = CleanableDataCategory;
using Lines = std::vector<std::string>;
using Filters = std::vector<CleanableDataFilter>;

constexpr auto relativePath = "Google/Chrome/Profile 1";

/** An item in words: what it is, where, and how it is narrowed. */
std::string described(const CleanableData& item, const fs::path& home) {
    if (const auto* directory = dynamic_cast<const CleanableDirectory*>(&item)) {
        std::string text = "directory " + directory->directory().lexically_relative(home).string();
        text += directory->requiresClosedBrowserToClean() ? " closed" : " open";
        for (const auto& filter : directory->filters()) {
            text += filter.rule() == CleanableDataFilter::Rule::include ? " include" : " exclude";
            for (const auto& pattern : filter.patterns()) {
                text += " " + pattern;
            }
        }
        return text;
    }
    const auto& database = dynamic_cast<const CleanableSQLiteDatabase&>(item);
    std::string text = "database " + database.file().lexically_relative(home).string() + ":";
    for (const auto& table : database.components()) {
        text += " " + table.tableName;
        if (table.columnsForFiltering) {
            const auto& [byPattern, byDate] = *table.columnsForFiltering;
            text += "(" + byPattern.value_or("-") + (byDate ? "," + byDate->name : "") + ")";
        }
        EXPECT_TRUE(table.whereClauses.empty());
    }
    return text;
}

class ChromiumBasedProfileTest : public testing::Test {
protected:
    ChromiumBasedProfile profileWith(std::shared_ptr<const FileManager> manager) const {
        return {"Work", Browser::googleChrome, true, relativePath, std::move(manager)};
    }
    ChromiumBasedProfile profile() const { return profileWith(fileManager); }

    tests::TemporaryFolder home;
    fs::path support = fs::path("Library/Application Support") / relativePath;
    std::shared_ptr<const FileManager> fileManager = tests::GuardedFileManager::forFixture(home);
};

TEST_F(ChromiumBasedProfileTest, isWhatItWasMadeAs) {
    EXPECT_EQ(profile().name(), "Work");
    EXPECT_EQ(profile().sourceBrowser(), Browser::googleChrome);
    EXPECT_TRUE(profile().isPrimary());
    EXPECT_EQ(ChromiumBasedProfile(std::nullopt, Browser::opera, false, "x", fileManager).name(),
              std::nullopt);
}

TEST_F(ChromiumBasedProfileTest, leadingSeparatorsOfThePathAreNoRoot) {
    home.write(support / "Bookmarks",
               R"({"roots": {"bar": {"url": "https://one.example/", "name": "x"}}})");
    const ChromiumBasedProfile rooted("Work", Browser::googleChrome, true,
                                      fs::path("/") / relativePath, fileManager);
    EXPECT_EQ(rooted.bookmarks().size(), 1U);
    EXPECT_EQ(rooted.folder(), "Profile 1");
    EXPECT_EQ(rooted.leftOutReason(), std::nullopt);
    const auto data = rooted.cleanableData();
    const auto& cache = *data.find(Category::cache)->items().front();
    EXPECT_EQ(dynamic_cast<const CleanableDirectory&>(cache).directory(),
              home / "Library/Caches" / relativePath);
}

TEST_F(ChromiumBasedProfileTest, itsFoldersAreTheSamePathInTwoPlaces) {
    const ChromiumBasedProfile profile("Work", Browser::googleChrome, true, relativePath,
                                       fileManager);
    EXPECT_EQ(profile.folders(),
              (ProfileFolders{home / "Library/Application Support" / relativePath,
                              home / "Library/Caches" / relativePath}));
}

TEST_F(ChromiumBasedProfileTest, aPathThatLeadsUpLeavesItOut) {
    for (const char* const path : {"..", "Google/../../x", "", "/"}) {
        const ChromiumBasedProfile profile("Work", Browser::googleChrome, true, path, fileManager);
        EXPECT_NE(profile.leftOutReason(), std::nullopt) << path;
        EXPECT_TRUE(profile.cleanableData().lists().empty()) << path;
        EXPECT_EQ(profile.folders(), std::nullopt) << path;
    }
}

TEST_F(ChromiumBasedProfileTest, aProfileWhoseFolderDoesNotExistHasAllCategoriesAndItems) {
    // clang-format off
    const std::map<Category, Lines> expected{
        {Category::cache, {
            "directory Library/Caches/Google/Chrome/Profile 1 closed"}},
        {Category::history, {
            "database Library/Application Support/Google/Chrome/Profile 1/Favicons: favicons(url) icon_mapping(page_url)",
            "database Library/Application Support/Google/Chrome/Profile 1/History: urls(url,last_visit_time) segments(name) downloads",
            "database Library/Application Support/Google/Chrome/Profile 1/Network Action Predictor: network_action_predictor(url)",
            "database Library/Application Support/Google/Chrome/Profile 1/Top Sites: top_sites(url)",
            "directory Library/Application Support/Google/Chrome/Profile 1/Sessions closed include Tabs"}},
        {Category::httpCookies, {
            "database Library/Application Support/Google/Chrome/Profile 1/Cookies: cookies(host_key)"}},
        {Category::flashCookies, {
            "directory Library/Application Support/Google/Chrome/Profile 1/Pepper Data/ open"}},
        {Category::formData, {
            "database Library/Application Support/Google/Chrome/Profile 1/Web Data: autofill autofill_profile_addresses "
            "autofill_profile_emails autofill_profile_names autofill_profile_phones autofill_profiles autofill_profiles_trash"}},
        {Category::localStorage, {
            "directory Library/Application Support/Google/Chrome/Profile 1/Local Storage/ closed"}},
    };
    // clang-format on
    std::map<Category, Lines> found;
    for (const auto& [category, list] : profile().cleanableData().lists()) {
        for (const auto& item : list.items()) {
            found[category].push_back(described(*item, home.path()));
        }
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(profile().cleanableData().size(), CleanableDataSize::zero);
    EXPECT_TRUE(home.snapshot().empty());
}

TEST_F(ChromiumBasedProfileTest, theDateColumnIsWrittenInChromiumsTime) {
    const auto data = profile().cleanableData();
    const auto& history =
        dynamic_cast<const CleanableSQLiteDatabase&>(*data.find(Category::history)->items().at(1));
    const auto& byDate = history.components().at(0).columnsForFiltering->byDate;
    const Date earlier = dateFromReferenceSeconds(0);
    const Date later = dateFromReferenceSeconds(1.5);
    EXPECT_EQ(std::stoll(byDate->encode(later)) - std::stoll(byDate->encode(earlier)), 1'500'000);
    EXPECT_EQ(byDate->encode(earlier), chromiumTimeText(earlier, localMidnightOf1601()));
}

TEST_F(ChromiumBasedProfileTest, historyIsSizedAndCleanedWithFilters) {
    const tests::Database history(home / support / "History");
    history.execute(
        "CREATE TABLE urls (id INTEGER PRIMARY KEY, url TEXT, last_visit_time INTEGER);"
        "INSERT INTO urls (url) VALUES ('http://a.test/'), ('http://b.test/');"
        "CREATE TABLE segments (name TEXT); INSERT INTO segments VALUES ('http://a.test/');"
        "CREATE TABLE downloads (id INTEGER); INSERT INTO downloads VALUES (1);");
    home.write(support / "Sessions/Tabs_1", "12345");
    home.write(support / "Sessions/Session_1", "123");
    const auto data = profile().cleanableData();
    const auto& items = *data.find(Category::history);
    const auto bytes = static_cast<std::int64_t>(fs::file_size(home / support / "History"));
    const Filters onlyA{{CleanableDataFilter::Rule::include, {"a.test"}}};
    EXPECT_EQ(items.size(onlyA), (CleanableDataSize{5, {bytes + 8, true}}));
    items.clean(onlyA);
    EXPECT_EQ(history.text("SELECT group_concat(url) FROM urls"), "http://b.test/");
    EXPECT_EQ(history.number("SELECT COUNT(*) FROM segments"), 0);
    EXPECT_EQ(history.number("SELECT COUNT(*) FROM downloads"), 0);
    EXPECT_TRUE(fs::is_empty(home / support / "Sessions"));
}

TEST_F(ChromiumBasedProfileTest, withoutTheFilesThereAreNoBookmarksAndNoSubscriptions) {
    EXPECT_TRUE(profile().bookmarks().empty());
    EXPECT_TRUE(profile().notificationSubscriptions().empty());
    home.makeFolder(support / "Bookmarks");
    home.makeFolder(support / "Preferences");
    EXPECT_TRUE(profile().bookmarks().empty());
    EXPECT_TRUE(profile().notificationSubscriptions().empty());
}

TEST_F(ChromiumBasedProfileTest, bookmarksComeFromTheProfilesFile) {
    home.write(support / "Bookmarks",
               R"({"roots": {"r": {"name": "A", "url": "http://a.test/"}}})");
    EXPECT_EQ(profile().bookmarks(), (std::vector<Bookmark>{{"A", *URL::parse("http://a.test/")}}));
}

TEST_F(ChromiumBasedProfileTest, subscriptionsNameTheBrowserAndThePreferencesFile) {
    home.write(support / "Preferences",
               R"({"profile": {"content_settings": {"exceptions": {"notifications": {
                   "https://push.test:443,*": {"setting": 1, "last_modified": "13"}}}}}})");
    const auto before = home.snapshot();
    const auto subscriptions = profile().notificationSubscriptions();
    ASSERT_EQ(subscriptions.size(), 1U);
    EXPECT_EQ(dynamic_cast<const ChromeSubscription&>(*subscriptions[0]),
              ChromeSubscription(*URL::parse("https://push.test:443"), Browser::googleChrome,
                                 home / support / "Preferences"));
    subscriptions[0]->blockNotifications();
    EXPECT_EQ(home.snapshot(), before);
    EXPECT_EQ(profile().notificationSubscriptions().size(), 1U);
}

TEST_F(ChromiumBasedProfileTest, malformedFilesAreErrors) {
    home.write(support / "Bookmarks", R"({"roots": {"r": "text"}})");
    home.write(support / "Preferences", "{}");
    EXPECT_THROW(profile().bookmarks(), DecodingError);
    EXPECT_THROW(profile().notificationSubscriptions(), DecodingError);
}

TEST_F(ChromiumBasedProfileTest, filesThatCannotBeReadAreErrors) {
    home.write(support / "Bookmarks", "{}");
    home.write(support / "Preferences", "{}");
    const auto failingToRead = [&] {
        return profileWith(std::make_shared<tests::FaultyFileManager>(
            fileManager, tests::Fault{2, std::errc::permission_denied}));
    };
    EXPECT_THROW(failingToRead().bookmarks(), fs::filesystem_error);
    EXPECT_THROW(failingToRead().notificationSubscriptions(), fs::filesystem_error);
}

}  // namespace
}  // namespace browsersweep
