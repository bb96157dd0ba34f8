#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include "browsersweep/sqlite/internal/ConfinedFile.h"
#include "browsersweep/sqlite/internal/ConfinedFiles.h"

#include "tests/support/NotedSystemFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::call;
using Calls = std::vector<std::string>;

constexpr int answer = tests::NotedSystemFiles::answer;

/** The way to files of one connection, as SQLite sees it, over a system that is noted. */
class WayToFiles {
public:
    WayToFiles(const fs::path& database, DatabaseAccess access,
               std::shared_ptr<OperationControl> control = nullptr,
               const fs::path& folderForTemporaryDatabases = {})
        : files_(database, access, std::move(control), folderForTemporaryDatabases) {
        // What is made known is the second in SQLite's list: the first serves everybody.
        EXPECT_EQ(files_.whileKnown([&] { vfs_ = sqlite3_vfs_find(nullptr)->pNext; }), SQLITE_OK);
    }

    ConfinedFiles& files() noexcept { return files_; }
    sqlite3_vfs* operator->() const noexcept { return vfs_; }
    sqlite3_vfs* get() const noexcept { return vfs_; }

    /** Opens a file in this way's own memory. */
    int open(const char* name, int flags, int* flagsGiven = nullptr) {
        return vfs_->xOpen(vfs_, name, file(), flags, flagsGiven);
    }
    sqlite3_file* file() noexcept { return reinterpret_cast<sqlite3_file*>(memory_.data()); }
    int close() noexcept { return file()->pMethods->xClose(file()); }
    bool isOpen() noexcept { return file()->pMethods != nullptr; }

    /** The code, and all that is written for the name that SQLite is to go on with. */
    std::pair<int, std::string> fullName(const char* name, int capacity) const {
        std::string into(2000, '?');
        const int code = vfs_->xFullPathname(vfs_, name, capacity, into.data());
        const std::size_t end = into.find_last_not_of('?') + 1;
        return {code, into.substr(0, end)};
    }

private:
    ConfinedFiles files_;
    sqlite3_vfs* vfs_ = nullptr;
    std::array<std::uint64_t, 64> memory_{};
};

class ConfinedFilings : public testing::Test {
protected:
    WayToFiles way(DatabaseAccess access = DatabaseAccess::readWrite) const {
        return {file_, access};
    }

    std::string beside(std::string_view suffix) const { return file_.string().append(suffix); }

    tests::TemporaryFolder home_;
    fs::path file_ = fs::canonical(home_.makeFolder("data")) / "History.db";
    tests::NotedSystemFiles system_;
    int number_ = 7;
};

TEST_F(ConfinedFilings, areKnownToSQLiteForTheTimeOfSomeWorkAloneAndNeverFirst) {
    ConfinedFiles one(file_, DatabaseAccess::readWrite, nullptr);
    ConfinedFiles other(file_, DatabaseAccess::readWrite, nullptr);
    std::string name;
    std::string nameOfOther;
    const int code = one.whileKnown([&] {
        EXPECT_EQ(sqlite3_vfs_find(nullptr), &system_.vfs());
        name = sqlite3_vfs_find(nullptr)->pNext->zName;
        other.whileKnown([&] { nameOfOther = sqlite3_vfs_find(nullptr)->pNext->zName; });
        EXPECT_NE(sqlite3_vfs_find(name.c_str()), nullptr);
    });
    EXPECT_EQ(code, SQLITE_OK);
    EXPECT_EQ(sqlite3_vfs_find(name.c_str()), nullptr);
    const std::string prefix = "browsersweep-";
    EXPECT_EQ(name.substr(0, prefix.size()), prefix);
    EXPECT_EQ(name.find_first_not_of("0123456789", prefix.size()), std::string::npos);
    EXPECT_NE(name, nameOfOther);
}

