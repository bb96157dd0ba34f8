#include "browsersweep/platform/internal/posix/Durability.h"

#include <cerrno>

#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {

void syncDirectory(const FileDescriptor& directory, const std::filesystem::path& path) {
    const bool failed = restarting([&] { return ::fsync(directory.number()); }) != 0;
    if (failed && errno != EINVAL && errno != ENOTSUP) {
        throwSystemError("cannot sync directory", path);
    }
}

}  // namespace browsersweep::posix
