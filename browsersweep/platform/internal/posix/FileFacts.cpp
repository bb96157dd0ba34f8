#include "browsersweep/platform/internal/posix/FileFacts.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "browsersweep/base/Bytes.h"
#include "browsersweep/platform/internal/posix/DirectoryListing.h"
#include "browsersweep/platform/internal/posix/FileDescriptor.h"
#include "browsersweep/platform/internal/posix/SystemCalls.h"
#include "browsersweep/platform/internal/posix/WithoutDownloads.h"

namespace browsersweep::posix {
namespace {

// Nothing waits for a named pipe, and no link is followed.
constexpr int carefully = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;

std::error_code lastError() noexcept {
    return {errno, std::generic_category()};
}

/** Reads until the bytes are full or the file ends. */
std::size_t fill(const FileDescriptor& file, Bytes& bytes, const std::filesystem::path& path) {
    std::size_t used = 0;
    while (const std::size_t more = readSome(file, std::span(bytes).subspan(used), path)) {
        used += more;
    }
    return used;
}

std::int64_t allocatedBytes(const struct stat& status) noexcept {
    constexpr std::int64_t blockSize = 512;  // st_blocks counts in these, whatever the disk uses
    const bool isCounted = !S_ISDIR(status.st_mode) && status.st_nlink == 1;
    return isCounted ? static_cast<std::int64_t>(status.st_blocks) * blockSize : 0;
}

using Paths = std::vector<std::filesystem::path>;

/** Of one folder's files; its folders are added to those that are still to be looked through. */
std::int64_t allocatedBytesIn(const std::filesystem::path& path, DirectoryListing& listing,
                              Paths& folders, OperationControl* control) {
    const FileDescriptor folder(restarting(
        [&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); }));
    std::int64_t sum = 0;
    if (!folder) {
        return sum;
    }
    listing.start(folder.number());
    std::optional<ListedEntry> entry;
    while (!listing.next(entry) && entry && (control == nullptr || !control->shouldStop())) {
        struct stat status = {};
        if (::fstatat(folder.number(), entry->name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
            continue;
        }
        sum += allocatedBytes(status);
        if (S_ISDIR(status.st_mode)) {
            folders.push_back(path / entry->name);
        }
    }
    return sum;
}

}  // namespace

FileFacts factsOf(const char* path) noexcept {
    struct stat status = {};
    if (::lstat(path, &status) != 0) {
        return {};
    }
    FileFacts facts;
    facts.exists = true;
    facts.isRegular = S_ISREG(status.st_mode);
    facts.names = static_cast<std::uint64_t>(status.st_nlink);
    facts.device = static_cast<std::uint64_t>(status.st_dev);
    facts.number = static_cast<std::uint64_t>(status.st_ino);
    facts.size = status.st_size;
    facts.modified = status.st_mtime;
    facts.changed = status.st_ctime;
    return facts;
}

std::int64_t allocatedBytes(const std::filesystem::path& file) noexcept {
    struct stat status = {};
    return ::lstat(file.c_str(), &status) == 0 ? allocatedBytes(status) : 0;
}

// Not by the walk of the file manager: that ends at the first folder that it may not list.
std::int64_t allocatedBytesBelow(const std::filesystem::path& folder, OperationControl* control) {
    const WithoutDownloads whileListing;
    std::int64_t sum = 0;
    DirectoryListing listing;
    Paths folders{folder.has_filename() ? folder : folder.parent_path()};
    while (!folders.empty() && (control == nullptr || !control->shouldStop())) {
        const std::filesystem::path next = std::move(folders.back());
        folders.pop_back();
        sum += allocatedBytesIn(next, listing, folders, control);
    }
    return sum;
}

std::uint64_t markOfContents(const std::filesystem::path& path, OperationControl* control) {
    constexpr std::uint64_t start = 0xCBF29CE484222325;
    constexpr std::uint64_t prime = 0x100000001B3;
    constexpr std::size_t pieceSize = std::size_t{256} * 1024;
    const FileDescriptor file = openFile(path, O_RDONLY | carefully);
    Bytes piece(pieceSize);
    std::uint64_t mark = start;
    while (const std::size_t count = readSome(file, piece, path)) {
        continueOrThrow(control);
        for (const std::uint8_t byte : BytesView(piece).first(count)) {
            mark = (mark ^ byte) * prime;
        }
    }
    return mark;
}

bool haveEqualContents(const std::filesystem::path& one, const std::filesystem::path& other,
                       OperationControl* control) {
    constexpr std::size_t pieceSize = std::size_t{256} * 1024;
    const FileDescriptor first = openFile(one, O_RDONLY | carefully);
    const FileDescriptor second = openFile(other, O_RDONLY | carefully);
    Bytes ofFirst(pieceSize);
    Bytes ofSecond(pieceSize);
    while (true) {
        continueOrThrow(control);
        const std::size_t count = fill(first, ofFirst, one);
        if (fill(second, ofSecond, other) != count ||
            !std::equal(ofFirst.begin(), ofFirst.begin() + static_cast<std::ptrdiff_t>(count),
                        ofSecond.begin())) {
            return false;
        }
        if (count < pieceSize) {
            return true;
        }
    }
}

std::error_code errorOfOpening(const std::filesystem::path& path, bool forWriting) noexcept {
    const int access = forWriting ? O_RDWR : O_RDONLY;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg)
    const int number = ::open(path.c_str(), access | carefully | O_CLOEXEC);
    if (number < 0) {
        return lastError();
    }
    ::close(number);
    return {};
}

bool hasNoRoomForCopy(const std::filesystem::path& folder,
                      const std::filesystem::path& file) noexcept {
    constexpr std::uint64_t blockSize = 512;
    struct stat source = {};
    struct stat target = {};
    struct statvfs disk = {};
    if (::stat(file.c_str(), &source) != 0 || ::stat(folder.c_str(), &target) != 0 ||
        source.st_dev == target.st_dev || ::statvfs(folder.c_str(), &disk) != 0) {
        return false;
    }
    const auto room = std::uint64_t{disk.f_bavail} * disk.f_frsize;
    return static_cast<std::uint64_t>(source.st_blocks) * blockSize > room;
}

std::error_code errorOfWritingInto(const std::filesystem::path& folder) noexcept {
    return ::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0 ? std::error_code()
                                                                               : lastError();
}

std::optional<long> lockHolder(const std::filesystem::path& path, const LockRange& range) noexcept {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg)
    const int number = ::open(path.c_str(), O_RDONLY | carefully | O_CLOEXEC);
    if (number < 0) {
        return std::nullopt;
    }
    struct flock lock = {};
    lock.l_type = range.onlyAgainstReaders ? F_RDLCK : F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = range.start;
    lock.l_len = range.length;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg)
    const bool isHeld = ::fcntl(number, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    ::close(number);
    return isHeld ? std::optional<long>(lock.l_pid) : std::nullopt;
}

}  // namespace browsersweep::posix
