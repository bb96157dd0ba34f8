#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Bytes.h"
#include "browsersweep/base/Date.h"
#include "browsersweep/base/OperationControl.h"

namespace browsersweep {

/** Whether something is at a path, links followed. What cannot be examined does not exist. */
struct FileExistence {
    bool exists = false;       ///< whether anything is there
    bool isDirectory = false;  ///< never true where nothing is there

    /** Something is there and it is not a directory. */
    constexpr bool isFile() const noexcept { return exists && !isDirectory; }
    /** Whether all fields are equal. */
    friend bool operator==(const FileExistence&, const FileExistence&) = default;
};

/** What the file system records of one file. */
struct FileAttributes {
    std::optional<std::uint64_t> size;  ///< in bytes; absent where the system gives none
    /** Whether all fields are equal. */
    friend bool operator==(const FileAttributes&, const FileAttributes&) = default;
};

/** One entry of a folder. A link is told as one and not followed. */
struct FolderEntry {
    /** What it is. */
    enum class Kind {
        file,    ///< a regular file
        folder,  ///< a directory
        other,   ///< a link, or a special file
    };

    std::string name;              ///< the last component of its path
    Kind kind = Kind::other;       ///< what it is
    std::uint64_t size = 0;        ///< in bytes; 0 for what is no file
    std::optional<Date> modified;  ///< when it was last written, to the second
    std::uint64_t number = 0;      ///< the file system's own for it; 0 where it is not told
    /** When it, or what the system records of it, was last changed, to the second. */
    std::optional<Date> changed{};

    /** Whether all fields are equal. */
    friend bool operator==(const FolderEntry&, const FolderEntry&) = default;
};

/** The user's directories that the system has a name for. The values are the platform's own. */
enum class SearchPathDirectory {
    library = 5,              ///< "Library", where Safari keeps its data
    caches = 13,              ///< "Library/Caches"
    applicationSupport = 14,  ///< "Library/Application Support", where most browsers keep theirs
};

/**
 * A deep enumeration of one directory, entry after entry: every directory stands before what it
 * holds, otherwise the order is the file system's. Hidden files are visited. A symbolic link is an
 * entry of its own and is never followed.
 *
 * The questions are about the entry that `next()` moved to last. One that has vanished since it was
 * listed has no size and no date, and no kind that the listing did not tell: it counts as never
 * listed. A system whose listing tells sizes and dates is believed until something is deleted.
 */
class BROWSERSWEEP_EXPORT DirectoryEnumerator {
public:
    DirectoryEnumerator() = default;
    DirectoryEnumerator(const DirectoryEnumerator&) = delete;
    DirectoryEnumerator& operator=(const DirectoryEnumerator&) = delete;
    virtual ~DirectoryEnumerator();

    /**
     * Moves to the next entry; false after the last one. A directory that may not be opened, is
     * gone by then, or lies on another mount, is an entry without contents. Any other failure to
     * list is thrown as `std::filesystem::filesystem_error`: a size that lacks a folder for want of
     * a descriptor would be a wrong size.
     */
    virtual bool next() = 0;

    /** The entry's last path component. Valid until the next call of `next()`. */
    virtual std::string_view name() const noexcept = 0;

    /**
     * The entry's path below the directory that is enumerated: its name alone where an enumerator
     * does not tell more.
     */
    virtual std::filesystem::path relativePath() const;

    /** Whether the entry is a directory. Throws `filesystem_error`. */
    virtual std::optional<bool> isDirectory() = 0;

    /** The entry's own size in bytes, absent for a directory. Throws `filesystem_error`. */
    virtual std::optional<std::uint64_t> fileSize() = 0;

    /** When the entry was created, absent where that cannot be read. */
    virtual std::optional<Date> creationDate() noexcept = 0;

    /** Deletes the entry, which must not be a directory. Throws `filesystem_error`. */
    virtual void remove() = 0;
};

/**
 * The one door to the file system. Readers, profiles and items share a `const` handle to it; tests
 * replace it to fail, to count, or to forbid everything outside a folder. An implementation may be
 * used by several threads at once. Every failure is a `std::filesystem::filesystem_error` that
 * names the path and carries the system's error.
 */
class BROWSERSWEEP_EXPORT FileManager {
public:
    /** The largest file that `contents` reads. No real file of a browser that is read whole comes
     * near it. */
    static constexpr std::uint64_t maximumContentsSize = std::uint64_t{2} << 30;

    FileManager() = default;
    FileManager(const FileManager&) = delete;
    FileManager& operator=(const FileManager&) = delete;
    virtual ~FileManager();

    /** The process-wide default: the real file system and the current user's directories. */
    static const std::shared_ptr<const FileManager>& defaultManager();

    /** The same, with operations that can be stopped. */
    static std::shared_ptr<const FileManager> controlledBy(
        std::shared_ptr<OperationControl> control);

    /**
     * The real file system, with the user's directories below another home folder, and with
     * operations that can be stopped where there is a control.
     */
    static std::shared_ptr<const FileManager> forHome(
        std::filesystem::path home, std::shared_ptr<OperationControl> control = nullptr);

    /**
     * What operations through this file manager ask whether to go on; null where nothing is to be
     * asked. Code that works in steps through this file manager asks it between them.
     */
    virtual std::shared_ptr<OperationControl> control() const noexcept;

    /**
     * Whether the files are the current user's own, to whom the services of the running system
     * belong as well. A file manager that does not say so serves another home.
     */
    virtual bool servesCurrentUser() const noexcept;

