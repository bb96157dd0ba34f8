#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/firefox/internal/FirefoxFileStores.h"
#include "browsersweep/traces/firefox/internal/MozLz4.h"
#include "browsersweep/traces/firefox/internal/SessionDocument.h"

#include "tests/support/Bytes.h"
#include "tests/support/SiteStores.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::allBut;
using tests::everything;
using tests::only;
using Hosts = std::vector<std::string>;
using Lines = std::vector<std::string>;

/** A page in a tab's way back. */
std::string page(std::string_view address, std::string_view more = "") {
    std::string text = R"({"url":")";
    return text.append(address).append(R"(","title":"t")").append(more).append("}");
}

const std::string ofA = page("https://www.a.com/1");
const std::string ofB = page("https://b.com/1");
const std::string home = page("about:home");

std::string between(std::string_view begin, const std::vector<std::string>& parts,
                    std::string_view end) {
    std::string text(begin);
    for (const std::string& part : parts) {
        text.append(&part == &parts.front() ? "" : ",").append(part);
    }
    return text.append(end);
}

std::string tab(const std::vector<std::string>& pages, std::string_view more = "") {
    return between(R"({"entries":[)", pages, "]") + std::string(more) + "}";
}

std::string closed(const std::string& state) {
    return R"({"state":)" + state + R"(,"title":"of the page","image":"data:","pos":0})";
}

std::string window(const std::vector<std::string>& tabs, const std::string& more = "") {
    return between(R"({"tabs":[)", tabs, "]") + more + "}";
}

std::string session(const std::vector<std::string>& windows, const std::string& more = "") {
    return between(R"({"version":["sessionrestore",1],"windows":[)", windows, "]") + more + "}";
}

/** A cookie of c.com that was set in pages of another site. */
std::string cookieOfC(const std::string& partition) {
    return R"({"host":"c.com","originAttributes":{"partitionKey":")" + partition + R"("}})";
}

class SessionStoreTest : public testing::Test {
protected:
    fs::path write(const std::string& json, std::string_view name = "sessionstore.jsonlz4") const {
        const Bytes file = encodedMozLz4(json);
        return profile.write(name, std::string(file.begin(), file.end()));
    }

    std::shared_ptr<const TraceStore> store(const fs::path& path) const {
        return tests::storeAt(firefoxFileStores(profile.folders, profile.manager), path);
    }

    std::string left(const fs::path& file) const {
        const Bytes json = decodedMozLz4(profile.manager->contents(file));
        return {json.begin(), json.end()};
    }

    /** The session after a request, which must have kept nothing on purpose. */
    std::string after(const ForgetRequest& request, const std::string& json) const {
        const fs::path file = write(json);
        EXPECT_EQ(store(file)->forget(request).kept, std::vector<KeptTrace>());
        return left(file);
    }

    tests::ChromiumHome profile;
};

