#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/ProcessLauncher.h"

#include "tests/support/Bytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/linux/RefusedSystemCalls.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::bytes;
using tests::Refusal;

constexpr unsigned flagsOfStatusAt = 3;

/** Asking for the status of an open file, by either of the calls that C libraries use. */
std::vector<Refusal> statusOfOpenFiles(int error) {
    return {{SYS_fstat, error}, {SYS_newfstatat, error, flagsOfStatusAt, AT_EMPTY_PATH}};
}

/**
 * Writing as much as this text. The sanitizer of undefined behaviour writes too, to learn whether
 * memory can be read, and ends the process where that fails in a way that it does not expect; what
 * it writes is a multiple of eight bytes long.
 */
Refusal writingOf(std::string_view text, int error) {
    constexpr unsigned lengthOfWrite = 2;
    return {SYS_write, error, lengthOfWrite, static_cast<std::uint32_t>(text.size())};
}

struct Failure {
    std::string text;
    int error = 0;

    bool operator==(const Failure&) const = default;
};

void PrintTo(const Failure& failure, std::ostream* stream) {
    *stream << failure.text << " (" << failure.error << ")";
}

/** What an operation throws, without the paths; nothing if it succeeds. */
Failure failureOf(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const fs::filesystem_error& error) {
        const std::string text = error.what();
        const std::string start = "filesystem error: ";
        const std::size_t end = text.find(": ", start.size());
        return {text.substr(start.size(), end - start.size()), error.code().value()};
    }
    return {};
}

class RefusedSystemCalls : public testing::Test {
protected:
    void SetUp() override {
        bool can = false;
        tests::inOwnThread([&] { can = tests::refuse({}); });
        if (!can) {
            GTEST_SKIP() << "system calls cannot be filtered here";
        }
    }

    /** What an operation throws while the kernel refuses some calls. */
    static Failure failureWithout(const std::vector<Refusal>& refused,
                                  const std::function<void()>& operation) {
        Failure failure;
        tests::inOwnThread([&] {
            ASSERT_TRUE(tests::refuse(refused));
            failure = failureOf(operation);
        });
        return failure;
    }

    tests::TemporaryFolder folder;
    std::shared_ptr<const FileManager> manager = FileManager::forHome(folder.path());
};

TEST_F(RefusedSystemCalls, anOpenFileThatCannotBeExaminedIsNotRead) {
    const fs::path file = folder.write("file", "12345");
    const Failure expected{"cannot examine", EIO};
    const auto refused = statusOfOpenFiles(EIO);
    EXPECT_EQ(failureWithout(refused, [&] { manager->contents(file); }), expected);
    EXPECT_EQ(failureWithout(refused, [&] { manager->firstBytes(file, 2); }), expected);
    EXPECT_EQ(failureWithout(refused, [&] { manager->copy(file, folder / "copy"); }), expected);
    EXPECT_EQ(failureWithout({{SYS_statx, EIO}}, [&] { manager->enumerator(folder.path()); }),
              (Failure{"cannot examine directory", EIO}));
    EXPECT_FALSE(fs::exists(folder / "copy"));
}

TEST_F(RefusedSystemCalls, aFileThatCannotBeReadIsAnError) {
    const fs::path file = folder.write("file", "12345");
    const Failure expected{"cannot read", EIO};
    EXPECT_EQ(failureWithout({{SYS_read, EIO}}, [&] { manager->contents(file); }), expected);
    EXPECT_EQ(failureWithout({{SYS_read, EIO}}, [&] { manager->firstBytes(file, 2); }), expected);
}

