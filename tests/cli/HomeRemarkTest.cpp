#include <gtest/gtest.h>

#include "cli/HomeRemark.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep::cli {
namespace {

std::string remarkOn(const std::filesystem::path& home) {
    return remarkOnHome(*FileManager::forHome(home), home);
}

TEST(HomeRemark, tellsAHomeOfLinuxApart) {
    for (const auto* const folder : {".config/chromium", ".mozilla", "snap/firefox"}) {
        const tests::TemporaryFolder home;
        home.makeFolder(folder);
        EXPECT_EQ(
            remarkOn(home.path()),
            home.path().string() + ": this looks like a Linux home; only the macOS layout is read");
        home.makeFolder("Library");
        EXPECT_EQ(remarkOn(home.path()), "");
    }
}

TEST(HomeRemark, anEmptyHomeIsNothingToSpeakOf) {
    const tests::TemporaryFolder home;
    EXPECT_EQ(remarkOn(home.path()), "");
}

TEST(HomeRemark, tellsThatTheFolderWhichWasAskedForIsNone) {
    const tests::TemporaryFolder folder;
    const auto file = folder.write("file", "");
    for (const auto& place : {folder / "missing", file}) {
        EXPECT_EQ(remarkOn(place), place.string() + " is not an existing folder");
    }
    EXPECT_EQ(remarkOnHome(*FileManager::forHome(folder / "missing"), std::nullopt), "");
}

}  // namespace
}  // namespace browsersweep::cli
