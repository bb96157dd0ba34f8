#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sqlite/SQLiteStatementComponents.h"

#include "tests/support/DateFilter.h"

namespace browsersweep {
namespace {

using tests::dates;
using tests::inside;
using tests::outside;

using Components = SQLiteStatementComponents;
using Columns = Components::ColumnsForFiltering;
using Filters = std::vector<CleanableDataFilter>;
using Patterns = CleanableDataFilter::Patterns;
using Dates = CleanableDataFilter::Dates;
using Rule = CleanableDataFilter::Rule;

std::string wholeSeconds(const Date& date) {
    return std::to_string(static_cast<long>(referenceSeconds(date)));
}

std::string refusing(const Date& /*date*/) {
    throw std::range_error("cannot be written");
}

Components table(std::optional<std::string> pattern, std::optional<std::string> date,
                 std::vector<std::string> clauses = {}) {
    Columns columns{std::move(pattern), std::nullopt};
    if (date) {
        columns.byDate = {*date, wholeSeconds};
    }
    return {"t", columns, std::move(clauses)};
}

TEST(SQLiteStatementComponents, aTableIsToldByThePartsThatItHasColumnsFor) {
    struct Row {
        std::optional<std::string> pattern;
        std::optional<std::string> date;
        FilterSight sight;
    };
    const std::vector<Row> rows = {{{}, {}, {}},
                                   {"", {}, {}},
                                   {"a", {}, {true, true, false}},
                                   {{}, "", {}},
                                   {{}, "d", {false, false, true}},
                                   {"", "d", {false, false, true}},
                                   {"a", "", {true, true, false}},
                                   {"a", "d", {true, true, true}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.pattern.value_or("none") + " " + row.date.value_or("none"));
        EXPECT_EQ(table(row.pattern, row.date).sight(), row.sight);
    }
    EXPECT_EQ((Components{"t", std::nullopt, {}}.sight()), FilterSight());
}

TEST(SQLiteStatementComponents, withoutConditionsThereIsNoWhere) {
    const Components all("moz_inputhistory", std::nullopt, {});
    EXPECT_EQ(all.sql("SELECT COUNT(*)", {}), "SELECT COUNT(*) FROM moz_inputhistory;");
    EXPECT_EQ(all.sql("DELETE", {}), "DELETE FROM moz_inputhistory;");
}

TEST(SQLiteStatementComponents, filtersDoNothingToATableWithoutColumnsForThem) {
    const Components all("t", std::nullopt, {});
    EXPECT_EQ(all.sql("DELETE", Filters{{Rule::include, {"x"}}, dates(inside, 1, 2)}),
              "DELETE FROM t;");
}

TEST(SQLiteStatementComponents, fixedClausesHoldTogetherAndEmptyOnesAreSkipped) {
    EXPECT_EQ(Components("t", std::nullopt, {"a", "", "b"}).sql("DELETE", {}),
              "DELETE FROM t WHERE (a AND b);");
    EXPECT_EQ(Components("t", std::nullopt, {"", ""}).sql("DELETE", {}), "DELETE FROM t;");
}

TEST(SQLiteStatementComponents, oneIncludeFilterJoinsItsPatternsWithOr) {
    const auto cookies = Components::withPatternColumn("cookies", "host_key", {});
    EXPECT_EQ(cookies.sql("DELETE", Filters{{Rule::include, {"x", "y"}}}),
              "DELETE FROM cookies WHERE ((host_key LIKE '%x%' OR host_key LIKE '%y%'));");
}

TEST(SQLiteStatementComponents, excludeFiltersMustAllHold) {
    EXPECT_EQ(
        table("host", {}).filterCondition(Filters{{Rule::exclude, {"a"}}, {Rule::exclude, {"b"}}}),
        "(host NOT LIKE '%a%' AND host NOT LIKE '%b%')");
}

TEST(SQLiteStatementComponents, oneInclusionOfAnyFilterIsEnough) {
    EXPECT_EQ(table("host", {})
                  .filterCondition(Filters{{Rule::include, {"example"}}, {Rule::include, {"b"}}}),
              "(host LIKE '%example%' OR host LIKE '%b%')");
}

TEST(SQLiteStatementComponents, groupsStandInTheOrderExclusionsInclusionsDates) {
    const Filters filters{dates(inside, 5, 9), {Rule::include, {"in"}}, {Rule::exclude, {"ex"}}};
    EXPECT_EQ(table("u", "d").sql("SELECT COUNT(*)", filters),
              "SELECT COUNT(*) FROM t WHERE ((u NOT LIKE '%ex%') AND (u LIKE '%in%') AND "
              "(d BETWEEN 5 AND 9));");
}

TEST(SQLiteStatementComponents, aFilterWithBothPartsDoesNotPairThem) {
    CleanableDataFilter first(Rule::include, {"a"});
    first.datesData = dates(inside, 1, 2).datesData;
    CleanableDataFilter second(Rule::include, {"b"});
    second.datesData = dates(inside, 3, 4).datesData;
    EXPECT_EQ(table("u", "d").filterCondition(Filters{first, second}),
              "(u LIKE '%a%' OR u LIKE '%b%') AND (d BETWEEN 1 AND 2 OR d BETWEEN 3 AND 4)");
}

TEST(SQLiteStatementComponents, fixedClausesComeBeforeTheFilters) {
    const Components places("moz_places", Columns{"url", {{"visit_date", wholeSeconds}}},
                            {"moz_places.foreign_count=0"});
    EXPECT_EQ(places.sql("DELETE", Filters{dates(inside, 10, 20)}),
              "DELETE FROM moz_places WHERE (moz_places.foreign_count=0) AND "
              "((visit_date BETWEEN 10 AND 20));");
}

TEST(SQLiteStatementComponents, dateTermsByRuleAndBounds) {
    struct Row {
        CleanableDataFilter filter;
        std::string condition;
    };
    const std::vector<Row> rows{
        {dates(inside, 1, 2), "(d BETWEEN 1 AND 2)"},
        {dates(outside, 1, 2), "(d NOT BETWEEN 1 AND 2)"},
        {dates(inside, 1, std::nullopt), "(d >= 1)"},
        {dates(outside, 1, std::nullopt), "(d < 1)"},
        {dates(inside, std::nullopt, 2), "(d <= 2)"},
        {dates(outside, std::nullopt, 2), "(d > 2)"},
        {dates(inside, std::nullopt, std::nullopt), ""},
        {dates(outside, std::nullopt, std::nullopt), ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.condition);
        EXPECT_EQ(table({}, "d").filterCondition(Filters{row.filter}), row.condition);
    }
}

TEST(SQLiteStatementComponents, aColumnThatIsAbsentOrNamelessIsNotFilteredBy) {
    const Filters both{{Rule::include, {"x"}}, dates(inside, 1, 2)};
    EXPECT_EQ(table({}, "d").filterCondition(both), "(d BETWEEN 1 AND 2)");
    EXPECT_EQ(table("", "d").filterCondition(both), "(d BETWEEN 1 AND 2)");
    EXPECT_EQ(table("u", {}).filterCondition(both), "(u LIKE '%x%')");
    EXPECT_EQ(table("u", "").filterCondition(both), "(u LIKE '%x%')");
}

TEST(SQLiteStatementComponents, aFilterWithoutPatternsAddsNothing) {
    EXPECT_EQ(table("u", "d").sql("DELETE", Filters{{Rule::include, {}}}), "DELETE FROM t;");
    EXPECT_EQ(table("u", {}).filterCondition(
                  Filters{{Rule::include, {"a"}}, {Rule::include, {}}, {Rule::exclude, {}}}),
              "(u LIKE '%a%')");
}

TEST(SQLiteStatementComponents, patternsAreInsertedAsTheyStand) {
    EXPECT_EQ(table("u", {}).filterCondition(Filters{{Rule::include, {"o'clock 100%_"}}}),
              "(u LIKE '%o'clock 100%_%')");
}

TEST(SQLiteStatementComponents, boundsThatCannotBeEncodedCountAsAbsent) {
    Components visits("t", Columns{std::nullopt, {{"d", refusing}}}, {});
    EXPECT_EQ(visits.sql("DELETE", Filters{dates(inside, 1, 2)}), "DELETE FROM t;");
    visits.columnsForFiltering->byDate->encode = [](const Date& date) {
        return referenceSeconds(date) < 2 ? refusing(date) : wholeSeconds(date);
    };
    EXPECT_EQ(visits.sql("DELETE", Filters{dates(inside, 1, 2)}),
              "DELETE FROM t WHERE ((d <= 2));");
}

TEST(SQLiteStatementComponents, anEncoderMayFailWithAnything) {
    const Components visits(
        "t", Columns{std::nullopt, {{"d", [](const Date&) -> std::string { throw 42; }}}}, {});
    EXPECT_EQ(visits.sql("DELETE", Filters{dates(inside, 1, 2)}), "DELETE FROM t;");
}

TEST(SQLiteStatementComponents, thePatternColumnIsKnownByName) {
    EXPECT_EQ(table("u", {}).columnName(), "u");
    EXPECT_EQ(table({}, "d").columnName(), std::nullopt);
    EXPECT_EQ(Components("t", std::nullopt, {}).columnName(), std::nullopt);
}

TEST(SQLiteStatementComponents, aTableWithAPatternColumnKeepsItsFixedClauses) {
    EXPECT_EQ(Components::withPatternColumn("t", "u", {"a = 1"}).sql("DELETE", {}),
              "DELETE FROM t WHERE (a = 1);");
}

TEST(SQLiteStatementComponents, withoutAPatternColumnsNameTheColumnsAreStillPresent) {
    const auto nameless = Components::withPatternColumn("t", std::nullopt, {});
    ASSERT_TRUE(nameless.columnsForFiltering.has_value());
    EXPECT_EQ(nameless.columnsForFiltering->byPattern, std::nullopt);
    EXPECT_FALSE(nameless.columnsForFiltering->byDate.has_value());
}

}  // namespace
}  // namespace browsersweep
