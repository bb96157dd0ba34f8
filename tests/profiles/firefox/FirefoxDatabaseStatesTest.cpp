#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include "browsersweep/profiles/firefox/FirefoxProfile.h"
#include "browsersweep/sqlite/SQLiteError.h"

#include "tests/support/FirefoxDatabases.h"
#include "tests/support/GuardedFileManager.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using Category = CleanableDataCategory;

/** One profile whose databases are in the states that real ones are found in. */
class FirefoxDatabaseStatesTest : public testing::Test {
protected:
    static constexpr const char* folder = "Library/Application Support/Firefox/p";

    fs::path file(const std::string& name) const { return home_ / folder / name; }

    CleanableDataSize size(Category category) const { return data().find(category)->size(); }
    void clean(Category category) const { data().find(category)->clean(); }

    CleanableDataMap data() const { return profile().cleanableData(); }
    FirefoxProfile profile() const {
        return {"p", true, true, "Firefox/p", tests::GuardedFileManager::forFixture(home_)};
    }

    /** A cookie database in WAL mode with three cookies in its main file. */
    fs::path makeCookies() const {
        const fs::path path = file("cookies.sqlite");
        const tests::Database database = tests::makeCookiesDatabase(path);
        database.execute(R"(PRAGMA journal_mode = WAL;
            INSERT INTO moz_cookies(name, host, path) VALUES
                ('a', '.example.com', '/'), ('b', '.example.com', '/'), ('c', '.example.org', '/');
            PRAGMA wal_checkpoint(TRUNCATE);)");
        return path;
    }

    std::vector<std::string> filesOfProfile() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(home_ / folder)) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    tests::TemporaryFolder home_;
};

/** How many rows a database file holds by itself: what a log beside it holds is not counted. */
std::int64_t rowsInMainFile(const fs::path& path, const std::string& table) {
    const tests::TemporaryFolder alone;
    fs::copy_file(path, alone / "copy.sqlite");
    return tests::Database(alone / "copy.sqlite").number("SELECT count(*) FROM " + table + ";");
}

