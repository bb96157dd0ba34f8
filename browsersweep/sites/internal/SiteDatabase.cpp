#include "browsersweep/sites/internal/SiteDatabase.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <system_error>
#include <utility>

#include <sqlite3.h>

#include "browsersweep/platform/internal/posix/FileFacts.h"
#include "browsersweep/sites/internal/DatabaseQuery.h"
#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/sqlite/internal/Protection.h"

namespace browsersweep {
namespace {

/** What `VACUUM` may put into memory. */
constexpr std::int64_t smallFile = std::int64_t{16} << 20;

/** Two and a half times: the second database, the journal of the first, and some air. */
constexpr std::int64_t halvesOfRoom = 5;

std::int64_t sizeWithLog(const std::filesystem::path& file) {
    return posix::factsOf(file).size + posix::factsOf(std::filesystem::path(file) += "-wal").size;
}

std::filesystem::path folderOf(const std::optional<TemporaryFolder>& folder) {
    return folder ? folder->path() : std::filesystem::path();
}

// Where the system does not tell there is room: then the disk itself will say so.
bool hasRoom(const std::filesystem::path& folder, std::int64_t bytes) {
    std::error_code error;
    const auto space = std::filesystem::space(folder, error);
    return error || space.available >= static_cast<std::uintmax_t>(bytes);
}

// What the check finds in values, not in pages: browsers live with that, and so does `VACUUM`.
bool isAboutValues(std::string_view remark) {
    constexpr std::array<std::string_view, 4> beginnings{
        "NULL value in ", "CHECK constraint failed in ", "TEXT value in ", "NUMERIC value in "};
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&](std::string_view beginning) { return remark.starts_with(beginning); });
}

}  // namespace

SiteDatabase::SiteDatabase(const std::filesystem::path& file,
                           const std::shared_ptr<const FileManager>& fileManager)
    : file_(file),
      control_(fileManager->control()),
      folder_(sizeWithLog(file) > smallFile ? std::make_optional<TemporaryFolder>(fileManager)
                                            : std::nullopt),
      files_(file, DatabaseAccess::readWrite, control_, folderOf(folder_)) {
    int code = files_.open(&handle_);
    if (code == SQLITE_OK) {
        code = protect(handle_);
    }
    if (code == SQLITE_OK && control_) {
        code = stopBy(*control_, handle_);
    }
    if (code != SQLITE_OK) {
        const std::string message = sqlite3_errstr(code);
        sqlite3_close(std::exchange(handle_, nullptr));
        if (code == SQLITE_INTERRUPT) {
            continueOrThrow(control_.get());
        }
        throw SQLiteError(message, code);
    }
}

SiteDatabase::~SiteDatabase() {
    sqlite3_close(handle_);
}

void SiteDatabase::run(const std::string& sql) const {
    runStatement(handle_, sql, control_.get());
}

std::int64_t SiteDatabase::number(const std::string& sql) const {
    return numberOf(handle_, sql, control_.get());
}

// A page without cells that is a leaf has nothing behind its header.
bool SiteDatabase::isBlank(std::int64_t page) const {
    constexpr std::size_t headerSize = 8;
    sqlite3_file* file = nullptr;
    sqlite3_file_control(handle_, "main", SQLITE_FCNTL_FILE_POINTER, static_cast<void*>(&file));
    Bytes bytes(static_cast<std::size_t>(number("PRAGMA page_size")));
    const auto offset = (page - 1) * static_cast<sqlite3_int64>(bytes.size());
    const int code =
        file->pMethods->xRead(file, bytes.data(), static_cast<int>(bytes.size()), offset);
    if (code != SQLITE_OK) {
        throw SQLiteError(sqlite3_errstr(code), code);
    }
    return std::all_of(bytes.begin() + headerSize, bytes.end(),
                       [](std::uint8_t each) { return each == 0; });
}

bool SiteDatabase::hasRemains(std::string_view table) const {
    const std::string name(table);
    if (number("SELECT EXISTS (SELECT 1 FROM \"" + name + "\")") != 0) {
        return false;
    }
    DatabaseQuery pages(
        handle_,
        "SELECT rootpage FROM sqlite_master WHERE tbl_name = '" + name + "' AND rootpage > 0",
        control_.get());
    while (pages.next()) {
        if (!isBlank(pages.number(0))) {
            return true;
        }
    }
    return false;
}

void SiteDatabase::checkWholeness() const {
    DatabaseQuery query(handle_, "PRAGMA quick_check", control_.get());
    while (query.next()) {
        const std::string remark(query.text(0));
        if (remark != "ok" && !isAboutValues(remark)) {
            continueOrThrow(control_.get());  // a check that is stopped takes pages for damaged
            throw SQLiteError("the database is damaged: " + remark, SQLITE_CORRUPT);
        }
    }
}

void SiteDatabase::change(const std::function<void()>& changes) const {
    run("PRAGMA secure_delete = ON");
    run("BEGIN IMMEDIATE");
    try {
        checkWholeness();
        const int before = sqlite3_total_changes(handle_);
        changes();
        if (control_) {
            const int changed = sqlite3_total_changes(handle_) - before;
            control_->count({0, 0, static_cast<std::uint64_t>(changed)});
        }
        run("COMMIT");
    } catch (...) {
        // What stops a statement may have ended the transaction by itself. This asks nobody.
        if (sqlite3_get_autocommit(handle_) == 0) {
            sqlite3_progress_handler(handle_, 0, nullptr, nullptr);
            sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr);
        }
        throw;
    }
}

// SQLite tells in a row, not by an error, that another program kept it from doing so.
void SiteDatabase::emptyLog() const {
    if (number("PRAGMA wal_checkpoint(TRUNCATE)") != 0) {
        throw SQLiteError(sqlite3_errstr(SQLITE_BUSY), SQLITE_BUSY);
    }
}

bool SiteDatabase::hasRoomToCompact() const {
    const std::int64_t pages = number("PRAGMA page_count") - number("PRAGMA freelist_count");
    const std::int64_t needed = pages * number("PRAGMA page_size") * halvesOfRoom / 2;
    return hasRoom(file_.has_parent_path() ? file_.parent_path() : ".", needed) &&
           (!folder_ || hasRoom(folder_->path(), needed));
}

// The second database counts as attached. It has no name, and no other may be opened.
void SiteDatabase::vacuum() {
    sqlite3_limit(handle_, SQLITE_LIMIT_ATTACHED, 1);
    const int code = files_.whileKnown([this] { run("VACUUM"); });
    sqlite3_limit(handle_, SQLITE_LIMIT_ATTACHED, 0);
    if (code != SQLITE_OK) {
        throw SQLiteError(sqlite3_errstr(code), code);
    }
}

bool SiteDatabase::compact() {
    emptyLog();
    if (!hasRoomToCompact()) {
        return false;
    }
    vacuum();
    emptyLog();
    checkWholeness();
    return true;
}

}  // namespace browsersweep
