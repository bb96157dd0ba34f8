#include "browsersweep/sqlite/internal/ConfinedFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <exception>
#include <memory>
#include <span>
#include <utility>

#include <sqlite3.h>

#include "browsersweep/platform/internal/posix/FileFacts.h"

namespace browsersweep {
namespace {

// The system's file follows in the same memory.
static_assert(sizeof(ConfinedFile) % alignof(sqlite3_int64) == 0);

sqlite3_file* systemFile(sqlite3_file* file) noexcept {
    return ConfinedFile::of(file).system();
}

const sqlite3_io_methods& systemMethods(sqlite3_file* file) noexcept {
    return *systemFile(file)->pMethods;
}

/** Passes a call on to the system's file. */
template <auto Method, typename... Arguments>
auto passOn(sqlite3_file* file, Arguments... arguments) {
    return (systemMethods(file).*Method)(systemFile(file), arguments...);
}

/** The same where the call changes the file. */
template <auto Method, typename... Arguments>
int passOnUnlessReading(sqlite3_file* file, Arguments... arguments) {
    return ConfinedFile::of(file).onlyReads() ? SQLITE_READONLY
                                              : passOn<Method>(file, arguments...);
}

int readUnlessStopped(sqlite3_file* file, void* into, int count, sqlite3_int64 offset) {
    // Any other code would leave a journal to be played back; this one takes the statement back.
    return ConfinedFile::of(file).isToStop()
               ? SQLITE_INTERRUPT
               : passOn<&sqlite3_io_methods::xRead>(file, into, count, offset);
}

int mapIndex(sqlite3_file* file, int region, int size, int extends, void volatile** memory) {
    return ConfinedFile::of(file).mayOpenIndex()
               ? passOn<&sqlite3_io_methods::xShmMap>(file, region, size, extends, memory)
               : SQLITE_CANTOPEN;
}

int unmapIndex(sqlite3_file* file, int deletes) {
    const int may = ConfinedFile::of(file).onlyReads() ? 0 : deletes;
    return passOn<&sqlite3_io_methods::xShmUnmap>(file, may);
}

int characteristics(sqlite3_file* file) {
    const int settled = ConfinedFile::of(file).isSettled() ? SQLITE_IOCAP_IMMUTABLE : 0;
    return passOn<&sqlite3_io_methods::xDeviceCharacteristics>(file) | settled;
}

int close(sqlite3_file* file) {
    return ConfinedFile::of(file).close();
}

constexpr sqlite3_io_methods confinedMethods(int version) {
    using M = sqlite3_io_methods;
    M methods{};
    methods.iVersion = version;
    methods.xClose = close;
    methods.xRead = readUnlessStopped;
    methods.xWrite = passOnUnlessReading<&M::xWrite, const void*, int, sqlite3_int64>;
    methods.xTruncate = passOnUnlessReading<&M::xTruncate, sqlite3_int64>;
    methods.xSync = passOnUnlessReading<&M::xSync, int>;
    methods.xFileSize = passOn<&M::xFileSize, sqlite3_int64*>;
    methods.xLock = passOn<&M::xLock, int>;
    methods.xUnlock = passOn<&M::xUnlock, int>;
    methods.xCheckReservedLock = passOn<&M::xCheckReservedLock, int*>;
    methods.xFileControl = passOn<&M::xFileControl, int, void*>;
    methods.xSectorSize = passOn<&M::xSectorSize>;
    methods.xDeviceCharacteristics = characteristics;
    methods.xShmMap = mapIndex;
    methods.xShmLock = passOn<&M::xShmLock, int, int, int>;
    methods.xShmBarrier = passOn<&M::xShmBarrier>;
    methods.xShmUnmap = unmapIndex;
    methods.xFetch = passOn<&M::xFetch, sqlite3_int64, int, void**>;
    methods.xUnfetch = passOn<&M::xUnfetch, sqlite3_int64, void*>;
    return methods;
}

// SQLite looks at the version for what a file can do: as much as the system's own.
constexpr std::array methodsByVersion{confinedMethods(1), confinedMethods(2), confinedMethods(3)};

// Nobody is kept out, and the end of the connection takes nothing over from the log.
int lockForReading(sqlite3_file* /*file*/, int level) {
    return level <= SQLITE_LOCK_SHARED ? SQLITE_OK : SQLITE_BUSY;
}

int mapOwnIndex(sqlite3_file* file, int region, int size, int /*extends*/, void volatile** memory) {
    try {
        *memory = ConfinedFile::of(file).indexRegion(static_cast<std::size_t>(region),
                                                     static_cast<std::size_t>(size));
        return SQLITE_OK;
    } catch (const std::exception&) {
        return SQLITE_IOERR_NOMEM;
    }
}

int dropOwnIndex(sqlite3_file* file, int /*deletes*/) {
    ConfinedFile::of(file).dropIndex();
    return SQLITE_OK;
}

/** Of a file that nobody changes, whose log's index is the connection's own. */
constexpr sqlite3_io_methods withOwnIndex(sqlite3_io_methods methods) {
    methods.xLock = lockForReading;
    methods.xUnlock = [](sqlite3_file*, int) { return SQLITE_OK; };
    methods.xShmMap = mapOwnIndex;
    methods.xShmLock = [](sqlite3_file*, int, int, int) { return SQLITE_OK; };
    methods.xShmBarrier = [](sqlite3_file*) {};
    methods.xShmUnmap = dropOwnIndex;
    return methods;
}

constexpr std::array withOwnIndexByVersion{withOwnIndex(methodsByVersion[0]),
                                           withOwnIndex(methodsByVersion[1]),
                                           withOwnIndex(methodsByVersion[2])};

int readMemory(sqlite3_file* file, void* into, int count, sqlite3_int64 offset) {
    const std::span target(static_cast<std::byte*>(into), static_cast<std::size_t>(count));
    return ConfinedFile::of(file).memory().read(target, static_cast<std::uint64_t>(offset))
               ? SQLITE_OK
               : SQLITE_IOERR_SHORT_READ;
}

int writeMemory(sqlite3_file* file, const void* from, int count, sqlite3_int64 offset) {
    const std::span source(static_cast<const std::byte*>(from), static_cast<std::size_t>(count));
    try {
        return ConfinedFile::of(file).memory().write(source, static_cast<std::uint64_t>(offset))
                   ? SQLITE_OK
                   : SQLITE_FULL;
    } catch (const std::exception&) {
        return SQLITE_IOERR_NOMEM;
    }
}

constexpr sqlite3_io_methods inMemory{
    .iVersion = 1,
    .xClose = close,
    .xRead = readMemory,
    .xWrite = writeMemory,
    .xTruncate =
        [](sqlite3_file* file, sqlite3_int64 size) {
            ConfinedFile::of(file).memory().truncate(static_cast<std::uint64_t>(size));
            return SQLITE_OK;
        },
    .xSync = [](sqlite3_file*, int) { return SQLITE_OK; },
    .xFileSize =
        [](sqlite3_file* file, sqlite3_int64* size) {
            *size = static_cast<sqlite3_int64>(ConfinedFile::of(file).memory().size());
            return SQLITE_OK;
        },
    .xLock = [](sqlite3_file*, int) { return SQLITE_OK; },
    .xUnlock = [](sqlite3_file*, int) { return SQLITE_OK; },
    .xCheckReservedLock =
        [](sqlite3_file*, int* isReserved) {
            *isReserved = 0;
            return SQLITE_OK;
        },
    .xFileControl = [](sqlite3_file*, int, void*) { return SQLITE_NOTFOUND; },
    .xSectorSize = [](sqlite3_file*) { return 0; },
    .xDeviceCharacteristics = [](sqlite3_file*) { return 0; },
    // A file of this version has no index and is not mapped.
    .xShmMap = nullptr,
    .xShmLock = nullptr,
    .xShmBarrier = nullptr,
    .xShmUnmap = nullptr,
    .xFetch = nullptr,
    .xUnfetch = nullptr,
};

}  // namespace

int ConfinedFile::sizeWith(const sqlite3_vfs& system) noexcept {
    return static_cast<int>(sizeof(ConfinedFile)) + system.szOsFile;
}

ConfinedFile& ConfinedFile::prepare(sqlite3_file* memory) noexcept {
    ConfinedFile& file = *std::construct_at(reinterpret_cast<ConfinedFile*>(memory));
    file.system()->pMethods = nullptr;
    return file;
}

ConfinedFile& ConfinedFile::of(sqlite3_file* file) noexcept {
    return *reinterpret_cast<ConfinedFile*>(file);
}

sqlite3_file* ConfinedFile::system() noexcept {
    return reinterpret_cast<sqlite3_file*>(this + 1);
}

int ConfinedFile::open(sqlite3_vfs& vfs, const char* name, int flags, int* flagsGiven) noexcept {
    std::memset(system(), 0, static_cast<std::size_t>(vfs.szOsFile));
    const int code = vfs.xOpen(&vfs, name, system(), flags, flagsGiven);
    if (code != SQLITE_OK) {
        close();
    }
    return code;
}

void ConfinedFile::confine(FileBounds bounds) {
    bounds_ = std::make_unique<FileBounds>(std::move(bounds));
    const auto version = static_cast<std::size_t>(std::clamp(system()->pMethods->iVersion, 1, 3));
    const auto& tables = bounds_->indexesInMemory ? withOwnIndexByVersion : methodsByVersion;
    methods_ = &tables.at(version - 1);
}

void ConfinedFile::keepInMemory() {
    memory_ = std::make_unique<MemoryFile>();
    methods_ = &inMemory;
}

int ConfinedFile::close() noexcept {
    int code = SQLITE_OK;
    if (system()->pMethods != nullptr) {
        code = system()->pMethods->xClose(system());
        system()->pMethods = nullptr;
    }
    // SQLite takes the memory back without another word.
    std::destroy_at(this);
    std::construct_at(this);
    return code;
}

void* ConfinedFile::indexRegion(std::size_t number, std::size_t size) {
    constexpr std::size_t word = sizeof(std::uint64_t);
    while (index_.size() <= number) {
        index_.emplace_back((size + word - 1) / word);
    }
    return index_[number].data();
}

bool ConfinedFile::mayOpenIndex() const noexcept {
    const posix::FileFacts index = posix::factsOf(bounds_->index.c_str());
    return !index.exists || index.isRegularWithOneName();
}

}  // namespace browsersweep
