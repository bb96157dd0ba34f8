#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDirectory.h"

#include "tests/support/Bytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/linux/OwnMounts.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::bytes;
using tests::mountFolder;

/** A home with something precious, which each test mounts where a browser's data should be. */
class Mounts : public testing::Test {
protected:
    void SetUp() override {
        home.write("Documents/letter", "kept");
        home.write("Documents/deep/letter", "kept");
        home.write("Library/Caches/browser/file", "12345");
        home.makeFolder("Library/Caches/browser/sub");
    }

    /** Runs a piece with mounts of its own. Nothing precious may be missing afterwards. */
    void inOwnMounts(const std::function<void()>& piece) const {
        const auto status = tests::runWithOwnMounts(piece);
        if (!status) {
            GTEST_SKIP() << "this process may not mount anything";
        }
        EXPECT_EQ(*status, 0);
        EXPECT_EQ(tests::readFile(home / "Documents/letter"), "kept");
        EXPECT_EQ(tests::readFile(home / "Documents/deep/letter"), "kept");
    }

    /** What a clean of the folder did not enter. */
    std::vector<LeftOutFolder> leftOutOfClean(const fs::path& folder) const {
        const auto control = std::make_shared<OperationControl>();
        CleanableDirectory(folder, true, {}, FileManager::forHome(home.path(), control)).clean();
        return control->takeLeftOut();
    }

    std::vector<LeftOutFolder> mounted(const fs::path& folder) const {
        return {{folder, "another disk or folder is mounted there"}};
    }

    tests::TemporaryFolder home;
    fs::path cache = home / "Library/Caches/browser";
};

TEST_F(Mounts, aMountBelowTheFolderIsNotEnteredAndIsTold) {
    inOwnMounts([this] {
        mountFolder(home / "Documents", cache / "sub");
        const CleanableDirectory item(cache, true, {}, FileManager::forHome(home.path()));
        EXPECT_EQ(item.size(), (CleanableDataSize{1, 5}));
        EXPECT_EQ(leftOutOfClean(cache), mounted(cache / "sub"));
        EXPECT_FALSE(fs::exists(cache / "file"));
    });
}

TEST_F(Mounts, aFolderThatIsAMountOrLiesBelowOneIsNotEntered) {
    inOwnMounts([this] {
        mountFolder(home / "Documents", cache);
        EXPECT_EQ(leftOutOfClean(cache), mounted(cache));
        EXPECT_EQ(leftOutOfClean(cache / "deep"), mounted(cache));
    });
}

TEST_F(Mounts, aMountBelowAFolderOutsideTheLibraryIsNotEntered) {
    home.makeFolder("profile/sub");
    inOwnMounts([this] {
        mountFolder(home / "Documents", home / "profile/sub");
        EXPECT_EQ(leftOutOfClean(home / "profile"), mounted(home / "profile/sub"));
    });
}

TEST_F(Mounts, aLibraryThatIsAMountItselfIsCleanedAsEver) {
    inOwnMounts([this] {
        mountFolder(home / "Library", home / "Library");
        EXPECT_TRUE(leftOutOfClean(cache).empty());
        EXPECT_FALSE(fs::exists(cache / "file"));
    });
}

TEST_F(Mounts, aFileBelowAMountIsNeitherDeletedNorReplaced) {
    inOwnMounts([this] {
        mountFolder(home / "Documents", cache);
        const auto manager = FileManager::forHome(home.path());
        EXPECT_THROW(manager->removeFile(cache / "letter"), fs::filesystem_error);
        EXPECT_THROW(manager->replace(cache / "letter", bytes("other")), fs::filesystem_error);
    });
}

TEST_F(Mounts, aFileBelowAMountIsNotReachedAndThatIsTold) {
    inOwnMounts([this] {
        mountFolder(home / "Documents", cache);
        const auto control = std::make_shared<OperationControl>();
        EXPECT_FALSE(FileManager::forHome(home.path(), control)->reaches(cache / "letter"));
        EXPECT_EQ(control->takeLeftOut(), mounted(cache));
    });
}

TEST_F(Mounts, aFileThatIsAMountItselfIsNotReachedAndThatIsTold) {
    inOwnMounts([this] {
        mountFolder(home / "Documents/letter", cache / "file");
        const auto control = std::make_shared<OperationControl>();
        EXPECT_FALSE(FileManager::forHome(home.path(), control)->reaches(cache / "file"));
        EXPECT_EQ(control->takeLeftOut(), mounted(cache / "file"));
    });
}

TEST_F(Mounts, aFolderWithAMountBelowItIsRemovedAroundTheMount) {
    home.write("Library/Caches/browser/other/file", "x");
    inOwnMounts([this] {
        mountFolder(home / "Documents", cache / "sub");
        const auto control = std::make_shared<OperationControl>();
        EXPECT_FALSE(FileManager::forHome(home.path(), control)->removeFolder(cache));
        EXPECT_EQ(control->takeLeftOut(), mounted(cache / "sub"));
        EXPECT_FALSE(fs::exists(cache / "file"));
        EXPECT_FALSE(fs::exists(cache / "other"));
    });
}

TEST_F(Mounts, aFolderThatIsAMountIsNeitherRemovedNorReplacedNorListed) {
    home.write("new/file", "x");
    inOwnMounts([this] {
        mountFolder(home / "Documents", cache);
        const auto manager = FileManager::forHome(home.path());
        EXPECT_THROW(manager->removeFolder(cache), fs::filesystem_error);
        EXPECT_THROW(manager->removeFolder(cache / "deep"), fs::filesystem_error);
        EXPECT_THROW(manager->replaceFolder(cache, home / "new"), fs::filesystem_error);
        EXPECT_THROW(manager->replaceFolder(cache / "deep", home / "new"), fs::filesystem_error);
        EXPECT_TRUE(manager->entries(cache).empty());
    });
}

TEST_F(Mounts, aReplacedFolderWithAMountBelowItLeavesTheMountBeside) {
    home.write("new/CURRENT", "new");
    inOwnMounts([this] {
        mountFolder(home / "Documents", cache / "sub");
        EXPECT_FALSE(FileManager::forHome(home.path())->replaceFolder(cache, home / "new"));
        EXPECT_EQ(tests::readFile(cache / "CURRENT"), "new");
        EXPECT_FALSE(fs::exists(cache / "sub"));
    });
}

TEST_F(Mounts, aMountThatAppearsInMidWalkIsNotEntered) {
    inOwnMounts([this] {
        const auto walk = FileManager::forHome(home.path())->enumerator(cache);
        ASSERT_TRUE(walk->next());
        mountFolder(home / "Documents", cache / "sub");
        int more = 0;
        while (walk->next()) {
            ++more;
        }
        EXPECT_EQ(more, 1);  // the other of the two entries
    });
}

}  // namespace
}  // namespace browsersweep
