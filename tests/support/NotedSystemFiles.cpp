#include "tests/support/NotedSystemFiles.h"

#include <algorithm>
#include <utility>

namespace browsersweep::tests {
namespace {

/** The system's part of an open file. */
struct NotedFile {
    sqlite3_file base;
    NotedSystemFiles* owner;
};

NotedSystemFiles& ownerOf(sqlite3_vfs* vfs) noexcept {
    return *static_cast<NotedSystemFiles*>(vfs->pAppData);
}

template <typename... Arguments>
int noted(sqlite3_file* file, std::string_view name, Arguments... arguments) {
    reinterpret_cast<NotedFile*>(file)->owner->note(call(name, arguments...));
    return NotedSystemFiles::answer;
}

/** An address; that of a memory that others change, too. */
const void* address(void volatile** memory) noexcept {
    return static_cast<const void*>(memory);
}

}  // namespace

NotedSystemFiles::NotedSystemFiles() {
    vfs_.iVersion = 3;
    vfs_.szOsFile = sizeof(NotedFile);
    vfs_.mxPathname = 1000;
    vfs_.zName = "noted";
    vfs_.pAppData = this;
    setFileMethods();
    setOtherMethods();
    sqlite3_vfs_register(&vfs_, 1);
}

NotedSystemFiles::~NotedSystemFiles() {
    sqlite3_vfs_unregister(&vfs_);
}

std::vector<std::string> NotedSystemFiles::taken() {
    return std::exchange(calls_, {});
}

void NotedSystemFiles::openWith(int code, bool hasFile) noexcept {
    code_ = code;
    hasFile_ = hasFile;
}

int NotedSystemFiles::open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags,
                           int* flagsGiven) {
    NotedSystemFiles& owner = ownerOf(vfs);
    const auto* const bytes = reinterpret_cast<const unsigned char*>(file);
    const bool isEmpty =
        std::all_of(bytes, bytes + sizeof(NotedFile), [](unsigned char byte) { return byte == 0; });
    owner.note(call(isEmpty ? "xOpen" : "xOpen in memory in use", name, flags, flagsGiven));
    if (owner.onOpening) {
        owner.onOpening(name);
    }
    reinterpret_cast<NotedFile*>(file)->owner = &owner;
    file->pMethods = owner.hasFile_ ? &owner.methods_ : nullptr;
    return owner.code_;
}

void NotedSystemFiles::setFileMethods() noexcept {
    using File = sqlite3_file;
    using Offset = sqlite3_int64;
    methods_.iVersion = 3;
    methods_.xClose = [](File* f) { return noted(f, "xClose"); };
    methods_.xRead = [](File* f, void* into, int count, Offset offset) {
        return noted(f, "xRead", into, count, offset);
    };
    methods_.xWrite = [](File* f, const void* from, int count, Offset offset) {
        return noted(f, "xWrite", from, count, offset);
    };
    methods_.xTruncate = [](File* f, Offset size) { return noted(f, "xTruncate", size); };
    methods_.xSync = [](File* f, int how) { return noted(f, "xSync", how); };
    methods_.xFileSize = [](File* f, Offset* size) { return noted(f, "xFileSize", size); };
    methods_.xLock = [](File* f, int kind) { return noted(f, "xLock", kind); };
    methods_.xUnlock = [](File* f, int kind) { return noted(f, "xUnlock", kind); };
    methods_.xCheckReservedLock = [](File* f, int* is) {
        return noted(f, "xCheckReservedLock", is);
    };
    methods_.xFileControl = [](File* f, int what, void* with) {
        return noted(f, "xFileControl", what, with);
    };
    methods_.xSectorSize = [](File* f) { return noted(f, "xSectorSize"); };
    methods_.xDeviceCharacteristics = [](File* f) { return noted(f, "xDeviceCharacteristics"); };
    methods_.xShmMap = [](File* f, int region, int size, int extends, void volatile** memory) {
        return noted(f, "xShmMap", region, size, extends, address(memory));
    };
    methods_.xShmLock = [](File* f, int offset, int count, int flags) {
        return noted(f, "xShmLock", offset, count, flags);
    };
    methods_.xShmBarrier = [](File* f) { noted(f, "xShmBarrier"); };
    methods_.xShmUnmap = [](File* f, int deletes) { return noted(f, "xShmUnmap", deletes); };
    methods_.xFetch = [](File* f, Offset offset, int count, void** memory) {
        return noted(f, "xFetch", offset, count, memory);
    };
    methods_.xUnfetch = [](File* f, Offset offset, void* memory) {
        return noted(f, "xUnfetch", offset, memory);
    };
}

void NotedSystemFiles::setOtherMethods() noexcept {
    vfs_.xOpen = open;
    vfs_.xDelete = [](sqlite3_vfs* vfs, const char* name, int syncsFolder) {
        ownerOf(vfs).note(call("xDelete", name, syncsFolder));
        return answer;
    };
    vfs_.xAccess = [](sqlite3_vfs* vfs, const char* name, int question, int* yes) {
        ownerOf(vfs).note(call("xAccess", name, question, yes));
        return answer;
    };
    vfs_.xFullPathname = [](sqlite3_vfs* vfs, const char* name, int capacity, char*) {
        ownerOf(vfs).note(call("xFullPathname", name, capacity));
        return answer;
    };
    vfs_.xDlOpen = [](sqlite3_vfs* vfs, const char* name) -> void* {
        ownerOf(vfs).note(call("xDlOpen", name));
        return vfs;
    };
    vfs_.xRandomness = [](sqlite3_vfs* vfs, int count, char* into) {
        ownerOf(vfs).note(call("xRandomness", count, static_cast<void*>(into)));
        return answer;
    };
    vfs_.xSleep = [](sqlite3_vfs* vfs, int microseconds) {
        ownerOf(vfs).note(call("xSleep", microseconds));
        return answer;
    };
    vfs_.xCurrentTime = [](sqlite3_vfs* vfs, double* days) {
        ownerOf(vfs).note(call("xCurrentTime", days));
        return answer;
    };
    vfs_.xGetLastError = [](sqlite3_vfs* vfs, int count, char* into) {
        ownerOf(vfs).note(call("xGetLastError", count, static_cast<void*>(into)));
        return answer;
    };
    vfs_.xCurrentTimeInt64 = [](sqlite3_vfs* vfs, sqlite3_int64* milliseconds) {
        ownerOf(vfs).note(call("xCurrentTimeInt64", milliseconds));
        return answer;
    };
}

}  // namespace browsersweep::tests
