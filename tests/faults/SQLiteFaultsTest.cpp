#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/platform/ProcessLauncher.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/SQLiteError.h"
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
using tests::TemporaryFolder;

/** Both kinds of database items over one file that suits both. */
class SQLiteFaults : public testing::Test {
protected:
    SQLiteFaults() {
        Database made(file_);
        made.execute(
            "PRAGMA page_size = 1024; BEGIN;"
            "CREATE TABLE history_items (id INTEGER PRIMARY KEY, url TEXT);"
            "CREATE TABLE history_visits (id INTEGER PRIMARY KEY, history_item INTEGER,"
            " visit_time REAL);"
            "CREATE TABLE precious (text TEXT);"
            "CREATE INDEX by_time ON history_visits (visit_time);");
        for (int row = 1; row <= 200; ++row) {
            const std::string number = std::to_string(row);
            made.execute("INSERT INTO history_items VALUES (" + number + ", 'https://host" +
                         number + ".example/');");
            made.execute("INSERT INTO history_visits VALUES (" + number + ", " + number + ", " +
                         number + ".5);");
        }
        made.execute("INSERT INTO precious VALUES ('kept'); COMMIT;");
    }

    CleanableSQLiteDatabase table() const {
        return {file_,
                {SQLiteStatementComponents::withPatternColumn("history_items", "url", {})},
                manager_};
    }
    SafariHistoryCleanableDatabase safari() const { return {file_, manager_}; }

    /** Every operation that there is; each may fail only with an error of SQLite or of the system.
     */
    void runAll() const {
        const auto attempt = [](auto operation) {
            try {
                operation();
            } catch (const SQLiteError&) {
                return;
            } catch (const fs::filesystem_error&) {
                return;
            }
        };
        attempt([&] { table().size(); });
        attempt([&] { safari().size(); });
        attempt([&] { safari().clean(); });
        attempt([&] { table().clean(); });
    }

    void expectNoTemporaryFiles() const {
        EXPECT_EQ(tests::filesBelow(home_ / "tmp"), tests::Files());
    }

    TemporaryFolder home_{tests::folderInMemory()};
    fs::path file_ = home_.makeFolder("data") / "History.db";
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);
    fs::path temporary_ = manager_->temporaryDirectory();
};

TEST_F(SQLiteFaults, randomlyDamagedPagesGiveAnErrorOrAResultAndHarmNothingElse) {
    const std::string whole = tests::readFile(file_);
    const fs::path neighbour = home_.write("data/Neighbour", "kept");
    std::mt19937 random(20240229);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        std::string damaged = whole;
        for (std::size_t count = 1 + below(40); count > 0; --count) {
            damaged[below(damaged.size())] = static_cast<char>(below(256));
        }
        std::ofstream(file_, std::ios::binary) << damaged;
        runAll();
        EXPECT_EQ(tests::readFile(neighbour), "kept");
        expectNoTemporaryFiles();
        fs::remove(file_.string() + "-journal");
    }
}

TEST_F(SQLiteFaults, damagedPagesOfDeepTreesGiveAnErrorOrAResultAndHarmNothingElse) {
    const std::string whole = tests::readFile(file_);
    ASSERT_GE(whole.size() / tests::pageSizeOf(whole), 20U);
    const fs::path neighbour = home_.write("data/Neighbour", "kept");
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        std::ofstream(file_, std::ios::binary) << tests::PageDamage(seed).damaged(whole);
        runAll();
        EXPECT_EQ(tests::readFile(neighbour), "kept");
        expectNoTemporaryFiles();
        fs::remove(file_.string() + "-journal");
    }
}

TEST_F(SQLiteFaults, aFileCutShortAnywhereGivesAnErrorOrAResult) {
    const std::string whole = tests::readFile(file_);
    for (std::size_t length = 0; length < whole.size(); length += length < 200 ? 1 : 509) {
        SCOPED_TRACE(length);
        std::ofstream(file_, std::ios::binary) << whole.substr(0, length);
        runAll();
        expectNoTemporaryFiles();
        fs::remove(file_.string() + "-journal");
    }
}

