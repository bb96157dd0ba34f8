#include <set>

#include <gtest/gtest.h>

#include "browsersweep/platform/internal/UniqueString.h"

namespace browsersweep {
namespace {

TEST(UniqueString, isFitForFileNamesAndNeverTheSame) {
    std::set<std::string> seen;
    for (int round = 0; round < 1000; ++round) {
        const std::string text = uniqueString();
        EXPECT_EQ(text.size(), 32U);
        EXPECT_EQ(text.find_first_not_of("0123456789abcdef"), std::string::npos);
        EXPECT_TRUE(seen.insert(text).second);
    }
}

}  // namespace
}  // namespace browsersweep
