#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/catalogue/BrowserCleaners.h"
#include "browsersweep/platform/HTTPCookieStorage.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"

#include "tests/support/AccountCookies.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

struct ChromiumRow {
    Browser browser;
    std::string_view bundleIdentifier;
    std::string_view path;
};

// clang-format off
const std::vector<ChromiumRow> chromiumRows{
    {Browser::quenbySecureBrowser,   "com.quenby.browser",               "Quenby/Browser"},
    {Browser::tarrowSecureBrowser,   "com.tarrow.browser",               "TARROW Software/Browser"},
    {Browser::brave,                 "com.brave.Browser",                "BraveSoftware/Brave-Browser"},
    {Browser::chromium,              "org.chromium.Chromium",            "Chromium"},
    {Browser::googleChrome,          "com.google.Chrome",                "Google/Chrome"},
    {Browser::microsoftEdge,         "com.microsoft.edgemac",            "Microsoft Edge"},
    {Browser::orvo,                  "com.orvo.browser",                 "Orvo"},
    {Browser::brellisPrivateBrowser, "com.brellis.browser",              "Brellis/Browser"},
    {Browser::opera,                 "com.operasoftware.Opera",          "com.operasoftware.Opera"},
    {Browser::vivaldi,               "com.vivaldi.Vivaldi",              "Vivaldi"},
    {Browser::yandexBrowser,         "ru.yandex.desktop.yandex-browser", "Yandex/YandexBrowser"},
};
// clang-format on

TEST(BrowserCleaners, everyCleanersNameIsItsBrowsersDisplayName) {
    for (const Browser browser : allBrowsers) {
        EXPECT_EQ(cleaner(browser)->name(), displayName(browser));
    }
}

TEST(BrowserCleaners, elevenBrowsersAreReadAsChromiumInTheirOwnFolders) {
    for (const ChromiumRow& row : chromiumRows) {
        SCOPED_TRACE(rawValue(row.browser));
        const auto made = cleaner(row.browser);
        EXPECT_EQ(made->bundleIdentifier(), row.bundleIdentifier);
        const auto* reader =
            dynamic_cast<const ChromiumBasedProfileReader*>(&made->profileReader());
        ASSERT_NE(reader, nullptr);
        EXPECT_EQ(reader->applicationSupportRelativePath(), row.path);
        EXPECT_EQ(reader->browser(), row.browser);
    }
}

TEST(BrowserCleaners, operaIsReadThroughTheGeneralReaderInTheFolderOfItsBundleIdentifier) {
    const OperaCleaner opera(FileManager::defaultManager());
    const auto& reader = dynamic_cast<const ChromiumBasedProfileReader&>(opera.profileReader());
    EXPECT_EQ(reader.applicationSupportRelativePath(), opera.bundleIdentifier());
}

TEST(BrowserCleaners, eachCallBuildsAFreshCleanerOfTheBrowsersOwnType) {
    const auto first = cleaner(Browser::brave);
    const auto second = cleaner(Browser::brave);
    EXPECT_NE(first.get(), second.get());
    EXPECT_NE(dynamic_cast<const BraveCleaner*>(first.get()), nullptr);
    EXPECT_EQ(dynamic_cast<const VivaldiCleaner*>(first.get()), nullptr);
}

TEST(BrowserCleaners, aGivenFileManagerServesForFilesAndDirectories) {
    const tests::TemporaryFolder home;
    home.write("Library/Application Support/Vivaldi/Local State", R"({"profile": {"info_cache": {
        "Default": {"name": "Me", "is_consented_primary_account": true}},
        "last_active_profiles": []}})");
    home.write("Library/Caches/Vivaldi/Default/data", "12345");
    const auto vivaldi = cleaner(Browser::vivaldi, tests::GuardedFileManager::forFixture(home));
    const auto data = vivaldi->cleanableData([](const BrowserProfile&) { return true; });
    EXPECT_EQ(data.size(), (CleanableDataSize{1, 5}));
}

/** One cookie in the storage that the user's programs share, for as long as the test runs. */
class SharedCookie {
public:
    SharedCookie() { storage_->setCookie(cookie_); }
    SharedCookie(const SharedCookie&) = delete;
    SharedCookie& operator=(const SharedCookie&) = delete;
    ~SharedCookie() { storage_->deleteCookie(cookie_); }

    bool isThere() const {
        const auto cookies = storage_->cookies();
        return std::find(cookies.begin(), cookies.end(), cookie_) != cookies.end();
    }

private:
    HTTPCookie cookie_{"live.example", "kept", "/"};
    std::shared_ptr<HTTPCookieStorage> storage_ = HTTPCookieStorage::shared("Cookies");
};

bool everyProfile(const BrowserProfile& /*profile*/) {
    return true;
}

TEST(BrowserCleaners, cleaningAnotherHomeLeavesTheLiveUsersCookiesAlone) {
    if (!tests::mayUseAccountCookies()) {
        GTEST_SKIP() << tests::whyNoAccountCookies;
    }
    const SharedCookie cookie;
    const tests::TemporaryFolder home;
    const auto fileManager = FileManager::forHome(home.path());
    SafariCleaner(fileManager).cleanableData(everyProfile).clean();
    EXPECT_TRUE(cookie.isThere()) << "through the cleaner's own type";
    cleaner(Browser::safari, fileManager)->cleanableData(everyProfile).clean();
    EXPECT_TRUE(cookie.isThere()) << "through the catalogue";
    cleaner(Browser::safari, tests::GuardedFileManager::forFixture(home))
        ->cleanableData(everyProfile)
        .clean();
    EXPECT_TRUE(cookie.isThere()) << "through a file manager of the host's own";
}

}  // namespace
}  // namespace browsersweep
