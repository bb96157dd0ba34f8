#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sites/internal/DatabaseTraceStore.h"
#include "browsersweep/sqlite/SQLiteError.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/Database.h"
#include "tests/support/DatabaseContents.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

using tests::ChildProcess;
using tests::contentsOf;
using tests::Database;
using tests::filesHolding;
using tests::readFile;
using tests::TemporaryFolder;

// clang-format off
constexpr std::array resets{ColumnReset{"visits", "0"}, ColumnReset{"score", "-1", false}};

constexpr std::array tables{
    TraceTable{.name = "notes", .rule = TableRule::follows, .relation = {"page", "pages", "id", {"url"}}},
    TraceTable{.name = "pages", .columns = {{{"url"}}}, .lastUsed = {"used"}, .condition = "NOT isProtected(url)"},
    TraceTable{.name = "pages", .rule = TableRule::resets, .columns = {{{"url"}}}, .lastUsed = {"used"},
               .condition = "isProtected(url)", .resets = resets},
    TraceTable{.name = "notes", .rule = TableRule::orphans, .relation = {"page", "pages", "id", {}}},
    TraceTable{.name = "words", .kind = TraceKind::formData, .rule = TableRule::mixed, .meaning = "typed words"},
    TraceTable{.name = "permissions", .kind = TraceKind::settings, .columns = {{{"host", SiteForm::host}}}},
};
// clang-format on

const std::string schema =
    "CREATE TABLE pages (id INTEGER PRIMARY KEY, url TEXT, used INTEGER, visits INTEGER DEFAULT 0,"
    " score INTEGER DEFAULT 7); CREATE INDEX pages_url ON pages (url);"
    "CREATE TABLE notes (id INTEGER PRIMARY KEY, page INTEGER, note TEXT);"
    "CREATE TABLE words (word TEXT); CREATE TABLE permissions (host TEXT, value INTEGER);"
    "CREATE TABLE other (text TEXT); INSERT INTO other VALUES ('kept');";

const std::string rows =
    "INSERT INTO pages (id, url, used) VALUES"
    " (1, 'https://www.gone.test/1', 13300000000000000), (2, 'https://gone.test/2', 0),"
    " (3, 'https://kept.test/', 13300000001000000), (4, 'file:///home', NULL);"
    "INSERT INTO notes VALUES (1, 1, 'note of gone.test'), (3, 3, 'note of kept.test'),"
    " (9, 9, 'lost note');";

Site site(const std::string& name) {
    return *Site::ofHost(name);
}

SiteSelection onlyGone() {
    return SiteSelection::only({site("gone.test")});
}

CleanableDataSize approximately(std::int64_t items, std::int64_t bytes) {
    return {items, {bytes, true}};
}

class DatabaseTraceStoreTest : public testing::Test {
protected:
    DatabaseTraceStoreTest() { home_.makeFolder("tmp"); }

    void make(const std::string& sql = schema + rows) const { Database(file_).execute(sql); }

    DatabaseTraceStore store(std::shared_ptr<const FileManager> manager = nullptr) const {
        return {{file_, tables, [] { return ProtectedAddresses{"https://mark.gone.test/"}; }},
                manager ? manager : manager_};
    }

    ForgetOutcome forget(const SiteSelection& selection) const {
        return store().forget({selection, {}, false, false, {}});
    }

    /** The code of the error that the work ends with; 0 where it succeeds. */
    template <typename Work>
    static int codeOf(Work work) {
        try {
            work();
        } catch (const SQLiteError& error) {
            EXPECT_STRNE(error.what(), "");
            return error.resultCode() & 0xff;
        }
        return 0;
    }

    fs::path beside(const char* suffix) const { return fs::path(file_) += suffix; }

    TemporaryFolder home_{tests::folderInMemory()};
    fs::path file_ = home_.makeFolder("data") / "traces.db";
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);
};

/** Values whose lengths are told apart: numbers, letters, bytes, and what a column's type is. */
const std::string valuesOfAllKinds =
    "CREATE TABLE permissions (host TEXT, value INTEGER, fraction REAL, name VARCHAR, bytes BLOB,"
    " any);"
    "INSERT INTO permissions VALUES"
    " ('a.test', 0, 0.5, NULL, NULL, NULL), ('a.test', -120, -2.0, '\u00e4\u20acx', x'0001', 7),"
    " ('a.test', 9223372036854775807, 1e300, cast(x'61006263' AS TEXT), zeroblob(5000), 'text'),"
    " ('a.test', -9223372036854775808, 10, cast(x'80c3' AS TEXT), 'as text', 1.25),"
    " ('a.test', x'616263', 'words', 99, 12, x'');";

