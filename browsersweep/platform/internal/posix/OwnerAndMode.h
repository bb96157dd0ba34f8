#pragma once

#include <filesystem>

#include <sys/stat.h>

#include "browsersweep/platform/internal/posix/FileDescriptor.h"

namespace browsersweep::posix {

/** Gives a new file or folder the owner of an old one. Throws `filesystem_error`. */
void adoptOwner(const struct stat& old, const FileDescriptor& file,
                const std::filesystem::path& path);

/** Gives a new file or folder the mode of an old one. Throws `filesystem_error`. */
void adoptMode(const struct stat& old, const FileDescriptor& file,
               const std::filesystem::path& path);

}  // namespace browsersweep::posix