TEST_F(SQLiteFaults, aFileOfZeroBytesHoldsNothingAndStaysEmpty) {
    std::ofstream(file_, std::ios::trunc).close();
    EXPECT_EQ(table().size(), CleanableDataSize::zero);
    EXPECT_EQ(safari().size(), CleanableDataSize::zero);
    table().clean();
    safari().clean();
    EXPECT_EQ(fs::file_size(file_), 0U);
}

TEST_F(SQLiteFaults, aDatabaseLockedExclusivelyByAnotherProcessIsAnErrorToClean) {
    const ChildProcess browser([&](const ChildProcess::Ready& ready) {
        Database held(file_);
        held.execute("BEGIN EXCLUSIVE; INSERT INTO precious VALUES ('written by the browser');");
        ready();
    });
    EXPECT_THROW(table().clean(), SQLiteError);
    EXPECT_THROW(safari().clean(), SQLiteError);
    // Sizing works on a copy, which nobody has locked.
    EXPECT_EQ(table().size().itemCount, CleanableDataSize::Measurement(200));
    expectNoTemporaryFiles();
}

TEST_F(SQLiteFaults, aDatabaseBeingWrittenByAnotherProcessIsSilentlyNotCleaned) {
    {
        const ChildProcess browser([&](const ChildProcess::Ready& ready) {
            Database held(file_);
            held.execute("BEGIN IMMEDIATE; INSERT INTO precious VALUES ('being written');");
            ready();
        });
        EXPECT_NO_THROW(table().clean());
        EXPECT_NO_THROW(safari().clean());
    }
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM history_items"), 200);
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM history_visits"), 200);
}

TEST_F(SQLiteFaults, theJournalOfAProcessThatWasKilledIsPlayedBackBeforeCleaning) {
    {
        const ChildProcess browser([&](const ChildProcess::Ready& ready) {
            Database held(file_);
            held.execute(
                "PRAGMA cache_size = 1; PRAGMA synchronous = OFF; BEGIN;"
                "UPDATE history_items SET url = url || '" +
                std::string(4000, 'x') + "';");
            ready();
        });
    }
    ASSERT_TRUE(fs::exists(file_.string() + "-journal"));
    table().clean(
        std::vector<CleanableDataFilter>{{CleanableDataFilter::Rule::include, {"host7.example"}}});
    EXPECT_EQ(Database(file_).text("PRAGMA integrity_check"), "ok");
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM history_items"), 199);
    EXPECT_EQ(Database(file_).number("SELECT MAX(LENGTH(url)) FROM history_items"), 24);
    EXPECT_EQ(Database(file_).text("SELECT text FROM precious"), "kept");
}

TEST_F(SQLiteFaults, sizingASafariHistoryWithAHotJournalLeavesFileAndJournalAsTheyAre) {
    {
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
    const auto before = tests::filesBelow(home_ / "data");
    EXPECT_EQ(safari().size().itemCount, CleanableDataSize::Measurement(200));
    EXPECT_EQ(tests::differences(before, tests::filesBelow(home_ / "data")),
              std::vector<std::string>());
    expectNoTemporaryFiles();
}

TEST_F(SQLiteFaults, rowsInTheLogOfALivingBrowserAreDeletedAndTheDatabaseStaysWhole) {
    Database(file_).execute("PRAGMA journal_mode = WAL");
    const ChildProcess browser([&](const ChildProcess::Ready& ready) {
        Database held(file_);
        held.execute(
            "INSERT INTO history_items VALUES (1000, 'https://new.example/');"
            "INSERT INTO history_visits VALUES (1000, 1000, 7.0);");
        ready();
    });
    EXPECT_GT(fs::file_size(file_.string() + "-wal"), 0U);
    EXPECT_EQ(safari().size().itemCount, CleanableDataSize::Measurement(201));
    safari().clean();
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM history_visits"), 0);
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM history_items"), 0);
    EXPECT_EQ(Database(file_).text("PRAGMA integrity_check"), "ok");
    expectNoTemporaryFiles();
}

TEST_F(SQLiteFaults, aHeaderThatAsksReadersAloneForALogIsSizedOnACopy) {
    std::string contents = tests::readFile(file_);
    constexpr std::size_t versionToRead = 19;
    contents[versionToRead] = 2;
    std::ofstream(file_, std::ios::binary) << contents;
    const auto before = tests::filesBelow(home_ / "data");
    EXPECT_EQ(safari().size().itemCount, CleanableDataSize::Measurement(200));
    EXPECT_EQ(tests::filesBelow(home_ / "data"), before);
    expectNoTemporaryFiles();
}

/** Says that every file is there. */
class CredulousFileManager : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;
    FileExistence fileExists(const fs::path& /*path*/) const noexcept override {
        return {true, false};
    }
};

