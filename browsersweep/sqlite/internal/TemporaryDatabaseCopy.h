#pragma once

#include <filesystem>
#include <memory>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/internal/TemporaryFolder.h"

namespace browsersweep {

/**
 * A private copy of a database file, so that one held open by a browser can be read and is never
 * touched. It lies under its own file name in a new folder for the user alone below the temporary
 * directory; the folder with all that SQLite may add to it is removed when the copy goes away, and
 * a failure of that is ignored.
 */
class TemporaryDatabaseCopy {
public:
    /**
     * Makes the copy. Throws `filesystem_error` where the folder or the copy cannot be made; of a
     * copy that failed the folder stays, empty. Where there is clearly no room for it, nothing is
     * begun.
     */
    TemporaryDatabaseCopy(const std::filesystem::path& database,
                          const std::shared_ptr<const FileManager>& fileManager);

    /** Where the copy lies. */
    const std::filesystem::path& path() const noexcept { return path_; }

private:
    TemporaryFolder folder_;
    std::filesystem::path path_;
};

}  // namespace browsersweep