TEST_F(RefusedSystemCalls, aCopyThatTheKernelCannotMakeIsMadeThroughABuffer) {
    const std::string large(700'000, 'x');
    const fs::path file = folder.write("file", large);
    for (const int error : {EXDEV, EOPNOTSUPP, EINVAL, ENOSYS, EPERM}) {
        const fs::path copy = folder / ("copy" + std::to_string(error));
        EXPECT_EQ(failureWithout({{SYS_ioctl, ENOTTY}, {SYS_copy_file_range, error}},
                                 [&] { manager->copy(file, copy); }),
                  Failure());
        EXPECT_EQ(tests::readFile(copy), large);
    }
}

TEST_F(RefusedSystemCalls, aCopyAsksBetweenItsPiecesWhetherToGoOn) {
    const fs::path file = folder.write("file", std::string(2'000'000, 'x'));
    const auto control = std::make_shared<OperationControl>(
        [](const OperationProgress& done) { return done.bytes >= 1'000'000; });
    const auto controlled = FileManager::forHome(folder.path(), control);
    const std::vector<Refusal> refused{{SYS_ioctl, ENOTTY}, {SYS_copy_file_range, ENOSYS}};
    tests::inOwnThread([&] {
        ASSERT_TRUE(tests::refuse(refused));
        EXPECT_THROW(controlled->copy(file, folder / "copy"), OperationCancelled);
    });
    EXPECT_GE(control->progress().bytes, 1'000'000U);
    EXPECT_LT(control->progress().bytes, 2'000'000U);
}

TEST_F(RefusedSystemCalls, aCopyThatFailsWithinTheKernelOrTheBufferIsAnError) {
    const std::string contents = "12345";
    const fs::path file = folder.write("file", contents);
    const Refusal noClone{SYS_ioctl, ENOTTY};
    const Refusal noCopy{SYS_copy_file_range, ENOSYS};
    EXPECT_EQ(failureWithout({noClone, {SYS_copy_file_range, EIO}},
                             [&] { manager->copy(file, folder / "1"); }),
              (Failure{"cannot copy", EIO}));
    EXPECT_EQ(failureWithout({noClone, noCopy, writingOf(contents, ENOSPC)},
                             [&] { manager->copy(file, folder / "2"); }),
              (Failure{"cannot write", ENOSPC}));
    EXPECT_EQ(failureWithout({noClone, noCopy, {SYS_read, EIO}},
                             [&] { manager->copy(file, folder / "3"); }),
              (Failure{"cannot read", EIO}));
}

struct FailedReplacement {
    std::vector<Refusal> refused;
    Failure failure;
};

TEST_F(RefusedSystemCalls, aReplacementThatFailsKeepsTheOldFileAndLeavesNothingBeside) {
    const fs::path file = folder.write("sub/file", "old");
    const std::vector<FailedReplacement> cases{
        {{writingOf("new", ENOSPC)}, {"cannot write", ENOSPC}},
        {{{SYS_fsync, EIO}}, {"cannot sync", EIO}},
        {{{SYS_fchmod, EPERM}}, {"cannot keep the mode of", EPERM}},
        {statusOfOpenFiles(EIO), {"cannot examine", EIO}},
    };
    for (const FailedReplacement& each : cases) {
        SCOPED_TRACE(each.failure.text);
        EXPECT_EQ(failureWithout(each.refused, [&] { manager->replace(file, bytes("new")); }),
                  each.failure);
        EXPECT_EQ(tests::readFile(file), "old");
        EXPECT_EQ(folder.snapshot().size(), 2U);
    }
}

TEST_F(RefusedSystemCalls, aReplacementThatCannotKeepTheOwnerKeepsTheOldFile) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    const fs::path file = folder.write("sub/file", "old");
    ASSERT_EQ(::chown(file.c_str(), 1234, 1234), 0);
    EXPECT_EQ(failureWithout({{SYS_fchown, EPERM}}, [&] { manager->replace(file, bytes("new")); }),
              (Failure{"cannot keep the owner of", EPERM}));
    EXPECT_EQ(tests::readFile(file), "old");
    EXPECT_EQ(folder.snapshot().size(), 2U);
}

