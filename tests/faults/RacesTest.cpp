#include <cerrno>
#include <csignal>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/platform/internal/posix/FileDescriptor.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/ForwardingFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/SampleHome.h"
#include "tests/support/SystemUnderTest.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::TemporaryFolder;

constexpr int swapCount = 100'000;
constexpr int preciousCount = 20;

CleanableDirectory itemOver(const fs::path& folder, std::shared_ptr<const FileManager> manager) {
    return {folder, true, {}, std::move(manager)};
}

/** In another process: does something again and again, and a hundred thousand times for certain. */
class Meddler {
public:
    /** One round, and whether it counts: each step may find the other process' work in its way. */
    using Round = std::function<bool()>;

    explicit Meddler(const Round& round) : process_(::fork()) {
        if (process_ == 0) {
            for (int rounds = 0; rounds < swapCount;) {
                rounds += round() ? 1 : 0;
            }
            ::_exit(0);
        }
    }
    Meddler(const Meddler&) = delete;
    Meddler& operator=(const Meddler&) = delete;
    ~Meddler() {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            ::waitpid(process_, nullptr, 0);
        }
    }

    bool hasEnded() {
        int status = 0;
        if (process_ > 0 && ::waitpid(process_, &status, WNOHANG) == process_) {
            process_ = -1;
            endedWell_ = WIFEXITED(status) && WEXITSTATUS(status) == 0;
        }
        return process_ == -1;
    }
    bool endedWell() const noexcept { return endedWell_; }

private:
    pid_t process_;
    bool endedWell_ = false;
};

void makeFile(const fs::path& file) {
    ::close(::open(file.c_str(), O_CREAT | O_WRONLY | O_NOFOLLOW | O_EXCL | O_CLOEXEC, 0600));
}

/** Puts a link in a folder's place, and takes it back. */
bool becomesALinkAndBack(const fs::path& folder, const fs::path& target) {
    const fs::path aside = folder.string() + " aside";
    ::rename(folder.c_str(), aside.c_str());
    const bool isLink = ::symlink(target.c_str(), folder.c_str()) == 0;
    if (isLink) {
        ::unlink(folder.c_str());
    }
    ::rename(aside.c_str(), folder.c_str());
    return isLink;
}

/** A home with something precious in it, for races over what must not be deleted. */
class PreciousRaces : public testing::Test {
protected:
    void SetUp() override {
        for (int index = 0; index < preciousCount; ++index) {
            home.write("precious/" + std::to_string(index), "kept");
        }
        home.write("precious/below/file", "kept");
        before_ = tests::filesBelow(home / "precious");
    }

    /** Does something until the other process has ended. By rule a step may end with an error. */
    void raceAgainst(const Meddler::Round& round, const std::function<void()>& step) const {
        Meddler meddler(round);
        std::size_t successes = 0;
        while (!meddler.hasEnded()) {
            try {
                step();
            } catch (const fs::filesystem_error&) {
                continue;
            }
            ++successes;
        }
        EXPECT_TRUE(meddler.endedWell());
        EXPECT_GT(successes, 0U);
        EXPECT_EQ(tests::differences(before_, tests::filesBelow(home / "precious")),
                  std::vector<std::string>());
    }

    const TemporaryFolder home{tests::folderInMemory()};
    const std::shared_ptr<const FileManager> manager = tests::GuardedFileManager::forFixture(home);

private:
    tests::Files before_;
};

TEST_F(PreciousRaces, aFolderThatBecomesALinkWhileItIsCleanedLosesNothingBehindTheLink) {
    const fs::path cache = home.makeFolder("cache");
    const auto item = itemOver(cache, manager);
    const auto round = [this, folder = cache / "sub"] {
        ::mkdir(folder.c_str(), 0700);
        makeFile(folder / "file");
        return becomesALinkAndBack(folder, home / "precious");
    };
    raceAgainst(round, [&item] { item.clean(); });
}

TEST_F(PreciousRaces, anAncestorThatBecomesALinkWhileAFolderIsCleanedLosesNothingBehindTheLink) {
    const fs::path ancestor = home.makeFolder("Library/Caches/browser");
    home.makeFolder("Library/Caches/browser/below");
    const auto item = itemOver(ancestor / "below", manager);
    const auto round = [this, ancestor] {
        makeFile(ancestor / "below/file");
        return becomesALinkAndBack(ancestor, home / "precious");
    };
    raceAgainst(round, [&item] { item.clean(); });
}

