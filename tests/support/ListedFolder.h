#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/ForwardingFileManager.h"

namespace browsersweep::tests {

/** One entry of a folder that exists only as a list: what a test wants the system to have said. */
struct ListedEntry {
    std::string name;
    std::optional<bool> isDirectory = false;
    std::optional<std::uint64_t> size = 1;
    bool canBeRemoved = true;
    bool canBeAsked = true;  ///< otherwise its kind and its size cannot be read
};

/** A file manager whose folders all hold the same listed entries, or cannot be enumerated. */
class ListedFolder : public ForwardingFileManager {
public:
    explicit ListedFolder(std::optional<std::vector<ListedEntry>> entries)
        : ForwardingFileManager(nullptr), entries_(std::move(entries)) {}

    /** The names of the entries that were deleted, in order. */
    const std::vector<std::string>& removed() const noexcept { return *removed_; }

    std::shared_ptr<OperationControl> control() const noexcept override { return nullptr; }
    FileExistence fileExists(const std::filesystem::path& /*path*/) const noexcept override {
        return {true, true};
    }
    std::unique_ptr<DirectoryEnumerator> enumerator(
        const std::filesystem::path& /*directory*/) const override {
        return entries_ ? std::make_unique<Enumerator>(*entries_, removed_) : nullptr;
    }

private:
    class Enumerator : public DirectoryEnumerator {
    public:
        Enumerator(std::vector<ListedEntry> entries, std::shared_ptr<std::vector<std::string>> gone)
            : entries_(std::move(entries)), removed_(std::move(gone)) {}

        bool next() override { return ++position_ <= entries_.size(); }
        std::string_view name() const noexcept override { return entry().name; }
        std::optional<bool> isDirectory() override { return askedEntry().isDirectory; }
        std::optional<std::uint64_t> fileSize() override { return askedEntry().size; }
        std::optional<Date> creationDate() noexcept override { return std::nullopt; }
        void remove() override {
            if (!entry().canBeRemoved) {
                throw std::filesystem::filesystem_error(
                    "refused", std::make_error_code(std::errc::read_only_file_system));
            }
            removed_->push_back(entry().name);
        }

    private:
        const ListedEntry& entry() const noexcept { return entries_[position_ - 1]; }
        const ListedEntry& askedEntry() const {
            if (!entry().canBeAsked) {
                throw std::filesystem::filesystem_error("refused",
                                                        std::make_error_code(std::errc::io_error));
            }
            return entry();
        }

        std::vector<ListedEntry> entries_;
        std::shared_ptr<std::vector<std::string>> removed_;
        std::size_t position_ = 0;
    };

    std::optional<std::vector<ListedEntry>> entries_;
    std::shared_ptr<std::vector<std::string>> removed_ =
        std::make_shared<std::vector<std::string>>();
};

}  // namespace browsersweep::tests