TEST_F(SQLiteFaults, aHistoryThatVanishesOnceItWasFoundIsAnErrorAndIsNotMadeAnew) {
    fs::remove(file_);
    const SafariHistoryCleanableDatabase vanished(file_,
                                                  std::make_shared<CredulousFileManager>(manager_));
    EXPECT_THROW(vanished.size(), fs::filesystem_error);
    EXPECT_FALSE(fs::exists(file_));
    EXPECT_TRUE(tests::filesBelow(temporary_).size() <= 1);  // the empty folder of a copy may stay
}

TEST_F(SQLiteFaults, aTableWithRowsInTheLogOfALivingBrowserIsCleanedWithThem) {
    Database(file_).execute("PRAGMA journal_mode = WAL");
    const ChildProcess browser([&](const ChildProcess::Ready& ready) {
        Database held(file_);
        held.execute(
            "INSERT INTO history_items VALUES (1000, 'https://new.example/');"
            "INSERT INTO precious VALUES ('kept too');");
        ready();
    });
    // The log is no part of the copy on which rows are counted.
    EXPECT_EQ(table().size().itemCount, CleanableDataSize::Measurement(200));
    table().clean(
        std::vector<CleanableDataFilter>{{CleanableDataFilter::Rule::include, {"new.example"}}});
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM history_items"), 200);
    table().clean();
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM history_items"), 0);
    EXPECT_EQ(Database(file_).text("SELECT group_concat(text) FROM precious"), "kept,kept too");
    EXPECT_EQ(Database(file_).text("PRAGMA integrity_check"), "ok");
    expectNoTemporaryFiles();
}

TEST_F(SQLiteFaults, whatAnOrdinaryUserMayOnlyReadIsSizedAndNotChangedByAClean) {
    constexpr fs::perms read =
        fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
    constexpr fs::perms enter =
        fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    constexpr fs::perms write =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    struct Case {
        const char* name;
        fs::perms file;
        fs::perms folder;
    };
    const std::string whole = tests::readFile(file_);
    fs::permissions(home_.path(), fs::perms::all);
    fs::permissions(temporary_, fs::perms::all);
    for (const Case& each :
         {Case{"both", read, read | enter}, Case{"the file", read, read | write | enter},
          Case{"the folder", read | write, read | enter}}) {
        SCOPED_TRACE(each.name);
        fs::permissions(file_, each.file);
        fs::permissions(file_.parent_path(), each.folder);
        const int status = tests::runAsOrdinaryUser([&] {
            EXPECT_EQ(table().size().itemCount, CleanableDataSize::Measurement(200));
            EXPECT_EQ(safari().size().itemCount, CleanableDataSize::Measurement(200));
            // A write refused is none of SQLite's plain errors: like a lock, it is silently not
            // done.
            EXPECT_NO_THROW(table().clean());
            EXPECT_NO_THROW(safari().clean());
        });
        EXPECT_EQ(status, 0);
        EXPECT_EQ(tests::readFile(file_), whole);
        EXPECT_EQ(tests::filesBelow(file_.parent_path()).size(), 1U);
        expectNoTemporaryFiles();
    }
}

/** A small file system in memory, gone with the object. Only root may mount one, and not anywhere.
 */
