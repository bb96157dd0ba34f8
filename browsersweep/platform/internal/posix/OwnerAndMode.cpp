#include "browsersweep/platform/internal/posix/OwnerAndMode.h"

#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {

void adoptOwner(const struct stat& old, const FileDescriptor& file,
                const std::filesystem::path& path) {
    struct stat own = {};
    if (::fstat(file.number(), &own) != 0) {
        throwSystemError("cannot examine", path);
    }
    const bool sameOwner = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
    if (!sameOwner && ::fchown(file.number(), old.st_uid, old.st_gid) != 0) {
        throwSystemError("cannot keep the owner of", path);
    }
}

void adoptMode(const struct stat& old, const FileDescriptor& file,
               const std::filesystem::path& path) {
    if (::fchmod(file.number(), old.st_mode & static_cast<mode_t>(~S_IFMT)) != 0) {
        throwSystemError("cannot keep the mode of", path);
    }
}

}  // namespace browsersweep::posix
