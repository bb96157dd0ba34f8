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
}

TEST(Limits, nameTheSelection) {
    EXPECT_EQ(limitsOf({"size", "-b", "safari", "-b", "firefox", "--profile", "Work", "--profile",
                        "Default", "--primary-only", "-c", "cookies", "-c", "cache"}),
              (Texts{"Firefox, Safari", "profiles called \"Work\" or \"Default\"",
                     "primary profiles", "Cookies, Cache"}));
}

TEST(Limits, sayFiltersInWordsInTheirOrder) {
    EXPECT_EQ(limitsOf({"size", "--exclude", "a.com", "-b", "safari", "--include", "b"}),
              (Texts{"Safari", "nothing that contains \"a.com\"", "only what contains \"b\""}));
}

}  // namespace
}  // namespace browsersweep::cli