    /** Whether something is at the path. Never fails. */
    virtual FileExistence fileExists(const std::filesystem::path& path) const noexcept = 0;

    /** The attributes of the file at the path, links followed. A missing file is an error. */
    virtual FileAttributes attributes(const std::filesystem::path& path) const = 0;

    /**
     * The whole of a regular file. A missing file, a directory or other special file, one of more
     * than `maximumContentsSize` bytes, or a read that fails is an error.
     */
    virtual Bytes contents(const std::filesystem::path& path) const = 0;

    /** The first bytes of a regular file, fewer where it is shorter. Errors as above. */
    virtual Bytes firstBytes(const std::filesystem::path& path, std::size_t count) const = 0;

    /** The last bytes of a regular file, fewer where it is shorter. Errors as above. */
    virtual Bytes lastBytes(const std::filesystem::path& path, std::size_t count) const = 0;

    /**
     * Puts other contents in the place of an existing regular file, all or nothing: whatever
     * happens, the path holds the old bytes or the new ones. Owner, mode, access control list and
     * extended attributes are the old file's. The file is reached as by `removeFile`, and a path
     * that is a link is an error.
     */
    virtual void replace(const std::filesystem::path& path, BytesView contents) const = 0;

    /**
     * Copies one file's contents to a path that must not exist yet. The copy is readable and
     * writable by the user alone from its first moment. What was begun may stay after a failure.
     */
    virtual void copy(const std::filesystem::path& from, const std::filesystem::path& to) const = 0;

    /**
     * Deletes a file or a link, never what a link leads to and never a directory, also where one
     * takes the file's place at the last moment. Below the user's Library folder the file is
     * reached component by component: a link on the way is an error (ELOOP), and so is another
     * mount (EXDEV). Elsewhere the system finds the file's folder.
     */
    virtual void removeFile(const std::filesystem::path& path) const = 0;

    /**
     * Deletes one of the library's own temporary folders with all it holds, by the walk that
     * `enumerator` gives. Any folder but one named "browsersweep-" and 32 hexadecimal digits that
     * belongs to the user is an error.
     */
    virtual void removeTemporaryFolder(const std::filesystem::path& path) const = 0;

    /**
     * Deletes a folder with all it holds, by the walk that `enumerator` gives: links are deleted
     * and not followed. A mount or a folder that may not be entered stays, with the folders above
     * it, and the control is told of it. The control is asked between files. Returns whether all is
     * gone. The folder is reached as by `removeFile`; a missing one, and one that is a link, is an
     * error.
     */
    virtual bool removeFolder(const std::filesystem::path& path) const = 0;

    /**
     * Puts a new folder in the place of an existing one, all or nothing: whatever happens, the path
     * leads to the old folder or to the new one. The new one has copies of the regular files of
     * `contents`, which may hold nothing else, and owner, mode, access control list and extended
     * attributes of the old one. It is made beside the old one, under a name that
     * `isLeftByReplacing` knows, and made durable; then the two are exchanged, and the old one is
     * deleted as by `removeFolder`. Where that is cut short, the other of the two stays behind
     * under that name, and is of no use. A file system that cannot exchange is an error, and
     * nothing is changed. Returns whether all of the old folder is gone.
     */
    virtual bool replaceFolder(const std::filesystem::path& path,
                               const std::filesystem::path& contents) const = 0;

    /** The same with files from memory, by their names. A name that is no plain one is an error. */
    virtual bool replaceFolderWithFiles(const std::filesystem::path& path,
                                        const std::map<std::string, Bytes>& files) const = 0;

    /**
     * Whether a name is one that replacing gives, for a moment, to what it puts in the place of a
     * file or folder of another name: what bears it was left behind.
     */
    static bool isLeftByReplacing(std::string_view name, std::string_view replaced) noexcept;

    /**
     * Creates a directory for the user alone. One that exists already is an error, and so is a
     * missing one above it.
     */
    virtual void createDirectory(const std::filesystem::path& path) const = 0;

    /**
     * Deletes the folders of this kind in the temporary directory that no living process holds,
     * since what made them was killed. What cannot be examined or deleted stays. Returns how many
     * went.
     */
    std::size_t removeStaleTemporaryFolders() const noexcept;

    /** The folder for temporary files. */
    virtual std::filesystem::path temporaryDirectory() const = 0;

    /** The current user's home folder. */
    virtual std::filesystem::path homeDirectory() const = 0;

    /** The system's answer for one of the user's directories; empty where it has none. */
    virtual std::vector<std::filesystem::path> directories(SearchPathDirectory directory) const = 0;

    /**
     * Whether the folder that holds a path is reached as `removeFile` would reach it: for what
     * finds its files by path alone, as SQLite does. The control is told of a link or a mount in
     * the way. Any other failure is for whoever opens the path to meet.
     */
    virtual bool reaches(const std::filesystem::path& path) const = 0;

    /**
     * What a folder holds, not what its folders hold, in no certain order. Nothing, where
     * `enumerator` would produce nothing; the control is told as by that. What vanishes while it is
     * listed is left out.
     */
    virtual std::vector<FolderEntry> entries(const std::filesystem::path& directory) const = 0;

    /**
     * Starts a deep enumeration of a directory. None is produced where the directory may not be
     * opened or is gone, and where it is a link or not reached: below the user's Library folder no
     * link on the way to it is followed and no other mount is entered, and nowhere is a mount below
     * the directory entered. The control is told of each folder that is left out so.
     */
    virtual std::unique_ptr<DirectoryEnumerator> enumerator(
        const std::filesystem::path& directory) const = 0;
};

}  // namespace browsersweep
