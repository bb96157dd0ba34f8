#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/GuardedFileManager.h"

namespace browsersweep::tests {

/**
 * Shows a fixture folder at a place that no disk has, with the home in it. Whatever does not go
 * through this file manager finds nothing there.
 */
class MappedFileManager : public GuardedFileManager {
public:
    static inline const std::filesystem::path home = "/browsersweep home that no disk has";

    explicit MappedFileManager(const TemporaryFolder& folder)
        : GuardedFileManager(folder.path()), folder_(folder.path()) {}

    std::filesystem::path homeDirectory() const override { return home; }
    std::vector<std::filesystem::path> directories(
        SearchPathDirectory /*directory*/) const override {
        return {};
    }
    FileExistence fileExists(const std::filesystem::path& path) const noexcept override {
        return GuardedFileManager::fileExists(onDisk(path));
    }
    FileAttributes attributes(const std::filesystem::path& path) const override {
        return GuardedFileManager::attributes(onDisk(path));
    }
    Bytes contents(const std::filesystem::path& path) const override {
        return GuardedFileManager::contents(onDisk(path));
    }
    Bytes firstBytes(const std::filesystem::path& path, std::size_t count) const override {
        return GuardedFileManager::firstBytes(onDisk(path), count);
    }
    Bytes lastBytes(const std::filesystem::path& path, std::size_t count) const override {
        return GuardedFileManager::lastBytes(onDisk(path), count);
    }
    void replace(const std::filesystem::path& path, BytesView contents) const override {
        GuardedFileManager::replace(onDisk(path), contents);
    }
    void copy(const std::filesystem::path& from, const std::filesystem::path& to) const override {
        GuardedFileManager::copy(onDisk(from), onDisk(to));
    }
    void removeFile(const std::filesystem::path& path) const override {
        GuardedFileManager::removeFile(onDisk(path));
    }
    void removeTemporaryFolder(const std::filesystem::path& path) const override {
        GuardedFileManager::removeTemporaryFolder(onDisk(path));
    }
    bool removeFolder(const std::filesystem::path& path) const override {
        return GuardedFileManager::removeFolder(onDisk(path));
    }
    bool replaceFolder(const std::filesystem::path& path,
                       const std::filesystem::path& contents) const override {
        return GuardedFileManager::replaceFolder(onDisk(path), onDisk(contents));
    }
    bool replaceFolderWithFiles(const std::filesystem::path& path,
                                const std::map<std::string, Bytes>& files) const override {
        return GuardedFileManager::replaceFolderWithFiles(onDisk(path), files);
    }
    bool reaches(const std::filesystem::path& path) const override {
        return GuardedFileManager::reaches(onDisk(path));
    }
    std::vector<FolderEntry> entries(const std::filesystem::path& directory) const override {
        return GuardedFileManager::entries(onDisk(directory));
    }
    std::unique_ptr<DirectoryEnumerator> enumerator(
        const std::filesystem::path& directory) const override {
        return GuardedFileManager::enumerator(onDisk(directory));
    }

private:
    std::filesystem::path onDisk(const std::filesystem::path& path) const {
        const std::filesystem::path below = path.lexically_relative(home);
        return below.empty() || *below.begin() == ".." ? path : folder_ / below;
    }

    std::filesystem::path folder_;
};

}  // namespace browsersweep::tests
