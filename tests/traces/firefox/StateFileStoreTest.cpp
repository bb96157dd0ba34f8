#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/firefox/internal/FirefoxFileStores.h"
#include "browsersweep/traces/firefox/internal/StateFileStore.h"

#include "tests/support/FirefoxState.h"
#include "tests/support/SiteStores.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::allBut;
using tests::everything;
using tests::only;
using tests::stateSlot;
using Hosts = std::vector<std::string>;
using Lines = std::vector<std::string>;

Hosts ofSecurity(std::string_view key) {
    return hostsOfSecurityState({{}, key, {}, {}, false});
}

Hosts ofService(std::string_view key, std::string_view value = {}) {
    return hostsOfAlternateService({{}, key, value, {}, false});
}

Hosts ofCertificate(std::string_view key) {
    return hostsOfClientCertificate({{}, key, {}, {}, false});
}

TEST(StateFileKeys, ofSecurityAreAHostAndTheSiteOfThePage) {
    EXPECT_EQ(ofSecurity("www.a.com"), Hosts{"www.a.com"});
    EXPECT_EQ(ofSecurity("www.a.com:HSTS"), Hosts{"www.a.com"});
    EXPECT_EQ(ofSecurity("www.a.com:HPKP"), Hosts{"www.a.com"});
    EXPECT_EQ(ofSecurity("cdn.c.com^partitionKey=%28https%2Ca.com%29"),
              (Hosts{"cdn.c.com", "a.com"}));
    EXPECT_EQ(ofSecurity("cdn.c.com^partitionKey=%28https%2Ca.com%29:HSTS"),
              (Hosts{"cdn.c.com", "a.com"}));
    EXPECT_EQ(ofSecurity("fpd.com^firstPartyDomain=top.com"), (Hosts{"fpd.com", "top.com"}));
    EXPECT_EQ(ofSecurity(""), Hosts{});
    EXPECT_EQ(ofSecurity("^partitionKey=%28https%2Ca.com%29"), Hosts{});
    EXPECT_EQ(ofSecurity("no host|at all"), Hosts{});
}

TEST(StateFileKeys, ofServicesAreAServerAndTheOneInItsPlace) {
    EXPECT_EQ(ofService("https:www.a.com:443:.::.",
                        "https:www.a.com:443:alt.z.com:8443::n:1795348454:h2:y:1:n:::|n:n:"),
              (Hosts{"www.a.com", "alt.z.com"}));
    EXPECT_EQ(ofService("https:www.r.com:443:.:^partitionKey=%28https%2Ca.com%29:3",
                        "https:www.r.com:443:www.r.com:443::n:1795348454:h3:y:1:n:"
                        "^partitionKey=%28https%2Ca.com%29::|n:y:"),
              (Hosts{"www.r.com", "a.com"}));
    EXPECT_EQ(ofService("http:a.com:80:P::.", "other"), Hosts{"a.com"});
    EXPECT_EQ(ofService("https:2001:db8::1:443:.::3", "https:2001:db8::1:443:2001:db8::1:443::n"),
              Hosts{"2001:db8::1"});
    EXPECT_EQ(ofService("https:a.com:443:.::https://top.com|n.", "https:a.com:443"),
              (Hosts{"a.com", "top.com"}));
    for (const char* key : {"", "https:", "https:a.com", "https:a.com:443",
                            "https::.:", ":.:", "ftp:a.com:21:.::.", "https:443:.::."}) {
        EXPECT_EQ(ofService(key), Hosts{}) << key;
    }
}

TEST(StateFileKeys, ofCertificatesAreAHostAndTheSiteOfThePage) {
    EXPECT_EQ(ofCertificate("www.a.com,,"), Hosts{"www.a.com"});
    EXPECT_EQ(ofCertificate("www.a.com,AA:BB,^partitionKey=%28https%2Cb.com%29"),
              (Hosts{"www.a.com", "b.com"}));
    EXPECT_EQ(ofCertificate("www.a.com"), Hosts{});
    EXPECT_EQ(ofCertificate(",,^partitionKey=%28https%2Cb.com%29"), Hosts{});
}

const std::string unused(286, '\0');
const std::string ofA = stateSlot("www.a.com", "1796377579839,1,1", 24, 20000);
const std::string ofB = stateSlot("b.com", "1796377579839,1,1", 24, 20001);
const std::string ofCWithinA =
    stateSlot("cdn.c.com^partitionKey=%28https%2Ca.com%29", "1796377579839,1,1", 24);

class StateFileStoreTest : public testing::Test {
protected:
    fs::path write(const std::string& contents,
                   std::string_view name = "SiteSecurityServiceState.bin") const {
        return profile.write(name, contents);
    }

