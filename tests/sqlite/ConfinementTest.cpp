#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/platform/ForwardingFileManager.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/SQLiteConnection.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/Database.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using Filters = std::vector<CleanableDataFilter>;

using tests::ChildProcess;
using tests::Database;
using tests::TemporaryFolder;

void append(const fs::path& file, std::string_view bytes) {
    std::ofstream stream(file, std::ios::binary | std::ios::app);
    stream << bytes;
}

std::string bigEndian(std::uint32_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<char>(number >> static_cast<unsigned>(shift)));
    }
    return bytes;
}

/** The end of a rollback journal that belongs to a transaction over several databases. */
std::string superJournalRecord(const std::string& name) {
    std::uint32_t sum = 0;
    for (const char each : name) {
        sum += static_cast<unsigned char>(each);
    }
    return bigEndian(0x40000000 / 1024 + 1) + name +
           bigEndian(static_cast<std::uint32_t>(name.size())) + bigEndian(sum) +
           "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
}

/** What a hostile program may have put beside a database, or into it. */
class Confinement : public testing::Test {
protected:
    Confinement() {
        Database(file_).execute(
            "PRAGMA page_size = 1024;"
            "CREATE TABLE history_items (id INTEGER PRIMARY KEY, url TEXT);"
            "CREATE TABLE history_visits (id INTEGER PRIMARY KEY, history_item INTEGER,"
            " visit_time REAL);"
            "CREATE TABLE precious (text TEXT);"
            "INSERT INTO precious VALUES ('kept');"
            "INSERT INTO history_items VALUES (1, 'https://one.example/'),"
            " (2, 'https://two.example/');"
            "INSERT INTO history_visits VALUES (1, 1, 1.0), (2, 2, 2.0);");
    }

    CleanableSQLiteDatabase table() const {
        return {file_,
                {SQLiteStatementComponents::withPatternColumn("history_items", "url", {})},
                manager_};
    }
    SafariHistoryCleanableDatabase safari() const { return {file_, manager_}; }

    fs::path beside(const char* suffix) const { return fs::path(file_) += suffix; }

    std::int64_t rows(const std::string& name) const {
        return Database(file_).number("SELECT COUNT(*) FROM " + name);
    }

    /** Leaves the journal of a transaction that was killed after it had written to the file. */
    void leaveHotJournal() const {
        const ChildProcess browser([&](const ChildProcess::Ready& ready) {
            Database held(file_);
            held.execute(
                "PRAGMA cache_size = 1; PRAGMA synchronous = OFF; BEGIN;"
                "DELETE FROM history_visits; DELETE FROM history_items;"
                "UPDATE precious SET text = '" +
                std::string(100000, 'x') + "';");
            ready();
        });
    }

    TemporaryFolder home_;
    fs::path file_ = home_.makeFolder("data") / "History.db";
    fs::path precious_ = home_.write("Documents/precious", "kept");
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);
};

TEST_F(Confinement, aJournalThatNamesAnotherFileIsPlayedBackAndTheFileStays) {
    const std::string whole = tests::readFile(file_);
    const Filters nowhere{{CleanableDataFilter::Rule::include, {"nowhere"}}};
    const std::array<std::function<void()>, 4> operations{
        [&] { table().clean(nowhere); }, [&] { safari().clean(nowhere); }, [&] { table().size(); },
        [&] { EXPECT_EQ(safari().size().itemCount.value, 2); }};
    for (std::size_t number = 0; number < operations.size(); ++number) {
        SCOPED_TRACE(number);
        leaveHotJournal();
        append(beside("-journal"), superJournalRecord(precious_.string()));
        operations.at(number)();
        EXPECT_EQ(tests::readFile(precious_), "kept");
        // The test's own connection would play the journal back as SQLite does.
        const bool isPlayedBack = !fs::exists(beside("-journal"));
        EXPECT_EQ(isPlayedBack, number < 2);
        if (isPlayedBack) {
            EXPECT_EQ(rows("history_items"), 2);
            EXPECT_EQ(Database(file_).text("SELECT text FROM precious"), "kept");
        }
        fs::remove(beside("-journal"));
        std::ofstream(file_, std::ios::binary) << whole;
    }
}

TEST_F(Confinement, aHardLinkedLogOrItsIndexOverwritesNothing) {
    Database(file_).execute("PRAGMA journal_mode = WAL");
    for (const char* suffix : {"-wal", "-shm"}) {
        SCOPED_TRACE(suffix);
        fs::create_hard_link(precious_, beside(suffix));
        EXPECT_THROW(table().clean(), SQLiteError);
        EXPECT_THROW(safari().clean(), SQLiteError);
        EXPECT_EQ(tests::readFile(precious_), "kept");
        fs::remove(beside(suffix));
        fs::remove(beside("-wal"));
    }
    EXPECT_EQ(rows("history_items"), 2);
}

