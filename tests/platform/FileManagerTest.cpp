#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/internal/posix/FileFacts.h"

#include "tests/support/Bytes.h"
#include "tests/support/FileErrors.h"
#include "tests/support/SystemUnderTest.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using tests::bytes;
using tests::errorThrownBy;
using tests::modeOf;
using Lines = std::vector<std::string>;

class FileManagerTest : public testing::Test {
protected:
    Lines entries(const fs::path& below) const {
        Lines names;
        const auto walk = manager->enumerator(folder / below);
        while (walk && walk->next()) {
            names.emplace_back(walk->name());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    tests::TemporaryFolder folder;
    std::shared_ptr<const FileManager> manager = FileManager::forHome(folder.path());
};

TEST_F(FileManagerTest, aWayIsFreeOfLinksBelowTheLibraryFolderAlone) {
    const auto control = std::make_shared<OperationControl>();
    const auto told = FileManager::forHome(folder.path(), control);
    folder.write("Library/real/file", "x");
    fs::create_directory_symlink(folder / "Library/real", folder / "Library/link");
    fs::create_directory_symlink(folder / "Library", folder / "elsewhere");
    for (const char* const free : {"Library/real/file", "Library/real/missing", "Library/link",
                                   "Library/missing/file", "elsewhere/real/file"}) {
        EXPECT_TRUE(told->reaches(folder / free)) << free;
    }
    EXPECT_EQ(control->takeLeftOut(), std::vector<LeftOutFolder>{});
    EXPECT_FALSE(told->reaches(folder / "Library/link/file"));
    EXPECT_FALSE(told->reaches(folder / "Library/link/deep/file"));
    EXPECT_EQ(control->takeLeftOut(),
              (std::vector<LeftOutFolder>{{folder / "Library/link", "it is a link"}}));
}

TEST_F(FileManagerTest, existenceFollowsLinksAndTellsDirectories) {
    folder.write("file", "x");
    folder.makeFolder("sub");
    fs::create_symlink("sub", folder / "link");
    fs::create_symlink("nowhere", folder / "dangling");
    EXPECT_EQ(manager->fileExists(folder / "file"), (FileExistence{true, false}));
    EXPECT_EQ(manager->fileExists(folder / "sub"), (FileExistence{true, true}));
    EXPECT_EQ(manager->fileExists(folder / "link"), (FileExistence{true, true}));
    EXPECT_EQ(manager->fileExists(folder / "dangling"), (FileExistence{false, false}));
    EXPECT_EQ(manager->fileExists(folder / "file/below"), (FileExistence{false, false}));
}

TEST_F(FileManagerTest, attributesTellTheSizeAndAMissingFileIsAnError) {
    folder.write("file", "12345");
    EXPECT_EQ(manager->attributes(folder / "file"), FileAttributes{5});
    EXPECT_EQ(errorThrownBy([&] { manager->attributes(folder / "gone"); }),
              std::errc::no_such_file_or_directory);
}

TEST_F(FileManagerTest, contentsAreTheWholeFile) {
    const std::string large(300'000, 'x');
    folder.write("file", large);
    folder.write("empty", "");
    EXPECT_EQ(manager->contents(folder / "file"), bytes(large));
    EXPECT_EQ(manager->contents(folder / "empty"), Bytes{});
}

TEST_F(FileManagerTest, contentsOfWhatIsNoRegularFileAreAnError) {
    folder.makeFolder("sub");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(errorThrownBy([&] { manager->contents(folder / "sub"); }), std::errc::is_a_directory);
    EXPECT_EQ(errorThrownBy([&] { manager->contents(folder / "pipe"); }),
              std::errc::invalid_argument);
    EXPECT_EQ(errorThrownBy([&] { manager->contents(folder / "gone"); }),
              std::errc::no_such_file_or_directory);
}

TEST_F(FileManagerTest, contentsOfAnEnormousFileAreAnError) {
    const auto file = folder.write("sparse", "");
    fs::resize_file(file, FileManager::maximumContentsSize + 1);
    EXPECT_EQ(errorThrownBy([&] { manager->contents(file); }), std::errc::file_too_large);
}

TEST_F(FileManagerTest, lastBytesAreThoseOfTheFileAndNoMoreThanItHas) {
    folder.write("file", "12345");
    EXPECT_EQ(manager->lastBytes(folder / "file", 0), Bytes{});
    EXPECT_EQ(manager->lastBytes(folder / "file", 3), bytes("345"));
    EXPECT_EQ(manager->lastBytes(folder / "file", 5), bytes("12345"));
    EXPECT_EQ(manager->lastBytes(folder / "file", 9), bytes("12345"));
    EXPECT_EQ(errorThrownBy([&] { manager->lastBytes(folder.path(), 9); }),
              std::errc::is_a_directory);
}

TEST_F(FileManagerTest, firstBytesAreThoseOfTheFileAndNoMoreThanItHas) {
    folder.write("file", "12345");
    EXPECT_EQ(manager->firstBytes(folder / "file", 3), bytes("123"));
    EXPECT_EQ(manager->firstBytes(folder / "file", 5), bytes("12345"));
    EXPECT_EQ(manager->firstBytes(folder / "file", 9), bytes("12345"));
    EXPECT_EQ(errorThrownBy([&] { manager->firstBytes(folder.path(), 9); }),
              std::errc::is_a_directory);
}

TEST_F(FileManagerTest, replacingKeepsTheModeAndLeavesNothingBeside) {
    const auto file = folder.write("sub/file", "old");
    fs::permissions(file, fs::perms::owner_read | fs::perms::group_read);
    manager->replace(file, bytes("new contents"));
    EXPECT_EQ(folder.snapshot(), (Lines{"sub/", "sub/file: new contents"}));
    EXPECT_EQ(modeOf(file), 0440U);
}

TEST_F(FileManagerTest, replacingKeepsTheOwner) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    const auto file = folder.write("file", "old");
    ASSERT_EQ(::chown(file.c_str(), 12345, 54321), 0);
    manager->replace(file, bytes("new"));
    struct stat status = {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 12345U);
    EXPECT_EQ(status.st_gid, 54321U);
}

TEST_F(FileManagerTest, aLinkIsNotReplacedAndNeitherIsWhatItLeadsTo) {
    folder.write("real/file", "old");
    fs::create_symlink("real/file", folder / "link");
    const Lines before = folder.snapshot();
    EXPECT_EQ(errorThrownBy([&] { manager->replace(folder / "link", bytes("new")); }),
              std::errc::too_many_symbolic_link_levels);
    EXPECT_EQ(folder.snapshot(), before);
}

TEST_F(FileManagerTest, replacingAMissingFileIsAnErrorAndMakesNone) {
    EXPECT_EQ(errorThrownBy([&] { manager->replace(folder / "gone", bytes("new")); }),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(folder.snapshot(), Lines{});
}

TEST_F(FileManagerTest, replacingAFolderIsAnErrorAndLeavesNothingBeside) {
    folder.makeFolder("sub/inner");
    EXPECT_EQ(errorThrownBy([&] { manager->replace(folder / "sub", bytes("x")); }),
              std::errc::is_a_directory);
    EXPECT_EQ(folder.snapshot(), (Lines{"sub/", "sub/inner/"}));
}

TEST_F(FileManagerTest, aCopyHasTheContentsAndIsForTheUserAlone) {
    const std::string large(1'000'000, 'y');
    fs::permissions(folder.write("file", large), fs::perms::all);
    folder.write("empty", "");
    manager->copy(folder / "file", folder / "copy");
    manager->copy(folder / "empty", folder / "emptyCopy");
    EXPECT_EQ(tests::readFile(folder / "copy"), large);
    EXPECT_EQ(tests::readFile(folder / "emptyCopy"), "");
    EXPECT_EQ(modeOf(folder / "copy"), 0600U);
}

TEST_F(FileManagerTest, aCopyThatIsToldToStopBeginsNone) {
    folder.write("file", "x");
    const auto stopped =
        std::make_shared<OperationControl>([](const OperationProgress& /*done*/) { return true; });
    const auto controlled = FileManager::forHome(folder.path(), stopped);
    EXPECT_THROW(controlled->copy(folder / "file", folder / "copy"), OperationCancelled);
    EXPECT_FALSE(fs::exists(folder / "copy"));
}

TEST_F(FileManagerTest, aCopyAsksBetweenItsPiecesAndCountsThem) {
    const std::string large(20'000'000, 'x');
    const fs::path file = folder.write("file", large);
    const auto counting = std::make_shared<OperationControl>();
    FileManager::forHome(folder.path(), counting)->copy(file, folder / "whole");
    EXPECT_EQ(counting->progress(), (OperationProgress{0, large.size(), 0}));
    const auto stopping = std::make_shared<OperationControl>(
        [](const OperationProgress& done) { return done.bytes > 0; });
    try {
        FileManager::forHome(folder.path(), stopping)->copy(file, folder / "begun");
        FAIL() << "it went on";
    } catch (const OperationCancelled& cancelled) {
        EXPECT_GT(cancelled.progress().bytes, 0U);
        EXPECT_LE(cancelled.progress().bytes, large.size());
    }
}

TEST_F(FileManagerTest, aCopyOfAFileWithHolesIsTheSameAndOccupiesNoMore) {
    const fs::path file = folder.write("file", "begin");
    const std::uintmax_t size = std::uintmax_t{3} << 30;
    fs::resize_file(file, size / 2);
    std::ofstream(file, std::ios::app) << "middle";
    fs::resize_file(file, size);
    const auto counting = std::make_shared<OperationControl>();
    FileManager::forHome(folder.path(), counting)->copy(file, folder / "copy");
    EXPECT_EQ(fs::file_size(folder / "copy"), size);
    EXPECT_LT(posix::allocatedBytes(folder / "copy"), 1 << 20);
    std::ifstream copy(folder / "copy");
    std::string found(6, ' ');
    copy.read(found.data(), 5);
    EXPECT_EQ(found, "begin ");
    copy.seekg(static_cast<std::streamoff>(size / 2));
    copy.read(found.data(), 6);
    EXPECT_EQ(found, "middle");
}

TEST_F(FileManagerTest, aCopyNeverOverwritesNorFollowsALink) {
    folder.write("file", "new");
    folder.write("existing", "old");
    fs::create_symlink("elsewhere", folder / "link");
    EXPECT_EQ(errorThrownBy([&] { manager->copy(folder / "file", folder / "existing"); }),
              std::errc::file_exists);
    EXPECT_EQ(errorThrownBy([&] { manager->copy(folder / "file", folder / "link"); }),
              std::errc::file_exists);
    EXPECT_EQ(tests::readFile(folder / "existing"), "old");
    EXPECT_FALSE(fs::exists(folder / "elsewhere"));
}

TEST_F(FileManagerTest, aCopyToAnotherFileSystemHasTheContents) {
    if (!fs::is_directory("/dev/shm") || ::access("/dev/shm", W_OK) != 0) {
        GTEST_SKIP() << "no second file system at /dev/shm";
    }
    const fs::path target = "/dev/shm/" + folder.path().filename().string();
    folder.write("file", "across");
    manager->copy(folder / "file", target);
    EXPECT_EQ(tests::readFile(target), "across");
    fs::remove(target);
}

TEST_F(FileManagerTest, removingAFileTakesFilesAndLinksAndNeverAFolder) {
    folder.write("file", "x");
    folder.write("keep/file", "x");
    fs::create_directory_symlink(folder / "keep", folder / "link");
    manager->removeFile(folder / "file");
    manager->removeFile(folder / "link");
    EXPECT_EQ(folder.snapshot(), (Lines{"keep/", "keep/file: x"}));
    EXPECT_NE(errorThrownBy([&] { manager->removeFile(folder / "keep"); }), std::errc());
    EXPECT_EQ(errorThrownBy([&] { manager->removeFile(folder / "file"); }),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(folder.snapshot(), (Lines{"keep/", "keep/file: x"}));
}

TEST_F(FileManagerTest, aPathThatTheSystemWouldCutShortIsNotDeleted) {
    folder.write("file", "x");
    const std::string longer = (folder / "file").string() + std::string(1, '\0') + "x";
    EXPECT_EQ(errorThrownBy([&] { manager->removeFile(longer); }), std::errc::invalid_argument);
    EXPECT_EQ(folder.snapshot(), Lines{"file: x"});
}

TEST_F(FileManagerTest, onlyTemporaryFoldersOfItsOwnAreDeletedWhole) {
    const std::string own = "browsersweep-0123456789abcdef0123456789abcdef";
    folder.write("keep/file", "x");
    folder.write(own + "/sub/deep/file", "x");
    fs::create_directory_symlink(folder / "keep", folder / own / "link");
    manager->removeTemporaryFolder(folder / own);
    const Lines rest{"keep/", "keep/file: x"};
    EXPECT_EQ(folder.snapshot(), rest);
    for (const std::string& other :
         {std::string("keep"), own + "0", std::string("browsersweep-")}) {
        fs::create_directories(folder / other);
        EXPECT_EQ(errorThrownBy([&] { manager->removeTemporaryFolder(folder / other); }),
                  std::errc::invalid_argument);
        EXPECT_TRUE(fs::exists(folder / other));
    }
    fs::create_directory_symlink(folder / "keep", folder / own);
    EXPECT_EQ(errorThrownBy([&] { manager->removeTemporaryFolder(folder / own); }),
              std::errc::invalid_argument);
    EXPECT_TRUE(fs::exists(folder / "keep/file"));
}

TEST_F(FileManagerTest, createdDirectoriesAreForTheUserAloneAndNewAndNoneAboveThemIsMade) {
    manager->createDirectory(folder / "private");
    EXPECT_EQ(modeOf(folder / "private"), 0700U);
    EXPECT_EQ(errorThrownBy([&] { manager->createDirectory(folder / "private"); }),
              std::errc::file_exists);
    EXPECT_EQ(errorThrownBy([&] { manager->createDirectory(folder / "gone/below"); }),
              std::errc::no_such_file_or_directory);
    EXPECT_FALSE(fs::exists(folder / "gone"));
}

TEST_F(FileManagerTest, aHomeOfItsOwnHasNoSystemDirectories) {
    EXPECT_EQ(manager->homeDirectory(), folder.path());
    EXPECT_TRUE(manager->directories(SearchPathDirectory::caches).empty());
}

TEST_F(FileManagerTest, theDefaultManagerIsOneAndKnowsTheHomeOfTheProcess) {
    EXPECT_EQ(FileManager::defaultManager(), FileManager::defaultManager());
    EXPECT_EQ(FileManager::defaultManager()->homeDirectory(), std::getenv("HOME"));
    EXPECT_EQ(FileManager::defaultManager()->temporaryDirectory(), std::getenv("TMPDIR"));
}

TEST_F(FileManagerTest, withoutHOMETheUserDatabaseKnowsTheHome) {
    const std::string home = std::getenv("HOME");
    ::unsetenv("HOME");
    ::unsetenv("CFFIXED_USER_HOME");
    const fs::path found = FileManager::defaultManager()->homeDirectory();
    ::setenv("HOME", home.c_str(), 1);
    ::setenv("CFFIXED_USER_HOME", home.c_str(), 1);
    EXPECT_TRUE(found.is_absolute());
    EXPECT_NE(found, home);
}

TEST_F(FileManagerTest, enumerationVisitsEverythingAndFollowsNoLink) {
    folder.write("root/file", "12");
    folder.write("root/.hidden", "");
    folder.write("root/sub/deep/file2", "");
    folder.write("outside/secret", "");
    fs::create_directory_symlink(folder / "outside", folder / "root/sub/link");
    EXPECT_EQ(entries("root"), (Lines{".hidden", "deep", "file", "file2", "link", "sub"}));
}

TEST_F(FileManagerTest, enumerationAnswersForEachEntry) {
    if (tests::isEmulated("birth=no")) {
        GTEST_SKIP() << "the file system keeps no birth times";
    }
    folder.write("root/file", "12345");
    folder.makeFolder("root/sub");
    const auto walk = manager->enumerator(folder / "root");
    ASSERT_NE(walk, nullptr);
    int seen = 0;
    while (walk->next()) {
        ++seen;
        const bool isFile = walk->name() == "file";
        EXPECT_EQ(walk->isDirectory(), !isFile);
        EXPECT_EQ(walk->fileSize(), isFile ? std::optional<std::uint64_t>(5) : std::nullopt);
        ASSERT_TRUE(walk->creationDate().has_value());
        EXPECT_NEAR(referenceSeconds(*walk->creationDate()),
                    referenceSeconds(ReferenceClock::now()), 3600);
    }
    EXPECT_EQ(seen, 2);
}

TEST_F(FileManagerTest, enumerationOfWhatIsNoDirectoryIsNotProduced) {
    folder.write("file", "");
    EXPECT_EQ(manager->enumerator(folder / "file"), nullptr);
    EXPECT_EQ(manager->enumerator(folder / "gone"), nullptr);
}

TEST_F(FileManagerTest, whatVanishesAfterItWasListedHasNoKindLeftToTell) {
    folder.write("root/file", "12345");
    const auto walk = manager->enumerator(folder / "root");
    ASSERT_TRUE(walk->next());
    fs::remove(folder / "root/file");
    if (tests::sizesAreThoseOfTheListing()) {
        GTEST_SKIP() << "the size is known already";
    }
    EXPECT_EQ(walk->fileSize(), std::nullopt);
    EXPECT_EQ(walk->creationDate(), std::nullopt);
    EXPECT_EQ(errorThrownBy([&] { walk->remove(); }), std::errc::no_such_file_or_directory);
    EXPECT_FALSE(walk->next());
}

TEST_F(FileManagerTest, onceSomethingIsDeletedAnEntryIsExaminedAtTheMomentThatItIsAskedFor) {
    if (tests::isEmulated("kinds=no")) {
        GTEST_SKIP() << "every entry is examined for its kind";
    }
    folder.write("root/a", "12345");
    folder.write("root/b", "12345");
    folder.write("root/c", "12345");
    const auto walk = manager->enumerator(folder / "root");
    ASSERT_TRUE(walk->next());
    walk->remove();
    ASSERT_TRUE(walk->next());
    folder.write(fs::path("root") / walk->name(), "123");
    EXPECT_EQ(walk->fileSize(), 3U);
    ASSERT_TRUE(walk->next());
    fs::remove(folder / "root" / walk->name());
    EXPECT_EQ(walk->fileSize(), std::nullopt);
    EXPECT_EQ(walk->creationDate(), std::nullopt);
}

TEST_F(FileManagerTest, aFolderSwappedForALinkInMidWalkIsNotEntered) {
    folder.write("precious/keep", "");
    folder.write("root/sub/file", "");
    const auto walk = manager->enumerator(folder / "root");
    ASSERT_TRUE(walk->next());
    ASSERT_EQ(walk->name(), "sub");
    fs::rename(folder / "root/sub", folder / "moved");
    fs::create_directory_symlink(folder / "precious", folder / "root/sub");
    EXPECT_FALSE(walk->next());
}

TEST_F(FileManagerTest, deletingWhileWalkingMissesNothing) {
    constexpr int count = 5000;
    folder.makeFolder("root");
    for (int number = 0; number < count; ++number) {
        folder.write("root/some-longer-file-name-" + std::to_string(number), "");
    }
    const auto walk = manager->enumerator(folder / "root");
    int removed = 0;
    while (walk->next()) {
        walk->remove();
        ++removed;
    }
    EXPECT_EQ(removed, count);
    EXPECT_TRUE(fs::is_empty(folder / "root"));
}

int descriptorsInUse() {
    int count = 0;
    for (int number = 0; number < 1024; ++number) {
        count += ::fcntl(number, F_GETFD) >= 0 ? 1 : 0;
    }
    return count;
}

/** A chain of folders far deeper than any path can be written, each with a file. */
void makeDeepChain(const fs::path& root, int depth) {
    int directory = ::open(root.c_str(), O_RDONLY | O_DIRECTORY);
    for (int level = 0; level < depth; ++level) {
        ASSERT_EQ(::mkdirat(directory, "d", 0700), 0);
        const int file = ::openat(directory, "f", O_CREAT | O_WRONLY, 0600);
        ASSERT_EQ(::write(file, "x", 1), 1);
        ::close(file);
        const int next = ::openat(directory, "d", O_RDONLY | O_DIRECTORY);
        ::close(directory);
        directory = next;
    }
    ::close(directory);
}

TEST_F(FileManagerTest, depthCostsNeitherStackNorDescriptors) {
    constexpr int depth = 1000;
    const auto root = folder.makeFolder("root");
    makeDeepChain(root, depth);
    fs::create_directories(root / "zz/yy");  // something to come back up for
    const int openBefore = descriptorsInUse();
    int files = 0;
    int folders = 0;
    int mostOpen = 0;
    const auto walk = manager->enumerator(root);
    while (walk->next()) {
        (walk->isDirectory() == true ? folders : files) += 1;
        if (folders % 200 == 0) {
            mostOpen = std::max(mostOpen, descriptorsInUse());
        }
    }
    EXPECT_EQ(files, depth);
    EXPECT_EQ(folders, depth + 2);
    EXPECT_LE(mostOpen, openBefore + 40);
    EXPECT_EQ(std::system(("rm -rf '" + root.string() + "'").c_str()), 0);
}

TEST_F(FileManagerTest, aFolderThatIsMovedElsewhereWhileItIsWalkedEndsTheWalk) {
    fs::path below = "root";
    for (int level = 0; level < 100; ++level) {
        below /= "d";
    }
    folder.write(below / "file", "1");
    folder.write("elsewhere/file", "kept");
    const auto walk = manager->enumerator(folder / "root");
    do {
        ASSERT_TRUE(walk->next());
    } while (walk->name() != "file");
    fs::rename(folder / "root/d/d/d", folder / "elsewhere/d");
    EXPECT_EQ(static_cast<int>(errorThrownBy([&] { walk->next(); })), ESTALE);
    EXPECT_EQ(tests::readFile(folder / "elsewhere/file"), "kept");
}

TEST_F(FileManagerTest, errorsNameThePathOfTheEntry) {
    folder.makeFolder("root/sub/inner");
    const auto walk = manager->enumerator(folder / "root");
    ASSERT_TRUE(walk->next());
    ASSERT_TRUE(walk->next());
    try {
        walk->remove();
        FAIL() << "a folder was deleted";
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.path1(), folder / "root/sub/inner");
    }
    EXPECT_TRUE(fs::is_directory(folder / "root/sub/inner"));
}

}  // namespace
}  // namespace browsersweep
