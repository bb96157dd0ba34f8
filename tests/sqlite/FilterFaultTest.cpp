#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/FilterFault.h"
#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

#include "tests/support/Database.h"
#include "tests/support/DateFilter.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

using Components = SQLiteStatementComponents;
using Filters = std::vector<CleanableDataFilter>;
using Rule = CleanableDataFilter::Rule;
using MakeFilter = CleanableDataFilter (*)(std::size_t);

CleanableDataFilter excluding(std::size_t number) {
    return {Rule::exclude, {std::to_string(number) + ".test"}};
}

CleanableDataFilter including(std::size_t number) {
    return {Rule::include, {std::to_string(number) + ".test"}};
}

CleanableDataFilter dated(std::size_t number) {
    return tests::dates(tests::inside, -1.0 - static_cast<double>(number), 0);
}

Filters manyOf(MakeFilter make, std::size_t count) {
    Filters filters;
    for (std::size_t i = 0; i < count; ++i) {
        filters.push_back(make(i));
    }
    return filters;
}

/** The most filters of a kind that are said to fit. */
std::size_t mostOf(MakeFilter make, FilteredStatement statement) {
    std::size_t most = 1;
    std::size_t tooMany = 4096;
    while (tooMany - most > 1) {
        const std::size_t middle = (most + tooMany) / 2;
        (filterFault(manyOf(make, middle), statement) ? tooMany : most) = middle;
    }
    return most;
}

class FilterFaultTest : public testing::Test {
protected:
    tests::TemporaryFolder folder;
    std::shared_ptr<const FileManager> fileManager = tests::GuardedFileManager::forFixture(folder);
};

TEST_F(FilterFaultTest, noFilterAndAFewFitEverywhere) {
    for (const auto statement : {FilteredStatement::ofTable, FilteredStatement::ofSafariHistory}) {
        EXPECT_EQ(filterFault({}, statement), std::nullopt);
        EXPECT_EQ(filterFault(Filters{excluding(1), including(2), dated(3)}, statement),
                  std::nullopt);
    }
}

TEST_F(FilterFaultTest, thousandsAreTooMany) {
    for (const auto make : {excluding, including, dated}) {
        EXPECT_EQ(filterFault(manyOf(make, 4096), FilteredStatement::ofTable),
                  FilterFault::tooMany);
        EXPECT_EQ(filterFault(manyOf(make, 4096), FilteredStatement::ofSafariHistory),
                  FilterFault::tooMany);
    }
}

TEST_F(FilterFaultTest, aTableTakesWhatIsSaidToFitAndNoFilterMore) {
    const auto file = folder / "database";
    tests::Database(file).execute(
        "CREATE TABLE t (host TEXT, day INTEGER, kept INTEGER);"
        "INSERT INTO t VALUES ('a.test', -1, 0);");
    const auto encode = [](const Date& date) { return std::to_string(referenceSeconds(date)); };
    const CleanableSQLiteDatabase item(
        file, {{"t", Components::ColumnsForFiltering{"host", {{"day", encode}}}, {"t.kept=0"}}},
        fileManager);
    for (const auto make : {excluding, including, dated}) {
        const std::size_t most = mostOf(make, FilteredStatement::ofTable);
        EXPECT_GT(most, 900U);
        EXPECT_NO_THROW(item.size(manyOf(make, most)));
        EXPECT_THROW(item.size(manyOf(make, most + 1)), SQLiteError);
        EXPECT_THROW(item.clean(manyOf(make, most + 1)), SQLiteError);
    }
}

TEST_F(FilterFaultTest, safarisHistoryTakesWhatIsSaidToFitAndNoFilterMore) {
    const auto file = folder / "History.db";
    tests::Database(file).execute(
        "CREATE TABLE history_items (id INTEGER, url TEXT);"
        "CREATE TABLE history_visits (id INTEGER, history_item INTEGER, visit_time REAL);"
        "INSERT INTO history_items VALUES (1, 'https://a.test/');"
        "INSERT INTO history_visits VALUES (1, 1, -1);");
    const SafariHistoryCleanableDatabase item(file, fileManager);
    for (const auto make : {excluding, including, dated}) {
        const std::size_t most = mostOf(make, FilteredStatement::ofSafariHistory);
        EXPECT_GT(most, 400U);
        EXPECT_THROW(item.clean(manyOf(make, most + 1)), SQLiteError);
        EXPECT_NO_THROW(item.size(manyOf(make, most)));
        EXPECT_NO_THROW(item.clean(manyOf(make, most)));
    }
}

TEST_F(FilterFaultTest, aPatternLongerThanAnyComparisonIsTooLong) {
    const auto file = folder / "database";
    tests::Database(file).execute("CREATE TABLE t (host TEXT); INSERT INTO t VALUES ('a');");
    const CleanableSQLiteDatabase item(file, {Components::withPatternColumn("t", "host", {})},
                                       fileManager);
    const Filters fitting{{Rule::include, {std::string(49998, 'a')}}};
    const Filters tooLong{{Rule::include, {std::string(49999, 'a')}}};
    EXPECT_EQ(filterFault(fitting, FilteredStatement::ofTable), std::nullopt);
    EXPECT_EQ(filterFault(tooLong, FilteredStatement::ofTable), FilterFault::tooLong);
    EXPECT_NO_THROW(item.size(fitting));
    EXPECT_THROW(item.size(tooLong), SQLiteError);
}

TEST(FilteredStatementTest, isOfSafariForItsHistoryAlone) {
    using Category = CleanableDataCategory;
    EXPECT_EQ(filteredStatement(Browser::safari, Category::history),
              FilteredStatement::ofSafariHistory);
    EXPECT_EQ(filteredStatement(Browser::safari, Category::httpCookies),
              FilteredStatement::ofTable);
    EXPECT_EQ(filteredStatement(Browser::firefox, Category::history), FilteredStatement::ofTable);
}

}  // namespace
}  // namespace browsersweep
