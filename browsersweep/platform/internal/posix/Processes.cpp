#include "browsersweep/platform/internal/Processes.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): the C++ header lacks kill()
#include <sys/types.h>
#include <unistd.h>

namespace browsersweep {

bool isAlive(long process) noexcept {
    return ::kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM;
}

bool isLockedByAnother(const std::filesystem::path& file) noexcept {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg)
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return false;
    }
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg)
    const bool isHeld = ::fcntl(descriptor, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    ::close(descriptor);
    return isHeld;
}

std::string hostName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

}  // namespace browsersweep
