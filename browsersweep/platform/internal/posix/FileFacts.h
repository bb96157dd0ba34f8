#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

#include "browsersweep/base/OperationControl.h"

namespace browsersweep::posix {

/** What the system records of a path itself; a link at its end is not followed. */
struct FileFacts {
    bool exists = false;
    bool isRegular = false;
    std::uint64_t names = 0;
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    std::int64_t size = 0;
    std::int64_t modified = 0;  ///< in whole seconds: a hint, and no proof that nothing changed
    std::int64_t changed = 0;

    /** A file whose contents have no second name. */
    bool isRegularWithOneName() const noexcept { return isRegular && names == 1; }
    friend bool operator==(const FileFacts&, const FileFacts&) = default;
};

/** Never fails: what cannot be examined does not exist. */
FileFacts factsOf(const char* path) noexcept;
inline FileFacts factsOf(const std::filesystem::path& path) noexcept {
    return factsOf(path.c_str());
}

/**
 * What the disk gains when the file goes, in bytes: the blocks that it occupies. 0 for a folder,
 * for a file with another name besides, and for what cannot be examined.
 */
std::int64_t allocatedBytes(const std::filesystem::path& file) noexcept;

/**
 * The same of all that a folder and its folders hold. Links are not followed, the folder's own
 * neither; what cannot be listed counts as nothing. The control, which may be null, is asked
 * between files: where it stops, the sum is that of what was seen.
 */
std::int64_t allocatedBytesBelow(const std::filesystem::path& folder, OperationControl* control);

/**
 * A number that another content of a regular file would hardly have; not where somebody looks for
 * one. The control, which may be null, is asked between pieces. Throws `filesystem_error` and
 * `OperationCancelled`.
 */
std::uint64_t markOfContents(const std::filesystem::path& path, OperationControl* control);

/**
 * Whether two regular files hold the same bytes. The control, which may be null, is asked between
 * pieces. Throws `filesystem_error` and `OperationCancelled`.
 */
bool haveEqualContents(const std::filesystem::path& one, const std::filesystem::path& other,
                       OperationControl* control);

/** What the system says to opening a regular file; no error where it opens. Writes nothing. */
std::error_code errorOfOpening(const std::filesystem::path& path, bool forWriting) noexcept;

/**
 * Whether a folder's disk is another one than a file's, so that a copy cannot share its blocks, and
 * has no room for the blocks that the file occupies. False where the system does not tell.
 */
bool hasNoRoomForCopy(const std::filesystem::path& folder,
                      const std::filesystem::path& file) noexcept;

/** What the system says to making a file in a folder; no error where that is allowed. */
std::error_code errorOfWritingInto(const std::filesystem::path& folder) noexcept;

/** Some bytes of a file, and the locks to ask about: all, or those alone that keep readers out. */
struct LockRange {
    std::int64_t start = 0;
    std::int64_t length = 0;
    bool onlyAgainstReaders = false;
};

/** The process that holds a lock on such bytes; absent where none does. Asking takes no lock. */
std::optional<long> lockHolder(const std::filesystem::path& path, const LockRange& range) noexcept;

}  // namespace browsersweep::posix
