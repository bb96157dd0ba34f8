#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "browsersweep/platform/FileManager.h"

#include "tests/support/TemporaryFolder.h"

namespace browsersweep {

TEST(FileCopy, theCopyOfALockedFileIsNotLocked) {
    const tests::TemporaryFolder folder;
    const auto manager = FileManager::forHome(folder.path());
    const auto file = folder.write("file", "contents");
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    ASSERT_EQ(::chflags(file.c_str(), UF_IMMUTABLE), 0);
    manager->copy(file, folder / "copy");
    ::chflags(file.c_str(), 0);
    EXPECT_EQ(tests::readFile(folder / "copy"), "contents");
    struct stat status = {};
    ASSERT_EQ(::stat((folder / "copy").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    manager->removeFile(folder / "copy");
    EXPECT_FALSE(std::filesystem::exists(folder / "copy"));
}

}  // namespace browsersweep
