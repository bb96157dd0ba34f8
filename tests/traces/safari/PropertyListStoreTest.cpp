#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/profiles/safari/SafariNamedProfile.h"
#include "browsersweep/traces/safari/internal/PropertyListStore.h"

#include "tests/support/Bytes.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/SafariHome.h"
#include "tests/support/SiteStores.h"

namespace browsersweep {
namespace {

using tests::allBut;
using tests::dictionary;
using tests::everything;
using tests::only;
using tests::text;
using Lines = std::vector<std::string>;

constexpr const char* workIdentifier = "0F1E2D3C-0000-4000-8000-0123456789AB";

std::string binary(const PropertyList& value) {
    const Bytes bytes = value.binaryData();
    return {bytes.begin(), bytes.end()};
}

PropertyList download(const std::string& address, const std::string& profile = "") {
    PropertyList::Dictionary entries{
        {"DownloadEntryURL", text(address)},
        {"DownloadEntryPath", text("/Users/x/Downloads/file")},
        {"DownloadEntryDateAddedKey", PropertyList::date(dateFromReferenceSeconds(700000000.5))},
        {"DownloadEntryBookmarkBlob", PropertyList::data({1, 2, 3})}};
    if (!profile.empty()) {
        entries.push_back({"DownloadEntryProfileUUIDStringKey", text(profile)});
    }
    return dictionary(std::move(entries));
}

PropertyList downloads(PropertyList::Array entries) {
    return dictionary({{"Unknown", PropertyList::real(0.1)},
                       {"DownloadHistory", PropertyList::array(std::move(entries))},
                       {"Last", text("kept")}});
}

class PropertyListStores : public testing::Test {
protected:
    PropertyList after(const char* place, const PropertyList& before,
                       const ForgetRequest& request) const {
        const auto file = home.write(place, binary(before));
        EXPECT_EQ(home.store(place)->forget(request), ForgetOutcome());
        return PropertyList::parse(tests::bytes(tests::readFile(file)));
    }

    static ForgetRequest withSettings(ForgetRequest request) {
        request.takesSettings = true;
        return request;
    }

