#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/internal/posix/DirectoryListing.h"
#include "browsersweep/platform/internal/posix/EntryStatus.h"
#include "browsersweep/platform/internal/posix/FileDescriptor.h"
#include "browsersweep/platform/internal/posix/FolderIdentity.h"
#include "browsersweep/platform/internal/posix/Gate.h"

namespace browsersweep::posix {

/**
 * The deep walk, on descriptors. Each directory is opened from its parent's descriptor without
 * following links, and entries are examined and deleted relative to it: a folder that is swapped
 * for a link in mid-walk is not entered, nor is one on another mount, and no path is resolved per
 * file. The files of a directory come first, then its subdirectories one by one; depth costs heap,
 * not stack, and however deep the tree is, no more than a fixed number of directories are open at
 * once.
 */
class DirectoryWalk : public DirectoryEnumerator {
public:
    /**
     * Nothing where the directory may not be opened or is gone, or where the gate refuses it; the
     * control, which may be null, is told of what is not entered. Throws `filesystem_error`.
     */
    static std::unique_ptr<DirectoryWalk> start(const std::filesystem::path& root, const Gate& gate,
                                                const std::shared_ptr<OperationControl>& control);

    /** Opens a directory for such a walk; nothing where `start` would produce nothing. */
    static FileDescriptor openRoot(const std::filesystem::path& root, const Gate& gate,
                                   OperationControl* control);

    /** Whether no link and no mount keeps the gate from the folder that holds a path. */
    static bool reachesParent(const std::filesystem::path& path, const Gate& gate,
                              OperationControl* control);

    /**
     * Deletes a directory with all it holds. What is not entered stays, with the directories above
     * it. Returns whether nothing stays. Throws `filesystem_error` and what the control throws.
     */
    static bool removeTree(const std::filesystem::path& root, const Gate& gate,
                           const std::shared_ptr<OperationControl>& control);

    DirectoryWalk(std::filesystem::path root, FileDescriptor descriptor,
                  std::shared_ptr<OperationControl> control);

    bool next() override;
    std::string_view name() const noexcept override { return entry_->name; }
    std::filesystem::path relativePath() const override { return folder() / name(); }
    std::optional<bool> isDirectory() override;
    std::optional<std::uint64_t> fileSize() override;
    std::optional<Date> creationDate() noexcept override;
    void remove() override;

private:
    /** Names that wait, one after the other, each ended by a zero byte. */
    struct PendingNames {
        std::string text;
        std::size_t position = 0;

        void add(std::string_view name);
        const char* take() noexcept;
    };

    /** A directory on the way from the root to the one that is being listed. */
    struct Level {
        FileDescriptor descriptor;  ///< closed while too many directories are open below it
        FolderIdentity identity;
        std::string name;
        PendingNames subdirectories;
        bool holdsLeftOut = false;  ///< something below it was not entered
    };

    void enter(FileDescriptor descriptor, std::string name);
    bool nextListed();
    bool enterNextSubdirectory();
    void leave();
    void removeLeft(const Level& child);
    void closeFarAncestor() noexcept;
    void reopenParent(const Level& child, Level& parent) const;
    void learnKind();
    std::optional<EntryStatus> status(StatusFields fields);
    std::filesystem::path folder() const;
    std::filesystem::path path(std::string_view entryName = {}) const;

    std::filesystem::path root_;
    std::shared_ptr<OperationControl> control_;
    std::vector<Level> levels_;
    DirectoryListing listing_;
    std::optional<ListedEntry> entry_;
    std::optional<EntryStatus> status_;
    StatusFields statusFields_ = StatusFields::kindAndSize;
    bool isListing_ = false;
    bool removesDirectories_ = false;
    bool rootHoldsLeftOut_ = false;
};

}  // namespace browsersweep::posix
