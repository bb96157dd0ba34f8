#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "browsersweep/platform/FileManager.h"

namespace browsersweep {

TEST(UserDirectories, HOMEAloneIsNotTheHomeOfTheAccount) {
    const std::string fixed = std::getenv("CFFIXED_USER_HOME");
    const std::string home = std::getenv("HOME");
    const auto manager = FileManager::defaultManager();
    ::setenv("HOME", "/another/folder", 1);
    EXPECT_EQ(manager->homeDirectory(), fixed);
    ::unsetenv("CFFIXED_USER_HOME");
    const auto inDatabase = manager->homeDirectory();
    ::setenv("CFFIXED_USER_HOME", fixed.c_str(), 1);
    ::setenv("HOME", home.c_str(), 1);
    EXPECT_TRUE(inDatabase.is_absolute());
    EXPECT_NE(inDatabase, "/another/folder");
}

TEST(UserDirectories, theSystemsFoldersAreBelowThatHome) {
    const std::filesystem::path home = std::getenv("CFFIXED_USER_HOME");
    const auto manager = FileManager::defaultManager();
    using Paths = std::vector<std::filesystem::path>;
    EXPECT_EQ(manager->directories(SearchPathDirectory::library), Paths{home / "Library"});
    EXPECT_EQ(manager->directories(SearchPathDirectory::caches), Paths{home / "Library/Caches"});
    EXPECT_EQ(manager->directories(SearchPathDirectory::applicationSupport),
              Paths{home / "Library/Application Support"});
}

}  // namespace browsersweep
