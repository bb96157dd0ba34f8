#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/hosting/sites/ForgetSweep.h"

#include "tests/support/FakeTraceStore.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

using tests::FakeTraceStore;
using tests::StoreRecord;
using tests::traceOf;
using Verdicts = std::vector<ItemVerdict>;
using Steps = std::vector<std::string>;
using Kept = std::vector<KeptTrace>;

const Site a = *Site::ofHost("a.com");
const Site b = *Site::ofHost("b.com");

/** Two stores of two browsers: the first holds a.com and b.com, the second b.com. */
class ForgetSweepTest : public testing::Test {
protected:
    std::shared_ptr<FakeTraceStore> store(const std::string& name, TraceListing listing) {
        return std::make_shared<FakeTraceStore>(name, std::move(listing), record_);
    }

    ForgetSweep sweep(SiteSelection sites, StoreProgress progress = {}) {
        options_.request.sites = std::move(sites);
        return {{{Browser::opera, nullptr, first_}, {Browser::brave, nullptr, second_}},
                options_,
                std::move(progress)};
    }

    static Verdicts verdicts(const ForgetResult& result) {
        Verdicts all;
        for (const StoreForgetting& each : result.stores) {
            all.push_back(each.verdict);
        }
        return all;
    }

    StoreRecord record_ = std::make_shared<std::vector<std::string>>();
    std::shared_ptr<FakeTraceStore> first_ =
        store("first", {{traceOf("a.com"), traceOf("b.com")}, {}});
    std::shared_ptr<FakeTraceStore> second_ = store("second", {{traceOf("b.com")}, {}});
    ForgetOptions options_;
};

TEST_F(ForgetSweepTest, aPlanTellsWhatWouldGoAndTouchesNothing) {
    const auto result = sweep(SiteSelection::only({a})).plan();
    EXPECT_EQ(*record_, (Steps{"list first", "list second"}));
    EXPECT_EQ(result.stores[0].gone, (TraceListing{{traceOf("a.com")}, {}}));
    EXPECT_EQ(result.stores[1].gone, TraceListing());
    EXPECT_EQ(verdicts(result), (Verdicts{ItemVerdict::measured, ItemVerdict::nothingThere}));
    EXPECT_EQ(result.foundSites, (std::set{a, b}));
}

TEST_F(ForgetSweepTest, forgetsStoreByStoreAndListsEachAgain) {
    const auto result = sweep(SiteSelection::only({b})).forget();
    EXPECT_EQ(*record_, (Steps{"list first", "list second", "forget first", "list first",
                               "forget second", "list second"}));
    EXPECT_EQ(verdicts(result), Verdicts(2, ItemVerdict::emptied));
    EXPECT_EQ(result.stores[0].gone, (TraceListing{{traceOf("b.com")}, {}}));
    EXPECT_EQ(result.stores[1].gone, (TraceListing{{traceOf("b.com")}, {}}));
    EXPECT_EQ(first_->listing, (TraceListing{{traceOf("a.com")}, {}}));
}

TEST_F(ForgetSweepTest, aStoreThatCanRememberDoesSoForOneSweepUnlessAllGoes) {
    const auto remembering = store("remembering", {{traceOf("a.com")}, {}});
    first_->forOneOperation = remembering;
    sweep(SiteSelection::only({a})).forget();
    EXPECT_EQ(*record_, (Steps{"list remembering", "list second", "forget remembering",
                               "list remembering", "forget second", "list second"}));
    record_->clear();
    sweep(SiteSelection::everything()).plan();
    EXPECT_EQ(*record_, (Steps{"list first", "list second"}));
}

TEST_F(ForgetSweepTest, aStoreWithoutWhatWasListedIsAskedForItsRemains) {
    const auto result = sweep(SiteSelection::only({a})).forget();
    EXPECT_EQ(record_->at(4), "forget second");
    EXPECT_EQ(verdicts(result), (Verdicts{ItemVerdict::emptied, ItemVerdict::nothingThere}));
}

TEST_F(ForgetSweepTest, nothingIsTouchedWhereNothingOfTheSitesWasFound) {
    const auto result = sweep(SiteSelection::only({*Site::ofHost("c.com")})).forget();
    EXPECT_EQ(*record_, (Steps{"list first", "list second"}));
    EXPECT_EQ(verdicts(result), Verdicts(2, ItemVerdict::nothingThere));
}

TEST_F(ForgetSweepTest, allSitesAreForgottenAlsoWhereNothingIsListed) {
    first_->listing = second_->listing = {};
    const auto result = sweep(SiteSelection::everything()).forget();
    EXPECT_EQ(record_->size(), 6U);
    EXPECT_EQ(verdicts(result), Verdicts(2, ItemVerdict::nothingThere));
}