TEST_F(ConfinedFilings, offerWhatTheSystemDoesButForItsOwnCalls) {
    EXPECT_EQ(way()->iVersion, 2);
    EXPECT_EQ(way()->szOsFile, ConfinedFile::sizeWith(system_.vfs()));
    EXPECT_EQ(way()->mxPathname, system_.vfs().mxPathname);
    system_.vfs().iVersion = 1;
    EXPECT_EQ(way()->iVersion, 1);
}

TEST_F(ConfinedFilings, leaveToTheSystemWhatConcernsNoFile) {
    const WayToFiles asked = way();
    sqlite3_vfs* const vfs = asked.get();
    std::array<char, 4> into{};
    double days = 0;
    sqlite3_int64 milliseconds = 0;
    EXPECT_EQ(vfs->xRandomness(vfs, 4, into.data()), answer);
    EXPECT_EQ(vfs->xSleep(vfs, 5), answer);
    EXPECT_EQ(vfs->xCurrentTime(vfs, &days), answer);
    EXPECT_EQ(vfs->xGetLastError(vfs, 4, into.data()), answer);
    EXPECT_EQ(vfs->xCurrentTimeInt64(vfs, &milliseconds), answer);
    const void* const address = into.data();
    EXPECT_EQ(
        system_.taken(),
        (Calls{call("xRandomness", 4, address), call("xSleep", 5), call("xCurrentTime", &days),
               call("xGetLastError", 4, address), call("xCurrentTimeInt64", &milliseconds)}));
}

TEST_F(ConfinedFilings, loadNoLibrary) {
    const WayToFiles asked = way();
    EXPECT_EQ(asked->xDlOpen(asked.get(), "library"), nullptr);
    EXPECT_EQ(system_.taken(), Calls());
}

TEST_F(ConfinedFilings, openTheDatabaseAndItsCompanionsAlone) {
    WayToFiles asked = way();
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    for (const std::string& name : {beside(""), beside("-journal"), beside("-wal")}) {
        SCOPED_TRACE(name);
        // It is SQLite's own text, behind which parameters may follow.
        system_.onOpening = [&](const char* opened) { EXPECT_EQ(opened, name.c_str()); };
        EXPECT_EQ(asked.open(name.c_str(), flags, &number_), SQLITE_OK);
        EXPECT_EQ(asked.close(), answer);
        EXPECT_EQ(system_.taken(), (Calls{call("xOpen", name.c_str(), flags, &number_), "xClose"}));
    }
    for (const std::string& name : {beside("-shm"), beside("-wa"), beside("x-wal"), beside("-wal2"),
                                    (home_ / "data/Hist0ry.db-wal").string(), std::string("-wal"),
                                    (home_ / "data/other").string()}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(asked.open(name.c_str(), flags, &number_), SQLITE_CANTOPEN);
        EXPECT_FALSE(asked.isOpen());
        EXPECT_EQ(system_.taken(), Calls());
    }
}

TEST_F(ConfinedFilings, openNoLinkAndNoCompanionWithAnotherName) {
    WayToFiles asked = way();
    home_.write("other", "");
    for (const std::string& name : {beside(""), beside("-journal"), beside("-wal")}) {
        SCOPED_TRACE(name);
        fs::create_hard_link(home_ / "other", name);
        const bool isDatabase = name == file_;
        EXPECT_EQ(asked.open(name.c_str(), 0), isDatabase ? SQLITE_OK : SQLITE_CANTOPEN);
        EXPECT_EQ(asked.isOpen(), isDatabase);
        if (asked.isOpen()) {
            EXPECT_EQ(asked.close(), answer);
        }
        fs::remove(name);
        fs::create_symlink(home_ / "other", name);
        EXPECT_EQ(asked.open(name.c_str(), 0), SQLITE_CANTOPEN);
        fs::remove(name);
    }
}

