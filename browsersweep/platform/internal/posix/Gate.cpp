#include "browsersweep/platform/internal/posix/Gate.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

#include "browsersweep/platform/internal/posix/FolderIdentity.h"
#include "browsersweep/platform/internal/posix/SystemCalls.h"
#include "browsersweep/platform/internal/posix/WithoutDownloads.h"

namespace browsersweep::posix {
namespace {

/** Without "." and ".." and without separators at its end. */
std::filesystem::path normal(const std::filesystem::path& path) {
    const std::filesystem::path normal = path.lexically_normal();
    return normal.has_filename() ? normal : normal.parent_path();
}

/** Systems do not agree on the error of a link where a folder is wanted. */
int errorOfEntry(const FileDescriptor& parent, const char* name, int error) noexcept {
    struct stat status = {};
    const bool isLink = ::fstatat(parent.number(), name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
                        S_ISLNK(status.st_mode);
    return isLink ? ELOOP : error;
}

/** What was opened within the parent, if it was and lies on the parent's mount. */
FileDescriptor checked(FileDescriptor opened, const FileDescriptor& parent, const char* name,
                       const std::filesystem::path& path) {
    if (!opened) {
        throwSystemError("cannot open directory", path, errorOfEntry(parent, name, errno));
    }
    const auto own = folderIdentity(opened);
    const auto above = folderIdentity(parent);
    if (!own || !above) {
        throwSystemError("cannot examine directory", path);
    }
    if (own->mount != above->mount) {
        throwSystemError("cannot enter another mount", path, EXDEV);
    }
    return opened;
}

/** Not so the root, the present folder, the one above it, and what the system would cut short. */
bool namesAnEntry(const std::filesystem::path& path) {
    const std::filesystem::path name = path.filename();
    return !name.empty() && name != "." && name != ".." &&
           path.native().find('\0') == std::string::npos;
}

bool isBelow(const std::filesystem::path& path, const std::filesystem::path& folder) {
    const auto [end, next] = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    return !folder.empty() && end == folder.end() && next != path.end();
}

/** Where the system may follow links as it likes. */
FileDescriptor openElsewhere(const std::filesystem::path& path) {
    FileDescriptor folder = openPassage(AT_FDCWD, path.c_str(), 0);
    if (!folder) {
        throwSystemError("cannot open directory", path);
    }
    return folder;
}

FileDescriptor openForListing(const FileDescriptor& parent, const char* name) noexcept {
    return FileDescriptor(restarting([&] {
        return ::openat(parent.number(), name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    }));
}

}  // namespace

std::filesystem::path entryName(const std::filesystem::path& path) {
    return normal(path).filename();
}

Gate::Gate(const std::filesystem::path& library) : library_(normal(library)) {}

FileDescriptor Gate::openBelow(const std::filesystem::path& path) const {
    FileDescriptor folder = openElsewhere(library_);
    std::filesystem::path reached = library_;
    for (const auto& component : path.lexically_relative(library_).parent_path()) {
        reached /= component;
        const char* const name = component.c_str();
        folder = checked(openPassage(folder.number(), name, O_NOFOLLOW), folder, name, reached);
    }
    return folder;
}

FileDescriptor Gate::openParent(const std::filesystem::path& path) const {
    const std::filesystem::path whole = normal(path);
    if (!namesAnEntry(whole)) {
        throwSystemError("not the path of an entry", path, EINVAL);
    }
    if (isBelow(whole, library_)) {
        return openBelow(whole);
    }
    return openElsewhere(whole.has_parent_path() ? whole.parent_path() : ".");
}

FileDescriptor Gate::openFolder(const std::filesystem::path& path) const {
    const WithoutDownloads whileOpening;
    if (!namesAnEntry(normal(path)) && path.native().find('\0') == std::string::npos) {
        return openFile(path, O_RDONLY | O_DIRECTORY);
    }
    const FileDescriptor parent = openParent(path);
    const std::filesystem::path name = entryName(path);
    FileDescriptor folder = openForListing(parent, name.c_str());
    if (isBelow(normal(path), library_)) {
        return checked(std::move(folder), parent, name.c_str(), path);
    }
    if (!folder) {
        throwSystemError("cannot open directory", path, errorOfEntry(parent, name.c_str(), errno));
    }
    return folder;
}

}  // namespace browsersweep::posix