TEST_F(SessionStoreTest, everyPageValueAndCookieIsListedByItsSite) {
    const fs::path file = write(session(
        {window({tab({home, ofA, ofB}, R"(,"storage":{"https://a.com":{"k":"v"},)"
                                       R"("https://c.com^partitionKey=%28https%2Cb.com%29":{}})")},
                R"(,"_closedTabs":[)" + closed(tab({ofA})) + "]")},
        R"(,"_closedWindows":[)" + window({tab({ofB})}) + R"(],"cookies":[{"host":".a.com"},)" +
            cookieOfC("(https,b.com,8443)") + "]"));
    const auto before = profile.folder.snapshot();
    EXPECT_EQ(tests::inShort(store(file)->list({})),
              (Lines{"a.com cookies 1", "a.com siteStorage 1", "a.com openTabs 2",
                     "b.com cookies 1", "b.com siteStorage 1", "b.com openTabs 2",
                     "c.com cookies 1", "c.com siteStorage 1"}));
    EXPECT_EQ(profile.folder.snapshot(), before);
}

TEST_F(SessionStoreTest, pagesGoOneByOneAndTheOneShownIsCountedAnew) {
    EXPECT_EQ(
        after(only({"a.com"}), session({window({tab({home, ofA, ofB, ofA}, R"(,"index":3)")})})),
        session({window({tab({home, ofB}, R"(,"index":2)")})}));
    EXPECT_EQ(after(allBut({"b.com"}), session({window({tab({ofA, ofB}, R"(,"index":2)")})})),
              session({window({tab({ofB}, R"(,"index":1)")})}));
    EXPECT_EQ(after(only({"a.com"}), session({window({tab({home, ofA}, R"(,"index":1)")})})),
              session({window({tab({home}, R"(,"index":1)")})}));
    EXPECT_EQ(after(only({"a.com"}), session({window({tab({ofA, home}, R"(,"index":1)")})})),
              session({window({tab({home}, R"(,"index":1)")})}));
}

TEST_F(SessionStoreTest, aTitleThatWasCutWithinACharacterHidesNothing) {
    const std::string cut = R"(,"note":"\ud83d")";
    const std::string ofSite = page("https://www.a.com/1", cut);
    EXPECT_EQ(after(only({"a.com"}), session({window({tab({ofSite, home, ofB})}, cut)})),
              session({window({tab({home, ofB})}, cut)}));
    EXPECT_EQ(after(only({"b.com"}), session({window({tab({ofSite, ofB})})})),
              session({window({tab({ofSite})})}));
}

TEST_F(SessionStoreTest, aTabWhosePageHasGoneLosesItsTitleAndPicture) {
    const std::string shown = R"(,"image":"data:a","index":2)";
    EXPECT_EQ(after(only({"a.com"}), session({window({tab({home, ofA}, shown)})})),
              session({window({tab({home}, R"(,"index":1)")})}));
    EXPECT_EQ(after(only({"a.com"}), session({window({tab({ofA, home}, shown)})})),
              session({window({tab({home}, R"(,"image":"data:a","index":1)")})}));
    const std::string others = R"(,"_closedTabs":[)";
    EXPECT_EQ(after(only({"a.com"}),
                    session({window({tab({home})}, others + closed(tab({home, ofA})) + "]")})),
              session({window({tab({home})},
                              others + R"({"state":)" + tab({home}) + R"(,"pos":0})" + "]")}));
    EXPECT_EQ(after(only({"a.com"}), session({window({tab({home}), tab({home, ofA})},
                                                     R"(,"selected":2,"title":"of a")")})),
              session({window({tab({home}), tab({home})}, R"(,"selected":2)")}));
}

TEST_F(SessionStoreTest, aTabWithoutPagesGoesAndAWindowWithoutTabs) {
    EXPECT_EQ(
        after(only({"a.com"}),
              session({window({tab({ofA}), tab({home}), tab({ofA, ofA})}, R"(,"selected":2)")})),
        session({window({tab({home})}, R"(,"selected":1)")}));
    EXPECT_EQ(after(only({"a.com"}), session({window({tab({ofA})}), window({tab({home})})})),
              session({window({tab({home})})}));
    const std::string groups = R"(,"savedGroups":[)";
    EXPECT_EQ(after(only({"a.com"}), session({}, groups + window({closed(tab({ofA}))}) + "]")),
              session({}, groups + "]"));
    EXPECT_EQ(after(only({"a.com"}), session({window({}), window({tab({})})})),
              session({window({}), window({tab({})})}));
}

TEST_F(SessionStoreTest, aWindowStaysForTheClosedTabsOfOthers) {
    const std::string ofOthers = R"(,"_closedTabs":[)" + closed(tab({home})) + "]";
    EXPECT_EQ(after(only({"a.com"}), session({window({tab({ofA}), tab({ofA})}, ofOthers)})),
              session({window({R"({"entries":[]})"}, ofOthers)}));
    EXPECT_EQ(
        after(only({"a.com"}),
              session({window({tab({ofA})}, R"(,"_closedTabs":[)" + closed(tab({ofA})) + "]")})),
        session({}));
}

TEST_F(SessionStoreTest, whatAPageSaysOfAnotherSiteGoesWithoutThePage) {
    const std::string inBase64 = "Av////8AAAAsaHR0cHM6Ly93d3cuYS5jb20vMQAAAAg=";
    const std::string plain = page("https://c.com/1", R"(,"ID":3)");
    for (const std::string& member :
         {R"(,"referrerInfo":")" + inBase64 + "\"",
          std::string(R"(,"principal_base64":"{\"1\":{\"0\":\"https://a.com/x\"}}")"),
          std::string(
              R"(,"principal":"{\"0\":\"https://c.com^partitionKey=%28https%2Ca.com%29\"}")")}) {
        const std::string told = page("https://c.com/1", member + R"(,"ID":3)");
        EXPECT_EQ(after(only({"a.com"}), session({window({tab({told})})})),
                  session({window({tab({plain})})}));
        EXPECT_EQ(after(allBut({"c.com"}), session({window({tab({told})})})),
                  session({window({tab({plain})})}));
        EXPECT_EQ(after(allBut({"c.com", "a.com"}), session({window({tab({told})})})),
                  session({window({tab({told})})}));
    }
    EXPECT_EQ(after(only({"a.com"}),
                    session({window({tab({home}, R"(,"userTypedValue":"https://a.com/")")})})),
              session({window({tab({home})})}));
}

TEST_F(SessionStoreTest, pagesWithinPagesAndTheirFormsGoAlone) {
    const std::string pages = R"(,"children":[)";
    EXPECT_EQ(
        after(only({"a.com"}),
              session({window({tab({page("https://c.com/", pages + ofA + "," + home + "]")})})})),
        session({window({tab({page("https://c.com/", pages + home + "]")})})}));
    EXPECT_EQ(after(only({"a.com"}),
                    session({window(
                        {tab({home}, R"(,"formdata":{"url":"https://a.com/","id":{"x":"y"}})")})})),
              session({window({tab({home})})}));
}

TEST_F(SessionStoreTest, aPageOfTheBrowserThatShowsASiteIsOfThatSite) {
    const std::string reader = page("about:reader?url=https%3A%2F%2Fwww.a.com%2Fnews");
    EXPECT_EQ(after(only({"a.com"}), session({window({tab({home, reader})})})),
              session({window({tab({home})})}));
    EXPECT_EQ(after(allBut({"b.com"}), session({window({tab({home, page("file:///x"), ofB})})})),
              session({window({tab({home, ofB})})}));
}

TEST_F(SessionStoreTest, valuesAndCookiesGoByTheirOwnSiteAndTheOneAround) {
    const std::string storage =
        R"(,"storage":{"moz-extension://1":{},"https://b.com":{"k":"a.com"}})";
    EXPECT_EQ(after(allBut({"b.com"}), session({window({tab({home}, storage)})})),
              session({window({tab({home}, storage)})}));
    const std::string cookies =
        R"(,"cookies":[{"host":"a.com"},{"host":"b.com","value":"https://c.com"},)" +
        cookieOfC("(https,a.com)") + "]";
    EXPECT_EQ(after(only({"a.com"}), session({}, cookies)),
              session({}, R"(,"cookies":[{"host":"b.com","value":"https://c.com"}])"));
}

TEST_F(SessionStoreTest, onlyTheKindsThatAreAskedForGo) {
    const std::string all =
        session({window({tab({ofA, home}, R"(,"storage":{"https://a.com":{}})")})},
                R"(,"cookies":[{"host":"a.com"}])");
    ForgetRequest request = everything();
    request.kinds = {TraceKind::cookies};
    EXPECT_EQ(after(request, all),
              session({window({tab({ofA, home}, R"(,"storage":{"https://a.com":{}})")})},
                      R"(,"cookies":[])"));
    request.kinds = {TraceKind::openTabs};
    EXPECT_EQ(after(request, all),
              session({window({tab({home}, R"(,"storage":{"https://a.com":{}})")})},
                      R"(,"cookies":[{"host":"a.com"}])"));
    request.kinds = {TraceKind::history};
    EXPECT_EQ(after(request, all), all);
}

TEST_F(SessionStoreTest, everyFileOfEarlierStatesIsLookedAtAndAllGoWithEverything) {
    const fs::path one =
        write(session({window({tab({home, ofA})})}), "sessionstore-backups/previous.jsonlz4");
    const fs::path other =
        write(session({window({tab({ofA, home})})}), "sessionstore-backups/upgrade-1");
    const fs::path damaged = profile.write("sessionstore-backups/recovery.baklz4", "12345");
    const auto backups = store(one.parent_path());
    EXPECT_EQ(tests::inShort(backups->list({})), (Lines{"a.com openTabs 2", "? openTabs 1"}));
    const auto kept = backups->forget(only({"a.com"})).kept;
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept[0].what, damaged);
    EXPECT_EQ(left(one), session({window({tab({home})})}));
    EXPECT_EQ(left(other), session({window({tab({home})})}));
    EXPECT_TRUE(fs::exists(damaged));
    EXPECT_EQ(backups->forget(allBut({"b.com"})), ForgetOutcome());
    EXPECT_FALSE(fs::exists(damaged));
    EXPECT_TRUE(fs::exists(one));
    EXPECT_EQ(backups->forget(everything()), ForgetOutcome());
    EXPECT_FALSE(fs::exists(one.parent_path()));
}

TEST_F(SessionStoreTest, anAddressOfAnotherSiteThatNamesTheSiteIsTold) {
    const std::string json = session({window({tab({page("https://b.com/?from=https://a.com/")})})});
    const fs::path file = write(json);
    const auto kept = store(file)->forget(only({"a.com"})).kept;
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept[0].why, "pages of other sites, in open and closed tabs, that mention this site");
    EXPECT_EQ(left(file), json);
}

TEST_F(SessionStoreTest, aFileThatHoldsNothingOfASiteKeepsEveryByteOfIt) {
    const fs::path file = write(session({window({tab({home})})}));
    const auto before = profile.folder.snapshot();
    EXPECT_EQ(store(file)->forget(only({"a.com"})), ForgetOutcome());
    EXPECT_EQ(profile.folder.snapshot(), before);
}

TEST_F(SessionStoreTest, aLinkInItsPlaceIsNotFollowed) {
    const Bytes file = encodedMozLz4(session({window({tab({ofA})})}));
    const fs::path outside = profile.folder.write("outside", std::string(file.begin(), file.end()));
    const fs::path link = profile.data() / "sessionstore.jsonlz4";
    fs::create_symlink(outside, link);
    EXPECT_EQ(tests::hostsOf(store(link)->list({})), std::set<std::string>());
    EXPECT_EQ(store(link)->forget(only({"a.com"})).kept.size(), 1U);
    store(link)->forget(everything());
    EXPECT_FALSE(fs::is_symlink(link));
    EXPECT_EQ(tests::readFile(outside), std::string(file.begin(), file.end()));
}

TEST_F(SessionStoreTest, aStateOfManyLevelsIsNotLookedInto) {
    const std::string more = R"(,"x":"]}\"","children":)";
    const auto nested = [&](std::size_t depth) {
        return session({}, more + std::string(depth, '[') + std::string(depth, ']'));
    };
    EXPECT_EQ(tests::inShort(store(write(nested(63)))->list({})), Lines());
    EXPECT_EQ(tests::inShort(store(write(nested(64)))->list({})), Lines{"? openTabs 1"});
}

TEST(SessionDocument, hostsAreFoundInAddressesEscapedOrNotAndInBase64) {
    EXPECT_EQ(hostsInSessionText("https://a.com/ \"http://b.com\""), (Hosts{"a.com", "b.com"}));
    EXPECT_EQ(hostsInSessionText("about:reader?url=https%3A%2F%2Fa.com%2F"), Hosts{"a.com"});
    EXPECT_EQ(hostsInSessionText("AAAAAAAAAAAAaHR0cHM6Ly9iLmNvbS8="), Hosts{"b.com"});
    EXPECT_EQ(hostsInSessionText("data:image/png,https://a.com"), Hosts());
    EXPECT_EQ(hostsInSessionText("a.com"), Hosts());
}

}  // namespace
}  // namespace browsersweep
