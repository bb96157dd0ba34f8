#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/chromium/internal/ChromiumDatabases.h"
#include "browsersweep/traces/chromium/internal/ChromiumRowFiles.h"

#include "tests/support/ChromiumSchemas.h"
#include "tests/support/Database.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/PlantedRows.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::Database;
using tests::TemporaryFolder;

/** The folders and files that belong to rows of two databases. */
class ChromiumRowFiles : public testing::Test {
protected:
    ChromiumRowFiles() { home_.makeFolder("tmp"); }

    std::shared_ptr<const TraceStore> store(const std::string& file) const {
        for (const auto& each : databaseStores(home_ / "profile", manager_)) {
            if (each->path() == home_ / "profile" / file) {
                return each;
            }
        }
        return nullptr;
    }

    void forget(const std::string& file, const SiteSelection& selection) const {
        EXPECT_EQ(store(file)->forget({selection, {}, false, false, {}}), ForgetOutcome{});
    }

    /** The names of what a folder holds. */
    std::set<std::string> namesIn(const fs::path& folder) const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(home_ / folder)) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    void makeBuckets() const {
        const Database database =
            tests::makeChromiumDatabase(home_ / "profile", "WebStorage/QuotaManager");
        tests::plant(database, {"buckets|id={n}|storage_key='https://{s}/'|name='x'"}, "gone.test",
                     1);
        tests::plant(database, {"buckets|id={n}|storage_key='https://{s}/'|name='x'"}, "kept.test",
                     12);
        tests::plant(database, {"buckets|id={n}|storage_key='chrome-extension://abc/'|name='x'"},
                     "", 3);
        for (const char* folder : {"1", "12", "3", "77", "other"}) {
            home_.write(fs::path("profile/WebStorage") / folder / "IndexedDB/000003.log", "12345");
        }
    }

    void makeDictionaries() const {
        const Database database =
            tests::makeChromiumDatabase(home_ / "profile", "Shared Dictionary/db");
        tests::plant(database,
                     {"dictionaries|host='{s}'|url='https://{s}/'|token_high=1|token_low=-1"},
                     "gone.test", 1);
        tests::plant(database,
                     {"dictionaries|host='{s}'|url='https://{s}/'|token_high=2|token_low=2"},
                     "kept.test", 2);
        const std::string start =
            std::string("\x30\x5c\x72\xa7\x1b\x6d\xfb\xfc\5\0\0\0\x20\0\0\0", 16) +
            std::string(8, 'd');
        home_.write("profile/Shared Dictionary/cache/f956b5e5e4aa900c_0",
                    start + "0000000000000001FFFFFFFFFFFFFFFFbody");
        home_.write("profile/Shared Dictionary/cache/9f43641d882ce100_0",
                    start + "00000000000000020000000000000002body");
        home_.write("profile/Shared Dictionary/cache/7b864b8d880405aa_0", "damaged");
        home_.write("profile/Shared Dictionary/cache/index", "kept");
        home_.write("profile/Shared Dictionary/cache/index-dir/the-real-index", "digests");
    }

    TemporaryFolder home_{tests::folderInMemory()};
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);
};

TEST_F(ChromiumRowFiles, aBucketsFolderGoesWithItsRow) {
    makeBuckets();
    forget("WebStorage/QuotaManager", SiteSelection::only({*Site::ofHost("gone.test")}));
    EXPECT_EQ(namesIn("profile/WebStorage"),
              (std::set<std::string>{"QuotaManager", "12", "3", "77", "other"}));
}

TEST_F(ChromiumRowFiles, foldersWithoutARowGoWithEverythingAndThoseOfExtensionsStay) {
    makeBuckets();
    forget("WebStorage/QuotaManager", SiteSelection::everything());
    EXPECT_EQ(namesIn("profile/WebStorage"), (std::set<std::string>{"QuotaManager", "3", "other"}));
    home_.write("profile/WebStorage/78/IndexedDB/file", "");
    forget("WebStorage/QuotaManager", SiteSelection::everything());
    EXPECT_EQ(namesIn("profile/WebStorage"), (std::set<std::string>{"QuotaManager", "3", "other"}));
}

TEST_F(ChromiumRowFiles, whatLiesInABucketsFolderIsCounted) {
    makeBuckets();
    const auto listing = store("WebStorage/QuotaManager")->list({});
    ASSERT_EQ(listing.bySite.size(), 2U);
    EXPECT_EQ(listing.bySite.front().size.itemCount, CleanableDataSize::Measurement(2));
    EXPECT_GT(listing.bySite.front().size.byteCount.value, 5);
    EXPECT_EQ(
        store("WebStorage/QuotaManager")->places(),
        (std::vector{home_ / "profile/WebStorage/QuotaManager", home_ / "profile/WebStorage"}));
}

TEST_F(ChromiumRowFiles, aDictionarysEntryGoesWithItsRowAndTheIndexOfAll) {
    makeDictionaries();
    const std::string cache = "profile/Shared Dictionary/cache";
    forget("Shared Dictionary/db", SiteSelection::only({*Site::ofHost("other.test")}));
    EXPECT_EQ(namesIn(cache + "/index-dir"), std::set<std::string>{"the-real-index"});
    forget("Shared Dictionary/db", SiteSelection::only({*Site::ofHost("gone.test")}));
    EXPECT_EQ(namesIn(cache), (std::set<std::string>{"9f43641d882ce100_0", "7b864b8d880405aa_0",
                                                     "index", "index-dir"}));
    EXPECT_EQ(namesIn(cache + "/index-dir"), std::set<std::string>{});
    forget("Shared Dictionary/db", SiteSelection::everything());
    EXPECT_EQ(namesIn(cache), (std::set<std::string>{"index", "index-dir"}));
}

}  // namespace
}  // namespace browsersweep
