#include "browsersweep/sites/internal/LevelDatabase.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <system_error>
#include <utility>

#include <leveldb/db.h>
#include <leveldb/env.h>
#include <leveldb/iterator.h>
#include <leveldb/options.h>
#include <leveldb/slice.h>
#include <leveldb/status.h>
#include <leveldb/write_batch.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/platform/internal/TemporaryFolder.h"
#include "browsersweep/platform/internal/WantOfRoom.h"
#include "browsersweep/sites/internal/MemoryEnvironment.h"
#include "browsersweep/sites/internal/QuietEnvironment.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view lockName = "LOCK";
constexpr std::size_t bufferSize = std::size_t{16} << 20;
constexpr std::size_t batchSize = std::size_t{1} << 20;

/** What LevelDB itself keeps a database in. It makes its lock and its log anew. */
bool isDatabaseFile(std::string_view name) noexcept {
    return name == "CURRENT" || name.starts_with("MANIFEST-") || name.ends_with(".log") ||
           name.ends_with(".ldb") || name.ends_with(".sst");
}

std::string_view viewOf(const leveldb::Slice& slice) noexcept {
    return {slice.data(), slice.size()};
}

leveldb::Slice sliceOf(std::string_view text) noexcept {
    return {text.data(), text.size()};
}

/** LevelDB does not tell why a file could not be read or written: mostly for want of room. */
class CopyError : public fs::filesystem_error {
public:
    explicit CopyError(const fs::path& database)
        : filesystem_error("cannot read or write a copy of the database", database,
                           std::make_error_code(std::errc::io_error)) {}
};

bool mayBeWantOfRoom(const fs::filesystem_error& error) noexcept {
    return isWantOfRoom(error.code()) || dynamic_cast<const CopyError*>(&error) != nullptr;
}

/** Databases of sites' storage are rarely larger than a few megabytes. */
constexpr std::uint64_t mostInMemory = std::uint64_t{256} << 20;

bool fitsInMemory(const FileManager& fileManager, const fs::path& database) {
    std::uint64_t sum = 0;
    for (const FolderEntry& entry : fileManager.entries(database)) {
        sum += isDatabaseFile(entry.name) ? std::min(entry.size, mostInMemory + 1) : 0;
    }
    return sum <= mostInMemory;
}

/** Does something on the disk or, where there is no room on it, in memory if that has. */
template <typename OnDisk, typename InMemory>
auto whereThereIsRoom(const FileManager& fileManager, const fs::path& database, OnDisk onDisk,
                      InMemory inMemory) {
    try {
        return onDisk();
    } catch (const fs::filesystem_error& error) {
        if (!mayBeWantOfRoom(error) || !fitsInMemory(fileManager, database)) {
            throw;
        }
    }
    return inMemory();
}

/** The copies have other paths than the database: errors name the database alone. */
void require(const leveldb::Status& status, const fs::path& database) {
    if (status.IsIOError()) {
        throw CopyError(database);
    }
    if (!status.ok()) {
        throw DecodingError::dataCorrupted("not a sound database of LevelDB");
    }
}

/** A damaged table may ask for more memory than there is. */
template <typename Deed>
auto withinMemory(Deed deed) {
    try {
        return deed();
    } catch (const std::bad_alloc&) {
        throw DecodingError::dataCorrupted("a database of LevelDB that takes more memory than is");
    }
}

}  // namespace

/** An open database, all of whose work is done when it goes away. */
class LevelDatabase::OpenDatabase {
public:
    OpenDatabase(leveldb::Env& files, const fs::path& folder, bool isNew, fs::path database)
        : database_(std::move(database)), environment_(files) {
        leveldb::Options options;
        options.env = &environment_;
        options.create_if_missing = isNew;
        options.error_if_exists = isNew;
        options.paranoid_checks = true;
        options.reuse_logs = !isNew;  // saves a table of what a log holds
        options.write_buffer_size = bufferSize;
        leveldb::DB* opened = nullptr;
        const leveldb::Status status = leveldb::DB::Open(options, folder.string(), &opened);
        opened_.reset(opened);
        require(status, database_);
    }
    OpenDatabase(const OpenDatabase&) = delete;
    OpenDatabase& operator=(const OpenDatabase&) = delete;

    // Closing waits for work that waits. Where that ends with an exception LevelDB is left as it
    // is: nobody may wait for its lock any more.
    ~OpenDatabase() {
        try {
            environment_.refuseNewFiles();
            environment_.doWaitingWork();
        } catch (...) {
            static_cast<void>(opened_.release());
        }
    }

    void read(const LevelDatabase::Visit& visit) const {
        leveldb::ReadOptions options;
        options.verify_checksums = true;
        options.fill_cache = false;
        const std::unique_ptr<leveldb::Iterator> record(opened_->NewIterator(options));
        for (record->SeekToFirst(); record->Valid(); record->Next()) {
            visit(viewOf(record->key()), viewOf(record->value()));
        }
        require(record->status(), database_);
    }

