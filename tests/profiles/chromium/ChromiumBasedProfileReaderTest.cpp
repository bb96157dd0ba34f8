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

TEST_F(ChromiumBasedProfileReaderTest, aFolderThatIsNoPlainNameLeavesItsProfileOutAndIsToldAsItIs) {
    home.write(localState, R"({"profile": {"last_active_profiles": [], "info_cache": {
        "Default": {"name": "ordinary", "is_consented_primary_account": false},
        "/etc": {"name": "root", "is_consented_primary_account": false},
        "../../..": {"name": "up", "is_consented_primary_account": false},
        "a/b": {"name": "path", "is_consented_primary_account": false},
        "": {"name": "empty", "is_consented_primary_account": false},
        "Default\u0000x": {"name": "cut", "is_consented_primary_account": false}}}})");
    const auto found = reader.profiles();
    Lines folders;
    for (const auto& profile : found) {
        const bool isOrdinary = profile->name() == "ordinary";
        folders.push_back(profile->folder().value_or("(none)"));
        EXPECT_EQ(profile->leftOutReason().has_value(), !isOrdinary) << *profile->name();
        EXPECT_EQ(profile->cleanableData().lists().size(), isOrdinary ? 6U : 0U)
            << *profile->name();
        EXPECT_TRUE(profile->bookmarks().empty());
        EXPECT_TRUE(profile->notificationSubscriptions().empty());
    }
    EXPECT_EQ(folders,
              (Lines{"Default", "/etc", "../../..", "a/b", "", std::string("Default\0x", 9)}));
}

TEST_F(ChromiumBasedProfileReaderTest, aLeftOutProfileReadsNothingOutsideItsBrowsersFolder) {
    home.write("Library/Application Support/Bookmarks",
               R"({"roots": {"bar": {"url": "https://secret.example/", "name": "x"}}})");
    home.write("Library/Application Support/Preferences", "no JSON");
    home.write(localState, R"({"profile": {"last_active_profiles": [], "info_cache": {
        "../..": {"name": "up", "is_consented_primary_account": false}}}})");
    const auto found = reader.profiles();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_TRUE(found[0]->bookmarks().empty());
    EXPECT_TRUE(found[0]->notificationSubscriptions().empty());
}

TEST_F(ChromiumBasedProfileReaderTest, leadingSeparatorsOfThePathAreNoRoot) {
    home.write(localState, R"({"profile": {"last_active_profiles": [], "info_cache": {
        "Default": {"name": "Me", "is_consented_primary_account": false}}}})");
    const ChromiumBasedProfileReader rooted("/BraveSoftware/Brave-Browser", fileManager,
                                            Browser::brave);
    ASSERT_EQ(rooted.profiles().size(), 1U);
    EXPECT_EQ(rooted.profiles()[0]->leftOutReason(), std::nullopt);
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