TEST_F(ForgetSweepTest, whatIsStillThereIsNeverSaidToBeGone) {
    first_->doesForget = false;
    const auto result = sweep(SiteSelection::only({b})).forget();
    EXPECT_EQ(verdicts(result), (Verdicts{ItemVerdict::couldNotDelete, ItemVerdict::emptied}));
    EXPECT_EQ(result.stores[0].detail, "1 of 1 are still there");
    EXPECT_EQ(result.stores[0].gone, TraceListing());
}

TEST_F(ForgetSweepTest, whatWentInPartIsTold) {
    first_->doesForget = false;
    first_->onForget = [this] { first_->listing.bySite.pop_back(); };
    const auto result = sweep(SiteSelection::everything()).forget();
    EXPECT_EQ(verdicts(result), (Verdicts{ItemVerdict::partlyEmptied, ItemVerdict::emptied}));
    EXPECT_EQ(result.stores[0].gone, (TraceListing{{traceOf("b.com")}, {}}));
}

TEST_F(ForgetSweepTest, aStoreThatFailsHidesNoOtherAndWhatItHadRemovedIsTold) {
    first_->onForget = [] { throw std::runtime_error("disk on fire"); };
    auto result = sweep(SiteSelection::only({b})).forget();
    EXPECT_EQ(verdicts(result), (Verdicts{ItemVerdict::partlyEmptied, ItemVerdict::emptied}));
    EXPECT_EQ(result.stores[0].detail, "disk on fire");
    EXPECT_EQ(result.stores[0].gone, (TraceListing{{traceOf("b.com")}, {}}));
}

TEST_F(ForgetSweepTest, aStoreThatCannotBeListedIsNotTouched) {
    first_->onList = [] { throw std::runtime_error("no"); };
    const auto result = sweep(SiteSelection::everything()).forget();
    EXPECT_EQ(*record_, (Steps{"list first", "list second", "forget second", "list second"}));
    EXPECT_EQ(verdicts(result), (Verdicts{ItemVerdict::couldNotLook, ItemVerdict::emptied}));
    EXPECT_EQ(result.stores[0].gone, std::nullopt);
}

TEST_F(ForgetSweepTest, whatCannotBeListedAgainIsNotSaidToBeGone) {
    first_->onForget = [this] { first_->onList = [] { throw std::runtime_error("gone"); }; };
    const auto result = sweep(SiteSelection::only({b})).forget();
    EXPECT_EQ(verdicts(result), (Verdicts{ItemVerdict::couldNotLook, ItemVerdict::emptied}));
    EXPECT_EQ(result.stores[0].gone, std::nullopt);
}

TEST_F(ForgetSweepTest, aBrowserThatRunsIsLeftAlone) {
    options_.refusal = [](Browser browser) {
        return browser == Browser::opera ? std::optional<std::string>("it runs") : std::nullopt;
    };
    const auto result = sweep(SiteSelection::only({b})).forget();
    EXPECT_EQ(verdicts(result), (Verdicts{ItemVerdict::held, ItemVerdict::emptied}));
    EXPECT_EQ(result.stores[0].detail, "it runs");
    EXPECT_EQ(result.stores[0].gone, TraceListing());
    EXPECT_EQ(record_->at(2), "forget second");
}

TEST_F(ForgetSweepTest, whatWasDoneBeforeAStopIsTold) {
    const auto stopAtFourth = [](const SweepStore& /*next*/, std::size_t done, std::size_t all) {
        EXPECT_EQ(all, 4U);
        return done < 3;
    };
    const auto result = sweep(SiteSelection::only({b}), stopAtFourth).forget();
    EXPECT_TRUE(result.wasStopped);
    EXPECT_EQ(verdicts(result), (Verdicts{ItemVerdict::emptied, ItemVerdict::cancelled}));
    EXPECT_EQ(result.stores[0].gone, (TraceListing{{traceOf("b.com")}, {}}));
    EXPECT_EQ(result.stores[1].gone, TraceListing());
}

TEST_F(ForgetSweepTest, ofAStoreThatWasStoppedItIsNotKnownWhatWent) {
    first_->onForget = [] { throw OperationCancelled({}); };
    const auto result = sweep(SiteSelection::only({b})).forget();
    EXPECT_EQ(verdicts(result), Verdicts(2, ItemVerdict::cancelled));
    EXPECT_EQ(result.stores[0].gone, std::nullopt);
    EXPECT_EQ(*record_, (Steps{"list first", "list second", "forget first"}));
}

TEST_F(ForgetSweepTest, nothingIsTouchedWhereTheInventoryWasStopped) {
    const auto never = [](const SweepStore& /*next*/, std::size_t done, std::size_t /*all*/) {
        return done < 1;
    };
    const auto result = sweep(SiteSelection::everything(), never).forget();
    EXPECT_TRUE(result.wasStopped);
    EXPECT_EQ(verdicts(result), Verdicts(2, ItemVerdict::cancelled));
    EXPECT_EQ(*record_, (Steps{"list first"}));
}