class SmallFileSystem {
public:
    explicit SmallFileSystem(const fs::path& folder) : folder_(folder) {
        run("/bin/mount", {"-t", "tmpfs", "-o", "size=256k", "small", folder_.string()});
        isMounted_ = fs::space(folder_).capacity <= capacity;
    }
    SmallFileSystem(const SmallFileSystem&) = delete;
    SmallFileSystem& operator=(const SmallFileSystem&) = delete;
    ~SmallFileSystem() {
        if (isMounted_) {
            run("/bin/umount", {"-l", folder_.string()});
        }
    }
    bool isMounted() const noexcept { return isMounted_; }

    void fill() const {
        std::ofstream stream(folder_ / "filler", std::ios::binary);
        const std::string block(4096, 'x');
        while (stream.write(block.data(), static_cast<std::streamsize>(block.size())).flush()) {
        }
    }

private:
    static constexpr std::uintmax_t capacity = 256 * 1024;

    static void run(const char* program, const std::vector<std::string>& arguments) {
        ProcessLauncher::system()->runAndWait(program, arguments);
    }

    fs::path folder_;
    bool isMounted_ = false;
};

TEST_F(SQLiteFaults, aFullDiskIsNoReasonNotToClean) {
    const SmallFileSystem disk(temporary_);
    const SmallFileSystem own(std::getenv("TMPDIR"));
    if (!disk.isMounted() || !own.isMounted()) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    disk.fill();
    own.fill();
    // So many visits that SQLite has to put their numbers aside.
    Database(file_).execute(
        "WITH n(i) AS (SELECT 1000 UNION ALL SELECT i + 1 FROM n WHERE i < 400000)"
        " INSERT INTO history_visits SELECT i, 1, i FROM n;");
    safari().clean(
        std::vector<CleanableDataFilter>{{CleanableDataFilter::Rule::exclude, {"none"}}});
    table().clean();
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM history_visits"), 0);
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM history_items"), 0);
}

TEST_F(SQLiteFaults, aCopyThatHasNoRoomIsRefusedBeforeItIsBegun) {
    const SmallFileSystem disk(temporary_);
    if (!disk.isMounted()) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    Database(file_).execute("INSERT INTO precious VALUES (hex(zeroblob(200000)))");
    try {
        table().size();
        FAIL() << "a copy fitted on a small disk";
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_space_on_device);
        EXPECT_NE(std::string(error.what()).find("no room for a copy"), std::string::npos);
    }
    EXPECT_EQ(tests::filesBelow(temporary_), tests::Files());
}

TEST_F(SQLiteFaults, aFullDiskFailsTheCopyWithItsErrorAndLeavesNothingButAnEmptyFolder) {
    const SmallFileSystem disk(temporary_);
    if (!disk.isMounted()) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    disk.fill();
    try {
        table().size();
        FAIL() << "a copy fitted on a full disk";
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_space_on_device);
    }
    for (const auto& [name, contents] : tests::filesBelow(temporary_)) {
        EXPECT_TRUE(name == "filler" || name.back() == '/') << name;
    }
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM history_items"), 200);
}

TEST_F(SQLiteFaults, aCleanOnAFullDiskLeavesTheDatabaseWhole) {
    const SmallFileSystem disk(temporary_);
    if (!disk.isMounted()) {
        GTEST_SKIP() << "no file system can be mounted here";
    }
    const fs::path moved = temporary_ / "History.db";
    fs::copy_file(file_, moved);
    disk.fill();
    const CleanableSQLiteDatabase item(
        moved, {SQLiteStatementComponents::withPatternColumn("history_items", "url", {})},
        manager_);
    try {
        item.clean(
            std::vector<CleanableDataFilter>{{CleanableDataFilter::Rule::include, {"host1"}}});
    } catch (const SQLiteError& error) {
        EXPECT_TRUE(error.errorDescription().has_value());
    }
    EXPECT_EQ(Database(moved).text("PRAGMA integrity_check"), "ok");
    EXPECT_EQ(Database(moved).text("SELECT text FROM precious"), "kept");
}

}  // namespace
}  // namespace browsersweep
