#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/firefox/internal/FirefoxCacheStore.h"
#include "browsersweep/traces/firefox/internal/FirefoxFileStores.h"

#include "tests/support/Bytes.h"
#include "tests/support/OldFiles.h"
#include "tests/support/SiteStores.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::allBut;
using tests::everything;
using tests::only;
using Lines = std::vector<std::string>;

std::string number(std::uint32_t value) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += static_cast<char>(value >> static_cast<unsigned>(shift));
    }
    return text;
}

/** A file of the cache: contents, digests, numbers with the version first, key, and where it is. */
std::string cacheFile(const std::string& key, const std::string& contents, bool hasFlags = true) {
    const std::string digests(4 + 2 * ((contents.size() + 262143) / 262144), 'd');
    std::string head = number(hasFlags ? 3 : 1);
    for (int index = 0; index < 5; ++index) {
        head += number(77);
    }
    head += number(static_cast<std::uint32_t>(key.size())) + (hasFlags ? number(0) : "");
    return contents + digests + head + key + std::string(1, '\0') + "element" +
           number(static_cast<std::uint32_t>(contents.size()));
}

/** The key of an entry with this file, as far as it is found. */
std::string keyOf(const std::string& file) {
    const Bytes bytes = tests::bytes(file);
    const std::size_t length = lengthOfFirefoxCacheMetadata(bytes, bytes.size());
    return keyInFirefoxCacheMetadata(BytesView(bytes).last(length));
}

/** The profile is of Firefox, but its folders are as good as those of any other. */
class FirefoxFileStores : public testing::Test {
protected:
    std::shared_ptr<const TraceStore> store(const fs::path& path) const {
        return tests::storeAt(firefoxFileStores(home.folders, home.manager), path);
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

TEST_F(FirefoxFileStores, foldersOfStorageGoByBothSitesInTheirNames) {
    const std::string embedded = "https+++cdn.c.com^partitionKey=%28https%2Ca.com%29";
    for (const std::string place : {"storage/default", "storage/temporary", "storage/private"}) {
        for (const std::string& name :
             {std::string("https+++www.a.com"), std::string("http+++b.com+8080"), embedded,
              std::string("moz-extension+++abc"), std::string("about+home"),
              std::string("file++++home")}) {
            home.write(place + "/" + name + "/ls/data.sqlite", "12345");
        }
        const auto here = store(home.data() / place);
        const TraceListing listing = here->list({});
        EXPECT_EQ(tests::inShort(listing),
                  (Lines{"a.com siteStorage 2", "b.com siteStorage 1", "c.com siteStorage 1"}));
        EXPECT_EQ(listing.bySite[0].size, (CleanableDataSize{2, 10}));
        EXPECT_EQ(here->forget(only({"c.com"})), ForgetOutcome());
        EXPECT_EQ(here->forget(allBut({"b.com"})), ForgetOutcome());
        EXPECT_EQ(
            namesIn(home.data() / place),
            (Lines{"about+home", "file++++home", "http+++b.com+8080", "moz-extension+++abc"}));
        EXPECT_EQ(here->forget(everything()), ForgetOutcome());
        EXPECT_EQ(namesIn(home.data() / place),
                  (Lines{"about+home", "file++++home", "moz-extension+++abc"}));
    }
}

const std::string workerOfA = "\nhttps://www.a.com/\nhttps://www.a.com/sw.js\ntrue\n0\n#\n";
const std::string workerOfB =
    "^partitionKey=%28https%2Cc.com%29\nhttps://b.com/\nhttps://b.com/sw.js\ntrue\n#\n";
const std::string workerOfExtension = "\nmoz-extension://abc/\nmoz-extension://abc/sw.js\n#\n";

class WorkerList : public FirefoxFileStores {
protected:
    std::string leftAfter(const std::string& text, const ForgetRequest& request) const {
        const fs::path file = home.write("serviceworker.txt", text);
        EXPECT_EQ(store(file)->forget(request), ForgetOutcome());
        return tests::readFile(file);
    }
};

TEST_F(WorkerList, recordsGoAndTheOthersKeepEveryByte) {
    const std::string all = "12\n" + workerOfA + workerOfB + workerOfExtension;
    const fs::path file = home.write("serviceworker.txt", all);
    EXPECT_EQ(
        tests::inShort(store(file)->list({})),
        (Lines{"a.com serviceWorkers 1", "b.com serviceWorkers 1", "c.com serviceWorkers 1"}));
    EXPECT_EQ(leftAfter(all, only({"a.com"})), "12\n" + workerOfB + workerOfExtension);
    EXPECT_EQ(leftAfter(all, only({"c.com"})), "12\n" + workerOfA + workerOfExtension);
    EXPECT_EQ(leftAfter(all, allBut({"a.com"})), "12\n" + workerOfA + workerOfExtension);
    EXPECT_EQ(leftAfter(all, everything()), "12\n" + workerOfExtension);
}

TEST_F(WorkerList, aListThatWasCutShortIsReadAsFarAsItGoes) {
    EXPECT_EQ(leftAfter("", everything()), "");
    EXPECT_EQ(leftAfter("12", everything()), "12");
    EXPECT_EQ(leftAfter("12\n" + workerOfA.substr(0, 25), only({"b.com"})),
              "12\n" + workerOfA.substr(0, 25));
    EXPECT_EQ(leftAfter("12\n" + workerOfB + workerOfA.substr(0, 25), only({"a.com"})),
              "12\n" + workerOfB);
}

TEST_F(FirefoxFileStores, theKeyOfACachedFileIsFoundBehindItsContents) {
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{262144}, std::size_t{262145}}) {
        const std::string contents(size, 'x');
        for (const bool hasFlags : {true, false}) {
            EXPECT_EQ(keyOf(cacheFile("a,:key", contents, hasFlags)), "a,:key");
        }
    }
}

