#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "browsersweep/sqlite/DatabaseInspection.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/Database.h"
#include "tests/support/ForwardingFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::ChildProcess;
using tests::Database;
using Tables = std::vector<TableFinding>;

/** A database of which a part cannot be looked at. */
class FailingInspections : public testing::Test {
protected:
    FailingInspections() {
        Database(file_).execute(
            "PRAGMA page_size = 1024; BEGIN;"
            "CREATE TABLE items (url TEXT); CREATE TABLE visits (url TEXT);"
            "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 500)"
            " INSERT INTO items SELECT 'https://host' || i || '.example/' FROM n;"
            "INSERT INTO visits VALUES ('a'), ('b'); COMMIT;");
    }

    DatabaseInspection inspected(const std::vector<TableQuestion>& questions) const {
        return inspectDatabase(file_, questions, manager_);
    }

    tests::TemporaryFolder home_{tests::folderInMemory()};
    fs::path file_ = home_.makeFolder("data") / "History.db";
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);
    // Only a connection that reads alone refuses the first of these.
    const std::vector<TableQuestion> refused_{{"items", "DELETE FROM items"},
                                              {"visits", "SELECT COUNT(*) FROM visits"}};
};

TEST_F(FailingInspections, claimNothingOfATableOnceAStatementHasEndedForAnotherReason) {
    const auto found = inspected(refused_);
    EXPECT_EQ(found.tables, (Tables{{"items", true, std::nullopt, false},
                                    {"visits", true, std::nullopt, false}}));
    EXPECT_EQ(found.resultCode, SQLITE_READONLY);
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM items"), 500);
}

TEST_F(FailingInspections, lookAgainAtACopyWhereSomethingLiesBesideTheDatabase) {
    Database(file_).execute("PRAGMA journal_mode = WAL");
    const ChildProcess browser([&](const ChildProcess::Ready& ready) {
        const Database held(file_);
        held.execute("INSERT INTO visits VALUES ('c')");
        ready();
    });
    const auto found = inspected(refused_);
    EXPECT_EQ(found.tables, (Tables{{"items", true, 0, true}, {"visits", true, 3, true}}));
    EXPECT_EQ(found.resultCode, SQLITE_OK);
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM items"), 500);
}

TEST_F(FailingInspections, haveNoTablesWhereOneStatementIsAnError) {
    const auto found = inspected({{"visits", "SELECT COUNT(*) FROM visits"}, {"items", "SELEC"}});
    EXPECT_EQ(found.tables, Tables());
    EXPECT_EQ(found.resultCode, SQLITE_ERROR);
    EXPECT_EQ(found.message, "near \"SELEC\": syntax error");
}

/** Refuses one operation on every file whose name ends so. */
class RefusingFileManager : public tests::ForwardingFileManager {
public:
    RefusingFileManager(std::shared_ptr<const FileManager> target, std::string end, std::errc error)
        : ForwardingFileManager(std::move(target)), end_(std::move(end)), error_(error) {}

    Bytes firstBytes(const fs::path& path, std::size_t count) const override {
        refuse(path);
        return ForwardingFileManager::firstBytes(path, count);
    }
    void copy(const fs::path& from, const fs::path& to) const override {
        refuse(from);
        ForwardingFileManager::copy(from, to);
    }

private:
    void refuse(const fs::path& path) const {
        if (path.string().ends_with(end_)) {
            throw fs::filesystem_error("refused", path, std::make_error_code(error_));
        }
    }

    std::string end_;
    std::errc error_;
};

TEST_F(FailingInspections, haveNoTablesWhereTheCopyFails) {
    Database(file_).execute("PRAGMA journal_mode = WAL");
    const ChildProcess browser([&](const ChildProcess::Ready& ready) {
        const Database held(file_);
        held.execute("INSERT INTO visits VALUES ('c')");
        ready();
    });
    const auto found = inspectDatabase(
        file_, refused_,
        std::make_shared<RefusingFileManager>(manager_, "-wal", std::errc::io_error));
    EXPECT_EQ(found.tables, Tables());
    EXPECT_EQ(found.readError, std::errc::io_error);
    EXPECT_NE(found.message.find("refused"), std::string::npos);
}

TEST_F(FailingInspections, takeAJournalThatVanishesForFinished) {
    home_.write("data/History.db-journal", "x");
    const auto inspectedWith = [&](std::errc error) {
        return inspectDatabase(file_, {},
                               std::make_shared<RefusingFileManager>(manager_, "-journal", error));
    };
    const auto vanished = inspectedWith(std::errc::no_such_file_or_directory);
    EXPECT_FALSE(vanished.hasPendingChanges);
    EXPECT_FALSE(vanished.readError);
    const auto failed = inspectedWith(std::errc::io_error);
    EXPECT_EQ(failed.readError, std::errc::io_error);
    EXPECT_FALSE(failed.message.empty());
    EXPECT_TRUE(failed.tables.empty());
}

TEST_F(FailingInspections, findARowThatItsTableForbidsAlsoWhereNoneIsCounted) {
    Database(file_).execute(
        "INSERT INTO items VALUES (NULL); PRAGMA writable_schema = ON;"
        "UPDATE sqlite_master SET sql = 'CREATE TABLE items (url TEXT NOT NULL)'"
        " WHERE name = 'items';");
    const auto found = inspected({{"items", ""}});
    EXPECT_EQ(found.tables, (Tables{{"items", true, 0, false}}));
    EXPECT_EQ(found.resultCode, SQLITE_OK);
}

TEST_F(FailingInspections, ofAFileWithoutAFolderAskTheCurrentOne) {
    const fs::path before = fs::current_path();
    fs::current_path(file_.parent_path());
    const auto found = inspectDatabase(file_.filename(), {}, FileManager::forHome(home_.path()));
    fs::current_path(before);
    EXPECT_FALSE(found.writeError);
}

}  // namespace
}  // namespace browsersweep
