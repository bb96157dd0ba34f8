#include <string>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfile.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"
#include "browsersweep/profiles/chromium/OperaProfileReader.h"

#include "tests/support/FaultyFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

std::string described(const BrowserProfile& profile) {
    const auto& chromium = dynamic_cast<const ChromiumBasedProfile&>(profile);
    return chromium.name().value_or("nameless") + " | " +
           std::string(rawValue(chromium.sourceBrowser())) + " | " +
           chromium.relativePath().string() + (chromium.isPrimary() ? " | primary" : "");
}

class ChromiumBasedProfileReaderTest : public testing::Test {
protected:
    Lines profiles() const {
        Lines lines;
        for (const auto& profile : reader.profiles()) {
            lines.push_back(described(*profile));
        }
        return lines;
    }

    tests::TemporaryFolder home;
    const fs::path localState =
        "Library/Application Support/BraveSoftware/Brave-Browser/Local State";
    std::shared_ptr<const FileManager> fileManager = tests::GuardedFileManager::forFixture(home);
    ChromiumBasedProfileReader reader{"BraveSoftware/Brave-Browser", fileManager, Browser::brave};
};

TEST_F(ChromiumBasedProfileReaderTest, oneProfilePerEntryInTheFilesOrder) {
    home.write(localState, R"({"profile": {"info_cache": {
        "Profile 1": {"name": "Work", "is_consented_primary_account": false},
        "Default": {"name": "Me", "is_consented_primary_account": false}},
        "last_active_profiles": ["Default"]}})");
    EXPECT_EQ(profiles(), (Lines{"Work | brave | BraveSoftware/Brave-Browser/Profile 1",
                                 "Me | brave | BraveSoftware/Brave-Browser/Default | primary"}));
}

TEST_F(ChromiumBasedProfileReaderTest, withoutLocalStateOrWithAFolderOfThatNameThereAreNone) {
    EXPECT_EQ(profiles(), Lines{});
    home.makeFolder(localState);
    EXPECT_EQ(profiles(), Lines{});
}

TEST_F(ChromiumBasedProfileReaderTest, anEmptyInfoCacheGivesNone) {
    home.write(localState, R"({"profile": {"info_cache": {}, "last_active_profiles": []}})");
    EXPECT_EQ(profiles(), Lines{});
}

TEST_F(ChromiumBasedProfileReaderTest, malformedLocalStateIsAnErrorAndNothingIsSalvaged) {
    home.write(localState, R"({"profile": {"info_cache": {
        "Default": {"name": "Me", "is_consented_primary_account": false},
        "Broken": {"name": "x"}}, "last_active_profiles": []}})");
    EXPECT_THROW(profiles(), DecodingError);
    home.write(localState, "");
    EXPECT_THROW(profiles(), DecodingError);
}

TEST_F(ChromiumBasedProfileReaderTest, unreadableLocalStateIsAnError) {
    home.write(localState, "{}");
    const ChromiumBasedProfileReader failing(
        "BraveSoftware/Brave-Browser",
        std::make_shared<tests::FaultyFileManager>(fileManager, tests::Fault{2}), Browser::brave);
    EXPECT_THROW(failing.profiles(), fs::filesystem_error);
}

TEST_F(ChromiumBasedProfileReaderTest, operaWithoutAListAlwaysHasOneNamelessPrimaryProfile) {
    const auto opera = OperaProfileReader(fileManager).profiles();
    ASSERT_EQ(opera.size(), 1U);
    EXPECT_EQ(described(*opera[0]), "nameless | opera | com.operasoftware.Opera | primary");
    EXPECT_EQ(opera[0]->name(), std::nullopt);
    EXPECT_TRUE(opera[0]->bookmarks().empty());
}

}  // namespace
}  // namespace browsersweep
