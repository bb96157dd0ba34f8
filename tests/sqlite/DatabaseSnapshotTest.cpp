#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"
#include "browsersweep/sqlite/internal/DatabaseSnapshot.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/Database.h"
#include "tests/support/ForwardingFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/SampleHome.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::ChildProcess;
using tests::Database;

constexpr std::int64_t visitCount = 300;

/** A history whose every transaction leaves as many visits as it found. */
class DatabaseSnapshots : public testing::Test {
protected:
    /** Of a log with its index: its visit is counted, and not a byte is changed. */
    void expectOneMoreVisitWithoutAnyChange() const {
        const auto before = tests::filesBelow(home_.path());
        ASSERT_TRUE(before.contains("data/History.db-shm"));
        EXPECT_EQ(item().size().itemCount, CleanableDataSize::Measurement(visitCount + 1));
        EXPECT_EQ(tests::differences(before, tests::filesBelow(home_.path())),
                  std::vector<std::string>());
    }

    void make(const std::string& journalMode) const {
        const Database database(file_);
        database.execute("PRAGMA page_size = 1024; PRAGMA journal_mode = " + journalMode +
                         "; BEGIN;"
                         "CREATE TABLE history_items (id INTEGER PRIMARY KEY, url TEXT);"
                         "CREATE TABLE history_visits (id INTEGER PRIMARY KEY AUTOINCREMENT,"
                         " history_item INTEGER, visit_time REAL, title TEXT);");
        database.execute("WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                         std::to_string(visitCount) +
                         ") INSERT INTO history_visits SELECT i, i, i, hex(randomblob(100)) FROM n;"
                         "COMMIT;");
    }

    /** Replaces a part of the visits again and again until it is killed. */
    void write(const ChildProcess::Ready& ready) const {
        const Database database(file_);
        database.execute(
            "PRAGMA cache_size = 2; PRAGMA synchronous = OFF;"
            "PRAGMA wal_autocheckpoint = 20;");
        std::thread([database] {
            for (;;) {
                try {
                    database.execute(
                        "BEGIN IMMEDIATE;"
                        "DELETE FROM history_visits WHERE id IN"
                        " (SELECT id FROM history_visits ORDER BY id LIMIT 50);"
                        "INSERT INTO history_visits (history_item, visit_time, title)"
                        " SELECT 1, 1, hex(randomblob(100)) FROM history_visits LIMIT 50;"
                        "COMMIT;");
                } catch (const std::exception&) {
                    continue;  // a reader was there first
                }
            }
        }).detach();
        ready();
    }

    SafariHistoryCleanableDatabase item() const { return {file_, manager_}; }
    fs::path beside(const char* suffix) const { return fs::path(file_) += suffix; }

    tests::TemporaryFolder home_{tests::folderInMemory()};
    fs::path file_ = home_.makeFolder("data") / "History.db";
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);
};

TEST_F(DatabaseSnapshots, areNeverAWrongExactNumberWhileAnotherProcessWrites) {
    for (const char* mode : {"WAL", "DELETE", "TRUNCATE", "PERSIST"}) {
        SCOPED_TRACE(mode);
        fs::remove(file_);
        make(mode);
        const ChildProcess browser([&](const ChildProcess::Ready& ready) { write(ready); });
        int exact = 0;
        for (int sample = 0; sample < 150; ++sample) {
            try {
                const auto size = item().size();
                if (!size.itemCount.isApproximate) {
                    EXPECT_EQ(size.itemCount.value, visitCount);
                    ++exact;
                }
            } catch (const SQLiteError& error) {
                EXPECT_EQ(error.kind(), SQLiteError::Kind::locked) << error.what();
            }
        }
        EXPECT_GT(exact, 0);
    }
}

TEST_F(DatabaseSnapshots, ofALivingLogAreTakenInPlaceWithoutAnyChange) {
    make("WAL");
    const ChildProcess browser([&](const ChildProcess::Ready& ready) {
        const Database held(file_);
        held.execute("INSERT INTO history_visits (history_item) VALUES (1)");
        ready();
    });
    expectOneMoreVisitWithoutAnyChange();
}

