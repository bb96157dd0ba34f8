#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/safari/internal/OriginRecord.h"
#include "browsersweep/traces/safari/internal/OriginStore.h"

#include "tests/support/SafariHome.h"
#include "tests/support/SiteStores.h"

namespace browsersweep {
namespace {

using tests::allBut;
using tests::everything;
using tests::only;
using tests::originRecord;
using Lines = std::vector<std::string>;

TEST(OriginRecord, namesThePageAndTheFrameInIt) {
    const auto embedded = ownerInOriginRecord(originRecord("www.a.test", "cdn.b.test"));
    EXPECT_EQ(embedded.hosts, (Lines{"www.a.test", "cdn.b.test"}));
    EXPECT_FALSE(embedded.isBrowsersOwn);
    EXPECT_EQ(ownerInOriginRecord(originRecord("a.test", "a.test", 8443)).hosts, Lines{"a.test"});
}

TEST(OriginRecord, ofAnExtensionIsTheBrowsersOwn) {
    const auto owner = ownerInOriginRecord(originRecord("abc", "abc", 0, "safari-web-extension"));
    EXPECT_EQ(owner.hosts, Lines{});
    EXPECT_TRUE(owner.isBrowsersOwn);
}

TEST(OriginRecord, thatIsCutOffTellsNothing) {
    const std::string whole = originRecord("www.a.test", "cdn.b.test", 8080);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const auto owner = ownerInOriginRecord(whole.substr(0, length));
        EXPECT_EQ(owner.hosts, Lines{}) << length;
        EXPECT_FALSE(owner.isBrowsersOwn);
    }
    EXPECT_EQ(ownerInOriginRecord(std::string(64, '\xFE')).hosts, Lines{});
}

TEST(OriginRecord, mayHaveLettersOfTwoBytes) {
    const std::string wide("\4\0\0\0\0h\0t\0t\0p\0\6\0\0\0\0a\0.\0t\0e\0s\0t\0\0",
                           4 + 1 + 8 + 4 + 1 + 12 + 1);
    EXPECT_EQ(ownerInOriginRecord(wide + wide).hosts, Lines{"a.test"});
}

class OriginFolders : public testing::Test {
protected:
    static constexpr const char* root = "container:WebKit/WebsiteData/Default";

    void write(const std::string& folder, const std::string& page, const std::string& frame) const {
        const std::string place = std::string(root) + "/" + folder + "/";
        home.write(place + "origin", originRecord(page, frame));
        home.write(place + "LocalStorage/localstorage.sqlite3", "12345");
        home.write(place + "IndexedDB/AB/IndexedDB.sqlite3", "12345");
        home.write(place + "CacheStorage/x", "12");
        home.write(place + "ServiceWorkers/x", "12");
    }

    void SetUp() override {
        home.write(std::string(root) + "/salt", "salt");
        write("A/A", "www.a.test", "www.a.test");
        write("B/B", "b.test", "b.test");
        write("B/C", "b.test", "c.test");
    }