TEST_F(RefusedSystemCalls, aReplacementOfAFolderThatFailsKeepsTheOldOneAndLeavesNothingBeside) {
    const std::string made = "1234567";
    folder.write("Library/store/file", "old");
    folder.write("new/file", made);
    const std::vector<std::string> before = folder.snapshot();
    const std::vector<std::pair<Refusal, Failure>> cases{
        {{SYS_mkdirat, ENOSPC}, {"cannot create directory", ENOSPC}},
        {writingOf(made, ENOSPC), {"cannot write", ENOSPC}},
        {{SYS_fsync, EIO}, {"cannot sync", EIO}},
        {{SYS_fchmod, EPERM}, {"cannot keep the mode of", EPERM}},
        {{SYS_renameat2, EINVAL}, {"cannot replace", EINVAL}},
    };
    for (const auto& [refusal, expected] : cases) {
        const auto replace = [this] {
            manager->replaceFolder(folder / "Library/store", folder / "new");
        };
        EXPECT_EQ(failureWithout({refusal}, replace), expected);
        EXPECT_EQ(folder.snapshot(), before);
    }
}

TEST_F(RefusedSystemCalls, anOldFolderThatCannotBeDeletedStaysBesideUnderANameThatIsKnown) {
    folder.write("Library/store/file", "old");
    folder.write("new/file", "new");
    EXPECT_EQ(failureWithout(
                  {{SYS_unlinkat, EIO}},
                  [this] { manager->replaceFolder(folder / "Library/store", folder / "new"); }),
              (Failure{"cannot delete", EIO}));
    EXPECT_EQ(tests::readFile(folder / "Library/store/file"), "new");
    std::vector<std::string> left;
    for (const FolderEntry& entry : manager->entries(folder / "Library")) {
        if (FileManager::isLeftByReplacing(entry.name, "store")) {
            left.push_back(tests::readFile(folder / "Library" / entry.name / "file"));
        }
    }
    EXPECT_EQ(left, std::vector<std::string>{"old"});
}

TEST_F(RefusedSystemCalls, aFolderThatCannotBeOpenedForLackOfDescriptorsIsAnError) {
    EXPECT_EQ(failureWithout({{SYS_openat, EMFILE}}, [&] { manager->enumerator(folder.path()); }),
              (Failure{"cannot open directory", EMFILE}));
}

TEST_F(RefusedSystemCalls, aFolderThatCannotBeListedIsAnError) {
    folder.write("sub/file", "1");
    EXPECT_EQ(failureWithout({{SYS_getdents64, EIO}},
                             [&] { manager->enumerator(folder.path())->next(); }),
              (Failure{"cannot list directory", EIO}));
}

TEST_F(RefusedSystemCalls, anEntryThatCannotBeExaminedIsAnErrorAndHasNoDate) {
    folder.write("file", "1");
    const std::vector<Refusal> refused{{SYS_statx, EIO}};
    const Failure expected{"cannot examine", EIO};
    tests::inOwnThread([&] {
        const auto walk = manager->enumerator(folder.path());
        ASSERT_TRUE(walk->next());
        ASSERT_TRUE(tests::refuse(refused));
        EXPECT_EQ(failureOf([&] { walk->fileSize(); }), expected);
        EXPECT_EQ(walk->creationDate(), std::nullopt);
        EXPECT_EQ(walk->isDirectory(), false);  // the listing has said so
    });
}

TEST_F(RefusedSystemCalls, anEntryThatCannotBeDeletedIsAnError) {
    folder.write("file", "1");
    tests::inOwnThread([&] {
        const auto walk = manager->enumerator(folder.path());
        ASSERT_TRUE(walk->next());
        ASSERT_TRUE(tests::refuse({{SYS_unlinkat, EIO}}));
        EXPECT_EQ(failureOf([&] { walk->remove(); }), (Failure{"cannot delete", EIO}));
    });
    EXPECT_TRUE(fs::exists(folder / "file"));
}

