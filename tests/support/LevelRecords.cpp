#include "tests/support/LevelRecords.h"

#include <memory>
#include <stdexcept>

#include <leveldb/db.h>
#include <leveldb/iterator.h>
#include <leveldb/options.h>

#include "tests/support/TemporaryFolder.h"

namespace browsersweep::tests {
namespace {

namespace fs = std::filesystem;

std::unique_ptr<leveldb::DB> opened(const fs::path& folder, bool isNew) {
    leveldb::Options options;
    options.create_if_missing = isNew;
    leveldb::DB* database = nullptr;
    const leveldb::Status status = leveldb::DB::Open(options, folder.string(), &database);
    if (!status.ok()) {
        throw std::runtime_error(status.ToString());
    }
    return std::unique_ptr<leveldb::DB>(database);
}

}  // namespace

void writeLevelRecords(const fs::path& folder, const LevelRecords& records) {
    fs::create_directories(folder);
    std::size_t count = 0;
    auto database = opened(folder, true);
    for (const auto& [key, value] : records) {
        database->Put({}, key, value);
        if (++count == (records.size() + 1) / 2) {
            database = nullptr;  // opening again makes a table of the log
            database = opened(folder, false);
        }
    }
}

void eraseLevelRecords(const fs::path& folder, const std::vector<std::string>& keys) {
    const auto database = opened(folder, false);
    for (const std::string& key : keys) {
        database->Delete({}, key);
    }
}

LevelRecords readLevelRecords(const fs::path& folder) {
    const TemporaryFolder place;
    fs::copy(folder, place / "copy");
    LevelRecords records;
    const auto database = opened(place / "copy", false);
    const std::unique_ptr<leveldb::Iterator> record(database->NewIterator({}));
    for (record->SeekToFirst(); record->Valid(); record->Next()) {
        records.emplace(record->key().ToString(), record->value().ToString());
    }
    if (!record->status().ok()) {
        throw std::runtime_error(record->status().ToString());
    }
    return records;
}

}  // namespace browsersweep::tests
