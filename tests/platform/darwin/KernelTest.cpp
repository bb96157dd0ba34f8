// What the files for macOS rely on in its kernel. Both a Mac and the emulation must hold to it.
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/clonefile.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/FileDescriptor.h"

#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

/** A file with the locked flag, which it loses again. */
class LockedFile {
public:
    LockedFile(const tests::TemporaryFolder& folder, const char* name)
        : path_(folder.write(name, "locked")) {
        EXPECT_EQ(::chflags(path_.c_str(), UF_IMMUTABLE), 0);
    }
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;
    ~LockedFile() { ::chflags(path_.c_str(), 0); }

    const fs::path& path() const noexcept { return path_; }

private:
    fs::path path_;
};

FileDescriptor opened(const fs::path& path, int flags = O_RDONLY) {
    return FileDescriptor(::open(path.c_str(), flags | O_CLOEXEC));
}

/** The error of a call that returns -1 where it fails. */
template <typename Call>
int errorOf(Call call) {
    errno = 0;
    return call() < 0 ? errno : 0;
}

class KernelTest : public testing::Test {
protected:
    int clone(const char* from, const char* to, std::uint32_t flags) const {
        const FileDescriptor source = opened(folder / from);
        return errorOf([&] {
            return ::fclonefileat(source.number(), AT_FDCWD, (folder / to).c_str(), flags);
        });
    }

    bool clones() const {
        folder.write("probe", "x");
        const bool result = clone("probe", "probed", CLONE_NOFOLLOW) == 0;
        fs::remove(folder / "probed");
        return result;
    }

    tests::TemporaryFolder folder;
};

TEST_F(KernelTest, theFlagOfACloneIsAboutTheLinkAtItsTarget) {
    if (!clones()) {
        GTEST_SKIP() << "this file system has no clones";
    }
    folder.write("file", "contents");
    fs::create_symlink("elsewhere", folder / "link");
    EXPECT_EQ(clone("file", "link", CLONE_NOFOLLOW), EEXIST);
    EXPECT_FALSE(fs::exists(folder / "elsewhere"));
    EXPECT_EQ(clone("file", "link", 0), 0);
    EXPECT_EQ(tests::readFile(folder / "elsewhere"), "contents");
    EXPECT_EQ(clone("file", "file", 0), EEXIST);
}

TEST_F(KernelTest, aCloneTakesModeAndFlagsOver) {
    if (!clones()) {
        GTEST_SKIP() << "this file system has no clones";
    }
    const LockedFile source(folder, "file");
    ASSERT_EQ(clone("file", "copy", CLONE_NOFOLLOW), 0);
    const FileDescriptor copy = opened(folder / "copy");
    struct stat status = {};
    ASSERT_EQ(::fstat(copy.number(), &status), 0);
    EXPECT_EQ(static_cast<unsigned>(status.st_flags) & UF_IMMUTABLE, UF_IMMUTABLE + 0U);
    EXPECT_EQ(errorOf([&] { return ::fchmod(copy.number(), 0600); }), EPERM);
    EXPECT_EQ(::fchflags(copy.number(), 0), 0);
    EXPECT_EQ(::fchmod(copy.number(), 0600), 0);
}

TEST_F(KernelTest, aLockedFileCanNeitherBeChangedNorMovedNorDeleted) {
    const LockedFile file(folder, "file");
    const char* const path = file.path().c_str();
    EXPECT_EQ(errorOf([&] { return opened(path, O_WRONLY).number(); }), EPERM);
    EXPECT_EQ(errorOf([&] { return ::chmod(path, 0600); }), EPERM);
    EXPECT_EQ(errorOf([&] { return ::unlink(path); }), EPERM);
    EXPECT_EQ(errorOf([&] { return ::rename(path, (folder / "moved").c_str()); }), EPERM);
    EXPECT_EQ(tests::readFile(path), "locked");
}

TEST_F(KernelTest, twoFoldersAreExchangedInOneStep) {
    folder.write("one/file", "1");
    folder.write("other/file", "2");
    const FileDescriptor parent = opened(folder.path());
    const auto exchange = [&](const char* with) {
        return errorOf([&] {
            return ::renameatx_np(parent.number(), "one", parent.number(), with, RENAME_SWAP);
        });
    };
    EXPECT_EQ(exchange("gone"), ENOENT);
    EXPECT_EQ(exchange("other"), 0);
    EXPECT_EQ(folder.snapshot(),
              (std::vector<std::string>{"one/", "one/file: 2", "other/", "other/file: 1"}));
}

TEST_F(KernelTest, unlinkRefusesAFolderWithEPERM) {
    folder.makeFolder("sub");
    EXPECT_EQ(errorOf([&] { return ::unlink((folder / "sub").c_str()); }), EPERM);
}

TEST_F(KernelTest, aLinkThatMustBeAFolderAndNotFollowedIsALink) {
    folder.makeFolder("sub");
    fs::create_symlink("sub", folder / "link");
    EXPECT_EQ(errorOf([&] {
                  return ::open((folder / "link").c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
              }),
              ELOOP);
}

TEST_F(KernelTest, aNameIsUTF8) {
    const std::string path = (folder / "\xFF").string();
    EXPECT_EQ(errorOf([&] { return ::open(path.c_str(), O_CREAT | O_WRONLY, 0600); }), EILSEQ);
    EXPECT_EQ(errorOf([&] { return ::mkdir(path.c_str(), 0700); }), EILSEQ);
    EXPECT_FALSE(fs::exists(path));
}

}  // namespace
}  // namespace browsersweep