TEST_F(FirefoxFileStores, aCachedFileThatWasCutShortHasNoKey) {
    const std::string whole = cacheFile("O^partitionKey=%28https%2Ca.com%29,:https://a.com/", "1");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::string found = keyOf(whole.substr(0, size));
        EXPECT_TRUE(found.empty() || whole.find(found) == std::string::npos ||
                    hostsInFirefoxCacheKey(found).empty());
    }
    EXPECT_EQ(keyOf(std::string(100, '\xFF')), "");
}

TEST_F(FirefoxFileStores, nothingIsReadOfACachedFileWhoseLastPartIsLongerThanAnyRealOne) {
    constexpr std::uint64_t most = std::uint64_t{16} << 20;
    const Bytes nothingBefore(4);
    EXPECT_EQ(lengthOfFirefoxCacheMetadata(nothingBefore, most), most);
    EXPECT_EQ(lengthOfFirefoxCacheMetadata(nothingBefore, most + 1), 0U);
    EXPECT_EQ(lengthOfFirefoxCacheMetadata(nothingBefore, ~std::uint64_t{0}), 0U);
    EXPECT_EQ(lengthOfFirefoxCacheMetadata(tests::bytes(number(8)), 7), 0U);
    EXPECT_EQ(lengthOfFirefoxCacheMetadata({}, 0), 0U);
}

class FirefoxCache : public FirefoxFileStores {
protected:
    void SetUp() override {
        home.write("cache:cache2/entries/AA",
                   cacheFile("O^partitionKey=%28https%2Ca.com%29,:https://cdn.c.com/x", "of a"));
        home.write("cache:cache2/entries/AB", cacheFile("a,:https://www.a.com/x", "of a"));
        home.write("cache:cache2/entries/BB", cacheFile("O^partitionKey=%28https%2Cb.com%29,a,:"
                                                        "https://b.com/x",
                                                        "of b"));
        home.write("cache:cache2/entries/BC", cacheFile(":https://b.com/?q=www.a.com%2Fx", "of b"));
        home.write("cache:cache2/entries/DD", "damaged");
        home.write("cache:cache2/entries/DE", cacheFile("a,:about:home", "shows www.a.com"));
        home.write("cache:cache2/index", "digests");
        home.write("cache:cache2/doomed/1", "going");
        home.write("cache:cache2/trash123/1", "going");
    }

    fs::path folder = home.cache() / "cache2";
};

TEST_F(FirefoxCache, isListedByBothSitesInItsKeys) {
    const auto before = home.folder.snapshot();
    EXPECT_EQ(tests::inShort(store(folder)->list({})),
              (Lines{"a.com cachedFiles 2", "b.com cachedFiles 2", "c.com cachedFiles 1",
                     "? cachedFiles 2"}));
    EXPECT_EQ(home.folder.snapshot(), before);
}

TEST_F(FirefoxCache, entriesThatNameASiteGoAndWithThemTheIndexAndWhatIsOnItsWayOut) {
    EXPECT_EQ(store(folder)->forget(only({"a.com"})), ForgetOutcome());
    EXPECT_EQ(namesIn(folder), Lines{"entries"});
    EXPECT_EQ(namesIn(folder / "entries"), Lines{"BB"});
    EXPECT_EQ(home.filesWith("a.com"), Lines());
    store(folder)->forget(allBut({"b.com"}));
    EXPECT_EQ(namesIn(folder / "entries"), Lines{"BB"});
    store(folder)->forget(everything());
    EXPECT_FALSE(fs::exists(folder));
}

