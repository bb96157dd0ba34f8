#include <array>
#include <limits>
#include <type_traits>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDataSize.h"

namespace browsersweep {
namespace {

using Measurement = CleanableDataSize::Measurement;

constexpr auto largestCount = std::numeric_limits<std::int64_t>::max();
constexpr auto smallestCount = std::numeric_limits<std::int64_t>::min();

TEST(CleanableDataSizeMeasurement, aPlainNumberIsExact) {
    const Measurement measurement = 7;
    EXPECT_EQ(measurement, Measurement(7, false));
}

TEST(CleanableDataSizeMeasurement, isMadeOfWholeNumbersOfEveryWidth) {
    EXPECT_EQ(Measurement(std::uint8_t{255}), Measurement(255));
    EXPECT_EQ(Measurement(std::int16_t{-7}), Measurement(-7));
    EXPECT_EQ(Measurement(static_cast<std::uint64_t>(largestCount)).value, largestCount);
    EXPECT_EQ(Measurement(smallestCount, true), Measurement(smallestCount, true));
    EXPECT_EQ(Measurement(smallestCount).value, smallestCount);
    EXPECT_TRUE(Measurement(std::uint32_t{1}, true).isApproximate);
}

TEST(CleanableDataSizeMeasurement, isNotMadeOfFractionsAndTruthValues) {
    static_assert(!std::is_constructible_v<Measurement, double>);
    static_assert(!std::is_constructible_v<Measurement, float, bool>);
    static_assert(!std::is_constructible_v<Measurement, bool>);
    static_assert(std::is_convertible_v<int, Measurement>);
}

TEST(CleanableDataSizeMeasurementDeathTest, aNumberThatDoesNotFitEndsTheProcess) {
    constexpr auto beyond = static_cast<std::uint64_t>(largestCount) + 1;
    EXPECT_DEATH(Measurement{beyond}, "a size does not fit in 63 bits");
    EXPECT_DEATH(Measurement(std::numeric_limits<std::uint64_t>::max(), true),
                 "a size does not fit in 63 bits");
}

TEST(CleanableDataSizeMeasurement, sumsAndDifferencesKeepApproximation) {
    struct Row {
        Measurement a;
        Measurement b;
        Measurement sum;
        Measurement difference;
    };
    const std::array rows{
        Row{{5, false}, {7, false}, {12, false}, {-2, false}},
        Row{{5, false}, {7, true}, {12, true}, {-2, true}},
        Row{{5, true}, {7, false}, {12, true}, {-2, true}},
        Row{{5, true}, {5, true}, {10, true}, {0, true}},
        Row{{largestCount, false}, {0, false}, {largestCount, false}, {largestCount, false}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.a + row.b, row.sum);
        EXPECT_EQ(row.a - row.b, row.difference);
    }
}

TEST(CleanableDataSize, zeroIsExact) {
    EXPECT_EQ(CleanableDataSize::zero, (CleanableDataSize{{0, false}, {0, false}}));
}

TEST(CleanableDataSize, arithmeticIsFieldByFieldAndMayBeNegative) {
    const CleanableDataSize a{{3, false}, {100, true}};
    const CleanableDataSize b{{5, true}, {40, false}};
    EXPECT_EQ(a + b, (CleanableDataSize{{8, true}, {140, true}}));
    EXPECT_EQ(a - b, (CleanableDataSize{{-2, true}, {60, true}}));
}

TEST(CleanableDataSize, equalityIncludesTheFlags) {
    EXPECT_NE((CleanableDataSize{1, 2}), (CleanableDataSize{1, {2, true}}));
    EXPECT_NE((CleanableDataSize{1, 2}), (CleanableDataSize{{1, true}, 2}));
    EXPECT_EQ((CleanableDataSize{1, 2}), (CleanableDataSize{1, 2}));
}

TEST(CleanableDataSizeDeathTest, overflowEndsTheProcess) {
    EXPECT_DEATH(Measurement(largestCount) + Measurement(1), "a sum of sizes does not fit");
    EXPECT_DEATH(Measurement(smallestCount) - Measurement(1), "a difference of sizes does not fit");
}

TEST(CleanableDataSize, isApproximateWithTheSameNumbers) {
    constexpr CleanableDataSize exact{3, 40};
    EXPECT_EQ(exact.approximate(), (CleanableDataSize{{3, true}, {40, true}}));
    EXPECT_EQ(exact.approximate().approximate(), exact.approximate());
}

}  // namespace
}  // namespace browsersweep
