#pragma once

#include <filesystem>

#include "browsersweep/platform/internal/posix/FileDescriptor.h"

namespace browsersweep::posix {

/**
 * The one way to what is deleted or replaced. Below the user's Library folder every component is
 * opened from the one before it, no link is followed and no other mount is entered: whatever
 * another program puts in the way, nothing is reached that does not lie there. Elsewhere the system
 * finds the folder that holds a path's last component; that component itself is never followed.
 */
class Gate {
public:
    /** Without a Library folder every path lies elsewhere. */
    explicit Gate(const std::filesystem::path& library);

    /**
     * Opens the folder that holds the path's last component. Throws `filesystem_error`: with ELOOP
     * where a link and with EXDEV where a mount stands in the way, with EINVAL where the path has
     * no last component that is the name of an entry.
     */
    FileDescriptor openParent(const std::filesystem::path& path) const;

    /** Opens a folder for listing. Throws as above. */
    FileDescriptor openFolder(const std::filesystem::path& path) const;

private:
    FileDescriptor openBelow(const std::filesystem::path& path) const;

    std::filesystem::path library_;
};

/** The last component of a path, any separators after it left out. */
std::filesystem::path entryName(const std::filesystem::path& path);

}  // namespace browsersweep::posix
