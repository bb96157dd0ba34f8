#pragma once

#include <filesystem>

#include "browsersweep/platform/internal/posix/FileDescriptor.h"

namespace browsersweep::posix {

/**
 * Copies an open regular file to a path that must not exist, readable by the user alone, in the
 * cheapest way the system has: sharing the blocks where the file system can. One implementation per
 * system. Throws `filesystem_error`.
 */
void copyFile(const FileDescriptor& source, const std::filesystem::path& from,
              const std::filesystem::path& to);

/** Creates a file that must not exist yet, for the user alone, open for writing. */
FileDescriptor createPrivateFile(const std::filesystem::path& path);

/** The plain way, through a buffer, from where both files stand now to the source's end. */
void copyThroughBuffer(const FileDescriptor& source, const std::filesystem::path& from,
                       const FileDescriptor& target, const std::filesystem::path& to);

}  // namespace browsersweep::posix
