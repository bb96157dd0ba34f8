#pragma once

#include <filesystem>
#include <memory>
#include <utility>

#include "browsersweep/Export.h"
#include "browsersweep/platform/FileManager.h"

namespace browsersweep {

/**
 * Where the current user's data lies. Readers and profiles hold one beside their file manager, so
 * that either can be replaced on its own. Nothing here checks that a directory exists.
 */
class BROWSERSWEEP_EXPORT CurrentUserDirectoryProvider {
public:
    CurrentUserDirectoryProvider() = default;
    CurrentUserDirectoryProvider(const CurrentUserDirectoryProvider&) = delete;
    CurrentUserDirectoryProvider& operator=(const CurrentUserDirectoryProvider&) = delete;
    virtual ~CurrentUserDirectoryProvider();

    /** Where all browsers but Safari keep their data: "Library/Application Support". */
    virtual std::filesystem::path applicationSupportDirectory() const = 0;
    /** Where browsers keep their caches: "Library/Caches". */
    virtual std::filesystem::path cachesDirectory() const = 0;
    /** Where Safari keeps its data: "Library". */
    virtual std::filesystem::path libraryDirectory() const = 0;
};

/**
 * The directories that a file manager reports; where it reports none, the standard places below
 * its home folder: "Library/Application Support/", "Library/Caches/" and "Library/".
 */
class BROWSERSWEEP_EXPORT FileManagerDirectoryProvider : public CurrentUserDirectoryProvider {
public:
    /** Asks this file manager at each call. */
    explicit FileManagerDirectoryProvider(std::shared_ptr<const FileManager> fileManager)
        : fileManager_(std::move(fileManager)) {}

    std::filesystem::path applicationSupportDirectory() const override;
    std::filesystem::path cachesDirectory() const override;
    std::filesystem::path libraryDirectory() const override;

private:
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
