#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "browsersweep/Export.h"
#include "browsersweep/platform/FileManager.h"

namespace browsersweep {

/** Passes everything on to another file manager: the base of one that changes a single thing. */
class BROWSERSWEEP_EXPORT ForwardingFileManager : public FileManager {
public:
    /** The other one, which may not be null. */
    explicit ForwardingFileManager(std::shared_ptr<const FileManager> target)
        : target_(std::move(target)) {}

    std::shared_ptr<OperationControl> control() const noexcept override {
        return target_->control();
    }
    bool servesCurrentUser() const noexcept override { return target_->servesCurrentUser(); }
    FileExistence fileExists(const std::filesystem::path& path) const noexcept override {
        return target_->fileExists(path);
    }
    FileAttributes attributes(const std::filesystem::path& path) const override {
        return target_->attributes(path);
    }
    Bytes contents(const std::filesystem::path& path) const override {
        return target_->contents(path);
    }
    Bytes firstBytes(const std::filesystem::path& path, std::size_t count) const override {
        return target_->firstBytes(path, count);
    }
    Bytes lastBytes(const std::filesystem::path& path, std::size_t count) const override {
        return target_->lastBytes(path, count);
    }
    void replace(const std::filesystem::path& path, BytesView contents) const override {
        target_->replace(path, contents);
    }
    void copy(const std::filesystem::path& from, const std::filesystem::path& to) const override {
        target_->copy(from, to);
    }
    void removeFile(const std::filesystem::path& path) const override { target_->removeFile(path); }
    void removeTemporaryFolder(const std::filesystem::path& path) const override {
        target_->removeTemporaryFolder(path);
    }
    bool removeFolder(const std::filesystem::path& path) const override {
        return target_->removeFolder(path);
    }
    bool replaceFolder(const std::filesystem::path& path,
                       const std::filesystem::path& contents) const override {
        return target_->replaceFolder(path, contents);
    }
    bool replaceFolderWithFiles(const std::filesystem::path& path,
                                const std::map<std::string, Bytes>& files) const override {
        return target_->replaceFolderWithFiles(path, files);
    }
    void createDirectory(const std::filesystem::path& path) const override {
        target_->createDirectory(path);
    }
    std::filesystem::path temporaryDirectory() const override {
        return target_->temporaryDirectory();
    }
    std::filesystem::path homeDirectory() const override { return target_->homeDirectory(); }
    std::vector<std::filesystem::path> directories(SearchPathDirectory directory) const override {
        return target_->directories(directory);
    }
    bool reaches(const std::filesystem::path& path) const override {
        return target_->reaches(path);
    }
    std::vector<FolderEntry> entries(const std::filesystem::path& directory) const override {
        return target_->entries(directory);
    }
    std::unique_ptr<DirectoryEnumerator> enumerator(
        const std::filesystem::path& directory) const override {
        return target_->enumerator(directory);
    }

private:
    std::shared_ptr<const FileManager> target_;
};

/** Passes everything on to another enumerator. */
class BROWSERSWEEP_EXPORT ForwardingEnumerator : public DirectoryEnumerator {
public:
    /** The other one, which may not be null. */
    explicit ForwardingEnumerator(std::unique_ptr<DirectoryEnumerator> target)
        : target_(std::move(target)) {}

    bool next() override { return target_->next(); }
    std::string_view name() const noexcept override { return target_->name(); }
    std::filesystem::path relativePath() const override { return target_->relativePath(); }
    std::optional<bool> isDirectory() override { return target_->isDirectory(); }
    std::optional<std::uint64_t> fileSize() override { return target_->fileSize(); }
    std::optional<Date> creationDate() noexcept override { return target_->creationDate(); }
    void remove() override { target_->remove(); }

private:
    std::unique_ptr<DirectoryEnumerator> target_;
};

}  // namespace browsersweep