TEST_F(DatabaseSnapshots, ofALogWithItsIndexLeftByACrashChangeNothing) {
    make("WAL");
    {
        const ChildProcess browser([&](const ChildProcess::Ready& ready) {
            const Database held(file_);
            held.execute("INSERT INTO history_visits (history_item) VALUES (1)");
            ready();
        });
    }
    expectOneMoreVisitWithoutAnyChange();
}

/** Has the database change during every copy. */
class RestlessFileManager : public tests::ForwardingFileManager {
public:
    RestlessFileManager(std::shared_ptr<const FileManager> target, int changes)
        : ForwardingFileManager(std::move(target)), changes_(changes) {}

    void copy(const fs::path& from, const fs::path& to) const override {
        ForwardingFileManager::copy(from, to);
        ++*copies_;
        if (from.extension() == ".db" && *copies_ <= changes_) {
            Database(from).execute("INSERT INTO history_visits (history_item) VALUES (1)");
        }
    }
    int copies() const noexcept { return *copies_; }

private:
    int changes_;
    std::shared_ptr<int> copies_ = std::make_shared<int>(0);
};

TEST_F(DatabaseSnapshots, areTriedAgainWhereTheFileChangedMeanwhile) {
    make("WAL");
    const auto restless = std::make_shared<RestlessFileManager>(manager_, 2);
    const auto size = SafariHistoryCleanableDatabase(file_, restless).size();
    EXPECT_EQ(size.itemCount, CleanableDataSize::Measurement(visitCount + 2));
    EXPECT_EQ(restless->copies(), 3);
}

TEST_F(DatabaseSnapshots, areApproximateWhereTheFileNeverRests) {
    make("WAL");
    const auto restless = std::make_shared<RestlessFileManager>(manager_, 1000);
    const auto size = SafariHistoryCleanableDatabase(file_, restless).size();
    EXPECT_TRUE(size.itemCount.isApproximate);
    EXPECT_GE(size.itemCount.value, visitCount);
    EXPECT_EQ(restless->copies(), 5);
    const std::vector<CleanableDataFilter> none{{CleanableDataFilter::Rule::include, {"nowhere"}}};
    EXPECT_EQ(SafariHistoryCleanableDatabase(file_, restless).size(none),
              (CleanableDataSize{{0, true}, {0, true}}));
    EXPECT_EQ(tests::filesBelow(home_ / "tmp"), tests::Files());
}

/** Has no room for a copy, and may have somebody do something meanwhile. */
class FullFileManager : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;

    void copy(const fs::path& /*from*/, const fs::path& to) const override {
        throw fs::filesystem_error("full", to, std::make_error_code(std::errc::no_space_on_device));
    }
};

class DatabaseSnapshotsWithoutRoom : public DatabaseSnapshots {
protected:
    /** Where they lie, and not a byte there is changed. */
    void expectCounted(std::int64_t visits) const {
        const auto before = tests::filesBelow(home_ / "data");
        const auto full = std::make_shared<FullFileManager>(manager_);
        EXPECT_EQ(SafariHistoryCleanableDatabase(file_, full).size().itemCount,
                  CleanableDataSize::Measurement(visits));
        EXPECT_EQ(tests::filesBelow(home_ / "data"), before);
    }
};

TEST_F(DatabaseSnapshotsWithoutRoom, areReadAsTheyLie) {
    make("WAL");
    ASSERT_FALSE(fs::exists(beside("-wal")));
    expectCounted(visitCount);
}

TEST_F(DatabaseSnapshotsWithoutRoom, areReadWithALogThatACrashLeft) {
    make("WAL");
    {
        const Database browser(file_);
        browser.execute("INSERT INTO history_visits (history_item) VALUES (1)");
        for (const char* end : {"", "-wal"}) {
            fs::copy_file(beside(end), home_ / ("left" + std::string(end)));
        }
    }
    for (const char* end : {"", "-wal"}) {
        fs::rename(home_ / ("left" + std::string(end)), beside(end));
    }
    const auto before = tests::filesBelow(home_ / "data");
    ASSERT_TRUE(before.contains("History.db-wal"));
    ASSERT_FALSE(before.contains("History.db-shm"));
    expectCounted(visitCount + 1);
}

TEST_F(DatabaseSnapshotsWithoutRoom, areReadWithoutALogThatIsNone) {
    make("WAL");
    home_.write("data/History.db-wal", "log");
    expectCounted(visitCount);
}

