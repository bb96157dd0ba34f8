#include "browsersweep/platform/internal/posix/Durability.h"

#include <fcntl.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {

/**
 * The plain sync leaves the bytes in the drive's own memory. Not every file system knows the two
 * stronger ones, so each failure leads to the next weaker one.
 */
void syncFile(const FileDescriptor& file, const std::filesystem::path& path) {
    for (const int request : {F_FULLFSYNC, F_BARRIERFSYNC}) {
        if (restarting([&] { return ::fcntl(file.number(), request); }) == 0) {
            return;
        }
    }
    if (restarting([&] { return ::fsync(file.number()); }) != 0) {
        throwSystemError("cannot sync", path);
    }
}

}  // namespace browsersweep::posix
