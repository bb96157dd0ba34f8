#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/chromium/internal/FolderStores.h"

#include "tests/support/CacheEntry.h"
#include "tests/support/FaultyFileManager.h"
#include "tests/support/LevelRecords.h"
#include "tests/support/OldFiles.h"
#include "tests/support/SiteStores.h"

namespace browsersweep {
namespace {

using namespace std::string_literals;

namespace fs = std::filesystem;

using tests::allBut;
using tests::cacheEntry;
using tests::everything;
using tests::only;
using Lines = std::vector<std::string>;

/** A field of a message that is a text of fewer than 128 letters. */
std::string field(unsigned number, const std::string& text) {
    return std::string{static_cast<char>(number << 3U | 2U), static_cast<char>(text.size())} + text;
}

class FolderStores : public testing::Test {
protected:
    std::shared_ptr<const TraceStore> store(const fs::path& path) const {
        return tests::storeAt(folderStores(home.folders, home.manager), path);
    }
    std::shared_ptr<const TraceStore> inData(const char* place) const {
        return store(home.data() / place);
    }
    std::shared_ptr<const TraceStore> inCache(const char* place) const {
        return store(home.cache() / place);
    }

    Lines namesIn(const fs::path& path) const {
        Lines found;
        for (const auto& entry : fs::directory_iterator(path)) {
            found.push_back(entry.path().filename().string());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    tests::ChromiumHome home;
};

class IndexedDB : public FolderStores {
protected:
    void SetUp() override {
        home.write("IndexedDB/https_www.a.com_0.indexeddb.leveldb/000003.log", "12345");
        home.write("IndexedDB/https_www.a.com_0.indexeddb.blob/1/00/1", "123");
        home.write("IndexedDB/http_b.com_8080.indexeddb.leveldb/file", "1");
        home.write("IndexedDB/chrome-extension_abc_0.indexeddb.leveldb/file", "1");
        home.write("IndexedDB/file__0.indexeddb.leveldb/file", "22");
        home.write("IndexedDB/unrelated/file", "1");
    }
};

TEST_F(IndexedDB, isCountedToTheFileByTheOriginInItsNames) {
    const auto before = home.folder.snapshot();
    const TraceListing listing = inData("IndexedDB")->list({});
    EXPECT_EQ(tests::inShort(listing),
              (Lines{"a.com siteStorage 2", "b.com siteStorage 1", "? siteStorage 1"}));
    EXPECT_EQ(listing.bySite[0].size, (CleanableDataSize{2, 8}));
    EXPECT_TRUE(listing.bySite[0].lastUsed);
    EXPECT_EQ(listing.notBySite[0].size, (CleanableDataSize{1, 2}));
    EXPECT_EQ(home.folder.snapshot(), before);
}

TEST_F(IndexedDB, goesByTheFolderAndWhatIsOfAnExtensionOrUnknownStays) {
    const ForgetOutcome outcome = inData("IndexedDB")->forget(only({"a.com"}));
    const std::string unknown = "file__0.indexeddb.leveldb";
    ASSERT_EQ(outcome.kept.size(), 1U);
    EXPECT_EQ(outcome.kept[0].what, home.data() / "IndexedDB" / unknown);
    EXPECT_EQ(namesIn(home.data() / "IndexedDB"),
              (Lines{"chrome-extension_abc_0.indexeddb.leveldb", unknown,
                     "http_b.com_8080.indexeddb.leveldb", "unrelated"}));
    EXPECT_EQ(inData("IndexedDB")->forget(allBut({"b.com"})), ForgetOutcome());
    EXPECT_EQ(namesIn(home.data() / "IndexedDB"),
              (Lines{"chrome-extension_abc_0.indexeddb.leveldb",
                     "http_b.com_8080.indexeddb.leveldb", "unrelated"}));
    EXPECT_EQ(inData("IndexedDB")->forget(everything()), ForgetOutcome());
    EXPECT_EQ(namesIn(home.data() / "IndexedDB"),
              (Lines{"chrome-extension_abc_0.indexeddb.leveldb", "unrelated"}));
}

TEST_F(FolderStores, cacheStorageBelongsToWhomItsIndexNames) {
    const std::string base = "Service Worker/CacheStorage/";
    const std::string cacheOfA = field(1, field(1, "https://other.com"));
    home.write(base + "aa/index.txt", cacheOfA + field(2, "https://www.a.com/"));
    home.write(base + "aa/guid/file", "12345");
    home.write(base + "bb/index.txt",
               field(2, "https://b.com/") + field(3, "https://b.com/^0https://a.com"));
    home.write(base + "cc/index.txt", field(2, "https://c.com/"));
    home.write(base + "ee/index.txt", field(2, "chrome-extension://abc/"));
    home.write(base + "ff/index.txt", "\xFF\xFF");
    home.write(base + "file", "");
    const auto here = inData("Service Worker/CacheStorage");
    EXPECT_EQ(tests::inShort(here->list({})),
              (Lines{"a.com serviceWorkers 3", "b.com serviceWorkers 1", "c.com serviceWorkers 1",
                     "? serviceWorkers 1"}));
    EXPECT_EQ(here->forget(only({"a.com"})).kept.size(), 1U);
    EXPECT_EQ(namesIn(home.data() / base), (Lines{"cc", "ee", "ff", "file"}));
    ForgetRequest mixed = only({"a.com"});
    mixed.takesMixed = true;
    EXPECT_EQ(here->forget(mixed), ForgetOutcome());
    EXPECT_EQ(namesIn(home.data() / base), (Lines{"cc", "ee", "file"}));
    here->forget(everything());
    EXPECT_EQ(namesIn(home.data() / base), (Lines{"ee", "file"}));
}

/** Places that tell no site apart: each is a row of a table. */
const std::vector<std::pair<const char*, TraceKind>> mixedPlaces{
    {"Sessions/Tabs_1", TraceKind::openTabs},
    {"Sessions_Encrypted/Session_1", TraceKind::openTabs},
    {"Visited Links", TraceKind::history},
    {"SCT Auditing Pending Reports", TraceKind::networkState},
    {"blob_storage/guid/1", TraceKind::siteStorage},
    {"Download Service/Files/1", TraceKind::downloads},
    {"cache:Cache/No_Vary_Search/journal", TraceKind::cachedFiles},
    {"cache:Media Cache/data_1", TraceKind::cachedFiles},
};

TEST_F(FolderStores, whatTellsNoSiteApartIsListedWithWhatItMeans) {
    for (const auto& [place, kind] : mixedPlaces) {
        home.write(place, "12345");
    }
    std::size_t count = 0;
    for (const auto& each : folderStores(home.folders, home.manager)) {
        for (const MixedTrace& trace : each->list({}).notBySite) {
            EXPECT_EQ(trace.size, (CleanableDataSize{1, 5})) << trace.what;
            EXPECT_FALSE(trace.meaning.empty()) << trace.what;
            EXPECT_EQ(each->kinds(), std::set<TraceKind>{trace.kind});
            ++count;
        }
    }
    EXPECT_EQ(count, mixedPlaces.size());
}

TEST_F(FolderStores, whatTellsNoSiteApartGoesWithEverythingOrWhereItIsAskedForAndElseIsTold) {
    for (const auto& [place, kind] : mixedPlaces) {
        ForgetRequest request = only({"a.com"});
        ForgetRequest mixed = request;
        mixed.takesMixed = true;
        ForgetRequest other = everything();
        other.kinds = {kind == TraceKind::cookies ? TraceKind::icons : TraceKind::cookies};
        for (const ForgetRequest& going : {everything(), allBut({"b.com"}), mixed}) {
            const fs::path file = home.write(place, "12345");
            std::vector<KeptTrace> kept;
            for (const auto& each : folderStores(home.folders, home.manager)) {
                EXPECT_EQ(each->forget(other), ForgetOutcome());
                for (const KeptTrace& trace : each->forget(request).kept) {
                    kept.push_back(trace);
                }
            }
            ASSERT_EQ(kept.size(), 1U) << place;
            EXPECT_EQ(kept[0].kind, kind) << place;
            EXPECT_FALSE(kept[0].why.empty());
            EXPECT_TRUE(fs::exists(file)) << place;
            for (const auto& each : folderStores(home.folders, home.manager)) {
                EXPECT_EQ(each->forget(going), ForgetOutcome());
            }
            EXPECT_FALSE(fs::exists(file)) << place;
            EXPECT_FALSE(fs::exists(home.data() / "Sessions"));
        }
    }
}

TEST_F(FolderStores, recordsThatNameASiteAreLeftOutOfDatabasesOfManyParts) {
    for (const char* place : {"shared_proto_db", "BudgetDatabase"}) {
        tests::writeLevelRecords(home.data() / place, {{"1_a", "url https://cdn.A.com/file"},
                                                       {"2_https://a.com", "x"},
                                                       {"3", "a\0.\0c\0o\0m\0"s},
                                                       {"4", "https://notaa.com a.com.org"},
                                                       {"5", "https://b.com"}});
        tests::eraseLevelRecords(home.data() / place, {"2_https://a.com"});
        EXPECT_EQ(tests::inShort(inData(place)->list({})).size(), 1U);
        EXPECT_EQ(inData(place)->forget(only({"a.com"})), ForgetOutcome());
        EXPECT_EQ(
            tests::readLevelRecords(home.data() / place),
            (tests::LevelRecords{{"4", "https://notaa.com a.com.org"}, {"5", "https://b.com"}}));
        EXPECT_EQ(home.filesWith("A.com"), Lines());
        EXPECT_EQ(inData(place)->forget(everything()), ForgetOutcome());
        EXPECT_FALSE(fs::exists(home.data() / place));
    }
}

class Caches : public FolderStores, public testing::WithParamInterface<const char*> {
protected:
    std::string at(const std::string& name) const {
        return "cache:" + std::string(GetParam()) + "/" + name;
    }
    void SetUp() override {
        home.write(at("00000000000000aa_0"),
                   cacheEntry("1/0/_dk_https://a.com https://a.com https://www.a.com/x", "of a"));
        home.write(at("00000000000000aa_1"),
                   cacheEntry("1/0/_dk_https://a.com https://a.com https://www.a.com/x", "of a 1"));
        home.write(at("00000000000000ab_0"),
                   cacheEntry("1/0/_dk_https://a.com https://a.com https://cdn.c.com/y", "of c"));
        home.write(at("00000000000000bb_s"),
                   cacheEntry("1/0/_dk_https://b.com https://b.com https://b.com/" +
                                  std::string(3000, 'x'),
                              "of b"));
        home.write(at("00000000000000dd_0"), "damaged");
        home.write(at("index"), "index");
        home.write(at("index-dir/the-real-index"), "digests");
    }

    fs::path folder() const { return home.cache() / GetParam(); }
};

TEST_P(Caches, entriesBelongToEverySiteInTheirKeys) {
    const auto before = home.folder.snapshot();
    const TraceListing listing = inCache(GetParam())->list({});
    EXPECT_EQ(tests::inShort(listing), (Lines{"a.com cachedFiles 3", "b.com cachedFiles 1",
                                              "c.com cachedFiles 1", "? cachedFiles 1"}));
    EXPECT_EQ(listing.notBySite[0].size, (CleanableDataSize{1, 7}));
    EXPECT_EQ(listing.bySite[1].size.byteCount.value,
              static_cast<std::int64_t>(fs::file_size(folder() / "00000000000000bb_s")));
    EXPECT_EQ(home.folder.snapshot(), before);
}

TEST_P(Caches, onlyTheEntriesOfASiteGoAndWithThemTheIndex) {
    EXPECT_EQ(inCache(GetParam())->forget(only({"c.com"})), ForgetOutcome());
    EXPECT_EQ(namesIn(folder()),
              (Lines{"00000000000000aa_0", "00000000000000aa_1", "00000000000000bb_s",
                     "00000000000000dd_0", "index", "index-dir"}));
    EXPECT_TRUE(fs::is_empty(folder() / "index-dir"));
    inCache(GetParam())->forget(allBut({"b.com"}));
    EXPECT_EQ(namesIn(folder()), (Lines{"00000000000000bb_s", "index", "index-dir"}));
}

TEST_P(Caches, anEntryWhoseAddressHoldsTheNameOfASiteGoesWithIt) {
    home.write(
        at("00000000000000cc_0"),
        cacheEntry("1/0/_dk_https://b.com https://b.com https://b.com/?q=www.a.com%2Fx", ""));
    inCache(GetParam())->forget(only({"a.com"}));
    EXPECT_EQ(namesIn(folder()),
              (Lines{"00000000000000bb_s", "00000000000000dd_0", "index", "index-dir"}));
}

TEST_P(Caches, whatDoesNotSayItsSiteGoesWhereMixedDataIsAskedFor) {
    fs::create_symlink("elsewhere", folder() / "00000000000000ee_0");
    ForgetRequest mixed = only({"c.com"});
    mixed.takesMixed = true;
    EXPECT_EQ(inCache(GetParam())->forget(mixed), ForgetOutcome());
    EXPECT_EQ(namesIn(folder()), (Lines{"00000000000000aa_0", "00000000000000aa_1",
                                        "00000000000000bb_s", "index", "index-dir"}));
}

TEST_P(Caches, whereNothingGoesTheIndexStays) {
    const auto before = home.folder.snapshot();
    inCache(GetParam())->forget(only({"other.com"}));
    EXPECT_EQ(home.folder.snapshot(), before);
}

TEST_P(Caches, anOperationReadsTheKeyOfAnUnchangedEntryOnce) {
    const auto files = std::make_shared<tests::OldFiles>(home.manager);
    const auto remembering =
        tests::storeAt(folderStores(home.folders, files), folder())->remembering();
    remembering->list({});
    EXPECT_EQ(std::set(files->read.begin(), files->read.end()).size(), 5U);
    files->read.clear();
    EXPECT_EQ(remembering->forget(only({"c.com"})), ForgetOutcome());
    EXPECT_EQ(tests::inShort(remembering->list({})),
              (Lines{"a.com cachedFiles 2", "b.com cachedFiles 1", "? cachedFiles 1"}));
    EXPECT_EQ(files->read, Lines());
}

TEST_P(Caches, anOperationReadsAnEntryAgainThatWasReplacedOrRewritten) {
    const auto files = std::make_shared<tests::OldFiles>(home.manager);
    const auto remembering =
        tests::storeAt(folderStores(home.folders, files), folder())->remembering();
    remembering->list({});
    const auto keyOf = [](const std::string& host) {
        return cacheEntry("1/0/_dk_https://" + host + " https://" + host + " https://" + host, "x");
    };
    const std::string ofA = "00000000000000aa_0";
    const std::string ofB = "00000000000000bb_s";
    fs::rename(home.write(at("new"), keyOf("d.com")), folder() / ofA);
    home.write(at(ofB), keyOf("a.com"));
    files->read.clear();
    EXPECT_EQ(remembering->forget(only({"a.com"})), ForgetOutcome());
    EXPECT_EQ(std::set(files->read.begin(), files->read.end()), (std::set{ofA, ofB}));
    EXPECT_EQ(namesIn(folder()), (Lines{ofA, "00000000000000dd_0", "index", "index-dir"}));
    EXPECT_EQ(tests::inShort(remembering->list({})),
              (Lines{"d.com cachedFiles 1", "? cachedFiles 1"}));
}

TEST_P(Caches, aStoreThatWasNotAskedToRememberReadsAllAfresh) {
    const auto files = std::make_shared<tests::OldFiles>(home.manager);
    const auto plain = tests::storeAt(folderStores(home.folders, files), folder());
    plain->list({});
    const auto before = std::exchange(files->read, {});
    plain->list({});
    EXPECT_EQ(std::multiset(files->read.begin(), files->read.end()),
              std::multiset(before.begin(), before.end()));
}

TEST_P(Caches, everythingIsTheFolderItself) {
    inCache(GetParam())->forget(everything());
    EXPECT_FALSE(fs::exists(folder()));
}

TEST_P(Caches, theOlderFormatTellsNoSiteApart) {
    home.write(at("data_1"), "blocks");
    EXPECT_EQ(tests::inShort(inCache(GetParam())->list({})), (Lines{"? cachedFiles 8"}));
    EXPECT_EQ(inCache(GetParam())->forget(only({"a.com"})).kept.size(), 1U);
    EXPECT_TRUE(fs::exists(folder() / "00000000000000aa_0"));
    EXPECT_EQ(inCache(GetParam())->forget(allBut({"a.com"})), ForgetOutcome());
    EXPECT_FALSE(fs::exists(folder()));
}

TEST_P(Caches, aFolderOrLinkWithTheNameOfAnEntryIsNone) {
    home.folder.write("precious/file", "kept");
    fs::create_directory_symlink(home.folder / "precious", folder() / "00000000000000ee_0");
    fs::create_directories(folder() / "00000000000000ef_0");
    inCache(GetParam())->forget(allBut({"b.com"}));
    EXPECT_TRUE(fs::exists(folder() / "00000000000000ef_0"));
    EXPECT_TRUE(fs::exists(home.folder / "precious/file"));
}

INSTANTIATE_TEST_SUITE_P(Each, Caches,
                         testing::Values("Cache/Cache_Data", "Code Cache/js", "Code Cache/wasm",
                                         "Code Cache/webui_js"));

TEST_F(FolderStores, compiledScriptsUnderADigestGoWithTheLastWhoRefersToThem) {
    const std::string shared(64, 'A');
    const std::string lonely(64, '0');
    const std::string base = "cache:Code Cache/js/";
    home.write(base + "0000000000000001_0",
               cacheEntry("_keyhttps://www.a.com/x.js \nhttps://a.com/", "\x01" + shared));
    home.write(base + "0000000000000002_0",
               cacheEntry("_keyhttps://b.com/x.js \nhttps://b.com/", "\x01" + shared));
    home.write(base + "0000000000000003_0", cacheEntry(shared, "compiled"));
    home.write(base + "0000000000000004_0", cacheEntry(lonely, "compiled"));
    const auto here = inCache("Code Cache/js");
    EXPECT_EQ(tests::inShort(here->list({})),
              (Lines{"a.com cachedFiles 2", "b.com cachedFiles 2"}));
    here->forget(only({"a.com"}));
    EXPECT_EQ(namesIn(home.cache() / "Code Cache/js"),
              (Lines{"0000000000000002_0", "0000000000000003_0"}));
    here->forget(only({"b.com"}));
    EXPECT_EQ(namesIn(home.cache() / "Code Cache/js"), Lines());
}

TEST_F(FolderStores, whicheverOperationFailsTheNextRunDoesTheRest) {
    for (std::size_t fault = 1;; ++fault) {
        const tests::ChromiumHome other;
        other.write("IndexedDB/https_a.com_0.indexeddb.leveldb/file", "of a");
        other.write("IndexedDB/https_a.com_0.indexeddb.blob/1/file", "of a");
        other.write("cache:Cache/Cache_Data/00000000000000aa_0",
                    cacheEntry("1/0/_dk_https://a.com https://a.com https://a.com/x", "of a"));
        other.write("cache:Cache/Cache_Data/00000000000000bb_0",
                    cacheEntry("1/0/_dk_https://b.com https://b.com https://b.com/x", "of b"));
        const auto faulty =
            std::make_shared<tests::FaultyFileManager>(other.manager, tests::Fault{fault});
        try {
            for (const auto& each : folderStores(other.folders, faulty)) {
                each->forget(only({"a.com"}));
            }
        } catch (const fs::filesystem_error&) {
            EXPECT_FALSE(faulty->failed().empty());
        }
        for (const auto& each : folderStores(other.folders, other.manager)) {
            each->forget(only({"a.com"}));
        }
        EXPECT_EQ(other.filesWith("of a"), Lines()) << fault;
        EXPECT_EQ(other.filesWith("of b").size(), 1U) << fault;
        if (faulty->failed().empty()) {
            break;
        }
    }
}

}  // namespace
}  // namespace browsersweep
