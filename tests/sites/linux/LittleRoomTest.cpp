#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/chromium/internal/ChromiumDatabases.h"

#include "tests/support/ChromiumSchemas.h"
#include "tests/support/Database.h"
#include "tests/support/DatabaseContents.h"
#include "tests/support/PlantedRows.h"
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

TEST(LittleRoom, leavesTheFileAsItIsAndSaysSo) {
    forgetOnDisk(8 * megabyte, false);
}

TEST(LittleRoom, isNoMatterWhereThereIsEnough) {
    forgetOnDisk(16 * megabyte, true);
}

}  // namespace
}  // namespace browsersweep
