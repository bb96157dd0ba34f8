#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/internal/posix/FileDescriptor.h"

namespace browsersweep {

/**
 * A new folder for the user alone below the temporary directory, which goes away with all it holds
 * when this does; a failure of that is ignored. While it lives it is locked, so that another
 * process does not take it for one that was left behind.
 */
class TemporaryFolder {
public:
    /**
     * Throws `filesystem_error` where the folder cannot be made; a temporary directory that is
     * missing is not made for it.
     */
    explicit TemporaryFolder(std::shared_ptr<const FileManager> fileManager);
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    /** Where the folder lies. */
    const std::filesystem::path& path() const noexcept { return path_; }

    /** Lets the folder stay. Its lock goes all the same. */
    void abandon() noexcept { isAbandoned_ = true; }

private:
    std::shared_ptr<const FileManager> fileManager_;
    std::filesystem::path path_;
    FileDescriptor lock_;
    bool isAbandoned_ = false;
};

/** Whether a name is one that a `TemporaryFolder` gives itself. */
bool isTemporaryFolderName(std::string_view name) noexcept;

}  // namespace browsersweep
