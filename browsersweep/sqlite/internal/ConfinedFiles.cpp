#include "browsersweep/sqlite/internal/ConfinedFiles.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <exception>
#include <new>
#include <string_view>
#include <system_error>
#include <utility>

#include <sqlite3.h>

#include "browsersweep/platform/internal/posix/FileFacts.h"
#include "browsersweep/sqlite/internal/ConfinedFile.h"

namespace browsersweep {
namespace {

constexpr std::string_view indexSuffix = "-shm";
constexpr std::array<std::string_view, 2> companionSuffixes = {"-journal", "-wal"};

constexpr int writeFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;

sqlite3_vfs* systemFiles() {
    sqlite3_vfs* const system = sqlite3_vfs_find(nullptr);
    if (system == nullptr) {
        throw std::bad_alloc();  // the only reason for SQLite not to come up
    }
    return system;
}

/** The folder by its true name, and the file's own name as it stands. */
std::string trueName(const std::filesystem::path& file) {
    std::error_code error;
    const auto folder =
        std::filesystem::canonical(file.has_parent_path() ? file.parent_path() : ".", error);
    return error ? std::string() : (folder / file.filename()).string();
}

// SQLite only hands it back: the true name could look like an address, with options of its own.
constexpr std::string_view nameForSQLite = "database";

/** The name to open a database by: its own where it is one of SQLite's for a database without a
 * file. */
std::string nameToOpen(const std::filesystem::path& file) {
    const bool isWithoutFile = file.empty() || file == ":memory:";
    return isWithoutFile ? file.string() : std::string(nameForSQLite);
}

}  // namespace

/** What SQLite calls, and what it is told. */
class ConfinedFiles::Hooks {
public:
    Hooks(const std::filesystem::path& database, DatabaseAccess access,
          std::shared_ptr<OperationControl> control,
          const std::filesystem::path& folderForTemporaryDatabases)
        : system_(systemFiles()),
          given_(nameToOpen(database)),
          database_(trueName(database)),
          index_(database_ + std::string(indexSuffix)),
          temporary_(folderForTemporaryDatabases.empty()
                         ? std::string()
                         : (folderForTemporaryDatabases / nameForSQLite).string()),
          access_(access),
          control_(std::move(control)),
          name_("browsersweep-" + std::to_string(reinterpret_cast<std::uintptr_t>(this))),
          vfs_(*system_) {
        vfs_.iVersion = std::min(vfs_.iVersion, 2);
        vfs_.szOsFile = ConfinedFile::sizeWith(*system_);
        vfs_.zName = name_.c_str();
        vfs_.pAppData = this;
        vfs_.xOpen = openFile;
        vfs_.xDelete = deleteFile;
        vfs_.xAccess = answer;
        vfs_.xFullPathname = fullPathname;
        vfs_.xDlOpen = [](sqlite3_vfs*, const char*) -> void* { return nullptr; };
        forwardTheRest();
    }

    ~Hooks() { sqlite3_free_filename(readOnlyName_); }
    Hooks(const Hooks&) = delete;
    Hooks& operator=(const Hooks&) = delete;

    int openDatabase(sqlite3** database) {
        int code = SQLITE_OK;
        const int known = whileKnown(
            [&] { code = sqlite3_open_v2(given_.c_str(), database, writeFlags, name_.c_str()); });
        return known == SQLITE_OK ? code : known;
    }

    int whileKnown(const std::function<void()>& work) {
        if (const int code = sqlite3_vfs_register(&vfs_, 0); code != SQLITE_OK) {
            return code;
        }
        const auto forget = [](sqlite3_vfs* vfs) { sqlite3_vfs_unregister(vfs); };
        const std::unique_ptr<sqlite3_vfs, decltype(forget)> known(&vfs_, forget);
        work();
        return SQLITE_OK;
    }

private:
    static Hooks& of(sqlite3_vfs* vfs) noexcept { return *static_cast<Hooks*>(vfs->pAppData); }
    static sqlite3_vfs* systemOf(sqlite3_vfs* vfs) noexcept { return of(vfs).system_; }

    // The system's own functions find their data in their own structure, not in a copy of it.
    void forwardTheRest() noexcept {
        vfs_.xRandomness = [](sqlite3_vfs* vfs, int count, char* into) {
            return systemOf(vfs)->xRandomness(systemOf(vfs), count, into);
        };
        vfs_.xSleep = [](sqlite3_vfs* vfs, int microseconds) {
            return systemOf(vfs)->xSleep(systemOf(vfs), microseconds);
        };
        vfs_.xCurrentTime = [](sqlite3_vfs* vfs, double* days) {
            return systemOf(vfs)->xCurrentTime(systemOf(vfs), days);
        };
        vfs_.xGetLastError = [](sqlite3_vfs* vfs, int count, char* into) {
            return systemOf(vfs)->xGetLastError(systemOf(vfs), count, into);
        };
        vfs_.xCurrentTimeInt64 = [](sqlite3_vfs* vfs, sqlite3_int64* milliseconds) {
            return systemOf(vfs)->xCurrentTimeInt64(systemOf(vfs), milliseconds);
        };
    }

    bool isDatabase(std::string_view name) const noexcept { return name == database_; }

    bool isCompanion(std::string_view name) const noexcept {
        return std::any_of(
            companionSuffixes.begin(), companionSuffixes.end(), [&](std::string_view suffix) {
                return name.starts_with(database_) && name.substr(database_.size()) == suffix;
            });
    }

