#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "cli/NewFile.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep::cli {
namespace {

using tests::readFile;

using Names = std::vector<std::string>;

class NewFileTest : public testing::Test {
protected:
    Names names() const {
        Names found;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
            found.push_back(entry.path().filename().string());
        }
        return found;
    }

    static std::string problemAt(const std::filesystem::path& path) {
        try {
            const NewFile file(path);
            return "none";
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }

    static std::string cannotWrite(const std::filesystem::path& path, const std::string& why) {
        return "cannot write the page " + path.string() + ": " + why;
    }

    tests::TemporaryFolder folder_;
};

TEST_F(NewFileTest, theFileAppearsWithAllOfItsText) {
    NewFile file(folder_ / "a.html");
    EXPECT_FALSE(std::filesystem::exists(folder_ / "a.html"));
    file.finish("text");
    EXPECT_EQ(readFile(folder_ / "a.html"), "text");
    EXPECT_EQ(names(), Names{"a.html"});
}

TEST_F(NewFileTest, whatStoodThereIsReplacedOnlyAtTheEnd) {
    folder_.write("a.html", "old");
    NewFile file(folder_ / "a.html");
    EXPECT_EQ(readFile(folder_ / "a.html"), "old");
    file.finish("new");
    EXPECT_EQ(readFile(folder_ / "a.html"), "new");
}

TEST_F(NewFileTest, whatIsNotFinishedLeavesNothingBehind) {
    static_cast<void>(NewFile(folder_ / "a.html"));
    EXPECT_EQ(names(), Names{});
}

TEST_F(NewFileTest, aLinkStaysALink) {
    folder_.write("real.html", "old");
    std::filesystem::create_symlink("real.html", folder_ / "link.html");
    NewFile(folder_ / "link.html").finish("new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "link.html"));
    EXPECT_EQ(readFile(folder_ / "real.html"), "new");
}

TEST_F(NewFileTest, wrongPlacesAreRefusedBeforeAnythingIsDone) {
    const auto pipe = folder_ / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const auto sub = folder_.makeFolder("sub");
    const auto below = folder_ / "missing" / "a.html";
    EXPECT_EQ(problemAt(below), cannotWrite(below, "No such file or directory"));
    EXPECT_EQ(problemAt(sub), cannotWrite(sub, "Is a directory"));
    EXPECT_EQ(problemAt(pipe), cannotWrite(pipe, "it is not a regular file"));
    EXPECT_EQ(problemAt("/dev/null"), cannotWrite("/dev/null", "it is not a regular file"));
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST_F(NewFileTest, twoRunsAtTheSamePlaceDoNotDisturbEachOther) {
    NewFile first(folder_ / "a.html");
    NewFile second(folder_ / "a.html");
    second.finish("second");
    first.finish("first");
    EXPECT_EQ(readFile(folder_ / "a.html"), "first");
    EXPECT_EQ(names(), Names{"a.html"});
}

}  // namespace
}  // namespace browsersweep::cli
