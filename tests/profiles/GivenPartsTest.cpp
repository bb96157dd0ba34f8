#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/catalogue/BrowserCleaners.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"
#include "browsersweep/profiles/chromium/OperaProfileReader.h"
#include "browsersweep/profiles/firefox/FirefoxProfileReader.h"
#include "browsersweep/profiles/safari/SafariProfileReader.h"

#include "tests/support/BinaryCookieFileBuilder.h"
#include "tests/support/FirefoxDatabases.h"
#include "tests/support/MappedFileManager.h"
#include "tests/support/TemporaryFolder.h"

// Readers, profiles and cleaners use what they were given: the file manager, the directories and
// the system's services, not those of the process.
namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using Category = CleanableDataCategory;
using tests::MappedFileManager;

/** The user's directories in a folder beside the home's Library. */
class OtherLibrary : public CurrentUserDirectoryProvider {
public:
    fs::path applicationSupportDirectory() const override { return base_ / "Support"; }
    fs::path cachesDirectory() const override { return base_ / "Cached"; }
    fs::path libraryDirectory() const override { return base_; }

private:
    fs::path base_ = MappedFileManager::home / "Other";
};

class CountingStorage : public HTTPCookieStorage {
public:
    std::vector<HTTPCookie> cookies() const override { return {{"example.org", "n", "/"}}; }
    void setCookie(const HTTPCookie& /*cookie*/) override {}
    void deleteCookie(const HTTPCookie& /*cookie*/) override { ++deleted; }
    int deleted = 0;
};

class CountingLauncher : public ProcessLauncher {
public:
    explicit CountingLauncher(int& count) : count_(&count) {}
    void runAndWait(const fs::path& /*executable*/,
                    std::span<const std::string> /*arguments*/) const noexcept override {
        ++*count_;
    }

private:
    int* count_;
};

class CountingLog : public SystemLog {
public:
    explicit CountingLog(int& count) : count_(&count) {}
    void debug(std::string_view /*message*/) const noexcept override { ++*count_; }

private:
    int* count_;
};

class GivenPartsTest : public testing::Test {
protected:
    SystemServices services() {
        SystemServices services;
        services.operatingSystemVersion = [this] { return version_; };
        services.sharedCookieStorage = [this](std::string_view /*identifier*/) { return storage_; };
        services.processLauncher = std::make_shared<const CountingLauncher>(processes_);
        services.systemLog = std::make_shared<const CountingLog>(logged_);
        return services;
    }

    Home home() { return Home(fileManager_).withServices(services()); }
    Home otherHome() { return Home(fileManager_, provider_).withServices(services()); }

    /** The one profile of a reader. */
    std::shared_ptr<const BrowserProfile> only(const BrowserProfileReader& reader) const {
        const auto profiles = reader.profiles();
        return profiles.size() == 1 ? profiles.front() : throw std::logic_error("not one profile");
    }

    std::map<Category, std::int64_t> itemCounts(const BrowserProfile& profile) const {
        std::map<Category, std::int64_t> counts;
        const CleanableDataMap data = profile.cleanableData();
        for (const auto& [category, list] : data.lists()) {
            counts[category] = list.size().itemCount.value;
        }
        return counts;
    }

    void expectOneBookmarkAndOneSite(const BrowserProfile& profile) const {
        EXPECT_EQ(profile.bookmarks().size(), 1U);
        EXPECT_EQ(profile.notificationSubscriptions().size(), 1U);
    }

    void writeChromiumProfile(const fs::path& support, const fs::path& caches) const {
        folder_.write(support / "Bookmarks",
                      R"({"roots": {"r": {"name": "A", "url": "http://a.test/"}}})");
        folder_.write(support / "Preferences",
                      R"({"profile": {"content_settings": {"exceptions": {"notifications": {
                          "https://a.test,*": {"setting": 1, "last_modified": "1"}}}}}})");
        tests::Database(folder_ / support / "History")
            .execute("CREATE TABLE urls (url TEXT); INSERT INTO urls VALUES ('a'), ('b')");
        tests::Database(folder_ / support / "Cookies")
            .execute("CREATE TABLE cookies (host_key TEXT); INSERT INTO cookies VALUES ('a')");
        tests::Database(folder_ / support / "Web Data")
            .execute("CREATE TABLE autofill (name TEXT); INSERT INTO autofill VALUES ('a')");
        folder_.write(support / "Sessions/Tabs_1", "1");
        folder_.write(support / "Pepper Data/a", "1");
        folder_.write(support / "Local Storage/a", "1");
        folder_.write(caches / "a", "1");
    }

    const std::map<Category, std::int64_t> chromiumCounts_{
        {Category::cache, 1},        {Category::history, 3},  {Category::httpCookies, 1},
        {Category::flashCookies, 1}, {Category::formData, 1}, {Category::localStorage, 1}};

    tests::TemporaryFolder folder_;
    std::shared_ptr<const FileManager> fileManager_ = std::make_shared<MappedFileManager>(folder_);
    std::shared_ptr<const CurrentUserDirectoryProvider> provider_ =
        std::make_shared<OtherLibrary>();
    OperatingSystemVersion version_{10, 14, 0};
    std::shared_ptr<CountingStorage> storage_ = std::make_shared<CountingStorage>();
    int processes_ = 0;
    int logged_ = 0;
};

