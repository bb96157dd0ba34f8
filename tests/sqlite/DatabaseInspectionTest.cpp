#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/DatabaseInspection.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/Database.h"
#include "tests/support/ForwardingFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/PageDamage.h"
#include "tests/support/SampleHome.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::ChildProcess;
using tests::Database;

using Filters = std::vector<CleanableDataFilter>;

class DatabaseInspections : public testing::Test {
protected:
    DatabaseInspections() {
        Database(file_).execute(
            "PRAGMA page_size = 1024; BEGIN;"
            "CREATE TABLE history_items (id INTEGER PRIMARY KEY, url TEXT);"
            "CREATE TABLE history_visits (id INTEGER PRIMARY KEY, history_item INTEGER,"
            " visit_time REAL);"
            "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 500)"
            " INSERT INTO history_items SELECT i, 'https://host' || i || '.example/' FROM n;"
            "INSERT INTO history_visits SELECT id, id, id FROM history_items; COMMIT;");
    }

    CleanableSQLiteDatabase table() const {
        return {file_,
                {SQLiteStatementComponents::withPatternColumn("history_items", "url", {}),
                 {"missing", std::nullopt, {}}},
                manager_};
    }
    SafariHistoryCleanableDatabase safari() const { return {file_, manager_}; }

    /** Inspects and finds nothing changed by it. */
    DatabaseInspection inspected(const Filters& filters = {}) const {
        const auto before = tests::filesBelow(home_ / "data");
        auto found = table().inspect(filters);
        EXPECT_EQ(tests::differences(before, tests::filesBelow(home_ / "data")),
                  std::vector<std::string>());
        EXPECT_TRUE(fs::is_empty(manager_->temporaryDirectory()));
        return found;
    }

    fs::path beside(const char* suffix) const { return fs::path(file_) += suffix; }

    tests::TemporaryFolder home_{tests::folderInMemory()};
    fs::path file_ = home_.makeFolder("data") / "History.db";
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);
    fs::path temporary_ = manager_->temporaryDirectory();
};

TEST_F(DatabaseInspections, ofAWholeDatabaseTellItsRowsByTable) {
    const auto found = inspected(Filters{{CleanableDataFilter::Rule::include, {"host7."}}});
    EXPECT_TRUE(found.exists);
    EXPECT_TRUE(found.isRegularFile);
    EXPECT_FALSE(found.readError);
    EXPECT_FALSE(found.writeError);
    EXPECT_EQ(found.refusedCompanion, std::nullopt);
    EXPECT_FALSE(found.isLocked);
    EXPECT_FALSE(found.hasPendingChanges);
    EXPECT_TRUE(found.wasReadWhole());
    EXPECT_EQ(found.rows(), 1);
    EXPECT_EQ(found.tables, (std::vector<TableFinding>{{"history_items", true, 1, true},
                                                       {"missing", false, 0, true}}));
    EXPECT_EQ(safari().inspect({}).rows(), 500);
}

TEST_F(DatabaseInspections, tellWhatACleanLeft) {
    const Filters some{{CleanableDataFilter::Rule::include, {"host7"}}};
    const auto before = inspected(some).rows();
    table().clean(some);
    EXPECT_EQ(before, 11);
    EXPECT_EQ(inspected(some).rows(), 0);
    EXPECT_EQ(inspected().rows(), 500 - *before);
}

TEST_F(DatabaseInspections, ofWhatIsNotThereOrNoFileSaySo) {
    fs::remove(file_);
    EXPECT_FALSE(inspected().exists);
    EXPECT_FALSE(inspected().wasReadWhole());
    fs::create_directory(file_);
    EXPECT_TRUE(inspected().exists);
    EXPECT_FALSE(inspected().isRegularFile);
    fs::remove(file_);
    ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0);
    EXPECT_FALSE(table().inspect({}).isRegularFile);
    EXPECT_EQ(table().inspect({}).rows(), std::nullopt);
}