TEST_F(Confinement, aHardLinkedJournalIsNotOverwritten) {
    fs::create_hard_link(precious_, beside("-journal"));
    EXPECT_THROW(table().clean(), SQLiteError);
    EXPECT_EQ(tests::readFile(precious_), "kept");
}

TEST_F(Confinement, linksInPlaceOfCompanionsAreNotFollowed) {
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
        SCOPED_TRACE(suffix);
        Database(file_).execute(suffix == std::string("-journal") ? "PRAGMA journal_mode = DELETE"
                                                                  : "PRAGMA journal_mode = WAL");
        for (const fs::path& target : {precious_, home_ / "Documents/new"}) {
            fs::create_symlink(target, beside(suffix));
            try {
                table().clean();
                safari().clean();
            } catch (const SQLiteError& error) {
                EXPECT_TRUE(error.errorDescription().has_value());
            }
            fs::remove(beside(suffix));
            EXPECT_EQ(tests::readFile(precious_), "kept");
            EXPECT_FALSE(fs::exists(home_ / "Documents/new"));
        }
    }
}

TEST_F(Confinement, aDatabaseThatIsALinkIsNotOpened) {
    const fs::path elsewhere = home_ / "Documents/History.db";
    fs::rename(file_, elsewhere);
    fs::create_symlink(elsewhere, file_);
    EXPECT_THROW(table().clean(), SQLiteError);
    EXPECT_THROW(safari().clean(), SQLiteError);
    EXPECT_EQ(Database(elsewhere).number("SELECT COUNT(*) FROM history_items"), 2);
}

TEST_F(Confinement, aFolderAboveItMayBeALink) {
    fs::rename(home_ / "data", home_ / "moved");
    fs::create_directory_symlink(home_ / "moved", home_ / "data");
    table().clean();
    EXPECT_EQ(rows("history_items"), 0);
}

/** A database elsewhere in the home, and a link to its folder in the place of a profile's. */
class LinkOnTheWay : public Confinement {
protected:
    void SetUp() override {
        fs::create_directories((home_ / link_).parent_path());
        fs::create_directory_symlink(home_ / "data", home_ / link_);
    }

    CleanableSQLiteDatabase tableBehind(std::shared_ptr<const FileManager> manager) const {
        return {home_ / link_ / "History.db",
                {SQLiteStatementComponents::withPatternColumn("history_items", "url", {})},
                std::move(manager)};
    }
    SafariHistoryCleanableDatabase safariBehind(std::shared_ptr<const FileManager> manager) const {
        return {home_ / link_ / "History.db", std::move(manager)};
    }

    fs::path link_ = "Library/Application Support/Browser/Profile 1";
    std::shared_ptr<OperationControl> control_ = std::make_shared<OperationControl>();
    std::shared_ptr<const FileManager> own_ = FileManager::forHome(home_.path(), control_);
};

TEST_F(LinkOnTheWay, keepsACleanFromWhatLiesBehindItAndIsTold) {
    const std::string whole = tests::readFile(file_);
    const std::vector<LeftOutFolder> told{{home_ / link_, "it is a link"}};
    tableBehind(own_).clean();
    EXPECT_EQ(control_->takeLeftOut(), told);
    safariBehind(own_).clean();
    EXPECT_EQ(control_->takeLeftOut(), told);
    EXPECT_EQ(tests::readFile(file_), whole);
}

/** Says that the way is free when it is asked first, as before another program has put a link
 * there. */
class LateLink : public ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;

    bool reaches(const fs::path& path) const override {
        return questions_++ == 0 || ForwardingFileManager::reaches(path);
    }

private:
    mutable int questions_ = 0;
};

TEST_F(LinkOnTheWay, keepsACleanAlsoWhenItAppearsBeforeTheFileIsOpened) {
    const std::string whole = tests::readFile(file_);
    tableBehind(std::make_shared<LateLink>(own_)).clean();
    safariBehind(std::make_shared<LateLink>(own_)).clean();
    EXPECT_EQ(tests::readFile(file_), whole);
}