TEST_F(GivenPartsTest, chromiumReadersAndProfiles) {
    folder_.write("Other/Support/Vendor/Local State",
                  R"({"profile": {"info_cache": {"Default": {"name": "Me",
                      "is_consented_primary_account": true}}, "last_active_profiles": []}})");
    writeChromiumProfile("Other/Support/Vendor/Default", "Other/Cached/Vendor/Default");
    const auto profile = only(ChromiumBasedProfileReader("Vendor", otherHome(), Browser::vivaldi));
    EXPECT_EQ(itemCounts(*profile), chromiumCounts_);
    expectOneBookmarkAndOneSite(*profile);
}

TEST_F(GivenPartsTest, operasOwnReader) {
    writeChromiumProfile("Other/Support/com.operasoftware.Opera",
                         "Other/Cached/com.operasoftware.Opera");
    const auto profile = only(OperaProfileReader(otherHome()));
    EXPECT_EQ(itemCounts(*profile), chromiumCounts_);
    expectOneBookmarkAndOneSite(*profile);
}

TEST_F(GivenPartsTest, firefoxsReaderAndProfiles) {
    const fs::path support = "Other/Support/Firefox";
    folder_.write(support / "profiles.ini", "[Profile0]\nName=a\nIsRelative=1\nPath=p\n");
    tests::makePlacesDatabase(folder_ / support / "p/places.sqlite")
        .execute(
            "INSERT INTO moz_places(id, url, url_hash, guid, foreign_count) VALUES"
            "(1, 'https://a.test/', 1, 'abcdefghijkl', 1);"
            "INSERT INTO moz_bookmarks(id, type, fk, title, guid) VALUES"
            "(1, 1, 1, 'A', 'abcdefghijkm');"
            "INSERT INTO moz_historyvisits(id, place_id, visit_date) VALUES(1, 1, 1);");
    tests::makeCookiesDatabase(folder_ / support / "p/cookies.sqlite")
        .execute("INSERT INTO moz_cookies(id, host) VALUES(1, 'a.test');");
    tests::makeFormHistoryDatabase(folder_ / support / "p/formhistory.sqlite")
        .execute("INSERT INTO moz_formhistory(id, fieldname, value) VALUES(1, 'a', 'b');");
    tests::makePermissionsDatabase(folder_ / support / "p/permissions.sqlite")
        .execute(
            "INSERT INTO moz_perms(id, origin, type, permission) VALUES"
            "(1, 'https://a.test', 'desktop-notification', 1);");
    folder_.write("Other/Cached/Firefox/p/cache2/a", "1");
    folder_.write("Other/Preferences/Macromedia/a", "1");
    const auto profile = only(FirefoxProfileReader(otherHome()));
    EXPECT_EQ(itemCounts(*profile),
              (std::map<Category, std::int64_t>{{Category::cache, 1},
                                                {Category::history, 1},
                                                {Category::httpCookies, 1},
                                                {Category::flashCookies, 1},
                                                {Category::formData, 1},
                                                {Category::localStorage, 0}}));
    expectOneBookmarkAndOneSite(*profile);
}

TEST_F(GivenPartsTest, safarisReaderAndProfile) {
    folder_.write("Other/Safari/Bookmarks.plist",
                  "<plist><dict><key>Children</key><array><dict><key>URLString</key>"
                  "<string>https://a.test/</string></dict></array></dict></plist>");
    folder_.write("Other/Safari/RemoteNotifications/Permissions.plist",
                  "<plist><dict><key>a</key><dict><key>Allowed Domains</key>"
                  "<array><string>https://a.test</string></array></dict></dict></plist>");
    const Bytes cookies = tests::cookieFile({tests::cookiePage({tests::CookieRecord().data()})},
                                            tests::emptyDictionary());
    folder_.write("Other/Cookies/Cookies.binarycookies",
                  std::string(cookies.begin(), cookies.end()));
    folder_.write("Other/Caches/com.apple.Safari/a", "1");
    folder_.write("Other/Containers/com.apple.Safari/Data/Library/Caches/WebKit/a", "1");
    folder_.write("Other/Preferences/Macromedia/a", "1");
    folder_.write("Other/Safari/LocalStorage/a", "1");
    const auto profile = only(SafariProfileReader(otherHome()));
    EXPECT_EQ(itemCounts(*profile),
              (std::map<Category, std::int64_t>{{Category::cache, 2},
                                                {Category::history, 0},
                                                {Category::httpCookies, 1},
                                                {Category::flashCookies, 1},
                                                {Category::localStorage, 1}}));
    expectOneBookmarkAndOneSite(*profile);
}

