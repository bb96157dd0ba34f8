#pragma once

#include <filesystem>

#include "browsersweep/platform/internal/posix/FileDescriptor.h"

namespace browsersweep::posix {

/** Makes a file's contents reach the disk itself. One implementation per system. */
void syncFile(const FileDescriptor& file, const std::filesystem::path& path);

/**
 * Makes a directory's entries reach the disk. File systems that cannot do it for directories say so
 * with EINVAL or ENOTSUP, which is no failure.
 */
void syncDirectory(const FileDescriptor& directory, const std::filesystem::path& path);

}  // namespace browsersweep::posix
