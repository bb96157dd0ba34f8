// That the emulation is what its settings say. Each test sets what it needs and ignores the mode
// that the whole suite is run in.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/attr.h>
#include <sys/clonefile.h>
#include <sys/stat.h>
#include <sys/sysctl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/hosting/ItemExamination.h"
#include "browsersweep/platform/Accessibility.h"
#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/OperatingSystemVersion.h"
#include "browsersweep/platform/internal/posix/EntryStatus.h"
#include "browsersweep/platform/internal/posix/FileDescriptor.h"

#include "tests/darwin/emulation/Dataless.h"
#include "tests/support/Bytes.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

/** An environment variable that is given back as it was. */
class Setting {
public:
    Setting(const char* name, const std::string& value) : name_(name) {
        const char* const before = std::getenv(name);
        before_ = before == nullptr ? "" : before;
        ::setenv(name, value.c_str(), 1);
    }
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;
    ~Setting() { ::setenv(name_, before_.c_str(), 1); }

private:
    const char* name_;
    std::string before_;
};

class EmulationTest : public testing::Test {
protected:
    std::vector<std::string> names(const fs::path& root) const {
        std::vector<std::string> found;
        const auto walk = manager->enumerator(root);
        while (walk && walk->next()) {
            found.emplace_back(walk->name());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    std::uint64_t bytesBelow(const fs::path& root) const {
        std::uint64_t bytes = 0;
        const auto walk = manager->enumerator(root);
        while (walk && walk->next()) {
            bytes += walk->fileSize().value_or(0);
        }
        return bytes;
    }

    tests::TemporaryFolder folder;
    std::shared_ptr<const FileManager> manager = FileManager::forHome(folder.path());
    const Setting plain{"DARWIN_EMULATION", ""};
};

TEST_F(EmulationTest, clonesCanBeRefused) {
    folder.write("file", "x");
    const FileDescriptor source(::open((folder / "file").c_str(), O_RDONLY));
    const Setting without("DARWIN_EMULATION", "clone=no");
    EXPECT_EQ(::fclonefileat(source.number(), AT_FDCWD, (folder / "copy").c_str(), 0), -1);
    EXPECT_EQ(errno, ENOTSUP);
    manager->copy(folder / "file", folder / "copy");
    EXPECT_EQ(tests::readFile(folder / "copy"), "x");
}

TEST_F(EmulationTest, exchangesCanBeRefusedAndThenAFolderStaysAsItIs) {
    folder.write("Library/store/file", "old");
    folder.write("new/file", "new");
    const auto before = folder.snapshot();
    {
        const Setting without("DARWIN_EMULATION", "swap=no");
        EXPECT_THROW(manager->replaceFolder(folder / "Library/store", folder / "new"),
                     fs::filesystem_error);
    }
    EXPECT_EQ(folder.snapshot(), before);
    EXPECT_TRUE(manager->replaceFolder(folder / "Library/store", folder / "new"));
}

TEST_F(EmulationTest, theStrongSyncsCanBeRefused) {
    const FileDescriptor file(::open(folder.write("file", "x").c_str(), O_RDONLY));
    EXPECT_EQ(::fcntl(file.number(), F_FULLFSYNC), 0);
    const Setting without("DARWIN_EMULATION", "sync=no");
    EXPECT_EQ(::fcntl(file.number(), F_FULLFSYNC), -1);
    EXPECT_EQ(errno, ENOTSUP);
}

TEST_F(EmulationTest, attributesAreCopied) {
    const fs::path file = folder.write("file", "old");
    if (::setxattr(file.c_str(), "user.note", "kept", 4, 0) != 0) {
        GTEST_SKIP() << "this file system keeps no attributes";
    }
    manager->replace(file, tests::bytes("new"));
    EXPECT_EQ(tests::readFile(file), "new");
    std::array<char, 16> note{};
    ASSERT_EQ(::getxattr(file.c_str(), "user.note", note.data(), note.size()), 4);
    EXPECT_STREQ(note.data(), "kept");
}

TEST_F(EmulationTest, aFileSystemWithoutBirthTimesHasNoDates) {
    folder.write("root/file", "12345");
    for (const char* words : {"birth=no", "birth=no,bulk=no"}) {
        const Setting without("DARWIN_EMULATION", words);
        const auto walk = manager->enumerator(folder / "root");
        ASSERT_TRUE(walk->next());
        EXPECT_EQ(walk->fileSize(), 5U);
        EXPECT_EQ(walk->creationDate(), std::nullopt) << words;
    }
}

TEST_F(EmulationTest, kindsSizesAndBulkListingsAreFoundOutWithoutTheListingsHelp) {
    folder.write("root/file", "12345");
    folder.write("root/sub/other", "123");
    for (const char* words : {"", "sizes=no", "bulk=no", "bulk=no,kinds=no"}) {
        const Setting without("DARWIN_EMULATION", words);
        EXPECT_EQ(names(folder / "root"), (std::vector<std::string>{"file", "other", "sub"}));
        EXPECT_EQ(bytesBelow(folder / "root"), 8U) << words;
    }
}

TEST_F(EmulationTest, aListingLeavesEntriesOutOnceOthersAreDeleted) {
    constexpr int count = 3000;
    folder.makeFolder("root");
    for (int number = 0; number < count; ++number) {
        folder.write("root/some-longer-file-name-" + std::to_string(number), "");
    }
    const FileDescriptor directory(::open((folder / "root").c_str(), O_RDONLY | O_DIRECTORY));
    attrlist wanted{};
    wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
    std::vector<char> buffer(std::size_t{64} * 1024);
    const int first =
        ::getattrlistbulk(directory.number(), &wanted, buffer.data(), buffer.size(), 0);
    ASSERT_GT(first, 0);
    ASSERT_LT(first, count);
    for (const auto& entry : fs::directory_iterator(folder / "root")) {
        fs::remove(entry);
    }
    EXPECT_EQ(::getattrlistbulk(directory.number(), &wanted, buffer.data(), buffer.size(), 0), 0);
}

TEST_F(EmulationTest, namesThatDifferInCaseOrCompositionAloneAreTheSame) {
    folder.write("Stra\u00DFe/Caf\u00E9", "x");
    EXPECT_FALSE(fs::exists(folder / "STRASSE"));
    const Setting insensitive("DARWIN_EMULATION", "names=insensitive");
    EXPECT_EQ(tests::readFile(folder / "STRASSE/cafe\u0301"), "x");
    folder.write("stra\u00DFe/CAF\u00C9", "y");
    EXPECT_EQ(tests::readFile(folder / "Stra\u00DFe/Caf\u00E9"), "y");
    EXPECT_EQ(names(folder.path()), (std::vector<std::string>{"Caf\u00E9", "Stra\u00DFe"}));
    EXPECT_FALSE(fs::exists(folder / "strasse/cafe"));
}

TEST_F(EmulationTest, namesCanBeStoredDecomposed) {
    const Setting decomposed("DARWIN_EMULATION", "names=decomposed");
    folder.write("Caf\u00E9", "x");
    EXPECT_EQ(names(folder.path()), std::vector<std::string>{"Cafe\u0301"});
    EXPECT_EQ(tests::readFile(folder / "Caf\u00E9"), "x");
}

TEST_F(EmulationTest, aProtectedFolderIsRefusedAndItsFilesAreHidden) {
    folder.write("Safari/History.db", "x");
    const fs::path guarded = folder / "Safari";
    const Setting protection("DARWIN_PROTECTED", guarded.string());
    EXPECT_TRUE(fs::is_directory(guarded));
    EXPECT_EQ(::open(guarded.c_str(), O_RDONLY), -1);
    EXPECT_EQ(errno, EPERM);
    EXPECT_FALSE(fs::exists(guarded / "History.db"));
    EXPECT_EQ(accessibility(guarded), Accessibility::deniedByPrivacyProtection);
    EXPECT_EQ(accessibility(guarded / "History.db"), Accessibility::deniedByPrivacyProtection);
    EXPECT_EQ(accessibility(guarded / "no/such/file"), Accessibility::deniedByPrivacyProtection);
    EXPECT_EQ(accessibility(folder / "gone"), Accessibility::missing);
    EXPECT_EQ(manager->enumerator(guarded), nullptr);
}

TEST_F(EmulationTest, olderSystemsShowTheFilesOfAProtectedFolder) {
    folder.write("Safari/History.db", "x");
    const fs::path file = folder / "Safari/History.db";
    const Setting protection("DARWIN_PROTECTED", (folder / "Safari").string());
    const Setting older("DARWIN_EMULATION", "hide=no");
    EXPECT_TRUE(fs::exists(file));
    EXPECT_EQ(::open(file.c_str(), O_RDONLY), -1);
    EXPECT_EQ(errno, EPERM);
    EXPECT_EQ(accessibility(file), Accessibility::deniedByPrivacyProtection);
}

TEST_F(EmulationTest, measuringFetchesNothingFromTheCloud) {
    folder.write("root/here", "12345");
    folder.write("root/cloud/file", "12345");
    const Setting dataless("DARWIN_DATALESS", (folder / "root/cloud").string());
    const int before = browsersweepEmulatedDownloads();
    EXPECT_EQ(bytesBelow(folder / "root"), 5U);
    EXPECT_EQ(manager->enumerator(folder / "root/cloud"), nullptr);
    EXPECT_EQ(accessibility(folder / "root/cloud"), Accessibility::reachable);
    EXPECT_EQ(browsersweepEmulatedDownloads(), before);
    // The policy was this thread's own again all the while.
    EXPECT_TRUE(fs::directory_iterator(folder / "root/cloud") != fs::directory_iterator());
    EXPECT_EQ(browsersweepEmulatedDownloads(), before + 1);
}

TEST_F(EmulationTest, whatTheDiskWouldGainIsSummedUpWithoutFetchingAnything) {
    const std::string block(4096, 'x');
    for (const char* place : {"root/cloud/file", "root/a/file", "root/z/file"}) {
        folder.write(place, block);
    }
    const Setting dataless("DARWIN_DATALESS", (folder / "root/cloud").string());
    const int before = browsersweepEmulatedDownloads();
    const CleanableDirectory item{folder / "root", true, {}, manager};
    EXPECT_EQ(allocatedBytes(item, nullptr), std::int64_t{2} * 4096);
    EXPECT_EQ(browsersweepEmulatedDownloads(), before);
}

TEST_F(EmulationTest, theVersionOfTheSystemIsASetting) {
    const Setting older("DARWIN_EMULATION", "version=12.7.1");
    EXPECT_EQ(OperatingSystemVersion::current(), (OperatingSystemVersion{12, 7, 1}));
}

}  // namespace
}  // namespace browsersweep
