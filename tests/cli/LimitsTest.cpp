#include <string>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Limits.h"

namespace browsersweep::cli {
namespace {

using Texts = std::vector<std::string>;

Texts limitsOf(const Texts& arguments) {
    return limitsOf(std::get<Options>(parseCommandLine(arguments)));
}

TEST(Limits, thereAreNoneWhereEverythingWasAskedFor) {
    EXPECT_EQ(limitsOf({"size"}), Texts{});
    EXPECT_EQ(limitsOf({"size", "--filter", "{}", "--inside", ".."}), Texts{});
}

TEST(Limits, nameTheSelection) {
    EXPECT_EQ(limitsOf({"size", "-b", "safari", "-b", "firefox", "--profile", "Work", "--profile",
                        "Default", "--primary-only", "-c", "cookies", "-c", "cache"}),
              (Texts{"Firefox, Safari", "profiles called \u201CWork\u201D or \u201CDefault\u201D",
                     "primary profiles", "Cookies, Cache"}));
}

TEST(Limits, sayFiltersInWordsInTheirOrder) {
    EXPECT_EQ(limitsOf({"size", "--exclude", "a.com", "--include", "b"}),
              (Texts{"what does not hold \u201Ca.com\u201D", "what holds \u201Cb\u201D"}));
    EXPECT_EQ(limitsOf({"size", "--filter",
                        R"({"patterns":{"rule":"include","patterns":["a","b"]},)"
                        R"("dates":{"rule":"insideRange","startDate":"2024-02-29T12:30:00Z"}})"}),
              (Texts{"what holds \u201Ca\u201D or \u201Cb\u201D",
                     "what is dated from 2024-02-29 12:30:00 UTC"}));
}

TEST(Limits, sayWhichSideOfDatesIsMeant) {
    const std::string first = "1970-01-01 00:00:00 UTC";
    const std::string second = "1970-01-01 00:01:00 UTC";
    const std::vector<std::pair<Texts, std::string>> rows{
        {{"--inside", "@0..@60"}, "what is dated from " + first + " to " + second},
        {{"--inside", "..@60"}, "what is dated until " + second},
        {{"--outside", "@0..@60"}, "what is dated before " + first + " or after " + second},
        {{"--outside", "@0.."}, "what is dated before " + first},
        {{"--outside", "..@60"}, "what is dated after " + second},
    };
    for (const auto& [filter, words] : rows) {
        EXPECT_EQ(limitsOf({"size", filter[0], filter[1]}), Texts{words});
    }
}

TEST(Limits, aDateThatNoCalendarOfFourDigitsHasIsANumber) {
    EXPECT_EQ(limitsOf({"size", "--inside", "@999999999999.."}),
              Texts{"what is dated from @999999999999"});
}

}  // namespace
}  // namespace browsersweep::cli
