#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/chromium/internal/ChromiumDatabases.h"
#include "browsersweep/traces/chromium/internal/LevelStores.h"

#include "tests/support/ChromiumSchemas.h"
#include "tests/support/Database.h"
#include "tests/support/DatabaseContents.h"
#include "tests/support/LevelRecords.h"
#include "tests/support/PlantedRows.h"
#include "tests/support/SiteStores.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/linux/OwnMounts.h"

namespace browsersweep {
namespace {

constexpr std::size_t megabyte = std::size_t{1} << 20;

/** Forgets a site in three megabytes of history on a disk of this size, and says how that went. */
void forgetOnDisk(std::size_t size, bool isWithoutRemains) {
    const tests::TemporaryFolder home;
    const std::filesystem::path profile = home.makeFolder("profile");
    const auto status = tests::runWithOwnMounts([&] {
        tests::mountDisk(profile, size);
        {
            const tests::Database database = tests::makeChromiumDatabase(profile, "History");
            tests::plant(database, {"urls|url='https://gone.test/'|title='gone.test'"}, "", 0);
            database.execute(
                "INSERT INTO urls (url, title, last_visit_time) VALUES"
                " ('https://kept.test/', hex(zeroblob(1500000)), 0)");
        }
        const TraceStores stores = databaseStores(profile, FileManager::forHome(home.path()));
        const auto only = SiteSelection::only({*Site::ofHost("gone.test")});
        EXPECT_EQ(stores.front()->forget({only, {}, false, false, {}}),
                  (ForgetOutcome{{}, isWithoutRemains}));
        EXPECT_EQ(tests::filesHolding(profile / "History", "gone.test"),
                  std::vector<std::string>{});
        EXPECT_EQ(tests::Database(profile / "History").number("SELECT COUNT(*) FROM urls"), 1);
    });
    if (!status) {
        GTEST_SKIP() << "this process may not mount anything";
    }
    EXPECT_EQ(*status, 0);
}

using namespace std::string_literals;

/** A store of LevelDB in which two sites have much that cannot be compressed. */
class LevelStoreWithLittleRoom : public testing::Test {
protected:
    LevelStoreWithLittleRoom() {
        std::mt19937 random(1);  // NOLINT: the same each time
        for (const char* site : {"gone", "kept"}) {
            std::string value = "\x01";
            for (std::size_t index = 0; index < megabyte / 2; ++index) {
                value += static_cast<char>(random());
            }
            records.emplace("_https://"s + site + ".test\0\x01item"s, value);
        }
    }

    std::shared_ptr<const TraceStore> store() const {
        return tests::storeAt(levelStores(home.folders, home.manager), folder);
    }

    /** Does something where the temporary folder has no room. */
    void runWithFullTemporaryFolder(const std::function<void()>& body) const {
        const auto status = tests::runWithOwnMounts([&] {
            tests::mountDisk(home.manager->temporaryDirectory(), megabyte / 16);
            body();
            EXPECT_TRUE(std::filesystem::is_empty(home.manager->temporaryDirectory()));
        });
        if (!status) {
            GTEST_SKIP() << "this process may not mount anything";
        }
        EXPECT_EQ(*status, 0);
    }

    /** Writes the store to a small disk, and takes all that is left of that. */
    void fillDisk() const {
        tests::mountDisk(home.folder / "Library", 4 * megabyte);
        tests::writeLevelRecords(folder, records);
        std::ofstream filling(home.folder / "Library/filling");
        while (filling.write(std::string(4096, 'x').data(), 4096).flush()) {
        }
    }

    tests::ChromiumHome home;
    std::filesystem::path folder = home.data() / "Local Storage/leveldb";
    tests::LevelRecords records;
};

TEST_F(LevelStoreWithLittleRoom, inTheTemporaryFolderIsListedAndForgottenAllTheSame) {
    tests::writeLevelRecords(folder, records);
    runWithFullTemporaryFolder([this] {
        EXPECT_EQ(tests::inShort(store()->list({})),
                  (std::vector<std::string>{"gone.test siteStorage 1", "kept.test siteStorage 1"}));
        EXPECT_EQ(store()->forget(tests::only({"gone.test"})), ForgetOutcome());
        records.erase(records.begin());
        EXPECT_EQ(tests::readLevelRecords(folder), records);
        EXPECT_EQ(home.filesWith("gone.test"), std::vector<std::string>{});
    });
}

TEST_F(LevelStoreWithLittleRoom, needsNoneWhereNothingStays) {
    runWithFullTemporaryFolder([this] {
        fillDisk();
        EXPECT_EQ(store()->forget(tests::everything()), ForgetOutcome());
        EXPECT_FALSE(std::filesystem::exists(folder));
    });
}

TEST_F(LevelStoreWithLittleRoom, besideItselfIsSaidOfItAndItStays) {
    runWithFullTemporaryFolder([this] {
        fillDisk();
        const auto before = home.names();
        try {
            store()->forget(tests::only({"gone.test"}));
            ADD_FAILURE() << "there was room";
        } catch (const std::filesystem::filesystem_error& error) {
            EXPECT_EQ(error.code(), std::errc::no_space_on_device);
            EXPECT_TRUE(error.path1().string().starts_with(home.data().string())) << error.path1();
        }
        EXPECT_EQ(tests::readLevelRecords(folder), records);
        EXPECT_EQ(home.names(), before);
    });
}

TEST(LittleRoom, leavesTheFileAsItIsAndSaysSo) {
    forgetOnDisk(8 * megabyte, false);
}

TEST(LittleRoom, isNoMatterWhereThereIsEnough) {
    forgetOnDisk(16 * megabyte, true);
}

}  // namespace
}  // namespace browsersweep
