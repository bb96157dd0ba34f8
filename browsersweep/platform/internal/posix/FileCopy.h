#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>

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

/** A part of a file that is no hole. */
struct FilePart {
    std::int64_t begin = 0;
    std::size_t length = 0;
};

/**
 * The next part from a place on, of at most so many bytes; none behind the last. What is larger
 * than the disk for its holes is so no longer copied than what it occupies. Where the file system
 * tells of no holes there is always one more part, and reading it says where the file ends.
 */
std::optional<FilePart> nextPart(const FileDescriptor& file, std::int64_t place,
                                 std::size_t most) noexcept;

/** The plain way, through a buffer. */
void copyThroughBuffer(const FileDescriptor& source, const std::filesystem::path& from,
                       const FileDescriptor& target, const std::filesystem::path& to,
                       OperationControl* control);

/** Makes a copy as long as its source was, where that ended in a hole. */
void makeAsLong(const FileDescriptor& target, const std::filesystem::path& to, std::int64_t size);

/** How long an open file is. */
std::int64_t sizeOf(const FileDescriptor& file, const std::filesystem::path& path);

/** Counts a piece that was copied, and asks whether to go on. */
void tellOfPiece(std::uint64_t bytes, OperationControl* control);

}  // namespace browsersweep::posix
