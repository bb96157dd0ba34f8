#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sqlite/internal/MemoryFile.h"

namespace browsersweep {
namespace {

bool write(MemoryFile& file, const std::string& text, std::uint64_t offset) {
    return file.write(std::as_bytes(std::span(text)), offset);
}

/** What is read, with a point for each zero, and a mark at its end where there was no more. */
std::string read(const MemoryFile& file, std::size_t count, std::uint64_t offset) {
    std::vector<std::byte> bytes(count, std::byte{'?'});
    const bool isWhole = file.read(bytes, offset);
    std::string text;
    for (const std::byte each : bytes) {
        text.push_back(each == std::byte{} ? '.' : static_cast<char>(each));
    }
    return text + (isWhole ? "" : "|");
}

TEST(MemoryFile, givesBackWhatWasWrittenAndZerosBeyondIt) {
    MemoryFile file;
    EXPECT_EQ(read(file, 2, 0), "..|");
    EXPECT_TRUE(write(file, "abcdef", 0));
    EXPECT_EQ(file.size(), 6U);
    EXPECT_EQ(read(file, 6, 0), "abcdef");
    EXPECT_EQ(read(file, 2, 3), "de");
    EXPECT_EQ(read(file, 4, 4), "ef..|");
    EXPECT_EQ(read(file, 2, 6), "..|");
    EXPECT_EQ(read(file, 2, 100), "..|");
    EXPECT_EQ(read(file, 0, 6), "");
}

TEST(MemoryFile, writesOverWhatIsThereAndFillsAGapWithZeros) {
    MemoryFile file;
    EXPECT_TRUE(write(file, "abcdef", 0));
    EXPECT_TRUE(write(file, "XY", 2));
    EXPECT_EQ(read(file, 6, 0), "abXYef");
    EXPECT_EQ(file.size(), 6U);
    EXPECT_TRUE(write(file, "Z", 8));
    EXPECT_EQ(read(file, 9, 0), "abXYef..Z");
    EXPECT_EQ(file.size(), 9U);
}

TEST(MemoryFile, isCutButNeverMadeLonger) {
    MemoryFile file;
    EXPECT_TRUE(write(file, "abcdef", 0));
    file.truncate(10);
    EXPECT_EQ(file.size(), 6U);
    file.truncate(6);
    EXPECT_EQ(read(file, 6, 0), "abcdef");
    file.truncate(2);
    EXPECT_EQ(read(file, 3, 0), "ab.|");
    file.truncate(0);
    EXPECT_EQ(file.size(), 0U);
}

TEST(MemoryFile, isMadeLongerByWhatIsPutAtItsEnd) {
    MemoryFile file;
    EXPECT_TRUE(write(file, "ab", 0));
    EXPECT_TRUE(write(file, "cd", 2));
    EXPECT_EQ(file.size(), 4U);
}

TEST(MemoryFile, endsAtItsCapacity) {
    MemoryFile file;
    EXPECT_EQ(MemoryFile::capacity, 268435456U);
    EXPECT_FALSE(write(file, "ab", MemoryFile::capacity - 1));
    EXPECT_FALSE(write(file, "a", MemoryFile::capacity + 1));
    EXPECT_FALSE(write(file, "", MemoryFile::capacity + 1));
    EXPECT_FALSE(write(file, "a", UINT64_MAX));
    EXPECT_EQ(file.size(), 0U);
    EXPECT_TRUE(write(file, "ab", MemoryFile::capacity - 2));
    EXPECT_EQ(file.size(), MemoryFile::capacity);
}

}  // namespace
}  // namespace browsersweep