TEST_F(GivenPartsTest, safarisCleanerUsesItsServicesAndNotTheSystems) {
    const auto safari = cleaner(Browser::safari, home());
    const CleanableDataMap data =
        safari->cleanableData([](const BrowserProfile& /*profile*/) { return true; });
    EXPECT_FALSE(data.find(Category::cache)->requiresClosedBrowserToClean());
    version_ = {10, 15, 0};
    EXPECT_TRUE(safari->cleanableData([](const BrowserProfile& /*profile*/) { return true; })
                    .find(Category::cache)
                    ->requiresClosedBrowserToClean());
    folder_.write("Library/Cookies/Cookies.binarycookies", "no cookies");
    EXPECT_EQ(data.find(Category::httpCookies)->size(), CleanableDataSize::zero);
    EXPECT_EQ(logged_, 1);
    data.find(Category::httpCookies)->clean();
    EXPECT_EQ(processes_, 2);
    EXPECT_EQ(storage_->deleted, 1);
    EXPECT_FALSE(fs::exists(folder_ / "Library/Cookies/Cookies.binarycookies"));
}

TEST_F(GivenPartsTest, everyCleanerReadsThroughItsFileManager) {
    struct Row {
        Browser browser;
        fs::path folder;
    };
    const std::vector<Row> rows{
        {Browser::quenbySecureBrowser, "Quenby/Browser"},
        {Browser::tarrowSecureBrowser, "TARROW Software/Browser"},
        {Browser::brave, "BraveSoftware/Brave-Browser"},
        {Browser::chromium, "Chromium"},
        {Browser::googleChrome, "Google/Chrome"},
        {Browser::microsoftEdge, "Microsoft Edge"},
        {Browser::orvo, "Orvo"},
        {Browser::brellisPrivateBrowser, "Brellis/Browser"},
        {Browser::opera, "com.operasoftware.Opera"},
        {Browser::vivaldi, "Vivaldi"},
        {Browser::yandexBrowser, "Yandex/YandexBrowser"},
    };
    const fs::path support = "Library/Application Support";
    for (const Row& row : rows) {
        SCOPED_TRACE(rawValue(row.browser));
        folder_.write(support / row.folder / "Local State",
                      R"({"profile": {"info_cache": {"Default": {"name": "Me",
                          "is_consented_primary_account": true}}, "last_active_profiles": []}})");
        const auto profile = only(cleaner(row.browser, home())->profileReader());
        EXPECT_EQ(profile->sourceBrowser(), row.browser);
    }
    folder_.write(support / "Firefox/profiles.ini", "[Profile0]\nName=a\nIsRelative=1\nPath=p\n");
    const auto firefox = cleaner(Browser::firefox, home());
    EXPECT_EQ(only(firefox->profileReader())->sourceBrowser(), Browser::firefox);
}

TEST_F(GivenPartsTest, aSiteAllowedInTwoProfilesOfOneBrowserIsListedForEach) {
    const fs::path support = "Library/Application Support/Vivaldi";
    folder_.write(support / "Local State",
                  R"({"profile": {"info_cache": {
                      "One": {"name": "1", "is_consented_primary_account": false},
                      "Two": {"name": "2", "is_consented_primary_account": false}},
                      "last_active_profiles": []}})");
    writeChromiumProfile(support / "One", "Library/Caches/Vivaldi/One");
    writeChromiumProfile(support / "Two", "Library/Caches/Vivaldi/Two");
    std::vector<std::string> sites;
    const auto vivaldi = cleaner(Browser::vivaldi, home());
    for (const auto& profile : vivaldi->profileReader().profiles()) {
        for (const auto& subscription : profile->notificationSubscriptions()) {
            sites.push_back(subscription->sourceURL().absoluteString() + " of " +
                            subscription->store().parent_path().filename().string());
        }
    }
    EXPECT_EQ(sites, (std::vector<std::string>{"https://a.test of One", "https://a.test of Two"}));
}

}  // namespace
}  // namespace browsersweep
