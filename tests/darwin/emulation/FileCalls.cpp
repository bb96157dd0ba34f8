// Functions of the C library, in front of its own: they ask what macOS would refuse, and which name
// it would mean, and then let the real one answer.

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/darwin/emulation/Flags.h"
#include "tests/darwin/emulation/Names.h"
#include "tests/darwin/emulation/RealCalls.h"
#include "tests/darwin/emulation/Refusals.h"
#include "tests/darwin/emulation/Settings.h"

// This file means the calls of Linux by these names.
#undef fcntl
#undef fstat
#undef fstatat

using namespace browsersweep::emulation;

namespace {

template <typename Result>
Result failing(int error, Result result) noexcept {
    errno = error;
    return result;
}

/** The plain examination of what the path of a call leads to. */
bool examine(int directory, const std::string& path, struct stat& status, int flags) noexcept {
    static auto* const real = realCall<int(int, const char*, struct stat*, int)>("fstatat");
    const int error = errno;
    const bool isThere = real(directory, path.c_str(), &status, flags) == 0;
    errno = error;
    return isThere;
}

int openFile(int directory, const char* path, int flags, mode_t mode) {
    static auto* const real = realCall<int(int, const char*, int, mode_t)>("openat");
    const std::string meant = meantPath(directory, path);
    const bool writes = (flags & O_ACCMODE) != O_RDONLY || (flags & O_TRUNC) != 0;
    if (const int error = refusal(directory, meant, writes ? Wish::write : Wish::read)) {
        return failing(error, -1);
    }
    const int opened = real(directory, meant.c_str(), flags, mode);
    struct stat status = {};
    const bool mustNotFollow = (flags & O_DIRECTORY) != 0 && (flags & O_NOFOLLOW) != 0;
    if (opened < 0 && errno == ENOTDIR && mustNotFollow &&
        examine(directory, meant, status, AT_SYMLINK_NOFOLLOW) && S_ISLNK(status.st_mode)) {
        errno = ELOOP;  // there the link is found before the kind
    }
    return opened;
}

mode_t modeOf(int flags, va_list arguments) noexcept {
    const bool creates = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return creates ? va_arg(arguments, mode_t) : 0;
}

/** A call on one path that asks nothing but to know. */
template <typename Call>
auto looking(int directory, const char* path, Call call) {
    const std::string meant = meantPath(directory, path);
    if (const int error = refusal(directory, meant, Wish::look)) {
        return failing(error, decltype(call(meant.c_str()))(-1));
    }
    return call(meant.c_str());
}

/** A call on one path that changes what is there, or makes it. */
template <typename Call>
int changing(int directory, const char* path, Call call, int statFlags = AT_SYMLINK_NOFOLLOW) {
    const std::string meant = meantPath(directory, path);
    if (const int error = refusal(directory, meant, Wish::change, statFlags)) {
        return failing(error, -1);
    }
    return call(meant.c_str());
}

int removeEntry(int directory, const char* path, int flags) {
    static auto* const real = realCall<int(int, const char*, int)>("unlinkat");
    return changing(directory, path, [&](const char* meant) {
        struct stat status = {};
        const bool isKnown = examine(directory, meant, status, AT_SYMLINK_NOFOLLOW);
        if (isKnown && S_ISDIR(status.st_mode) && (flags & AT_REMOVEDIR) == 0) {
            return failing(EPERM, -1);  // Linux says EISDIR
        }
        const int result = real(directory, meant, flags);
        if (result == 0 && isKnown && (S_ISDIR(status.st_mode) || status.st_nlink == 1)) {
            forgetFlags(status);
        }
        return result;
    });
}

int renameEntry(int fromDirectory, const char* from, int toDirectory, const char* to) {
    static auto* const real = realCall<int(int, const char*, int, const char*)>("renameat");
    return changing(fromDirectory, from, [&](const char* meantFrom) {
        return changing(toDirectory, to, [&](const char* meantTo) {
            return real(fromDirectory, meantFrom, toDirectory, meantTo);
        });
    });
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openFile(AT_FDCWD, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openFile(AT_FDCWD, path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openFile(directory, path, flags, mode);
}

int openat64(int directory, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openFile(directory, path, flags, mode);
}

FILE* fopen(const char* path, const char* mode) {
    static auto* const real = realCall<FILE*(const char*, const char*)>("fopen");
    const std::string meant = meantPath(AT_FDCWD, path);
    const Wish wish = *mode == 'r' && mode[1] != '+' ? Wish::read : Wish::write;
    const int error = refusal(AT_FDCWD, meant, wish);
    return error != 0 ? failing<FILE*>(error, nullptr) : real(meant.c_str(), mode);
}

FILE* fopen64(const char* path, const char* mode) {
    return fopen(path, mode);
}

DIR* opendir(const char* path) {
    static auto* const real = realCall<DIR*(const char*)>("opendir");
    const std::string meant = meantPath(AT_FDCWD, path);
    const int error = refusal(AT_FDCWD, meant, Wish::read);
    return error != 0 ? failing<DIR*>(error, nullptr) : real(meant.c_str());
}

// A name, and on some file systems nothing else.
dirent* readdir(DIR* stream) {
    static auto* const real = realCall<dirent*(DIR*)>("readdir");
    dirent* const entry = real(stream);
    if (entry != nullptr && isOn("kinds=no")) {
        entry->d_type = DT_UNKNOWN;
    }
    return entry;
}

int stat(const char* path, struct stat* status) noexcept {
    static auto* const real = realCall<int(const char*, struct stat*)>("stat");
    return looking(AT_FDCWD, path, [&](const char* meant) { return real(meant, status); });
}

int stat64(const char* path, struct stat64* status) noexcept {
    static auto* const real = realCall<int(const char*, struct stat64*)>("stat64");
    return looking(AT_FDCWD, path, [&](const char* meant) { return real(meant, status); });
}

int lstat(const char* path, struct stat* status) noexcept {
    static auto* const real = realCall<int(const char*, struct stat*)>("lstat");
    return looking(AT_FDCWD, path, [&](const char* meant) { return real(meant, status); });
}

int lstat64(const char* path, struct stat64* status) noexcept {
    static auto* const real = realCall<int(const char*, struct stat64*)>("lstat64");
    return looking(AT_FDCWD, path, [&](const char* meant) { return real(meant, status); });
}

int fstatat(int directory, const char* path, struct stat* status, int flags) noexcept {
    static auto* const real = realCall<int(int, const char*, struct stat*, int)>("fstatat");
    return looking(directory, path,
                   [&](const char* meant) { return real(directory, meant, status, flags); });
}

int fstatat64(int directory, const char* path, struct stat64* status, int flags) noexcept {
    static auto* const real = realCall<int(int, const char*, struct stat64*, int)>("fstatat64");
    return looking(directory, path,
                   [&](const char* meant) { return real(directory, meant, status, flags); });
}

int access(const char* path, int mode) noexcept {
    static auto* const real = realCall<int(const char*, int)>("access");
    return looking(AT_FDCWD, path, [&](const char* meant) { return real(meant, mode); });
}

ssize_t readlink(const char* path, char* target, size_t size) noexcept {
    static auto* const real = realCall<ssize_t(const char*, char*, size_t)>("readlink");
    return looking(AT_FDCWD, path, [&](const char* meant) { return real(meant, target, size); });
}

char* realpath(const char* path, char* resolved) noexcept {
    static auto* const real = realCall<char*(const char*, char*)>("realpath");
    const std::string meant = meantPath(AT_FDCWD, path);
    const int error = refusal(AT_FDCWD, meant, Wish::look);
    return error != 0 ? failing<char*>(error, nullptr) : real(meant.c_str(), resolved);
}

int unlink(const char* path) noexcept {
    return removeEntry(AT_FDCWD, path, 0);
}

int unlinkat(int directory, const char* path, int flags) noexcept {
    return removeEntry(directory, path, flags);
}

int rmdir(const char* path) noexcept {
    return removeEntry(AT_FDCWD, path, AT_REMOVEDIR);
}

int rename(const char* from, const char* to) noexcept {
    return renameEntry(AT_FDCWD, from, AT_FDCWD, to);
}

int renameat(int fromDirectory, const char* from, int toDirectory, const char* to) noexcept {
    return renameEntry(fromDirectory, from, toDirectory, to);
}

// `swap=no` is a file system that cannot exchange two entries.
int renameatx_np(int fromDirectory, const char* from, int toDirectory, const char* to,
                 unsigned flags) {
    if (flags != RENAME_SWAP || isOn("swap=no")) {
        return failing(ENOTSUP, -1);
    }
    return changing(fromDirectory, from, [&](const char* meantFrom) {
        return changing(toDirectory, to, [&](const char* meantTo) {
            return ::renameat2(fromDirectory, meantFrom, toDirectory, meantTo, RENAME_EXCHANGE);
        });
    });
}

int mkdir(const char* path, mode_t mode) noexcept {
    static auto* const real = realCall<int(const char*, mode_t)>("mkdir");
    return changing(AT_FDCWD, path, [&](const char* meant) { return real(meant, mode); });
}

int mkdirat(int directory, const char* path, mode_t mode) noexcept {
    static auto* const real = realCall<int(int, const char*, mode_t)>("mkdirat");
    return changing(directory, path,
                    [&](const char* meant) { return real(directory, meant, mode); });
}

int symlink(const char* target, const char* path) noexcept {
    static auto* const real = realCall<int(const char*, const char*)>("symlink");
    return changing(AT_FDCWD, path, [&](const char* meant) { return real(target, meant); });
}

int chmod(const char* path, mode_t mode) noexcept {
    static auto* const real = realCall<int(const char*, mode_t)>("chmod");
    const auto change = [&](const char* meant) { return real(meant, mode); };
    return changing(AT_FDCWD, path, change, 0);
}

int fchmodat(int directory, const char* path, mode_t mode, int flags) noexcept {
    static auto* const real = realCall<int(int, const char*, mode_t, int)>("fchmodat");
    const auto change = [&](const char* meant) { return real(directory, meant, mode, flags); };
    return changing(directory, path, change, 0);
}

int fchmod(int descriptor, mode_t mode) noexcept {
    static auto* const real = realCall<int(int, mode_t)>("fchmod");
    return isLocked(descriptor) ? failing(EPERM, -1) : real(descriptor, mode);
}

}  // extern "C"
