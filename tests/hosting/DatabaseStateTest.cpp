#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "browsersweep/cookies/CleanableSafariCookies.h"
#include "browsersweep/hosting/DatabaseState.h"
#include "browsersweep/profiles/firefox/FirefoxCleanableLocalStorage.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/Database.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using Paths = std::vector<fs::path>;

const std::string journalStart = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";

TEST(DatabaseState, changesWaitInALogOrInAJournalThatWasNotFinished) {
    const tests::TemporaryFolder folder;
    const auto database = folder.write("d.sqlite", "x");
    EXPECT_FALSE(hasPendingChanges(database));
    folder.write("d.sqlite-wal", "");
    folder.write("d.sqlite-journal", std::string(512, '\0'));
    EXPECT_FALSE(hasPendingChanges(database)) << "both are finished";
    folder.write("d.sqlite-journal", journalStart + "rest");
    EXPECT_TRUE(hasPendingChanges(database));
    folder.write("d.sqlite-journal", "");
    folder.write("d.sqlite-wal", "frames");
    EXPECT_TRUE(hasPendingChanges(database));
}

TEST(DatabaseState, aPipeInThePlaceOfAJournalIsNoneAndIsNotWaitedFor) {
    const tests::TemporaryFolder folder;
    const auto database = folder.write("d.sqlite", "x");
    ASSERT_EQ(::mkfifo((folder / "d.sqlite-journal").c_str(), 0600), 0);
    EXPECT_FALSE(hasPendingChanges(database));
}

TEST(DatabaseState, aDatabaseIsHeldWhileAnotherProgramHasATransactionOpen) {
    const tests::TemporaryFolder folder;
    const auto file = folder / "d.sqlite";
    tests::Database(file).execute("CREATE TABLE t (a)");
    EXPECT_FALSE(isDatabaseHeld(file));
    {
        const tests::ChildProcess child([&file](const tests::ChildProcess::Ready& ready) {
            const tests::Database other(file);
            other.execute("BEGIN IMMEDIATE");
            ready();
        });
        EXPECT_TRUE(isDatabaseHeld(file));
    }
    EXPECT_FALSE(isDatabaseHeld(file));
    EXPECT_FALSE(isDatabaseHeld(folder / "missing"));
}

TEST(DatabaseState, itemsTellTheirDatabasesWhateverWrapsThem) {
    const tests::TemporaryFolder folder;
    const auto file = folder.write("d.sqlite", "x");
    folder.write("d.sqlite-wal", "frames");
    const auto files = FileManager::forHome(folder.path());
    const auto database = std::make_shared<CleanableSQLiteDatabase>(
        file, std::vector<SQLiteStatementComponents>{}, files);
    const FirefoxCleanableLocalStorage storage(database);
    const SafariHistoryCleanableDatabase history(file, files);
    EXPECT_EQ(databasesOf(*database), Paths{file});
    EXPECT_EQ(databasesOf(storage), Paths{file});
    EXPECT_EQ(databasesOf(history), Paths{file});
    EXPECT_EQ(databasesOf(CleanableSafariCookies(files)), Paths{});
    EXPECT_EQ(databasesWithUncountedChanges(storage), Paths{file});
    EXPECT_EQ(databasesWithUncountedChanges(history), Paths{}) << "it is read with its log";
}

}  // namespace
}  // namespace browsersweep