TEST_F(ConfinedFilings, closeAFileWhoseNameBecameALinkWhileItWasOpened) {
    WayToFiles asked = way();
    home_.write("other", "");
    system_.onOpening = [&](const char* name) { fs::create_symlink(home_ / "other", name); };
    const std::string name = beside("");
    EXPECT_EQ(asked.open(name.c_str(), 1, &number_), SQLITE_CANTOPEN);
    EXPECT_FALSE(asked.isOpen());
    EXPECT_EQ(system_.taken(), (Calls{call("xOpen", name.c_str(), 1, &number_), "xClose"}));
}

TEST_F(ConfinedFilings, passOnWhatTheSystemSaysToOpening) {
    WayToFiles asked = way();
    system_.openWith(SQLITE_PERM, false);
    EXPECT_EQ(asked.open(beside("").c_str(), 1), SQLITE_PERM);
    EXPECT_FALSE(asked.isOpen());
}

TEST_F(ConfinedFilings, ofAConnectionThatReadsAskForReadingAloneAndForAnIndexThatIsOnlyRead) {
    WayToFiles asked = way(DatabaseAccess::readOnly);
    Calls parameters;
    system_.onOpening = [&](const char* name) {
        parameters = {sqlite3_filename_journal(name), sqlite3_filename_wal(name),
                      sqlite3_uri_parameter(name, "readonly_shm")};
    };
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MAIN_DB;
    const std::string name = beside("");
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(asked.open(name.c_str(), flags, &number_), SQLITE_OK);
        EXPECT_EQ(parameters, (Calls{beside("-journal"), beside("-wal"), "1"}));
        EXPECT_EQ(system_.taken(),
                  Calls{call("xOpen", name.c_str(), SQLITE_OPEN_READONLY | SQLITE_OPEN_MAIN_DB,
                             &number_)});
        EXPECT_EQ(asked.file()->pMethods->xWrite(asked.file(), &number_, 1, 0), SQLITE_READONLY);
        asked.close();
        system_.taken();
    }
    system_.onOpening = nullptr;
    EXPECT_EQ(asked.open(beside("-wal").c_str(), flags, &number_), SQLITE_OK);
    EXPECT_EQ(system_.taken(), Calls{call("xOpen", beside("-wal").c_str(),
                                          SQLITE_OPEN_READONLY | SQLITE_OPEN_MAIN_DB, &number_)});
    asked.close();
}

TEST_F(ConfinedFilings, giveBackTheMemoryOfTheNamesThatTheyMake) {
    const sqlite3_int64 before = sqlite3_memory_used();
    {
        WayToFiles asked = way(DatabaseAccess::readOnly);
        EXPECT_EQ(asked.open(beside("").c_str(), 0), SQLITE_OK);
        asked.close();
    }
    EXPECT_EQ(sqlite3_memory_used(), before);
}

TEST_F(ConfinedFilings, mapTheIndexBesideTheDatabaseOnlyWhereItMayBeOpened) {
    WayToFiles asked = way();
    EXPECT_EQ(asked.open(beside("").c_str(), 0), SQLITE_OK);
    void volatile* shared = nullptr;
    const auto mapped = [&] {
        return asked.file()->pMethods->xShmMap(asked.file(), 0, 1, 1, &shared);
    };
    EXPECT_EQ(mapped(), answer);
    fs::create_symlink(home_ / "other", beside("-shm"));
    EXPECT_EQ(mapped(), SQLITE_CANTOPEN);
    asked.close();
}

