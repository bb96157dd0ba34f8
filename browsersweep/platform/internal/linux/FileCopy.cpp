#include "browsersweep/platform/internal/posix/FileCopy.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {
namespace {

/** What the kernel says where it cannot copy between these two files by itself. */
constexpr std::array cannotCopyErrors{EXDEV, EOPNOTSUPP, EINVAL, ENOSYS, EPERM, EBADF};

/** Small enough that even a slow disk finishes a piece before an impatient user notices. */
constexpr std::size_t pieceSize = std::size_t{16} << 20;

bool clone(const FileDescriptor& source, const FileDescriptor& target) noexcept {
    return ::ioctl(target.number(), FICLONE, source.number()) == 0;
}

/** Copies inside the kernel. False where it cannot: both files then stand where it stopped. */
bool copyInKernel(const FileDescriptor& source, const FileDescriptor& target,
                  const std::filesystem::path& to, OperationControl* control) {
    while (true) {
        const auto count = restarting([&] {
            return ::copy_file_range(source.number(), nullptr, target.number(), nullptr, pieceSize,
                                     0);
        });
        if (count == 0) {
            return true;
        }
        if (count < 0) {
            if (std::find(cannotCopyErrors.begin(), cannotCopyErrors.end(), errno) !=
                cannotCopyErrors.end()) {
                return false;
            }
            throwSystemError("cannot copy", to);
        }
        tellOfPiece(static_cast<std::uint64_t>(count), control);
    }
}

}  // namespace

void copyFile(const FileDescriptor& source, const std::filesystem::path& from,
              const std::filesystem::path& to, OperationControl* control) {
    const FileDescriptor target = createPrivateFile(to);
    if (!clone(source, target) && !copyInKernel(source, target, to, control)) {
        copyThroughBuffer(source, from, target, to, control);
    }
}

}  // namespace browsersweep::posix