TEST_F(DatabaseTraceStoreTest, aRowCountsWithTheLengthsThatSQLiteGivesItsValues) {
    for (const char* encoding : {"UTF-8", "UTF-16le"}) {
        const fs::path file = home_ / (std::string("data/") + encoding);
        const Database database(file);
        database.execute("PRAGMA encoding = '" + std::string(encoding) + "';" + valuesOfAllKinds);
        const auto expected = database.number(
            "SELECT sum(length(host) + coalesce(length(value), 0) + coalesce(length(fraction), 0) +"
            " coalesce(length(name), 0) + coalesce(length(bytes), 0) + coalesce(length(any), 0))"
            " FROM permissions");
        const auto listing = DatabaseTraceStore({file, tables}, manager_).list({});
        ASSERT_EQ(listing.bySite.size(), 1U);
        EXPECT_EQ(listing.bySite[0].size, approximately(5, expected));
    }
}

TEST_F(DatabaseTraceStoreTest, aTableOfManyColumnsIsListedWhole) {
    std::string columns;
    std::string values;
    for (int number = 0; number < 200; ++number) {
        columns += ", c" + std::to_string(number) + " INTEGER";
        values += ", 12";
    }
    make("CREATE TABLE permissions (host TEXT" + columns +
         "); INSERT INTO permissions VALUES ('a.test'" + values + ")");
    const auto listing = store().list({});
    ASSERT_EQ(listing.bySite.size(), 1U);
    EXPECT_EQ(listing.bySite[0].size, approximately(1, 6 + 200 * 2));
}

TEST_F(DatabaseTraceStoreTest, aFileThatIsMissingHoldsNothingAndIsNotMade) {
    const auto before = home_.snapshot();
    EXPECT_EQ(store().list({}), TraceListing{});
    EXPECT_EQ(forget(SiteSelection::everything()), ForgetOutcome{});
    EXPECT_EQ(home_.snapshot(), before);
}

TEST_F(DatabaseTraceStoreTest, aLinkOnTheWayKeepsItsDatabaseFromBeingListedAndForgotten) {
    make();
    const std::string whole = readFile(file_);
    const fs::path link = home_ / "Library/Application Support/Browser/Profile 1";
    fs::create_directories(link.parent_path());
    fs::create_directory_symlink(home_ / "data", link);
    const auto control = std::make_shared<OperationControl>();
    const std::vector<LeftOutFolder> told{{link, "it is a link"}};
    const DatabaseTraceStore behind({link / "traces.db", tables, {}},
                                    FileManager::forHome(home_.path(), control));
    EXPECT_EQ(behind.list({}), TraceListing{});
    EXPECT_EQ(control->takeLeftOut(), told);
    EXPECT_EQ(behind.forget({SiteSelection::everything(), {}, false, false, {}}), ForgetOutcome{});
    EXPECT_EQ(control->takeLeftOut(), told);
    EXPECT_EQ(readFile(file_), whole);
}

TEST_F(DatabaseTraceStoreTest, aMessageIsReadWholeAlthoughItsBytesLookLikeLines) {
    static constexpr std::array messages{
        TraceTable{.name = "hints", .columns = {{{"message", SiteForm::message}}}}};
    Database(file_).execute(
        "CREATE TABLE hints (message BLOB);"
        // Field 1 is the host "www.kept.test", field 3 a message with the same.
        "INSERT INTO hints VALUES (x'0A0D7777772E6B6570742E74657374"
        "1A0F0A0D7777772E6B6570742E74657374');");
    const DatabaseTraceStore hints({file_, messages, {}}, manager_);
    const TraceListing listing = hints.list({});
    ASSERT_EQ(listing.bySite.size(), 1U);
    EXPECT_EQ(listing.bySite.front().hosts, std::set<std::string>{"www.kept.test"});
}