    void put(std::string_view key, std::string_view value) {
        batch_.Put(sliceOf(key), sliceOf(value));
        if (batch_.ApproximateSize() > batchSize) {
            write();
        }
    }

    /** LevelDB waits for nobody as long as the work that it leaves is done before the next write.
     */
    void write() {
        require(opened_->Write({}, &batch_), database_);
        batch_.Clear();
        environment_.doWaitingWork();
    }

private:
    fs::path database_;
    QuietEnvironment environment_;
    std::unique_ptr<leveldb::DB> opened_;
    leveldb::WriteBatch batch_;
};

/** A private copy, open. Its parts go in the reverse order. */
struct LevelDatabase::Copy {
    std::unique_ptr<TemporaryFolder> folder;      // null where the files are in memory
    std::unique_ptr<MemoryEnvironment> memory{};  // null where they are in the folder
    std::unique_ptr<OpenDatabase> database{};
};

LevelDatabase::LevelDatabase(fs::path folder, std::shared_ptr<const FileManager> fileManager)
    : folder_(std::move(folder)), fileManager_(std::move(fileManager)) {}

bool LevelDatabase::exists() const {
    const auto entries = fileManager_->entries(folder_);
    const auto isPart = [](const FolderEntry& entry) { return isDatabaseFile(entry.name); };
    for (const FolderEntry& entry : entries) {
        if (isPart(entry) && entry.kind != FolderEntry::Kind::file) {
            throw fs::filesystem_error("not a regular file", folder_ / entry.name,
                                       std::make_error_code(std::errc::invalid_argument));
        }
    }
    return std::any_of(entries.begin(), entries.end(), isPart);
}

LevelDatabase::Copy LevelDatabase::copyOnDisk() const {
    Copy copy{std::make_unique<TemporaryFolder>(fileManager_)};
    for (const FolderEntry& entry : fileManager_->entries(folder_)) {
        if (isDatabaseFile(entry.name)) {
            fileManager_->copy(folder_ / entry.name, copy.folder->path() / entry.name);
        }
    }
    copy.database = std::make_unique<OpenDatabase>(*leveldb::Env::Default(), copy.folder->path(),
                                                   false, folder_);
    return copy;
}

LevelDatabase::Copy LevelDatabase::copyInMemory() const {
    Copy copy{nullptr, std::make_unique<MemoryEnvironment>()};
    for (const FolderEntry& entry : fileManager_->entries(folder_)) {
        if (isDatabaseFile(entry.name)) {
            copy.memory->add(entry.name, fileManager_->contents(folder_ / entry.name));
        }
    }
    copy.database =
        std::make_unique<OpenDatabase>(*copy.memory, MemoryEnvironment::folder, false, folder_);
    return copy;
}

void LevelDatabase::read(const Visit& visit) const {
    if (!exists()) {
        return;
    }
    const auto control = fileManager_->control();
    withinMemory([&] {
        const Copy copy = whereThereIsRoom(
            *fileManager_, folder_, [this] { return copyOnDisk(); },
            [this] { return copyInMemory(); });
        copy.database->read([&](std::string_view key, std::string_view value) {
            continueOrThrow(control.get());
            visit(key, value);
        });
    });
}

void LevelDatabase::fill(OpenDatabase& made, const Stays& stays) const {
    read([&](std::string_view key, std::string_view value) {
        if (stays(key, value)) {
            made.put(key, value);
        }
    });
    made.write();
}

bool LevelDatabase::rewriteOnDisk(const Stays& stays, const IsNeeded& isNeeded) const {
    const TemporaryFolder made(fileManager_);
    withinMemory([&] {
        OpenDatabase database(*leveldb::Env::Default(), made.path(), true, folder_);
        fill(database, stays);
    });
    if (!isNeeded()) {
        return false;
    }
    fileManager_->removeFile(made.path() / lockName);
    fileManager_->replaceFolder(folder_, made.path());
    return true;
}

bool LevelDatabase::rewriteInMemory(const Stays& stays, const IsNeeded& isNeeded) const {
    return withinMemory([&] {
        MemoryEnvironment made;
        {
            OpenDatabase database(made, MemoryEnvironment::folder, true, folder_);
            fill(database, stays);
        }
        if (!isNeeded()) {
            return false;
        }
        fileManager_->replaceFolderWithFiles(folder_, made.takeFiles());
        return true;
    });
}

// Nothing of the first attempt is left where the second one begins: there is no room for both.
bool LevelDatabase::rewrite(const Stays& stays, const IsNeeded& isNeeded) const {
    return whereThereIsRoom(
        *fileManager_, folder_, [&] { return rewriteOnDisk(stays, isNeeded); },
        [&] { return rewriteInMemory(stays, isNeeded); });
}

void LevelDatabase::rewrite(const Stays& stays) const {
    rewrite(stays, [] { return true; });
}

}  // namespace browsersweep
