#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/cookies/CleanableSafariCookies.h"
#include "browsersweep/hosting/FilterDivision.h"
#include "browsersweep/profiles/firefox/FirefoxCleanableLocalStorage.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

#include "tests/support/Database.h"
#include "tests/support/DateFilter.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/RecordingItem.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

using Components = SQLiteStatementComponents;
using Filters = std::vector<CleanableDataFilter>;
using Item = CleanableDataList::Item;
using Rule = CleanableDataFilter::Rule;
using Tables = std::vector<std::string>;

const Filters including{{Rule::include, {"a.test"}}};
const Filters excluding{{Rule::exclude, {"a.test"}}};
const Filters dated{tests::dates(tests::inside, 0, {})};

class FilterDivisionTest : public testing::Test {
protected:
    void SetUp() override {
        tests::Database(file).execute(
            "CREATE TABLE urls (url TEXT, time INTEGER);"
            "INSERT INTO urls VALUES ('http://a.test/', 10), ('http://b.test/', 30);"
            "CREATE TABLE segments (name TEXT);"
            "INSERT INTO segments VALUES ('http://a.test/'), ('x'), ('y');"
            "CREATE TABLE downloads (name TEXT); INSERT INTO downloads VALUES ('x'), ('y');");
        folder.makeFolder("tmp");
    }

    Item database() const {
        const auto encode = [](const Date&) { return std::string("0"); };
        const Components::ColumnsForFiltering both{
            "url", Components::EncodableColumn<Date>{"time", encode}};
        return std::make_shared<CleanableSQLiteDatabase>(
            file,
            std::vector{Components{"urls", both, {}},
                        Components::withPatternColumn("segments", "name", {}),
                        Components{"downloads", std::nullopt, {}}},
            fileManager);
    }

    Item directory() const {
        return std::make_shared<CleanableDirectory>(folder / "cache", false, Filters{},
                                                    fileManager);
    }

    tests::TemporaryFolder folder;
    std::filesystem::path file = folder / "History";
    std::shared_ptr<const FileManager> fileManager = tests::GuardedFileManager::forFixture(folder);
};

TEST_F(FilterDivisionTest, withoutFiltersEverythingIsSeen) {
    const Item item = database();
    const auto division = divide(item, Filters{CleanableDataFilter()});
    EXPECT_EQ(division.seen, item);
    EXPECT_EQ(division.unseen, nullptr);
    EXPECT_FALSE(division.blindTo.any());
}

TEST_F(FilterDivisionTest, ofADatabaseIsTableByTable) {
    const auto division = divide(database(), including);
    EXPECT_EQ(division.seen->size(including).itemCount, 2);
    EXPECT_EQ(division.unseen->size(including).itemCount, 2);
    EXPECT_EQ(division.tables, Tables{"downloads"});
    EXPECT_EQ(division.blindTo, FilterSight({true}));
    const auto byDate = divide(database(), dated);
    EXPECT_EQ(byDate.tables, (Tables{"segments", "downloads"}));
    EXPECT_EQ(byDate.unseen->size(dated).itemCount, 5);
    EXPECT_EQ(byDate.blindTo, FilterSight({false, false, true}));
}

TEST_F(FilterDivisionTest, theSeenHalfDeletesNothingOfTheOther) {
    divide(database(), including).seen->clean(including);
    const tests::Database left(file);
    EXPECT_EQ(left.number("SELECT COUNT(*) FROM urls"), 1);
    EXPECT_EQ(left.number("SELECT COUNT(*) FROM segments"), 2);
    EXPECT_EQ(left.number("SELECT COUNT(*) FROM downloads"), 2);
}

TEST_F(FilterDivisionTest, aTableWithoutColumnsIsUnseenAsAWhole) {
    const Item item = std::make_shared<CleanableSQLiteDatabase>(
        file, std::vector{Components{"downloads", std::nullopt, {}}}, fileManager);
    const auto division = divide(item, excluding);
    EXPECT_EQ(division.unseen, item);
    EXPECT_EQ(division.seen->size(excluding), CleanableDataSize::zero);
    division.seen->clean(excluding);
    EXPECT_EQ(tests::Database(file).number("SELECT COUNT(*) FROM downloads"), 2);
}

TEST_F(FilterDivisionTest, foldersAreToldByDatesAlone) {
    EXPECT_EQ(divide(directory(), dated).unseen, nullptr);
    EXPECT_EQ(divide(directory(), including).blindTo, FilterSight({true}));
    EXPECT_EQ(divide(directory(), excluding).blindTo, FilterSight({false, true}));
}

TEST_F(FilterDivisionTest, safarisCookiesAreToldByExclusionsAlone) {
    const Item cookies = std::make_shared<CleanableSafariCookies>(Home(fileManager));
    EXPECT_EQ(divide(cookies, excluding).unseen, nullptr);
    EXPECT_EQ(divide(cookies, including).unseen, cookies);
    EXPECT_EQ(divide(cookies, dated).unseen, cookies);
}

TEST_F(FilterDivisionTest, safarisHistoryIsToldByEveryPart) {
    const Item history = std::make_shared<SafariHistoryCleanableDatabase>(file, fileManager);
    EXPECT_EQ(divide(history, including).unseen, nullptr);
    EXPECT_EQ(divide(history, dated).unseen, nullptr);
}

TEST_F(FilterDivisionTest, whatIsWrappedIsDividedAsWhatItWraps) {
    const Item storage = std::make_shared<FirefoxCleanableLocalStorage>(database());
    const Filters reversed{{Rule::include, {"tset.a"}}};
    const auto division = divide(storage, reversed);
    EXPECT_EQ(division.seen->size(reversed).itemCount, 2);
    EXPECT_EQ(division.tables, Tables{"downloads"});
}

TEST_F(FilterDivisionTest, anItemThatDoesNotSayIsUnseen) {
    const Item item = std::make_shared<tests::RecordingItem>(
        "own", CleanableDataSize{1, 10}, std::make_shared<std::vector<std::string>>());
    const auto division = divide(item, including);
    EXPECT_EQ(division.unseen, item);
    EXPECT_EQ(division.blindTo, FilterSight({true}));
    const auto list = std::make_shared<CleanableDataList>(std::vector{database(), item});
    EXPECT_EQ(divide(list, including).unseen, list);
}

TEST_F(FilterDivisionTest, aListIsDividedByItsItems) {
    const Item list = std::make_shared<CleanableDataList>(std::vector{database(), directory()});
    folder.write("cache/f", "12345");
    const auto division = divide(list, including);
    EXPECT_EQ(division.seen->size(including).itemCount, 2);
    EXPECT_EQ(division.unseen->size(including).itemCount, 3);
}

}  // namespace
}  // namespace browsersweep
