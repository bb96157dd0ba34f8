#include <filesystem>
#include <iterator>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "browsersweep/platform/internal/TemporaryFolder.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

class TemporaryFolderTest : public testing::Test {
protected:
    fs::path left(const std::string& name) const {
        home.write("tmp/" + name + "/copy", "left behind");
        return home / "tmp" / name;
    }

    tests::TemporaryFolder home;
    std::shared_ptr<const FileManager> manager = tests::GuardedFileManager::forFixture(home);
    const std::string stale = "browsersweep-0123456789abcdef0123456789abcdef";
};

TEST_F(TemporaryFolderTest, isForTheUserAloneAndGoesWithAllItHolds) {
    fs::path path;
    {
        const TemporaryFolder folder(manager);
        path = folder.path();
        EXPECT_EQ(path.parent_path(), home / "tmp");
        EXPECT_TRUE(isTemporaryFolderName(path.filename().string()));
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all);
        home.write(fs::path("tmp") / path.filename() / "copy", "x");
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(TemporaryFolderTest, oneThatIsAbandonedStays) {
    fs::path path;
    {
        TemporaryFolder folder(manager);
        folder.abandon();
        path = folder.path();
    }
    EXPECT_TRUE(fs::is_directory(path));
    EXPECT_EQ(manager->removeStaleTemporaryFolders(), 1U);
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(TemporaryFolderTest, aTemporaryDirectoryThatIsMissingIsNotMade) {
    class Missing : public tests::ForwardingFileManager {
    public:
        using ForwardingFileManager::ForwardingFileManager;
        fs::path temporaryDirectory() const override { return homeDirectory() / "gone"; }
    };
    EXPECT_THROW(TemporaryFolder{std::make_shared<Missing>(manager)}, fs::filesystem_error);
    EXPECT_FALSE(fs::exists(home / "gone"));
}

TEST_F(TemporaryFolderTest, whatAKilledProgramLeftIsRemovedAndNothingElse) {
    const fs::path folder = left(stale);
    const fs::path other = left("browsersweep-cli-somebody");
    const fs::path longer = left(stale + "0");
    home.write("kept/file", "x");
    fs::create_directory_symlink(home / "kept",
                                 home / "tmp/browsersweep-ffffffffffffffffffffffffffffffff");
    EXPECT_EQ(manager->removeStaleTemporaryFolders(), 1U);
    EXPECT_FALSE(fs::exists(folder));
    EXPECT_TRUE(fs::exists(other / "copy"));
    EXPECT_TRUE(fs::exists(longer / "copy"));
    EXPECT_TRUE(fs::exists(home / "kept/file"));
}

TEST_F(TemporaryFolderTest, thatOfALivingProcessStaysUntilTheProcessIsKilled) {
    const auto isOnlyOne = [this] {
        return std::distance(fs::directory_iterator(manager->temporaryDirectory()), {}) == 1;
    };
    {
        const tests::ChildProcess other([this](const tests::ChildProcess::Ready& ready) {
            const TemporaryFolder folder(manager);
            ready();
        });
        EXPECT_EQ(manager->removeStaleTemporaryFolders(), 0U);
        EXPECT_TRUE(isOnlyOne());
    }
    EXPECT_TRUE(isOnlyOne());
    EXPECT_EQ(manager->removeStaleTemporaryFolders(), 1U);
    EXPECT_FALSE(isOnlyOne());
}

}  // namespace
}  // namespace browsersweep
