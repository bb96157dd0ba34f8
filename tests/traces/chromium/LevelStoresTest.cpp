#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/traces/chromium/internal/LevelStores.h"

#include "tests/support/CacheEntry.h"
#include "tests/support/FaultyFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/LevelRecords.h"
#include "tests/support/SiteStores.h"

namespace browsersweep {
namespace {

using namespace std::string_literals;

namespace fs = std::filesystem;

using tests::allBut;
using tests::cacheEntry;
using tests::everything;
using tests::LevelRecords;
using tests::only;
using Lines = std::vector<std::string>;

class LevelStores : public testing::Test {
protected:
    std::shared_ptr<const TraceStore> store(const char* place) const {
        return tests::storeAt(levelStores(home.folders, home.manager), home.data() / place);
    }

    void write(const char* place, const LevelRecords& records) const {
        tests::writeLevelRecords(home.data() / place, records);
    }

    /** The records that are left; none where the folder is gone. */
    LevelRecords left(const char* place) const {
        const fs::path folder = home.data() / place;
        return fs::exists(folder) ? tests::readLevelRecords(folder) : LevelRecords();
    }

    LevelRecords leftAfter(const char* place, const LevelRecords& records,
                           const ForgetRequest& request) const {
        fs::remove_all(home.data() / place);
        write(place, records);
        EXPECT_EQ(store(place)->forget(request), ForgetOutcome());
        return left(place);
    }

