#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sites/internal/StoreFiles.h"

#include "tests/support/Bytes.h"
#include "tests/support/ForwardingFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

/** Says how often a folder was listed. */
class CountedListings : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;

    std::vector<FolderEntry> entries(const fs::path& directory) const override {
        ++count;
        return ForwardingFileManager::entries(directory);
    }

    mutable int count = 0;
};

class StoreFiles : public testing::Test {
protected:
    tests::TemporaryFolder home;
    std::shared_ptr<const FileManager> manager = tests::GuardedFileManager::forFixture(home);
};

TEST_F(StoreFiles, whatIsTheBrowsersOwnIsToldByTheSchemeInEitherForm) {
    for (const char* scheme :
         {"chrome-extension", "chrome", "chrome-untrusted", "chrome-search", "devtools"}) {
        EXPECT_TRUE(isBrowsersOwn(std::string(scheme) + "://abc/"));
        EXPECT_TRUE(isBrowsersOwn(std::string(scheme) + "_abc_0"));
        EXPECT_FALSE(isBrowsersOwn(scheme));
        EXPECT_FALSE(isBrowsersOwn("https://" + std::string(scheme)));
        EXPECT_FALSE(isBrowsersOwn(std::string(scheme) + "s://abc"));
    }
    EXPECT_FALSE(isBrowsersOwn(""));
}

TEST_F(StoreFiles, filesAndFoldersAreMeasuredAndLinksCountAsOne) {
    home.write("folder/a", "12345");
    home.write("folder/sub/b", "123");
    home.write("precious/file", "123456789");
    fs::create_directory_symlink(home / "precious", home / "link");
    EXPECT_EQ(sizeOfAll(*manager, home / "folder"), (CleanableDataSize{2, 8}));
    EXPECT_EQ(sizeOfAll(*manager, home / "folder/a"), (CleanableDataSize{1, 5}));
    EXPECT_EQ(sizeOfAll(*manager, home / "link"), (CleanableDataSize{1, 0}));
    EXPECT_EQ(sizeOfAll(*manager, home / "gone"), CleanableDataSize::zero);
    EXPECT_EQ(sizeOfAll(*manager, home / "gone/below"), CleanableDataSize::zero);
}

TEST_F(StoreFiles, whatWasListedIsNotLookedForInItsFolderAgain) {
    home.write("parent/a/file", "12345");
    home.write("parent/b/file", "123");
    home.write("parent/c", "1");
    const CountedListings counted(manager);
    CleanableDataSize sum;
    for (const FolderEntry& entry : counted.entries(home / "parent")) {
        sum = sum + sizeOfAll(counted, home / "parent", entry);
        removeAll(counted, home / "parent", entry);
    }
    EXPECT_EQ(sum, (CleanableDataSize{3, 9}));
    EXPECT_EQ(home.snapshot(), Lines{"parent/"});
    EXPECT_EQ(counted.count, 1);
}

TEST_F(StoreFiles, whateverIsAtAPathIsRemovedAndNothingBehindALink) {
    home.write("folder/sub/b", "123");
    home.write("precious/file", "kept");
    home.write("file", "1");
    fs::create_directory_symlink(home / "precious", home / "link");
    for (const char* name : {"folder", "file", "link", "gone", "gone/below"}) {
        removeAll(*manager, home / name);
    }
    EXPECT_EQ(home.snapshot(), (Lines{"precious/", "precious/file: kept"}));
}

TEST_F(StoreFiles, filesAreRemovedByTheirNamesAndFoldersNever) {
    home.write("folder/one", "1");
    home.write("folder/other", "2");
    home.makeFolder("folder/third");
    removeNamed(*manager, home / "folder", {"one", "third"});
    removeNamed(*manager, home / "gone", {"one"});
    removeNamed(*manager, home / "folder", {});
    EXPECT_EQ(home.snapshot(), (Lines{"folder/", "folder/other: 2", "folder/third/"}));
}

TEST_F(StoreFiles, aMissingFileHasNoContentsAndAnyOtherFailureIsAnError) {
    home.makeFolder("folder");
    EXPECT_EQ(contentsIfThere(*manager, home / "gone"), std::nullopt);
    EXPECT_EQ(firstBytesIfThere(*manager, home / "gone", 5), Bytes());
    EXPECT_THROW(contentsIfThere(*manager, home / "folder"), fs::filesystem_error);
    EXPECT_THROW(firstBytesIfThere(*manager, home / "folder", 5), fs::filesystem_error);
    home.write("file", "12345");
    EXPECT_EQ(contentsIfThere(*manager, home / "file"), tests::bytes("12345"));
    EXPECT_EQ(firstBytesIfThere(*manager, home / "file", 2), tests::bytes("12"));
}

}  // namespace
}  // namespace browsersweep
