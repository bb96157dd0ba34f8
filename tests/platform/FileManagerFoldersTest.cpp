#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include "browsersweep/platform/FileManager.h"

#include "tests/support/Bytes.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileErrors.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using tests::errorThrownBy;
using tests::modeOf;
using Lines = std::vector<std::string>;
using Kind = FolderEntry::Kind;

/** A store below the Library folder, and what is to take its place. */
class FileManagerFolders : public testing::Test {
protected:
    void SetUp() override {
        folder.write("Library/store/old", "old");
        folder.write("Library/store/sub/older", "older");
        folder.write("new/CURRENT", "1");
        folder.write("new/table", std::string(300'000, 'x'));
    }

    Lines below(const fs::path& place) const {
        Lines names;
        for (const auto& entry : fs::recursive_directory_iterator(folder / place)) {
            names.push_back(entry.path().lexically_relative(folder / place).string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    tests::TemporaryFolder folder{tests::folderInMemory()};
    std::shared_ptr<OperationControl> control = std::make_shared<OperationControl>();
    std::shared_ptr<const FileManager> manager = FileManager::forHome(folder.path(), control);
    fs::path store = folder / "Library/store";
};

TEST_F(FileManagerFolders, entriesAreTheDirectOnesAndTellWhatTheyAre) {
    fs::create_symlink("old", store / "link");
    ::utimes((store / "old").c_str(), std::array<timeval, 2>{{{5, 0}, {7, 0}}}.data());
    auto entries = manager->entries(store);
    std::sort(entries.begin(), entries.end(),
              [](const auto& a, const auto& b) { return a.name < b.name; });
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0].kind, Kind::other);
    EXPECT_EQ(entries[0].size, 0U);
    struct stat status = {};
    ASSERT_EQ(::lstat((store / "old").c_str(), &status), 0);
    const FolderEntry expected{"old",
                               Kind::file,
                               3,
                               dateFrom1970Seconds(7),
                               status.st_ino,
                               dateFrom1970Seconds(static_cast<double>(status.st_ctime))};
    EXPECT_EQ(entries[1], expected);
    EXPECT_EQ(entries[2].kind, Kind::folder);
    EXPECT_EQ(entries[2].size, 0U);
}

TEST_F(FileManagerFolders, ofWhatIsNotThereOrBehindALinkThereAreNoEntriesAndTheLinkIsTold) {
    fs::create_directory_symlink(store, folder / "Library/link");
    EXPECT_TRUE(manager->entries(folder / "Library/gone").empty());
    EXPECT_TRUE(manager->entries(store / "old").empty());
    EXPECT_TRUE(control->takeLeftOut().empty());
    EXPECT_TRUE(manager->entries(folder / "Library/link").empty());
    EXPECT_TRUE(manager->entries(folder / "Library/link/sub").empty());
    const std::vector<LeftOutFolder> told{{folder / "Library/link", "it is a link"}};
    EXPECT_EQ(control->takeLeftOut(), told);
}

TEST_F(FileManagerFolders, aFolderIsRemovedWithAllItHoldsAndNothingBehindItsLinks) {
    folder.write("precious/file", "kept");
    fs::create_directory_symlink(folder / "precious", store / "sub/link");
    EXPECT_TRUE(manager->removeFolder(store));
    EXPECT_TRUE(below("Library").empty());
    EXPECT_EQ(below("precious"), Lines{"file"});
    EXPECT_EQ(control->progress(), (OperationProgress{3, 0, 0}));
}

TEST_F(FileManagerFolders, whatIsNoFolderOrIsReachedByALinkIsNotRemovedAsOne) {
    fs::create_directory_symlink(store, folder / "Library/link");
    EXPECT_EQ(errorThrownBy([&] { manager->removeFolder(folder / "Library/gone"); }),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(errorThrownBy([&] { manager->removeFolder(store / "old"); }),
              std::errc::not_a_directory);
    for (const char* path : {"Library/link", "Library/link/sub"}) {
        EXPECT_EQ(errorThrownBy([&] { manager->removeFolder(folder / path); }),
                  std::errc::too_many_symbolic_link_levels);
    }
    EXPECT_EQ(below("Library/store"), (Lines{"old", "sub", "sub/older"}));
}

TEST_F(FileManagerFolders, removingAFolderStopsBetweenFilesWhenItIsToldTo) {
    control->restart([](const OperationProgress& done) { return done.files > 0; });
    EXPECT_THROW(manager->removeFolder(store), OperationCancelled);
    EXPECT_EQ(control->progress(), (OperationProgress{1, 0, 0}));
    EXPECT_EQ(below("Library/store"), (Lines{"sub", "sub/older"}));
}

TEST_F(FileManagerFolders, aFolderThatMayNotBeEnteredStaysWithThoseAboveItAndIsTold) {
    folder.write("Library/store/closed/file", "kept");
    for (const fs::path& path : {folder.path(), folder / "Library", store, store / "sub"}) {
        fs::permissions(path, fs::perms::all);
    }
    fs::permissions(store / "closed", fs::perms::none);
    EXPECT_EQ(tests::runAsOrdinaryUser([&] {
                  EXPECT_FALSE(manager->removeFolder(store));
                  const std::vector<LeftOutFolder> told{
                      {store / "closed", "its permissions forbid it", true}};
                  EXPECT_EQ(control->takeLeftOut(), told);
              }),
              0);
    fs::permissions(store / "closed", fs::perms::owner_all);
    EXPECT_EQ(below("Library/store"), (Lines{"closed", "closed/file"}));
}

TEST_F(FileManagerFolders, aReplacedFolderHasTheNewFilesAndTheOldModeAndNothingStaysBeside) {
    fs::permissions(store, fs::perms(0750));
    EXPECT_TRUE(manager->replaceFolder(store, folder / "new"));
    EXPECT_EQ(below("Library"), (Lines{"store", "store/CURRENT", "store/table"}));
    EXPECT_EQ(modeOf(store), 0750U);
    EXPECT_EQ(modeOf(store / "table"), 0600U);
    EXPECT_EQ(tests::readFile(store / "table"), std::string(300'000, 'x'));
    EXPECT_EQ(below("new"), (Lines{"CURRENT", "table"}));
}

TEST_F(FileManagerFolders, aFolderIsReplacedByFilesFromMemoryAllTheSame) {
    fs::permissions(store, fs::perms(0750));
    EXPECT_TRUE(
        manager->replaceFolderWithFiles(store, {{"CURRENT", tests::bytes("now")}, {"empty", {}}}));
    EXPECT_EQ(below("Library"), (Lines{"store", "store/CURRENT", "store/empty"}));
    EXPECT_EQ(modeOf(store), 0750U);
    EXPECT_EQ(modeOf(store / "CURRENT"), 0600U);
    EXPECT_EQ(tests::readFile(store / "CURRENT"), "now");
}

TEST_F(FileManagerFolders, filesFromMemoryWithoutAPlainNameAreRefusedAndNothingIsBeside) {
    for (const std::string& name : Lines{"", ".", "..", "a/b", "../file", "/file", {'a', '\0'}}) {
        const std::map<std::string, Bytes> files{{name, {}}};
        EXPECT_EQ(errorThrownBy([&] { manager->replaceFolderWithFiles(store, files); }),
                  std::errc::invalid_argument)
            << name;
    }
    EXPECT_EQ(below("Library"), (Lines{"store", "store/old", "store/sub", "store/sub/older"}));
}

TEST_F(FileManagerFolders, aReplacedFolderKeepsItsOwner) {
    constexpr unsigned other = 12345;
    if (::chown(store.c_str(), other, other) != 0) {
        GTEST_SKIP() << "only root may give a folder away";
    }
    manager->replaceFolder(store, folder / "new");
    for (const fs::path& path : {store, store / "table"}) {
        struct stat status = {};
        ASSERT_EQ(::stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_uid, other);
        EXPECT_EQ(status.st_gid, other);
    }
}

TEST_F(FileManagerFolders, aFolderIsReplacedByRegularFilesAloneAndElseStaysWithNothingBeside) {
    fs::create_symlink("CURRENT", folder / "new/link");
    EXPECT_EQ(errorThrownBy([&] { manager->replaceFolder(store, folder / "new"); }),
              std::errc::invalid_argument);
    EXPECT_EQ(errorThrownBy([&] { manager->replaceFolder(store, folder / "gone"); }),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(below("Library"), (Lines{"store", "store/old", "store/sub", "store/sub/older"}));
}

TEST_F(FileManagerFolders, neitherALinkNorWhatLiesBehindOneNorAMissingFolderIsReplaced) {
    fs::create_directory_symlink(store, folder / "Library/link");
    EXPECT_EQ(errorThrownBy([&] { manager->replaceFolder(store / "gone", folder / "new"); }),
              std::errc::no_such_file_or_directory);
    for (const char* path : {"Library/link", "Library/link/sub"}) {
        EXPECT_EQ(errorThrownBy([&] { manager->replaceFolder(folder / path, folder / "new"); }),
                  std::errc::too_many_symbolic_link_levels);
    }
    EXPECT_EQ(below("Library"),
              (Lines{"link", "store", "store/old", "store/sub", "store/sub/older"}));
}

TEST_F(FileManagerFolders, replacingThatIsToldToStopLeavesTheOldFolderAndNothingBeside) {
    control->restart([](const OperationProgress& done) { return done.bytes > 0; });
    EXPECT_THROW(manager->replaceFolder(store, folder / "new"), OperationCancelled);
    EXPECT_EQ(below("Library"), (Lines{"store", "store/old", "store/sub", "store/sub/older"}));
}

TEST_F(FileManagerFolders, namesThatReplacingGivesAreKnownAndNoOthers) {
    const std::string digits = "0123456789abcdef0123456789abcdef";
    EXPECT_TRUE(FileManager::isLeftByReplacing("leveldb.browsersweep-" + digits, "leveldb"));
    EXPECT_TRUE(FileManager::isLeftByReplacing(".Preferences." + digits, "Preferences"));
    for (const std::string& name :
         {"leveldb.browsersweep-" + digits + "0", "leveldb.browsersweep-" + digits.substr(1),
          "leveldb.browsersweep-G" + digits.substr(1), "other.browsersweep-" + digits,
          "leveldb-browsersweep-" + digits, "leveldb." + digits, ".leveldb" + digits, digits,
          std::string("leveldb"), std::string()}) {
        EXPECT_FALSE(FileManager::isLeftByReplacing(name, "leveldb")) << name;
    }
}

}  // namespace
}  // namespace browsersweep