TEST_F(DatabaseTraceStoreTest, aListingCountsTheRowsOfEachSiteAndWhatHasNone) {
    make();
    Database(file_).execute(
        "INSERT INTO words VALUES ('one'), ('three'); INSERT INTO permissions VALUES "
        "('.kept.test', 1);"
        "INSERT INTO pages VALUES (5, 'https://mark.gone.test/', 13300000002000000, 3, 7);");
    TraceListing expected;
    expected.bySite = {
        {site("gone.test"),
         TraceKind::history,
         {"www.gone.test", "gone.test", "mark.gone.test"},
         approximately(3, 1 + 23 + 17 + 1 + 1 + 1 + 19 + 1 + 1 + 1 + 1 + 23 + 17 + 1 + 1),
         dateFrom1970Seconds(13300000002.0 - 11644473600.0)},
        {site("kept.test"),
         TraceKind::history,
         {"kept.test"},
         approximately(1, 1 + 18 + 17 + 1 + 1),
         dateFrom1970Seconds(13300000001.0 - 11644473600.0)},
        {site("kept.test"), TraceKind::settings, {"kept.test"}, approximately(1, 11), {}},
    };
    expected.notBySite = {{TraceKind::formData, file_, approximately(2, 8), "typed words"}};
    EXPECT_EQ(store().list({}), expected);
    EXPECT_EQ(store().kinds(),
              (std::set{TraceKind::history, TraceKind::formData, TraceKind::settings}));
    EXPECT_EQ(store().places(), std::vector{file_});
}

TEST_F(DatabaseTraceStoreTest, aListingReadsWhatWaitsInALogAndChangesNothing) {
    make("PRAGMA journal_mode = WAL;" + schema);
    {
        const ChildProcess browser([&](const ChildProcess::Ready& ready) {
            const Database held(file_);
            held.execute(rows);
            ready();
        });
    }
    for (const bool isWithIndex : {true, false}) {
        SCOPED_TRACE(isWithIndex);
        if (!isWithIndex) {
            fs::remove(beside("-shm"));
        }
        const auto before = home_.snapshot();
        EXPECT_EQ(store().list({}).bySite.size(), 2U);
        EXPECT_TRUE(home_.snapshot() == before);
    }
}

TEST_F(DatabaseTraceStoreTest, whatBelongsToASiteGoesWithAllThatRefersToIt) {
    make();
    EXPECT_EQ(forget(onlyGone()), ForgetOutcome{});
    EXPECT_EQ(contentsOf(file_), (Lines{"notes: 3|3|note of kept.test", "other: kept",
                                        "pages: 3|https://kept.test/|13300000001000000|0|7",
                                        "pages: 4|file:///home|NULL|0|7"}));
    EXPECT_EQ(filesHolding(file_, "gone.test"), Lines{});
}

TEST_F(DatabaseTraceStoreTest, whatHasNoSiteGoesWithAllButSome) {
    make();
    Database(file_).execute("INSERT INTO words VALUES ('typed')");
    EXPECT_EQ(forget(SiteSelection::allBut({site("kept.test")})), ForgetOutcome{});
    EXPECT_EQ(contentsOf(file_), (Lines{"notes: 3|3|note of kept.test", "other: kept",
                                        "pages: 3|https://kept.test/|13300000001000000|0|7"}));
}

TEST_F(DatabaseTraceStoreTest, aProtectedRowStaysWithoutItsTraces) {
    make();
    Database(file_).execute(
        "INSERT INTO pages VALUES (5, 'https://mark.gone.test/', 5, 3, 7);"
        "INSERT INTO notes VALUES (5, 5, 'note')");
    forget(onlyGone());
    EXPECT_EQ(contentsOf(file_),
              (Lines{"notes: 3|3|note of kept.test", "other: kept",
                     "pages: 3|https://kept.test/|13300000001000000|0|7",
                     "pages: 4|file:///home|NULL|0|7", "pages: 5|https://mark.gone.test/|5|0|-1"}));
}

TEST_F(DatabaseTraceStoreTest, whereNothingIsSelectedNoByteIsWritten) {
    make();
    const std::string before = readFile(file_);
    const auto other = SiteSelection::only({site("other.test")});
    EXPECT_EQ(forget(other), ForgetOutcome{});
    EXPECT_EQ(readFile(file_), before);
    forget(SiteSelection::everything());
    const std::string emptied = readFile(file_);
    forget(SiteSelection::everything());
    forget(SiteSelection::allBut({site("kept.test")}));
    EXPECT_EQ(readFile(file_), emptied);
    EXPECT_EQ(store().forget({SiteSelection::everything(), {TraceKind::cookies}, true, true, {}}),
              ForgetOutcome{});
    EXPECT_EQ(readFile(file_), emptied);
}

