#include <array>
#include <forward_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDataFilter.h"

namespace browsersweep {
namespace {

using Patterns = CleanableDataFilter::Patterns;
using Dates = CleanableDataFilter::Dates;

Date at(double seconds) {
    return dateFromReferenceSeconds(seconds);
}

TEST(CleanableDataFilterDates, boundsAreInclusive) {
    struct Row {
        std::string name;
        std::optional<Date> start;
        std::optional<Date> end;
        std::array<bool, 5> inside;  // for dates 9, 10, 15, 20, 21
        std::array<bool, 5> outside;
    };
    // clang-format off
    const std::array rows{
        Row{"both",    at(10),       at(20),       {false, true,  true,  true,  false}, {true,  false, false, false, true}},
        Row{"start",   at(10),       std::nullopt, {false, true,  true,  true,  true},  {true,  false, false, false, false}},
        Row{"end",     std::nullopt, at(20),       {true,  true,  true,  true,  false}, {false, false, false, false, true}},
        Row{"neither", std::nullopt, std::nullopt, {true,  true,  true,  true,  true},  {true,  true,  true,  true,  true}},
    };
    // clang-format on
    const std::array dates{at(9), at(10), at(15), at(20), at(21)};
    for (const Row& row : rows) {
        for (std::size_t index = 0; index < dates.size(); ++index) {
            SCOPED_TRACE(row.name + " " + std::to_string(index));
            const Dates within{Dates::Rule::insideRange, row.start, row.end};
            const Dates beyond{Dates::Rule::outsideRange, row.start, row.end};
            EXPECT_EQ(within.matches(dates[index]), row.inside[index]);
            EXPECT_EQ(beyond.matches(dates[index]), row.outside[index]);
        }
    }
}

TEST(CleanableDataFilterDates, startOnlyOutsideRangeMatchesStrictlyOlder) {
    const Dates dates{Dates::Rule::outsideRange, at(10), std::nullopt};
    EXPECT_TRUE(dates.matches(at(9.999)));
    EXPECT_FALSE(dates.matches(at(10)));
}

TEST(CleanableDataFilterDates, anAbsentBoundDoesNotRestrictDatesBefore2001) {
    EXPECT_TRUE(Dates(Dates::Rule::insideRange, std::nullopt, at(20)).matches(at(-1)));
}

TEST(CleanableDataFilterDates, areInsideTheRangeUnlessSaidOtherwise) {
    EXPECT_EQ(Dates{}, Dates(Dates::Rule::insideRange, std::nullopt, std::nullopt));
}

TEST(CleanableDataFilterDates, aRangeSetsTheBoundsThatItHas) {
    const auto rule = Dates::Rule::outsideRange;
    EXPECT_EQ(Dates(rule, Dates::ClosedRange{at(1), at(2)}), Dates(rule, at(1), at(2)));
    EXPECT_EQ(Dates(rule, Dates::RangeFrom{at(1)}), Dates(rule, at(1), std::nullopt));
    EXPECT_EQ(Dates(rule, Dates::RangeThrough{at(2)}), Dates(rule, std::nullopt, at(2)));
    EXPECT_EQ(Dates(rule, Dates::RangeThrough{at(2)}).rule, rule);
}

TEST(CleanableDataFilterPatterns, areMadeOfAnyRangeOfTexts) {
    const auto rule = Patterns::Rule::include;
    const std::set<std::string> expected{"a", "b"};
    const std::vector<std::string_view> views{"b", "a", "b"};
    const std::forward_list<std::string> texts{"a", "b", "a"};
    const std::array<const char*, 2> literals{"a", "b"};
    for (const Patterns& made :
         {Patterns(rule, views), Patterns(rule, texts), Patterns(rule, literals),
          Patterns(rule, expected), Patterns(rule, {"a", "b", "b"})}) {
        EXPECT_EQ(made.rule, rule);
        EXPECT_EQ(made.patterns, expected);
    }
    EXPECT_EQ(Patterns(rule, std::vector<std::string>{}).patterns, std::set<std::string>{});
}

TEST(CleanableDataFilterPatterns, areExcludedUnlessSaidOtherwise) {
    EXPECT_EQ(Patterns{}, Patterns(Patterns::Rule::exclude, {}));
}

TEST(CleanableDataFilterPatterns, aTextIsNoRangeOfTexts) {
    static_assert(!std::is_constructible_v<Patterns, Patterns::Rule, const char*>);
    static_assert(!std::is_constructible_v<Patterns, Patterns::Rule, std::string>);
    static_assert(std::is_constructible_v<Patterns, Patterns::Rule, std::vector<std::string>>);
}

TEST(CleanableDataFilter, isMadeOfAnyRangeOfTexts) {
    const std::vector<std::string_view> views{"b", "a", "b"};
    EXPECT_EQ(CleanableDataFilter(CleanableDataFilter::Rule::exclude, views),
              CleanableDataFilter(Patterns{Patterns::Rule::exclude, {"a", "b"}}));
    EXPECT_EQ(CleanableDataFilter(CleanableDataFilter::Rule::include, views),
              CleanableDataFilter(Patterns{Patterns::Rule::include, {"a", "b"}}));
}

TEST(CleanableDataFilter, eitherPartMayBeLeftOut) {
    const Patterns patterns{Patterns::Rule::include, {"a"}};
    const Dates dates{Dates::Rule::outsideRange, at(1), at(2)};
    EXPECT_EQ(CleanableDataFilter(patterns), CleanableDataFilter(patterns, std::nullopt));
    EXPECT_EQ(CleanableDataFilter(patterns).datesData, std::nullopt);
    EXPECT_EQ(CleanableDataFilter(dates), CleanableDataFilter(std::nullopt, dates));
    EXPECT_EQ(CleanableDataFilter(dates).patternsData, std::nullopt);
    EXPECT_EQ(CleanableDataFilter(), CleanableDataFilter(std::nullopt, std::nullopt));
}

TEST(CleanableDataFilter, partsAreStoredUnchanged) {
    const Patterns patterns{Patterns::Rule::include, {"a", "b"}};
    const Dates dates{Dates::Rule::outsideRange, at(1), at(2)};
    const CleanableDataFilter filter(patterns, dates);
    EXPECT_EQ(filter.patternsData, patterns);
    EXPECT_EQ(filter.datesData, dates);
    EXPECT_EQ(filter.dates(), dates);
}

TEST(CleanableDataFilter, ofPatternsAloneHasNoDates) {
    const CleanableDataFilter filter(CleanableDataFilter::Rule::include, {"x", "y", "x"});
    EXPECT_EQ(filter.rule(), CleanableDataFilter::Rule::include);
    EXPECT_EQ(filter.patterns(), (std::set<std::string>{"x", "y"}));
    EXPECT_EQ(filter.dates(), std::nullopt);
}

TEST(CleanableDataFilter, withoutPatternsTheRuleIsExcludeAndThePatternsAreNone) {
    const CleanableDataFilter filter(std::nullopt, Dates{});
    EXPECT_EQ(filter.rule(), CleanableDataFilter::Rule::exclude);
    EXPECT_EQ(filter.patterns(), std::set<std::string>{});
}

TEST(CleanableDataFilter, patternsThatWereTakenAwayLeaveNoRule) {
    CleanableDataFilter filter(CleanableDataFilter::Rule::include, {"x"});
    filter.patternsData.reset();
    EXPECT_EQ(filter.rule(), CleanableDataFilter::Rule::exclude);
}

}  // namespace
}  // namespace browsersweep
