#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "browsersweep/profiles/chromium/ChromiumBasedProfile.h"
#include "browsersweep/profiles/firefox/FirefoxProfile.h"
#include "browsersweep/profiles/safari/SafariProfile.h"
#include "browsersweep/traces/TraceStores.h"

#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

bool hasStoreAt(const TraceStores& stores, const fs::path& path) {
    return std::any_of(stores.begin(), stores.end(),
                       [&](const auto& store) { return store->path() == path; });
}

class TraceStoresTest : public testing::Test {
protected:
    tests::TemporaryFolder folder_;
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(folder_);
    Home home_{manager_};
    fs::path support_ = folder_ / "Library/Application Support";
};

TEST_F(TraceStoresTest, areThoseOfTheProfilesFamilyAndTouchNoFile) {
    const ChromiumBasedProfile chromium({}, Browser::chromium, true, "Chromium/Default", home_);
    const FirefoxProfile firefox({}, true, true, "Profiles/a.default", home_);
    const TraceStores ofChromium = traceStores(chromium, home_);
    const TraceStores ofFirefox = traceStores(firefox, home_);
    EXPECT_TRUE(hasStoreAt(ofChromium, support_ / "Chromium/Default/History"));
    EXPECT_FALSE(hasStoreAt(ofChromium, support_ / "Chromium/Default/places.sqlite"));
    EXPECT_TRUE(hasStoreAt(ofFirefox, firefox.folders()->data / "places.sqlite"));
    for (const char* const name : {"Local Storage/leveldb", "Preferences", "IndexedDB"}) {
        EXPECT_TRUE(hasStoreAt(ofChromium, support_ / "Chromium/Default" / name)) << name;
    }
    EXPECT_TRUE(hasStoreAt(ofFirefox, firefox.folders()->data / "serviceworker.txt"));
    EXPECT_TRUE(hasStoreAt(traceStores(SafariProfile(home_), home_),
                           folder_ / "Library/Safari/History.db"));
    EXPECT_EQ(folder_.snapshot(), std::vector<std::string>{});
}

TEST_F(TraceStoresTest, picturesThatOnlyFirefoxsHistoryTellsApartHaveTheirTurnBeforeIt) {
    const FirefoxProfile firefox({}, true, true, "Profiles/a.default", home_);
    const TraceStores stores = traceStores(firefox, home_);
    const auto placeOf = [&stores](const fs::path& path) {
        return std::find_if(stores.begin(), stores.end(),
                            [&path](const auto& store) { return store->path() == path; });
    };
    const auto pictures = placeOf(firefox.folders()->cache / "thumbnails");
    ASSERT_NE(pictures, stores.end());
    EXPECT_LT(pictures, placeOf(firefox.folders()->data / "places.sqlite"));
}

TEST_F(TraceStoresTest, aProfileThatIsLeftOutHasNone) {
    const ChromiumBasedProfile profile({}, Browser::chromium, true, "Chromium/../..", home_,
                                       "../..");
    ASSERT_NE(profile.leftOutReason(), std::nullopt);
    EXPECT_EQ(traceStores(profile, home_), TraceStores{});
}

TEST_F(TraceStoresTest, theBrowsersOwnAreSharedByItsProfiles) {
    EXPECT_TRUE(hasStoreAt(traceStores(Browser::chromium, home_),
                           support_ / "Chromium/segmentation_platform/ukm_db"));
    EXPECT_EQ(traceStores(Browser::firefox, home_), TraceStores{});
    const fs::path container = folder_ / "Library/Containers/com.apple.Safari/Data/Library";
    EXPECT_TRUE(
        hasStoreAt(traceStores(Browser::safari, home_), container / "Safari/SafariTabs.db"));
}

TEST_F(TraceStoresTest, onlySafariHasProfilesBesideThoseThatItsReaderLists) {
    const std::string identifier = "0F1E2D3C-0000-4000-8000-0123456789AB";
    folder_.makeFolder("Library/Safari/Profiles/" + identifier);
    EXPECT_TRUE(profilesBeside(Browser::chromium, home_).empty());
    const auto profiles = profilesBeside(Browser::safari, home_);
    ASSERT_EQ(profiles.size(), 1U);
    EXPECT_EQ(profiles[0]->folder(), identifier);
    EXPECT_TRUE(hasStoreAt(traceStores(*profiles[0], home_),
                           folder_ / "Library/Safari/Profiles" / identifier / "History.db"));
}

}  // namespace
}  // namespace browsersweep