TEST_F(ForgetSweepTest, filesWithoutSitesStayAndAreNamed) {
    first_->ofKinds = {TraceKind::openTabs, TraceKind::history};
    first_->listing.notBySite = {{TraceKind::openTabs, "Sessions", {1, 50}, "other tabs close"}};
    const Kept expected{{TraceKind::openTabs, "Sessions", "other tabs close"}};
    EXPECT_EQ(sweep(SiteSelection::only({a})).plan().stores[0].kept, expected);
    EXPECT_EQ(sweep(SiteSelection::only({a})).forget().stores[0].kept, expected);
    EXPECT_EQ(sweep(SiteSelection::everything()).plan().stores[0].kept, Kept());
}

TEST_F(ForgetSweepTest, whatGoesWithAnySiteIsPlannedToGoAndNotToStay) {
    const MixedTrace pages{TraceKind::history, "pages", {2, 20}, "made anew", true};
    second_->listing.notBySite = {pages};
    const TraceListing expected{{}, {pages}};
    for (const bool isPlan : {true, false}) {
        auto here = sweep(SiteSelection::only({a}));
        const auto result = isPlan ? here.plan() : here.forget();
        EXPECT_EQ(result.stores[1].gone, expected);
        EXPECT_EQ(result.stores[1].kept, Kept());
        EXPECT_EQ(result.stores[1].verdict, isPlan ? ItemVerdict::measured : ItemVerdict::emptied);
    }
}

TEST_F(ForgetSweepTest, nothingGoesWithASiteThatIsNotFound) {
    second_->listing.notBySite = {{TraceKind::history, "pages", {2, 20}, "made anew", true}};
    const auto result = sweep(SiteSelection::only({*Site::ofHost("c.com")})).forget();
    EXPECT_EQ(*record_, (Steps{"list first", "list second"}));
    EXPECT_EQ(verdicts(result), Verdicts(2, ItemVerdict::nothingThere));
    EXPECT_EQ(result.stores[1].gone, TraceListing());
}

TEST_F(ForgetSweepTest, whatAStoreItselfSaysOfAFileTakesThePlaceOfThePlan) {
    first_->listing.notBySite = {{TraceKind::openTabs, "Sessions", {1, 50}, "other tabs close"}};
    first_->outcome.kept = {{TraceKind::openTabs, "Sessions", "one tab of a.com stays"}};
    first_->outcome.isWithoutRemains = false;
    const auto result = sweep(SiteSelection::only({a})).forget();
    EXPECT_EQ(result.stores[0].kept, first_->outcome.kept);
    EXPECT_FALSE(result.stores[0].isWithoutRemains);
}

TEST_F(ForgetSweepTest, settingsThatStayAreNamedUnlessOtherKindsWereAskedFor) {
    first_->listing.bySite.push_back(traceOf("c.com", TraceKind::settings));
    const auto result = sweep(SiteSelection::everything()).forget();
    ASSERT_EQ(result.stores[0].kept.size(), 1U);
    EXPECT_EQ(result.stores[0].kept[0].kind, TraceKind::settings);
    EXPECT_EQ(result.stores[0].verdict, ItemVerdict::emptied);
    options_.request.kinds = {TraceKind::history};
    EXPECT_EQ(sweep(SiteSelection::everything()).plan().stores[0].kept, Kept());
}

TEST_F(ForgetSweepTest, whatAKeptSiteHoldsOfAnotherIsNamedAndNoFailure) {
    Trace ofA = traceOf("a.com", TraceKind::history, {3, 30});
    ofA.shared[{b}] = {2, 20};
    Trace ofB = traceOf("b.com", TraceKind::history, {2, 20});
    ofB.shared[{a}] = {2, 20};
    first_->listing = {{ofA, ofB}, {}};
    const auto result = sweep(SiteSelection::allBut({b})).forget();
    EXPECT_EQ(verdicts(result), (Verdicts{ItemVerdict::emptied, ItemVerdict::nothingThere}));
    EXPECT_EQ(result.stores[0].gone, (TraceListing{{traceOf("a.com")}, {}}));
    EXPECT_EQ(
        result.stores[0].kept,
        (Kept{{TraceKind::history, "first", "2 items of a.com within b.com, which is kept"}}));
}

TEST_F(ForgetSweepTest, hostsOfSitesThatAreGoneAreStillKnownInTheSecondListing) {
    sweep(SiteSelection::everything()).forget();
    EXPECT_EQ(second_->given, (KnownHosts{"a.com", "b.com"}));
}

TEST_F(ForgetSweepTest, whatTheDiskGainedIsTold) {
    const tests::TemporaryFolder folder;
    const auto file = folder.path() / "file";
    std::ofstream(file) << std::string(100'000, 'x');
    first_ = store(file.string(), first_->listing);
    first_->onForget = [&file] { std::filesystem::resize_file(file, 0); };
    const auto result = sweep(SiteSelection::only({a})).forget();
    EXPECT_GE(result.stores[0].freedBytes, 100'000);
    EXPECT_EQ(result.stores[1].freedBytes, 0);
}

}  // namespace
}  // namespace browsersweep