TEST_F(DatabaseInspections, ofADamagedTableDoNotClaimAZero) {
    const auto root = static_cast<std::size_t>(
        Database(file_).number("SELECT rootpage FROM sqlite_master WHERE name = 'history_items'"));
    std::string bytes = tests::readFile(file_);
    const std::size_t size = tests::pageSizeOf(bytes);
    bytes.replace((root - 1) * size, size, std::string(size, '\0'));
    home_.write("data/History.db", bytes);
    EXPECT_EQ(table().size(), CleanableDataSize::zero);  // what a size cannot tell
    const auto found = inspected();
    EXPECT_FALSE(found.wasReadWhole());
    EXPECT_EQ(found.rows(), std::nullopt);
    EXPECT_EQ(found.resultCode, SQLITE_CORRUPT);
}

TEST_F(DatabaseInspections, findOneDamagedPageAmongManyRows) {
    std::string bytes = tests::readFile(file_);
    const std::size_t size = tests::pageSizeOf(bytes);
    const std::size_t place = bytes.find("https://host300.");
    ASSERT_NE(place, std::string::npos);
    const std::size_t page = place / size * size;
    bytes.replace(page + 8, size - 8, std::string(size - 8, '\xff'));
    home_.write("data/History.db", bytes);
    const auto found = inspected();
    EXPECT_FALSE(found.wasReadWhole());
    ASSERT_FALSE(found.tables.empty());
    EXPECT_FALSE(found.tables.front().isWhole);
}

TEST_F(DatabaseInspections, ofWhatIsNoDatabaseGiveSQLitesWord) {
    home_.write("data/History.db", "this is no database, whatever its name may be");
    const auto found = inspected();
    EXPECT_EQ(found.resultCode, SQLITE_NOTADB);
    EXPECT_EQ(found.message, "file is not a database");
    EXPECT_TRUE(found.tables.empty());
    EXPECT_FALSE(found.wasReadWhole());
}

TEST_F(DatabaseInspections, sayWhoHoldsALock) {
    {
        const ChildProcess browser([&](const ChildProcess::Ready& ready) {
            const Database held(file_);
            held.execute("BEGIN IMMEDIATE");
            ready();
        });
        const auto found = inspected();
        EXPECT_TRUE(found.isLocked);
        EXPECT_GT(found.lockHolder.value_or(0), 0);
        EXPECT_EQ(found.rows(), 500);
    }
    {
        const ChildProcess browser([&](const ChildProcess::Ready& ready) {
            const Database held(file_);
            held.execute("BEGIN EXCLUSIVE");
            ready();
        });
        const auto found = inspected();
        EXPECT_TRUE(found.isLocked);
        EXPECT_EQ(found.rows(), std::nullopt);
        EXPECT_EQ(found.resultCode, SQLITE_BUSY);
    }
    EXPECT_FALSE(inspected().isLocked);
}

TEST_F(DatabaseInspections, ofALivingLogCountWithItAndTellReadersFromWriters) {
    Database(file_).execute("PRAGMA journal_mode = WAL");
    {
        const ChildProcess browser([&](const ChildProcess::Ready& ready) {
            const Database held(file_);
            held.execute(
                "DELETE FROM history_items WHERE id > 400; BEGIN;"
                "SELECT COUNT(*) FROM history_items");
            ready();
        });
        const auto found = inspected();
        EXPECT_TRUE(found.hasPendingChanges);
        EXPECT_FALSE(found.isLocked);
        EXPECT_EQ(found.rows(), 400);
    }
    const ChildProcess browser([&](const ChildProcess::Ready& ready) {
        const Database held(file_);
        held.execute("BEGIN IMMEDIATE");
        ready();
    });
    EXPECT_TRUE(inspected().isLocked);
    EXPECT_EQ(inspected().rows(), 400);
}

TEST_F(DatabaseInspections, nameACompanionThatIsRefused) {
    const fs::path precious = home_.write("Documents/precious", "kept");
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
        SCOPED_TRACE(suffix);
        fs::create_hard_link(precious, beside(suffix));
        EXPECT_EQ(inspected().refusedCompanion, beside(suffix));
        EXPECT_FALSE(inspected().hasPendingChanges);
        EXPECT_FALSE(inspected().wasReadWhole());
        fs::remove(beside(suffix));
    }
}