TEST_F(RefusedSystemCalls, aFolderInMidWalkThatCannotBeOpenedForLackOfDescriptorsIsAnError) {
    folder.write("sub/file", "1");
    tests::inOwnThread([&] {
        const auto walk = manager->enumerator(folder.path());
        ASSERT_TRUE(walk->next());
        ASSERT_TRUE(tests::refuse({{SYS_openat, EMFILE}}));
        EXPECT_EQ(failureOf([&] { walk->next(); }), (Failure{"cannot open directory", EMFILE}));
    });
}

/** A walk that stands at a file deeper than it keeps folders open: the way back is to be opened. */
class DeepWalk {
public:
    explicit DeepWalk(const tests::TemporaryFolder& folder) {
        fs::path below = "deep";
        for (int level = 0; level < depth; ++level) {
            below /= "d";
        }
        folder.write(below / "file", "1");
        walk_ = FileManager::forHome(folder.path())->enumerator(folder / "deep");
        for (int entry = 0; entry < depth + 1; ++entry) {
            EXPECT_TRUE(walk_->next());
        }
        EXPECT_EQ(walk_->name(), "file");
    }

    /** Goes all the way back. */
    void finish() const { EXPECT_FALSE(walk_->next()); }

private:
    static constexpr int depth = 100;

    std::unique_ptr<DirectoryEnumerator> walk_;
};

TEST_F(RefusedSystemCalls, aParentThatCannotBeOpenedAgainIsAnError) {
    tests::inOwnThread([&] {
        const DeepWalk deep(folder);
        ASSERT_TRUE(tests::refuse({{SYS_openat, EMFILE}}));
        EXPECT_EQ(failureOf([&] { deep.finish(); }),
                  (Failure{"cannot return to directory", EMFILE}));
    });
}

TEST_F(RefusedSystemCalls, aParentThatCannotBeExaminedAgainIsAnError) {
    tests::inOwnThread([&] {
        const DeepWalk deep(folder);
        ASSERT_TRUE(tests::refuse({{SYS_statx, EIO}}));
        EXPECT_EQ(failureOf([&] { deep.finish(); }), (Failure{"cannot return to directory", EIO}));
    });
}

TEST_F(RefusedSystemCalls, aFileThatIsLongerThanItSaysIsReadToItsEnd) {
    const Bytes found = manager->contents("/proc/self/status");  // which says that it is empty
    EXPECT_GT(found.size(), 100U);
    EXPECT_EQ(found.back(), '\n');
}

TEST_F(RefusedSystemCalls, theSystemHasNoDirectoriesOfItsOwnForBrowsers) {
    EXPECT_TRUE(FileManager::defaultManager()->directories(SearchPathDirectory::caches).empty());
}

TEST_F(RefusedSystemCalls, theHomeOfAUserWithoutAnAccountIsAnError) {
    const std::string home = std::getenv("HOME");
    ::unsetenv("HOME");
    ::unsetenv("CFFIXED_USER_HOME");
    tests::inOwnThread([&] {
        constexpr unsigned nobodysNumber = 1'999'999'999;
        if (tests::becomeUser(nobodysNumber)) {
            const Failure failure =
                failureOf([] { FileManager::defaultManager()->homeDirectory(); });
            EXPECT_EQ(failure, (Failure{"the user has no home folder", ENOENT}));
        }
    });
    ::setenv("HOME", home.c_str(), 1);
    ::setenv("CFFIXED_USER_HOME", home.c_str(), 1);
}

TEST_F(RefusedSystemCalls, aProgramThatCannotBeStartedIsPassedOverInSilence) {
    const fs::path made = folder / "made";
    const std::vector<std::string> arguments{made.string()};
    tests::inOwnThread([&] {
        ASSERT_TRUE(
            tests::refuse({{SYS_clone, EAGAIN}, {SYS_clone3, EAGAIN}, {SYS_execve, EACCES}}));
        ProcessLauncher::system()->runAndWait("/usr/bin/touch", arguments);
    });
    EXPECT_FALSE(fs::exists(made));
}

}  // namespace
}  // namespace browsersweep
