#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/profiles/safari/SafariNamedProfile.h"
#include "browsersweep/profiles/safari/SafariProfile.h"
#include "browsersweep/traces/safari/internal/SafariStores.h"

#include "tests/support/SafariHome.h"
#include "tests/support/SiteStores.h"

namespace browsersweep {
namespace {

using tests::allBut;
using tests::everything;
using tests::only;
using tests::originRecord;
using Lines = std::vector<std::string>;

class SafariStoresTest : public testing::Test {
protected:
    tests::SafariHome home;
};

TEST_F(SafariStoresTest, touchNoFile) {
    const auto before = home.folder.snapshot();
    EXPECT_GT(home.stores().size(), 40U);
    EXPECT_EQ(home.folder.snapshot(), before);
}

TEST_F(SafariStoresTest, filesOfTheOlderLayoutGoByTheHostInTheirNames) {
    for (const std::string place :
         {"Safari/LocalStorage", "container:WebKit/WebsiteData/LocalStorage",
          "WebKit/com.apple.Safari/WebsiteData/LocalStorage"}) {
        for (const char* const name :
             {"https_www.a.test_0.localstorage", "https_www.a.test_0.localstorage-wal",
              "http_b.test_8080.localstorage", "safari-extension_com.example_0.localstorage",
              "other"}) {
            home.write(place + "/" + name, "1234");
        }
        EXPECT_EQ(tests::inShort(home.store(place)->list({})),
                  (Lines{"a.test siteStorage 2", "b.test siteStorage 1"}))
            << place;
        home.store(place)->forget(only({"a.test"}));
        EXPECT_EQ(home.names(place), (Lines{"http_b.test_8080.localstorage", "other",
                                            "safari-extension_com.example_0.localstorage"}));
        home.store(place)->forget(everything());
        EXPECT_EQ(home.names(place),
                  (Lines{"other", "safari-extension_com.example_0.localstorage"}));
    }
}

TEST_F(SafariStoresTest, foldersOfDatabasesGoByTheHostInTheirNames) {
    for (const std::string place : {"Safari/Databases", "container:WebKit/WebsiteData/WebSQL"}) {
        for (const char* const name : {"https_a.test_0/1.db", "https_b.test_0/1.db",
                                       "___IndexedDB/v1/https_a.test_0/AB/IndexedDB.sqlite3"}) {
            home.write(place + "/" + name, "1234");
        }
        home.store(place)->forget(allBut({"b.test"}));
        EXPECT_EQ(home.names(place + "/https_a.test_0"), Lines{});
        EXPECT_EQ(home.names(place + "/https_b.test_0"), Lines{"1.db"});
    }
    home.store("Safari/Databases/___IndexedDB/v1")->forget(only({"a.test"}));
    EXPECT_EQ(home.names("Safari/Databases/___IndexedDB"), Lines{"v1"});
}

TEST_F(SafariStoresTest, everyFolderOfTheOlderIndexedDBIsKnown) {
    for (const std::string place :
         {"container:WebKit/WebsiteData/IndexedDB/v0", "container:WebKit/WebsiteData/IndexedDB/v1",
          "Safari/Databases/___IndexedDB", "Safari/Databases/___IndexedDB/v0",
          "Safari/Databases/___IndexedDB/v1"}) {
        home.write(place + "/https_a.test_0/name/IndexedDB.sqlite3", "1234");
        EXPECT_EQ(tests::inShort(home.store(place)->list({})), Lines{"a.test siteStorage 1"})
            << place;
        home.store(place)->forget(only({"a.test"}));
        EXPECT_EQ(home.names(place + "/https_a.test_0"), Lines{});
    }
}

TEST_F(SafariStoresTest, cachesOfScriptsAndKeysOfFilmsGoByTheirOriginFile) {
    home.write("container:Caches/WebKit/CacheStorage/AB/origin", originRecord("a.test", "c.test"));
    home.write("container:Caches/WebKit/CacheStorage/CD/origin", originRecord("b.test", "b.test"));
    home.write("container:Caches/WebKit/CacheStorage/salt", "salt");
    home.write("container:WebKit/WebsiteData/MediaKeys/v1/X/Y/origin",
               originRecord("a.test", "a.test"));
    home.write("container:WebKit/WebsiteData/MediaKeys/v1/X/Y/SecureStop.plist", "1");
    EXPECT_EQ(
        tests::inShort(home.store("container:Caches/WebKit/CacheStorage")->list({})),
        (Lines{"a.test serviceWorkers 1", "b.test serviceWorkers 1", "c.test serviceWorkers 1"}));
    for (const auto& store : home.stores()) {
        EXPECT_EQ(store->forget(only({"a.test"})), ForgetOutcome());
    }
    EXPECT_EQ(home.names("container:Caches/WebKit/CacheStorage"),
              (Lines{"CD", "CD/origin", "salt"}));
    EXPECT_EQ(home.names("container:WebKit/WebsiteData/MediaKeys/v1"), Lines{});
}

TEST_F(SafariStoresTest, everyCacheOfWebKitIsKnown) {
    for (const std::string place :
         {"container:Caches/WebKit/NetworkCache", "Caches/com.apple.Safari/WebKit/NetworkCache",
          "Caches/com.apple.Safari/WebKitCache", "container:Caches/com.apple.Safari/WebKitCache"}) {
        home.write(place + "/Version 16/salt", "salt");
        home.store(place)->forget(everything());
        EXPECT_EQ(home.names(place), Lines{}) << place;
    }
}

/** Places that tell no site apart: each is a row of a table. */
const std::vector<std::pair<const char*, TraceKind>> mixedPlaces{
    {"Safari/HistoryIndex.sk", TraceKind::history},
    {"Safari/Form Values", TraceKind::formData},
    {"Safari/SearchDescriptions.plist", TraceKind::predictions},
    {"Safari/ContentBlockerStatistics.db", TraceKind::networkState},
    {"Safari/ContentBlockerStatistics.db-wal", TraceKind::networkState},
    {"Safari/ContentBlockerStatistics.db-shm", TraceKind::networkState},
    {"container:WebKit/WebsiteData/DeviceIdHashSalts/1/salt", TraceKind::siteStorage},
    {"container:Caches/WebKit/HSTS/HSTS.plist", TraceKind::networkState},
    {"container:Caches/WebKit/AlternativeServices/file", TraceKind::networkState},
    {"container:Caches/WebKit/OfflineWebApplicationCache/file", TraceKind::cachedFiles},
    {"Caches/com.apple.Safari/Webpage Previews/1.jpeg", TraceKind::history},
};

TEST_F(SafariStoresTest, whatTellsNoSiteApartIsToldAndGoesWithEverythingOrWhereItIsAskedFor) {
    for (const auto& [place, kind] : mixedPlaces) {
        const auto file = home.write(place, "12345");
        std::vector<MixedTrace> listed;
        std::vector<KeptTrace> kept;
        for (const auto& each : home.stores()) {
            const auto traces = each->list({}).notBySite;
            listed.insert(listed.end(), traces.begin(), traces.end());
            const auto stay = each->forget(only({"a.test"})).kept;
            kept.insert(kept.end(), stay.begin(), stay.end());
        }
        ASSERT_EQ(listed.size(), 1U) << place;
        EXPECT_EQ(listed[0].size, (CleanableDataSize{1, 5}));
        EXPECT_EQ(listed[0].kind, kind);
        ASSERT_EQ(kept.size(), 1U) << place;
        EXPECT_TRUE(std::filesystem::exists(file));
        for (const auto& each : home.stores()) {
            EXPECT_EQ(each->forget(everything()), ForgetOutcome());
        }
        EXPECT_FALSE(std::filesystem::exists(file)) << place;
    }
}

TEST_F(SafariStoresTest, aNamedProfileHasItsOwnAndNoneOfTheOthers) {
    const SafariNamedProfile work("Work", "0F1E2D3C-0000-4000-8000-0123456789AB", home.home);
    const std::string data =
        "container:WebKit/WebsiteDataStore/0f1e2d3c-0000-4000-8000-0123456789ab";
    home.write("container:WebKit/WebsiteData/Default/A/A/origin", originRecord("a.test", "a.test"));
    home.write(data + "/Origins/A/A/origin", originRecord("a.test", "a.test"));
    home.write(data + "/CacheStorage/AB/origin", originRecord("a.test", "a.test"));
    home.write("Safari/LastSession.plist", "kept");
    for (const auto& store : traceStores(work, home.home)) {
        EXPECT_EQ(store->forget(everything()), ForgetOutcome());
    }
    EXPECT_EQ(home.names(data), (Lines{"CacheStorage", "Origins"}));
    EXPECT_EQ(home.names("container:WebKit/WebsiteData/Default"),
              (Lines{"A", "A/A", "A/A/origin"}));
    EXPECT_EQ(home.names("Safari"), Lines{"LastSession.plist"});
    const auto stores = traceStores(work, home.home);
    for (const std::string file :
         {"History.db", "Favicon Cache/favicons.db", "LastSession.plist", "TopSites.plist"}) {
        EXPECT_NO_THROW(tests::storeAt(
            stores,
            home.library() / "Safari/Profiles/0F1E2D3C-0000-4000-8000-0123456789AB" / file));
    }
}

TEST_F(SafariStoresTest, aProfileThatIsLeftOutHasNone) {
    EXPECT_EQ(traceStores(SafariNamedProfile("x", "../..", home.home), home.home), TraceStores{});
}

TEST_F(SafariStoresTest, bookmarksExtensionsAndWhatIsNotKnownStay) {
    for (const char* const place : {"Safari/Bookmarks.plist", "Safari/Extensions/Extensions.plist",
                                    "container:Safari/WebExtensions/Extensions.plist",
                                    "Safari/ReadingListArchives/1/page.webarchive",
                                    "container:Preferences/com.apple.Safari.plist"}) {
        home.write(place, "<plist><dict/></plist>");
    }
    const auto before = home.folder.snapshot();
    for (const auto& store : home.stores()) {
        ForgetRequest request = everything();
        request.takesSettings = true;
        EXPECT_EQ(store->forget(request), ForgetOutcome());
    }
    EXPECT_EQ(home.folder.snapshot(), before);
}

}  // namespace
}  // namespace browsersweep
