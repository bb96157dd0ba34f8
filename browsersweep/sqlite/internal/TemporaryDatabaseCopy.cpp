#include "browsersweep/sqlite/internal/TemporaryDatabaseCopy.h"

#include <system_error>

#include "browsersweep/platform/internal/posix/FileFacts.h"

namespace browsersweep {
namespace {

void removeIgnoringErrors(const FileManager& fileManager,
                          const std::filesystem::path& path) noexcept {
    try {
        fileManager.removeFile(path);
    } catch (const std::filesystem::filesystem_error&) {
        return;  // it may never have been made, and what stays is the user's alone
    }
}

/** The file manager whose temporary directory has room for a copy; throws where it has none. */
const std::shared_ptr<const FileManager>& havingRoom(
    const std::shared_ptr<const FileManager>& fileManager, const std::filesystem::path& database) {
    const std::filesystem::path directory = fileManager->temporaryDirectory();
    if (posix::hasNoRoomForCopy(directory, database)) {
        throw std::filesystem::filesystem_error(
            "the folder for temporary files has no room for a copy", database, directory,
            std::make_error_code(std::errc::no_space_on_device));
    }
    return fileManager;
}

}  // namespace

TemporaryDatabaseCopy::TemporaryDatabaseCopy(const std::filesystem::path& database,
                                             const std::shared_ptr<const FileManager>& fileManager)
    : folder_(havingRoom(fileManager, database)), path_(folder_.path() / database.filename()) {
    try {
        fileManager->copy(database, path_);
    } catch (...) {
        removeIgnoringErrors(*fileManager, path_);  // the folder stays, but nothing private in it
        folder_.abandon();
        throw;
    }
}

}  // namespace browsersweep
