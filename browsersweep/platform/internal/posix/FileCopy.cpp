#include "browsersweep/platform/internal/posix/FileCopy.h"

#include <cstddef>
#include <span>

#include <fcntl.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {
namespace {

constexpr std::size_t bufferSize = std::size_t{256} * 1024;

}  // namespace

FileDescriptor createPrivateFile(const std::filesystem::path& path) {
    return openFile(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
}

void copyThroughBuffer(const FileDescriptor& source, const std::filesystem::path& from,
                       const FileDescriptor& target, const std::filesystem::path& to,
                       OperationControl* control) {
    Bytes buffer(bufferSize);
    while (const std::size_t count = readSome(source, buffer, from)) {
        writeAll(target, std::span(buffer).first(count), to);
        tellOfPiece(count, control);
    }
}

void tellOfPiece(std::uint64_t bytes, OperationControl* control) {
    if (control != nullptr) {
        control->count({0, bytes, 0});
        control->continueOrThrow();
    }
}

}  // namespace browsersweep::posix
