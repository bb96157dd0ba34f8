#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/FilterSight.h"

#include "tests/support/DateFilter.h"

namespace browsersweep {
namespace {

using Filters = std::vector<CleanableDataFilter>;
using Rule = CleanableDataFilter::Rule;
using Patterns = CleanableDataFilter::Patterns;

CleanableDataFilter withPatterns(Rule rule, std::set<std::string> patterns) {
    return {rule, std::move(patterns)};
}

TEST(FilterSight, ofFiltersIsWhatAllOfThemHave) {
    EXPECT_EQ(partsOf({}), FilterSight());
    EXPECT_EQ(partsOf(Filters{withPatterns(Rule::include, {"a"})}), FilterSight({true}));
    EXPECT_EQ(partsOf(Filters{withPatterns(Rule::exclude, {"a"})}), FilterSight({false, true}));
    EXPECT_EQ(partsOf(Filters{tests::dates(tests::outside, 1, {})}),
              FilterSight({false, false, true}));
    EXPECT_EQ(
        partsOf(Filters{withPatterns(Rule::exclude, {"a"}), tests::dates(tests::inside, {}, 1)}),
        FilterSight({false, true, true}));
}

TEST(FilterSight, ofWhatRestrictsNothingIsNone) {
    EXPECT_EQ(partsOf(Filters{CleanableDataFilter(), withPatterns(Rule::include, {}),
                              tests::dates(tests::inside, {}, {})}),
              FilterSight());
}

TEST(FilterSight, isTakenTogetherAndApart) {
    const FilterSight texts{true, true, false};
    const FilterSight dates{false, false, true};
    EXPECT_EQ(texts.with(dates), FilterSight({true, true, true}));
    EXPECT_EQ(dates.with(texts), FilterSight({true, true, true}));
    EXPECT_EQ(FilterSight({true, false, true}).without(texts), dates);
    EXPECT_TRUE(dates.any());
    EXPECT_FALSE(texts.without(texts).any());
}

}  // namespace
}  // namespace browsersweep
