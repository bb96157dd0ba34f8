#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

#include "browsersweep/platform/FileManager.h"

namespace browsersweep {

/**
 * A database of LevelDB with the common order of keys. It is read on a private copy, since opening
 * one writes; and nothing is ever deleted within one, since LevelDB keeps what it deletes: a new
 * database with what stays takes the old one's place. Where the disk has no room for a copy, it is
 * made in memory: a full disk is why people delete.
 */
class LevelDatabase {
public:
    /** Is told of each live record, in the order of keys. */
    using Visit = std::function<void(std::string_view key, std::string_view value)>;
    /** Whether a live record stays. */
    using Stays = std::function<bool(std::string_view key, std::string_view value)>;
    /** Whether what stays is needed, asked once every record was asked about. */
    using IsNeeded = std::function<bool()>;

    LevelDatabase(std::filesystem::path folder, std::shared_ptr<const FileManager> fileManager);

    /** Where it lies. */
    const std::filesystem::path& folder() const noexcept { return folder_; }

    /** Whether files of a database are there. One of them that is a link is a `filesystem_error`.
     */
    bool exists() const;

    /**
     * Visits every live record. Throws `DecodingError` where the database is damaged or has another
     * order of keys, `filesystem_error`, and what the control and the visit throw.
     */
    void read(const Visit& visit) const;

    /**
     * Puts a new database with the records that stay in the place of this one, all or nothing, as
     * `FileManager::replaceFolder` does; the log files, which name folders, are not made anew. Room
     * is needed beside the database, for what stays. May ask about a record more than once. Throws
     * as reading does.
     */
    void rewrite(const Stays& stays) const;

    /** The same, but that nothing is changed where what stays is not needed. Whether it was. */
    bool rewrite(const Stays& stays, const IsNeeded& isNeeded) const;

private:
    class OpenDatabase;
    struct Copy;

    Copy copyOnDisk() const;
    Copy copyInMemory() const;
    void fill(OpenDatabase& made, const Stays& stays) const;
    bool rewriteOnDisk(const Stays& stays, const IsNeeded& isNeeded) const;
    bool rewriteInMemory(const Stays& stays, const IsNeeded& isNeeded) const;

    std::filesystem::path folder_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
