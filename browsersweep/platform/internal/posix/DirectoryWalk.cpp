#include "browsersweep/platform/internal/posix/DirectoryWalk.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"
#include "browsersweep/platform/internal/posix/WithoutDownloads.h"

namespace browsersweep::posix {
namespace {

constexpr std::size_t maximumOpenDirectories = 32;

constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

/**
 * Errors that say something of the directory itself: there is nothing to see for this user. EDEADLK
 * stands for a folder whose contents lie in the cloud.
 */
constexpr std::array unseenDirectoryErrors{EACCES, EPERM, ENOENT, ENOTDIR, ELOOP, EXDEV, EDEADLK};

bool meansUnseen(int error) noexcept {
    return std::find(unseenDirectoryErrors.begin(), unseenDirectoryErrors.end(), error) !=
           unseenDirectoryErrors.end();
}

struct Reason {
    int error;
    std::string_view words;
    bool isDenial;
};

constexpr std::array reasons{
    Reason{ELOOP, "it is a link", false},
    Reason{EXDEV, "another disk or folder is mounted there", false},
    Reason{EACCES, "its permissions forbid it", true},
    Reason{EPERM, "the system protects it", true},
    Reason{EDEADLK, "what it holds lies in the cloud", true},
};

/** Tells the control of a folder that is there; one that is gone by now was never there. */
void leaveOut(const std::filesystem::path& folder, int error, OperationControl* control) {
    const auto* const reason =
        std::find_if(reasons.begin(), reasons.end(),
                     [error](const Reason& known) { return known.error == error; });
    if (control != nullptr && reason != reasons.end()) {
        control->leaveOut({folder, std::string(reason->words), reason->isDenial});
    }
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

FileDescriptor DirectoryWalk::openRoot(const std::filesystem::path& root, const Gate& gate,
                                       OperationControl* control) {
    try {
        return gate.openFolder(root);
    } catch (const std::filesystem::filesystem_error& error) {
        const int code = error.code().value();
        if (!meansUnseen(code)) {
            throw;
        }
        leaveOut(error.path1(), code, control);
        return {};
    }
}

bool DirectoryWalk::reachesParent(const std::filesystem::path& path, const Gate& gate,
                                  OperationControl* control) {
    try {
        if (!isMountedOver(gate.openParent(path), entryName(path).c_str())) {
            return true;
        }
        leaveOut(path, EXDEV, control);
        return false;
    } catch (const std::filesystem::filesystem_error& error) {
        const int code = error.code().value();
        if (code != ELOOP && code != EXDEV) {
            return true;
        }
        leaveOut(error.path1(), code, control);
        return false;
    }
}

std::unique_ptr<DirectoryWalk> DirectoryWalk::start(
    const std::filesystem::path& root, const Gate& gate,
    const std::shared_ptr<OperationControl>& control) {
    FileDescriptor folder = openRoot(root, gate, control.get());
    return folder ? std::make_unique<DirectoryWalk>(root, std::move(folder), control) : nullptr;
}

bool DirectoryWalk::removeTree(const std::filesystem::path& root, const Gate& gate,
                               const std::shared_ptr<OperationControl>& control) {
    const FileDescriptor parent = gate.openParent(root);
    DirectoryWalk walk(root, gate.openFolder(root), control);
    walk.removesDirectories_ = true;
    while (walk.next()) {
        continueOrThrow(control.get());
        if (walk.isDirectory() == true) {
            continue;
        }
        walk.remove();
        if (control) {
            control->count({1, 0, 0});
        }
    }
    if (walk.rootHoldsLeftOut_) {
        return false;
    }
    if (::unlinkat(parent.number(), entryName(root).c_str(), AT_REMOVEDIR) != 0) {
        throwSystemError("cannot delete", root);
    }
    return true;
}

DirectoryWalk::DirectoryWalk(std::filesystem::path root, FileDescriptor descriptor,
                             std::shared_ptr<OperationControl> control)
    : root_(std::move(root)), control_(std::move(control)) {
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
    const auto identity = folderIdentity(descriptor);
    if (!identity) {
        throwSystemError("cannot examine directory", path(name));
    }
    if (!levels_.empty() && identity->mount != levels_.back().identity.mount) {
        leaveOut(path(name), EXDEV, control_.get());
        levels_.back().holdsLeftOut = true;
        return;
    }
    listing_.start(descriptor.number());
    levels_.push_back({std::move(descriptor), *identity, std::move(name), {}});
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
    const int error = errno;
    if (descriptor) {
        enter(std::move(descriptor), name);
    } else if (!meansUnseen(error)) {
        throwSystemError("cannot open directory", path(name), error);
    } else if (error != ELOOP) {  // a link in a folder's place is an entry of the next listing
        leaveOut(path(name), error, control_.get());
        level.holdsLeftOut = level.holdsLeftOut || error != ENOENT;
    }
    return true;
}

void DirectoryWalk::leave() {
    const Level child = std::move(levels_.back());
    levels_.pop_back();
    if (levels_.empty()) {
        rootHoldsLeftOut_ = child.holdsLeftOut;
        return;
    }
    if (!levels_.back().descriptor) {
        reopenParent(child, levels_.back());
    }
    if (removesDirectories_) {
        removeLeft(child);
    }
}

void DirectoryWalk::removeLeft(const Level& child) {
    Level& parent = levels_.back();
    if (child.holdsLeftOut) {
        parent.holdsLeftOut = true;
    } else if (::unlinkat(parent.descriptor.number(), child.name.c_str(), AT_REMOVEDIR) != 0) {
        throwSystemError("cannot delete", path(child.name));
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
    const auto identity = descriptor ? folderIdentity(descriptor) : std::nullopt;
    if (!identity) {
        throwSystemError("cannot return to directory", path());
    }
    if (*identity != parent.identity) {
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
    if (entry_->isDirectory == true) {
        return std::nullopt;
    }
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

/** The directory that is being listed, from the root. */
std::filesystem::path DirectoryWalk::folder() const {
    std::filesystem::path folder;
    for (const Level& level : levels_) {
        if (!level.name.empty()) {
            folder /= level.name;
        }
    }
    return folder;
}

std::filesystem::path DirectoryWalk::path(std::string_view entryName) const {
    const std::filesystem::path below = folder();
    const std::filesystem::path whole = below.empty() ? root_ : root_ / below;
    return entryName.empty() ? whole : whole / entryName;
}

}  // namespace browsersweep::posix