    std::shared_ptr<const TraceStore> store(const fs::path& path) const {
        return tests::storeAt(firefoxFileStores(profile.folders, profile.manager), path);
    }

    Lines listed(const fs::path& file) const { return tests::inShort(store(file)->list({})); }

    /** What a file holds after a request, which must have kept nothing on purpose. */
    std::string after(const ForgetRequest& request, const std::string& contents,
                      std::string_view name = "SiteSecurityServiceState.bin") const {
        const fs::path file = write(contents, name);
        EXPECT_EQ(store(file)->forget(request), ForgetOutcome());
        return fs::exists(file) ? tests::readFile(file) : "none";
    }

    tests::ChromiumHome profile;
};

TEST_F(StateFileStoreTest, recordsAreListedByBothSitesAndTheirDay) {
    const fs::path file = write(ofA + unused + ofB + ofCWithinA);
    const auto before = profile.folder.snapshot();
    EXPECT_EQ(listed(file),
              (Lines{"a.com networkState 2", "b.com networkState 1", "c.com networkState 1"}));
    const Trace trace = store(file)->list({}).bySite[1];
    EXPECT_EQ(trace.size, (CleanableDataSize{1, 286}));
    EXPECT_EQ(trace.lastUsed, dateFrom1970Seconds(20001.0 * 86400));
    EXPECT_EQ(profile.folder.snapshot(), before);
    EXPECT_EQ(store(profile.data() / "AlternateServices.bin")->list({}), TraceListing());
}

TEST_F(StateFileStoreTest, recordsGoAndTheOthersKeepEveryByte) {
    const std::string all = ofA + unused + ofB + ofCWithinA + unused;
    EXPECT_EQ(after(only({"a.com"}), all), unused + ofB + unused);
    EXPECT_EQ(after(only({"c.com"}), all), ofA + unused + ofB + unused);
    EXPECT_EQ(after(allBut({"b.com"}), all), unused + ofB + unused);
    EXPECT_EQ(after(allBut({"a.com"}), all), ofA + unused + ofCWithinA + unused);
    EXPECT_EQ(after(only({"other.com"}), all), all);
    EXPECT_EQ(after(everything(), all), "none");
}

TEST_F(StateFileStoreTest, aFileWithoutRecordsStaysSoThatAnOlderOneIsNotReadInItsPlace) {
    EXPECT_EQ(after(only({"a.com"}), ofA), "");
    EXPECT_EQ(after(allBut({"other.com"}), ofA + ofB), "");
}

TEST_F(StateFileStoreTest, linesOfOlderVersionsGoOneByOne) {
    const std::string a = "www.a.com:HSTS\t3\t17000\t1600000000000,1,0\n";
    const std::string b = "b.com:HPKP\t1\t17001\t1600000000000,1,0,AAAA=\n";
    const fs::path file = write(a + b, "SiteSecurityServiceState.txt");
    EXPECT_EQ(listed(file), (Lines{"a.com networkState 1", "b.com networkState 1"}));
    EXPECT_EQ(after(only({"a.com"}), a + b, "SiteSecurityServiceState.txt"), b);
    EXPECT_EQ(after(allBut({"a.com"}), a + b, "SiteSecurityServiceState.txt"), a);
    const std::string way = "https:www.a.com:443:.::.\t1\t17000\thttps:www.a.com:443:z.com:443:\n";
    const fs::path ways = write(way, "AlternateServices.txt");
    EXPECT_EQ(listed(ways), (Lines{"a.com networkState 1", "z.com networkState 1"}));
    EXPECT_EQ(after(only({"z.com"}), way, "AlternateServices.txt"), "");
}

TEST_F(StateFileStoreTest, otherWaysToAServerGoWithEitherOfThem) {
    const std::string toZ =
        stateSlot("https:www.a.com:443:.::.", "https:www.a.com:443:alt.z.com:443::n:1:h2:", 1024);
    const std::string toB = stateSlot("https:b.com:443:.::3", "https:b.com:443:b.com:443:", 1024);
    EXPECT_EQ(after(only({"z.com"}), toZ + toB, "AlternateServices.bin"), toB);
    EXPECT_EQ(after(only({"b.com"}), toZ + toB, "AlternateServices.bin"), toZ);
    EXPECT_EQ(after(allBut({"z.com"}), toZ + toB, "AlternateServices.bin"), toZ);
}

