#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Figures.h"

namespace browsersweep::cli {
namespace {

using Measurement = CleanableDataSize::Measurement;

TEST(Figures, countsAreGroupedByThousands) {
    struct Row {
        Measurement count;
        std::string text;
    };
    const std::vector<Row> rows = {
        {0, "0"},
        {999, "999"},
        {1000, "1,000"},
        {-1000, "-1,000"},
        {-100, "-100"},
        {1234567, "1,234,567"},
        {{12, true}, "~12"},
        {std::numeric_limits<std::int64_t>::min(), "-9,223,372,036,854,775,808"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(countText(row.count), row.text);
    }
}

TEST(Figures, bytesAreShownInStepsOfAThousand) {
    struct Row {
        Measurement bytes;
        std::string text;
    };
    const std::vector<Row> rows = {
        {0, "0 B"},
        {999, "999 B"},
        {1000, "1.0 KB"},
        {-1500, "-1.5 KB"},
        {999949, "999.9 KB"},
        {999950, "1.0 MB"},
        {{40960, true}, "~41.0 KB"},
        {1234567890, "1.2 GB"},
        {std::numeric_limits<std::int64_t>::max(), "9.2 EB"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(bytesText(row.bytes), row.text);
    }
}

TEST(Figures, aBarIsTheShareOfTheLargestValue) {
    const auto bar = [](std::int64_t value, std::int64_t largest, std::size_t width) {
        return cli::bar(value, largest, width, CharacterSet::ascii);
    };
    EXPECT_EQ(bar(100, 100, 10), "##########");
    EXPECT_EQ(bar(50, 100, 10), "#####");
    EXPECT_EQ(bar(1, 1000000, 10), "#");
    EXPECT_EQ(bar(0, 100, 10), "");
    EXPECT_EQ(bar(-5, 100, 10), "");
    EXPECT_EQ(bar(0, 0, 10), "");
}

TEST(Figures, aBarInUTF8EndsInEighthsOfAColumn) {
    const auto bar = [](std::int64_t value) { return cli::bar(value, 80, 10, CharacterSet::utf8); };
    EXPECT_EQ(bar(80), "██████████");
    EXPECT_EQ(bar(79), "█████████▉");
    EXPECT_EQ(bar(20), "██▌");
    EXPECT_EQ(bar(9), "█▏");
    EXPECT_EQ(bar(8), "█");
    EXPECT_EQ(bar(1), "▏");
    EXPECT_EQ(cli::bar(1, 1000000, 10, CharacterSet::utf8), "▏");
    EXPECT_EQ(bar(0), "");
}

}  // namespace
}  // namespace browsersweep::cli
