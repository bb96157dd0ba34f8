#include <chrono>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/traces/chromium/internal/DocumentStores.h"

#include "tests/support/SiteStores.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::allBut;
using tests::everything;
using tests::only;
using Lines = std::vector<std::string>;

class DocumentStores : public testing::Test {
protected:
    std::shared_ptr<const TraceStore> store(const char* place) const {
        return tests::storeAt(documentStores(home.folders, home.manager), home.data() / place);
    }

    /** What is left of a document; empty where it is gone. */
    std::string leftAfter(const char* place, std::string_view text,
                          const ForgetRequest& request) const {
        const fs::path file = home.write(place, text);
        EXPECT_TRUE(store(place)->forget(request).isWithoutRemains);
        EXPECT_EQ(home.names().size(), fs::exists(file) ? 1U : 0U);
        return fs::exists(file) ? tests::readFile(file) : std::string();
    }

    tests::ChromiumHome home;
};

ForgetRequest withSettings(ForgetRequest request) {
    request.takesSettings = true;
    return request;
}

// Unknown keys, an unusual order, spaces and numbers that no reader writes again as they are.
constexpr std::string_view preferences = R"({ "zzz": 1.0e5,
 "profile":{"content_settings":{"exceptions":{
  "site_engagement":{"https://www.a.com:443,*":{"last_modified":"13439821294878124","setting":{}},
   "https://b.com:443,*":{"setting":{"rawScore":7.50}},"chrome://x/,*":{},"*,*":1},
  "notifications":{"https://www.a.com,*":{"setting":1}, "https://b.com,*":{"setting":1},"*,*":{"setting":2}},
  "storage_access":{"https://b.com,https://a.com":{}},
  "migrated":true}},"name":"\u0041"},
 "partition":{"per_host_zoom_levels":{"x":{"www.a.com":{"zoom_level":1.20},"b.com":{}}}},
 "default_search_provider_data":{"url":"https://a.com/"},"big":123456789012345678901234567890})";

TEST_F(DocumentStores, preferencesAreToldApartByWhoDecided) {
    home.write("Preferences", preferences);
    const auto before = home.folder.snapshot();
    const TraceListing listing = store("Preferences")->list({});
    EXPECT_EQ(tests::inShort(listing), (Lines{"a.com settings 2", "a.com predictions 2",
                                              "b.com settings 2", "b.com predictions 2"}));
    ASSERT_TRUE(listing.bySite[1].lastUsed);
    EXPECT_NEAR(secondsSince1970(*listing.bySite[1].lastUsed), 1795347694.88, 0.1);
    EXPECT_EQ(home.folder.snapshot(), before);
}

TEST_F(DocumentStores, whatTheBrowserNotedGoesAndSettingsStayAndNoOtherByteChanges) {
    EXPECT_EQ(leftAfter("Preferences", preferences, only({"a.com"})), R"({ "zzz": 1.0e5,
 "profile":{"content_settings":{"exceptions":{
  "site_engagement":{
   "https://b.com:443,*":{"setting":{"rawScore":7.50}},"chrome://x/,*":{},"*,*":1},
  "notifications":{"https://www.a.com,*":{"setting":1}, "https://b.com,*":{"setting":1},"*,*":{"setting":2}},
  "storage_access":{},
  "migrated":true}},"name":"\u0041"},
 "partition":{"per_host_zoom_levels":{"x":{"www.a.com":{"zoom_level":1.20},"b.com":{}}}},
 "default_search_provider_data":{"url":"https://a.com/"},"big":123456789012345678901234567890})");
}

TEST_F(DocumentStores, settingsGoWhereTheyAreAskedForAndThoseOfNoSiteNever) {
    EXPECT_EQ(leftAfter("Preferences", preferences, withSettings(everything())),
              R"({ "zzz": 1.0e5,
 "profile":{"content_settings":{"exceptions":{
  "site_engagement":{"chrome://x/,*":{},"*,*":1},
  "notifications":{"*,*":{"setting":2}},
  "storage_access":{},
  "migrated":true}},"name":"\u0041"},
 "partition":{"per_host_zoom_levels":{"x":{}}},
 "default_search_provider_data":{"url":"https://a.com/"},"big":123456789012345678901234567890})");
    ForgetRequest onlySettings = only({"a.com"});
    onlySettings.kinds = {TraceKind::settings};
    const std::string left = leftAfter("Preferences", preferences, onlySettings);
    EXPECT_NE(left.find("https://www.a.com:443,*"), std::string::npos);
    EXPECT_EQ(left.find("https://www.a.com,*"), std::string::npos);
    EXPECT_EQ(left.find("\"www.a.com\""), std::string::npos);
}

