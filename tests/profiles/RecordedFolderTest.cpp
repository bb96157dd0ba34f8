#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/profiles/internal/RecordedFolder.h"

namespace browsersweep {
namespace {

using Texts = std::vector<std::string>;

std::string withZeroByte(const std::string& before, const std::string& after) {
    return before + std::string(1, '\0') + after;
}

TEST(RecordedFolder, aNameIsOnePlainComponent) {
    for (const std::string& name :
         Texts{"Default", "Profile 1", "...", ".hidden", "a\\b", "日本"}) {
        EXPECT_EQ(reasonAgainstName(name), std::nullopt) << name;
    }
    for (const std::string& name :
         Texts{"", ".", "..", "/", "/etc", "a/b", "a/", "../../..", withZeroByte("Default", "")}) {
        EXPECT_NE(reasonAgainstName(name), std::nullopt) << name;
    }
}

TEST(RecordedFolder, aRelativePathStaysBelowItsFolder) {
    for (const std::string& path : Texts{"Profiles/a.default", "a", "/a/b", "a..b", "./a", "a/"}) {
        EXPECT_EQ(reasonAgainstRelativePath(path), std::nullopt) << path;
    }
    for (const std::string& path :
         Texts{"", "/", "//", "..", "../a", "a/../b", "a/..", withZeroByte("a", "b")}) {
        EXPECT_NE(reasonAgainstRelativePath(path), std::nullopt) << path;
    }
}

TEST(RecordedFolder, anAbsolutePathIsOneAndLeadsStraightDown) {
    for (const std::string& path : Texts{"/Volumes/Disk/a.default", "/a", "//a"}) {
        EXPECT_EQ(reasonAgainstAbsolutePath(path), std::nullopt) << path;
    }
    for (const std::string& path :
         Texts{"", ".", "a", "~/a", "/a/../b", "/..", withZeroByte("/a", "b")}) {
        EXPECT_NE(reasonAgainstAbsolutePath(path), std::nullopt) << path;
    }
}

TEST(RecordedFolder, eachReasonIsSaidInWords) {
    EXPECT_EQ(reasonAgainstName(""), "the name of its folder is empty");
    EXPECT_EQ(reasonAgainstName(".."), "the name of its folder stands for another folder");
    EXPECT_EQ(reasonAgainstName("a/b"), "the name of its folder is a path");
    EXPECT_EQ(reasonAgainstName(withZeroByte("a", "")), "the name of its folder holds a zero byte");
    EXPECT_EQ(reasonAgainstRelativePath("/"), "the path of its folder is empty");
    EXPECT_EQ(reasonAgainstRelativePath(".."), "the path of its folder leads upwards");
    EXPECT_EQ(reasonAgainstAbsolutePath(withZeroByte("/a", "")),
              "the path of its folder holds a zero byte");
    EXPECT_EQ(reasonAgainstAbsolutePath("a"),
              "the path of its folder is not absolute, though recorded as such");
}

}  // namespace
}  // namespace browsersweep
