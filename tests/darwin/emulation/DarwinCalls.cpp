// The calls that Linux lacks, answered as macOS does.

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>
#include <string_view>
#include <vector>

#include <crt_externs.h>
#include <dirent.h>
#include <fcntl.h>
#include <libproc.h>
#include <os/log.h>
#include <sys/attr.h>
#include <sys/auxv.h>
#include <sys/clonefile.h>
#include <sys/stat.h>
#include <sys/sysctl.h>
#include <sysdir.h>
#include <syslog.h>
#include <unistd.h>
#include <xlocale.h>

#include "tests/darwin/emulation/Flags.h"
#include "tests/darwin/emulation/Names.h"
#include "tests/darwin/emulation/Settings.h"

// This file means the calls of Linux by these names.
#undef fcntl
#undef confstr
#undef fstat
#undef fstatat

using namespace browsersweep::emulation;

namespace {

int failing(int error) noexcept {
    errno = error;
    return -1;
}

/** Zero where the file system keeps no birth time. */
timespec birthOf(int directory, const char* name, int flags) noexcept {
    struct statx status = {};
    const bool isKnown = !isOn("birth=no") &&
                         ::statx(directory, name, flags, STATX_BTIME, &status) == 0 &&
                         (status.stx_mask & STATX_BTIME) != 0;
    return isKnown ? timespec{status.stx_btime.tv_sec, status.stx_btime.tv_nsec} : timespec{};
}

/** There every mount has a number of its own; here what is mounted twice keeps that of its disk. */
dev_t deviceOf(int descriptor, const struct stat& status) noexcept {
    struct statx mounted = {};
    const bool isKnown = ::statx(descriptor, "", AT_EMPTY_PATH, STATX_MNT_ID, &mounted) == 0 &&
                         (mounted.stx_mask & STATX_MNT_ID) != 0;
    return isKnown ? status.st_dev ^ (mounted.stx_mnt_id << 32U) : status.st_dev;
}

void addWhatMacOSTells(struct stat& status, const timespec& birth) {
    status.st_flags = flagsOf(status);
    status.st_birthtimespec = birth;
}

/** Writes as much as one piece of a clone has, at its place. */
bool writePiece(int target, const std::vector<char>& buffer, std::size_t count, off_t place) {
    for (std::size_t written = 0; written < count;) {
        const ssize_t more = ::pwrite(target, &buffer[written], count - written,
                                      place + static_cast<off_t>(written));
        if (more < 0) {
            return false;
        }
        written += static_cast<std::size_t>(more);
    }
    return true;
}

/**
 * Makes the clone's contents; the caller has made sure that there is a place for it. A clone takes
 * no room, and the pieces of it that would be none in a file with holes take none here.
 */
int copyContents(int source, int target) {
    std::vector<char> buffer(std::size_t{1} << 16);
    off_t place = 0;
    while ((place = ::lseek(source, place, SEEK_DATA)) >= 0) {
        const ssize_t count = ::pread(source, buffer.data(), buffer.size(), place);
        if (count == 0) {
            break;  // it was cut short meanwhile
        }
        if (count < 0 || !writePiece(target, buffer, static_cast<std::size_t>(count), place)) {
            return -1;
        }
        place += count;
    }
    struct stat status = {};
    return ::fstat(source, &status) == 0 ? ::ftruncate(target, status.st_size) : -1;
}

}  // namespace

char*** _NSGetEnviron() {
    return &environ;
}

int issetugid() {
    return ::getauxval(AT_SECURE) != 0 ? 1 : 0;
}

/** `sync=no` is a file system that knows neither of the stronger requests. */
int browsersweepEmulatedFcntl(int descriptor, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    const long argument = va_arg(arguments, long);
    va_end(arguments);
    if (command == F_FULLFSYNC || command == F_BARRIERFSYNC) {
        return isOn("sync=no") ? failing(ENOTSUP) : ::fsync(descriptor);
    }
    return ::fcntl(descriptor, command, argument);
}

std::size_t browsersweepEmulatedConfstr(int name, char* buffer, std::size_t size) {
    if (name != _CS_DARWIN_USER_TEMP_DIR) {
        return ::confstr(name, buffer, size);
    }
    constexpr std::string_view folder = "/private/var/folders/zz/T/";
    const std::size_t kept = std::min(folder.size(), size == 0 ? 0 : size - 1);
    if (size > 0) {
        *std::copy_n(folder.begin(), kept, buffer) = '\0';
    }
    return folder.size() + 1;
}

int browsersweepEmulatedFstat(int descriptor, struct stat* status) {
    const int result = ::fstat(descriptor, status);
    if (result == 0) {
        addWhatMacOSTells(*status, birthOf(descriptor, "", AT_EMPTY_PATH));
        status->st_dev = deviceOf(descriptor, *status);
    }
    return result;
}

int browsersweepEmulatedFstatat(int directory, const char* name, struct stat* status, int flags) {
    const int result = ::fstatat(directory, name, status, flags);
    if (result == 0) {
        addWhatMacOSTells(*status, birthOf(directory, meantPath(directory, name).c_str(), flags));
    }
    return result;
}