TEST_F(DocumentStores, whatSeveralSitesShareStaysWithTheOneThatIsKept) {
    const std::string left = leftAfter("Preferences", preferences, withSettings(allBut({"b.com"})));
    EXPECT_NE(left.find("https://b.com,https://a.com"), std::string::npos);
    EXPECT_NE(left.find("\"b.com\":{}"), std::string::npos);
    EXPECT_EQ(left.find("www.a.com"), std::string::npos);
}

/** Each kind that the browser notes by itself is a row of a table. */
TEST_F(DocumentStores, everyKindThatTheBrowserNotesByItselfIsNoSetting) {
    for (const char* kind : {"app_banner",
                             "client_hints",
                             "cookie_controls_metadata",
                             "durable_storage",
                             "fedcm_idp_registration",
                             "fedcm_idp_signin",
                             "formfill_metadata",
                             "http_allowed",
                             "https_enforced",
                             "important_site_info",
                             "media_engagement",
                             "notification_interactions",
                             "permission_autoblocking_data",
                             "reduced_accept_language",
                             "site_engagement",
                             "ssl_cert_decisions",
                             "storage_access",
                             "suspicious_notification_ids",
                             "top_level_3pcd_origin_trial",
                             "top_level_storage_access",
                             "unused_site_permissions",
                             "webid_auto_reauthn"}) {
        const std::string start = R"({"profile":{"content_settings":{"exceptions":{")";
        const std::string whole =
            start + kind +
            R"(":{"https://a.com:443,*":{}},"geolocation":{"https://a.com,*":{}}}}}})";
        EXPECT_EQ(leftAfter("Preferences", whole, everything()),
                  start + kind + R"(":{},"geolocation":{"https://a.com,*":{}}}}}})");
    }
}

// "IAAAABEAAABodHRwczovL3RvcC5hLmNvbQ==" is a length, another, and "https://top.a.com".
constexpr std::string_view network =
    R"({"net":{"http_server_properties":{"broken_alternative_services":[)"
    R"({"anonymization":[],"host":"www.a.com","port":443},{"host":"b.com"}],)"
    R"("quic_servers":[{"server_id":"https://a.com:443"}],"servers":[)"
    R"({"anonymization":["IAAAABEAAABodHRwczovL3RvcC5hLmNvbQ==",false,0],"server":"https://b.com"},)"
    R"({"alternative_service":[{"host":"alt.a.com"}],"server":"https://c.com"},)"
    R"({"server":"https://d.com"}],"version":5},"network_qualities":{"CAE":"4G"}}})";

