#include "browsersweep/platform/internal/posix/FolderEntries.h"

#include <cerrno>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>

#include "browsersweep/platform/internal/posix/DirectoryListing.h"
#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {
namespace {

FolderEntry::Kind kindOf(const struct stat& status) noexcept {
    if (S_ISREG(status.st_mode)) {
        return FolderEntry::Kind::file;
    }
    return S_ISDIR(status.st_mode) ? FolderEntry::Kind::folder : FolderEntry::Kind::other;
}

/** Nothing, where the entry is gone by now. */
std::optional<FolderEntry> examined(const FileDescriptor& folder, const char* name,
                                    const std::filesystem::path& path) {
    struct stat status = {};
    if (::fstatat(folder.number(), name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno != ENOENT) {
            throwSystemError("cannot examine", path / name);
        }
        return std::nullopt;
    }
    const auto kind = kindOf(status);
    const bool isFile = kind == FolderEntry::Kind::file;
    return FolderEntry{name,
                       kind,
                       isFile ? static_cast<std::uint64_t>(status.st_size) : 0,
                       dateFrom1970Seconds(static_cast<double>(status.st_mtime)),
                       static_cast<std::uint64_t>(status.st_ino),
                       dateFrom1970Seconds(static_cast<double>(status.st_ctime))};
}

}  // namespace

std::vector<FolderEntry> entriesOf(const FileDescriptor& folder, const std::filesystem::path& path,
                                   OperationControl* control) {
    std::vector<FolderEntry> found;
    DirectoryListing listing;
    listing.start(folder.number());
    std::optional<ListedEntry> entry;
    do {
        continueOrThrow(control);
        if (const auto error = listing.next(entry)) {
            throwSystemError("cannot list directory", path, error.value());
        }
        if (auto next = entry ? examined(folder, entry->name, path) : std::nullopt) {
            found.push_back(std::move(*next));
        }
    } while (entry);
    return found;
}

}  // namespace browsersweep::posix
