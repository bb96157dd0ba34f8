#include "browsersweep/platform/internal/posix/FileCopy.h"

#include <cstdint>

#include <fcntl.h>
#include <sys/clonefile.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {
namespace {

/**
 * A clone has its source's mode and flags, and with the flag "locked" it could be neither changed
 * nor deleted. It therefore loses the flags first. False where that fails, as for a source that
 * only others may read, whose clone its own owner cannot open.
 */
bool makePrivate(const std::filesystem::path& path) noexcept {
    const FileDescriptor file(
        restarting([&] { return ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC); }));
    struct stat status = {};
    if (!file || ::fstat(file.number(), &status) != 0) {
        return false;
    }
    return (status.st_flags == 0 || ::fchflags(file.number(), 0) == 0) &&
           ::fchmod(file.number(), S_IRUSR | S_IWUSR) == 0;
}

/**
 * Shares the blocks where the file system can. The flag is about the target: without it a link that
 * leads nowhere would be followed and the clone made where it points.
 */
bool clone(const FileDescriptor& source, const std::filesystem::path& to) noexcept {
    constexpr std::uint32_t flags = CLONE_NOFOLLOW | CLONE_NOOWNERCOPY;
    if (::fclonefileat(source.number(), AT_FDCWD, to.c_str(), flags) != 0) {
        return false;
    }
    if (makePrivate(to)) {
        return true;
    }
    ::lchflags(to.c_str(), 0);
    ::unlink(to.c_str());
    return false;
}

}  // namespace

/** Whatever stands in a clone's way, the plain copy either does without or says why it cannot. */
void copyFile(const FileDescriptor& source, const std::filesystem::path& from,
              const std::filesystem::path& to, OperationControl* control) {
    if (clone(source, to)) {
        tellOfPiece(static_cast<std::uint64_t>(sizeOf(source, from)), control);
    } else {
        copyThroughBuffer(source, from, createPrivateFile(to), to, control);
    }
}

}  // namespace browsersweep::posix
