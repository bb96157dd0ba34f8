#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/propertylist/PropertyList.h"
#include "browsersweep/traces/safari/internal/TabListStore.h"

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

std::string binary(const PropertyList& value) {
    const Bytes bytes = value.binaryData();
    return {bytes.begin(), bytes.end()};
}

/** The pages to go back to, as WebKit writes them: four bytes, then a property list. */
PropertyList state(const std::string& address) {
    const std::string bytes =
        std::string("\0\0\0\2", 4) +
        binary(dictionary({{"SessionHistory",
                            dictionary({{"SessionHistoryEntries",
                                         PropertyList::array({dictionary(
                                             {{"SessionHistoryEntryURL", text(address)}})})}})}}));
    return PropertyList::data(tests::bytes(bytes));
}

PropertyList tab(const std::string& address, const std::string& before = "") {
    PropertyList::Dictionary entries{
        {"TabTitle", text("of " + address)},
        {"TabURL", text(address)},
        {"LastVisitTime", PropertyList::date(dateFromReferenceSeconds(700000000))}};
    if (!before.empty()) {
        entries.push_back({"SessionState", state(before)});
    }
    return dictionary(std::move(entries));
}

PropertyList window(PropertyList::Array tabs, std::int64_t selected) {
    return dictionary({{"SelectedTabIndex", PropertyList::integer(selected)},
                       {"TabStates", PropertyList::array(std::move(tabs))},
                       {"WindowUUID", text("W")}});
}

PropertyList session(PropertyList::Array windows) {
    return dictionary({{"SessionVersion", text("1.0")},
                       {"SessionWindows", PropertyList::array(std::move(windows))}});
}

PropertyList closed(const PropertyList& what) {
    return dictionary(
        {{"PersistentState", what}, {"PersistentStateType", PropertyList::integer(0)}});
}

class TabLists : public testing::Test {
protected:
    static constexpr const char* place = "Safari/LastSession.plist";

    /** What a list becomes; absent where the file goes. */
    std::optional<PropertyList> after(const PropertyList& before, const ForgetRequest& request,
                                      const char* at = place) const {
        const auto file = home.write(at, binary(before));
        home.store(at)->forget(request);
        if (!std::filesystem::exists(file)) {
            return std::nullopt;
        }
        return PropertyList::parse(tests::bytes(tests::readFile(file)));
    }

    tests::SafariHome home;
};

TEST_F(TabLists, areListedByTheTabsPageAndThePagesBefore) {
    home.write(
        place,
        binary(session({window(
            {tab("https://www.a.test/1"), tab("https://b.test/", "https://www.a.test/2")}, 0)})));
    const TraceListing listing = home.store(place)->list({});
    EXPECT_EQ(tests::inShort(listing), (Lines{"a.test openTabs 2", "b.test openTabs 2"}));
    EXPECT_EQ(listing.bySite[0].shared.size(), 1U);
    EXPECT_EQ(listing.bySite[0].lastUsed, dateFromReferenceSeconds(700000000));
}

TEST_F(TabLists, loseTheTabsOfASiteAndWindowsThatHaveNoOther) {
    const PropertyList kept = window({tab("https://b.test/"), tab("favorites://")}, 1);
    EXPECT_EQ(
        after(session({window({tab("https://a.test/1"), tab("https://www.a.test/2")}, 1),
                       window({tab("https://b.test/"), tab("https://a.test/"), tab("favorites://")},
                              2)}),
              only({"a.test"})),
        session({kept}));
    EXPECT_EQ(after(session({window({tab("https://a.test/")}, 0)}), only({"a.test"})), session({}));
}

TEST_F(TabLists, aWindowStaysWithTheLastTabInAnyOfItsMembers) {
    const auto withClosed = [](PropertyList::Array open, PropertyList::Array closedTabs) {
        return dictionary({{"SelectedTabIndex", PropertyList::integer(0)},
                           {"TabStates", PropertyList::array(std::move(open))},
                           {"ClosedTabStates", PropertyList::array(std::move(closedTabs))}});
    };
    EXPECT_EQ(after(session({withClosed({tab("https://a.test/")}, {tab("https://b.test/")})}),
                    only({"a.test"})),
              session({withClosed({}, {tab("https://b.test/")})}));
    EXPECT_EQ(after(session({withClosed({tab("https://a.test/")}, {tab("https://a.test/2")})}),
                    only({"a.test"})),
              session({}));
}

TEST_F(TabLists, ofKeptSitesStayWhereNotesBesideThemGo) {
    const PropertyList kept = session({window({tab("https://b.test/")}, 0)});
    PropertyList::Dictionary members =
        *session({window({tab("https://a.test/"), tab("https://b.test/")}, 1)}).asDictionary();
    members.push_back({"Odd", text("https://a.test/")});
    const PropertyList all = dictionary(std::move(members));
    EXPECT_EQ(after(all, allBut({"b.test"})), kept);
    EXPECT_EQ(after(all, allBut({"c.test"})), std::nullopt);
}

