#include <utility>

#include <gtest/gtest.h>

#include "browsersweep/cookies/OptionalText.h"

namespace browsersweep {
namespace {

TEST(OptionalText, anEmptyTextIsNotAnAbsentOne) {
    EXPECT_FALSE(OptionalText().isPresent());
    EXPECT_TRUE(OptionalText("").isPresent());
    EXPECT_EQ(OptionalText().value(), "");
    EXPECT_NE(OptionalText(), OptionalText(""));
}

TEST(OptionalText, isEqualWhereTheTextIs) {
    EXPECT_EQ(OptionalText("a"), OptionalText("a"));
    EXPECT_NE(OptionalText("a"), OptionalText("b"));
    EXPECT_EQ(OptionalText(), OptionalText());
}

TEST(OptionalText, aCopyHasATextOfItsOwn) {
    OptionalText text("a");
    OptionalText copy;
    copy = text;
    const OptionalText another(text);
    text = "b";
    EXPECT_EQ(text.value(), "b");
    EXPECT_EQ(copy, OptionalText("a"));
    EXPECT_EQ(another, OptionalText("a"));
    copy = OptionalText();
    EXPECT_FALSE(copy.isPresent());
}

TEST(OptionalText, whatWasMovedFromIsAbsent) {
    OptionalText text("a");
    const OptionalText other(std::move(text));
    EXPECT_EQ(other.value(), "a");
    EXPECT_FALSE(text.isPresent());  // NOLINT(bugprone-use-after-move)
}

}  // namespace
}  // namespace browsersweep
