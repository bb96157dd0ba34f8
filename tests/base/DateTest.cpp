#include <array>
#include <bit>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "browsersweep/base/Date.h"

namespace browsersweep {
namespace {

TEST(Date, epochIsTheReferenceDate) {
    EXPECT_EQ(secondsSince1970(dateFromReferenceSeconds(0)), 978307200.0);
    EXPECT_EQ(referenceSeconds(dateFrom1970Seconds(978307200.0)), 0.0);
}

TEST(Date, anyDoubleComesBackBitForBit) {
    const std::array values{0.0,
                            -0.0,
                            700000000.123456789,
                            -12622780800.0,
                            5e-324,
                            std::numeric_limits<double>::max(),
                            std::numeric_limits<double>::infinity(),
                            std::numeric_limits<double>::quiet_NaN()};
    for (const double value : values) {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(referenceSeconds(dateFromReferenceSeconds(value))),
                  std::bit_cast<std::uint64_t>(value));
    }
}

TEST(Date, nowIsBetween2024AndTheEndOfTheCentury) {
    EXPECT_GT(secondsSince1970(ReferenceClock::now()), 1704067200.0);
    EXPECT_LT(secondsSince1970(ReferenceClock::now()), 4102444800.0);
}

}  // namespace
}  // namespace browsersweep
