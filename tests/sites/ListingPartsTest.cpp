#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sites/ListingParts.h"

namespace browsersweep {
namespace {

const Site a = *Site::ofHost("a.com");
const Site b = *Site::ofHost("b.com");
const Site c = *Site::ofHost("c.com");

Trace trace(const Site& site, std::int64_t count, TraceKind kind = TraceKind::siteStorage) {
    return {site, kind, {site.name()}, {count, 10 * count}, {}};
}

/** Three items of a, of which two are embedded in b; b has four; c one. */
TraceListing embedded() {
    Trace ofA = trace(a, 3);
    ofA.shared[{b}] = {2, 20};
    Trace ofB = trace(b, 4);
    ofB.shared[{a}] = {2, 20};
    return {{ofA, ofB, trace(c, 1)}, {}};
}

ForgetRequest request(SiteSelection sites) {
    ForgetRequest result;
    result.sites = std::move(sites);
    return result;
}

TEST(ListingParts, takesOfAnotherSiteWhatItSharesWithTheOneThatIsMeant) {
    Trace ofB = trace(b, 2);
    ofB.shared[{a}] = {2, 20};
    const TraceListing expected{{embedded().bySite[0], ofB}, {}};
    EXPECT_EQ(selectedPart(embedded(), request(SiteSelection::only({a}))), expected);
}

TEST(ListingParts, leavesWhatIsSharedWithASiteThatIsKept) {
    const TraceListing expected{{trace(a, 1), trace(c, 1)}, {}};
    EXPECT_EQ(selectedPart(embedded(), request(SiteSelection::allBut({b}))), expected);
    const TraceListing ofB{{trace(b, 2), trace(c, 1)}, {}};
    EXPECT_EQ(selectedPart(embedded(), request(SiteSelection::allBut({a}))), ofB);
}

TEST(ListingParts, takesNothingOfASiteWhoseEveryItemIsSharedWithOneThatIsKept) {
    Trace ofA = trace(a, 2);
    ofA.shared[{b}] = {2, 20};
    EXPECT_EQ(selectedPart({{ofA}, {}}, request(SiteSelection::allBut({b}))), TraceListing());
}

TEST(ListingParts, takesOnlyTheKindsThatAreMeant) {
    const TraceListing listing{{trace(a, 1), trace(a, 1, TraceKind::settings)}, {}};
    EXPECT_EQ(selectedPart(listing, request(SiteSelection::everything())),
              (TraceListing{{trace(a, 1)}, {}}));
    auto settings = request(SiteSelection::everything());
    settings.kinds = {TraceKind::settings};
    EXPECT_EQ(selectedPart(listing, settings),
              (TraceListing{{trace(a, 1, TraceKind::settings)}, {}}));
}

TEST(ListingParts, takesWhatBelongsToNoSiteWithEverythingOrWhereItIsAskedFor) {
    const TraceListing listing{{}, {{TraceKind::openTabs, "Sessions", {2, 20}, "tabs"}}};
    auto one = request(SiteSelection::only({a}));
    EXPECT_EQ(selectedPart(listing, one), TraceListing());
    EXPECT_EQ(selectedPart(listing, request(SiteSelection::allBut({a}))), listing);
    one.takesMixed = true;
    EXPECT_EQ(selectedPart(listing, one), listing);
}

TEST(ListingParts, tellsWhatWentBetweenTwoListings) {
    TraceListing after = embedded();
    after.bySite.erase(after.bySite.begin() + 2);  // c went
    after.bySite[0] = trace(a, 1);                 // what was shared went
    after.bySite[1] = trace(b, 9);                 // and the browser wrote more
    Trace ofA = trace(a, 2);
    ofA.shared[{b}] = {2, 20};
    EXPECT_EQ(goneBetween(embedded(), after), (TraceListing{{ofA, trace(c, 1)}, {}}));
    EXPECT_EQ(goneBetween(embedded(), embedded()), TraceListing());
}

TEST(ListingParts, tellsWhatWentOfFilesWithoutSites) {
    const MixedTrace tabs{TraceKind::openTabs, "Sessions", {2, 20}, "tabs"};
    const MixedTrace words{TraceKind::formData, "Web Data", {3, 30}, "words"};
    MixedTrace fewer = words;
    fewer.size = {1, 10};
    MixedTrace went = words;
    went.size = {2, 20};
    EXPECT_EQ(goneBetween({{}, {tabs, words}}, {{}, {fewer}}), (TraceListing{{}, {tabs, went}}));
}

TEST(ListingParts, countsOnceWhatBelongsToSeveralSites) {
    EXPECT_EQ(totalSize(embedded()), (CleanableDataSize{6, 60}));
    EXPECT_EQ(totalSize({{trace(a, 1)}, {{TraceKind::openTabs, "Sessions", {2, 20}, ""}}}),
              (CleanableDataSize{3, 30}));
}

TEST(ListingParts, mergesWhatTwoStoresHaveOfASite) {
    Trace one = embedded().bySite[0];
    one.lastUsed = dateFromReferenceSeconds(3);
    Trace other = embedded().bySite[0];
    other.hosts = {"www.a.com"};
    other.lastUsed = dateFromReferenceSeconds(5);
    merge(one, other);
    Trace expected{a, TraceKind::siteStorage, {"a.com", "www.a.com"}, {6, 60}, {}};
    expected.lastUsed = dateFromReferenceSeconds(5);
    expected.shared[{b}] = {4, 40};
    EXPECT_EQ(one, expected);
}

}  // namespace
}  // namespace browsersweep
