#pragma once

#include <memory>
#include <optional>
#include <system_error>

namespace browsersweep::posix {

/** One name of a listing. */
struct ListedEntry {
    const char* name = nullptr;       ///< valid until the next entry is asked for
    std::optional<bool> isDirectory;  ///< as the listing tells it; absent where it does not
};

/**
 * The names in one open directory, "." and ".." left out. Entries may be deleted while it is read:
 * those that remain are all listed. There is one implementation per system, since systems differ in
 * whether their plain listing keeps that promise. One object serves directory after directory.
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

private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace browsersweep::posix
