#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/binarycoding/DataBufferedDataSource.h"

namespace browsersweep {
namespace {

using List = std::vector<std::uint8_t>;

List listOf(std::span<const std::uint8_t> bytes) {
    return {bytes.begin(), bytes.end()};
}

TEST(DataBufferedDataSource, handsOutItsBytesOnceAndThenNothing) {
    const List bytes{1, 2, 3};
    DataBufferedDataSource source(bytes);
    EXPECT_EQ(source.read(2), (List{1, 2}));
    EXPECT_EQ(source.read(2), List{3});
    EXPECT_EQ(source.read(2), std::nullopt);
}

TEST(DataBufferedDataSource, showsItsBytesWhereTheyLie) {
    const List bytes{1, 2, 3};
    DataBufferedDataSource source(bytes);
    EXPECT_EQ(source.lookAhead(2).value().data(), bytes.data());
    EXPECT_EQ(listOf(source.lookAhead(9).value()), bytes);
    EXPECT_EQ(listOf(source.data()), bytes);
    EXPECT_EQ(listOf(source.view(2).value()), (List{1, 2}));
    EXPECT_EQ(listOf(source.data()), List{3});
    EXPECT_FALSE(source.isAtEnd());
    EXPECT_EQ(source.view(2).value().data(), &bytes[2]);
    EXPECT_TRUE(source.isAtEnd());
}

TEST(DataBufferedDataSource, showsTheBytesBeforeADelimiterAndTakesThatToo) {
    const List bytes{1, 2, 3, 9};
    DataBufferedDataSource source(bytes);
    const auto expectUntil = [&](std::uint8_t delimiter, std::size_t length, const List& expected,
                                 bool isFound) {
        const auto until = source.viewUntil(delimiter, length);
        EXPECT_EQ(listOf(until.value().data), expected);
        EXPECT_EQ(until.value().didFindDelimiter, isFound);
    };
    expectUntil(1, 1, {}, true);
    expectUntil(3, 1, {2}, false);
    expectUntil(9, 5, {3}, true);
    expectUntil(9, 5, {}, false);
    EXPECT_FALSE(DelimitedBytes().didFindDelimiter);
}

}  // namespace
}  // namespace browsersweep