TEST_F(DatabaseInspections, sayWhetherItMayBeReadAndChanged) {
    constexpr fs::perms readable =
        fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
    fs::permissions(home_.path(), fs::perms::all);
    fs::permissions(temporary_, fs::perms::all);
    const auto askedAs = [&](fs::perms file, fs::perms folder, auto expectation) {
        fs::permissions(file_, file);
        fs::permissions(file_.parent_path(), folder);
        EXPECT_EQ(tests::runAsOrdinaryUser([&] { expectation(table().inspect({})); }), 0);
    };
    askedAs(readable, fs::perms::all, [](const DatabaseInspection& found) {
        EXPECT_FALSE(found.readError);
        EXPECT_EQ(found.writeError, std::errc::permission_denied);
        EXPECT_EQ(found.rows(), 500);
    });
    askedAs(fs::perms::all, fs::perms(0555), [](const DatabaseInspection& found) {
        EXPECT_FALSE(found.readError);
        EXPECT_EQ(found.writeError, std::errc::permission_denied);
    });
    fs::permissions(file_.parent_path(), fs::perms::all);
    home_.write("data/History.db-wal", "x");
    askedAs(fs::perms::none, fs::perms::all, [](const DatabaseInspection& found) {
        EXPECT_EQ(found.readError, std::errc::permission_denied);
        EXPECT_EQ(found.resultCode, SQLITE_OK);
        EXPECT_EQ(found.message, "");
        EXPECT_FALSE(found.hasPendingChanges);
        EXPECT_FALSE(found.wasReadWhole());
        EXPECT_EQ(found.rows(), std::nullopt);
    });
}

/** Holds a lock on one byte of a file, as another program. */
class ByteLock {
public:
    ByteLock(const fs::path& file, off_t byte, short kind)
        : process_([=](const ChildProcess::Ready& ready) {
              struct flock lock = {};
              lock.l_type = kind;
              lock.l_whence = SEEK_SET;
              lock.l_start = byte;
              lock.l_len = 1;
              if (::fcntl(::open(file.c_str(), O_RDWR), F_SETLK, &lock) == 0) {
                  ready();
              }
          }) {}

private:
    ChildProcess process_;
};

TEST_F(DatabaseInspections, lookForLocksWhereSQLiteHasThem) {
    constexpr off_t firstByte = 0x40000000;
    const auto isLockedBy = [&](off_t byte, short kind) {
        const ByteLock lock(file_, byte, kind);
        return table().inspect({}).isLocked;
    };
    for (const short kind : {short{F_RDLCK}, short{F_WRLCK}}) {
        EXPECT_FALSE(isLockedBy(firstByte - 1, kind));
        EXPECT_TRUE(isLockedBy(firstByte, kind));
        EXPECT_TRUE(isLockedBy(firstByte + 511, kind));
        EXPECT_FALSE(isLockedBy(firstByte + 512, kind));
    }
}

TEST_F(DatabaseInspections, lookForTheLocksOfALogInItsIndexToo) {
    constexpr off_t firstByte = 0x40000000;
    home_.write("data/History.db-shm", std::string(512, '\0'));
    const auto isLockedBy = [&](const fs::path& file, off_t byte, short kind) {
        const ByteLock lock(file, byte, kind);
        return table().inspect({}).isLocked;
    };
    EXPECT_TRUE(isLockedBy(file_, firstByte + 511, F_WRLCK));
    EXPECT_FALSE(isLockedBy(file_, firstByte + 511, F_RDLCK));
    EXPECT_FALSE(isLockedBy(file_, firstByte + 512, F_WRLCK));
    EXPECT_TRUE(isLockedBy(beside("-shm"), 120, F_WRLCK));
    EXPECT_FALSE(isLockedBy(beside("-shm"), 120, F_RDLCK));
    EXPECT_FALSE(isLockedBy(beside("-shm"), 119, F_WRLCK));
    EXPECT_FALSE(isLockedBy(beside("-shm"), 121, F_WRLCK));
}