TEST_F(FirefoxCache, anOperationReadsTheKeyOfAnEntryOnceUnlessAnotherOneTakesItsPlace) {
    const auto files = std::make_shared<tests::OldFiles>(home.manager);
    const FirefoxCacheStore plain(folder, files);
    const auto remembering = plain.remembering();
    remembering->list({});
    EXPECT_EQ(files->read.size(), 6U);
    const auto file = home.write("cache:cache2/new", cacheFile("a,:https://c.com/", "of c"));
    fs::rename(file, folder / "entries/AB");
    files->read.clear();
    EXPECT_EQ(remembering->forget(only({"a.com"})), ForgetOutcome());
    EXPECT_EQ(files->read, Lines{"AB"});
    EXPECT_EQ(namesIn(folder / "entries"), (Lines{"AB", "BB"}));
    EXPECT_EQ(tests::inShort(remembering->list({})),
              (Lines{"b.com cachedFiles 1", "c.com cachedFiles 1"}));
    EXPECT_EQ(files->read, Lines{"AB"});
}

TEST_F(FirefoxCache, aLinkAmongTheEntriesIsCountedAndGoesUnread) {
    home.folder.write("precious/file", "kept");
    fs::create_symlink(home.folder / "precious/file", folder / "entries/EE");
    const auto listed = store(folder)->list({}).notBySite;
    ASSERT_EQ(listed.size(), 1U);
    EXPECT_EQ(listed[0].size.itemCount.value, 3);
    EXPECT_TRUE(listed[0].goesAlong);
    store(folder)->forget(only({"c.com"}));
    EXPECT_FALSE(fs::is_symlink(folder / "entries/EE"));
    EXPECT_TRUE(fs::exists(home.folder / "precious/file"));
}

/** Places that tell no site apart: each is a row of a table. */
const std::vector<std::pair<const char*, TraceKind>> mixedPlaces{
    {"sessionstore.jsonlz4", TraceKind::openTabs},
    {"sessionstore-backups/previous.jsonlz4", TraceKind::openTabs},
    {"notificationstore.json", TraceKind::siteStorage},
    {"cache:activity-stream.shortcut_cache.json", TraceKind::predictions},
};

TEST_F(FirefoxFileStores, whatTellsNoSiteApartIsToldAndGoesWithEverythingOrWhereItIsAskedFor) {
    for (const auto& [place, kind] : mixedPlaces) {
        ForgetRequest mixed = only({"a.com"});
        mixed.takesMixed = true;
        for (const ForgetRequest& going : {everything(), allBut({"b.com"}), mixed}) {
            const fs::path file = home.write(place, "12345");
            std::vector<MixedTrace> listed;
            std::vector<KeptTrace> kept;
            for (const auto& each : firefoxFileStores(home.folders, home.manager)) {
                const auto mixedTraces = each->list({}).notBySite;
                listed.insert(listed.end(), mixedTraces.begin(), mixedTraces.end());
                const auto keptTraces = each->forget(only({"a.com"})).kept;
                kept.insert(kept.end(), keptTraces.begin(), keptTraces.end());
            }
            ASSERT_EQ(listed.size(), 1U) << place;
            EXPECT_EQ(listed[0].size, (CleanableDataSize{1, 5}));
            EXPECT_EQ(listed[0].kind, kind);
            ASSERT_EQ(kept.size(), 1U) << place;
            EXPECT_EQ(kept[0].why, listed[0].meaning);
            EXPECT_TRUE(fs::exists(file));
            for (const auto& each : firefoxFileStores(home.folders, home.manager)) {
                EXPECT_EQ(each->forget(going), ForgetOutcome());
            }
            EXPECT_FALSE(fs::exists(file)) << place;
        }
    }
}

TEST_F(FirefoxFileStores, whatFirefoxHasBegunToDeleteGoesWithAnySite) {
    home.write("storage/to-be-removed/123/file", "1");
    for (const auto& each : firefoxFileStores(home.folders, home.manager)) {
        EXPECT_EQ(each->forget(only({"a.com"})), ForgetOutcome());
    }
    EXPECT_FALSE(fs::exists(home.data() / "storage/to-be-removed"));
}

}  // namespace
}  // namespace browsersweep