TEST_F(DatabaseSnapshotsWithoutRoom, areNotReadAsTheyLieWhereAJournalWaits) {
    make("WAL");
    home_.write("data/History.db-journal", "journal");
    const auto full = std::make_shared<FullFileManager>(manager_);
    EXPECT_THROW(SafariHistoryCleanableDatabase(file_, full).size(), fs::filesystem_error);
}

TEST_F(DatabaseSnapshotsWithoutRoom, areNotReadAsTheyLieWhereABrowserKeepsThemToItself) {
    make("WAL");
    const ChildProcess browser([&](const ChildProcess::Ready& ready) {
        const Database held(file_);
        held.execute(
            "PRAGMA locking_mode = EXCLUSIVE; BEGIN;"
            "INSERT INTO history_visits (history_item) VALUES (1)");
        ready();
    });
    home_.write("data/History.db-shm", "index");
    const auto full = std::make_shared<FullFileManager>(manager_);
    EXPECT_THROW(SafariHistoryCleanableDatabase(file_, full).size(), fs::filesystem_error);
}

/** May not make a copy, though there may be room for it. */
class RefusedFileManager : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;

    void copy(const fs::path& /*from*/, const fs::path& to) const override {
        throw fs::filesystem_error("no", to, std::make_error_code(std::errc::permission_denied));
    }
};

TEST_F(DatabaseSnapshots, areNotReadAsTheyLieWhereACopyFailsForAnotherReason) {
    make("WAL");
    const auto refused = std::make_shared<RefusedFileManager>(manager_);
    EXPECT_THROW(SafariHistoryCleanableDatabase(file_, refused).size(), fs::filesystem_error);
}

TEST_F(DatabaseSnapshotsWithoutRoom, areReadAgainWhereTheLogIsGoneBeforeItIsLookedAt) {
    make("WAL");
    home_.write("data/History.db-wal", "log");
    const auto control = std::make_shared<OperationControl>([&](const OperationProgress&) {
        fs::remove(beside("-wal"));
        return false;
    });
    const auto full =
        std::make_shared<FullFileManager>(FileManager::forHome(home_.path(), control));
    std::vector<std::int32_t> seen;
    EXPECT_TRUE(DatabaseSnapshot(file_, full).read([&](const SQLiteConnection& connection) {
        seen.push_back(
            connection.evaluate("SELECT COUNT(*) FROM history_visits", CountEvaluator{}));
    }));
    EXPECT_EQ(seen, std::vector<std::int32_t>{visitCount});
}

TEST_F(DatabaseSnapshotsWithoutRoom, areNoneOnceTheOperationIsToStop) {
    make("WAL");
    const auto stopped =
        std::make_shared<OperationControl>([](const OperationProgress&) { return true; });
    const auto full =
        std::make_shared<FullFileManager>(FileManager::forHome(home_.path(), stopped));
    int count = 0;
    EXPECT_THROW(DatabaseSnapshot(file_, full).read([&](const SQLiteConnection&) { ++count; }),
                 OperationCancelled);
    EXPECT_EQ(count, 0);
}

TEST_F(DatabaseSnapshotsWithoutRoom, areNotBelievedWhereTheFilesTimesChangeMeanwhile) {
    make("WAL");
    const auto full = std::make_shared<FullFileManager>(manager_);
    int count = 0;
    EXPECT_FALSE(DatabaseSnapshot(file_, full).read([&](const SQLiteConnection&) {
        ++count;
        fs::last_write_time(file_, fs::file_time_type() + std::chrono::seconds(count));
    }));
    EXPECT_EQ(count, 5);
}

TEST_F(DatabaseSnapshots, asTheyLieAreNoneWhereTheyChangeMeanwhile) {
    make("WAL");
    const auto full = std::make_shared<FullFileManager>(manager_);
    int count = 0;
    const bool isOfOneMoment =
        DatabaseSnapshot(file_, full).read([&](const SQLiteConnection& connection) {
            connection.hasTable("history_visits");
            Database(file_).execute("INSERT INTO history_visits (history_item) VALUES (1)");
            ++count;
        });
    EXPECT_FALSE(isOfOneMoment);
    EXPECT_EQ(count, 5);
}

