#include "browsersweep/platform/internal/posix/DirectoryListing.h"

#include <cerrno>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>

namespace browsersweep::posix {
namespace {

struct StreamCloser {
    void operator()(DIR* stream) const noexcept { ::closedir(stream); }
};

std::optional<bool> isDirectory(unsigned char type) noexcept {
    return type == DT_UNKNOWN ? std::nullopt : std::optional(type == DT_DIR);
}

bool isSelfOrParent(std::string_view name) noexcept {
    return name == "." || name == "..";
}

struct KeptEntry {
    std::string name;
    std::optional<bool> isDirectory;
};

std::error_code systemError(int error) noexcept {
    return {error, std::generic_category()};
}

std::error_code readAll(int directory, std::vector<KeptEntry>& entries) {
    // A stream owns its descriptor; the directory's own stays its owner's.
    const int own = ::fcntl(directory, F_DUPFD_CLOEXEC, 0);
    const std::unique_ptr<DIR, StreamCloser> stream(own < 0 ? nullptr : ::fdopendir(own));
    if (!stream) {
        return systemError(errno);
    }
    errno = 0;
    while (const dirent* const found = ::readdir(stream.get())) {
        const char* const name = static_cast<const char*>(found->d_name);
        if (!isSelfOrParent(name)) {
            entries.push_back({name, isDirectory(found->d_type)});
        }
        errno = 0;
    }
    return systemError(errno);
}

}  // namespace

/**
 * The system may leave entries out of a listing once others of it are deleted, so a directory is
 * read whole before its first entry is given.
 */
struct DirectoryListing::Implementation {
    int directory = -1;
    bool isRead = false;
    std::vector<KeptEntry> entries;
    std::size_t position = 0;
};

DirectoryListing::DirectoryListing() : implementation_(std::make_unique<Implementation>()) {}

DirectoryListing::~DirectoryListing() = default;

void DirectoryListing::start(int directory) noexcept {
    implementation_->directory = directory;
    implementation_->isRead = false;
    implementation_->entries.clear();
    implementation_->position = 0;
}

std::error_code DirectoryListing::next(std::optional<ListedEntry>& entry) {
    Implementation& own = *implementation_;
    entry.reset();
    if (!own.isRead) {
        own.isRead = true;
        if (const std::error_code error = readAll(own.directory, own.entries)) {
            return error;
        }
    }
    if (own.position < own.entries.size()) {
        const KeptEntry& kept = own.entries[own.position++];
        entry = ListedEntry{kept.name.c_str(), kept.isDirectory};
    }
    return {};
}

}  // namespace browsersweep::posix
