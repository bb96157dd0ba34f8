#pragma once

#include <filesystem>

#include "browsersweep/platform/internal/posix/FileDescriptor.h"

namespace browsersweep::posix {

/**
 * Gives a new file the access control list and the extended attributes of another one, and takes
 * away the list that its folder may have given it. Throws `filesystem_error` where one that the
 * user may set cannot be kept. One implementation per system.
 */
void copyExtendedAttributes(const FileDescriptor& from, const FileDescriptor& to,
                            const std::filesystem::path& path);

}  // namespace browsersweep::posix
