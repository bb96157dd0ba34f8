#include "tests/darwin/emulation/Flags.h"

#include <cerrno>
#include <map>
#include <mutex>
#include <utility>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/darwin/emulation/RealCalls.h"

namespace browsersweep::emulation {
namespace {

constexpr unsigned immutable = 0x2 | 0x20000;  // the user's and the system's

std::mutex mutex;
std::map<std::pair<dev_t, ino_t>, unsigned>& table() {
    static std::map<std::pair<dev_t, ino_t>, unsigned> flags;
    return flags;
}

bool realStat(int directory, const char* path, struct stat& status, int flags) noexcept {
    static auto* const real = realCall<int(int, const char*, struct stat*, int)>("fstatat");
    const int error = errno;
    const bool isThere = real(directory, path, &status, flags) == 0;
    errno = error;
    return isThere;
}

}  // namespace

unsigned flagsOf(const struct stat& file) {
    const std::lock_guard lock(mutex);
    const auto found = table().find({file.st_dev, file.st_ino});
    return found == table().end() ? 0 : found->second;
}

void setFlags(const struct stat& file, unsigned flags) {
    const std::lock_guard lock(mutex);
    table()[{file.st_dev, file.st_ino}] = flags;
}

void forgetFlags(const struct stat& file) {
    const std::lock_guard lock(mutex);
    table().erase({file.st_dev, file.st_ino});
}

bool isLocked(int directory, const char* path, int statFlags) {
    struct stat status = {};
    return realStat(directory, path, status, statFlags) && (flagsOf(status) & immutable) != 0;
}

bool isLocked(int descriptor) {
    return isLocked(descriptor, "", AT_EMPTY_PATH);
}

}  // namespace browsersweep::emulation
