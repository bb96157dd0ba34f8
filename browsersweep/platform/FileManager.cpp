#include <utility>

#include "browsersweep/platform/internal/posix/PosixFileManager.h"

namespace browsersweep {

DirectoryEnumerator::~DirectoryEnumerator() = default;

FileManager::~FileManager() = default;

const std::shared_ptr<const FileManager>& FileManager::defaultManager() {
    static const std::shared_ptr<const FileManager> manager =
        std::make_shared<posix::PosixFileManager>(std::nullopt);
    return manager;
}

std::shared_ptr<const FileManager> FileManager::forHome(std::filesystem::path home) {
    return std::make_shared<posix::PosixFileManager>(std::move(home));
}

}  // namespace browsersweep
