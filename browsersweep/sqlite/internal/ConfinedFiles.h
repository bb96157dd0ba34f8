#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "browsersweep/base/OperationControl.h"

struct sqlite3;

namespace browsersweep {

/** What a connection may do to the files of its database. */
enum class DatabaseAccess {
    readWrite,
    readOnly,  ///< no byte of any file is changed, and no file is made or deleted
    asItLies,  ///< the same, and nothing beside the database is looked at, nor is it locked
    withLog,   ///< the same with the log beside it, whose index is made in memory
};

/**
 * The files that one connection to SQLite may touch: the database and its own companions, its
 * journal, its write-ahead log and that log's index. It stands between SQLite and the system's own
 * way to files.
 *
 * - Any other file is neither opened nor made nor deleted. A journal of a transaction over several
 *   databases names a file that SQLite reads and deletes once it is done; whoever writes a journal
 *   beside a database could name any file. It is asked only whether it exists: SQLite is shown an
 *   empty one, and it stays.
 * - The database must be a regular file, and a companion one with a single name: another name
 *   would be another file that is overwritten. No link at the end of a path is followed.
 * - Files without a name, in which SQLite puts rows aside, are kept in memory. A whole database of
 *   this kind, as `VACUUM` makes one, may be given a folder instead.
 * - Reading can be stopped by a control.
 *
 * What is refused is SQLite's "unable to open database file". A file that takes another's place
 * between the question and the opening is found by asking again; one that also comes back in time
 * is not.
 */
class ConfinedFiles {
public:
    /**
     * The control may be null. The folder, if one is given, must be for this alone: a file in it
     * has lost its name before anything is written to it.
     */
    ConfinedFiles(const std::filesystem::path& database, DatabaseAccess access,
                  std::shared_ptr<OperationControl> control,
                  const std::filesystem::path& folderForTemporaryDatabases = {});
    ConfinedFiles(const ConfinedFiles&) = delete;
    ConfinedFiles& operator=(const ConfinedFiles&) = delete;
    ~ConfinedFiles();

    /**
     * Opens the database with the flags of SQLite's plain opening: read and write, and make it
     * where it is missing. Returns SQLite's code. This must outlive what was opened. The way to
     * files is known to SQLite by name only while it opens: nothing can be attached through it
     * later.
     */
    int open(sqlite3** database);

    /**
     * Makes the way known for the time of some work: `VACUUM` attaches a database that has no name.
     * Returns SQLite's code; where that is an error the work was not begun.
     */
    int whileKnown(const std::function<void()>& work);

private:
    class Hooks;
    std::unique_ptr<Hooks> hooks_;
};

}  // namespace browsersweep