TEST_F(TabLists, ofWindowsWithinWindowsAreReadOnce) {
    PropertyList inner = window({tab("https://a.test/"), tab("https://b.test/")}, 1);
    PropertyList left = window({tab("https://b.test/")}, 0);
    for (int depth = 0; depth < 100; ++depth) {
        inner = window({inner}, 0);
        left = window({left}, 0);
    }
    EXPECT_EQ(after(session({inner}), only({"a.test"})), session({left}));
}

TEST_F(TabLists, thatAddUpToTooMuchAreAnError) {
    const PropertyList list = tests::manyInEachOther(tab("https://a.test/"));
    const auto file = home.write(place, binary(list));
    EXPECT_THROW(home.store(place)->list({}), DecodingError);
    EXPECT_THROW(home.store(place)->forget(only({"a.test"})), DecodingError);
    EXPECT_EQ(tests::readFile(file), binary(list));
}

TEST_F(TabLists, aTabOfAnotherSiteLosesOnlyThePagesBefore) {
    const PropertyList both = session({window({tab("https://b.test/", "https://a.test/")}, 0)});
    EXPECT_EQ(after(both, only({"a.test"})), session({window({tab("https://b.test/")}, 0)}));
    EXPECT_EQ(after(both, only({"b.test"})), session({}));
    EXPECT_EQ(after(both, only({"c.test"})), both);
    EXPECT_EQ(after(both, allBut({"b.test"})), both);
    EXPECT_EQ(after(both, allBut({"a.test"})), session({}));
    EXPECT_EQ(after(both, everything()), std::nullopt);
}

TEST_F(TabLists, ofClosedTabsAreTheSameAndMayLieInData) {
    constexpr const char* list = "Safari/RecentlyClosedTabs.plist";
    const auto all = [](PropertyList::Array entries) {
        return dictionary(
            {{"ClosedTabOrWindowPersistentStates", PropertyList::array(std::move(entries))},
             {"ClosedTabOrWindowPersistentStatesVersion", text("1")}});
    };
    const auto inData = [](const PropertyList& value) {
        return closed(PropertyList::data(value.binaryData()));
    };
    const PropertyList ofB = closed(tab("https://b.test/"));
    EXPECT_EQ(
        after(all({closed(tab("https://a.test/")), ofB, closed(window({tab("https://a.test/")}, 0)),
                   inData(tab("https://a.test/")),
                   inData(window({tab("https://a.test/"), tab("https://b.test/")}, 1))}),
              only({"a.test"}), list),
        all({ofB, inData(window({tab("https://b.test/")}, 0))}));
}

TEST_F(TabLists, whatNamesASiteBesideTabsIsToldAndGoesWithMostSites) {
    const PropertyList odd = dictionary({{"Odd", text("https://a.test/")}});
    home.write(place, binary(odd));
    EXPECT_EQ(tests::inShort(home.store(place)->list({})), Lines{"? openTabs 1"});
    EXPECT_EQ(home.store(place)->forget(only({"a.test"})).kept.size(), 1U);
    EXPECT_EQ(after(odd, only({"a.test"})), odd);
    ForgetRequest mixed = only({"a.test"});
    mixed.takesMixed = true;
    EXPECT_EQ(after(odd, mixed), std::nullopt);
    EXPECT_EQ(after(odd, allBut({"a.test"})), std::nullopt);
}

TEST_F(TabLists, stayInTheirFormAndAreNotWrittenWhereNothingGoes) {
    const std::string xml =
        "<plist><dict><key>SessionWindows</key><array><dict><key>TabStates</key><array>"
        "<dict><key>TabURL</key><string>https://a.test/</string></dict></array></dict></array>"
        "</dict></plist>";
    const auto file = home.write(place, xml);
    home.store(place)->forget(only({"b.test"}));
    EXPECT_EQ(tests::readFile(file), xml);
    home.store(place)->forget(only({"a.test"}));
    EXPECT_TRUE(tests::readFile(file).starts_with("<?xml"));
    EXPECT_EQ(PropertyList::parse(tests::bytes(tests::readFile(file))),
              dictionary({{"SessionWindows", PropertyList::array({})}}));
}

TEST_F(TabLists, ofAnotherKindAreLeft) {
    ForgetRequest history = everything();
    history.kinds = {TraceKind::history};
    const PropertyList all = session({window({tab("https://a.test/")}, 0)});
    EXPECT_EQ(after(all, history), all);
}

}  // namespace
}  // namespace browsersweep
