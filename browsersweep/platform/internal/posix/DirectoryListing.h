#pragma once

#include <memory>
#include <optional>
#include <system_error>

#include "browsersweep/platform/internal/posix/EntryStatus.h"

namespace browsersweep::posix {

/** One name of a listing. */
struct ListedEntry {
    const char* name = nullptr;         ///< valid until the next entry is asked for
    std::optional<bool> isDirectory;    ///< as the listing tells it; absent where it does not
    std::optional<EntryStatus> status;  ///< likewise, for what is no directory
};

/**
 * The names in one open directory, "." and ".." left out. Entries may be deleted while it is read,
 * once that was prepared for: those that remain are all listed. There is one implementation per
 * system, since systems differ in whether their plain listing keeps that promise, and in what else
 * it tells. One object serves directory after directory.
 */
class DirectoryListing {
public:
    DirectoryListing();
    DirectoryListing(const DirectoryListing&) = delete;
    DirectoryListing& operator=(const DirectoryListing&) = delete;
    ~DirectoryListing();

    /** Begins with a directory, whose descriptor stays the caller's and must stay open. */
    void start(int directory) noexcept;

    /** Moves to the next entry; nothing at the end. Returns the error of a listing that fails. */
    std::error_code next(std::optional<ListedEntry>& entry);

    /**
     * Must be called before an entry is deleted. From then on entries come without a status: what
     * is to be deleted is examined at that moment. The present entry's name stays valid.
     */
    std::error_code prepareForDeletion();

private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace browsersweep::posix
