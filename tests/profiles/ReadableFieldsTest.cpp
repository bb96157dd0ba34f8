#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/cookies/CleanableSafariCookies.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfile.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"
#include "browsersweep/profiles/chromium/OperaProfileReader.h"
#include "browsersweep/profiles/firefox/FirefoxProfile.h"
#include "browsersweep/profiles/firefox/FirefoxProfileReader.h"
#include "browsersweep/profiles/safari/SafariProfile.h"
#include "browsersweep/profiles/safari/SafariProfileReader.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

// A host that holds an item, a profile or a reader can ask it what it was made with.
namespace browsersweep {
namespace {

namespace fs = std::filesystem;

/** The user's directories anywhere. */
class OwnDirectories : public CurrentUserDirectoryProvider {
public:
    fs::path applicationSupportDirectory() const override { return "/support"; }
    fs::path cachesDirectory() const override { return "/caches"; }
    fs::path libraryDirectory() const override { return "/library"; }
};

class EmptyStorage : public HTTPCookieStorage {
public:
    std::vector<HTTPCookie> cookies() const override { return {}; }
    void setCookie(const HTTPCookie& /*cookie*/) override {}
    void deleteCookie(const HTTPCookie& /*cookie*/) override {}
};

class ReadableFieldsTest : public testing::Test {
protected:
    Home home() const {
        SystemServices services;
        services.sharedCookieStorage = [this](std::string_view /*identifier*/) { return storage; };
        return Home(fileManager, directories).withServices(services);
    }

    template <typename Part>
    void expectPartsOfTheHome(const Part& part) const {
        EXPECT_EQ(part.fileManager(), fileManager);
        EXPECT_EQ(part.directoryProvider(), directories);
    }

    tests::TemporaryFolder folder;
    std::shared_ptr<const FileManager> fileManager = tests::GuardedFileManager::forFixture(folder);
    std::shared_ptr<const CurrentUserDirectoryProvider> directories =
        std::make_shared<const OwnDirectories>();
    std::shared_ptr<HTTPCookieStorage> storage = std::make_shared<EmptyStorage>();
};

TEST_F(ReadableFieldsTest, ofADirectory) {
    const std::vector<CleanableDataFilter> filters{{CleanableDataFilter::Rule::include, {"a"}}};
    const CleanableDirectory item("/folder", true, filters, fileManager);
    EXPECT_EQ(item.directory(), "/folder");
    EXPECT_EQ(item.filters(), filters);
    EXPECT_EQ(item.fileManager(), fileManager);
}

TEST_F(ReadableFieldsTest, ofADatabase) {
    const CleanableSQLiteDatabase item("/file", {{"urls", std::nullopt, {}}}, fileManager);
    EXPECT_EQ(item.file(), "/file");
    EXPECT_EQ(item.components().size(), 1U);
    EXPECT_EQ(item.fileManager(), fileManager);
}

TEST_F(ReadableFieldsTest, ofSafarisHistory) {
    const SafariHistoryCleanableDatabase item("/file", fileManager);
    EXPECT_EQ(item.file(), "/file");
    EXPECT_EQ(item.components().tableName, "history_visits");
    EXPECT_EQ(item.components().columnName(), "history_items.url");
    EXPECT_EQ(item.fileManager(), fileManager);
    EXPECT_EQ(item.category(), CleanableDataCategory::history);
}

TEST_F(ReadableFieldsTest, ofSafarisCookies) {
    const CleanableSafariCookies item(home());
    expectPartsOfTheHome(item);
    EXPECT_EQ(item.cookieStorage(), storage);
    EXPECT_EQ(item.category(), CleanableDataCategory::httpCookies);
}

TEST_F(ReadableFieldsTest, ofProfiles) {
    const ChromiumBasedProfile chromium("Me", Browser::vivaldi, false, "Vivaldi/Default", home());
    expectPartsOfTheHome(chromium);
    EXPECT_EQ(chromium.relativePath(), "Vivaldi/Default");
    const FirefoxProfile firefox("Me", false, true, "Firefox/p", home());
    expectPartsOfTheHome(firefox);
    EXPECT_TRUE(firefox.isRelative());
    EXPECT_EQ(firefox.path(), "Firefox/p");
    expectPartsOfTheHome(SafariProfile(home()));
}

TEST_F(ReadableFieldsTest, ofReaders) {
    const ChromiumBasedProfileReader chromium("Vivaldi", home(), Browser::vivaldi);
    expectPartsOfTheHome(chromium);
    EXPECT_EQ(chromium.applicationSupportRelativePath(), "Vivaldi");
    EXPECT_EQ(chromium.browser(), Browser::vivaldi);
    expectPartsOfTheHome(OperaProfileReader(home()));
    expectPartsOfTheHome(FirefoxProfileReader(home()));
    expectPartsOfTheHome(SafariProfileReader(home()));
}

}  // namespace
}  // namespace browsersweep
