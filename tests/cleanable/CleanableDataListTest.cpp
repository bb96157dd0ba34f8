#include <array>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDataDictionary.h"
#include "browsersweep/cleanable/CleanableDataList.h"

#include "tests/support/RecordingItem.h"

namespace browsersweep {
namespace {

using tests::RecordingItem;
using Lines = std::vector<std::string>;

/** Three items; the second one may fail. */
class CleanableDataListTest : public testing::Test {
protected:
    CleanableDataList list(bool secondFails) const {
        auto second = std::make_shared<RecordingItem>("second", CleanableDataSize{2, 20}, record);
        if (secondFails) {
            second->failing();
        }
        return CleanableDataList(
            {std::make_shared<RecordingItem>("first", CleanableDataSize{1, 10}, record), second,
             std::make_shared<RecordingItem>("third", CleanableDataSize{3, {30, true}}, record)});
    }

    CleanableDataMap dictionary(bool secondFails) const {
        const auto items = list(secondFails).items();
        return CleanableDataMap({{CleanableDataCategory::cache, CleanableDataList({items[0]})},
                                 {CleanableDataCategory::history, CleanableDataList({items[1]})},
                                 {CleanableDataCategory::formData, CleanableDataList({items[2]})}});
    }

    RecordingItem::Record record = std::make_shared<Lines>();
    std::array<CleanableDataFilter, 2> filters;
};

TEST_F(CleanableDataListTest, emptyListIsZeroNeedsNoClosedBrowserAndCleansNothing) {
    const CleanableDataList empty;
    EXPECT_EQ(empty.size(), CleanableDataSize::zero);
    EXPECT_EQ(empty.sizeIgnoringErrors(), CleanableDataSize::zero);
    EXPECT_FALSE(empty.requiresClosedBrowserToClean());
    empty.clean();
    empty.cleanIgnoringErrors();
}

TEST_F(CleanableDataListTest, sizesAddUpInListOrderWithTheFiltersPassedOn) {
    EXPECT_EQ(list(false).size(filters), (CleanableDataSize{6, {60, true}}));
    EXPECT_EQ(*record, (Lines{"first sized with 2", "second sized with 2", "third sized with 2"}));
}

TEST_F(CleanableDataListTest, sizeStopsAtTheFirstError) {
    EXPECT_THROW(list(true).size(filters), std::runtime_error);
    EXPECT_EQ(*record, (Lines{"first sized with 2", "second sized with 2"}));
}

TEST_F(CleanableDataListTest, sizeIgnoringErrorsIsApproximateWhereAnItemFails) {
    EXPECT_EQ(list(true).sizeIgnoringErrors(filters), (CleanableDataSize{{4, true}, {40, true}}));
    EXPECT_EQ(record->size(), 3U);
}

TEST_F(CleanableDataListTest, cleanStopsAtTheFirstErrorAndLeavesTheRestAlone) {
    EXPECT_THROW(list(true).clean(filters), std::runtime_error);
    EXPECT_EQ(*record, (Lines{"first cleaned with 2", "second cleaned with 2"}));
}

TEST_F(CleanableDataListTest, cleanIgnoringErrorsAttemptsEveryItem) {
    list(true).cleanIgnoringErrors(filters);
    EXPECT_EQ(*record,
              (Lines{"first cleaned with 2", "second cleaned with 2", "third cleaned with 2"}));
}

TEST_F(CleanableDataListTest, askingForAClosedBrowserStopsAtTheFirstTrue) {
    auto second = std::make_shared<RecordingItem>("second", CleanableDataSize{}, record);
    second->requiringClosedBrowser();
    const auto other = std::make_shared<RecordingItem>("other", CleanableDataSize{}, record);
    EXPECT_TRUE(CleanableDataList({other, second, other}).requiresClosedBrowserToClean());
    EXPECT_EQ(*record, (Lines{"other asked", "second asked"}));
}

TEST_F(CleanableDataListTest, appendKeepsTheOwnItemsFirstAlsoForItself) {
    CleanableDataList joined = list(false);
    joined.append(joined);
    EXPECT_EQ(joined.size().itemCount.value, 12);
    EXPECT_EQ(joined.items()[0], joined.items()[3]);
}

TEST_F(CleanableDataListTest, dictionaryFollowsTheSameRulesOverItsLists) {
    EXPECT_EQ(dictionary(false).size(filters), (CleanableDataSize{6, {60, true}}));
    EXPECT_EQ(dictionary(true).sizeIgnoringErrors(filters),
              (CleanableDataSize{{4, true}, {40, true}}));
    record->clear();
    EXPECT_THROW(dictionary(true).size(filters), std::runtime_error);
    EXPECT_THROW(dictionary(true).clean(filters), std::runtime_error);
    EXPECT_EQ(*record, (Lines{"first sized with 2", "second sized with 2", "first cleaned with 2",
                              "second cleaned with 2"}));
    record->clear();
    dictionary(true).cleanIgnoringErrors(filters);
    EXPECT_EQ(record->size(), 3U);
    EXPECT_FALSE(dictionary(false).requiresClosedBrowserToClean());
}

TEST_F(CleanableDataListTest, anItemsOwnFormsForIgnoringErrorsAreUsed) {
    const auto own = std::make_shared<tests::OwnIgnoringItem>("own", record);
    const CleanableDataList list({own});
    const CleanableDataMap map({{CleanableDataCategory::cache, list}});
    const Lines asked{"own sized ignoring errors with 2", "own cleaned ignoring errors with 2"};
    for (const CleanableData* const each :
         {static_cast<const CleanableData*>(&list), static_cast<const CleanableData*>(&map)}) {
        record->clear();
        EXPECT_EQ(each->sizeIgnoringErrors(filters), (CleanableDataSize{7, 70}));
        each->cleanIgnoringErrors(filters);
        EXPECT_EQ(*record, asked);
    }
}

TEST_F(CleanableDataListTest, cleanAndReturnSizeHandsItsFiltersToEveryItem) {
    list(false).cleanAndReturnSize(std::span(filters).first(1));
    EXPECT_EQ(*record,
              (Lines{"first sized with 1", "second sized with 1", "third sized with 1",
                     "first cleaned with 1", "second cleaned with 1", "third cleaned with 1",
                     "first sized with 1", "second sized with 1", "third sized with 1"}));
}

TEST_F(CleanableDataListTest, dictionaryPassesItsFiltersOnInEveryForm) {
    const CleanableDataMap map = dictionary(false);
    map.sizeIgnoringErrors(filters);
    map.cleanIgnoringErrors(filters);
    map.clean(std::span(filters).first(1));
    EXPECT_EQ(*record,
              (Lines{"first sized with 2", "second sized with 2", "third sized with 2",
                     "first cleaned with 2", "second cleaned with 2", "third cleaned with 2",
                     "first cleaned with 1", "second cleaned with 1", "third cleaned with 1"}));
}

TEST_F(CleanableDataListTest, dictionaryNeedsAClosedBrowserIfAnyOfItsListsDoes) {
    auto item = std::make_shared<RecordingItem>("item", CleanableDataSize{}, record);
    item->requiringClosedBrowser();
    const CleanableDataMap map({{CleanableDataCategory::cache, {}},
                                {CleanableDataCategory::history, CleanableDataList({item})}});
    EXPECT_TRUE(map.requiresClosedBrowserToClean());
}

/** An item at one place. */
class PlacedItem : public RecordingItem {
public:
    PlacedItem(const std::filesystem::path& path, const Record& record)
        : RecordingItem(path.string(), {}, record), path_(path) {}