TEST_F(DatabaseTraceStoreTest, whereNothingIsSelectedALogStaysAsItIs) {
    make("PRAGMA journal_mode = WAL;" + schema);
    {
        const ChildProcess browser([&](const ChildProcess::Ready& ready) {
            const Database held(file_);
            held.execute(rows);
            ready();
        });
    }
    const auto before = home_.snapshot();
    forget(SiteSelection::only({site("other.test")}));
    EXPECT_TRUE(home_.snapshot() == before);
}

TEST_F(DatabaseTraceStoreTest, whatWasDeletedEarlierIsOverwrittenWithEverything) {
    for (const std::string& state :
         {std::string("DELETE FROM pages; DELETE FROM notes"),               // in pages in use
          std::string("DELETE FROM pages WHERE id < 3; DELETE FROM notes"),  // the rest is found
          std::string("DELETE FROM pages"),                                  // orphans
          "INSERT INTO words VALUES ('gone.test" + std::string(100000, 'x') +
              "'); DELETE FROM pages; DELETE FROM notes; DELETE FROM words"}) {  // free pages
        SCOPED_TRACE(state.substr(0, 60));
        make();
        Database(file_).execute("PRAGMA secure_delete = OFF;" + state);
        ASSERT_EQ(filesHolding(file_, "gone.test"), Lines{"traces.db"});
        EXPECT_EQ(forget(SiteSelection::everything()), ForgetOutcome{});
        EXPECT_EQ(filesHolding(file_, "gone.test"), Lines{});
        EXPECT_EQ(contentsOf(file_), Lines{"other: kept"});
        fs::remove(file_);
    }
}

TEST_F(DatabaseTraceStoreTest, mixedTablesStayWhereOnlySomeSitesAreMeant) {
    make();
    Database(file_).execute("INSERT INTO words VALUES ('typed')");
    const ForgetOutcome kept{
        {{TraceKind::formData, file_,
          "typed words; not stored by site, so it goes for all sites or for none"}},
        true};
    EXPECT_EQ(forget(onlyGone()), kept);
    EXPECT_EQ(forget(SiteSelection::only({site("other.test")})), kept);
    EXPECT_EQ(Database(file_).text("SELECT word FROM words"), "typed");
    EXPECT_EQ(store().forget({onlyGone(), {TraceKind::history}, false, false, {}}),
              ForgetOutcome{});
    EXPECT_EQ(store().forget({onlyGone(), {}, true, false, {}}), ForgetOutcome{});
    EXPECT_EQ(Database(file_).text("SELECT word FROM words"), "");
}

TEST_F(DatabaseTraceStoreTest, settingsGoOnlyWhereTheyAreAskedFor) {
    const std::string two = "INSERT INTO permissions VALUES ('gone.test', 1), ('kept.test', 1)";
    make(schema + two);
    forget(SiteSelection::everything());
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM permissions"), 2);
    store().forget({onlyGone(), {TraceKind::settings}, false, false, {}});
    EXPECT_EQ(Database(file_).text("SELECT group_concat(host) FROM permissions"), "kept.test");
    store().forget({SiteSelection::everything(), {}, false, true, {}});
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM permissions"), 0);
}

TEST_F(DatabaseTraceStoreTest, onlyTablesOfTheKindsThatAreAskedForChange) {
    make();
    Database(file_).execute("INSERT INTO words VALUES ('typed')");
    store().forget({SiteSelection::everything(), {TraceKind::formData}, false, false, {}});
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM pages"), 4);
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM notes"), 3);
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM words"), 0);
}

TEST_F(DatabaseTraceStoreTest, aTableWithoutTheColumnsThatTellSitesIsMixed) {
    make("CREATE TABLE permissions (pattern TEXT); INSERT INTO permissions VALUES ('gone.test')");
    const ForgetRequest request{onlyGone(), {}, false, true, {}};
    EXPECT_EQ(store().forget(request).kept.size(), 1U);
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM permissions"), 1);
    EXPECT_EQ(store().list({}).notBySite,
              (std::vector<MixedTrace>{{TraceKind::settings, file_, approximately(1, 9),
                                        "entries that do not say which site they belong to"}}));
    store().forget({SiteSelection::everything(), {}, false, true, {}});
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM permissions"), 0);
}

