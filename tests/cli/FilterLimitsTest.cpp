#include <string>

#include <gtest/gtest.h>

#include "cli/FilterLimits.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

using Rule = CleanableDataFilter::Rule;
using Category = CleanableDataCategory;

Options excluding(int count, std::vector<Browser> browsers, std::vector<Category> categories) {
    Options options;
    options.command = Command::clean;
    options.selection.browsers = std::move(browsers);
    options.selection.categories = std::move(categories);
    for (int i = 0; i < count; ++i) {
        options.filters.push_back({Rule::exclude, {std::to_string(i) + ".test"}});
    }
    return options;
}

std::string refusalOf(const Options& options) {
    try {
        requireFittingFilters(options);
        return "";
    } catch (const UsageError& error) {
        return error.what();
    }
}

TEST(FilterLimits, aDatabaseTakesNearlyAThousandPatterns) {
    EXPECT_EQ(refusalOf(excluding(990, {Browser::firefox}, {})), "");
    EXPECT_EQ(refusalOf(excluding(1200, {Browser::firefox}, {})),
              "the filters have 1,200 patterns and ranges of dates, more than a database takes; "
              "give at most 990; nothing was done");
}

TEST(FilterLimits, safarisHistoryTakesHalfOfThem) {
    EXPECT_EQ(refusalOf(excluding(490, {}, {})), "");
    EXPECT_EQ(refusalOf(excluding(600, {Browser::safari}, {Category::httpCookies})), "");
    EXPECT_EQ(refusalOf(excluding(600, {Browser::safari}, {Category::history})),
              "the filters have 600 patterns and ranges of dates, more than Safari's history "
              "takes; give at most 490, or leave Safari's history out; nothing was done");
}

TEST(FilterLimits, sitesOfTheKeepListAreNamed) {
    auto options = excluding(1200, {Browser::firefox}, {});
    options.keep = KeepRules{};
    options.keep->file = "/k";
    options.keep->sites = {"a.test", "b.test"};
    EXPECT_EQ(refusalOf(options),
              "the filters have 1,200 patterns and ranges of dates (2 of them sites of the keep "
              "list /k, which --no-config ignores), more than a database takes; give at most 990; "
              "nothing was done");
}

TEST(FilterLimits, aPatternMayNotBeLongerThanDatabasesCompare) {
    Options options;
    options.filters = {{Rule::include, {std::string(60000, 'a')}}};
    EXPECT_EQ(refusalOf(options),
              "a pattern is longer than databases compare; give a part of a host name, such as "
              "example.com");
}

TEST(FilterLimits, withoutFiltersNothingIsRefused) {
    EXPECT_EQ(refusalOf(Options{}), "");
}

}  // namespace
}  // namespace browsersweep::cli
