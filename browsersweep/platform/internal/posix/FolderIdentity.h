#pragma once

#include <cstdint>
#include <optional>

#include "browsersweep/platform/internal/posix/FileDescriptor.h"

namespace browsersweep::posix {

/**
 * What tells an open folder from every other one. The mount is the one that it was reached through:
 * a part of a file system can stand in two places, under one device number.
 */
struct FolderIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t mount = 0;

    friend bool operator==(const FolderIdentity&, const FolderIdentity&) = default;
};

/** `std::nullopt` if the folder cannot be examined; `errno` says why. One implementation per
 * system. */
std::optional<FolderIdentity> folderIdentity(const FileDescriptor& folder) noexcept;

/**
 * Whether something else is mounted on a file of an open folder, so that its name leads elsewhere.
 * One implementation per system: not all can mount on a file.
 */
bool isMountedOver(const FileDescriptor& folder, const char* name) noexcept;

/**
 * Opens a folder for nothing but going on from there; the flags are added. `errno` says why where
 * that fails. One implementation per system: not all can do it without the right to list it.
 */
FileDescriptor openPassage(int parent, const char* name, int flags) noexcept;

}  // namespace browsersweep::posix
