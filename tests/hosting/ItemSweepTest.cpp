#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/hosting/ItemSweep.h"

#include "tests/support/RecordingItem.h"

namespace browsersweep {
namespace {

using tests::RecordingItem;
using Category = CleanableDataCategory;
using Verdicts = std::vector<ItemVerdict>;
using Steps = std::vector<std::string>;

class NamedProfile : public BrowserProfile {
public:
    NamedProfile(std::string name, CleanableDataMap data)
        : name_(std::move(name)), data_(std::move(data)) {}
    std::optional<std::string> name() const override { return name_; }
    Browser sourceBrowser() const noexcept override { return Browser::opera; }
    bool isPrimary() const noexcept override { return true; }
    CleanableDataMap cleanableData() const override { return data_; }
    std::vector<Bookmark> bookmarks() const override { return {}; }
    std::vector<std::shared_ptr<const NotificationSubscription>> notificationSubscriptions()
        const override {
        return {};
    }

private:
    std::string name_;
    CleanableDataMap data_;
};

/** An item that stops in the middle of being cleaned, after so many files. */
class StoppingItem : public RecordingItem {
public:
    StoppingItem(std::shared_ptr<OperationControl> control, Record record)
        : RecordingItem("stopping", CleanableDataSize{{9}, {90}}, std::move(record)),
          control_(std::move(control)) {}
    using CleanableData::clean;
    void clean(CleanableDataFilters /*filters*/) const override {
        control_->count({2, 20, 1});
        throw OperationCancelled(control_->progress());
    }

private:
    std::shared_ptr<OperationControl> control_;
};

/** Three items of one profile: full, empty and full. */
class ItemSweepTest : public testing::Test {
protected:
    std::shared_ptr<RecordingItem> item(const std::string& name, std::int64_t count) {
        return std::make_shared<RecordingItem>(name, CleanableDataSize{{count}, {10 * count}},
                                               record_);
    }
    ItemSweep sweep(SweepOptions options = {}, ItemSweep::Progress progress = {}) {
        std::vector<SweepItem> items;
        for (const auto& data : std::vector<CleanableDataList::Item>{first_, second_, third_}) {
            items.push_back({nullptr, Category::cache, data});
        }
        return {std::move(items), std::move(options), std::move(progress)};
    }
    static Verdicts verdicts(const SweepResult& result) {
        Verdicts all;
        for (const ItemResult& item : result.items) {
            all.push_back(item.verdict);
        }
        return all;
    }

