#include "browsersweep/platform/internal/TemporaryFolder.h"

#include <cerrno>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/platform/internal/UniqueString.h"
#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep {
namespace {

constexpr std::string_view prefix = "browsersweep-";
constexpr std::size_t uniqueLength = 32;

FileDescriptor openOwnFolder(const std::filesystem::path& path) noexcept {
    FileDescriptor folder(posix::restarting(
        [&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); }));
    struct stat status = {};
    const bool isOwn = folder && ::fstat(folder.number(), &status) == 0 &&
                       status.st_uid == ::geteuid() && status.st_nlink > 0;
    return isOwn ? std::move(folder) : FileDescriptor();
}

/** False where another process has the lock, and where the system has no such locks. */
bool tryToLock(const FileDescriptor& folder) noexcept {
    return posix::restarting([&] { return ::flock(folder.number(), LOCK_EX | LOCK_NB); }) == 0;
}

bool isStillAt(const std::filesystem::path& path, const FileDescriptor& folder) noexcept {
    struct stat there = {};
    struct stat own = {};
    return ::lstat(path.c_str(), &there) == 0 && ::fstat(folder.number(), &own) == 0 &&
           there.st_dev == own.st_dev && there.st_ino == own.st_ino;
}

/** Whether a new folder fell into the hands of another process that removes stale ones. */
bool isTaken(const std::filesystem::path& path, const FileDescriptor& folder) noexcept {
    if (!folder) {
        return errno == ENOENT;  // where it cannot be opened for another reason it stays unlocked
    }
    return tryToLock(folder) ? !isStillAt(path, folder) : errno == EWOULDBLOCK;
}

/** An iterator over folders throws, though it was asked not to, where memory is short. */
std::vector<std::filesystem::path> foldersIn(const std::filesystem::path& directory) {
    std::vector<std::filesystem::path> found;
    std::error_code error;
    const std::filesystem::directory_iterator end;
    for (std::filesystem::directory_iterator entry(directory, error); !error && entry != end;
         entry.increment(error)) {
        if (isTemporaryFolderName(entry->path().filename().string())) {
            found.push_back(entry->path());
        }
    }
    return found;
}

bool removeIfStale(const FileManager& fileManager, const std::filesystem::path& path) {
    const FileDescriptor folder = openOwnFolder(path);
    if (!folder || !tryToLock(folder) || !isStillAt(path, folder)) {
        return false;
    }
    try {
        fileManager.removeTemporaryFolder(path);
        return true;
    } catch (const std::filesystem::filesystem_error&) {
        return false;  // the next one may have more luck
    }
}

}  // namespace

bool isTemporaryFolderName(std::string_view name) noexcept {
    return name.size() == prefix.size() + uniqueLength && name.starts_with(prefix) &&
           name.find_first_not_of("0123456789abcdef", prefix.size()) == std::string_view::npos;
}

TemporaryFolder::TemporaryFolder(std::shared_ptr<const FileManager> fileManager)
    : fileManager_(std::move(fileManager)) {
    // Before it is locked another process may take it for a stale one, and away: then once more.
    constexpr int enoughAttempts = 8;
    for (int attempt = 0; attempt < enoughAttempts; ++attempt) {
        path_ = fileManager_->temporaryDirectory() / (std::string(prefix) + uniqueString());
        fileManager_->createDirectory(path_);
        lock_ = openOwnFolder(path_);
        if (!isTaken(path_, lock_)) {
            return;
        }
    }
}

TemporaryFolder::~TemporaryFolder() {
    if (isAbandoned_) {
        return;
    }
    try {
        fileManager_->removeTemporaryFolder(path_);
    } catch (const std::filesystem::filesystem_error&) {
        return;  // what stays behind is the user's alone, and the next run removes it
    }
}

std::size_t FileManager::removeStaleTemporaryFolders() const noexcept {
    std::size_t count = 0;
    try {
        for (const auto& folder : foldersIn(temporaryDirectory())) {
            count += removeIfStale(*this, folder) ? 1 : 0;
        }
    } catch (...) {  // NOLINT(bugprone-empty-catch): what stays now goes the next time
    }
    return count;
}

}  // namespace browsersweep
