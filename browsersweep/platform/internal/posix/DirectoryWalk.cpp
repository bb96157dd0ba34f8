#include "browsersweep/platform/internal/posix/DirectoryWalk.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"
#include "browsersweep/platform/internal/posix/WithoutDownloads.h"

namespace browsersweep::posix {
namespace {

constexpr std::size_t maximumOpenDirectories = 32;

constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

/**
 * Errors that say something of the directory itself: there is nothing to see for this user. The
 * last one stands for a folder whose contents lie in the cloud.
 */
constexpr std::array unseenDirectoryErrors{EACCES, EPERM, ENOENT, ENOTDIR, ELOOP, EDEADLK};

bool meansUnseen(int error) noexcept {
    return std::find(unseenDirectoryErrors.begin(), unseenDirectoryErrors.end(), error) !=
           unseenDirectoryErrors.end();
}

FileDescriptor openDirectory(int parent, const char* name, int extraFlags) noexcept {
    const WithoutDownloads whileOpening;
    return FileDescriptor(
        restarting([&] { return ::openat(parent, name, openFlags | extraFlags); }));
}

}  // namespace

void DirectoryWalk::PendingNames::add(std::string_view name) {
    text += name;
    text += '\0';
}

const char* DirectoryWalk::PendingNames::take() noexcept {
    if (position == text.size()) {
        return nullptr;
    }
    const char* const name = &text[position];
    position += std::string_view(name).size() + 1;
    return name;
}

std::unique_ptr<DirectoryWalk> DirectoryWalk::start(const std::filesystem::path& root) {
    FileDescriptor descriptor = openDirectory(AT_FDCWD, root.c_str(), 0);
    if (!descriptor) {
        if (meansUnseen(errno)) {
            return nullptr;
        }
        throwSystemError("cannot open directory", root);
    }
    return std::make_unique<DirectoryWalk>(root, std::move(descriptor));
}

DirectoryWalk::DirectoryWalk(std::filesystem::path root, FileDescriptor descriptor)
    : root_(std::move(root)) {
    enter(std::move(descriptor), {});
}

bool DirectoryWalk::next() {
    while (!levels_.empty()) {
        if (isListing_ && nextListed()) {
            return true;
        }
        isListing_ = false;
        if (!enterNextSubdirectory()) {
            leave();
        }
    }
    return false;
}

bool DirectoryWalk::nextListed() {
    do {
        status_.reset();
        if (const auto error = listing_.next(entry_)) {
            throwSystemError("cannot list directory", path(), error.value());
        }
        if (entry_ && entry_->status) {
            status_ = entry_->status;
            statusFields_ = StatusFields::all;
        }
        if (entry_ && !entry_->isDirectory) {
            learnKind();
        }
    } while (entry_ && !entry_->isDirectory && errno == ENOENT);  // gone: it was never listed
    if (entry_ && entry_->isDirectory == true) {
        levels_.back().subdirectories.add(entry_->name);
    }
    return entry_.has_value();
}

/** Some file systems list names without kinds. */
void DirectoryWalk::learnKind() {
    if (const auto found = status(StatusFields::kindAndSize)) {
        entry_->isDirectory = found->isDirectory;
    }
}

void DirectoryWalk::enter(FileDescriptor descriptor, std::string name) {
    struct stat identity {};
    if (::fstat(descriptor.number(), &identity) != 0) {
        throwSystemError("cannot examine directory", path(name));
    }
    listing_.start(descriptor.number());
    levels_.push_back(
        {std::move(descriptor), identity.st_dev, identity.st_ino, std::move(name), {}});
    closeFarAncestor();
    isListing_ = true;
}

bool DirectoryWalk::enterNextSubdirectory() {
    Level& level = levels_.back();
    const char* const name = level.subdirectories.take();
    if (name == nullptr) {
        return false;
    }
    FileDescriptor descriptor = openDirectory(level.descriptor.number(), name, O_NOFOLLOW);
    if (descriptor) {
        enter(std::move(descriptor), name);
    } else if (!meansUnseen(errno)) {
        throwSystemError("cannot open directory", path(name));
    }
    return true;
}

void DirectoryWalk::leave() {
    const Level child = std::move(levels_.back());
    levels_.pop_back();
    if (!levels_.empty() && !levels_.back().descriptor) {
        reopenParent(child, levels_.back());
    }
}

void DirectoryWalk::closeFarAncestor() noexcept {
    if (levels_.size() > maximumOpenDirectories) {
        levels_[levels_.size() - 1 - maximumOpenDirectories].descriptor.close();
    }
}

/** Back up through "..", and only to the very directory that was left. */
void DirectoryWalk::reopenParent(const Level& child, Level& parent) const {
    FileDescriptor descriptor = openDirectory(child.descriptor.number(), "..", O_NOFOLLOW);
    struct stat identity {};
    if (!descriptor || ::fstat(descriptor.number(), &identity) != 0) {
        throwSystemError("cannot return to directory", path());
    }
    if (identity.st_dev != parent.device || identity.st_ino != parent.inode) {
        throwSystemError("directory was moved while it was read", path(), ESTALE);
    }
    parent.descriptor = std::move(descriptor);
}

std::optional<EntryStatus> DirectoryWalk::status(StatusFields fields) {
    if (!status_ || (fields == StatusFields::all && statusFields_ != StatusFields::all)) {
        status_ = entryStatus(levels_.back().descriptor.number(), entry_->name, fields);
        statusFields_ = fields;
    }
    return status_;
}

std::optional<bool> DirectoryWalk::isDirectory() {
    if (!entry_->isDirectory && !status(StatusFields::kindAndSize) && errno != ENOENT) {
        throwSystemError("cannot examine", path(name()));
    }
    return entry_->isDirectory;
}

std::optional<std::uint64_t> DirectoryWalk::fileSize() {
    const auto found = status(StatusFields::kindAndSize);
    if (!found && errno != ENOENT) {
        throwSystemError("cannot examine", path(name()));
    }
    return found && !found->isDirectory ? std::optional(found->size) : std::nullopt;
}

std::optional<Date> DirectoryWalk::creationDate() noexcept {
    const auto found = status(StatusFields::all);
    return found ? found->creationDate : std::nullopt;
}

void DirectoryWalk::remove() {
    if (const auto error = listing_.prepareForDeletion()) {
        throwSystemError("cannot list directory", path(), error.value());
    }
    if (::unlinkat(levels_.back().descriptor.number(), entry_->name, 0) != 0) {
        throwSystemError("cannot delete", path(name()));
    }
}

std::filesystem::path DirectoryWalk::path(std::string_view entryName) const {
    std::filesystem::path whole = root_;
    for (const Level& level : levels_) {
        if (!level.name.empty()) {
            whole /= level.name;
        }
    }
    return entryName.empty() ? whole : whole / entryName;
}

}  // namespace browsersweep::posix