    RecordingItem::Record record_ = std::make_shared<std::vector<std::string>>();
    std::shared_ptr<RecordingItem> first_ = item("first", 5);
    std::shared_ptr<RecordingItem> second_ = item("second", 0);
    std::shared_ptr<RecordingItem> third_ = item("third", 7);
};

TEST_F(ItemSweepTest, measuringTellsOfEachItem) {
    const auto result = sweep().measure();
    EXPECT_EQ(verdicts(result),
              (Verdicts{ItemVerdict::measured, ItemVerdict::nothingThere, ItemVerdict::measured}));
    EXPECT_EQ(result.items[2].size, (CleanableDataSize{{7}, {70}}));
    EXPECT_EQ(result.sum(), (CleanableDataSize{{12}, {120}}));
    EXPECT_EQ(result.error, nullptr);
}

TEST_F(ItemSweepTest, cleaningTellsWhatIsReallyGone) {
    third_->leaving({{3}, {30}});
    const auto result = sweep().cleanAndMeasure();
    EXPECT_EQ(verdicts(result), (Verdicts{ItemVerdict::emptied, ItemVerdict::nothingThere,
                                          ItemVerdict::partlyEmptied}));
    EXPECT_EQ(result.sum(), (CleanableDataSize{{9}, {90}}));
}

TEST_F(ItemSweepTest, everythingIsMeasuredBeforeAnythingIsCleaned) {
    sweep().cleanAndMeasure();
    EXPECT_EQ(*record_,
              (Steps{"first sized with 0", "second sized with 0", "third sized with 0",
                     "first cleaned with 0", "second cleaned with 0", "third cleaned with 0",
                     "first sized with 0", "second sized with 0", "third sized with 0"}));
}

TEST_F(ItemSweepTest, theFirstFailureEndsItAndIsTheItemsOwn) {
    first_->failing();
    const auto result = sweep().cleanAndMeasure();
    EXPECT_EQ(*record_, Steps{"first sized with 0"});
    EXPECT_EQ(verdicts(result),
              (Verdicts{ItemVerdict::couldNotLook, ItemVerdict::leftOut, ItemVerdict::leftOut}));
    EXPECT_THROW(std::rethrow_exception(result.error), std::runtime_error);
}

TEST_F(ItemSweepTest, aHostThatKeepsGoingLosesTheFailingItemAlone) {
    first_->failing();
    SweepOptions options;
    options.keepsGoing = true;
    const auto result = sweep(std::move(options)).cleanAndMeasure();
    EXPECT_EQ(verdicts(result), (Verdicts{ItemVerdict::couldNotLook, ItemVerdict::nothingThere,
                                          ItemVerdict::emptied}));
    EXPECT_EQ(result.items[0].size, std::nullopt);
    EXPECT_EQ(result.sum(), (CleanableDataSize{{7}, {70}}));
    EXPECT_NE(result.error, nullptr);
}

TEST_F(ItemSweepTest, ignoringErrorsNothingFails) {
    first_->failing();
    SweepOptions options;
    options.ignoresErrors = true;
    const auto result = sweep(std::move(options)).cleanAndMeasure();
    EXPECT_EQ(result.error, nullptr);
    EXPECT_EQ(result.sum(), (CleanableDataSize{{7, true}, {70, true}}));
}

TEST_F(ItemSweepTest, progressIsToldBeforeEachStepAndStopsTheRest) {
    Steps told;
    const auto result =
        sweep({}, [&](const SweepItem& /*next*/, std::size_t done, std::size_t all) {
            told.push_back(std::to_string(done) + "/" + std::to_string(all));
            return done < 4;
        }).cleanAndMeasure();
    EXPECT_EQ(told, (Steps{"0/9", "1/9", "2/9", "3/9", "4/9"}));
    EXPECT_EQ(verdicts(result),
              (Verdicts{ItemVerdict::emptied, ItemVerdict::cancelled, ItemVerdict::cancelled}));
    EXPECT_EQ(result.items[0].size, (CleanableDataSize{{5, true}, {50, true}}));
    EXPECT_THROW(std::rethrow_exception(result.error), OperationCancelled);
}

TEST_F(ItemSweepTest, anItemThatIsStoppedTellsWhatItHadDeleted) {
    SweepOptions options;
    options.control = std::make_shared<OperationControl>();
    options.control->count({100, 1000, 100});
    second_ = std::make_shared<StoppingItem>(options.control, record_);
    const auto result = sweep(std::move(options)).cleanAndMeasure();
    EXPECT_EQ(verdicts(result),
              (Verdicts{ItemVerdict::emptied, ItemVerdict::cancelled, ItemVerdict::cancelled}));
    EXPECT_EQ(result.items[1].size, (CleanableDataSize{{3, true}, {20, true}}));
    EXPECT_EQ(result.sum(), (CleanableDataSize{{8, true}, {70, true}}));
}

TEST_F(ItemSweepTest, cleaningAloneMeasuresNothing) {
    const auto result = sweep().clean();
    EXPECT_EQ(*record_,
              (Steps{"first cleaned with 0", "second cleaned with 0", "third cleaned with 0"}));
    EXPECT_EQ(result.items[0].size, std::nullopt);
}

TEST_F(ItemSweepTest, theItemsOfAProfileStandInTheOrderOfTheirCategories) {
    CleanableDataMap::Lists lists;
    lists[Category::history] = CleanableDataList({first_, second_});
    lists[Category::cache] = CleanableDataList({third_});
    const auto profile = std::make_shared<NamedProfile>("a", CleanableDataMap(lists));
    const auto items = sweepItems(profile);
    ASSERT_EQ(items.size(), 3U);
    EXPECT_EQ(items[0].data, third_);
    EXPECT_EQ(items[1].data, first_);
    EXPECT_EQ(items[2].data, second_);
    EXPECT_EQ(items[0].category, Category::cache);
    EXPECT_EQ(items[2].profile, profile);
}

TEST(ItemVerdict, hasTheNameOfItsCase) {
    EXPECT_EQ(rawValue(ItemVerdict::measured), "measured");
    EXPECT_EQ(rawValue(ItemVerdict::partlyEmptied), "partlyEmptied");
    EXPECT_EQ(rawValue(ItemVerdict::leftOut), "leftOut");
    EXPECT_EQ(rawValue(ItemVerdict::cancelled), "cancelled");
}

}  // namespace
}  // namespace browsersweep