TEST_F(ConfinedFilings, stopTheReadingOfEveryFileButAJournal) {
    WayToFiles asked(
        file_, DatabaseAccess::readWrite,
        std::make_shared<OperationControl>([](const OperationProgress&) { return true; }),
        home_.path());
    const auto readOf = [&](const char* name, int flags) {
        EXPECT_EQ(asked.open(name, flags), SQLITE_OK);
        const int code = asked.file()->pMethods->xRead(asked.file(), &number_, 1, 0);
        asked.close();
        return code;
    };
    EXPECT_EQ(readOf(beside("").c_str(), SQLITE_OPEN_MAIN_DB), SQLITE_INTERRUPT);
    EXPECT_EQ(readOf(beside("").c_str(), SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_READONLY),
              SQLITE_INTERRUPT);
    EXPECT_EQ(readOf(beside("-wal").c_str(), SQLITE_OPEN_WAL), SQLITE_INTERRUPT);
    EXPECT_EQ(readOf(nullptr, SQLITE_OPEN_TEMP_DB), SQLITE_INTERRUPT);
    EXPECT_EQ(readOf(beside("-journal").c_str(), SQLITE_OPEN_MAIN_JOURNAL), answer);
}

TEST_F(ConfinedFilings, keepFilesWithoutANameAndThoseOfSeveralDatabasesInMemory) {
    WayToFiles asked = way();
    const std::string other = (home_ / "other").string();
    const std::string log = beside("-wal");
    for (const auto& [name, flags] :
         std::vector<std::pair<const char*, int>>{{nullptr, SQLITE_OPEN_TEMP_DB},
                                                  {nullptr, SQLITE_OPEN_TEMP_JOURNAL},
                                                  {other.c_str(), SQLITE_OPEN_SUPER_JOURNAL},
                                                  {log.c_str(), SQLITE_OPEN_SUPER_JOURNAL}}) {
        EXPECT_EQ(asked.open(name, flags), SQLITE_OK);
        EXPECT_EQ(asked.file()->pMethods->xWrite(asked.file(), &number_, 1, 0), SQLITE_OK);
        EXPECT_EQ(asked.close(), SQLITE_OK);
    }
    EXPECT_EQ(system_.taken(), Calls());
}

TEST_F(ConfinedFilings, putTemporaryDatabasesAloneInTheFolderThatIsGiven) {
    WayToFiles asked(file_, DatabaseAccess::readWrite, nullptr, home_ / "folder");
    EXPECT_EQ(asked.open(nullptr, SQLITE_OPEN_TEMP_DB, &number_), SQLITE_OK);
    EXPECT_EQ(asked.file()->pMethods->xWrite(asked.file(), &number_, 1, 2), answer);
    EXPECT_EQ(asked.close(), answer);
    const std::string name = (home_ / "folder/database").string();
    EXPECT_EQ(system_.taken(),
              (Calls{call("xOpen", name.c_str(), SQLITE_OPEN_TEMP_DB, &number_),
                     call("xWrite", static_cast<void*>(&number_), 1, 2), "xClose"}));
    system_.openWith(SQLITE_FULL, false);
    EXPECT_EQ(asked.open(nullptr, SQLITE_OPEN_TEMP_DB), SQLITE_FULL);
    EXPECT_FALSE(asked.isOpen());
    system_.taken();
    EXPECT_EQ(asked.open(nullptr, SQLITE_OPEN_TEMP_JOURNAL | SQLITE_OPEN_READONLY), SQLITE_OK);
    EXPECT_EQ(asked.close(), SQLITE_OK);
    EXPECT_EQ(system_.taken(), Calls());
}

TEST_F(ConfinedFilings, lockATemporaryDatabaseAsTheSystemDoesAndSayNoMoreOfIt) {
    WayToFiles asked(file_, DatabaseAccess::readWrite, nullptr, home_ / "folder");
    EXPECT_EQ(asked.open(nullptr, SQLITE_OPEN_TEMP_DB), SQLITE_OK);
    system_.taken();
    EXPECT_EQ(asked.file()->pMethods->xLock(asked.file(), SQLITE_LOCK_EXCLUSIVE), answer);
    EXPECT_EQ(asked.file()->pMethods->xDeviceCharacteristics(asked.file()), answer);
    EXPECT_EQ(system_.taken(),
              (Calls{call("xLock", SQLITE_LOCK_EXCLUSIVE), "xDeviceCharacteristics"}));
    asked.close();
}