    /** Whether the name is one of the connection's own and nothing else stands there. */
    bool mayOpen(const char* name) const noexcept {
        if (!isDatabase(name) && !isCompanion(name)) {
            return false;
        }
        const posix::FileFacts facts = posix::factsOf(name);
        return !facts.exists || (isDatabase(name) ? facts.isRegular : facts.isRegularWithOneName());
    }

    /** The name as the system is to have it: with the wish not to write to the log's index. */
    const char* systemName(const char* name) noexcept {
        if (access_ == DatabaseAccess::readWrite || !isDatabase(name)) {
            return name;
        }
        if (readOnlyName_ == nullptr) {
            std::array<const char*, 2> parameter{"readonly_shm", "1"};
            readOnlyName_ =
                sqlite3_create_filename(name, (database_ + "-journal").c_str(),
                                        (database_ + "-wal").c_str(), 1, parameter.data());
        }
        return readOnlyName_;
    }

    int openNamed(const char* name, ConfinedFile& file, int flags, int* flagsGiven) {
        if (!mayOpen(name)) {
            return SQLITE_CANTOPEN;
        }
        const char* const known = systemName(name);
        if (known == nullptr) {
            return SQLITE_NOMEM;
        }
        const bool onlyReads = access_ != DatabaseAccess::readWrite;
        const int allowed = onlyReads ? (flags & ~writeFlags) | SQLITE_OPEN_READONLY : flags;
        int code = file.open(*system_, known, allowed, flagsGiven);
        if (code == SQLITE_OK && !mayOpen(name)) {
            file.close();
            code = SQLITE_CANTOPEN;
        }
        if (code == SQLITE_OK) {
            // A journal is read to take things back, which nothing may stop.
            const bool isJournal = (flags & SQLITE_OPEN_MAIN_JOURNAL) != 0;
            file.confine({onlyReads, index_, isJournal ? nullptr : control_,
                          access_ == DatabaseAccess::asItLies, access_ == DatabaseAccess::withLog});
        }
        return code;
    }

    int openNameless(ConfinedFile& file, int flags, int* flagsGiven) {
        if (temporary_.empty() || (flags & SQLITE_OPEN_TEMP_DB) == 0) {
            file.keepInMemory();
            return SQLITE_OK;
        }
        const int code = file.open(*system_, temporary_.c_str(), flags, flagsGiven);
        if (code == SQLITE_OK) {
            file.confine({false, {}, control_, false, false});
        }
        return code;
    }

    static int openFile(sqlite3_vfs* vfs, const char* name, sqlite3_file* raw, int flags,
                        int* flagsGiven) {
        ConfinedFile& file = ConfinedFile::prepare(raw);
        const bool isNameless = name == nullptr || (flags & SQLITE_OPEN_SUPER_JOURNAL) != 0;
        try {
            return isNameless ? of(vfs).openNameless(file, flags, flagsGiven)
                              : of(vfs).openNamed(name, file, flags, flagsGiven);
        } catch (const std::exception&) {
            file.close();
            return SQLITE_NOMEM;
        }
    }

    static int deleteFile(sqlite3_vfs* vfs, const char* name, int syncsFolder) {
        Hooks& hooks = of(vfs);
        if (!hooks.isCompanion(name)) {
            return SQLITE_OK;  // the file of a transaction over several databases is not ours
        }
        return hooks.access_ == DatabaseAccess::readWrite
                   ? hooks.system_->xDelete(hooks.system_, name, syncsFolder)
                   : SQLITE_READONLY;
    }

    static int answer(sqlite3_vfs* vfs, const char* name, int question, int* yes) {
        Hooks& hooks = of(vfs);
        if (hooks.isDatabase(name) || hooks.isCompanion(name)) {
            return hooks.system_->xAccess(hooks.system_, name, question, yes);
        }
        // As the system has it, an empty file is none.
        const posix::FileFacts facts = posix::factsOf(name);
        *yes = facts.exists && (!facts.isRegular || facts.size > 0) ? 1 : 0;
        return SQLITE_OK;
    }

    static int fullPathname(sqlite3_vfs* vfs, const char* name, int capacity, char* into) {
        const Hooks& hooks = of(vfs);
        const std::string& full = hooks.database_;
        if (std::string_view(name) != nameForSQLite || full.empty() ||
            full.size() >= static_cast<std::size_t>(capacity)) {
            return SQLITE_CANTOPEN;
        }
        std::memcpy(into, full.c_str(), full.size() + 1);
        return SQLITE_OK;
    }

    sqlite3_vfs* system_;
    std::string given_;
    std::string database_;
    std::string index_;
    std::string temporary_;
    DatabaseAccess access_;
    std::shared_ptr<OperationControl> control_;
    std::string name_;
    // Older headers have no name for this type, and another type.
    decltype(sqlite3_create_filename("", "", "", 0, nullptr)) readOnlyName_ = nullptr;
    sqlite3_vfs vfs_;
};

ConfinedFiles::ConfinedFiles(const std::filesystem::path& database, DatabaseAccess access,
                             std::shared_ptr<OperationControl> control,
                             const std::filesystem::path& folderForTemporaryDatabases)
    : hooks_(std::make_unique<Hooks>(database, access, std::move(control),
                                     folderForTemporaryDatabases)) {}

ConfinedFiles::~ConfinedFiles() = default;

int ConfinedFiles::open(sqlite3** database) {
    return hooks_->openDatabase(database);
}

int ConfinedFiles::whileKnown(const std::function<void()>& work) {
    return hooks_->whileKnown(work);
}

}  // namespace browsersweep