    tests::SafariHome home;
};

TEST_F(PropertyListStores, downloadsAreListedAndGoOneByOne) {
    constexpr const char* place = "Safari/Downloads.plist";
    const PropertyList all =
        downloads({download("https://www.a.test/f"), download("https://b.test/f"),
                   download("data:text/plain,x")});
    home.write(place, binary(all));
    const TraceListing listing = home.store(place)->list({});
    EXPECT_EQ(tests::inShort(listing), (Lines{"a.test downloads 1", "b.test downloads 1"}));
    EXPECT_EQ(listing.bySite[0].lastUsed, dateFromReferenceSeconds(700000000.5));
    EXPECT_EQ(after(place, all, only({"a.test"})),
              downloads({download("https://b.test/f"), download("data:text/plain,x")}));
    EXPECT_EQ(after(place, all, allBut({"a.test"})), downloads({download("https://www.a.test/f")}));
    EXPECT_EQ(after(place, all, everything()), downloads({}));
}

TEST_F(PropertyListStores, aDownloadOfANamedProfileIsThatProfiles) {
    constexpr const char* place = "Safari/Downloads.plist";
    home.folder.makeFolder("Library/Safari/Profiles/" + std::string(workIdentifier));
    const std::string gone = "FFFFFFFF-0000-4000-8000-0123456789AB";
    const PropertyList all =
        downloads({download("https://a.test/1", workIdentifier),
                   download("https://a.test/2", "DefaultProfile"),
                   download("https://a.test/3", gone), download("https://a.test/4")});
    EXPECT_EQ(after(place, all, everything()),
              downloads({download("https://a.test/1", workIdentifier)}));
    const SafariNamedProfile work("Work", workIdentifier, home.home);
    const auto file = home.write(place, binary(all));
    const auto ofWork = tests::storeAt(traceStores(work, home.home), file);
    EXPECT_EQ(tests::inShort(ofWork->list({})), Lines{"a.test downloads 1"});
    ofWork->forget(only({"a.test"}));
    EXPECT_EQ(PropertyList::parse(tests::bytes(tests::readFile(file))),
              downloads({download("https://a.test/2", "DefaultProfile"),
                         download("https://a.test/3", gone), download("https://a.test/4")}));
}

TEST_F(PropertyListStores, topSitesGoAndThoseThatWereBannedAreASetting) {
    constexpr const char* place = "Safari/TopSites.plist";
    const auto all = [](PropertyList::Array banned, PropertyList::Array top) {
        return dictionary({{"BannedURLStrings", PropertyList::array(std::move(banned))},
                           {"TopSites", PropertyList::array(std::move(top))}});
    };
    const PropertyList ofA =
        dictionary({{"TopSiteTitle", text("a")}, {"TopSiteURLString", text("https://a.test/")}});
    const PropertyList ofB =
        dictionary({{"TopSiteTitle", text("b")}, {"TopSiteURLString", text("https://b.test/")}});
    const PropertyList banned = text("https://a.test/x");
    EXPECT_EQ(after(place, all({banned}, {ofA, ofB}), only({"a.test"})), all({banned}, {ofB}));
    EXPECT_EQ(after(place, all({banned}, {ofA, ofB}), withSettings(only({"a.test"}))),
              all({}, {ofB}));
    EXPECT_EQ(after(place, all({banned}, {ofA, ofB}), everything()), all({banned}, {}));
}

TEST_F(PropertyListStores, sitesToLoadByHttpsAloneAreKnownByTheirKeys) {
    for (const char* const place : {"Cookies/HSTS.plist", "container:Cookies/HSTS.plist"}) {
        const auto all = [](PropertyList::Dictionary hosts) {
            hosts.push_back({"HSTS Content Version", PropertyList::integer(1)});
            return dictionary(
                {{"com.apple.CFNetwork.defaultStorageSession", dictionary(std::move(hosts))}});
        };
        const PropertyList promise = dictionary({{"Expiry", PropertyList::real(7e8)}});
        EXPECT_EQ(
            after(place, all({{"www.a.test", promise}, {"b.test", promise}}), only({"a.test"})),
            all({{"b.test", promise}}));
        EXPECT_EQ(after(place, all({{"www.a.test", promise}, {"b.test", promise}}), everything()),
                  all({}));
    }
}

TEST_F(PropertyListStores, whatIsAllowedToSitesGoesWithSettings) {
    const PropertyList ofA =
        dictionary({{"Allowed Domains", PropertyList::array({text("https://a.test")})}});
    const PropertyList ofB =
        dictionary({{"Allowed Domains", PropertyList::array({text("https://b.test")})}});
    const PropertyList both = dictionary({{"web.a", ofA}, {"web.b", ofB}});
    constexpr const char* place = "Safari/RemoteNotifications/Permissions.plist";
    EXPECT_EQ(after(place, both, only({"a.test"})), both);
    EXPECT_EQ(after(place, both, withSettings(only({"a.test"}))), dictionary({{"web.b", ofB}}));
    constexpr const char* newer = "Safari/UserNotificationPermissions.plist";
    const PropertyList byKey = dictionary(
        {{"https://a.test", text("x")}, {"https://b.test", text("x")}, {"Version", text("1")}});
    EXPECT_EQ(after(newer, byKey, everything()), byKey);
    EXPECT_EQ(after(newer, byKey, withSettings(everything())),
              dictionary({{"Version", text("1")}}));
}

TEST_F(PropertyListStores, aListInXMLStaysOne) {
    const auto file =
        home.write("Safari/Downloads.plist",
                   "<plist><dict><key>DownloadHistory</key><array><dict><key>DownloadEntryURL</key>"
                   "<string>https://a.test/</string></dict></array><key>Rest</key><real>0.1</"
                   "real></dict></plist>");
    home.store("Safari/Downloads.plist")->forget(only({"a.test"}));
    EXPECT_EQ(tests::readFile(file),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
              "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
              "<plist version=\"1.0\">\n<dict>\n\t<key>DownloadHistory</key>\n\t<array/>\n"
              "\t<key>Rest</key>\n\t<real>0.1</real>\n</dict>\n</plist>\n");
}

TEST_F(PropertyListStores, whatIsNoPropertyListIsAnErrorAndStays) {
    const auto file = home.write("Safari/Downloads.plist", "{damaged");
    EXPECT_THROW(home.store("Safari/Downloads.plist")->list({}), DecodingError);
    EXPECT_THROW(home.store("Safari/Downloads.plist")->forget(everything()), DecodingError);
    EXPECT_EQ(tests::readFile(file), "{damaged");
}

}  // namespace
}  // namespace browsersweep