TEST_F(ConfinedFilings, deleteCompanionsAlone) {
    const WayToFiles asked = way();
    for (const char* suffix : {"-journal", "-wal"}) {
        EXPECT_EQ(asked->xDelete(asked.get(), beside(suffix).c_str(), 5), answer);
        EXPECT_EQ(system_.taken(), Calls{call("xDelete", beside(suffix).c_str(), 5)});
    }
    for (const std::string& name : {beside(""), beside("-shm"), (home_ / "other").string()}) {
        EXPECT_EQ(asked->xDelete(asked.get(), name.c_str(), 5), SQLITE_OK);
    }
    const WayToFiles reading = way(DatabaseAccess::readOnly);
    EXPECT_EQ(reading->xDelete(reading.get(), beside("-wal").c_str(), 5), SQLITE_READONLY);
    EXPECT_EQ(system_.taken(), Calls());
}

TEST_F(ConfinedFilings, letTheSystemAnswerWhatIsAskedOfTheirOwnFiles) {
    const WayToFiles asked = way();
    for (const char* suffix : {"", "-journal", "-wal"}) {
        const std::string name = beside(suffix);
        EXPECT_EQ(asked->xAccess(asked.get(), name.c_str(), 1, &number_), answer);
        EXPECT_EQ(system_.taken(), Calls{call("xAccess", name.c_str(), 1, &number_)});
    }
}

TEST_F(ConfinedFilings, answerThemselvesWhetherAnotherFileExistsWhichAnEmptyOneDoesNot) {
    const WayToFiles asked = way();
    home_.write("empty", "");
    home_.write("full", "x");
    home_.makeFolder("folder");
    ASSERT_EQ(::mkfifo((home_ / "pipe").c_str(), 0600), 0);
    for (const auto& [name, exists] : std::vector<std::pair<const char*, int>>{
             {"missing", 0}, {"empty", 0}, {"full", 1}, {"folder", 1}, {"pipe", 1}}) {
        SCOPED_TRACE(name);
        int yes = 7;
        EXPECT_EQ(asked->xAccess(asked.get(), (home_ / name).c_str(), SQLITE_ACCESS_EXISTS, &yes),
                  SQLITE_OK);
        EXPECT_EQ(yes, exists);
    }
    EXPECT_EQ(system_.taken(), Calls());
}

TEST_F(ConfinedFilings, nameTheDatabaseByItsTrueNameWhereThatHasRoom) {
    fs::create_directory_symlink(home_ / "data", home_ / "link");
    const WayToFiles asked(home_ / "link/History.db", DatabaseAccess::readWrite);
    const char* const given = "database";
    const int length = static_cast<int>(file_.string().size());
    EXPECT_EQ(asked.fullName(given, length + 1), std::pair(SQLITE_OK, file_.string() + '\0'));
    EXPECT_EQ(asked.fullName(given, length), std::pair(SQLITE_CANTOPEN, std::string()));
    EXPECT_EQ(asked.fullName("other", 1000), std::pair(SQLITE_CANTOPEN, std::string()));
}

TEST_F(ConfinedFilings, nameNoDatabaseInAFolderThatIsNotThere) {
    const WayToFiles asked(home_ / "missing/History.db", DatabaseAccess::readWrite);
    EXPECT_EQ(asked.fullName("database", 1000), std::pair(SQLITE_CANTOPEN, std::string()));
}

TEST(ConfinedFiles, nameADatabaseWithoutAFolderByTheCurrentOne) {
    const tests::TemporaryFolder home;
    const fs::path before = fs::current_path();
    fs::current_path(home.path());
    const WayToFiles asked("History.db", DatabaseAccess::readWrite);
    fs::current_path(before);
    EXPECT_EQ(asked.fullName("database", 1000),
              std::pair(SQLITE_OK, (fs::canonical(home.path()) / "History.db").string() + '\0'));
}

}  // namespace
}  // namespace browsersweep
