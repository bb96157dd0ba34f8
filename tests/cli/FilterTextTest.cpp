#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Dates.h"
#include "cli/FilterText.h"
#include "cli/LocalDays.h"

namespace browsersweep::cli {
namespace {

using Dates = CleanableDataFilter::Dates;
using Filters = std::vector<CleanableDataFilter>;
using Rule = CleanableDataFilter::Rule;
using Texts = std::vector<std::string>;

Texts textsOf(Dates::Rule rule, const std::string& range) {
    return filterTexts(Filters{CleanableDataFilter(parseDateRange(rule, range))});
}

TEST(FilterText, saysWhatPatternsTake) {
    EXPECT_EQ(filterTexts(Filters{{Rule::include, {"a", "b"}}, {Rule::exclude, {"c\x1b"}}}),
              (Texts{"only what contains \"a\" or \"b\"", "nothing that contains \"c\uFFFD\""}));
}

TEST(FilterText, saysWhichSideOfWhichDates) {
    const std::string a = localText(parseDate("2024-01-01"));
    const std::string b = localText(parseDate("2024-02-01"));
    constexpr auto inside = Dates::Rule::insideRange;
    constexpr auto outside = Dates::Rule::outsideRange;
    EXPECT_EQ(textsOf(inside, "2024-01-01..2024-02-01"), Texts{"dated from " + a + " to " + b});
    EXPECT_EQ(textsOf(inside, "2024-01-01.."), Texts{"dated from " + a});
    EXPECT_EQ(textsOf(inside, "..2024-02-01"), Texts{"dated until " + b});
    EXPECT_EQ(textsOf(outside, "2024-01-01..2024-02-01"),
              Texts{"dated before " + a + " or after " + b});
    EXPECT_EQ(textsOf(outside, "2024-01-01.."), Texts{"dated before " + a});
    EXPECT_EQ(textsOf(outside, "..2024-02-01"), Texts{"dated after " + b});
}

TEST(FilterText, ofBothPartsSaysBothAndOfNoneEverything) {
    const CleanableDataFilter both{
        CleanableDataFilter::Patterns(CleanableDataFilter::Patterns::Rule::include,
                                      std::vector<std::string>{"a"}),
        parseDateRange(Dates::Rule::insideRange, "2024-01-01..")};
    EXPECT_EQ(filterTexts(Filters{both, {}}),
              (Texts{"only what contains \"a\", dated from " + localText(parseDate("2024-01-01")),
                     "everything"}));
}

TEST(FilterText, saysWhatDataLacks) {
    EXPECT_EQ(sightText({true, false, false}), "text");
    EXPECT_EQ(sightText({false, true, false}), "text");
    EXPECT_EQ(sightText({false, false, true}), "date");
    EXPECT_EQ(sightText({true, true, true}), "text or date");
    EXPECT_EQ(sightText({}), "");
}

}  // namespace
}  // namespace browsersweep::cli