    std::vector<CleanableDataLocation> locations() const override {
        return {{CleanableDataLocation::Kind::file, path_}};
    }

private:
    std::filesystem::path path_;
};

TEST_F(CleanableDataListTest, theLocationsAreThoseOfAllItemsInTheirOrder) {
    const CleanableDataList first(
        {std::make_shared<PlacedItem>("b", record), std::make_shared<PlacedItem>("a", record)});
    const CleanableDataList second({std::make_shared<PlacedItem>("c", record)});
    constexpr auto kind = CleanableDataLocation::Kind::file;
    using Locations = std::vector<CleanableDataLocation>;
    EXPECT_EQ(first.locations(), (Locations{{kind, "b"}, {kind, "a"}}));
    const CleanableDataMap map(
        {{CleanableDataCategory::cache, first}, {CleanableDataCategory::history, second}});
    EXPECT_EQ(map.locations(), (Locations{{kind, "b"}, {kind, "a"}, {kind, "c"}}));
}

/** Has one part, a table of its name, or says nothing of its parts. */
class DividedItem : public RecordingItem {
public:
    DividedItem(const std::string& name, bool says, const Record& record)
        : RecordingItem(name, {}, record), name_(name), says_(says) {}

    std::vector<CleanableDataPart> parts() const override {
        return says_ ? std::vector{CleanableDataPart{name_, {}, nullptr}}
                     : std::vector<CleanableDataPart>();
    }

private:
    std::string name_;
    bool says_;
};

Lines tablesOf(const std::vector<CleanableDataPart>& parts) {
    Lines tables;
    for (const auto& part : parts) {
        tables.push_back(part.table);
    }
    return tables;
}

TEST_F(CleanableDataListTest, thePartsAreThoseOfAllListsOrNoneWhereOneItemDoesNotSay) {
    const auto item = [this](const char* name, bool says) {
        return std::make_shared<DividedItem>(name, says, record);
    };
    constexpr auto cache = CleanableDataCategory::cache;
    constexpr auto history = CleanableDataCategory::history;
    const CleanableDataList both({item("b", true), item("a", true)});
    EXPECT_EQ(tablesOf(CleanableDataMap({{cache, both}, {history, both}}).parts()),
              (Lines{"b", "a", "b", "a"}));
    EXPECT_EQ(tablesOf(CleanableDataMap({{cache, {}}, {history, both}}).parts()),
              (Lines{"b", "a"}));
    const CleanableDataList silent({item("c", false)});
    EXPECT_EQ(tablesOf(CleanableDataMap({{cache, both}, {history, silent}}).parts()), Lines());
}

TEST_F(CleanableDataListTest, aLocationIsAFileWithoutPendingChangesUnlessItSaysSo) {
    EXPECT_EQ(CleanableDataLocation{},
              (CleanableDataLocation{CleanableDataLocation::Kind::file, "", false}));
}

TEST_F(CleanableDataListTest, theListsOfADictionaryThatGoesAwayAreAllOfThem) {
    const auto lists = dictionary(false).lists();
    ASSERT_EQ(lists.size(), 3U);
    EXPECT_EQ(lists.at(CleanableDataCategory::formData).items().size(), 1U);
}

TEST_F(CleanableDataListTest, mergingAppendsListsOfACommonKeyAndInsertsOthers) {
    CleanableDataMap merged = dictionary(false);
    merged.merge(CleanableDataMap(
        {{CleanableDataCategory::cache, list(false)}, {CleanableDataCategory::httpCookies, {}}}));
    EXPECT_EQ(merged.find(CleanableDataCategory::cache)->items().size(), 4U);
    EXPECT_NE(merged.find(CleanableDataCategory::httpCookies), nullptr);
    EXPECT_EQ(merged.find(CleanableDataCategory::localStorage), nullptr);
}

}  // namespace
}  // namespace browsersweep
