#include "browsersweep/platform/internal/posix/EntryStatus.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace browsersweep::posix {

std::optional<EntryStatus> entryStatus(int directory, const char* name,
                                       StatusFields fields) noexcept {
    const unsigned mask = STATX_TYPE | STATX_SIZE | (fields == StatusFields::all ? STATX_BTIME : 0);
    struct statx status = {};
    if (::statx(directory, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, mask, &status) != 0) {
        return std::nullopt;
    }
    EntryStatus result{S_ISDIR(status.stx_mode), status.stx_size, std::nullopt};
    if ((status.stx_mask & STATX_BTIME) != 0) {
        result.creationDate = dateFrom1970Seconds(static_cast<double>(status.stx_btime.tv_sec)) +
                              std::chrono::duration<double>(status.stx_btime.tv_nsec * 1e-9);
    }
    return result;
}

}  // namespace browsersweep::posix
