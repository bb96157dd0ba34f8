#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/hosting/sites/SiteInventory.h"
#include "browsersweep/sites/ListingParts.h"

#include "tests/support/FakeTraceStore.h"

namespace browsersweep {
namespace {

using tests::FakeTraceStore;
using tests::StoreRecord;
using tests::traceOf;
using Verdicts = std::vector<ItemVerdict>;
using Steps = std::vector<std::string>;

/** A store of hashes before two others. */
class SiteInventoryTest : public testing::Test {
protected:
    SiteInventoryTest() {
        hashes_->isOfHashes = true;
        cookies_->ofKinds = {TraceKind::cookies};
    }

    std::shared_ptr<FakeTraceStore> store(const std::string& name, TraceListing listing) {
        return std::make_shared<FakeTraceStore>(name, std::move(listing), record_);
    }

    std::vector<SweepStore> stores() const {
        return {{Browser::opera, nullptr, hashes_},
                {Browser::opera, nullptr, history_},
                {Browser::brave, nullptr, cookies_}};
    }

    static Verdicts verdicts(const Inventory& inventory) {
        Verdicts all;
        for (const StoreListing& each : inventory.listings) {
            all.push_back(each.verdict);
        }
        return all;
    }

    StoreRecord record_ = std::make_shared<std::vector<std::string>>();
    std::shared_ptr<FakeTraceStore> hashes_ = store("hashes", {{traceOf("www.a.com")}, {}});
    std::shared_ptr<FakeTraceStore> history_ = store("history", {{traceOf("www.a.com")}, {}});
    std::shared_ptr<FakeTraceStore> cookies_ =
        store("cookies", {{traceOf("b.com", TraceKind::cookies)}, {}});
};

TEST_F(SiteInventoryTest, listsStoresOfHashesLastWithAllHostsThatWereFound) {
    const auto inventory = SiteInventory(stores(), {{}, {"typed.org"}, nullptr}).list();
    EXPECT_EQ(*record_, (Steps{"list history", "list cookies", "list hashes"}));
    EXPECT_EQ(hashes_->given, (KnownHosts{"b.com", "typed.org", "www.a.com"}));
    EXPECT_EQ(inventory.knownHosts, hashes_->given);
    EXPECT_EQ(verdicts(inventory), Verdicts(3, ItemVerdict::measured));
    EXPECT_EQ(inventory.listings[0].listing, hashes_->listing);
    EXPECT_FALSE(inventory.wasStopped);
}

TEST_F(SiteInventoryTest, aStoreThatFailsHidesNoOther) {
    history_->onList = [] { throw std::runtime_error("broken"); };
    const auto inventory = SiteInventory(stores(), {}).list();
    EXPECT_EQ(verdicts(inventory),
              (Verdicts{ItemVerdict::measured, ItemVerdict::couldNotLook, ItemVerdict::measured}));
    EXPECT_EQ(inventory.listings[1].detail, "broken");
    EXPECT_EQ(inventory.listings[1].what, "history");
    EXPECT_EQ(inventory.listings[1].listing, TraceListing());
}

TEST_F(SiteInventoryTest, tellsAStoreThatHoldsNothing) {
    history_->listing = {};
    const auto inventory = SiteInventory(stores(), {}).list();
    EXPECT_EQ(inventory.listings[1].verdict, ItemVerdict::nothingThere);
}

TEST_F(SiteInventoryTest, aFolderThatWasNotEnteredIsTold) {
    const auto control = std::make_shared<OperationControl>();
    history_->onList = [&control] { control->leaveOut({"link", "it is a link"}); };
    const auto inventory = SiteInventory(stores(), {{}, {}, control}).list();
    EXPECT_EQ(inventory.listings[1].verdict, ItemVerdict::leftOut);
    EXPECT_EQ(inventory.listings[1].what, "link");
    EXPECT_EQ(inventory.listings[2].verdict, ItemVerdict::measured);
}

TEST_F(SiteInventoryTest, looksOnlyAtStoresOfTheKindsThatAreMeant) {
    const auto inventory = SiteInventory(stores(), {{TraceKind::cookies}, {}, nullptr}).list();
    EXPECT_EQ(*record_, (Steps{"list cookies"}));
    EXPECT_FALSE(inventory.listings[0].isConcerned);
    EXPECT_FALSE(inventory.listings[1].isConcerned);
    EXPECT_TRUE(inventory.listings[2].isConcerned);
}

TEST_F(SiteInventoryTest, collectsHostsOfAllKindsWhereAStoreNeedsThem) {
    const auto inventory = SiteInventory(stores(), {{TraceKind::history}, {}, nullptr}).list();
    EXPECT_EQ(hashes_->given, (KnownHosts{"b.com", "www.a.com"}));
    EXPECT_FALSE(inventory.listings[2].isConcerned);
}

TEST_F(SiteInventoryTest, stopsWhereTheHostSaysSo) {
    const auto stopAtSecond = [](const SweepStore& /*next*/, std::size_t done, std::size_t all) {
        EXPECT_EQ(all, 3U);
        return done < 1;
    };
    const auto inventory = SiteInventory(stores(), {}, stopAtSecond).list();
    EXPECT_TRUE(inventory.wasStopped);
    EXPECT_EQ(verdicts(inventory),
              (Verdicts{ItemVerdict::cancelled, ItemVerdict::measured, ItemVerdict::cancelled}));
}

TEST_F(SiteInventoryTest, aStoreThatIsStoppedEndsTheWork) {
    history_->onList = [] { throw OperationCancelled({}); };
    const auto inventory = SiteInventory(stores(), {}).list();
    EXPECT_TRUE(inventory.wasStopped);
    EXPECT_EQ(*record_, (Steps{"list history"}));
    EXPECT_EQ(verdicts(inventory), Verdicts(3, ItemVerdict::cancelled));
}

TEST_F(SiteInventoryTest, putsTogetherWhatASiteLeftInAllStores) {
    auto earlier = traceOf("www.a.com");
    earlier.lastUsed = dateFromReferenceSeconds(5);
    const auto summaries = summarize(
        stores(), {{{earlier}, {}}, {{traceOf("a.com")}, {}}, {{traceOf("www.a.com")}, {}}});
    ASSERT_EQ(summaries.size(), 1U);
    EXPECT_EQ(summaries[0].site.name(), "a.com");
    EXPECT_EQ(summaries[0].size, (CleanableDataSize{3, 30}));
    EXPECT_EQ(summaries[0].lastUsed, dateFromReferenceSeconds(5));
    ASSERT_EQ(summaries[0].traces.size(), 2U);
    Trace both = earlier;
    merge(both, traceOf("a.com"));
    EXPECT_EQ(summaries[0].traces[0].browser, Browser::opera);
    EXPECT_EQ(summaries[0].traces[0].trace, both);
    EXPECT_EQ(summaries[0].traces[1].browser, Browser::brave);
    EXPECT_EQ(summaries[0].traces[1].trace, traceOf("www.a.com"));
}

}  // namespace
}  // namespace browsersweep
