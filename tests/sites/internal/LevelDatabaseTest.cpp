#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>
#include <leveldb/comparator.h>
#include <leveldb/db.h>
#include <leveldb/options.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sites/internal/LevelDatabase.h"

#include "tests/support/FaultyFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/LevelRecords.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

using namespace std::string_literals;

namespace fs = std::filesystem;

using tests::LevelRecords;

class LevelDatabaseTest : public testing::Test {
protected:
    static LevelRecords recordsRead(const LevelDatabase& database) {
        LevelRecords found;
        database.read([&](std::string_view key, std::string_view value) {
            found.emplace(std::string(key), std::string(value));
        });
        return found;
    }

    void keepAllBut(std::string_view gone) const {
        database.rewrite([&](std::string_view key, std::string_view) { return key != gone; });
    }

    /** The names of the files that hold a text, in the profile and in the temporary folder. */
    std::vector<std::string> filesWith(std::string_view text) const {
        std::vector<std::string> found;
        for (const auto& entry : fs::recursive_directory_iterator(home.path())) {
            const bool isFile = entry.is_regular_file();
            if (isFile && tests::readFile(entry.path()).find(text) != std::string::npos) {
                found.push_back(entry.path().lexically_relative(home.path()).string());
            }
        }
        return found;
    }

    bool isTemporaryFolderEmpty() const { return fs::is_empty(manager->temporaryDirectory()); }

