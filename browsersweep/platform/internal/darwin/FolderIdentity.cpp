#include "browsersweep/platform/internal/posix/FolderIdentity.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {

/** Every mount has a device number of its own here: no part of a file system stands twice. */
std::optional<FolderIdentity> folderIdentity(const FileDescriptor& folder) noexcept {
    struct stat status = {};
    if (::fstat(folder.number(), &status) != 0) {
        return std::nullopt;
    }
    const auto device = static_cast<std::uint64_t>(status.st_dev);
    return FolderIdentity{device, status.st_ino, device};
}

bool isMountedOver(const FileDescriptor& /*folder*/, const char* /*name*/) noexcept {
    return false;  // only folders are mounted on
}

FileDescriptor openPassage(int parent, const char* name, int flags) noexcept {
    return FileDescriptor(restarting(
        [&] { return ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags); }));
}

}  // namespace browsersweep::posix
