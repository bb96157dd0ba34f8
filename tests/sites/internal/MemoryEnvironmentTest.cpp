#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <leveldb/db.h>
#include <leveldb/options.h>

#include "browsersweep/sites/internal/MemoryEnvironment.h"

#include "tests/support/Bytes.h"

namespace browsersweep {
namespace {

std::string pathOf(const std::string& name) {
    return MemoryEnvironment::folder + ("/" + name);
}

std::unique_ptr<leveldb::DB> opened(MemoryEnvironment& memory) {
    leveldb::Options options;
    options.env = &memory;
    options.create_if_missing = true;
    options.write_buffer_size = 1 << 16;
    leveldb::DB* database = nullptr;
    EXPECT_TRUE(leveldb::DB::Open(options, MemoryEnvironment::folder, &database).ok());
    return std::unique_ptr<leveldb::DB>(database);
}

TEST(MemoryEnvironment, aDatabaseInItIsReadAgainAlsoFromItsFiles) {
    MemoryEnvironment memory;
    const std::string value(1000, 'x');
    {
        const auto database = opened(memory);
        for (int number = 0; number < 1000; ++number) {
            ASSERT_TRUE(database->Put({}, "key" + std::to_string(number), value).ok());
        }
        database->CompactRange(nullptr, nullptr);
    }
    MemoryEnvironment other;
    for (auto& [name, contents] : memory.takeFiles()) {
        other.add(name, contents);
    }
    const auto database = opened(other);
    std::string found;
    for (int number = 0; number < 1000; ++number) {
        ASSERT_TRUE(database->Get({}, "key" + std::to_string(number), &found).ok());
        EXPECT_EQ(found, value);
    }
    std::vector<std::string> left;
    EXPECT_TRUE(memory.GetChildren(MemoryEnvironment::folder, &left).ok());
    EXPECT_EQ(left, std::vector<std::string>{});
}

TEST(MemoryEnvironment, whatIsMissingIsNotFound) {
    MemoryEnvironment memory;
    leveldb::SequentialFile* sequence = nullptr;
    leveldb::RandomAccessFile* random = nullptr;
    std::uint64_t size = 1;
    EXPECT_TRUE(memory.NewSequentialFile(pathOf("a"), &sequence).IsNotFound());
    EXPECT_TRUE(memory.NewRandomAccessFile(pathOf("a"), &random).IsNotFound());
    EXPECT_TRUE(memory.RemoveFile(pathOf("a")).IsNotFound());
    EXPECT_TRUE(memory.RenameFile(pathOf("a"), pathOf("b")).IsNotFound());
    EXPECT_TRUE(memory.GetFileSize(pathOf("a"), &size).IsNotFound());
    EXPECT_FALSE(memory.FileExists(pathOf("a")));
}

TEST(MemoryEnvironment, aFileIsReadInPiecesAndNotBeyondItsEnd) {
    MemoryEnvironment memory;
    memory.add("a", tests::bytes("0123456789"));
    leveldb::SequentialFile* made = nullptr;
    ASSERT_TRUE(memory.NewSequentialFile(pathOf("a"), &made).ok());
    const std::unique_ptr<leveldb::SequentialFile> file(made);
    std::string scratch(20, '\0');
    leveldb::Slice read;
    ASSERT_TRUE(file->Read(4, &read, scratch.data()).ok());
    EXPECT_EQ(read.ToString(), "0123");
    ASSERT_TRUE(file->Skip(3).ok());
    ASSERT_TRUE(file->Read(20, &read, scratch.data()).ok());
    EXPECT_EQ(read.ToString(), "789");
    ASSERT_TRUE(file->Skip(3).ok());
    ASSERT_TRUE(file->Read(20, &read, scratch.data()).ok());
    EXPECT_EQ(read.ToString(), "");
}

TEST(MemoryEnvironment, whatIsAppendedFollowsAndWhatIsWrittenAnewBegins) {
    MemoryEnvironment memory;
    memory.add("a", tests::bytes("old"));
    leveldb::WritableFile* made = nullptr;
    ASSERT_TRUE(memory.NewAppendableFile(pathOf("a"), &made).ok());
    const std::unique_ptr<leveldb::WritableFile> appended(made);
    ASSERT_TRUE(appended->Append("new").ok());
    ASSERT_TRUE(memory.NewWritableFile(pathOf("b"), &made).ok());
    const std::unique_ptr<leveldb::WritableFile> written(made);
    ASSERT_TRUE(written->Append("b").ok());
    ASSERT_TRUE(memory.RenameFile(pathOf("b"), pathOf("c")).ok());
    EXPECT_EQ(memory.takeFiles(), (std::map<std::string, Bytes>{{"a", tests::bytes("oldnew")},
                                                                {"c", tests::bytes("b")}}));
}

}  // namespace
}  // namespace browsersweep
