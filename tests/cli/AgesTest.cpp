#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "cli/Ages.h"

namespace browsersweep::cli {
namespace {

TEST(Ages, areNumbersWithAUnit) {
    EXPECT_EQ(secondsOfAge("1h"), 3600);
    EXPECT_EQ(secondsOfAge("30d"), 30 * 86400);
    EXPECT_EQ(secondsOfAge("2w"), 14 * 86400);
    EXPECT_EQ(secondsOfAge("1y"), 365 * 86400);
    EXPECT_EQ(faultOfAge("999999h"), "");
}

TEST(Ages, ofAnotherFormAreNone) {
    for (const std::string text : {"", "d", "7", "-1d", "1.5d", "7 d", "1m", "1234567d", "7dd"}) {
        EXPECT_EQ(secondsOfAge(text), std::nullopt) << text;
        EXPECT_NE(faultOfAge(text), "") << text;
    }
}

}  // namespace
}  // namespace browsersweep::cli
