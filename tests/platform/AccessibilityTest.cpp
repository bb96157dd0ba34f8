#include <filesystem>
#include <set>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/platform/Accessibility.h"

#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

TEST(Accessibility, aFileAndAFolderThatCanBeOpenedAreReachable) {
    const tests::TemporaryFolder folder;
    folder.write("folder/file", "x");
    fs::create_symlink("folder", folder / "link");
    for (const char* path : {"folder", "folder/file", "link", "link/file"}) {
        EXPECT_EQ(accessibility(folder / path), Accessibility::reachable) << path;
    }
}

TEST(Accessibility, aPipeIsNotWaitedFor) {
    const tests::TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(accessibility(folder / "pipe"), Accessibility::reachable);
}

TEST(Accessibility, whatIsNotThereIsMissing) {
    const tests::TemporaryFolder folder;
    folder.write("file", "x");
    fs::create_symlink("nowhere", folder / "dangling");
    for (const char* path : {"gone", "gone/below/it", "file/below", "dangling"}) {
        EXPECT_EQ(accessibility(folder / path), Accessibility::missing) << path;
    }
    EXPECT_EQ(accessibility("a path that nobody has/file"), Accessibility::missing);
}

TEST(Accessibility, permissionsAreTold) {
    if (::geteuid() == 0) {
        GTEST_SKIP() << "root may read everything";
    }
    const tests::TemporaryFolder folder;
    fs::permissions(folder.write("file", "x"), fs::perms::none);
    folder.write("locked/file", "x");
    fs::permissions(folder / "locked", fs::perms::none);
    EXPECT_EQ(accessibility(folder / "file"), Accessibility::deniedByPermissions);
    EXPECT_EQ(accessibility(folder / "locked"), Accessibility::deniedByPermissions);
    EXPECT_EQ(accessibility(folder / "locked/file"), Accessibility::deniedByPermissions);
    fs::permissions(folder / "locked", fs::perms::owner_all);
}

TEST(Accessibility, anyOtherErrorIsThrown) {
    const tests::TemporaryFolder folder;
    fs::create_symlink("loop", folder / "loop");
    try {
        accessibility(folder / "loop");
        FAIL() << "no error";
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.code(), std::errc::too_many_symbolic_link_levels);
        EXPECT_EQ(error.path1(), folder / "loop");
    }
    fs::remove(folder / "loop");
}

TEST(Accessibility, everyCaseHasANameAndAllButOneASentence) {
    std::set<std::string_view> names;
    for (const Accessibility value :
         {Accessibility::reachable, Accessibility::missing, Accessibility::deniedByPermissions,
          Accessibility::deniedByPrivacyProtection}) {
        names.insert(rawValue(value));
        EXPECT_EQ(explanation(value).empty(), value == Accessibility::reachable);
    }
    EXPECT_EQ(names.size(), 4U);
    EXPECT_EQ(rawValue(Accessibility::deniedByPrivacyProtection), "deniedByPrivacyProtection");
}

}  // namespace
}  // namespace browsersweep
