#include "browsersweep/sqlite/internal/TemporaryDatabaseCopy.h"

#include <system_error>
#include <utility>

#include "browsersweep/platform/internal/UniqueString.h"
#include "browsersweep/platform/internal/posix/FileFacts.h"

namespace browsersweep {
namespace {

void removeIgnoringErrors(const FileManager& fileManager,
                          const std::filesystem::path& path) noexcept {
    try {
        fileManager.remove(path);
    } catch (const std::filesystem::filesystem_error&) {
        return;  // what stays behind is the user's alone; the caller has its result or its error
    }
}

}  // namespace

TemporaryDatabaseCopy::TemporaryDatabaseCopy(const std::filesystem::path& database,
                                             std::shared_ptr<const FileManager> fileManager)
    : fileManager_(std::move(fileManager)),
      folder_(fileManager_->temporaryDirectory() / ("browsersweep-" + uniqueString())),
      path_(folder_ / database.filename()) {
    if (posix::hasNoRoomForCopy(folder_.parent_path(), database)) {
        throw std::filesystem::filesystem_error(
            "the folder for temporary files has no room for a copy", database,
            folder_.parent_path(), std::make_error_code(std::errc::no_space_on_device));
    }
    fileManager_->createDirectory(folder_);
    try {
        fileManager_->copy(database, path_);
    } catch (...) {
        removeIgnoringErrors(*fileManager_, path_);  // the folder stays, but nothing private in it
        throw;
    }
}

TemporaryDatabaseCopy::~TemporaryDatabaseCopy() {
    removeIgnoringErrors(*fileManager_, folder_);
}

}  // namespace browsersweep
