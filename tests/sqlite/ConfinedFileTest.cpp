#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "browsersweep/sqlite/internal/ConfinedFile.h"

#include "tests/support/NotedSystemFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::call;
using Calls = std::vector<std::string>;

constexpr int answer = tests::NotedSystemFiles::answer;

/** A file in memory that SQLite would give, which was used for something else before. */
class ConfinedFiling : public testing::Test {
protected:
    sqlite3_file* raw() noexcept { return reinterpret_cast<sqlite3_file*>(memory_.data()); }
    const sqlite3_io_methods& methods() noexcept { return *raw()->pMethods; }

    /** A file of the system's, open and within bounds. */
    ConfinedFile& confined(FileBounds bounds) {
        ConfinedFile& file = ConfinedFile::prepare(raw());
        EXPECT_EQ(file.open(system_.vfs(), "name", 0, nullptr), SQLITE_OK);
        file.confine(std::move(bounds));
        system_.taken();
        return file;
    }

    ConfinedFile& inMemory() {
        ConfinedFile& file = ConfinedFile::prepare(raw());
        file.keepInMemory();
        return file;
    }

    tests::NotedSystemFiles system_;
    std::vector<std::uint64_t> memory_ =
        std::vector<std::uint64_t>(64, std::uint64_t{0x5A5A5A5A5A5A5A5A});
    int number_ = 0;
    sqlite3_int64 offset_ = 0;
    void* pointer_ = &number_;
};

TEST_F(ConfinedFiling, asksForTheMemoryOfBothFilesOneBehindTheOther) {
    ConfinedFile& file = ConfinedFile::prepare(raw());
    const auto* const begin = reinterpret_cast<const std::byte*>(raw());
    const auto* const system = reinterpret_cast<const std::byte*>(file.system());
    EXPECT_EQ(system - begin, static_cast<std::ptrdiff_t>(sizeof(ConfinedFile)));
    EXPECT_EQ(ConfinedFile::sizeWith(system_.vfs()),
              static_cast<int>(system - begin) + system_.vfs().szOsFile);
    EXPECT_EQ(&ConfinedFile::of(raw()), &file);
}

TEST_F(ConfinedFiling, isNotOpenBeforeItIsOpened) {
    ConfinedFile& file = ConfinedFile::prepare(raw());
    EXPECT_EQ(raw()->pMethods, nullptr);
    EXPECT_EQ(file.system()->pMethods, nullptr);
    EXPECT_EQ(file.close(), SQLITE_OK);
    EXPECT_EQ(system_.taken(), Calls());
}

TEST_F(ConfinedFiling, opensTheSystemsFileInMemoryThatIsEmpty) {
    ConfinedFile& file = ConfinedFile::prepare(raw());
    EXPECT_EQ(file.open(system_.vfs(), "name", 5, &number_), SQLITE_OK);
    EXPECT_EQ(system_.taken(), Calls{call("xOpen", "name", 5, &number_)});
    file.close();
}

TEST_F(ConfinedFiling, closesWhatTheSystemHasLeftOpenWhereOpeningFails) {
    for (const bool hasFile : {true, false}) {
        system_.openWith(SQLITE_IOERR, hasFile);
        ConfinedFile& file = ConfinedFile::prepare(raw());
        EXPECT_EQ(file.open(system_.vfs(), "name", 5, &number_), SQLITE_IOERR);
        Calls calls{call("xOpen", "name", 5, &number_)};
        if (hasFile) {
            calls.emplace_back("xClose");
        }
        EXPECT_EQ(system_.taken(), calls);
        EXPECT_EQ(raw()->pMethods, nullptr);
    }
}

TEST_F(ConfinedFiling, passesEveryCallOnToTheSystemsFile) {
    confined({});
    void volatile* shared = nullptr;
    const sqlite3_io_methods& m = methods();
    const std::vector<std::pair<std::function<int()>, std::string>> cases{
        {[&] { return m.xRead(raw(), pointer_, 5, 6); }, call("xRead", pointer_, 5, 6)},
        {[&] { return m.xWrite(raw(), pointer_, 5, 6); }, call("xWrite", pointer_, 5, 6)},
        {[&] { return m.xTruncate(raw(), 6); }, call("xTruncate", 6)},
        {[&] { return m.xSync(raw(), 3); }, call("xSync", 3)},
        {[&] { return m.xFileSize(raw(), &offset_); }, call("xFileSize", &offset_)},
        {[&] { return m.xLock(raw(), 2); }, call("xLock", 2)},
        {[&] { return m.xUnlock(raw(), 1); }, call("xUnlock", 1)},
        {[&] { return m.xCheckReservedLock(raw(), &number_); },
         call("xCheckReservedLock", &number_)},
        {[&] { return m.xFileControl(raw(), 7, pointer_); }, call("xFileControl", 7, pointer_)},
        {[&] { return m.xSectorSize(raw()); }, call("xSectorSize")},
        {[&] { return m.xDeviceCharacteristics(raw()); }, call("xDeviceCharacteristics")},
        {[&] { return m.xShmMap(raw(), 1, 2, 3, &shared); },
         call("xShmMap", 1, 2, 3, static_cast<const void*>(&shared))},
        {[&] { return m.xShmLock(raw(), 1, 2, 3); }, call("xShmLock", 1, 2, 3)},
        {[&] { return m.xShmBarrier(raw()), answer; }, call("xShmBarrier")},
        {[&] { return m.xShmUnmap(raw(), 1); }, call("xShmUnmap", 1)},
        {[&] { return m.xFetch(raw(), 6, 5, &pointer_); }, call("xFetch", 6, 5, &pointer_)},
        {[&] { return m.xUnfetch(raw(), 6, pointer_); }, call("xUnfetch", 6, pointer_)},
        {[&] { return m.xClose(raw()); }, call("xClose")},
    };
    for (const auto& [ask, noted] : cases) {
        SCOPED_TRACE(noted);
        EXPECT_EQ(ask(), answer);
        EXPECT_EQ(system_.taken(), Calls{noted});
    }
}

