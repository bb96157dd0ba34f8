#include <utility>

#include "browsersweep/platform/internal/posix/PosixFileManager.h"

namespace browsersweep {

DirectoryEnumerator::~DirectoryEnumerator() = default;

std::filesystem::path DirectoryEnumerator::relativePath() const {
    return name();
}

FileManager::~FileManager() = default;

const std::shared_ptr<const FileManager>& FileManager::defaultManager() {
    static const std::shared_ptr<const FileManager> manager =
        std::make_shared<posix::PosixFileManager>(std::nullopt);
    return manager;
}

std::shared_ptr<const FileManager> FileManager::controlledBy(
    std::shared_ptr<OperationControl> control) {
    return std::make_shared<posix::PosixFileManager>(std::nullopt, std::move(control));
}

std::shared_ptr<const FileManager> FileManager::forHome(std::filesystem::path home,
                                                        std::shared_ptr<OperationControl> control) {
    return std::make_shared<posix::PosixFileManager>(std::move(home), std::move(control));
}

std::shared_ptr<OperationControl> FileManager::control() const noexcept {
    return nullptr;
}

bool FileManager::servesCurrentUser() const noexcept {
    return false;
}

}  // namespace browsersweep
