#include "browsersweep/platform/internal/posix/Durability.h"

#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {

void syncFile(const FileDescriptor& file, const std::filesystem::path& path) {
    if (restarting([&] { return ::fsync(file.number()); }) != 0) {
        throwSystemError("cannot sync", path);
    }
}

}  // namespace browsersweep::posix