TEST_F(DocumentStores, serversBelongToEveryHostThatTheirEntriesName) {
    home.write("Network Persistent State", network);
    EXPECT_EQ(tests::inShort(store("Network Persistent State")->list({})),
              (Lines{"a.com networkState 4", "b.com networkState 2", "c.com networkState 1",
                     "d.com networkState 1"}));
    EXPECT_EQ(leftAfter("Network Persistent State", network, only({"a.com"})),
              R"({"net":{"http_server_properties":{"broken_alternative_services":[)"
              R"({"host":"b.com"}],)"
              R"("quic_servers":[],"servers":[)"
              R"({"server":"https://d.com"}],"version":5},"network_qualities":{"CAE":"4G"}}})");
    EXPECT_EQ(leftAfter("Network Persistent State", network, everything()), "");
}

// The digests of a.com, www.b.com and unknown.com.
const std::string security =
    R"({"sts":[{"host":"s1xJPfCCz+Nh8ftsn/3ZDrPB9A870Hzq6e9SkK5mRFk=","mode":"force-https","sts_observed":1795347696.5},)"
    R"({"host":"MEXOkr47J2nzxDbB09AW02ZFDH42LlKSN05YuBEilq8="},{"host":"GJtfNS7NXEm8++MOpvogllQmAeR+f3ubYEPfdg2TgII="}],"version":2})";
const KnownHosts known{"www.a.com", "www.b.com"};

TEST_F(DocumentStores, promisesOfHTTPSAreToldByTheHostsThatAreKnown) {
    home.write("TransportSecurity", security);
    const auto here = store("TransportSecurity");
    EXPECT_TRUE(here->needsKnownHosts());
    EXPECT_EQ(tests::inShort(here->list({})), Lines{"? networkState 3"});
    const TraceListing listing = here->list(known);
    EXPECT_EQ(tests::inShort(listing),
              (Lines{"a.com networkState 1", "b.com networkState 1", "? networkState 1"}));
    EXPECT_EQ(listing.bySite[0].lastUsed, dateFrom1970Seconds(1795347696.5));
    EXPECT_EQ(tests::hostsOf(listing), (std::set<std::string>{"a.com", "www.b.com"}));
}

TEST_F(DocumentStores, promisesOfUnknownHostsStayAreToldAndGoWithWhatIsMixed) {
    const auto kept = [&] {
        home.write("TransportSecurity", security);
        return store("TransportSecurity")->forget(only({"a.com"}, known)).kept;
    }();
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept[0].what, home.data() / "TransportSecurity");
    EXPECT_EQ(
        leftAfter("TransportSecurity", security, only({"a.com"}, known)),
        R"({"sts":[{"host":"MEXOkr47J2nzxDbB09AW02ZFDH42LlKSN05YuBEilq8="},{"host":"GJtfNS7NXEm8++MOpvogllQmAeR+f3ubYEPfdg2TgII="}],"version":2})");
    ForgetRequest mixed = only({"a.com"}, known);
    mixed.takesMixed = true;
    EXPECT_EQ(leftAfter("TransportSecurity", security, mixed),
              R"({"sts":[{"host":"MEXOkr47J2nzxDbB09AW02ZFDH42LlKSN05YuBEilq8="}],"version":2})");
    EXPECT_EQ(leftAfter("TransportSecurity", security, allBut({"b.com"}, known)),
              R"({"sts":[{"host":"MEXOkr47J2nzxDbB09AW02ZFDH42LlKSN05YuBEilq8="}],"version":2})");
    EXPECT_EQ(leftAfter("TransportSecurity", security, everything()), "");
}

TEST_F(DocumentStores, whatHasNothingToGoIsNotWrittenAnew) {
    home.write("Preferences", preferences);
    const auto before = fs::last_write_time(home.data() / "Preferences");
    fs::last_write_time(home.data() / "Preferences", before - std::chrono::hours(1));
    store("Preferences")->forget(only({"other.com"}));
    EXPECT_EQ(fs::last_write_time(home.data() / "Preferences"), before - std::chrono::hours(1));
    ForgetRequest cookies = everything();
    cookies.kinds = {TraceKind::cookies};
    store("Preferences")->forget(cookies);
    EXPECT_EQ(tests::readFile(home.data() / "Preferences"), preferences);
}

TEST_F(DocumentStores, whatIsMissingHoldsNothing) {
    for (const auto& each : documentStores(home.folders, home.manager)) {
        EXPECT_EQ(each->list(known), TraceListing());
        EXPECT_EQ(each->forget(everything()), ForgetOutcome());
    }
    EXPECT_TRUE(home.names().empty());
}

TEST_F(DocumentStores, whatIsDamagedOrALinkIsAnErrorAndStays) {
    home.write("Preferences", "{\"a\":");
    fs::create_symlink(home.write("elsewhere", "{}"), home.data() / "Network Persistent State");
    const auto before = home.folder.snapshot();
    EXPECT_THROW(store("Preferences")->list({}), DecodingError);
    EXPECT_THROW(store("Preferences")->forget(everything()), DecodingError);
    EXPECT_THROW(store("Network Persistent State")->list({}), fs::filesystem_error);
    EXPECT_THROW(store("Network Persistent State")->forget(only({"a.com"})), fs::filesystem_error);
    EXPECT_EQ(home.folder.snapshot(), before);
}

TEST_F(DocumentStores, whatAnInterruptedReplacementLeftGoesWithTheNext) {
    home.write("Preferences", preferences);
    home.write(".Preferences." + std::string(32, 'a'), "https://www.a.com");
    store("Preferences")->forget(only({"other.com"}));
    EXPECT_EQ(home.names(), Lines{"Preferences"});
}

}  // namespace
}  // namespace browsersweep
