#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/safari/internal/ServiceWorkerStore.h"

#include "tests/support/Database.h"
#include "tests/support/DatabaseContents.h"
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

TEST(ScriptFolders, areNamedByDigestsOfASaltAndATextAsTheEngineNamesThem) {
    const std::string salt = "\x18\xc3\xaa\x8f\xf0\xe3\x21\x31";
    EXPECT_EQ(nameOfScriptFolder(salt, "https://www.qzhostalder.test"),
              "CykGcvzza89m-s6unyOdTS-CG07q7HRpwLhhgryiwKY");
    EXPECT_EQ(nameOfScriptFolder(salt, "https://www.qzhostalder.test/"),
              "esaO5_vrX95qlX3cPxq7YRSI-uqpg36zachz28lZAFc");
}

class WebKitServiceWorkers : public testing::Test {
protected:
    static constexpr const char* root = "container:Caches/WebKit/ServiceWorkers";
    static constexpr const char* salt = "saltsalt";

    tests::Database database() const {
        return tests::Database(home.container() /
                               "Caches/WebKit/ServiceWorkers/ServiceWorkerRegistrations-8.sqlite3");
    }

    std::string scripts(const std::string& origin, const std::string& scope) const {
        return nameOfScriptFolder(salt, origin) + "/" + nameOfScriptFolder(salt, scope);
    }

    void SetUp() override {
        const auto file =
            home.container() / "Caches/WebKit/ServiceWorkers/ServiceWorkerRegistrations-8.sqlite3";
        tests::plant(
            tests::makeSafariDatabase(file),
            {"Records|key='1'|origin='https://www.a.test'|topOrigin='https_www.a.test_0'|"
             "scopeURL='/'|scriptURL='https://www.a.test/sw.js'|lastUpdateCheckTime=1700000000",
             "Records|key='2'|origin='https://b.test:8443'|topOrigin='https_b.test_8443'|"
             "scopeURL='https://b.test:8443/app/'|scriptURL='https://b.test:8443/sw.js'",
             "Records|key='3'|origin='https://c.test'|topOrigin='https_b.test_8443'|"
             "scopeURL='/'|scriptURL='https://c.test/sw.js'"},
            "", 0);
        const std::string folder = std::string(root) + "/Scripts/V1/";
        home.write(folder + "salt", salt);
        home.write(folder + ofA + "/script", "of a");
        home.write(folder + ofB + "/script", "of b");
        home.write(folder + ofC + "/script", "of c in b");
        home.write(folder + "lost/lost/script", "of nobody");
    }

    Lines scriptsLeft() const {
        Lines left;
        for (const std::string& name : home.names(std::string(root) + "/Scripts/V1")) {
            if (name.ends_with("/script")) {
                left.push_back(name.substr(0, name.size() - std::string("/script").size()));
            }
        }
        return left;
    }

    tests::SafariHome home;
    const std::string ofA = scripts("https://www.a.test", "https://www.a.test/");
    const std::string ofB = scripts("https://b.test:8443", "https://b.test:8443/app/");
    const std::string ofC = scripts("https://b.test:8443", "https://c.test/");
};

TEST_F(WebKitServiceWorkers, areListedByTheirSiteAndTheOneThatTheyAreEmbeddedIn) {
    const auto before = home.folder.snapshot();
    const TraceListing listing = home.store(root)->list({});
    EXPECT_EQ(tests::inShort(listing), (Lines{"a.test serviceWorkers 1", "b.test serviceWorkers 2",
                                              "c.test serviceWorkers 1"}));
    EXPECT_EQ(listing.bySite[0].lastUsed, dateFrom1970Seconds(1700000000));
    EXPECT_EQ(home.folder.snapshot(), before);
}

TEST_F(WebKitServiceWorkers, goWithTheirScriptsAndNoOthers) {
    EXPECT_EQ(home.store(root)->forget(only({"a.test", "c.test"})), ForgetOutcome());
    Lines left{ofB, "lost/lost"};
    std::sort(left.begin(), left.end());
    EXPECT_EQ(scriptsLeft(), left);
    EXPECT_EQ(database().text("SELECT group_concat(key) FROM Records"), "2");
}

TEST_F(WebKitServiceWorkers, ofAllButOneGoWithWhatNobodyKnows) {
    home.store(root)->forget(allBut({"c.test"}));
    EXPECT_EQ(scriptsLeft(), Lines{ofC});
    home.store(root)->forget(everything());
    EXPECT_EQ(home.names(std::string(root) + "/Scripts/V1"), Lines{"salt"});
    EXPECT_EQ(database().number("SELECT COUNT(*) FROM Records"), 0);
}

TEST_F(WebKitServiceWorkers, ofAnOlderDatabaseBesideTheNewOneGoToo) {
    home.write(std::string(root) + "/ServiceWorkerRegistrations-x.sqlite3", "no database");
    const auto older =
        home.container() / "Caches/WebKit/ServiceWorkers/ServiceWorkerRegistrations-7.sqlite3";
    tests::Database(older).execute(
        "CREATE TABLE Records(key TEXT, origin TEXT, scopeURL TEXT, topOrigin TEXT);"
        "INSERT INTO Records VALUES('k', 'https://a.test', '/', 'https_a.test_0')");
    EXPECT_EQ(tests::inShort(home.store(root)->list({})).front(), "a.test serviceWorkers 2");
    home.store(root)->forget(only({"a.test"}));
    EXPECT_EQ(tests::Database(older).number("SELECT COUNT(*) FROM Records"), 0);
}

TEST_F(WebKitServiceWorkers, areNoneInADatabaseWithoutTheirTable) {
    const auto folder = home.container() / "Caches/WebKit/ServiceWorkers";
    tests::Database(folder / "ServiceWorkerRegistrations-9.sqlite3")
        .execute("CREATE TABLE Other(key TEXT)");
    tests::Database(folder / "ServiceWorkerRegistrations-10.sqlite3")
        .execute("CREATE TABLE Records(key TEXT)");
    EXPECT_EQ(home.store(root)->forget(only({"a.test", "c.test"})).kept, std::vector<KeptTrace>());
    Lines left{ofB, "lost/lost"};
    std::sort(left.begin(), left.end());
    EXPECT_EQ(scriptsLeft(), left);
}

TEST_F(WebKitServiceWorkers, ofAnotherKindAreLeft) {
    ForgetRequest cookies = everything();
    cookies.kinds = {TraceKind::cookies};
    const auto before = home.folder.snapshot();
    home.store(root)->forget(cookies);
    EXPECT_EQ(home.folder.snapshot(), before);
}

}  // namespace
}  // namespace browsersweep
