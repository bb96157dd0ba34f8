#include <cerrno>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "cli/SmallFile.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep::cli {
namespace {

TEST(SmallFile, isReadWholeUpToTheLimit) {
    const tests::TemporaryFolder folder;
    const auto found = readSmallFile(folder.write("f", "12345"), 5);
    EXPECT_EQ(found.text, "12345");
    EXPECT_TRUE(found.isRegularFile);
    EXPECT_FALSE(found.isTooLarge);
    EXPECT_EQ(found.error, 0);
    EXPECT_TRUE(readSmallFile(folder / "f", 4).isTooLarge);
    EXPECT_EQ(readSmallFile(folder.write("empty", ""), 4).text, "");
}

TEST(SmallFile, ofNoRegularFileReadsNothing) {
    const tests::TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(readSmallFile(folder / "pipe", 9).isRegularFile);
    EXPECT_FALSE(readSmallFile(folder.path(), 9).isRegularFile);
    EXPECT_EQ(readSmallFile(folder / "missing", 9).error, ENOENT);
}

}  // namespace
}  // namespace browsersweep::cli
