#include "browsersweep/sites/internal/MemoryEnvironment.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include <leveldb/slice.h>
#include <leveldb/status.h>

namespace browsersweep {
namespace {

using Contents = std::shared_ptr<Bytes>;

leveldb::Status missing(const std::string& path) {
    return leveldb::Status::NotFound(path, "no such file");
}

/** As much as there is from a place on, copied: what is written later may move the rest. */
leveldb::Slice part(const Bytes& bytes, std::size_t place, std::size_t count, char* scratch) {
    const std::size_t begin = std::min(place, bytes.size());
    const std::size_t length = std::min(count, bytes.size() - begin);
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(begin), length, scratch);
    return {scratch, length};
}

std::string pathOf(const std::string& name) {
    return MemoryEnvironment::folder + ("/" + name);
}

class Sequence : public leveldb::SequentialFile {
public:
    explicit Sequence(Contents contents) : contents_(std::move(contents)) {}

    leveldb::Status Read(std::size_t count, leveldb::Slice* result, char* scratch) override {
        *result = part(*contents_, place_, count, scratch);
        place_ += result->size();
        return leveldb::Status::OK();
    }
    leveldb::Status Skip(std::uint64_t count) override {
        place_ += static_cast<std::size_t>(count);
        return leveldb::Status::OK();
    }

private:
    Contents contents_;
    std::size_t place_ = 0;
};

class RandomAccess : public leveldb::RandomAccessFile {
public:
    explicit RandomAccess(Contents contents) : contents_(std::move(contents)) {}

    leveldb::Status Read(std::uint64_t offset, std::size_t count, leveldb::Slice* result,
                         char* scratch) const override {
        *result = part(*contents_, static_cast<std::size_t>(offset), count, scratch);
        return leveldb::Status::OK();
    }

private:
    Contents contents_;
};

class Writing : public leveldb::WritableFile {
public:
    explicit Writing(Contents contents) : contents_(std::move(contents)) {}

    leveldb::Status Append(const leveldb::Slice& data) override {
        contents_->insert(contents_->end(), data.data(), data.data() + data.size());
        return leveldb::Status::OK();
    }
    leveldb::Status Close() override { return leveldb::Status::OK(); }
    leveldb::Status Flush() override { return leveldb::Status::OK(); }
    leveldb::Status Sync() override { return leveldb::Status::OK(); }

private:
    Contents contents_;
};

}  // namespace

MemoryEnvironment::MemoryEnvironment() : EnvWrapper(leveldb::Env::Default()) {}

MemoryEnvironment::~MemoryEnvironment() = default;

void MemoryEnvironment::add(const std::string& name, Bytes contents) {
    files_[pathOf(name)] = std::make_shared<Bytes>(std::move(contents));
}

std::map<std::string, Bytes> MemoryEnvironment::takeFiles() {
    std::map<std::string, Bytes> taken;
    for (auto& [path, contents] : std::exchange(files_, {})) {
        taken.emplace(path.substr(pathOf("").size()), std::move(*contents));
    }
    return taken;
}

MemoryEnvironment::Contents MemoryEnvironment::find(const std::string& path) const {
    const auto found = files_.find(path);
    return found == files_.end() ? nullptr : found->second;
}

leveldb::Status MemoryEnvironment::NewSequentialFile(const std::string& path,
                                                     leveldb::SequentialFile** result) {
    Contents contents = find(path);
    if (!contents) {
        return missing(path);
    }
    *result = std::make_unique<Sequence>(std::move(contents)).release();
    return leveldb::Status::OK();
}

leveldb::Status MemoryEnvironment::NewRandomAccessFile(const std::string& path,
                                                       leveldb::RandomAccessFile** result) {
    Contents contents = find(path);
    if (!contents) {
        return missing(path);
    }
    *result = std::make_unique<RandomAccess>(std::move(contents)).release();
    return leveldb::Status::OK();
}

leveldb::Status MemoryEnvironment::NewWritableFile(const std::string& path,
                                                   leveldb::WritableFile** result) {
    files_[path] = std::make_shared<Bytes>();
    return NewAppendableFile(path, result);
}

leveldb::Status MemoryEnvironment::NewAppendableFile(const std::string& path,
                                                     leveldb::WritableFile** result) {
    Contents& contents = files_[path];
    if (!contents) {
        contents = std::make_shared<Bytes>();
    }
    *result = std::make_unique<Writing>(contents).release();
    return leveldb::Status::OK();
}

bool MemoryEnvironment::FileExists(const std::string& path) {
    return files_.contains(path);
}

leveldb::Status MemoryEnvironment::GetChildren(const std::string& path,
                                               std::vector<std::string>* result) {
    const std::string start = path + "/";
    result->clear();
    for (const auto& entry : files_) {
        if (entry.first.starts_with(start)) {
            result->push_back(entry.first.substr(start.size()));
        }
    }
    return leveldb::Status::OK();
}

leveldb::Status MemoryEnvironment::RemoveFile(const std::string& path) {
    return files_.erase(path) == 0 ? missing(path) : leveldb::Status::OK();
}

leveldb::Status MemoryEnvironment::CreateDir(const std::string& /*path*/) {
    return leveldb::Status::OK();
}

leveldb::Status MemoryEnvironment::RemoveDir(const std::string& /*path*/) {
    return leveldb::Status::OK();
}

leveldb::Status MemoryEnvironment::GetFileSize(const std::string& path, std::uint64_t* size) {
    const Contents contents = find(path);
    *size = contents ? contents->size() : 0;
    return contents ? leveldb::Status::OK() : missing(path);
}

leveldb::Status MemoryEnvironment::RenameFile(const std::string& from, const std::string& to) {
    Contents contents = find(from);
    if (!contents) {
        return missing(from);
    }
    files_.erase(from);
    files_[to] = std::move(contents);
    return leveldb::Status::OK();
}

// Nobody else knows of the files. LevelDB deletes the lock by `UnlockFile` alone.
leveldb::Status MemoryEnvironment::LockFile(const std::string& /*path*/, leveldb::FileLock** lock) {
    *lock = std::make_unique<leveldb::FileLock>().release();
    return leveldb::Status::OK();
}

leveldb::Status MemoryEnvironment::UnlockFile(leveldb::FileLock* lock) {
    const std::unique_ptr<leveldb::FileLock> owned(lock);
    return leveldb::Status::OK();
}

}  // namespace browsersweep