    tests::TemporaryFolder home{tests::folderInMemory()};
    fs::path folder = home / "Library/profile/leveldb";
    std::shared_ptr<const FileManager> manager = tests::GuardedFileManager::forFixture(home);
    LevelDatabase database{folder, manager};
    LevelRecords records{{"a", "1"}, {"b", std::string(100'000, 'x')}, {"c\0d"s, "\0"s}};
};

TEST_F(LevelDatabaseTest, readingVisitsEveryLiveRecordAndChangesNoByte) {
    tests::writeLevelRecords(folder, records);
    tests::eraseLevelRecords(folder, {"a"});
    const auto before = home.snapshot();
    records.erase("a");
    EXPECT_EQ(recordsRead(database), records);
    EXPECT_TRUE(isTemporaryFolderEmpty());
    fs::remove(home / "tmp");
    EXPECT_EQ(home.snapshot(), before);
}

TEST_F(LevelDatabaseTest, whatIsMissingOrHoldsOnlyALogOrALockHasNoRecords) {
    EXPECT_FALSE(database.exists());
    home.write("Library/profile/leveldb/LOG", "text");
    home.write("Library/profile/leveldb/LOCK", "");
    EXPECT_FALSE(database.exists());
    EXPECT_TRUE(recordsRead(database).empty());
}

TEST_F(LevelDatabaseTest, rewritingKeepsTheOtherRecordsAndNoByteOfThoseThatGo) {
    records["secret key"] = "secret value";
    records["stale secret"] = "deleted long ago";
    tests::writeLevelRecords(folder, records);
    tests::eraseLevelRecords(folder, {"stale secret"});
    home.write("Library/profile/leveldb/LOG.old", "secret path");
    ASSERT_FALSE(filesWith("secret").empty());
    keepAllBut("secret key");
    records.erase("secret key");
    records.erase("stale secret");
    EXPECT_EQ(tests::readLevelRecords(folder), records);
    EXPECT_TRUE(filesWith("secret").empty());
    EXPECT_TRUE(filesWith("deleted").empty());
    EXPECT_FALSE(fs::exists(folder / "LOG"));
    EXPECT_FALSE(fs::exists(folder / "LOG.old"));
    EXPECT_TRUE(isTemporaryFolderEmpty());
}

TEST_F(LevelDatabaseTest, aLargeDatabaseIsRewrittenInManyFilesWithoutWaiting) {
    records.clear();
    for (int index = 0; index < 50; ++index) {
        std::string value(1 << 20, 'x');
        for (char& letter : value) {  // not to be compressed
            letter = static_cast<char>(&letter - value.data() + index * (&letter - value.data()));
        }
        records.emplace("key" + std::to_string(index), value);
    }
    tests::writeLevelRecords(folder, records);
    keepAllBut("key7");
    records.erase("key7");
    EXPECT_EQ(tests::readLevelRecords(folder), records);
    EXPECT_EQ(recordsRead(database), records);
}

TEST_F(LevelDatabaseTest, aPartOfTheDatabaseThatIsALinkIsAnError) {
    tests::writeLevelRecords(folder, records);
    fs::rename(folder / "CURRENT", home / "elsewhere");
    fs::create_symlink(home / "elsewhere", folder / "CURRENT");
    EXPECT_THROW(database.exists(), fs::filesystem_error);
    EXPECT_THROW(recordsRead(database), fs::filesystem_error);
    EXPECT_THROW(keepAllBut("a"), fs::filesystem_error);
}

TEST_F(LevelDatabaseTest, aFolderBehindALinkIsNotSeen) {
    tests::writeLevelRecords(home / "elsewhere", records);
    fs::create_directories(folder.parent_path());
    fs::create_directory_symlink(home / "elsewhere", folder);
    EXPECT_FALSE(database.exists());
}

class BackwardsComparator : public leveldb::Comparator {
public:
    int Compare(const leveldb::Slice& a, const leveldb::Slice& b) const override {
        return b.compare(a);
    }
    const char* Name() const override { return "idb_cmp1"; }
    void FindShortestSeparator(std::string*, const leveldb::Slice&) const override {}
    void FindShortSuccessor(std::string*) const override {}
};

TEST_F(LevelDatabaseTest, aDatabaseWithAnotherOrderOfKeysIsAnErrorAndStays) {
    const BackwardsComparator backwards;
    leveldb::Options options;
    options.create_if_missing = true;
    options.comparator = &backwards;
    fs::create_directories(folder);
    leveldb::DB* opened = nullptr;
    ASSERT_TRUE(leveldb::DB::Open(options, folder.string(), &opened).ok());
    std::unique_ptr<leveldb::DB> made(opened);
    made->Put({}, "key", "value");
    made = nullptr;
    const auto before = home.snapshot();
    EXPECT_THROW(recordsRead(database), DecodingError);
    EXPECT_THROW(keepAllBut("key"), DecodingError);
    fs::remove_all(home / "tmp");
    EXPECT_EQ(home.snapshot(), before);
}

TEST_F(LevelDatabaseTest, aDamagedDatabaseIsReadWholeOrIsAnErrorAndNeverAnythingElse) {
    records = {{"first", std::string(300, 'a')}, {"last", std::string(300, 'b')}};
    tests::writeLevelRecords(folder, records);
    std::size_t errors = 0;
    for (const FolderEntry& entry : manager->entries(folder)) {
        if (entry.name == "LOG" || entry.name == "LOG.old" || entry.name == "LOCK") {
            continue;
        }
        const std::string whole = tests::readFile(folder / entry.name);
        for (std::size_t place = 0; place < whole.size(); place += 3) {
            std::string damaged = whole;
            damaged[place] = static_cast<char>(~damaged[place]);
            home.write("Library/profile/leveldb/" + entry.name, damaged);
            try {
                for (const auto& [key, value] : recordsRead(database)) {
                    EXPECT_EQ(records[key], value) << entry.name << " " << place;
                }
            } catch (const DecodingError&) {
                ++errors;
            } catch (const fs::filesystem_error&) {
                ++errors;
            }
        }
        home.write("Library/profile/leveldb/" + entry.name, whole);
    }
    EXPECT_GT(errors, 50U);
    EXPECT_TRUE(isTemporaryFolderEmpty());
}

/** The checksum of LevelDB: CRC-32C, turned and moved. */
std::string checksumOf(std::string_view text) {
    constexpr std::uint32_t polynomial = 0x82F63B78;
    constexpr std::uint32_t moved = 0xA282EAD8;
    std::uint32_t rest = ~0U;
    for (const char letter : text) {
        rest ^= static_cast<unsigned char>(letter);
        for (int bit = 0; bit < 8; ++bit) {
            rest = (rest >> 1U) ^ ((rest & 1U) != 0 ? polynomial : 0);
        }
    }
    rest = ~rest;
    std::uint32_t masked = ((rest >> 15U) | (rest << 17U)) + moved;
    std::string bytes;
    for (int count = 0; count < 4; ++count, masked >>= 8U) {
        bytes += static_cast<char>(masked);
    }
    return bytes;
}

std::uint64_t takeNumber(std::string_view& text) {
    std::uint64_t number = 0;
    for (unsigned shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(text.front());
        text.remove_prefix(1);
        number |= std::uint64_t{byte & 0x7FU} << shift;
        if (byte < 0x80) {
            return number;
        }
    }
}

std::string numberAsText(std::uint64_t number) {
    std::string text;
    for (; number >= 0x80; number >>= 7U) {
        text += static_cast<char>(number | 0x80U);
    }
    return text + static_cast<char>(number);
}

/** A table whose index, sound by its checksum, says that the records lie there and are as long. */
std::string withRecordsAt(std::string table, std::uint64_t offset, std::uint64_t length) {
    const std::size_t footer = table.size() - 48;
    std::string_view rest = std::string_view(table).substr(footer);
    const std::string metaindex = numberAsText(takeNumber(rest)) + numberAsText(takeNumber(rest));
    const std::uint64_t index = takeNumber(rest);
    const std::string place = numberAsText(offset) + numberAsText(length);
    const std::string key = "z" + std::string(8, '\xFF');
    std::string block = std::string(1, '\0') + static_cast<char>(key.size()) +
                        static_cast<char>(place.size()) + key + place +
                        std::string("\0\0\0\0\1\0\0\0", 8) + std::string(1, '\0');
    const std::string handle = numberAsText(index) + numberAsText(block.size() - 1);
    block += checksumOf(block);
    table.replace(index, block.size(), block);
    table.replace(footer, 40, std::string(40, '\0'));
    table.replace(footer, metaindex.size() + handle.size(), metaindex + handle);
    return table;
}

TEST_F(LevelDatabaseTest, aTableWhoseIndexLeadsAnywhereIsAnErrorAndDoesNotEndTheProcess) {
    records = {{std::string(60, 'k'), std::string(5000, 'v')}, {std::string(60, 'l'), "2"}};
    tests::writeLevelRecords(folder, records);
    for (const FolderEntry& entry : manager->entries(folder)) {
        if (!entry.name.ends_with(".ldb")) {
            continue;
        }
        const std::string whole = tests::readFile(folder / entry.name);
        std::string_view footer = std::string_view(whole).substr(whole.size() - 48);
        const std::uint64_t endOfRecords = takeNumber(footer) - 5;  // a mark and a checksum follow
        home.write("Library/profile/leveldb/" + entry.name, withRecordsAt(whole, 0, endOfRecords));
        EXPECT_EQ(recordsRead(database), records);  // so is the index itself made
        for (const std::uint64_t length :
             {std::uint64_t{100'000}, std::uint64_t{1} << 36U, std::uint64_t{1} << 62U,
              ~std::uint64_t{0} - 4, ~std::uint64_t{0}}) {
            for (const std::uint64_t offset : {std::uint64_t{0}, ~std::uint64_t{0} - 90}) {
                home.write("Library/profile/leveldb/" + entry.name,
                           withRecordsAt(whole, offset, length));
                EXPECT_THROW(recordsRead(database), DecodingError) << offset << " " << length;
            }
        }
        home.write("Library/profile/leveldb/" + entry.name, whole);
    }
    EXPECT_EQ(recordsRead(database), records);
    EXPECT_TRUE(isTemporaryFolderEmpty());
}

TEST_F(LevelDatabaseTest, aDatabaseThatLacksAFileOrItsEndIsAnErrorOrHasFewerRecords) {
    tests::writeLevelRecords(folder, records);
    for (const FolderEntry& entry : manager->entries(folder)) {
        if (entry.name.ends_with(".ldb") || entry.name.starts_with("MANIFEST")) {
            const std::string whole = tests::readFile(folder / entry.name);
            home.write("Library/profile/leveldb/" + entry.name, whole.substr(0, whole.size() / 2));
            EXPECT_THROW(recordsRead(database), DecodingError) << entry.name;
            fs::remove(folder / entry.name);
            EXPECT_ANY_THROW(recordsRead(database)) << entry.name;
            home.write("Library/profile/leveldb/" + entry.name, whole);
        }
    }
    EXPECT_EQ(recordsRead(database), records);
}

TEST_F(LevelDatabaseTest, whicheverOperationFailsTheDatabaseIsOldOrNewAndNothingStaysBeside) {
    tests::writeLevelRecords(folder, records);
    LevelRecords after = records;
    after.erase("a");
    std::size_t operations = 0;
    for (std::size_t fault = 0; fault == 0 || fault <= operations; ++fault) {
        const tests::TemporaryFolder place;
        fs::copy(home / "Library", place / "Library", fs::copy_options::recursive);
        const auto faulty = std::make_shared<tests::FaultyFileManager>(
            tests::GuardedFileManager::forFixture(place), tests::Fault{fault});
        const LevelDatabase copy(place / "Library/profile/leveldb", faulty);
        try {
            copy.rewrite([](std::string_view key, std::string_view) { return key != "a"; });
            EXPECT_EQ(tests::readLevelRecords(copy.folder()), after) << fault;
        } catch (const fs::filesystem_error&) {
            EXPECT_EQ(tests::readLevelRecords(copy.folder()), records) << fault;
        }
        operations = fault == 0 ? faulty->operationCount() : operations;
    }
    EXPECT_GT(operations, 5U);
}

TEST_F(LevelDatabaseTest, readingAsksWhetherToGoOnAndLeavesNothing) {
    tests::writeLevelRecords(folder, records);
    const auto control = std::make_shared<OperationControl>(
        [](const OperationProgress& done) { return done.bytes > 0; });
    const LevelDatabase stopped(folder, FileManager::forHome(home.path(), control));
    EXPECT_THROW(recordsRead(stopped), OperationCancelled);
}

}  // namespace
}  // namespace browsersweep