TEST_F(PreciousRaces, aFileThatAFolderTakesThePlaceOfIsDeletedAndTheFolderStays) {
    const fs::path file = home.makeFolder("Library/Cookies") / "Cookies.binarycookies";
    const fs::path aside = home / "Library/Cookies/aside";
    const auto round = [this, file, aside] {
        makeFile(file);
        ::rename(file.c_str(), aside.c_str());
        const bool isFolder = ::rename((home / "precious").c_str(), file.c_str()) == 0;
        ::rename(file.c_str(), (home / "precious").c_str());
        ::rename(aside.c_str(), file.c_str());
        return isFolder;
    };
    raceAgainst(round, [&] { manager->removeFile(file); });
}

/** Makes folders within each other, by descriptor: no path reaches that far. */
void makeDeep(const fs::path& folder, int depth) {
    int parent = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int level = 0; level < depth; ++level) {
        ASSERT_EQ(::mkdirat(parent, "d", 0700), 0);
        const int child = ::openat(parent, "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ASSERT_GE(child, 0);
        ::close(parent);
        parent = child;
    }
    const int file = ::openat(parent, "file", O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    ASSERT_EQ(::write(file, "12345", 5), 5);
    ::close(file);
    ::close(parent);
}

/** Removes what makeDeep made: the recursion of the standard library would not get that far. */
void removeDeep(const fs::path& folder, int depth) {
    for (; depth > 0; --depth) {
        // The innermost part is moved up, so that every path stays short.
        const fs::path inner = folder / "d" / "d";
        const fs::path aside = folder / "aside";
        const bool isLast = ::rename(inner.c_str(), aside.c_str()) != 0;
        fs::remove_all(folder / "d");
        if (isLast) {
            return;
        }
        fs::rename(aside, folder / "d");
    }
}

TEST(Races, aFileTenThousandFoldersDeepIsCountedAndDeletedAndTheFoldersStay) {
    constexpr int depth = 10'000;
    const TemporaryFolder home(tests::folderInMemory());
    const fs::path cache = home.makeFolder("cache");
    makeDeep(cache, depth);
    const auto item = itemOver(cache, tests::GuardedFileManager::forFixture(home));
    EXPECT_EQ(item.size(), (CleanableDataSize{1, 5}));
    item.clean();
    EXPECT_EQ(item.size(), CleanableDataSize::zero);
    EXPECT_TRUE(fs::is_directory(cache / "d" / "d"));
    removeDeep(cache, depth);
}

TEST(Races, namesAsLongAsTheSystemAllowsAreCountedAndDeleted) {
    const TemporaryFolder home(tests::folderInMemory());
    const std::string longest(255, 'n');
    std::string wide;  // of three bytes each
    for (int index = 0; index < 85; ++index) {
        wide += "\xE2\x82\xAC";
    }
    home.write(fs::path("cache") / longest / longest / longest, "1");
    home.write(fs::path("cache") / wide, "22");
    home.write(fs::path("cache") / "new\nline\\ \"quoted\"", "333");
    const auto item = itemOver(home / "cache", tests::GuardedFileManager::forFixture(home));
    EXPECT_EQ(item.size(), (CleanableDataSize{3, 6}));
    item.clean();
    EXPECT_EQ(item.size(), CleanableDataSize::zero);
}

TEST(Races, namesThatAreNoTextAreCountedAndDeleted) {
    const TemporaryFolder home(tests::folderInMemory());
    const fs::path file = home.makeFolder("cache") / "\xFF";
    const FileDescriptor made(::open(file.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    if (!made && errno == EILSEQ) {
        GTEST_SKIP() << "the file system takes UTF-8 alone";
    }
    ASSERT_TRUE(made);
    const auto item = itemOver(home / "cache", tests::GuardedFileManager::forFixture(home));
    EXPECT_EQ(item.size(), (CleanableDataSize{1, 0}));
    item.clean();
    EXPECT_FALSE(fs::exists(file));
}

TEST(Races, twentyThousandEntriesOfOneFolderAreCountedAndDeleted) {
    constexpr int count = 20'000;
    const TemporaryFolder home(tests::folderInMemory());
    const fs::path cache = home.makeFolder("cache");
    for (int index = 0; index < count; ++index) {
        const std::string file = (cache / std::to_string(index)).string();
        const int made = ::open(file.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
        ASSERT_GE(made, 0);
        ::close(made);
    }
    const auto item = itemOver(cache, tests::GuardedFileManager::forFixture(home));
    EXPECT_EQ(item.size(), (CleanableDataSize{count, 0}));
    item.clean();
    EXPECT_TRUE(fs::is_empty(cache));
}

/** Lets something happen right after each entry was listed. */
class MeddlingFileManager : public tests::ForwardingFileManager {
public:
    using Meddling = std::function<void(std::string_view name)>;

    MeddlingFileManager(std::shared_ptr<const FileManager> target, Meddling meddling)
        : ForwardingFileManager(std::move(target)), meddling_(std::move(meddling)) {}

    std::unique_ptr<DirectoryEnumerator> enumerator(const fs::path& directory) const override {
        return std::make_unique<Enumerator>(ForwardingFileManager::enumerator(directory),
                                            meddling_);
    }

private:
    class Enumerator : public tests::ForwardingEnumerator {
    public:
        Enumerator(std::unique_ptr<DirectoryEnumerator> target, Meddling meddling)
            : ForwardingEnumerator(std::move(target)), meddling_(std::move(meddling)) {}

        bool next() override {
            const bool found = ForwardingEnumerator::next();
            if (found) {
                meddling_(name());
            }
            return found;
        }

    private:
        Meddling meddling_;
    };

    Meddling meddling_;
};

struct Meddled {
    TemporaryFolder home{tests::folderInMemory()};
    fs::path cache = home.makeFolder("cache");

    CleanableDirectory item(MeddlingFileManager::Meddling meddling) const {
        return itemOver(cache,
                        std::make_shared<MeddlingFileManager>(
                            tests::GuardedFileManager::forFixture(home), std::move(meddling)));
    }
};

TEST(Races, aFileThatVanishesBeforeItIsExaminedWasNeverThere) {
    const Meddled meddled;
    meddled.home.write("cache/going", "12345");
    meddled.home.write("cache/staying", "123");
    const auto item = meddled.item([&](std::string_view name) {
        if (name == "going") {
            fs::remove(meddled.cache / "going");
        }
    });
    // Where the listing tells sizes they are those of that moment.
    EXPECT_EQ(item.size().byteCount,
              CleanableDataSize::Measurement(tests::sizesAreThoseOfTheListing() ? 8 : 3));
}

TEST(Races, aFileThatVanishesBeforeItIsDeletedEndsTheCleanWithItsError) {
    const Meddled meddled;
    meddled.home.write("cache/going", "12345");
    const auto item =
        meddled.item([&](std::string_view /*name*/) { fs::remove(meddled.cache / "going"); });
    try {
        item.clean();
        FAIL() << "the deletion of a missing file succeeded";
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
}

TEST(Races, filesThatAppearInMidWalkDoNotKeepItFromEnding) {
    const Meddled meddled;
    meddled.home.write("cache/first", "1");
    int made = 0;
    const auto item = meddled.item([&](std::string_view /*name*/) {
        if (made < 1000) {
            meddled.home.write("cache/new" + std::to_string(++made), "1");
        }
    });
    item.clean();
    EXPECT_FALSE(fs::exists(meddled.cache / "first"));
}

TEST(Races, aFolderThatVanishesInMidWalkIsSkipped) {
    const Meddled meddled;
    meddled.home.write("cache/folder/file", "12345");
    meddled.home.write("cache/staying", "123");
    const auto item = meddled.item([&](std::string_view name) {
        if (name == "folder") {
            fs::remove_all(meddled.cache / "folder");
        }
    });
    EXPECT_EQ(item.size(), (CleanableDataSize{1, 3}));
}

TEST(Races, aFolderThatAnOrdinaryUserMayNotOpenIsPassedByAndKeepsItsFiles) {
    const TemporaryFolder home(tests::folderInMemory());
    home.write("cache/a/file", "1");
    home.write("cache/b/closed/file", "kept");
    home.write("cache/c/file", "22");
    for (const char* folder : {"", "cache", "cache/a", "cache/b", "cache/c"}) {
        fs::permissions(home / folder, fs::perms::all);
    }
    fs::permissions(home / "cache/b/closed", fs::perms::none);
    const auto item = itemOver(home / "cache", tests::GuardedFileManager::forFixture(home));
    EXPECT_EQ(tests::runAsOrdinaryUser([&] {
                  EXPECT_EQ(item.size(), (CleanableDataSize{2, 3}));
                  item.clean();
                  EXPECT_EQ(item.size(), CleanableDataSize::zero);
              }),
              0);
    fs::permissions(home / "cache/b/closed", fs::perms::owner_all);
    EXPECT_EQ(tests::readFile(home / "cache/b/closed/file"), "kept");
    EXPECT_FALSE(fs::exists(home / "cache/a/file"));
    EXPECT_FALSE(fs::exists(home / "cache/c/file"));
}

}  // namespace
}  // namespace browsersweep