TEST_F(DatabaseSnapshots, readNothingInPlaceThatWouldHaveToBeChanged) {
    make("DELETE");
    {
        const ChildProcess browser([&](const ChildProcess::Ready& ready) {
            const Database held(file_);
            held.execute(
                "PRAGMA cache_size = 1; PRAGMA synchronous = OFF; BEGIN;"
                "DELETE FROM history_visits");
            ready();
        });
    }
    ASSERT_TRUE(fs::exists(beside("-journal")));
    const auto before = tests::filesBelow(home_ / "data");
    const auto connection = SQLiteConnection::readingOnly(file_);
    EXPECT_THROW(connection.hasTable("history_visits"), SQLiteError);
    EXPECT_EQ(tests::filesBelow(home_ / "data"), before);
    EXPECT_EQ(item().size().itemCount, CleanableDataSize::Measurement(visitCount));
    EXPECT_EQ(tests::filesBelow(home_ / "data"), before);
}

TEST_F(DatabaseSnapshots, neitherMakeNorDeleteWhatLiesBesideAnEmptyFile) {
    home_.write("data/History.db", "");
    home_.write("data/History.db-wal", "x");
    const auto before = tests::filesBelow(home_ / "data");
    EXPECT_EQ(item().size(), CleanableDataSize::zero);
    EXPECT_EQ(tests::filesBelow(home_ / "data"), before);
    EXPECT_THROW(SQLiteConnection::readingOnly(home_ / "data/missing"), SQLiteError);
    EXPECT_EQ(tests::filesBelow(home_ / "data"), before);
}

/** Does something after each copy. */
class ChangingFileManager : public tests::ForwardingFileManager {
public:
    using Change = std::function<void(const fs::path& from, const fs::path& to)>;

    ChangingFileManager(std::shared_ptr<const FileManager> target, Change change)
        : ForwardingFileManager(std::move(target)), change_(std::move(change)) {}

    void copy(const fs::path& from, const fs::path& to) const override {
        ForwardingFileManager::copy(from, to);
        copies_->push_back(from.filename().string());
        change_(from, to);
    }
    const std::vector<std::string>& copies() const noexcept { return *copies_; }

private:
    Change change_;
    std::shared_ptr<std::vector<std::string>> copies_ =
        std::make_shared<std::vector<std::string>>();
};

TEST_F(DatabaseSnapshots, areNoneWhereTheOperationIsToStopOnceTheyAreCopied) {
    make("WAL");
    bool isCopied = false;
    const auto control =
        std::make_shared<OperationControl>([&](const OperationProgress&) { return isCopied; });
    const auto changing = std::make_shared<ChangingFileManager>(
        FileManager::forHome(home_.path(), control),
        [&](const fs::path& /*from*/, const fs::path& /*to*/) { isCopied = true; });
    int count = 0;
    EXPECT_THROW(DatabaseSnapshot(file_, changing).read([&](const SQLiteConnection&) { ++count; }),
                 OperationCancelled);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(changing->copies().size(), 1U);
}

TEST_F(DatabaseSnapshots, askTheControlWhileTheyAreComparedAndSeeWhatChangesThen) {
    make("WAL");
    bool isCopied = false;
    const auto control = std::make_shared<OperationControl>([&](const OperationProgress&) {
        if (std::exchange(isCopied, false)) {
            Database(file_).execute("INSERT INTO history_visits (history_item) VALUES (1)");
        }
        return false;
    });
    const auto changing = std::make_shared<ChangingFileManager>(
        FileManager::forHome(home_.path(), control),
        [&, isFirst = true](const fs::path& /*from*/, const fs::path& /*to*/) mutable {
            isCopied = std::exchange(isFirst, false);
        });
    std::vector<std::int32_t> seen;
    EXPECT_TRUE(DatabaseSnapshot(file_, changing).read([&](const SQLiteConnection& connection) {
        seen.push_back(
            connection.evaluate("SELECT COUNT(*) FROM history_visits", CountEvaluator{}));
    }));
    EXPECT_EQ(seen, std::vector<std::int32_t>{visitCount + 1});
    EXPECT_EQ(changing->copies().size(), 2U);
}