TEST_F(ConfinedFiling, changesNothingWhereItOnlyReads) {
    FileBounds bounds;
    EXPECT_FALSE(bounds.onlyReads);
    bounds.onlyReads = true;
    confined(std::move(bounds));
    EXPECT_EQ(methods().xWrite(raw(), pointer_, 1, 2), SQLITE_READONLY);
    EXPECT_EQ(methods().xTruncate(raw(), 1), SQLITE_READONLY);
    EXPECT_EQ(methods().xSync(raw(), 1), SQLITE_READONLY);
    EXPECT_EQ(system_.taken(), Calls());
    EXPECT_EQ(methods().xShmUnmap(raw(), 1), answer);
    EXPECT_EQ(system_.taken(), Calls{call("xShmUnmap", 0)});
    methods().xClose(raw());
}

TEST_F(ConfinedFiling, canDoWhatTheSystemsFileCan) {
    for (const auto& [version, shown] :
         std::vector<std::pair<int, int>>{{0, 1}, {1, 1}, {2, 2}, {3, 3}, {9, 3}}) {
        system_.setFileVersion(version);
        ConfinedFile& file = confined({});
        EXPECT_EQ(methods().iVersion, shown);
        file.close();
    }
}

TEST_F(ConfinedFiling, isSaidToBeUnchangeableOnlyWhereNobodyChangesIt) {
    for (const bool isSettled : {false, true}) {
        FileBounds bounds;
        bounds.isSettled = isSettled;
        confined(std::move(bounds));
        const int settled = isSettled ? SQLITE_IOCAP_IMMUTABLE : 0;
        EXPECT_EQ(methods().xDeviceCharacteristics(raw()), answer | settled);
        methods().xClose(raw());
    }
}

TEST_F(ConfinedFiling, withAnIndexOfItsOwnTakesNoLockButTheOnesForReading) {
    FileBounds bounds;
    bounds.indexesInMemory = true;
    confined(std::move(bounds));
    EXPECT_EQ(methods().xLock(raw(), SQLITE_LOCK_SHARED), SQLITE_OK);
    EXPECT_EQ(methods().xLock(raw(), SQLITE_LOCK_RESERVED), SQLITE_BUSY);
    EXPECT_EQ(methods().xLock(raw(), SQLITE_LOCK_EXCLUSIVE), SQLITE_BUSY);
    EXPECT_EQ(methods().xUnlock(raw(), SQLITE_LOCK_NONE), SQLITE_OK);
    EXPECT_EQ(methods().xShmLock(raw(), 0, 1, SQLITE_SHM_LOCK | SQLITE_SHM_SHARED), SQLITE_OK);
    methods().xShmBarrier(raw());
    void volatile* first = nullptr;
    void volatile* again = nullptr;
    EXPECT_EQ(methods().xShmMap(raw(), 0, 32, 1, &first), SQLITE_OK);
    EXPECT_EQ(methods().xShmMap(raw(), 0, 32, 1, &again), SQLITE_OK);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(first, again);
    void volatile* second = nullptr;
    EXPECT_EQ(methods().xShmMap(raw(), 1, 32, 1, &second), SQLITE_OK);
    EXPECT_NE(second, nullptr);
    EXPECT_NE(first, second);
    *static_cast<volatile char*>(first) = 1;
    EXPECT_EQ(methods().xShmUnmap(raw(), 1), SQLITE_OK);
    EXPECT_EQ(methods().xShmMap(raw(), 0, 32, 1, &again), SQLITE_OK);
    EXPECT_EQ(*static_cast<volatile char*>(again), 0);
    EXPECT_EQ(system_.taken(), Calls());
    methods().xClose(raw());
}