TEST_F(DatabaseTraceStoreTest, missingTablesAndColumnsAreSkipped) {
    make(
        "CREATE TABLE pages (id INTEGER PRIMARY KEY, url TEXT);"
        "INSERT INTO pages VALUES (1, 'https://gone.test/'), (2, 'https://kept.test/')");
    EXPECT_EQ(store().list({}).bySite.size(), 2U);
    forget(onlyGone());
    EXPECT_EQ(contentsOf(file_), Lines{"pages: 2|https://kept.test/"});
}

TEST_F(DatabaseTraceStoreTest, aLockedDatabaseIsAnErrorAndNotOneWithoutRows) {
    for (const char* mode : {"DELETE", "WAL"}) {
        SCOPED_TRACE(mode);
        make("PRAGMA journal_mode = " + std::string(mode) + ";" + schema + rows);
        for (const char* lock : {"BEGIN IMMEDIATE", "BEGIN EXCLUSIVE"}) {
            SCOPED_TRACE(lock);
            const Lines before = contentsOf(file_);
            {
                const ChildProcess browser([&](const ChildProcess::Ready& ready) {
                    const Database held(file_);
                    held.execute(lock);
                    ready();
                });
                EXPECT_EQ(codeOf([&] { forget(onlyGone()); }), 5);
            }
            EXPECT_EQ(contentsOf(file_), before);
        }
        fs::remove(file_);
        fs::remove(beside("-wal"));
        fs::remove(beside("-shm"));
    }
}

TEST_F(DatabaseTraceStoreTest, aListingOfADatabaseThatNobodyMayReadNowIsAnError) {
    make();
    const ChildProcess browser([&](const ChildProcess::Ready& ready) {
        const Database held(file_);
        held.execute("BEGIN EXCLUSIVE");
        ready();
    });
    EXPECT_EQ(codeOf([&] { store().list({}); }), 5);
}

TEST_F(DatabaseTraceStoreTest, aReaderKeepsTheFileFromBeingWrittenAnew) {
    for (const char* mode : {"DELETE", "WAL"}) {
        SCOPED_TRACE(mode);
        make("PRAGMA journal_mode = " + std::string(mode) + ";" + schema + rows);
        {
            const ChildProcess browser([&](const ChildProcess::Ready& ready) {
                const Database held(file_);
                held.execute("BEGIN; SELECT * FROM pages");
                ready();
            });
            EXPECT_EQ(codeOf([&] { forget(onlyGone()); }), 5);
        }
        EXPECT_EQ(forget(SiteSelection::everything()), ForgetOutcome{});
        EXPECT_EQ(filesHolding(file_, "gone.test"), Lines{});
        fs::remove(file_);
    }
}

TEST_F(DatabaseTraceStoreTest, aDamagedDatabaseIsRefusedAndStaysAsItIs) {
    make();
    Database(file_).execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000)"
        " INSERT INTO other SELECT 'some text ' || i FROM n");
    std::string bytes = readFile(file_);
    const std::size_t lastPage = bytes.size() - 4096;
    bytes.replace(lastPage, 40, std::string(40, '\x7f'));
    std::ofstream(file_, std::ios::binary) << bytes;
    EXPECT_EQ(codeOf([&] { forget(onlyGone()); }), 11);
    EXPECT_TRUE(readFile(file_) == bytes);
    EXPECT_FALSE(fs::exists(beside("-journal")));
}

TEST_F(DatabaseTraceStoreTest, aFileThatIsNoDatabaseIsAnErrorAndStaysAsItIs) {
    home_.write("data/traces.db", std::string(5000, 'x'));
    EXPECT_EQ(codeOf([&] { store().list({}); }), 26);
    EXPECT_EQ(codeOf([&] { forget(SiteSelection::everything()); }), 26);
    EXPECT_EQ(readFile(file_), std::string(5000, 'x'));
}

TEST_F(DatabaseTraceStoreTest, aLinkInItsPlaceIsNotFollowed) {
    make();
    const fs::path elsewhere = home_ / "elsewhere.db";
    fs::rename(file_, elsewhere);
    fs::create_symlink(elsewhere, file_);
    const std::string before = readFile(elsewhere);
    EXPECT_EQ(codeOf([&] { store().list({}); }), 14);
    EXPECT_EQ(codeOf([&] { forget(SiteSelection::everything()); }), 14);
    EXPECT_EQ(readFile(elsewhere), before);
}

