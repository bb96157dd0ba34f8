#include <memory>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/profiles/firefox/FirefoxCleanableLocalStorage.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"

#include "tests/support/FirefoxDatabases.h"
#include "tests/support/GuardedFileManager.h"

namespace browsersweep {
namespace {

using Patterns = CleanableDataFilter::Patterns;
using Rule = CleanableDataFilter::Rule;
using Filters = std::vector<CleanableDataFilter>;

/** An item that keeps the filters of its last call. */
class ListeningItem : public CleanableData {
public:
    explicit ListeningItem(bool requiresClosed) : requiresClosed_(requiresClosed) {}

    bool requiresClosedBrowserToClean() const noexcept override { return requiresClosed_; }
    CleanableDataSize size(CleanableDataFilters filters) const override {
        *sized_ = {filters.begin(), filters.end()};
        return {3, 30};
    }
    void clean(CleanableDataFilters filters) const override {
        *cleaned_ = {filters.begin(), filters.end()};
    }

    const Filters& sizedWith() const { return *sized_; }
    const Filters& cleanedWith() const { return *cleaned_; }

private:
    bool requiresClosed_;
    std::shared_ptr<Filters> sized_ = std::make_shared<Filters>();
    std::shared_ptr<Filters> cleaned_ = std::make_shared<Filters>();
};

/** An item that always fails. */
class FailingItem : public CleanableData {
public:
    bool requiresClosedBrowserToClean() const noexcept override { return true; }
    CleanableDataSize size(CleanableDataFilters /*filters*/) const override {
        throw std::runtime_error("size");
    }
    void clean(CleanableDataFilters /*filters*/) const override {
        throw std::runtime_error("clean");
    }
};

CleanableDataFilter::Dates someDates() {
    return {CleanableDataFilter::Dates::Rule::outsideRange, dateFrom1970Seconds(1.0),
            dateFrom1970Seconds(2.0)};
}

TEST(FirefoxCleanableLocalStorage, patternsReachTheWrappedItemReversedAndTheRestUnchanged) {
    struct Row {
        CleanableDataFilter given;
        CleanableDataFilter expected;
    };
    // clang-format off
    const std::vector<Row> rows{
        {{Rule::include, {"example.com"}},            {Rule::include, {"moc.elpmaxe"}}},
        {{Rule::exclude, {"a.example", "b.example"}}, {Rule::exclude, {"elpmaxe.a", "elpmaxe.b"}}},
        {{Rule::include, {"ab", "ba"}},               {Rule::include, {"ab", "ba"}}},
        {{Rule::include, {"cafe\u0301.example"}},     {Rule::include, {"elpmaxe.e\u0301fac"}}},
        {{Rule::include, {"x\U0001F468\u200D\U0001F469\u200D\U0001F467.example"}},
         {Rule::include, {"elpmaxe.\U0001F468\u200D\U0001F469\u200D\U0001F467x"}}},
        {{Rule::include, {""}},                       {Rule::include, {""}}},
        {{Rule::include, {}},                         {Rule::include, {}}},
        {{std::nullopt, someDates()},                 {std::nullopt, someDates()}},
        {{Patterns{Patterns::Rule::include, {"abc"}}, someDates()},
         {Patterns{Patterns::Rule::include, {"cba"}}, someDates()}},
        {{},                                          {}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.given.patterns()));
        const auto wrapped = std::make_shared<ListeningItem>(true);
        const FirefoxCleanableLocalStorage item(wrapped);
        EXPECT_EQ(item.size(Filters{row.given}), (CleanableDataSize{3, 30}));
        item.clean(Filters{row.given});
        EXPECT_EQ(wrapped->sizedWith(), Filters{row.expected});
        EXPECT_EQ(wrapped->cleanedWith(), Filters{row.expected});
    }
}

TEST(FirefoxCleanableLocalStorage, everyFilterIsPassedOnInOrder) {
    const auto wrapped = std::make_shared<ListeningItem>(true);
    FirefoxCleanableLocalStorage(wrapped).clean(
        Filters{{Rule::include, {"ab"}}, {std::nullopt, someDates()}, {Rule::exclude, {"cd"}}});
    EXPECT_EQ(
        wrapped->cleanedWith(),
        (Filters{{Rule::include, {"ba"}}, {std::nullopt, someDates()}, {Rule::exclude, {"dc"}}}));
}

TEST(FirefoxCleanableLocalStorage, requiresAClosedBrowserAsTheWrappedItemDoes) {
    for (const bool expected : {false, true}) {
        const FirefoxCleanableLocalStorage item(std::make_shared<ListeningItem>(expected));
        EXPECT_EQ(item.requiresClosedBrowserToClean(), expected);
    }
}

TEST(FirefoxCleanableLocalStorage, errorsOfTheWrappedItemPass) {
    const FirefoxCleanableLocalStorage item(std::make_shared<FailingItem>());
    EXPECT_THROW(item.size(), std::runtime_error);
    EXPECT_THROW(item.clean(), std::runtime_error);
    EXPECT_EQ(item.sizeIgnoringErrors(), (CleanableDataSize{{0, true}, {0, true}}));
}

TEST(FirefoxCleanableLocalStorage, thereIsNothingToInspectWhereTheWrappedItemIsNoDatabase) {
    const FirefoxCleanableLocalStorage item(std::make_shared<ListeningItem>(true));
    EXPECT_FALSE(item.inspect({}).exists);
}

TEST(FirefoxCleanableLocalStorage, patternIsMatchedAgainstTheReversedOriginKey) {
    const tests::TemporaryFolder folder;
    const auto path = folder / "webappsstore.sqlite";
    const tests::Database database = tests::makeWebAppsStoreDatabase(path);
    database.execute(R"(
        INSERT INTO webappsstore2(originAttributes, originKey, key) VALUES
            ('', 'moc.elpmaxe.www.:https:443', 'a'), ('', 'moc.elpmaxe.:http:80', 'b'),
            ('', 'gro.elpmaxe.:http:80', 'c'), ('', 'tset.moc.example.:http:80', 'd');)");
    const FirefoxCleanableLocalStorage item(std::make_shared<CleanableSQLiteDatabase>(
        path,
        std::vector{SQLiteStatementComponents::withPatternColumn("webappsstore2", "originKey", {})},
        tests::GuardedFileManager::forFixture(folder)));
    const Filters filters{{Rule::include, {"example.com"}}};

    EXPECT_EQ(item.size(filters).itemCount, 2);
    const DatabaseInspection inspection = item.inspect(filters);
    EXPECT_TRUE(inspection.wasReadWhole());
    EXPECT_EQ(inspection.rows(), 2);
    item.clean(filters);
    EXPECT_EQ(database.text("SELECT group_concat(key, ' ') FROM webappsstore2;"), "c d");
}

}  // namespace
}  // namespace browsersweep