TEST_F(ConfinedFiling, readsNoMoreOnceItIsToStop) {
    bool stops = false;
    FileBounds bounds;
    bounds.control =
        std::make_shared<OperationControl>([&](const OperationProgress&) { return stops; });
    confined(std::move(bounds));
    EXPECT_EQ(methods().xRead(raw(), pointer_, 1, 2), answer);
    stops = true;
    system_.taken();
    EXPECT_EQ(methods().xRead(raw(), pointer_, 1, 2), SQLITE_INTERRUPT);
    EXPECT_EQ(system_.taken(), Calls());
    methods().xClose(raw());
}

TEST_F(ConfinedFiling, mapsAnIndexOnlyWhereItIsARegularFileWithOneNameOrNone) {
    const tests::TemporaryFolder home;
    FileBounds bounds;
    bounds.index = (home / "index").string();
    confined(std::move(bounds));
    void volatile* shared = nullptr;
    const auto mapped = [&] { return methods().xShmMap(raw(), 0, 1, 1, &shared); };
    EXPECT_EQ(mapped(), answer);
    home.write("index", "");
    EXPECT_EQ(mapped(), answer);
    fs::create_hard_link(home / "index", home / "other");
    EXPECT_EQ(mapped(), SQLITE_CANTOPEN);
    fs::remove(home / "index");
    fs::create_symlink(home / "other", home / "index");
    EXPECT_EQ(mapped(), SQLITE_CANTOPEN);
    EXPECT_EQ(system_.taken().size(), 2U);
    methods().xClose(raw());
}

TEST_F(ConfinedFiling, closesOnceAndGivesBackWhatItHeld) {
    FileBounds bounds;
    bounds.control = std::make_shared<OperationControl>();
    const std::weak_ptr<OperationControl> control = bounds.control;
    ConfinedFile& file = confined(std::move(bounds));
    EXPECT_FALSE(control.expired());
    EXPECT_EQ(methods().xClose(raw()), answer);
    EXPECT_TRUE(control.expired());
    EXPECT_EQ(raw()->pMethods, nullptr);
    EXPECT_EQ(file.close(), SQLITE_OK);
    EXPECT_EQ(system_.taken(), Calls{"xClose"});
}

TEST_F(ConfinedFiling, keepsBytesInMemoryUntilItIsClosed) {
    inMemory();
    const std::string text = "abcd";
    std::string read(6, '?');
    EXPECT_EQ(methods().xWrite(raw(), text.data(), 4, 1), SQLITE_OK);
    EXPECT_EQ(methods().xFileSize(raw(), &offset_), SQLITE_OK);
    EXPECT_EQ(offset_, 5);
    EXPECT_EQ(methods().xRead(raw(), read.data(), 3, 1), SQLITE_OK);
    EXPECT_EQ(read, "abc???");
    EXPECT_EQ(methods().xTruncate(raw(), 3), SQLITE_OK);
    EXPECT_EQ(methods().xRead(raw(), read.data(), 5, 1), SQLITE_IOERR_SHORT_READ);
    EXPECT_EQ(read, std::string("ab\0\0\0?", 6));
    EXPECT_EQ(methods().xClose(raw()), SQLITE_OK);
    EXPECT_EQ(raw()->pMethods, nullptr);
    EXPECT_EQ(system_.taken(), Calls());
}

TEST_F(ConfinedFiling, isFullInMemoryAtItsBound) {
    inMemory();
    const auto capacity = static_cast<sqlite3_int64>(MemoryFile::capacity);
    EXPECT_EQ(methods().xWrite(raw(), pointer_, 1, capacity), SQLITE_FULL);
    EXPECT_EQ(methods().xFileSize(raw(), &offset_), SQLITE_OK);
    EXPECT_EQ(offset_, 0);
    methods().xClose(raw());
}

TEST_F(ConfinedFiling, inMemoryNeedsNoLockAndNoDisk) {
    inMemory();
    const sqlite3_io_methods& m = methods();
    number_ = 7;
    EXPECT_EQ(m.iVersion, 1);
    EXPECT_EQ(m.xSync(raw(), SQLITE_SYNC_FULL), SQLITE_OK);
    EXPECT_EQ(m.xLock(raw(), SQLITE_LOCK_EXCLUSIVE), SQLITE_OK);
    EXPECT_EQ(m.xUnlock(raw(), SQLITE_LOCK_NONE), SQLITE_OK);
    EXPECT_EQ(m.xCheckReservedLock(raw(), &number_), SQLITE_OK);
    EXPECT_EQ(number_, 0);
    EXPECT_EQ(m.xFileControl(raw(), SQLITE_FCNTL_SIZE_HINT, &offset_), SQLITE_NOTFOUND);
    EXPECT_EQ(m.xSectorSize(raw()), 0);
    EXPECT_EQ(m.xDeviceCharacteristics(raw()), 0);
    m.xClose(raw());
}

}  // namespace
}  // namespace browsersweep
