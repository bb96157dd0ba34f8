#include "browsersweep/platform/internal/posix/FileCopy.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>

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

/** Copies inside the kernel. False where it cannot. */
bool copyInKernel(const FileDescriptor& source, const FileDescriptor& target,
                  const std::filesystem::path& to, OperationControl* control) {
    std::int64_t place = 0;
    while (const auto part = nextPart(source, place, pieceSize)) {
        loff_t from = part->begin;
        loff_t into = part->begin;
        const auto count = restarting([&] {
            return ::copy_file_range(source.number(), &from, target.number(), &into, part->length,
                                     0);
        });
        if (count == 0) {
            break;
        }
        if (count < 0) {
            if (std::find(cannotCopyErrors.begin(), cannotCopyErrors.end(), errno) !=
                cannotCopyErrors.end()) {
                return false;
            }
            throwSystemError("cannot copy", to);
        }
        place = part->begin + count;
        tellOfPiece(static_cast<std::uint64_t>(count), control);
    }
    return true;
}

}  // namespace

void copyFile(const FileDescriptor& source, const std::filesystem::path& from,
              const std::filesystem::path& to, OperationControl* control) {
    const auto size = sizeOf(source, from);
    const FileDescriptor target = createPrivateFile(to);
    if (clone(source, target)) {
        tellOfPiece(static_cast<std::uint64_t>(size), control);
    } else if (copyInKernel(source, target, to, control)) {
        makeAsLong(target, to, size);
    } else {
        copyThroughBuffer(source, from, target, to, control);
    }
}

}  // namespace browsersweep::posix