TEST_F(DatabaseTraceStoreTest, whatMayNotBeReadOrWrittenIsAnError) {
    make();
    for (const fs::path& folder : {home_.path(), file_.parent_path(), home_ / "tmp"}) {
        fs::permissions(folder, fs::perms::others_all, fs::perm_options::add);
    }
    fs::permissions(file_, fs::perms::owner_read | fs::perms::others_read);
    const int readable = tests::runAsOrdinaryUser([&] {
        EXPECT_EQ(store().list({}).bySite.size(), 2U);
        EXPECT_EQ(codeOf([&] { forget(onlyGone()); }), 8);
    });
    EXPECT_EQ(readable, 0);
    fs::permissions(file_, fs::perms::none);
    const int unreadable = tests::runAsOrdinaryUser([&] {
        EXPECT_THROW(store().list({}), fs::filesystem_error);
        EXPECT_EQ(codeOf([&] { forget(onlyGone()); }), 14);
    });
    EXPECT_EQ(unreadable, 0);
    fs::permissions(file_, fs::perms::owner_all);
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM pages"), 4);
}

TEST_F(DatabaseTraceStoreTest, aFolderThatMayNotBeEnteredIsNotAFileThatIsMissing) {
    make();
    fs::permissions(home_.path(), fs::perms::others_all, fs::perm_options::add);
    fs::permissions(file_.parent_path(), fs::perms::none);
    EXPECT_EQ(tests::runAsOrdinaryUser([&] {
                  EXPECT_THROW(store().list({}), fs::filesystem_error);
                  EXPECT_THROW(forget(onlyGone()), fs::filesystem_error);
              }),
              0);
    fs::permissions(file_.parent_path(), fs::perms::owner_all);
}

TEST_F(DatabaseTraceStoreTest, aLogOfAKilledBrowserIsEmptiedAndNotDeletedUnread) {
    make("PRAGMA journal_mode = WAL;" + schema);
    {
        const ChildProcess browser([&](const ChildProcess::Ready& ready) {
            const Database held(file_);
            held.execute(rows);
            ready();
        });
    }
    ASSERT_EQ(filesHolding(file_, "gone.test"), Lines{"traces.db-wal"});
    forget(onlyGone());
    EXPECT_EQ(filesHolding(file_, "gone.test"), Lines{});
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM pages"), 2);
}

TEST_F(DatabaseTraceStoreTest, aJournalThatABrowserLetStandHoldsNothingAfterwards) {
    for (const char* mode : {"PERSIST", "TRUNCATE"}) {
        SCOPED_TRACE(mode);
        make();
        Database(file_).execute(
            "PRAGMA journal_mode = " + std::string(mode) +
            "; PRAGMA secure_delete = OFF; DELETE FROM pages; DELETE FROM notes");
        forget(SiteSelection::everything());
        EXPECT_EQ(filesHolding(file_, "gone.test"), Lines{});
        fs::remove(file_);
    }
}

TEST_F(DatabaseTraceStoreTest, aJournalThatABrowserLetStandBesideALogGoesToo) {
    make();
    Database(file_).execute(
        "PRAGMA journal_mode = PERSIST; PRAGMA secure_delete = OFF;"
        "DELETE FROM pages WHERE id < 3");
    const std::string journal = readFile(beside("-journal"));
    Database(file_).execute("PRAGMA journal_mode = WAL");
    std::ofstream(beside("-journal"), std::ios::binary) << journal;
    forget(SiteSelection::everything());
    EXPECT_EQ(filesHolding(file_, "gone.test"), Lines{});
}

TEST_F(DatabaseTraceStoreTest, anUnfinishedTransactionIsTakenBackFirst) {
    make();
    {
        const ChildProcess browser([&](const ChildProcess::Ready& ready) {
            const Database held(file_);
            held.execute(
                "PRAGMA cache_size = 1; PRAGMA synchronous = OFF; BEGIN;"
                "DELETE FROM pages; UPDATE other SET text = '" +
                std::string(100000, 'x') + "'");
            ready();
        });
    }
    forget(onlyGone());
    EXPECT_EQ(contentsOf(file_), (Lines{"notes: 3|3|note of kept.test", "other: kept",
                                        "pages: 3|https://kept.test/|13300000001000000|0|7",
                                        "pages: 4|file:///home|NULL|0|7"}));
    EXPECT_EQ(filesHolding(file_, "gone.test"), Lines{});
}

