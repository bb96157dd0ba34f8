#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sites/internal/HostDigests.h"
#include "browsersweep/traces/safari/internal/SafariRowFiles.h"

#include "tests/support/PlantedRows.h"
#include "tests/support/SafariHome.h"
#include "tests/support/SafariSchemas.h"
#include "tests/support/SiteStores.h"

namespace browsersweep {
namespace {

using tests::allBut;
using tests::everything;
using tests::only;
using Lines = std::vector<std::string>;

class SafariFiles : public testing::Test {
protected:
    void plant(const std::string& database, const tests::PlantedRows& rows) const {
        tests::plant(tests::makeSafariDatabase(home.library() / database), rows, "", 0);
    }

    tests::SafariHome home;
};

TEST_F(SafariFiles, anIconsFileGoesWithTheLastPageThatHasTheIcon) {
    const std::string folder = "Safari/Favicon Cache";
    home.write("Safari/Bookmarks.plist",
               "<plist><dict><key>Children</key><array><dict><key>URLString</key>"
               "<string>https://marked.test/</string></dict></array></dict></plist>");
    plant(folder + "/favicons.db", {"page_url|url='https://a.test/'|uuid='AA-11'",
                                    "icon_info|uuid='AA-11'|url='https://a.test/i'",
                                    "page_url|url='https://a.test/shared'|uuid='BB-22'",
                                    "page_url|url='https://b.test/'|uuid='BB-22'",
                                    "icon_info|uuid='BB-22'|url='https://c.test/i'",
                                    "page_url|url='https://marked.test/'|uuid='DD-44'",
                                    "icon_info|uuid='DD-44'|url='https://a.test/m'"});
    for (const char* const name : {"AA11", "BB22", "DD44", "EE55"}) {
        home.write(folder + "/favicons/" + name, "icon");
    }
    const auto store = home.store(folder + "/favicons.db");
    EXPECT_GE(store->list({}).bySite.at(0).size.itemCount.value, 2);
    store->forget(only({"a.test"}));
    EXPECT_EQ(home.names(folder + "/favicons"), (Lines{"BB22", "DD44", "EE55"}));
    store->forget(everything());
    EXPECT_EQ(home.names(folder + "/favicons"), Lines{"DD44"});
    home.write(folder + "/favicons/FF66", "of a row that is gone");
    store->forget(everything());
    EXPECT_EQ(home.names(folder + "/favicons"), Lines{"DD44"});
}

TEST_F(SafariFiles, theIconOfASiteIsNamedByADigestOfItsHost) {
    const std::string folder = "Safari/Touch Icons Cache";
    plant(folder + "/TouchIconCacheSettings.db",
          {"cache_settings|host='mikanani.me'", "cache_settings|host='b.test'"});
    home.write(folder + "/Images/CDE9CFFBFC7870408F7E125F29E84101.png", "icon");
    home.write(folder + "/Images/" + md5OfHost("b.test") + ".png", "icon");
    home.store(folder + "/TouchIconCacheSettings.db")->forget(only({"mikanani.me"}));
    EXPECT_EQ(home.names(folder + "/Images"), Lines{md5OfHost("b.test") + ".png"});
    home.store(folder + "/TouchIconCacheSettings.db")->forget(everything());
    EXPECT_EQ(home.names(folder + "/Images"), Lines{});
}

TEST_F(SafariFiles, theContentsOfALargeResponseGoWithIt) {
    const std::string folder = "Caches/com.apple.Safari";
    plant(
        folder + "/Cache.db",
        {"cfurl_cache_response|entry_ID=1|request_key='https://a.test/'|time_stamp='t'",
         "cfurl_cache_receiver_data|entry_ID=1|isDataOnFS=1|receiver_data='7EE02011-9C66-45A1-BFE4-"
         "CB18F2251F24'",
         "cfurl_cache_response|entry_ID=2|request_key='https://b.test/'|time_stamp='t'",
         "cfurl_cache_receiver_data|entry_ID=2|isDataOnFS=1|receiver_data=CAST('8EE02011' AS BLOB)",
         "cfurl_cache_response|entry_ID=3|request_key='https://a.test/3'|time_stamp='t'",
         "cfurl_cache_receiver_data|entry_ID=3|isDataOnFS=0|receiver_data='8EE02011'"});
    home.write(folder + "/fsCachedData/7EE02011-9C66-45A1-BFE4-CB18F2251F24", "body");
    home.write(folder + "/fsCachedData/8EE02011", "body of b");
    const auto store = home.store(folder + "/Cache.db");
    const TraceListing listing = store->list({});
    EXPECT_EQ(tests::inShort(listing), (Lines{"a.test cachedFiles 3", "b.test cachedFiles 2"}));
    store->forget(only({"a.test"}));
    EXPECT_EQ(home.names(folder + "/fsCachedData"), Lines{"8EE02011"});
    store->forget(allBut({"a.test"}));
    EXPECT_EQ(home.names(folder + "/fsCachedData"), Lines{});
}

TEST_F(SafariFiles, thePictureOfATabGoesWithItsRow) {
    const std::string folder =
        "Containers/com.apple.Safari/Data/Library/Caches/com.apple.Safari/TabSnapshots";
    plant(folder + "/Metadata.db",
          {"snapshot_metadata|uuid='1'|filename='A.png'|url='https://a.test/'",
           "snapshot_metadata|uuid='2'|filename='B.jpeg'|url='https://b.test/'"});
    for (const char* const name : {"A.png", "B.jpeg", "lost.png", "other.txt"}) {
        home.write(folder + "/" + name, "picture");
    }
    home.store(folder + "/Metadata.db")->forget(only({"a.test"}));
    EXPECT_EQ(home.names(folder), (Lines{"B.jpeg", "Metadata.db", "lost.png", "other.txt"}));
    home.store(folder + "/Metadata.db")->forget(everything());
    EXPECT_EQ(home.names(folder), (Lines{"Metadata.db", "other.txt"}));
}

}  // namespace
}  // namespace browsersweep
