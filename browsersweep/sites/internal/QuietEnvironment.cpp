#include "browsersweep/sites/internal/QuietEnvironment.h"

#include <array>
#include <cstdarg>
#include <cstdint>
#include <optional>
#include <string_view>

#include <leveldb/slice.h>
#include <leveldb/status.h>

#include "browsersweep/sites/internal/Varint.h"

namespace browsersweep {
namespace {

/** Tells nobody anything: what LevelDB writes down has paths and times. */
class SilentLog : public leveldb::Logger {
public:
    void Logv(const char* /*format*/, std::va_list /*arguments*/) override {}
};

/**
 * A table's file. LevelDB believes what a table says of the place and length of its parts, and
 * makes room for them before it reads: the two that its last bytes name are looked at here, and
 * nothing is read from beyond the end.
 */
class BoundedFile : public leveldb::RandomAccessFile {
public:
    BoundedFile(std::unique_ptr<leveldb::RandomAccessFile> file, std::uint64_t size)
        : file_(std::move(file)), size_(size) {}

    leveldb::Status Read(std::uint64_t offset, std::size_t count, leveldb::Slice* result,
                         char* scratch) const override {
        if (!isWithin(offset, count)) {
            return leveldb::Status::Corruption("part of a table beyond its end");
        }
        leveldb::Status status = file_->Read(offset, count, result, scratch);
        const bool isFooter = count == footerSize && offset + count == size_;
        if (status.ok() && isFooter && !isSoundFooter({result->data(), result->size()})) {
            return leveldb::Status::Corruption("footer of a table that names what is not there");
        }
        return status;
    }

private:
    static constexpr std::size_t footerSize = 48;

    bool isWithin(std::uint64_t offset, std::uint64_t count) const noexcept {
        return offset <= size_ && count <= size_ - offset;
    }

    bool isSoundFooter(std::string_view footer) const noexcept {
        for (int part = 0; part < 2; ++part) {
            const auto offset = takeVarint(footer);
            const auto count = takeVarint(footer);
            if (!offset || !count || !isWithin(*offset, *count)) {
                return false;
            }
        }
        return true;
    }

    std::unique_ptr<leveldb::RandomAccessFile> file_;
    std::uint64_t size_;
};

}  // namespace

QuietEnvironment::QuietEnvironment(leveldb::Env& files) : EnvWrapper(&files) {}

QuietEnvironment::~QuietEnvironment() = default;

void QuietEnvironment::doWaitingWork() {
    while (!waiting_.empty()) {
        const auto [function, argument] = waiting_.back();
        waiting_.pop_back();
        function(argument);
    }
}

leveldb::Status QuietEnvironment::NewRandomAccessFile(const std::string& name,
                                                      leveldb::RandomAccessFile** result) {
    std::uint64_t size = 0;
    leveldb::RandomAccessFile* file = nullptr;
    leveldb::Status status = target()->GetFileSize(name, &size);
    if (status.ok()) {
        status = target()->NewRandomAccessFile(name, &file);
    }
    if (status.ok()) {
        std::unique_ptr<leveldb::RandomAccessFile> owned(file);
        *result = std::make_unique<BoundedFile>(std::move(owned), size).release();
    }
    return status;
}

leveldb::Status QuietEnvironment::NewWritableFile(const std::string& name,
                                                  leveldb::WritableFile** result) {
    if (refusesNewFiles_) {
        return leveldb::Status::IOError(name, "not wanted any more");
    }
    return target()->NewWritableFile(name, result);
}

void QuietEnvironment::Schedule(void (*function)(void* argument), void* argument) {
    waiting_.emplace_back(function, argument);
}

leveldb::Status QuietEnvironment::NewLogger(const std::string& /*name*/, leveldb::Logger** result) {
    *result = std::make_unique<SilentLog>().release();
    return leveldb::Status::OK();
}

void QuietEnvironment::SleepForMicroseconds(int /*microseconds*/) {}

}  // namespace browsersweep