TEST_F(Confinement, nothingWaitsForANamedPipe) {
    ASSERT_EQ(::mkfifo(beside("-journal").c_str(), 0600), 0);
    EXPECT_THROW(table().clean(), SQLiteError);
    EXPECT_THROW(safari().clean(), SQLiteError);
    EXPECT_ANY_THROW(safari().size());
    fs::remove(beside("-journal"));
    for (const char* suffix : {"-wal", "-shm"}) {
        Database(file_).execute("PRAGMA journal_mode = WAL");
        ASSERT_EQ(::mkfifo(beside(suffix).c_str(), 0600), 0);
        EXPECT_THROW(table().clean(), SQLiteError);
        EXPECT_THROW(safari().clean(), SQLiteError);
        fs::remove(beside(suffix));
        fs::remove(beside("-wal"));
    }
    fs::remove(file_);
    ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0);
    EXPECT_ANY_THROW(table().size());
    EXPECT_THROW(table().clean(), SQLiteError);
    EXPECT_ANY_THROW(safari().size());
    EXPECT_THROW(safari().clean(), SQLiteError);
}

TEST_F(Confinement, noStatementReachesAnotherFile) {
    const fs::path other = home_ / "Documents/other.db";
    Database(other).execute("CREATE TABLE t (x); INSERT INTO t VALUES (1)");
    const std::string whole = tests::readFile(other);
    const SQLiteConnection connection(file_);
    for (const std::string& statement :
         {"ATTACH '" + other.string() + "' AS o", "ATTACH '" + (home_ / "new").string() + "' AS o",
          "ATTACH 'file:" + other.string() + "?vfs=unix' AS o", std::string("ATTACH '' AS o"),
          "VACUUM INTO '" + (home_ / "new").string() + "'",
          std::string("SELECT load_extension('/tmp/no')"),
          std::string("SELECT COUNT(*) FROM dbstat"),
          std::string("CREATE VIRTUAL TABLE f USING fts5(x)")}) {
        SCOPED_TRACE(statement);
        EXPECT_THROW(connection.evaluate(statement, ExecuteEvaluator{}), SQLiteError);
    }
    EXPECT_EQ(tests::readFile(other), whole);
    EXPECT_FALSE(fs::exists(home_ / "new"));
    EXPECT_TRUE(connection.hasTable("precious"));
}

TEST_F(Confinement, aPathIsNeitherCutAtAZeroByteNorReadAsAnAddress) {
    const fs::path cut(file_.string() + std::string("\0.sqlite", 8));
    EXPECT_THROW(SQLiteConnection{cut}, SQLiteError);
    const fs::path before = fs::current_path();
    fs::current_path(home_.path());
    EXPECT_NO_THROW(SQLiteConnection("file:name?mode=memory"));
    fs::current_path(before);
    EXPECT_TRUE(fs::exists(home_ / "file:name?mode=memory"));
}

TEST_F(Confinement, noTriggerRuns) {
    Database(file_).execute(
        "CREATE TRIGGER one AFTER DELETE ON history_items BEGIN DELETE FROM precious; END;"
        "CREATE TRIGGER two BEFORE DELETE ON history_visits BEGIN"
        " INSERT INTO precious SELECT hex(zeroblob(1000000)); END;"
        "CREATE TRIGGER three BEFORE DELETE ON history_items BEGIN SELECT RAISE(IGNORE); END;");
    table().clean(std::vector<CleanableDataFilter>{{CleanableDataFilter::Rule::include, {"one"}}});
    EXPECT_EQ(rows("history_items"), 1);
    safari().clean();
    EXPECT_EQ(rows("history_visits"), 0);
    EXPECT_EQ(rows("history_items"), 0);
    EXPECT_EQ(Database(file_).text("SELECT group_concat(text) FROM precious"), "kept");
}

TEST_F(Confinement, noForeignKeyDeletesElsewhere) {
    Database(file_).execute(
        "CREATE TABLE child (item REFERENCES history_items (id) ON DELETE CASCADE);"
        "INSERT INTO child VALUES (1), (2);");
    table().clean();
    EXPECT_EQ(rows("child"), 2);
}

/** Gives what calls itself a table another definition. */
void forge(const fs::path& file, const std::string& table, const std::string& sql) {
    Database(file).execute("PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = '" + sql +
                           "', rootpage = 0 WHERE name = '" + table + "';");
}

TEST_F(Confinement, aTableThatIsAViewInTruthIsAnError) {
    forge(file_, "history_items",
          "CREATE VIEW history_items AS WITH RECURSIVE r(url) AS (SELECT 1 UNION ALL"
          " SELECT url FROM r) SELECT url FROM r");
    EXPECT_THROW(table().size(), SQLiteError);
    EXPECT_THROW(table().clean(), SQLiteError);
}

TEST_F(Confinement, aTableThatIsAVirtualOneInTruthIsAnError) {
    forge(file_, "history_items", "CREATE VIRTUAL TABLE history_items USING fts5(url)");
    EXPECT_THROW(table().size(), SQLiteError);
    EXPECT_THROW(table().clean(), SQLiteError);
}

}  // namespace
}  // namespace browsersweep
