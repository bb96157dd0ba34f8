#include <limits>

#include <gtest/gtest.h>

#include "browsersweep/profiles/internal/MicrosecondText.h"

namespace browsersweep {
namespace {

TEST(MicrosecondText, wholeMicrosecondsCutOffTowardZero) {
    EXPECT_EQ(microsecondText(0), "0");
    EXPECT_EQ(microsecondText(978307200), "978307200000000");
    EXPECT_EQ(microsecondText(1.0000019), "1000001");
    EXPECT_EQ(microsecondText(-1.0000019), "-1000001");
    EXPECT_EQ(microsecondText(-9223372036854.775), "-9223372036854775808");
}

TEST(MicrosecondTextDeathTest, whatDoesNotFitEndsTheProcess) {
    for (const double seconds :
         {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN(),
          9223372036854.776, 1e300, -9.3e12}) {
        EXPECT_DEATH(microsecondText(seconds), "does not fit in 64 bits of microseconds");
    }
}

}  // namespace
}  // namespace browsersweep
