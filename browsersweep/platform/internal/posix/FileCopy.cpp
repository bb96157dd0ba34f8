#include "browsersweep/platform/internal/posix/FileCopy.h"

#include <algorithm>
#include <cerrno>
#include <span>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {
namespace {

constexpr std::size_t bufferSize = std::size_t{256} * 1024;

void standAt(const FileDescriptor& file, const std::filesystem::path& path, std::int64_t place) {
    if (::lseek(file.number(), place, SEEK_SET) < 0) {
        throwSystemError("cannot examine", path);
    }
}

}  // namespace

FileDescriptor createPrivateFile(const std::filesystem::path& path) {
    return openFile(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
}

std::optional<FilePart> nextPart(const FileDescriptor& file, std::int64_t place,
                                 std::size_t most) noexcept {
    const auto begin = ::lseek(file.number(), place, SEEK_DATA);
    if (begin < 0) {
        return errno == ENXIO ? std::nullopt : std::optional(FilePart{place, most});
    }
    const auto end = ::lseek(file.number(), begin, SEEK_HOLE);
    const auto length = end > begin ? static_cast<std::uint64_t>(end - begin) : most;
    return FilePart{begin, static_cast<std::size_t>(std::min<std::uint64_t>(length, most))};
}

void copyThroughBuffer(const FileDescriptor& source, const std::filesystem::path& from,
                       const FileDescriptor& target, const std::filesystem::path& to,
                       OperationControl* control) {
    const auto size = sizeOf(source, from);
    Bytes buffer(bufferSize);
    std::int64_t place = 0;
    while (const auto part = nextPart(source, place, buffer.size())) {
        standAt(source, from, part->begin);
        standAt(target, to, part->begin);
        const auto count = readSome(source, std::span(buffer).first(part->length), from);
        if (count == 0) {
            break;
        }
        writeAll(target, std::span(buffer).first(count), to);
        tellOfPiece(count, control);
        place = part->begin + static_cast<std::int64_t>(count);
    }
    makeAsLong(target, to, size);
}

void makeAsLong(const FileDescriptor& target, const std::filesystem::path& to, std::int64_t size) {
    if (sizeOf(target, to) < size && ::ftruncate(target.number(), size) != 0) {
        throwSystemError("cannot write", to);
    }
}

std::int64_t sizeOf(const FileDescriptor& file, const std::filesystem::path& path) {
    struct stat status = {};
    if (::fstat(file.number(), &status) != 0) {
        throwSystemError("cannot examine", path);
    }
    return status.st_size;
}

void tellOfPiece(std::uint64_t bytes, OperationControl* control) {
    if (control != nullptr) {
        control->count({0, bytes, 0});
        control->continueOrThrow();
    }
}

}  // namespace browsersweep::posix