TEST_F(DatabaseInspections, tellAnUnfinishedJournalFromAFinishedOne) {
    const auto hasPendingChangesBeside = [&](const char* suffix, const std::string& contents) {
        home_.write(fs::path("data") / ("History.db" + std::string(suffix)), contents);
        const bool found = table().inspect({}).hasPendingChanges;
        fs::remove(beside(suffix));
        return found;
    };
    EXPECT_FALSE(table().inspect({}).hasPendingChanges);
    EXPECT_FALSE(hasPendingChangesBeside("-journal", ""));
    EXPECT_FALSE(hasPendingChangesBeside("-journal", std::string(512, '\0')));
    EXPECT_FALSE(hasPendingChangesBeside("-journal", std::string("\0x", 2)));
    EXPECT_TRUE(hasPendingChangesBeside("-journal", "x"));
    EXPECT_TRUE(hasPendingChangesBeside("-journal", "\x01"));
    EXPECT_FALSE(hasPendingChangesBeside("-wal", ""));
    EXPECT_TRUE(hasPendingChangesBeside("-wal", "x"));
}

TEST_F(DatabaseInspections, countNothingWhereNothingIsAsked) {
    const std::vector<TableQuestion> questions{
        {"history_visits", "SELECT COUNT(*) FROM history_visits"}, {"history_items", ""}};
    EXPECT_EQ(inspectDatabase(file_, questions, manager_).tables,
              (std::vector<TableFinding>{{"history_visits", true, 500, true},
                                         {"history_items", true, 0, true}}));
}

TEST(DatabaseInspection, ofWhichNothingIsKnownClaimsNothing) {
    const DatabaseInspection nothing;
    EXPECT_FALSE(nothing.exists || nothing.isRegularFile || nothing.isLocked ||
                 nothing.hasPendingChanges || nothing.isOfOneMoment);
    EXPECT_EQ(nothing.resultCode, SQLITE_OK);
    EXPECT_EQ(TableFinding(), (TableFinding{"", false, std::nullopt, false}));
    EXPECT_FALSE(nothing.wasReadWhole());
    EXPECT_EQ(nothing.rows(), std::nullopt);
}

TEST(DatabaseInspection, wasReadWholeWhereAllOfItWas) {
    DatabaseInspection found;
    found.isOfOneMoment = true;
    found.tables = {{"a", true, 1, true}, {"b", true, 2, true}};
    EXPECT_TRUE(found.wasReadWhole());
    EXPECT_EQ(found.rows(), 3);
    found.tables[1].isWhole = false;
    EXPECT_FALSE(found.wasReadWhole());
    EXPECT_EQ(found.rows(), 3);
    found.tables[1] = {"b", true, std::nullopt, true};
    EXPECT_FALSE(found.wasReadWhole());
    EXPECT_EQ(found.rows(), std::nullopt);
    found.tables.pop_back();
    found.resultCode = SQLITE_CORRUPT;
    EXPECT_FALSE(found.wasReadWhole());
    EXPECT_EQ(found.rows(), std::nullopt);
    found.resultCode = SQLITE_OK;
    found.isOfOneMoment = false;
    EXPECT_FALSE(found.wasReadWhole());
    EXPECT_EQ(found.rows(), std::nullopt);
}

TEST_F(DatabaseInspections, ofSafarisHistoryAskForBothTablesAndCountTheVisitsThatAreSelected) {
    const Filters filters{{CleanableDataFilter::Rule::include, {"host7."}}};
    EXPECT_EQ(safari().inspect(filters).tables,
              (std::vector<TableFinding>{{"history_items", true, 0, true},
                                         {"history_visits", true, 1, true}}));
    EXPECT_EQ(SafariHistoryCleanableDatabase::category(), CleanableDataCategory::history);
}

/** Wants every operation to stop. */
class StoppingFileManager : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;
    std::shared_ptr<OperationControl> control() const noexcept override {
        return std::make_shared<OperationControl>([](const OperationProgress&) { return true; });
    }
};

TEST_F(DatabaseInspections, areStoppedByTheControl) {
    const CleanableSQLiteDatabase stopped(file_, table().components(),
                                          std::make_shared<StoppingFileManager>(manager_));
    EXPECT_THROW(stopped.inspect({}), OperationCancelled);
}

}  // namespace
}  // namespace browsersweep
