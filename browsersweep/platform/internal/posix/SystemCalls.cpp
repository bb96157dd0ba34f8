#include "browsersweep/platform/internal/posix/SystemCalls.h"

#include <algorithm>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace browsersweep::posix {
namespace {

/** Some systems refuse to read or write more than INT_MAX bytes at once. */
constexpr std::size_t mostBytesAtOnce = std::size_t{1} << 30;

}  // namespace

void throwSystemError(std::string_view doing, const std::filesystem::path& path) {
    throwSystemError(doing, path, errno);
}

void throwSystemError(std::string_view doing, const std::filesystem::path& path, int error) {
    throw std::filesystem::filesystem_error(std::string(doing), path,
                                            std::error_code(error, std::generic_category()));
}

FileDescriptor openFile(const std::filesystem::path& path, int flags, unsigned mode) {
    FileDescriptor file(restarting([&] { return ::open(path.c_str(), flags | O_CLOEXEC, mode); }));
    if (!file) {
        throwSystemError("cannot open", path);
    }
    return file;
}

void writeAll(const FileDescriptor& file, BytesView bytes, const std::filesystem::path& path) {
    while (!bytes.empty()) {
        const std::size_t count = std::min(bytes.size(), mostBytesAtOnce);
        const auto written =
            restarting([&] { return ::write(file.number(), bytes.data(), count); });
        if (written < 0) {
            throwSystemError("cannot write", path);
        }
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

std::size_t readSome(const FileDescriptor& file, std::span<std::uint8_t> into,
                     const std::filesystem::path& path) {
    const std::size_t wanted = std::min(into.size(), mostBytesAtOnce);
    const auto count = restarting([&] { return ::read(file.number(), into.data(), wanted); });
    if (count < 0) {
        throwSystemError("cannot read", path);
    }
    return static_cast<std::size_t>(count);
}

}  // namespace browsersweep::posix
