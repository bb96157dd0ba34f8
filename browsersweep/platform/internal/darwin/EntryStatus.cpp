#include "browsersweep/platform/internal/posix/EntryStatus.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace browsersweep::posix {

std::optional<EntryStatus> entryStatus(int directory, const char* name,
                                       StatusFields /*fields*/) noexcept {
    struct stat status {};
    if (::fstatat(directory, name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return std::nullopt;
    }
    const timespec& birth = status.st_birthtimespec;
    return EntryStatus{
        S_ISDIR(status.st_mode), static_cast<std::uint64_t>(status.st_size),
        dateFrom1970Seconds(static_cast<double>(birth.tv_sec)) +
            std::chrono::duration<double>(static_cast<double>(birth.tv_nsec) * 1e-9)};
}

}  // namespace browsersweep::posix
