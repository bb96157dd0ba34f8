#include "tests/support/GuardedFileManager.h"

#include <algorithm>
#include <system_error>

#include <gtest/gtest.h>

namespace browsersweep::tests {

namespace fs = std::filesystem;

GuardedFileManager::GuardedFileManager(const fs::path& root)
    : ForwardingFileManager(FileManager::forHome(root)), root_(root) {}

std::shared_ptr<const FileManager> GuardedFileManager::forFixture(const TemporaryFolder& folder) {
    return std::make_shared<GuardedFileManager>(folder.path());
}

bool GuardedFileManager::isInside(const fs::path& path) const {
    const fs::path normal = path.lexically_normal();
    return std::mismatch(root_.begin(), root_.end(), normal.begin(), normal.end()).first ==
           root_.end();
}

const fs::path& GuardedFileManager::checked(const fs::path& path) const {
    if (!isInside(path)) {
        ADD_FAILURE() << "reached outside the fixture: " << path;
        throw fs::filesystem_error("outside the fixture", path,
                                   std::make_error_code(std::errc::permission_denied));
    }
    return path;
}

FileExistence GuardedFileManager::fileExists(const fs::path& path) const noexcept {
    if (!isInside(path)) {
        ADD_FAILURE() << "reached outside the fixture: " << path;
        return {};
    }
    return ForwardingFileManager::fileExists(path);
}

FileAttributes GuardedFileManager::attributes(const fs::path& path) const {
    return ForwardingFileManager::attributes(checked(path));
}

Bytes GuardedFileManager::contents(const fs::path& path) const {
    return ForwardingFileManager::contents(checked(path));
}

Bytes GuardedFileManager::firstBytes(const fs::path& path, std::size_t count) const {
    return ForwardingFileManager::firstBytes(checked(path), count);
}

Bytes GuardedFileManager::lastBytes(const fs::path& path, std::size_t count) const {
    return ForwardingFileManager::lastBytes(checked(path), count);
}

void GuardedFileManager::replace(const fs::path& path, BytesView contents) const {
    ForwardingFileManager::replace(checked(path), contents);
}

void GuardedFileManager::copy(const fs::path& from, const fs::path& to) const {
    ForwardingFileManager::copy(checked(from), checked(to));
}

void GuardedFileManager::removeFile(const fs::path& path) const {
    ForwardingFileManager::removeFile(checked(path));
}

void GuardedFileManager::removeTemporaryFolder(const fs::path& path) const {
    ForwardingFileManager::removeTemporaryFolder(checked(path));
}

bool GuardedFileManager::removeFolder(const fs::path& path) const {
    return ForwardingFileManager::removeFolder(checked(path));
}

bool GuardedFileManager::replaceFolder(const fs::path& path, const fs::path& contents) const {
    return ForwardingFileManager::replaceFolder(checked(path), checked(contents));
}

bool GuardedFileManager::replaceFolderWithFiles(const fs::path& path,
                                                const std::map<std::string, Bytes>& files) const {
    return ForwardingFileManager::replaceFolderWithFiles(checked(path), files);
}

void GuardedFileManager::createDirectory(const fs::path& path) const {
    ForwardingFileManager::createDirectory(checked(path));
}

fs::path GuardedFileManager::temporaryDirectory() const {
    fs::create_directory(root_ / "tmp");
    return root_ / "tmp";
}

bool GuardedFileManager::reaches(const fs::path& path) const {
    return ForwardingFileManager::reaches(checked(path));
}

std::vector<FolderEntry> GuardedFileManager::entries(const fs::path& directory) const {
    return ForwardingFileManager::entries(checked(directory));
}

std::unique_ptr<DirectoryEnumerator> GuardedFileManager::enumerator(
    const fs::path& directory) const {
    return ForwardingFileManager::enumerator(checked(directory));
}

}  // namespace browsersweep::tests
