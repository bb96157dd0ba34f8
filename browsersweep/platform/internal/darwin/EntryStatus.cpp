#include "browsersweep/platform/internal/posix/EntryStatus.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "browsersweep/platform/internal/darwin/BirthDate.h"

namespace browsersweep::posix {

std::optional<EntryStatus> entryStatus(int directory, const char* name,
                                       StatusFields /*fields*/) noexcept {
    struct stat status = {};
    if (::fstatat(directory, name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return std::nullopt;
    }
    return EntryStatus{S_ISDIR(status.st_mode), static_cast<std::uint64_t>(status.st_size),
                       birthDate(status.st_birthtimespec)};
}

}  // namespace browsersweep::posix
