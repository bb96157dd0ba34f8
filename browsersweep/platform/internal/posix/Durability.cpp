#include "browsersweep/platform/internal/posix/Durability.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {

void syncDirectory(const std::filesystem::path& directory) {
    const FileDescriptor opened = openFile(directory, O_RDONLY | O_DIRECTORY);
    const bool failed = restarting([&] { return ::fsync(opened.number()); }) != 0;
    if (failed && errno != EINVAL && errno != ENOTSUP) {
        throwSystemError("cannot sync directory", directory);
    }
}

}  // namespace browsersweep::posix