/** A clone has the mode and the flags of its source. `clone=no` is a file system without clones. */
int fclonefileat(int source, int directory, const char* target, std::uint32_t flags) {
    struct stat status = {};
    struct stat other = {};
    if (isOn("clone=no")) {
        return failing(ENOTSUP);
    }
    if (::fstat(source, &status) != 0) {
        return -1;
    }
    const bool follows = (flags & CLONE_NOFOLLOW) == 0;
    if (::fstatat(directory, target, &other, follows ? 0 : AT_SYMLINK_NOFOLLOW) == 0) {
        return failing(EEXIST);
    }
    const std::string path = target;
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    if (::fstatat(directory, folder.empty() ? "." : folder.c_str(), &other, 0) != 0) {
        return -1;
    }
    if (other.st_dev != status.st_dev) {
        return failing(EXDEV);
    }
    const int made =
        ::openat(directory, target, O_WRONLY | O_CREAT | O_CLOEXEC | (follows ? 0 : O_EXCL), 0600);
    if (made < 0) {
        return -1;
    }
    int result = copyContents(source, made);
    result = result == 0 ? ::fchmod(made, status.st_mode & 07777U) : result;
    if (::fstat(made, &other) == 0) {
        setFlags(other, flagsOf(status));
    }
    ::close(made);
    return result;
}

namespace {

int changeFlags(const struct stat& status, unsigned flags) {
    setFlags(status, flags);
    return 0;
}

int changeFlagsOfPath(const char* path, unsigned flags, int statFlags) {
    struct stat status = {};
    return ::fstatat(AT_FDCWD, path, &status, statFlags) == 0 ? changeFlags(status, flags) : -1;
}

}  // namespace

int chflags(const char* path, unsigned flags) {
    return changeFlagsOfPath(path, flags, 0);
}

int lchflags(const char* path, unsigned flags) {
    return changeFlagsOfPath(path, flags, AT_SYMLINK_NOFOLLOW);
}

int fchflags(int descriptor, unsigned flags) {
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 ? changeFlags(status, flags) : -1;
}

int sysctlbyname(const char* name, void* old, std::size_t* oldLength, void* /*replacement*/,
                 std::size_t /*replacementLength*/) {
    if (std::string_view(name) != "kern.osproductversion") {
        return failing(ENOENT);
    }
    const std::string version = valueOf("version", "14.5");
    if (*oldLength < version.size() + 1) {
        return failing(ENOMEM);
    }
    std::memcpy(old, version.c_str(), version.size() + 1);
    *oldLength = version.size() + 1;
    return 0;
}

// The state is the directory that is still to be named, or 0.
sysdir_search_path_enumeration_state sysdir_start_search_path_enumeration(
    sysdir_search_path_directory_t directory, sysdir_search_path_domain_mask_t domains) {
    return (domains & SYSDIR_DOMAIN_MASK_USER) != 0 ? static_cast<unsigned>(directory) : 0U;
}

sysdir_search_path_enumeration_state sysdir_get_next_search_path_enumeration(
    sysdir_search_path_enumeration_state state, char* path) {
    constexpr sysdir_search_path_enumeration_state done = 1U << 31U;
    switch (state) {
        case SYSDIR_DIRECTORY_LIBRARY:
            std::strcpy(path, "~/Library");
            return done;
        case SYSDIR_DIRECTORY_CACHES:
            std::strcpy(path, "~/Library/Caches");
            return done;
        case SYSDIR_DIRECTORY_APPLICATION_SUPPORT:
            std::strcpy(path, "~/Library/Application Support");
            return done;
        default:
            return 0;
    }
}

struct os_log_s {};
os_log_s _os_log_default;

void browsersweepEmulatedLog(os_log_t /*log*/, const char* format, ...) {
    std::string plain = format;
    for (auto found = plain.find("{public}"); found != std::string::npos;
         found = plain.find("{public}")) {
        plain.erase(found, std::string_view("{public}").size());
    }
    va_list arguments;
    va_start(arguments, format);
    ::vsyslog(LOG_USER | LOG_DEBUG, plain.c_str(), arguments);
    va_end(arguments);
}

int proc_listpids(std::uint32_t type, std::uint32_t typeinfo, void* buffer, int size) {
    std::vector<int> found;
    if (DIR* const processes = type == PROC_UID_ONLY ? ::opendir("/proc") : nullptr) {
        while (const dirent* const entry = ::readdir(processes)) {
            const char* const name = static_cast<const char*>(entry->d_name);
            struct stat status = {};
            const int process = std::atoi(name);
            if (process > 0 && ::fstatat(::dirfd(processes), name, &status, 0) == 0 &&
                status.st_uid == typeinfo) {
                found.push_back(process);
            }
        }
        ::closedir(processes);
    }
    const std::size_t fitting =
        std::min(found.size(), static_cast<std::size_t>(size) / sizeof(int));
    if (buffer == nullptr) {
        return static_cast<int>(found.size() * sizeof(int));
    }
    std::memcpy(buffer, found.data(), fitting * sizeof(int));
    return static_cast<int>(fitting * sizeof(int));
}

/** The longest name that the system gives is one of 31 characters. */
int proc_name(int process, void* buffer, std::uint32_t size) {
    const std::string file = "/proc/" + std::to_string(process) + "/comm";
    const int opened = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (opened < 0) {
        errno = ESRCH;
        return 0;
    }
    char name[32] = "";  // NOLINT: filled by the system
    ssize_t length = ::read(opened, name, std::min<std::size_t>(sizeof name - 1, size - 1));
    ::close(opened);
    length = std::max<ssize_t>(length, 0);
    while (length > 0 && name[length - 1] == '\n') {
        --length;
    }
    name[length] = '\0';
    std::memcpy(buffer, name, static_cast<std::size_t>(length) + 1);
    return static_cast<int>(length);
}

int wcwidth_l(wchar_t character, locale_t locale) {
    const locale_t before = ::uselocale(locale);
    const int width = ::wcwidth(character);
    ::uselocale(before);
    return width;
}