    tests::SafariHome home;
};

TEST_F(OriginFolders, areListedByBothSitesAndByKind) {
    const auto before = home.folder.snapshot();
    const TraceListing listing = home.store(root)->list({});
    EXPECT_EQ(tests::inShort(listing), (Lines{"a.test siteStorage 2", "a.test serviceWorkers 2",
                                              "b.test siteStorage 4", "b.test serviceWorkers 4",
                                              "c.test siteStorage 2", "c.test serviceWorkers 2"}));
    EXPECT_EQ(listing.bySite[2].shared.size(), 1U);
    EXPECT_EQ(home.folder.snapshot(), before);
}

TEST_F(OriginFolders, goWithEitherSiteAndEmptyOnesWithThem) {
    EXPECT_EQ(home.store(root)->forget(only({"a.test", "c.test"})), ForgetOutcome());
    const Lines left{"B",
                     "B/B",
                     "B/B/CacheStorage",
                     "B/B/CacheStorage/x",
                     "B/B/IndexedDB",
                     "B/B/IndexedDB/AB",
                     "B/B/IndexedDB/AB/IndexedDB.sqlite3",
                     "B/B/LocalStorage",
                     "B/B/LocalStorage/localstorage.sqlite3",
                     "B/B/ServiceWorkers",
                     "B/B/ServiceWorkers/x",
                     "B/B/origin",
                     "salt"};
    EXPECT_EQ(home.names(root), left);
}

TEST_F(OriginFolders, allButOneKeepWhatIsOfThatOneToo) {
    home.store(root)->forget(allBut({"c.test"}));
    EXPECT_EQ(tests::inShort(home.store(root)->list({})),
              (Lines{"b.test siteStorage 2", "b.test serviceWorkers 2", "c.test siteStorage 2",
                     "c.test serviceWorkers 2"}));
    home.store(root)->forget(everything());
    EXPECT_EQ(home.names(root), Lines{"salt"});
}

TEST_F(OriginFolders, oneKindGoesAloneAndTheFileThatTellsWhoseStays) {
    ForgetRequest workers = only({"a.test"});
    workers.kinds = {TraceKind::serviceWorkers};
    home.store(root)->forget(workers);
    EXPECT_EQ(home.names(std::string(root) + "/A/A"),
              (Lines{"IndexedDB", "IndexedDB/AB", "IndexedDB/AB/IndexedDB.sqlite3", "LocalStorage",
                     "LocalStorage/localstorage.sqlite3", "origin"}));
    ForgetRequest storage = only({"a.test"});
    storage.kinds = {TraceKind::siteStorage};
    home.store(root)->forget(storage);
    EXPECT_EQ(home.names(std::string(root) + "/A"), Lines{});
}

TEST_F(OriginFolders, aFrameThatStoredNothingIsATraceAllTheSame) {
    home.write(std::string(root) + "/D/D/origin", originRecord("d.test", "d.test"));
    EXPECT_EQ(tests::inShort(home.store(root)->list({})).back(), "d.test siteStorage 1");
    ForgetRequest workers = only({"d.test"});
    workers.kinds = {TraceKind::serviceWorkers};
    home.store(root)->forget(workers);
    EXPECT_EQ(home.names(std::string(root) + "/D"), (Lines{"D", "D/origin"}));
    home.store(root)->forget(only({"d.test"}));
    EXPECT_EQ(home.names(std::string(root) + "/D"), Lines{});
}

TEST_F(OriginFolders, whatExtensionsKeepStays) {
    home.write(std::string(root) + "/E/E/origin",
               originRecord("abc", "abc", 0, "safari-web-extension"));
    home.write(std::string(root) + "/E/E/LocalStorage/x", "1");
    home.store(root)->forget(everything());
    EXPECT_EQ(home.names(root),
              (Lines{"E", "E/E", "E/E/LocalStorage", "E/E/LocalStorage/x", "E/E/origin", "salt"}));
    EXPECT_EQ(home.store(root)->list({}), TraceListing());
}

TEST_F(OriginFolders, whatDoesNotTellItsSiteIsToldAndGoesWithMostSites) {
    home.write(std::string(root) + "/X/X/LocalStorage/x", "123");
    const auto store = home.store(root);
    EXPECT_EQ(tests::inShort(store->list({})).back(), "? siteStorage 1");
    const ForgetOutcome outcome = store->forget(only({"a.test"}));
    ASSERT_EQ(outcome.kept.size(), 1U);
    EXPECT_EQ(outcome.kept[0].what.filename(), "X");
    ForgetRequest mixed = only({"a.test"});
    mixed.takesMixed = true;
    EXPECT_EQ(store->forget(mixed), ForgetOutcome());
    EXPECT_EQ(home.names(std::string(root) + "/X"), Lines{});
}

TEST_F(OriginFolders, ofTheOlderLayoutHaveTheSiteInTheirNames) {
    const std::string older = "container:WebKit/WebsiteData/IndexedDB/v1";
    for (const char* const place :
         {"https_a.test_0/AB/IndexedDB.sqlite3",
          "https_a.test_0/https_c.test_0/CD/IndexedDB.sqlite3",
          "http_b.test_8080/AB/IndexedDB.sqlite3", "http_b.test_8080/AB/1.blob",
          "file__0/AB/IndexedDB.sqlite3", "salt/x"}) {
        home.write(older + "/" + place, "123");
    }
    const auto store = home.store(older);
    EXPECT_EQ(tests::inShort(store->list({})),
              (Lines{"a.test siteStorage 2", "b.test siteStorage 2", "c.test siteStorage 1"}));
    EXPECT_EQ(store->forget(only({"c.test"})), ForgetOutcome());
    EXPECT_EQ(home.names(older + "/https_a.test_0"), (Lines{"AB", "AB/IndexedDB.sqlite3"}));
    store->forget(allBut({"b.test"}));
    EXPECT_EQ(home.names(older),
              (Lines{"file__0", "file__0/AB", "file__0/AB/IndexedDB.sqlite3", "http_b.test_8080",
                     "http_b.test_8080/AB", "http_b.test_8080/AB/1.blob",
                     "http_b.test_8080/AB/IndexedDB.sqlite3", "salt", "salt/x"}));
}

}  // namespace
}  // namespace browsersweep