    tests::ChromiumHome home;
};

/** These records alone. */
LevelRecords those(const LevelRecords& records, const std::set<std::string>& keys) {
    LevelRecords result;
    for (const std::string& key : keys) {
        result.emplace(key, records.at(key));
    }
    return result;
}

const LevelRecords localStorage{
    {"VERSION", "1"},
    {"META:https://www.a.com", "\x08\xca\xdf\xb9\xcf\xa3\xee\xef\x17\x10\x1a"s},
    {"METAACCESS:https://www.a.com", "\x08\xcb\xdf\xb9\xcf\xa3\xee\xef\x17"s},
    {"_https://www.a.com\0\x01item"s, "\x01secret of a"},
    {"_https://www.a.com\0\x01other"s, "\x01secret of a"},
    {"_https://b.com\0\x01item"s, "\x01of b"},
    {"_https://b.com/^0https://a.com\0\x01item"s, "\x01secret of a too"},
    {"_chrome-extension://abcdef\0\x01item"s, "\x01of an extension"},
    {"META:chrome-extension://abcdef", "\x08\x01"},
};

TEST_F(LevelStores, localStorageIsListedByItsKeysAndTellsWhenASiteWasUsed) {
    write("Local Storage/leveldb", localStorage);
    const auto before = home.names();
    const TraceListing listing = store("Local Storage/leveldb")->list({});
    EXPECT_EQ(tests::inShort(listing), (Lines{"a.com siteStorage 3", "b.com siteStorage 2"}));
    EXPECT_EQ(tests::hostsOf(listing), (std::set<std::string>{"a.com", "www.a.com", "b.com"}));
    ASSERT_TRUE(listing.bySite[0].lastUsed);
    EXPECT_NEAR(secondsSince1970(*listing.bySite[0].lastUsed), 1795347574.0, 100'000);
    EXPECT_TRUE(listing.bySite[0].size.byteCount.isApproximate);
    EXPECT_FALSE(listing.bySite[0].size.itemCount.isApproximate);
    EXPECT_EQ(home.names(), before);
    EXPECT_TRUE(fs::is_empty(home.manager->temporaryDirectory()));
}

TEST_F(LevelStores, localStorageOfASiteGoesWithWhatIsEmbeddedInItAndLeavesNoByte) {
    write("Local Storage/leveldb", localStorage);
    ASSERT_FALSE(home.filesWith("a.com").empty());
    EXPECT_EQ(store("Local Storage/leveldb")->forget(only({"a.com"})), ForgetOutcome());
    EXPECT_EQ(left("Local Storage/leveldb"),
              those(localStorage,
                    {"VERSION", "_https://b.com\0\x01item"s,
                     "_chrome-extension://abcdef\0\x01item"s, "META:chrome-extension://abcdef"}));
    EXPECT_EQ(home.filesWith("a.com"), Lines());
    EXPECT_EQ(home.filesWith("secret"), Lines());
}

TEST_F(LevelStores, localStorageOfExtensionsAndItsVersionStayAlways) {
    const std::set<std::string> always{"VERSION", "_chrome-extension://abcdef\0\x01item"s,
                                       "META:chrome-extension://abcdef"};
    EXPECT_EQ(leftAfter("Local Storage/leveldb", localStorage, everything()),
              those(localStorage, always));
    auto andOfB = always;
    andOfB.insert("_https://b.com\0\x01item"s);
    andOfB.insert("_https://b.com/^0https://a.com\0\x01item"s);
    EXPECT_EQ(leftAfter("Local Storage/leveldb", localStorage, allBut({"b.com"})),
              those(localStorage, andOfB));
}

const LevelRecords sessionStorage{
    {"version", "1"},
    {"next-map-id", "4"},
    {"namespace-1111_22-", ""},
    {"namespace-1111_22-https://www.a.com/", "0"},
    {"namespace-1111_22-https://b.com/", "2"},
    {"namespace-3333_44-https://b.com/", "2"},
    {"map-0-item", "secret"},
    {"map-2-item", "of b"},
    {"map-2-a-b", "of b"},
    {"map-3-item", "of nobody"},
};

TEST_F(LevelStores, mapsOfSessionStorageBelongToWhoNamesThem) {
    write("Session Storage", sessionStorage);
    EXPECT_EQ(tests::inShort(store("Session Storage")->list({})),
              (Lines{"a.com siteStorage 1", "b.com siteStorage 2"}));
    EXPECT_EQ(
        leftAfter("Session Storage", sessionStorage, only({"a.com"})),
        those(sessionStorage, {"version", "next-map-id", "namespace-1111_22-", "map-3-item",
                               "namespace-1111_22-https://b.com/",
                               "namespace-3333_44-https://b.com/", "map-2-item", "map-2-a-b"}));
    EXPECT_EQ(
        leftAfter("Session Storage", sessionStorage, allBut({"b.com"})),
        those(sessionStorage,
              {"version", "next-map-id", "namespace-1111_22-", "namespace-1111_22-https://b.com/",
               "namespace-3333_44-https://b.com/", "map-2-item", "map-2-a-b"}));
    EXPECT_EQ(leftAfter("Session Storage", sessionStorage, everything()), LevelRecords());
    EXPECT_FALSE(fs::exists(home.data() / "Session Storage"));
}

const LevelRecords fileSystem{
    {"LAST_PATH", "002"},
    {"ORIGIN:https_www.a.com_0", "001"},
    {"ORIGIN:https_b.com_0", "002"},
    {"ORIGIN:chrome-extension_abc_0", "003"},
    {"ORIGIN:https_hostile.com_0", "../../../precious"},
};

TEST_F(LevelStores, theFolderOfAnOriginGoesWithItsRecordAndNoOther) {
    home.folder.write("precious/file", "kept");
    for (const char* number : {"001", "002", "003"}) {
        home.write(std::string("File System/") + number + "/t/file", "12345");
    }
    write("File System/Origins", fileSystem);
    EXPECT_EQ(tests::inShort(store("File System/Origins")->list({})),
              (Lines{"a.com siteStorage 2", "b.com siteStorage 2", "hostile.com siteStorage 1"}));
    store("File System/Origins")->forget(only({"a.com", "hostile.com"}));
    EXPECT_EQ(left("File System/Origins"), those(fileSystem, {"LAST_PATH", "ORIGIN:https_b.com_0",
                                                              "ORIGIN:chrome-extension_abc_0"}));
    EXPECT_FALSE(fs::exists(home.data() / "File System/001"));
    store("File System/Origins")->forget(everything());
    EXPECT_EQ(left("File System/Origins"),
              those(fileSystem, {"LAST_PATH", "ORIGIN:chrome-extension_abc_0"}));
    EXPECT_FALSE(fs::exists(home.data() / "File System/002"));
    EXPECT_TRUE(fs::exists(home.data() / "File System/003/t/file"));
    EXPECT_TRUE(fs::exists(home.folder / "precious/file"));
}

TEST_F(LevelStores, aFileSystemWithoutExtensionsGoesWhole) {
    home.write("File System/001/t/file", "1");
    home.write("File System/009/file", "of nobody");
    write("File System/Origins", those(fileSystem, {"LAST_PATH", "ORIGIN:https_www.a.com_0"}));
    store("File System/Origins")->forget(everything());
    EXPECT_TRUE(fs::is_empty(home.data() / "File System"));
}

const LevelRecords serviceWorkers{
    {"INITDATA_DB_VERSION", "2"},
    {"INITDATA_NEXT_REGISTRATION_ID", "3"},
    {"INITDATA_UNIQUE_ORIGIN:https://www.a.com/", ""},
    {"INITDATA_UNIQUE_ORIGIN:https://b.com/", ""},
    {"REG:https://www.a.com/\0"s + "1", "\x08\x01\x12\x04http \x07"s},
    {"REG:https://b.com/\0"s + "2", "\x08\x02\x12\x04http \x02"s},
    {"REGID_TO_ORIGIN:1", "https://www.a.com/"},
    {"REGID_TO_ORIGIN:2", "https://b.com/"},
    {"REG_HAS_USER_DATA:Sync\0"s + "1", ""},
    {"REG_HAS_USER_DATA:Sync\0"s + "2", ""},
    {"REG_USER_DATA:1\0Sync"s, "x"},
    {"REG_USER_DATA:2\0Sync"s, "x"},
    {"RES:7\0"s + "0", "https://cdn.c.com/worker.js"},
    {"RES:2\0"s + "4", "https://b.com/sw.js"},
};

class ServiceWorkers : public LevelStores {
protected:
    void SetUp() override {
        write(place, serviceWorkers);
        home.write("Service Worker/ScriptCache/00000000000000aa_0", cacheEntry("0", "script of a"));
        home.write("Service Worker/ScriptCache/00000000000000aa_1", cacheEntry("0", "code of a"));
        home.write("Service Worker/ScriptCache/00000000000000bb_0", cacheEntry("4", "script of b"));
        home.write("Service Worker/ScriptCache/index-dir/the-real-index", "digests");
    }

    const char* place = "Service Worker/Database";
};

TEST_F(ServiceWorkers, areListedByTheirOriginWithTheirScripts) {
    const TraceListing listing = store(place)->list({});
    EXPECT_EQ(tests::inShort(listing), (Lines{"a.com serviceWorkers 1", "b.com serviceWorkers 1"}));
    const auto scripts =
        cacheEntry("0", "script of a").size() + cacheEntry("0", "code of a").size();
    EXPECT_GT(listing.bySite[0].size.byteCount.value, static_cast<std::int64_t>(scripts));
}

TEST_F(ServiceWorkers, noRecordOfARegistrationOutlivesItAndThoseOfOtherSitesStay) {
    store(place)->forget(only({"a.com"}));
    EXPECT_EQ(left(place),
              those(serviceWorkers,
                    {"INITDATA_DB_VERSION", "INITDATA_NEXT_REGISTRATION_ID",
                     "INITDATA_UNIQUE_ORIGIN:https://b.com/", "REG:https://b.com/\0"s + "2",
                     "REGID_TO_ORIGIN:2", "REG_HAS_USER_DATA:Sync\0"s + "2",
                     "REG_USER_DATA:2\0Sync"s, "RES:2\0"s + "4"}));
    EXPECT_EQ(home.filesWith("of a"), Lines());
    EXPECT_EQ(home.filesWith("script of b").size(), 1U);
    EXPECT_FALSE(fs::exists(home.data() / "Service Worker/ScriptCache/index-dir/the-real-index"));
}

TEST_F(ServiceWorkers, withoutAnyOfThemNeitherTheDatabaseNorTheScriptsStay) {
    store(place)->forget(everything());
    EXPECT_TRUE(fs::is_empty(home.data() / "Service Worker"));
}

TEST_F(ServiceWorkers, thoseOfExtensionsStay) {
    LevelRecords records = serviceWorkers;
    records.emplace("REG:chrome-extension://abc/\0"s + "5", "\x08\x05 \x05"s);
    records.emplace("REG_HAS_USER_DATA:Sync\0"s + "5", "");
    records.emplace("RES:5\0"s + "8", "chrome-extension://abc/sw.js");
    home.write("Service Worker/ScriptCache/00000000000000cc_0", cacheEntry("8", "of extension"));
    EXPECT_EQ(leftAfter(place, records, everything()),
              those(records, {"INITDATA_DB_VERSION", "INITDATA_NEXT_REGISTRATION_ID",
                              "REG:chrome-extension://abc/\0"s + "5",
                              "REG_HAS_USER_DATA:Sync\0"s + "5", "RES:5\0"s + "8"}));
    EXPECT_EQ(home.filesWith("of extension").size(), 1U);
    EXPECT_EQ(home.filesWith("script of").size(), 0U);
}

TEST_F(LevelStores, notificationsBelongToTheOriginInTheirKeys) {
    const LevelRecords records{
        {"DATA:https_www.a.com_0\0p#1"s, "title of a"},
        {"DATA:https_b.com_0\0p#1"s, "title of b"},
        {"DATA:https://c.com/\0p#1"s, "title of c"},
        {"NEXT_NOTIFICATION_ID", "3"},
    };
    write("Platform Notifications", records);
    EXPECT_EQ(tests::inShort(store("Platform Notifications")->list({})),
              (Lines{"a.com siteStorage 1", "b.com siteStorage 1", "c.com siteStorage 1"}));
    EXPECT_EQ(leftAfter("Platform Notifications", records, only({"a.com", "c.com"})),
              those(records, {"DATA:https_b.com_0\0p#1"s, "NEXT_NOTIFICATION_ID"}));
    EXPECT_EQ(leftAfter("Platform Notifications", records, everything()), LevelRecords());
}

// The digests of www.a.com, b.com and unknown.com.
const LevelRecords characteristics{
    {"database_metadata", "1"},
    {"30f4a7bbefe70d75616707c80921a7e8", "\x08\xb2\xa9\x8b\xd8\x06"s},
    {"79a290670239a8b19fb119b375f5dfa3", "b"},
    {"ffffffffffffffffffffffffffffffff", "unknown"},
};

const KnownHosts known{"www.a.com", "m.b.com"};  // b.com is known with it

TEST_F(LevelStores, characteristicsAreToldByTheHostsThatAreKnown) {
    write("Site Characteristics Database", characteristics);
    const auto here = store("Site Characteristics Database");
    EXPECT_TRUE(here->needsKnownHosts());
    EXPECT_EQ(tests::inShort(here->list({})), Lines{"? predictions 3"});
    const TraceListing listing = here->list(known);
    EXPECT_EQ(tests::inShort(listing),
              (Lines{"a.com predictions 1", "b.com predictions 1", "? predictions 1"}));
    EXPECT_EQ(listing.bySite[0].lastUsed, dateFrom1970Seconds(1795347634));
}

TEST_F(LevelStores, characteristicsOfUnknownHostsStayAreToldAndGoWithWhatIsMixed) {
    const char* const place = "Site Characteristics Database";
    write(place, characteristics);
    ForgetRequest request = only({"a.com"}, known);
    const ForgetOutcome outcome = store(place)->forget(request);
    ASSERT_EQ(outcome.kept.size(), 1U);
    EXPECT_EQ(outcome.kept[0].what, home.data() / place);
    LevelRecords expected = characteristics;
    expected.erase("30f4a7bbefe70d75616707c80921a7e8");
    EXPECT_EQ(left(place), expected);
    request.takesMixed = true;
    EXPECT_EQ(store(place)->forget(request), ForgetOutcome());
    EXPECT_EQ(left(place),
              those(characteristics, {"database_metadata", "79a290670239a8b19fb119b375f5dfa3"}));
    EXPECT_EQ(leftAfter(place, characteristics, allBut({"b.com"}, known)),
              those(characteristics, {"database_metadata", "79a290670239a8b19fb119b375f5dfa3"}));
    EXPECT_EQ(leftAfter(place, characteristics, everything()), LevelRecords());
}

TEST_F(LevelStores, onlyLevelDatabasesThatHoldTheKindAreTouched) {
    write("Local Storage/leveldb", localStorage);
    ForgetRequest request = everything();
    request.kinds = {TraceKind::cookies};
    const auto before = home.folder.snapshot();
    for (const auto& each : levelStores(home.folders, home.manager)) {
        EXPECT_EQ(each->forget(request), ForgetOutcome());
    }
    EXPECT_EQ(home.folder.snapshot(), before);
}

TEST_F(LevelStores, whatIsMissingHoldsNothingAndNothingIsMade) {
    for (const auto& each : levelStores(home.folders, home.manager)) {
        EXPECT_EQ(each->list({}), TraceListing());
        EXPECT_EQ(each->forget(everything()), ForgetOutcome());
    }
    EXPECT_TRUE(home.names().empty());
}

TEST_F(LevelStores, whatAnInterruptedRunLeftBesideGoesWithTheNext) {
    write("Local Storage/leveldb", localStorage);
    const std::string digits(32, 'a');
    home.write("Local Storage/leveldb.browsersweep-" + digits + "/000003.log", "secret");
    home.write("Local Storage/other.browsersweep-" + digits + "/file", "not ours");
    store("Local Storage/leveldb")->forget(only({"c.com"}));
    EXPECT_FALSE(fs::exists(home.data() / ("Local Storage/leveldb.browsersweep-" + digits)));
    EXPECT_TRUE(fs::exists(home.data() / ("Local Storage/other.browsersweep-" + digits)));
    EXPECT_EQ(left("Local Storage/leveldb"), localStorage);
}

TEST_F(LevelStores, aDamagedDatabaseIsAnErrorAndStaysAsItIs) {
    write("Local Storage/leveldb", localStorage);
    home.write("Local Storage/leveldb/CURRENT", "MANIFEST-999999\n");
    const auto before = home.names();
    EXPECT_ANY_THROW(store("Local Storage/leveldb")->list({}));
    EXPECT_ANY_THROW(store("Local Storage/leveldb")->forget(everything()));
    EXPECT_EQ(home.names(), before);
}

TEST_F(ServiceWorkers, whicheverOperationFailsTheNextRunDoesTheRest) {
    for (std::size_t fault = 1;; ++fault) {
        const tests::ChromiumHome other;
        fs::copy(home.data(), other.data(),
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
        const auto faulty =
            std::make_shared<tests::FaultyFileManager>(other.manager, tests::Fault{fault});
        try {
            tests::storeAt(levelStores(other.folders, faulty), other.data() / place)
                ->forget(only({"a.com"}));
        } catch (const fs::filesystem_error&) {
            EXPECT_FALSE(faulty->failed().empty());
        }
        tests::storeAt(levelStores(other.folders, other.manager), other.data() / place)
            ->forget(only({"a.com"}));
        EXPECT_EQ(other.filesWith("of a"), Lines()) << fault;
        EXPECT_EQ(other.filesWith("a.com"), Lines()) << fault;
        EXPECT_EQ(tests::readLevelRecords(other.data() / place).size(), 8U) << fault;
        EXPECT_EQ(other.filesWith("script of b").size(), 1U) << fault;
        if (faulty->failed().empty()) {
            break;
        }
    }
}

/** Whether everything in a store was forgotten before it was stopped, which is after so many files.
 */
bool forgetsBefore(std::uint64_t files, const tests::ChromiumHome& home, const fs::path& place) {
    const auto control = std::make_shared<OperationControl>(
        [files](const OperationProgress& done) { return done.files >= files; });
    const auto stopping = FileManager::forHome(home.folder.path(), control);
    try {
        tests::storeAt(levelStores(home.folders, stopping), place)->forget(everything());
        return true;
    } catch (const OperationCancelled&) {
        return false;
    }
}

TEST(LevelStore, whatIsStoppedAtAnyFileIsGoneAfterTheNextRun) {
    for (std::uint64_t files = 1;; ++files) {
        SCOPED_TRACE(files);
        const tests::ChromiumHome home;
        const fs::path place = home.data() / "File System/Origins";
        tests::writeLevelRecords(place, {{"LAST_PATH", "0"}, {"ORIGIN:https_www.a.com_0", "000"}});
        // A file system in memory lists the newest file first, and it goes first.
        fs::rename(place / "CURRENT", place / "older");
        fs::copy_file(place / "older", place / "CURRENT");
        fs::remove(place / "older");
        const bool isDone = forgetsBefore(files, home, place);
        const auto store = tests::storeAt(levelStores(home.folders, home.manager), place);
        EXPECT_NO_THROW(store->list({}));
        EXPECT_NO_THROW(store->forget(everything()));
        EXPECT_EQ(home.filesWith("www.a.com"), Lines());
        if (isDone) {
            EXPECT_GT(files, 4U);
            break;
        }
    }
}

}  // namespace
}  // namespace browsersweep
