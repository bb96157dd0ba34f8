#include <stdexcept>

#include <gtest/gtest.h>

#include "browsersweep/base/OperationControl.h"

namespace browsersweep {
namespace {

TEST(OperationControl, withoutAQuestionNeverStops) {
    OperationControl control;
    EXPECT_FALSE(control.shouldStop());
    EXPECT_NO_THROW(control.continueOrThrow());
}

TEST(OperationControl, restartedItKnowsNothingOfBefore) {
    OperationControl control([](const OperationProgress&) { return true; });
    control.count({1, 2, 3});
    EXPECT_TRUE(control.shouldStop());
    control.restart([](const OperationProgress&) { return false; });
    EXPECT_FALSE(control.shouldStop());
    EXPECT_EQ(control.progress(), OperationProgress{});
    control.restart({});
    EXPECT_FALSE(control.shouldStop());
}

TEST(OperationControl, addsUpWhatWasDone) {
    OperationControl control;
    control.count({1, 20, 0});
    control.count({2, 0, 7});
    EXPECT_EQ(control.progress(), (OperationProgress{3, 20, 7}));
}

TEST(OperationControl, theQuestionIsToldWhatWasDone) {
    OperationProgress told;
    OperationControl control([&told](const OperationProgress& progress) {
        told = progress;
        return false;
    });
    control.count({1, 2, 3});
    EXPECT_FALSE(control.shouldStop());
    EXPECT_EQ(told, (OperationProgress{1, 2, 3}));
}

TEST(OperationControl, oneStopIsKept) {
    bool stop = true;
    OperationControl control([&stop](const OperationProgress&) { return stop; });
    EXPECT_TRUE(control.shouldStop());
    stop = false;
    EXPECT_TRUE(control.shouldStop());
}

TEST(OperationControl, cancellingTellsWhatHadBeenDone) {
    OperationControl control([](const OperationProgress& progress) { return progress.files > 0; });
    control.continueOrThrow();
    control.count({4, 5, 6});
    try {
        control.continueOrThrow();
        FAIL() << "it went on";
    } catch (const OperationCancelled& cancelled) {
        EXPECT_EQ(cancelled.progress(), (OperationProgress{4, 5, 6}));
        EXPECT_STREQ(cancelled.what(), "the operation was cancelled");
    }
}

TEST(OperationControl, aQuestionThatFailsStops) {
    OperationControl control(
        [](const OperationProgress&) -> bool { throw std::runtime_error("no answer"); });
    EXPECT_TRUE(control.shouldStop());
}

TEST(OperationControl, tellsEachFolderThatWasLeftOutOnce) {
    OperationControl control;
    EXPECT_TRUE(control.takeLeftOut().empty());
    control.leaveOut({"/b", "it is a link"});
    control.leaveOut({"/a", "it is a link"});
    control.leaveOut({"/b", "it is a link"});
    EXPECT_EQ(control.takeLeftOut(),
              (std::vector<LeftOutFolder>{{"/a", "it is a link"}, {"/b", "it is a link"}}));
    EXPECT_TRUE(control.takeLeftOut().empty());
}

}  // namespace
}  // namespace browsersweep
