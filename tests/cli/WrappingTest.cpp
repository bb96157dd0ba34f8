#include <gtest/gtest.h>

#include "cli/Wrapping.h"

namespace browsersweep::cli {
namespace {

TEST(Wrapping, breaksBetweenWords) {
    EXPECT_EQ(wrapped("one two three", 7), "one two\nthree\n");
    EXPECT_EQ(wrapped("one two three", 6), "one\ntwo\nthree\n");
    EXPECT_EQ(wrapped("", 6), "\n");
}

TEST(Wrapping, isOneLineWithoutAWidth) {
    EXPECT_EQ(wrapped("one two three", 0), "one two three\n");
}

TEST(Wrapping, keepsTheSpacesInFrontAndIndentsWhatFollows) {
    EXPECT_EQ(wrapped("  one two three", 9, 4), "  one two\n    three\n");
}

TEST(Wrapping, breaksWithinAWordThatIsLongerThanALine) {
    EXPECT_EQ(wrapped("a /long/path b", 6, 2), "a\n  /lon\n  g/pa\n  th b\n");
    EXPECT_EQ(wrapped("  \u65E5\u672C\u8A9E", 5, 1), "  \u65E5\n \u672C\u8A9E\n");
}

TEST(Wrapping, keepsALongWordWholeWhereItIsToldTo) {
    EXPECT_EQ(wrapped("see the:long:word a", 8, 2, LongWords::kept), "see\n  the:long:word\n  a\n");
}

TEST(Wrapping, keepsAPathWithItsSpacesWholeWhereItIsToldTo) {
    EXPECT_EQ(wrapped("see in /long/path with a b", 8, 2, LongWords::kept),
              "see in\n  /long/path with a b\n");
}

}  // namespace
}  // namespace browsersweep::cli