TEST_F(DatabaseTraceStoreTest, whereItIsStoppedTheFileIsOldOrNew) {
    bool wasStopped = false;
    bool wasDone = false;
    for (int steps = 1; !wasDone; steps += 3) {
        make();
        const Lines old = contentsOf(file_);
        int asked = 0;
        const auto control = std::make_shared<OperationControl>(
            [&](const OperationProgress&) { return ++asked > steps; });
        const auto manager = FileManager::forHome(home_.path(), control);
        try {
            store(manager).forget({onlyGone(), {}, false, false, {}});
            wasDone = true;
        } catch (const OperationCancelled&) {
            wasStopped = true;
        }
        Lines contents = contentsOf(file_);
        EXPECT_TRUE(contents == old || contents.size() == 4) << steps;
        EXPECT_EQ(Database(file_).text("PRAGMA integrity_check"), "ok");
        forget(onlyGone());
        EXPECT_EQ(filesHolding(file_, "gone.test"), Lines{}) << steps;
        fs::remove(file_);
    }
    EXPECT_TRUE(wasStopped);
}

TEST_F(DatabaseTraceStoreTest, nothingInASchemaRuns) {
    make(
        "CREATE VIEW pages AS SELECT 1 AS id, 'https://gone.test/' AS url;"
        "CREATE TABLE permissions (host TEXT); INSERT INTO permissions VALUES ('gone.test');"
        "CREATE TABLE other (text TEXT); INSERT INTO other VALUES ('kept');"
        "CREATE TRIGGER t AFTER DELETE ON permissions BEGIN DELETE FROM other; END;");
    EXPECT_EQ(store().list({}).bySite.size(), 1U);
    store().forget({SiteSelection::everything(), {}, false, true, {}});
    EXPECT_EQ(Database(file_).text("SELECT text FROM other"), "kept");
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM pages"), 1);
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM permissions"), 0);
}

TEST_F(DatabaseTraceStoreTest, aVirtualTableInPlaceOfATableIsNone) {
    make(
        "CREATE VIRTUAL TABLE pages USING fts5 (url);"
        "CREATE TABLE permissions (host TEXT); INSERT INTO permissions VALUES ('gone.test');");
    EXPECT_EQ(store().list({}).bySite.size(), 1U);
    store().forget({SiteSelection::everything(), {}, false, true, {}});
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM permissions"), 0);
}

TEST_F(DatabaseTraceStoreTest, aHugeValueIsReadAndForgotten) {
    make();
    Database(file_).execute(
        "INSERT INTO pages (id, url) VALUES (7, 'https://gone.test/' || hex(zeroblob(20000000)))");
    EXPECT_EQ(store().list({}).bySite.front().size.itemCount.value, 3);
    forget(onlyGone());
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM pages"), 2);
    EXPECT_LT(fs::file_size(file_), 100000U);
}

TEST_F(DatabaseTraceStoreTest, aLargeFileIsWrittenAnewThroughAPrivateFolderThatGoes) {
    make();
    Database(file_).execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20)"
        " INSERT INTO other SELECT zeroblob(1000000) FROM n");
    EXPECT_EQ(forget(onlyGone()), ForgetOutcome{});
    EXPECT_EQ(filesHolding(file_, "gone.test"), Lines{});
    EXPECT_EQ(Database(file_).number("SELECT COUNT(*) FROM other"), 21);
    EXPECT_TRUE(fs::is_empty(home_ / "tmp"));
}

TEST_F(DatabaseTraceStoreTest, whatTheFileIsLikeStays) {
    make(
        "PRAGMA page_size = 32768; PRAGMA auto_vacuum = 2; PRAGMA encoding = 'UTF-16le';"
        "PRAGMA journal_mode = WAL; PRAGMA user_version = 77; PRAGMA application_id = 5;" +
        schema + rows);
    forget(onlyGone());
    const Database database(file_);
    EXPECT_EQ(database.number("SELECT COUNT(*) FROM pages"), 2);
    EXPECT_EQ(database.text("PRAGMA page_size"), "32768");
    EXPECT_EQ(database.text("PRAGMA auto_vacuum"), "2");
    EXPECT_EQ(database.text("PRAGMA encoding"), "UTF-16le");
    EXPECT_EQ(database.text("PRAGMA journal_mode"), "wal");
    EXPECT_EQ(database.text("PRAGMA user_version"), "77");
    EXPECT_EQ(database.text("PRAGMA application_id"), "5");
}

}  // namespace
}  // namespace browsersweep
