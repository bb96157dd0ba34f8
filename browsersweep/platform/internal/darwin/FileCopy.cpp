#include "browsersweep/platform/internal/posix/FileCopy.h"

#include <fcntl.h>
#include <sys/clonefile.h>
#include <sys/stat.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {
namespace {

/**
 * Shares the blocks where the file system can. A clone has the mode of its source, which the folder
 * of a private copy keeps from others until the mode is set.
 */
bool clone(const FileDescriptor& source, const std::filesystem::path& to) {
    if (::fclonefileat(source.number(), AT_FDCWD, to.c_str(), CLONE_NOOWNERCOPY) != 0) {
        return false;
    }
    if (::chmod(to.c_str(), S_IRUSR | S_IWUSR) != 0) {
        throwSystemError("cannot make private", to);
    }
    return true;
}

}  // namespace

void copyFile(const FileDescriptor& source, const std::filesystem::path& from,
              const std::filesystem::path& to) {
    if (!clone(source, to)) {
        copyThroughBuffer(source, from, createPrivateFile(to), to);
    }
}

}  // namespace browsersweep::posix
