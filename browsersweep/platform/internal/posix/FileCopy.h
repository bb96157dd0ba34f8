#pragma once

#include <cstdint>
#include <filesystem>

#include "browsersweep/base/OperationControl.h"
#include "browsersweep/platform/internal/posix/FileDescriptor.h"

namespace browsersweep::posix {

/**
 * Copies an open regular file to a path that must not exist, readable by the user alone, in the
 * cheapest way the system has: sharing the blocks where the file system can. The control, which may
 * be null, is asked between pieces. One implementation per system. Throws `filesystem_error` and
 * `OperationCancelled`.
 */
void copyFile(const FileDescriptor& source, const std::filesystem::path& from,
              const std::filesystem::path& to, OperationControl* control);

/** Creates a file that must not exist yet, for the user alone, open for writing. */
FileDescriptor createPrivateFile(const std::filesystem::path& path);

/** The plain way, through a buffer, from where both files stand now to the source's end. */
void copyThroughBuffer(const FileDescriptor& source, const std::filesystem::path& from,
                       const FileDescriptor& target, const std::filesystem::path& to,
                       OperationControl* control);

/** Counts a piece that was copied, and asks whether to go on. */
void tellOfPiece(std::uint64_t bytes, OperationControl* control);

}  // namespace browsersweep::posix
