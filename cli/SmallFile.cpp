#include "cli/SmallFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace browsersweep::cli {
namespace {

/** Reads until there is no more, or more than is wanted; the system's number of what failed. */
int readInto(std::string& text, int descriptor, std::size_t most) {
    while (text.size() < most) {
        const std::size_t begin = text.size();
        text.resize(most);
        const auto count = ::read(descriptor, &text[begin], most - begin);
        text.resize(begin + static_cast<std::size_t>(count > 0 ? count : 0));
        if (count == 0) {
            return 0;
        }
        if (count < 0 && errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

SmallFile readOpened(int descriptor, std::size_t largest) {
    SmallFile file;
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0) {
        file.error = errno;
        return file;
    }
    file.isRegularFile = S_ISREG(status.st_mode);
    if (file.isRegularFile) {
        file.error = readInto(file.text, descriptor, largest + 1);
        file.isTooLarge = file.text.size() > largest;
    }
    return file;
}

}  // namespace

SmallFile readSmallFile(const std::filesystem::path& path, std::size_t largest) {
    // A pipe without a writer would keep the program waiting for ever.
    const int descriptor =
        ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);  // NOLINT: variadic
    if (descriptor < 0) {
        SmallFile missing;
        missing.error = errno;
        return missing;
    }
    SmallFile file = readOpened(descriptor, largest);
    ::close(descriptor);
    return file;
}

}  // namespace browsersweep::cli
