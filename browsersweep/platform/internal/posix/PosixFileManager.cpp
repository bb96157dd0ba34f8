#include "browsersweep/platform/internal/posix/PosixFileManager.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/platform/internal/TemporaryFolder.h"
#include "browsersweep/platform/internal/posix/DirectoryWalk.h"
#include "browsersweep/platform/internal/posix/FileCopy.h"
#include "browsersweep/platform/internal/posix/FileReplacement.h"
#include "browsersweep/platform/internal/posix/FolderEntries.h"
#include "browsersweep/platform/internal/posix/FolderReplacement.h"
#include "browsersweep/platform/internal/posix/SystemCalls.h"
#include "browsersweep/platform/internal/posix/UserDirectories.h"

namespace browsersweep::posix {
namespace {

/** Opens a regular file for reading. Nothing else is waited for, so a pipe cannot block. */
FileDescriptor openRegularFile(const std::filesystem::path& path, struct stat& status) {
    FileDescriptor file = openFile(path, O_RDONLY | O_NONBLOCK);
    if (::fstat(file.number(), &status) != 0) {
        throwSystemError("cannot examine", path);
    }
    if (!S_ISREG(status.st_mode)) {
        throwSystemError("not a regular file", path, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    }
    return file;
}

Bytes readUpTo(std::size_t count, const FileDescriptor& file, const std::filesystem::path& path) {
    Bytes bytes(count);
    std::size_t used = 0;
    while (used < count) {
        const std::size_t more = readSome(file, std::span(bytes).subspan(used), path);
        if (more == 0) {
            break;
        }
        used += more;
    }
    bytes.resize(used);
    return bytes;
}

}  // namespace

FileExistence PosixFileManager::fileExists(const std::filesystem::path& path) const noexcept {
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0) {
        return {};
    }
    return {true, S_ISDIR(status.st_mode)};
}

FileAttributes PosixFileManager::attributes(const std::filesystem::path& path) const {
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0) {
        throwSystemError("cannot examine", path);
    }
    return {static_cast<std::uint64_t>(status.st_size)};
}

Bytes PosixFileManager::contents(const std::filesystem::path& path) const {
    struct stat status = {};
    const FileDescriptor file = openRegularFile(path, status);
    if (status.st_size > static_cast<off_t>(maximumContentsSize)) {
        throwSystemError("file is too large to be read", path, EFBIG);
    }
    // One byte more than expected, so that a file which did not grow ends at the first short read.
    Bytes bytes(static_cast<std::size_t>(status.st_size) + 1);
    std::size_t used = 0;
    while (const std::size_t count = readSome(file, std::span(bytes).subspan(used), path)) {
        used += count;
        if (used > maximumContentsSize) {
            throwSystemError("file is too large to be read", path, EFBIG);
        }
        if (used == bytes.size()) {
            bytes.resize(2 * used);
        }
    }
    bytes.resize(used);
    return bytes;
}

Bytes PosixFileManager::firstBytes(const std::filesystem::path& path, std::size_t count) const {
    struct stat status = {};
    const FileDescriptor file = openRegularFile(path, status);
    // A short file is read to its end, without asking for more.
    const auto size = static_cast<std::uint64_t>(status.st_size);
    return readUpTo(static_cast<std::size_t>(std::min<std::uint64_t>(count, size)), file, path);
}

Bytes PosixFileManager::lastBytes(const std::filesystem::path& path, std::size_t count) const {
    struct stat status = {};
    const FileDescriptor file = openRegularFile(path, status);
    const auto size = static_cast<std::uint64_t>(status.st_size);
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count, size));
    if (::lseek(file.number(), static_cast<off_t>(size - wanted), SEEK_SET) < 0) {
        throwSystemError("cannot read", path);
    }
    return readUpTo(wanted, file, path);
}

void PosixFileManager::replace(const std::filesystem::path& path, BytesView contents) const {
    replaceFile(path, contents, gate());
}

void PosixFileManager::copy(const std::filesystem::path& from,
                            const std::filesystem::path& to) const {
    struct stat status = {};
    const FileDescriptor source = openRegularFile(from, status);
    continueOrThrow(control_.get());
    copyFile(source, from, to, control_.get());
}

void PosixFileManager::removeFile(const std::filesystem::path& path) const {
    const FileDescriptor folder = gate().openParent(path);
    if (::unlinkat(folder.number(), entryName(path).c_str(), 0) != 0) {
        throwSystemError("cannot delete", path);
    }
}

void PosixFileManager::removeTemporaryFolder(const std::filesystem::path& path) const {
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0) {
        throwSystemError("cannot delete", path);
    }
    const bool isOwn = isTemporaryFolderName(entryName(path).string()) && S_ISDIR(status.st_mode) &&
                       status.st_uid == ::geteuid();
    if (!isOwn) {
        throwSystemError("not a temporary folder of this program's", path, EINVAL);
    }
    if (!DirectoryWalk::removeTree(path, gate(), nullptr)) {
        throwSystemError("cannot delete", path, ENOTEMPTY);
    }
}

bool PosixFileManager::removeFolder(const std::filesystem::path& path) const {
    return DirectoryWalk::removeTree(path, gate(), control_);
}

bool PosixFileManager::replaceFolder(const std::filesystem::path& path,
                                     const std::filesystem::path& contents) const {
    return posix::replaceFolder(path, contents, gate(), control_);
}

bool PosixFileManager::replaceFolderWithFiles(const std::filesystem::path& path,
                                              const std::map<std::string, Bytes>& files) const {
    return posix::replaceFolder(path, files, gate(), control_);
}

void PosixFileManager::createDirectory(const std::filesystem::path& path) const {
    if (::mkdir(path.c_str(), S_IRWXU) != 0) {
        throwSystemError("cannot create directory", path);
    }
}

std::filesystem::path PosixFileManager::temporaryDirectory() const {
    return systemTemporaryDirectory();
}

std::filesystem::path PosixFileManager::homeDirectory() const {
    return home_ ? *home_ : currentHomeDirectory();
}

std::vector<std::filesystem::path> PosixFileManager::directories(
    SearchPathDirectory directory) const {
    if (home_) {
        return {};
    }
    return systemDirectories(directory);
}

Gate PosixFileManager::gate() const {
    const auto answers = directories(SearchPathDirectory::library);
    return Gate(answers.empty() ? homeDirectory() / "Library" : answers.front());
}

bool PosixFileManager::reaches(const std::filesystem::path& path) const {
    return DirectoryWalk::reachesParent(path, gate(), control_.get());
}

std::vector<FolderEntry> PosixFileManager::entries(const std::filesystem::path& directory) const {
    const FileDescriptor folder = DirectoryWalk::openRoot(directory, gate(), control_.get());
    return folder ? entriesOf(folder, directory, control_.get()) : std::vector<FolderEntry>();
}

std::unique_ptr<DirectoryEnumerator> PosixFileManager::enumerator(
    const std::filesystem::path& directory) const {
    return DirectoryWalk::start(directory, gate(), control_);
}

}  // namespace browsersweep::posix