TEST_F(DatabaseSnapshots, areTriedAgainWhereACompanionAppearsMeanwhile) {
    make("WAL");
    const auto changing = std::make_shared<ChangingFileManager>(
        manager_, [&](const fs::path& /*from*/, const fs::path& /*to*/) {
            home_.write("data/History.db-wal", "x");
        });
    const auto size = SafariHistoryCleanableDatabase(file_, changing).size();
    EXPECT_EQ(size.itemCount, CleanableDataSize::Measurement(visitCount));
    EXPECT_EQ(changing->copies(),
              (std::vector<std::string>{"History.db", "History.db", "History.db-wal"}));
}

/** With a log that a browser left when it was killed, and without the log's index. */
class DatabaseSnapshotsOfALog : public DatabaseSnapshots {
protected:
    DatabaseSnapshotsOfALog() {
        make("WAL");
        {
            const ChildProcess browser([&](const ChildProcess::Ready& ready) {
                const Database held(file_);
                held.execute("INSERT INTO history_visits (history_item) VALUES (1)");
                ready();
            });
        }
        fs::remove(beside("-shm"));
    }

    void expectNeverToBeBelieved(const ChangingFileManager::Change& change) const {
        const auto changing = std::make_shared<ChangingFileManager>(manager_, change);
        EXPECT_TRUE(SafariHistoryCleanableDatabase(file_, changing).size().itemCount.isApproximate);
        EXPECT_EQ(changing->copies().size(), 10U);
    }
};

TEST_F(DatabaseSnapshotsOfALog, areNotBelievedWhereACopyDiffersFromItsFile) {
    for (const std::string end : {".db", "-wal"}) {
        expectNeverToBeBelieved([&](const fs::path& /*from*/, const fs::path& to) {
            if (to.string().ends_with(end)) {
                std::ofstream(to, std::ios::binary | std::ios::app) << "x";
            }
        });
    }
}

TEST_F(DatabaseSnapshotsOfALog, areNotBelievedWhereACompanionWasGoneForAMoment) {
    expectNeverToBeBelieved([](const fs::path& from, const fs::path& to) {
        if (from.string().ends_with("-wal")) {
            fs::remove(to);
            throw fs::filesystem_error("gone", from,
                                       std::make_error_code(std::errc::no_such_file_or_directory));
        }
    });
}

TEST_F(DatabaseSnapshots, lookAtACopyWhereALockIsMetInTheMiddle) {
    make("DELETE");
    std::optional<ChildProcess> browser;
    std::vector<std::int32_t> seen;
    const bool isOneState =
        DatabaseSnapshot(file_, manager_).read([&](const SQLiteConnection& connection) {
            EXPECT_TRUE(connection.hasTable("history_visits"));
            if (!browser) {
                browser.emplace([&](const ChildProcess::Ready& ready) {
                    const Database held(file_);
                    held.execute("BEGIN EXCLUSIVE");
                    ready();
                });
            }
            seen.push_back(
                connection.evaluate("SELECT COUNT(*) FROM history_visits", CountEvaluator{}));
        });
    EXPECT_TRUE(isOneState);
    EXPECT_EQ(seen, (std::vector<std::int32_t>{0, visitCount}));
}

TEST_F(DatabaseSnapshots, askTheHeaderAndTheNamesBesideItForCompanions) {
    const auto mayHaveThem = [&](const std::string& contents, const char* suffix = nullptr) {
        home_.write("data/History.db", contents);
        if (suffix != nullptr) {
            home_.write(beside(suffix), "");
        }
        const bool may = DatabaseSnapshot(file_, manager_).mayHaveCompanions();
        if (suffix != nullptr) {
            fs::remove(beside(suffix));
        }
        return may;
    };
    const std::string plain(100, '\1');
    const auto with = [&](std::size_t place) { return std::string(plain).replace(place, 1, "\2"); };
    EXPECT_FALSE(mayHaveThem(plain));
    EXPECT_FALSE(mayHaveThem(with(17)));
    EXPECT_TRUE(mayHaveThem(with(18)));
    EXPECT_TRUE(mayHaveThem(with(19)));
    EXPECT_FALSE(mayHaveThem(with(20)));
    EXPECT_FALSE(mayHaveThem(with(18).substr(0, 19)));
    EXPECT_TRUE(mayHaveThem(plain, "-wal"));
    EXPECT_TRUE(mayHaveThem(plain, "-journal"));
    EXPECT_FALSE(mayHaveThem(plain, "-shm"));
}

}  // namespace
}  // namespace browsersweep
