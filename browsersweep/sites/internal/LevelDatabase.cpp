#include "browsersweep/sites/internal/LevelDatabase.h"

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <system_error>
#include <utility>

#include <leveldb/db.h>
#include <leveldb/iterator.h>
#include <leveldb/options.h>
#include <leveldb/slice.h>
#include <leveldb/status.h>
#include <leveldb/write_batch.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/platform/internal/TemporaryFolder.h"
#include "browsersweep/sites/internal/QuietEnvironment.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

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

/** The copies have other paths than the database: errors name the database alone. */
void require(const leveldb::Status& status, const fs::path& database) {
    if (status.IsIOError()) {
        throw fs::filesystem_error("cannot read or write a copy of the database", database,
                                   std::make_error_code(std::errc::io_error));
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

/** An open database, all of whose work is done when it goes away. */
class OpenDatabase {
public:
    OpenDatabase(const fs::path& folder, bool isNew, fs::path database)
        : database_(std::move(database)) {
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

}  // namespace

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

void LevelDatabase::copyInto(const fs::path& target) const {
    for (const FolderEntry& entry : fileManager_->entries(folder_)) {
        if (isDatabaseFile(entry.name)) {
            fileManager_->copy(folder_ / entry.name, target / entry.name);
        }
    }
}

void LevelDatabase::read(const Visit& visit) const {
    if (!exists()) {
        return;
    }
    const auto control = fileManager_->control();
    const TemporaryFolder copy(fileManager_);
    copyInto(copy.path());
    withinMemory([&] {
        const OpenDatabase database(copy.path(), false, folder_);
        database.read([&](std::string_view key, std::string_view value) {
            continueOrThrow(control.get());
            visit(key, value);
        });
    });
}

void LevelDatabase::rewrite(const Stays& stays) const {
    const TemporaryFolder made(fileManager_);
    withinMemory([&] {
        OpenDatabase database(made.path(), true, folder_);
        read([&](std::string_view key, std::string_view value) {
            if (stays(key, value)) {
                database.put(key, value);
            }
        });
        database.write();
    });
    fileManager_->removeFile(made.path() / "LOCK");
    fileManager_->replaceFolder(folder_, made.path());
}

}  // namespace browsersweep