TEST_F(StateFileStoreTest, chosenCertificatesGoOnlyWhereSettingsAreAskedFor) {
    const std::string choice = stateSlot("www.a.com,,", "no client certificate", 1024);
    const fs::path file = write(choice, "ClientAuthRememberList.bin");
    EXPECT_EQ(listed(file), Lines{"a.com settings 1"});
    ForgetRequest request = only({"a.com"});
    EXPECT_EQ(after(request, choice, "ClientAuthRememberList.bin"), choice);
    request.takesSettings = true;
    EXPECT_EQ(after(request, choice, "ClientAuthRememberList.bin"), "");
    EXPECT_EQ(after(request, "www.a.com,AA:BB,\t1\t1\tkey\n", "ClientAuthRememberList.txt"), "");
}

/** A record of so many hosts, the first of them "www.a.com". */
std::string ofManyHosts(int count) {
    std::string pages;
    for (int index = 1; index < count; ++index) {
        pages += " https://h" + std::to_string(index) + ".com/";
    }
    return stateSlot("https:www.a.com:443:.::.", pages, 1024);
}

TEST_F(StateFileStoreTest, aRecordOfMoreHostsThanFirefoxWritesTellsNoSite) {
    const fs::path file = write(ofManyHosts(8), "AlternateServices.bin");
    EXPECT_EQ(store(file)->list({}).bySite.size(), 8U);
    EXPECT_EQ(after(only({"h7.com"}), ofManyHosts(8), "AlternateServices.bin"), "");
    write(ofManyHosts(9), "AlternateServices.bin");
    EXPECT_EQ(listed(file), Lines{"? networkState 1"});
    EXPECT_EQ(store(file)->forget(only({"h7.com"})).kept.size(), 1U);
    EXPECT_EQ(tests::readFile(file), ofManyHosts(9));
}

/** Damaged in its last byte; with a key that names no host, and no site; cut short. */
std::vector<std::string> unreadable() {
    std::string damaged = ofA;
    damaged.back() = 'x';
    return {damaged, stateSlot("not|a host", "v", 24), stateSlot(".[]", "v", 24),
            ofA.substr(0, 100)};
}

TEST_F(StateFileStoreTest, recordsThatTellNoSiteAreToldAndGoWithAllOrWhereTheyAreAskedFor) {
    for (const std::string& record : unreadable()) {
        const fs::path file = write(ofB + record);
        const TraceListing listing = store(file)->list({});
        ASSERT_EQ(tests::inShort(listing), (Lines{"b.com networkState 1", "? networkState 1"}));
        EXPECT_EQ(listing.notBySite[0].size, (CleanableDataSize{1, record.size()}));
        const ForgetOutcome outcome = store(file)->forget(only({"a.com"}));
        ASSERT_EQ(outcome.kept.size(), 1U);
        EXPECT_EQ(outcome.kept[0],
                  (KeptTrace{TraceKind::networkState, file, listing.notBySite[0].meaning}));
        EXPECT_EQ(tests::readFile(file), ofB + record);
        EXPECT_EQ(after(allBut({"b.com"}), ofB + record), ofB);
        ForgetRequest mixed = only({"a.com"});
        mixed.takesMixed = true;
        EXPECT_EQ(after(mixed, ofB + record), ofB);
    }
}

TEST_F(StateFileStoreTest, whatFirefoxDidNotWriteIsLeftUnreadAndGoesAsAWhole) {
    const fs::path file = profile.data() / "SiteSecurityServiceState.bin";
    profile.folder.write("precious", ofA);
    const std::vector<std::function<void()>> makers{
        [&] { fs::create_symlink(profile.folder / "precious", file); },
        [&] {
            write(ofA);
            fs::resize_file(file, (std::uintmax_t{4} << 20) + 1);
        },
    };
    for (const auto& make : makers) {
        make();
        EXPECT_EQ(listed(file), Lines{"? networkState 1"});
        EXPECT_EQ(store(file)->forget(only({"a.com"})).kept.size(), 1U);
        EXPECT_TRUE(fs::exists(file));
        EXPECT_EQ(store(file)->forget(allBut({"b.com"})), ForgetOutcome());
        EXPECT_FALSE(fs::exists(fs::symlink_status(file)));
    }
    EXPECT_EQ(tests::readFile(profile.folder / "precious"), ofA);
}

TEST_F(StateFileStoreTest, whatAReplacementThatWasCutShortLeftBesideGoes) {
    const std::string left = ".SiteSecurityServiceState.bin.0123456789abcdef0123456789abcdef";
    ASSERT_TRUE(FileManager::isLeftByReplacing(left, "SiteSecurityServiceState.bin"));
    write(ofA, left);
    EXPECT_EQ(after(only({"a.com"}), ofB), ofB);
    EXPECT_EQ(profile.names(), Lines{"SiteSecurityServiceState.bin"});
}

}  // namespace
}  // namespace browsersweep
