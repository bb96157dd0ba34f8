#include <csignal>
#include <optional>

#include <gtest/gtest.h>

#include "cli/Interruption.h"

namespace browsersweep::cli {
namespace {

TEST(Interruption, theFirstSignalIsNotedAndTakenOnce) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        ::signal(number, SIG_DFL);  // the tests' own caller may ignore it
        Interruption interruption;
        EXPECT_FALSE(interruption.hasCome());
        ::raise(number);
        EXPECT_TRUE(interruption.hasCome());
        EXPECT_EQ(interruption.take(), number);
        EXPECT_EQ(interruption.take(), std::nullopt);
    }
}

TEST(Interruption, theSecondSignalEndsTheProgramWhicheverItIs) {
    EXPECT_EXIT(
        {
            ::signal(SIGTERM, SIG_DFL);
            const Interruption interruption;
            ::raise(SIGTERM);
            ::raise(SIGINT);
        },
        testing::KilledBySignal(SIGINT), "");
}

TEST(Interruption, aSignalThatIsIgnoredStaysIgnored) {
    auto* const before = ::signal(SIGHUP, SIG_IGN);
    {
        const Interruption interruption;
        ::raise(SIGHUP);
        EXPECT_FALSE(interruption.hasCome());
    }
    ::signal(SIGHUP, before);
}

TEST(Interruption, whileItLetsSignalsThroughTheyEndTheProgram) {
    EXPECT_EXIT(
        {
            Interruption interruption;
            interruption.letThrough();
            ::raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
    Interruption interruption;
    interruption.letThrough();
    interruption.holdBack();
    ::raise(SIGTERM);
    EXPECT_EQ(interruption.take(), SIGTERM);
}

TEST(Interruption, aSignalThatWasNotTakenEndsTheProgramAtLast) {
    EXPECT_EXIT(
        {
            Interruption interruption;
            ::raise(SIGTERM);
            interruption.letThrough();
        },
        testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
}  // namespace browsersweep::cli
