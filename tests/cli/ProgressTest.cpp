#include <gtest/gtest.h>

#include "cli/Progress.h"

namespace browsersweep::cli {
namespace {

TEST(Progress, theBarIsTheShareThatIsFinished) {
    EXPECT_EQ(progressLine("a", {0, 4}, 80), "[----------------] a");
    EXPECT_EQ(progressLine("a", {1, 4}, 80), "[####------------] a");
    EXPECT_EQ(progressLine("a", {4, 4}, 80), "[################] a");
    EXPECT_EQ(progressLine("a", {0, 0}, 80), "[################] a");
}

TEST(Progress, theLineIsCutToTheTerminal) {
    EXPECT_EQ(progressLine("Measuring", {1, 4}, 22), "[####------------] Mea");
    EXPECT_EQ(progressLine("Measuring", {1, 4}, 0), "");
}

}  // namespace
}  // namespace browsersweep::cli
