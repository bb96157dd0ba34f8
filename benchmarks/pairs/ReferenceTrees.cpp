#include <cstring>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Reference.h"

namespace reference {
namespace {

bool isSelfOrParent(const char* name) {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

/** Calls visit(directory descriptor, name) for every file below a directory. */
template <typename Visit>
void walk(int parent, const char* name, Visit& visit) {
    DIR* const directory = ::fdopendir(::openat(parent, name, O_RDONLY | O_DIRECTORY));
    while (const dirent* const entry = ::readdir(directory)) {
        if (isSelfOrParent(entry->d_name)) {
            continue;
        }
        if (entry->d_type == DT_DIR) {
            walk(::dirfd(directory), entry->d_name, visit);
        } else {
            visit(::dirfd(directory), entry->d_name);
        }
    }
    ::closedir(directory);
}

std::uint64_t sizeOf(int directory, const char* name) {
    struct stat status = {};
    ::fstatat(directory, name, &status, AT_SYMLINK_NOFOLLOW);
    return static_cast<std::uint64_t>(status.st_size) + 1;
}

}  // namespace

std::uint64_t sizeTree(const std::string& root) {
    std::uint64_t sum = 0;
    const auto add = [&](int directory, const char* name) { sum += sizeOf(directory, name); };
    walk(AT_FDCWD, root.c_str(), add);
    return sum;
}

std::uint64_t sizeTreeExcluding(const std::string& root, const std::string& pattern) {
    std::uint64_t sum = 0;
    const auto add = [&](int directory, const char* name) {
        if (std::strstr(name, pattern.c_str()) == nullptr) {
            sum += sizeOf(directory, name);
        }
    };
    walk(AT_FDCWD, root.c_str(), add);
    return sum;
}

std::uint64_t sizeTreeByBirth(const std::string& root) {
    std::uint64_t sum = 0;
    const auto add = [&](int directory, const char* name) {
        struct statx status = {};
        ::statx(directory, name, AT_SYMLINK_NOFOLLOW, STATX_SIZE | STATX_BTIME, &status);
        if (status.stx_btime.tv_sec >= 0) {
            sum += status.stx_size + 1;
        }
    };
    walk(AT_FDCWD, root.c_str(), add);
    return sum;
}

std::uint64_t cleanTree(const std::string& root) {
    std::uint64_t count = 0;
    const auto remove = [&](int directory, const char* name) {
        count += ::unlinkat(directory, name, 0) == 0 ? 1U : 0U;
    };
    walk(AT_FDCWD, root.c_str(), remove);
    return count;
}

}  // namespace reference
