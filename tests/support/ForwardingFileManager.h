#pragma once

#include <memory>
#include <utility>

#include "browsersweep/platform/FileManager.h"

namespace browsersweep::tests {

/** Passes everything on to another file manager: the base of doubles that change one thing. */
class ForwardingFileManager : public FileManager {
public:
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
    void replace(const std::filesystem::path& path, BytesView contents) const override {
        target_->replace(path, contents);
    }
    void copy(const std::filesystem::path& from, const std::filesystem::path& to) const override {
        target_->copy(from, to);
    }
    void remove(const std::filesystem::path& path) const override { target_->remove(path); }
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
    std::unique_ptr<DirectoryEnumerator> enumerator(
        const std::filesystem::path& directory) const override {
        return target_->enumerator(directory);
    }

private:
    std::shared_ptr<const FileManager> target_;
};

/** Passes everything on to another enumerator. */
class ForwardingEnumerator : public DirectoryEnumerator {
public:
    explicit ForwardingEnumerator(std::unique_ptr<DirectoryEnumerator> target)
        : target_(std::move(target)) {}

    bool next() override { return target_->next(); }
    std::string_view name() const noexcept override { return target_->name(); }
    std::optional<bool> isDirectory() override { return target_->isDirectory(); }
    std::optional<std::uint64_t> fileSize() override { return target_->fileSize(); }
    std::optional<Date> creationDate() noexcept override { return target_->creationDate(); }
    void remove() override { target_->remove(); }

private:
    std::unique_ptr<DirectoryEnumerator> target_;
};

}  // namespace browsersweep::tests
