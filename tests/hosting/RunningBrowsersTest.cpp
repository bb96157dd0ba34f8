#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "browsersweep/hosting/RunningBrowsers.h"

#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

class RunningBrowsersTest : public testing::Test {
protected:
    /** The browsers that seem to run in the home while programs of these names do. */
    std::vector<Browser> found(const std::vector<std::string>& programs) const {
        const RunningBrowsers running(Home::at(home_.path()), programs);
        std::vector<Browser> all;
        for (const Browser browser : allBrowsers) {
            if (running.find(browser)) {
                all.push_back(browser);
            }
        }
        return all;
    }

    std::string ownProcess() const { return std::to_string(::getpid()); }
    fs::path support() const { return home_ / "Library/Application Support"; }

    tests::TemporaryFolder home_;
};

using Browsers = std::vector<Browser>;

TEST_F(RunningBrowsersTest, programsAreKnownByTheirNamesOnEachSystem) {
    EXPECT_EQ(found({"Google Chrome"}), Browsers{Browser::googleChrome});
    EXPECT_EQ(found({"chrome"}), Browsers{Browser::googleChrome});
    EXPECT_EQ(found({"firefox-esr", "msedge"}),
              (Browsers{Browser::firefox, Browser::microsoftEdge}));
    EXPECT_EQ(found({"Yandex"}), Browsers{Browser::yandexBrowser});
    EXPECT_EQ(found({}), Browsers{});
    EXPECT_EQ(found({"", "bash", "chromedriver"}), Browsers{});
}

TEST_F(RunningBrowsersTest, theProgramIsNamed) {
    const auto sign = RunningBrowsers(Home::at(home_.path()), {"Safari"}).find(Browser::safari);
    ASSERT_TRUE(sign);
    EXPECT_EQ(sign->program, "Safari");
}

TEST_F(RunningBrowsersTest, aDataFolderThatALivingProcessHoldsIsASignWithoutAProgram) {
    const auto folder = support() / "Vivaldi";
    fs::create_directories(folder);
    fs::create_symlink("another-machine-1", folder / "SingletonLock");
    EXPECT_EQ(found({}), Browsers{Browser::vivaldi});
    const auto sign = RunningBrowsers(Home::at(home_.path()), {"Vivaldi"}).find(Browser::vivaldi);
    ASSERT_TRUE(sign);
    EXPECT_EQ(sign->program, std::nullopt);
}

TEST_F(RunningBrowsersTest, aFirefoxProfileIsHeldByTheProcessOfItsLink) {
    home_.write("Library/Application Support/Firefox/profiles.ini",
                "[Profile0]\nName=a\nIsRelative=1\nPath=Profiles/a\n");
    const auto profile = support() / "Firefox/Profiles/a";
    fs::create_directories(profile);
    EXPECT_EQ(found({}), Browsers{});
    fs::create_symlink("127.0.0.1:+" + ownProcess(), profile / "lock");
    EXPECT_EQ(found({}), Browsers{Browser::firefox});
}

TEST_F(RunningBrowsersTest, profilesThatCannotBeReadAreNoSign) {
    home_.write("Library/Application Support/Firefox/profiles.ini", "\xFF");
    EXPECT_EQ(found({}), Browsers{});
}

TEST_F(RunningBrowsersTest, programsThatRunSayNothingOfAnotherHome) {
    const RunningBrowsers running(Home::at(home_.path()));
    for (const Browser browser : allBrowsers) {
        EXPECT_FALSE(running.find(browser)) << rawValue(browser);
    }
}

}  // namespace
}  // namespace browsersweep
