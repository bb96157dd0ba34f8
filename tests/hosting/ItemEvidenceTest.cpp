#include <stdexcept>

#include <gtest/gtest.h>

#include "browsersweep/hosting/ItemEvidence.h"
#include "browsersweep/sqlite/SQLiteError.h"

namespace browsersweep {
namespace {

class ItemEvidenceTest : public testing::Test {
protected:
    static ItemEvidence cleaned(std::int64_t before, std::int64_t after) {
        ItemEvidence evidence;
        evidence.before = CleanableDataSize{{before}, {10 * before}};
        evidence.after = CleanableDataSize{{after}, {10 * after}};
        return evidence;
    }
    static ItemObstacle obstacle(ItemVerdict verdict) { return {verdict, "/file", "why"}; }
};

TEST_F(ItemEvidenceTest, whatIsLeftDecides) {
    EXPECT_EQ(judgeCleaned(cleaned(3, 0)).verdict, ItemVerdict::emptied);
    EXPECT_EQ(judgeCleaned(cleaned(0, 0)).verdict, ItemVerdict::nothingThere);
    EXPECT_EQ(judgeCleaned(cleaned(3, 1)).verdict, ItemVerdict::partlyEmptied);
    EXPECT_EQ(judgeCleaned(cleaned(3, 3)).verdict, ItemVerdict::couldNotDelete);
    EXPECT_EQ(judgeCleaned(cleaned(3, 1)).detail, "1 of 3 are still there");
}

TEST_F(ItemEvidenceTest, rowsThatWereSeenCountMoreThanASizeOfTheMainFile) {
    auto evidence = cleaned(3, 3);
    evidence.lookAfter.rows = 0;
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::emptied);
    evidence = cleaned(0, 0);
    evidence.lookBefore.rows = 2;
    evidence.lookAfter.rows = 2;
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::couldNotDelete);
}

TEST_F(ItemEvidenceTest, whatWasNotCountedBeforeIsWhatWentAndWhatIsLeft) {
    ItemEvidence evidence;
    evidence.isUncounted = true;
    evidence.deleted = CleanableDataSize{{3, true}, {30, true}};
    evidence.after = CleanableDataSize::zero;
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::emptied);
    evidence.after = CleanableDataSize{{2}, {20}};
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::partlyEmptied);
    EXPECT_EQ(judgeCleaned(evidence).detail, "2 of 5 are still there");
    evidence.deleted.reset();
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::couldNotDelete);
    evidence.after = CleanableDataSize::zero;
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::nothingThere);
}

TEST_F(ItemEvidenceTest, onlyALockSaysThatAnItemIsHeld) {
    auto evidence = cleaned(3, 3);
    evidence.isHeld = true;
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::held);
    ItemEvidence failed;
    constexpr int busy = 5;
    failed.error = std::make_exception_ptr(SQLiteError("database is locked", busy));
    EXPECT_EQ(judgeMeasured(failed).verdict, ItemVerdict::couldNotLook);
    failed.isHeld = true;
    EXPECT_EQ(judgeMeasured(failed).verdict, ItemVerdict::held);
    EXPECT_EQ(judgeMeasured(failed).detail, "locked by a running browser: database is locked");
}

TEST_F(ItemEvidenceTest, whatCouldNotBeSeenIsNoZero) {
    auto evidence = cleaned(0, 0);
    evidence.lookBefore.toSeeing = obstacle(ItemVerdict::notUnderstood);
    EXPECT_EQ(judgeMeasured(evidence).verdict, ItemVerdict::notUnderstood);
    EXPECT_EQ(judgeMeasured(evidence).path, "/file");
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::notUnderstood);
    EXPECT_NE(judgeCleaned(evidence).detail.find("could not be counted"), std::string::npos);
}

TEST_F(ItemEvidenceTest, aNumberOfWhatIsHeldIsOneButNothingMayBeAnything) {
    auto evidence = cleaned(3, 0);
    evidence.lookBefore.toSeeing = obstacle(ItemVerdict::held);
    EXPECT_EQ(judgeMeasured(evidence).verdict, ItemVerdict::measured);
    evidence.before = CleanableDataSize::zero;
    EXPECT_EQ(judgeMeasured(evidence).verdict, ItemVerdict::held);
}

TEST_F(ItemEvidenceTest, aDeniedFolderWeighsMoreThanALink) {
    auto evidence = cleaned(3, 0);
    evidence.leftOut = {{"/link", "it is a link"}};
    EXPECT_EQ(judgeMeasured(evidence).verdict, ItemVerdict::leftOut);
    evidence.leftOut.push_back({"/denied", "its permissions forbid it", true});
    EXPECT_EQ(judgeMeasured(evidence).verdict, ItemVerdict::couldNotLook);
    EXPECT_EQ(judgeMeasured(evidence).path, "/denied");
}

TEST_F(ItemEvidenceTest, whatWasNotEnteredIsLeftOutAndNoFailureToDelete) {
    auto evidence = cleaned(2, 2);
    evidence.leftOut = {{"/link", "it is a link"}};
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::leftOut);
    EXPECT_EQ(judgeCleaned(evidence).path, "/link");
    evidence.after = CleanableDataSize{1, 10};
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::partlyEmptied);
}

TEST_F(ItemEvidenceTest, aFailureThatDeletedSomethingIsAPart) {
    auto evidence = cleaned(3, 2);
    evidence.error = std::make_exception_ptr(std::runtime_error("no more"));
    evidence.isDeletion = true;
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::partlyEmptied);
    evidence.after = evidence.before;
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::couldNotDelete);
    EXPECT_EQ(judgeCleaned(evidence).detail, "no more");
}

TEST_F(ItemEvidenceTest, anErrorThatWasIgnoredIsTold) {
    auto evidence = cleaned(0, 0);
    evidence.ignored = std::make_exception_ptr(std::runtime_error("no more"));
    EXPECT_EQ(judgeCleaned(evidence).verdict, ItemVerdict::couldNotLook);
    EXPECT_EQ(judgeCleaned(evidence).detail, "no more");
}

}  // namespace
}  // namespace browsersweep
