#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sqlite/SQLiteConnection.h"

namespace browsersweep {

/**
 * One state of a database with the changes that wait in its log or journal, read without changing a
 * byte of it or beside it, whatever a browser does meanwhile.
 *
 * Where nothing lies beside the database, or a running browser keeps the index of its log there, it
 * is read in place: SQLite's own locks give one state. Otherwise reading in place would write, so
 * the files are copied to a private temporary folder and compared after that with what they hold
 * then: if none differs, all of them held this at the moment between. If one does, it is tried
 * again, a few times. Where there is no room for a copy and no journal lies beside the database, it
 * is read as it lies with its log, and compared with what it was before.
 */
class DatabaseSnapshot {
public:
    /** May be called more than once; what the last call saw counts. */
    using Use = std::function<void(const SQLiteConnection&)>;

    DatabaseSnapshot(std::filesystem::path file, std::shared_ptr<const FileManager> fileManager);

    /**
     * Lets it be read. False where the files changed during every attempt: what was seen then may
     * be a state that never was. Throws what the use throws, `filesystem_error`, `SQLiteError` and
     * `OperationCancelled`.
     */
    bool read(const Use& use) const;

    /** Whether changes wait beside the database, or its header says that there may be some. */
    bool mayHaveCompanions() const;

private:
    bool has(std::string_view suffix) const;
    bool canBeReadInPlace() const;
    bool readInPlace(const Use& use) const;
    bool readCopy(const Use& use, bool isLast) const;
    bool readCopyIfThereIsRoom(const Use& use, bool isLast) const;
    bool readAsItLies(const Use& use) const;

    std::filesystem::path file_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