/** A process that has a database open, in its own way, until it is told to stop. */
class OtherProcess {
public:
    /** Runs the statements on the database and returns once they are done. */
    OtherProcess(const fs::path& database, const std::string& statements) {
        std::array<int, 2> ready{};
        std::array<int, 2> stop{};
        if (pipe(ready.data()) != 0 || pipe(stop.data()) != 0) {
            throw std::runtime_error("no pipe");
        }
        process_ = fork();
        if (process_ == 0) {
            close(stop[1]);
            hold(database, statements, ready[1], stop[0]);
        }
        close(ready[1]);
        close(stop[0]);
        stop_ = stop[1];
        char answer = 0;
        const bool answered = read(ready[0], &answer, 1) == 1;
        close(ready[0]);
        EXPECT_TRUE(answered) << "the other process could not run its statements";
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;
    ~OtherProcess() {
        close(stop_);
        int status = 0;
        waitpid(process_, &status, 0);
    }

private:
    /** Ends without closing the database, as a browser that is killed does. */
    [[noreturn]] static void hold(const fs::path& path, const std::string& statements, int ready,
                                  int stop) {
        sqlite3* database = nullptr;
        const bool done =
            sqlite3_open(path.c_str(), &database) == SQLITE_OK &&
            sqlite3_exec(database, statements.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
        char byte = 1;
        if (done && write(ready, &byte, 1) == 1) {
            [[maybe_unused]] const auto ended = read(stop, &byte, 1);
        }
        _exit(done ? 0 : 1);
    }

    pid_t process_ = -1;
    int stop_ = -1;
};

TEST_F(FirefoxDatabaseStatesTest, cleaningInWriteAheadModeLeavesNoLogAndTheResultInTheMainFile) {
    const fs::path path = makeCookies();
    EXPECT_EQ(size(Category::httpCookies).itemCount, 3);
    clean(Category::httpCookies);
    EXPECT_EQ(filesOfProfile(), std::vector<std::string>{"cookies.sqlite"});
    EXPECT_EQ(rowsInMainFile(path, "moz_cookies"), 0);
    EXPECT_EQ(tests::Database(path).text("PRAGMA integrity_check;"), "ok");
    EXPECT_EQ(tests::Database(path).text("PRAGMA journal_mode;"), "wal");
}

TEST_F(FirefoxDatabaseStatesTest, cleaningTakesWhatAKilledBrowserLeftInTheLog) {
    const fs::path path = makeCookies();
    {
        const OtherProcess killed(
            path, "INSERT INTO moz_cookies(name, host, path) VALUES ('d', '.example.net', '/');");
    }
    ASSERT_TRUE(fs::exists(file("cookies.sqlite-wal")));
    ASSERT_EQ(rowsInMainFile(path, "moz_cookies"), 3);
    clean(Category::httpCookies);
    EXPECT_EQ(filesOfProfile(), std::vector<std::string>{"cookies.sqlite"});
    EXPECT_EQ(rowsInMainFile(path, "moz_cookies"), 0);
}

TEST_F(FirefoxDatabaseStatesTest, readingLeavesTheProfileByteForByte) {
    makeCookies();
    tests::makePlacesDatabase(file("places.sqlite"))
        .execute("PRAGMA journal_mode = WAL; INSERT INTO moz_historyvisits(id) VALUES (1);");
    tests::makePermissionsDatabase(file("permissions.sqlite"));
    static_cast<void>(OtherProcess(file("cookies.sqlite"), "DELETE FROM moz_cookies;"));
    const auto before = home_.snapshot();
    EXPECT_EQ(data().size().itemCount, 3 + 1);
    EXPECT_TRUE(profile().bookmarks().empty());
    EXPECT_TRUE(profile().notificationSubscriptions().empty());
    fs::remove(home_ / "tmp");
    EXPECT_EQ(home_.snapshot(), before);
}

TEST_F(FirefoxDatabaseStatesTest, databaseLockedExclusivelyIsSizedFromItsCopy) {
    const fs::path path = makeCookies();
    const OtherProcess browser(path,
                               "PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = DELETE;"
                               "BEGIN EXCLUSIVE;");
    EXPECT_EQ(size(Category::httpCookies).itemCount, 3);
}

TEST_F(FirefoxDatabaseStatesTest, bookmarksAndPermissionsLockedExclusivelyAreReadFromTheirCopies) {
    tests::makePlacesDatabase(file("places.sqlite")).execute(R"(
        INSERT INTO moz_places(id, url) VALUES (1, 'https://example.com/');
        INSERT INTO moz_bookmarks(id, type, fk, title) VALUES (1, 1, 1, 'Example');)");
    tests::makePermissionsDatabase(file("permissions.sqlite")).execute(R"(
        INSERT INTO moz_perms(origin, type, permission)
            VALUES ('https://example.com', 'desktop-notification', 1);)");
    const OtherProcess places(file("places.sqlite"), "BEGIN EXCLUSIVE;");
    const OtherProcess permissions(file("permissions.sqlite"), "BEGIN EXCLUSIVE;");
    EXPECT_EQ(profile().bookmarks(),
              (std::vector<Bookmark>{{"Example", *URL::parse("https://example.com/")}}));
    const auto subscriptions = profile().notificationSubscriptions();
    ASSERT_EQ(subscriptions.size(), 1U);
    EXPECT_EQ(subscriptions[0]->sourceURL(), URL::parse("https://example.com"));
}

TEST_F(FirefoxDatabaseStatesTest, databaseThatAnotherProcessWritesToIsSilentlyNotCleaned) {
    const fs::path path = makeCookies();
    for (const char* begin : {"BEGIN IMMEDIATE;", "BEGIN EXCLUSIVE;"}) {
        SCOPED_TRACE(begin);
        const OtherProcess browser(path, begin);
        EXPECT_NO_THROW(clean(Category::httpCookies));
    }
    EXPECT_EQ(tests::Database(path).number("SELECT count(*) FROM moz_cookies;"), 3);
}

TEST_F(FirefoxDatabaseStatesTest, databaseWhoseTablesCannotBeReadForALockIsAnErrorAndStays) {
    const fs::path path = makeCookies();
    tests::Database(path).execute("PRAGMA journal_mode = DELETE;");
    {
        // Without a log beside it a locked database cannot even be read: preparing fails already.
        const OtherProcess browser(path, "BEGIN EXCLUSIVE;");
        try {
            clean(Category::httpCookies);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const SQLiteError& error) {
            EXPECT_STREQ(error.what(), "database is locked");
        }
        EXPECT_EQ(size(Category::httpCookies).itemCount, 3);
    }
    EXPECT_EQ(tests::Database(path).number("SELECT count(*) FROM moz_cookies;"), 3);
}

TEST_F(FirefoxDatabaseStatesTest, databaseThatIsNoneIsAnErrorAndStaysAsItIs) {
    home_.write(std::string(folder) + "/cookies.sqlite", std::string(4096, 'x'));
    const auto before = home_.snapshot();
    EXPECT_THROW(size(Category::httpCookies), SQLiteError);
    EXPECT_THROW(clean(Category::httpCookies), SQLiteError);
    fs::remove(home_ / "tmp");
    EXPECT_EQ(home_.snapshot(), before);
    EXPECT_EQ(data().sizeIgnoringErrors(), (CleanableDataSize{{0, true}, {0, true}}));
}

TEST_F(FirefoxDatabaseStatesTest, tablesThatAreMissingHoldNothingAndTheOthersAreCleaned) {
    const fs::path path = file("places.sqlite");
    tests::makePlacesDatabase(path).execute(R"(
        DROP TABLE moz_inputhistory;
        DROP TABLE moz_keywords;
        INSERT INTO moz_historyvisits(id) VALUES (1), (2);
        INSERT INTO moz_places(id, url) VALUES (1, 'https://example.com/');)");
    EXPECT_EQ(size(Category::history).itemCount, 3);
    clean(Category::history);
    EXPECT_EQ(size(Category::history), CleanableDataSize::zero);
}

TEST_F(FirefoxDatabaseStatesTest, databaseWithNoneOfItsTablesIsEmpty) {
    tests::Database(file("places.sqlite")).execute("CREATE TABLE other(id INTEGER);");
    home_.write(std::string(folder) + "/cookies.sqlite", "");
    EXPECT_EQ(data().size(), CleanableDataSize::zero);
    EXPECT_NO_THROW(data().clean());
}

TEST_F(FirefoxDatabaseStatesTest, directoriesInThePlaceOfDatabasesHoldNothing) {
    for (const char* name : {"places.sqlite", "cookies.sqlite", "formhistory.sqlite",
                             "webappsstore.sqlite", "permissions.sqlite"}) {
        home_.makeFolder(fs::path(folder) / name);
    }
    EXPECT_EQ(data().size(), CleanableDataSize::zero);
    EXPECT_NO_THROW(data().clean());
}

TEST_F(FirefoxDatabaseStatesTest, everyFormEntryIsTakenWhateverTheFilters) {
    tests::makeFormHistoryDatabase(file("formhistory.sqlite")).execute(R"(
        INSERT INTO moz_formhistory(fieldname, value, guid) VALUES
            ('email', 'ann@example.com', 'a'), ('city', 'Vienna', 'b');)");
    const std::vector<CleanableDataFilter> filters{
        {CleanableDataFilter::Rule::include, {"nothing.like.this"}}};
    const CleanableDataMap map = data();
    EXPECT_EQ(map.find(Category::formData)->size(filters).itemCount, 2);
    map.find(Category::formData)->clean(filters);
    EXPECT_EQ(size(Category::formData), CleanableDataSize::zero);
}

}  // namespace
}  // namespace browsersweep
