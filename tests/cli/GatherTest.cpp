#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Gather.h"
#include "tests/support/RecordingItem.h"

namespace browsersweep::cli {
namespace {

using tests::RecordingItem;

class FakeProfile : public BrowserProfile {
public:
    explicit FakeProfile(CleanableDataMap data) : data_(std::move(data)) {}
    std::optional<std::string> name() const override { return std::nullopt; }
    Browser sourceBrowser() const noexcept override { return Browser::opera; }
    bool isPrimary() const noexcept override { return true; }
    CleanableDataMap cleanableData() const override { return data_; }
    std::vector<Bookmark> bookmarks() const override { throw std::runtime_error("no bookmarks"); }
    std::vector<std::shared_ptr<const NotificationSubscription>> notificationSubscriptions()
        const override {
        return {};
    }

private:
    CleanableDataMap data_;
};

class FakeReader : public BrowserProfileReader {
public:
    std::vector<std::shared_ptr<const BrowserProfile>> profiles() const override {
        if (profiles_.empty()) {
            throw std::runtime_error("unreadable");
        }
        return profiles_;
    }
    std::vector<std::shared_ptr<const BrowserProfile>> profiles_;  // NOLINT: a plain fake
};

class FakeCleaner : public BrowserCleaner {
public:
    explicit FakeCleaner(FakeReader reader) : reader_(std::move(reader)) {}
    std::string_view name() const noexcept override { return "Fake"; }
    std::string_view bundleIdentifier() const noexcept override { return "fake"; }
    const BrowserProfileReader& profileReader() const noexcept override { return reader_; }

private:
    FakeReader reader_;
};

class FakeObserver : public Observer {
public:
    void begin(Browser browser, std::size_t finished, std::size_t all) override {
        steps.push_back(std::string(rawValue(browser)) + " " + std::to_string(finished) + "/" +
                        std::to_string(all));
    }
    void begin(CleanableDataCategory category) override {
        steps.emplace_back(rawValue(category));
        --stepsLeft;
    }
    void note(const std::string& line) override { notes.push_back(line); }
    bool isInterrupted() const override { return stepsLeft < 0; }

    std::vector<std::string> steps;
    std::vector<std::string> notes;
    int stepsLeft = 1000;
};

/** Opera with two categories, of which the second may fail; the profiles of Safari are broken. */
class Gather : public testing::Test {
protected:
    Gather() { options_.selection.browsers = {Browser::opera, Browser::safari}; }

    CleanerFactory factory(bool historyFails) {
        auto cache =
            std::make_shared<RecordingItem>("cache", CleanableDataSize{{5}, {50}}, record_);
        cache->leaving({{1}, {10}});
        auto history =
            std::make_shared<RecordingItem>("history", CleanableDataSize{{7}, {70}}, record_);
        if (historyFails) {
            history->failing();
        }
        CleanableDataMap::Lists lists;
        lists[CleanableDataCategory::cache] = CleanableDataList({cache});
        lists[CleanableDataCategory::history] = CleanableDataList({history});
        FakeReader reader;
        for (std::size_t i = 0; i < profileCount_; ++i) {
            reader.profiles_.push_back(std::make_shared<FakeProfile>(CleanableDataMap(lists)));
        }
        return [reader](Browser browser) -> std::unique_ptr<const BrowserCleaner> {
            return std::make_unique<FakeCleaner>(browser == Browser::opera ? reader : FakeReader{});
        };
    }

    SizesReport sizes(bool historyFails) {
        return std::get<SizesReport>(gather(options_, factory(historyFails), observer_));
    }

    Options options_;
    std::size_t profileCount_ = 1;
    RecordingItem::Record record_ = std::make_shared<std::vector<std::string>>();
    FakeObserver observer_;
};

TEST_F(Gather, sizesAddUpAndAFailingBrowserCountsNothing) {
    options_.command = Command::size;
    const auto report = sizes(false);
    EXPECT_EQ(report.measure, Measure::present);
    EXPECT_EQ(report.total, (CleanableDataSize{{12}, {120}}));
    ASSERT_EQ(report.browsers.size(), 2U);
    EXPECT_EQ(report.browsers[0].size, report.total);
    EXPECT_EQ(report.browsers[1].error, "unreadable");
    EXPECT_EQ(report.browsers[1].size, std::nullopt);
}

TEST_F(Gather, aFailingCategoryLeavesTheOthersMeasured) {
    options_.command = Command::size;
    const auto report = sizes(true);
    EXPECT_EQ(report.total, (CleanableDataSize{{5}, {50}}));
    ASSERT_EQ(report.browsers[0].categories.size(), 2U);
    EXPECT_EQ(report.browsers[0].error, std::nullopt);
    EXPECT_TRUE(report.browsers[0].categories[1].error);
    EXPECT_EQ(report.browsers[0].categories[1].size, std::nullopt);
}

TEST_F(Gather, cleaningReportsWhatIsReallyGone) {
    options_.command = Command::clean;
    const auto report = sizes(false);
    EXPECT_EQ(report.measure, Measure::removed);
    EXPECT_EQ(report.browsers[0].categories[0].size, (CleanableDataSize{{4}, {40}}));
}

TEST_F(Gather, aBrowserThatWasStartedMeanwhileIsNotCleaned) {
    std::vector<Browser> asked;
    const auto refusal = [&](Browser browser) -> std::optional<std::string> {
        asked.push_back(browser);
        return "it seems to be running";
    };
    options_.command = Command::clean;
    const auto report = std::get<SizesReport>(gather(options_, factory(false), observer_, refusal));
    EXPECT_EQ(asked, std::vector{Browser::opera});  // the other one's profiles are broken
    EXPECT_EQ(report.browsers[0].error, "it seems to be running");
    EXPECT_TRUE(report.browsers[0].categories.empty());
    EXPECT_EQ(*record_, std::vector<std::string>());
    options_.dryRun = true;
    gather(options_, factory(false), observer_, refusal);
    EXPECT_EQ(asked.size(), 1U);
}

TEST_F(Gather, ignoringErrorsAFailureIsAnApproximateZero) {
    options_.command = Command::clean;
    options_.ignoreErrors = true;
    const auto report = sizes(true);
    EXPECT_EQ(report.browsers[0].categories[1].error, std::nullopt);
    EXPECT_EQ(report.browsers[0].categories[1].size, (CleanableDataSize{{0, true}, {0, true}}));
}

TEST_F(Gather, aDryRunAndAPreviewCleanNothing) {
    options_.command = Command::clean;
    options_.dryRun = true;
    EXPECT_EQ(sizes(false).measure, Measure::wouldBeRemoved);
    EXPECT_EQ(preview(options_, factory(false), observer_).total, (CleanableDataSize{{12}, {120}}));
    for (const auto& entry : *record_) {
        EXPECT_EQ(entry.find("cleaned"), std::string::npos) << entry;
    }
}

TEST_F(Gather, onlySelectedCategoriesAreTouched) {
    options_.command = Command::clean;
    options_.selection.categories = {CleanableDataCategory::history};
    EXPECT_EQ(sizes(false).browsers[0].categories.size(), 1U);
    for (const auto& entry : *record_) {
        EXPECT_EQ(entry.find("cache"), std::string::npos) << entry;
    }
}

TEST_F(Gather, anInterruptionLeavesTheRestUndoneAndSaysSo) {
    options_.command = Command::clean;
    observer_.stepsLeft = 1;  // comes while the first category is cleaned
    const auto report = sizes(false);
    EXPECT_EQ(report.browsers[0].categories[0].size, (CleanableDataSize{{4}, {40}}));
    EXPECT_EQ(report.browsers[0].categories[1].error, interruptedText);
    EXPECT_EQ(report.browsers[1].error, interruptedText);
}

TEST_F(Gather, theObserverHearsEveryStep) {
    options_.command = Command::size;
    sizes(false);
    EXPECT_EQ(observer_.steps,
              (std::vector<std::string>{"opera 0/2", "cache", "history", "safari 1/2"}));
}

TEST_F(Gather, whatEachProfileHasIsToldByItsItemsWithoutMeasuringThemAgain) {
    options_.command = Command::clean;
    profileCount_ = 2;
    sizes(false);
    const auto once = record_->size();
    profileCount_ = 1;
    const auto browser = sizes(false).browsers[0];
    EXPECT_EQ(record_->size(), once + once / 2);
    ASSERT_EQ(browser.profiles.size(), 1U);
    ASSERT_EQ(browser.profiles[0].categories.size(), 2U);
    EXPECT_EQ(browser.profiles[0].categories[0].size, (CleanableDataSize{{4}, {40}}));
    EXPECT_EQ(browser.profiles[0].categories[0].error, std::nullopt);
}

TEST_F(Gather, aProfileLacksWhatAnErrorKeptFromItsTurn) {
    options_.command = Command::size;
    profileCount_ = 2;
    const auto profiles = sizes(true).browsers[0].profiles;
    ASSERT_EQ(profiles.size(), 2U);
    for (const auto& profile : profiles) {
        EXPECT_EQ(profile.categories[0].size, (CleanableDataSize{{5}, {50}}));
        EXPECT_EQ(profile.categories[1].size, std::nullopt);
        EXPECT_TRUE(profile.categories[1].error);
    }
}

TEST_F(Gather, profilesOfOneNameAreMarked) {
    options_.command = Command::size;
    EXPECT_FALSE(sizes(false).browsers[0].profiles[0].profile.isNameShared);
    profileCount_ = 2;
    const auto browser = sizes(false).browsers[0];
    EXPECT_TRUE(browser.profiles[0].profile.isNameShared);
    EXPECT_TRUE(browser.profiles[1].profile.isNameShared);
    EXPECT_TRUE(browser.categories[0].items[0].isNameShared);
}

TEST_F(Gather, theOnlyProfileHasTheBrowsersSizesAndIsNotMeasuredAgain) {
    options_.command = Command::size;
    sizes(false);
    const auto once = record_->size();
    options_.html = "unused";
    const auto browser = sizes(false).browsers[0];
    EXPECT_EQ(record_->size(), 2 * once);
    ASSERT_EQ(browser.profiles.size(), 1U);
    ASSERT_EQ(browser.profiles[0].categories.size(), 2U);
    EXPECT_EQ(browser.profiles[0].categories[1].size, browser.categories[1].size);
}

TEST_F(Gather, eachOfSeveralProfilesHasItsOwnSizesAndErrors) {
    options_.command = Command::size;
    options_.html = "unused";
    profileCount_ = 2;
    const auto browser = sizes(true).browsers[0];
    EXPECT_EQ(browser.categories[0].size, (CleanableDataSize{{10}, {100}}));
    ASSERT_EQ(browser.profiles.size(), 2U);
    for (const auto& profile : browser.profiles) {
        ASSERT_EQ(profile.categories.size(), 2U);
        EXPECT_EQ(profile.categories[0].size, (CleanableDataSize{{5}, {50}}));
        EXPECT_EQ(profile.categories[1].size, std::nullopt);
        EXPECT_EQ(profile.categories[1].error, browser.categories[1].error);
    }
}

TEST_F(Gather, bookmarksThatCannotBeListedAreTheBrowsersError) {
    options_.command = Command::bookmarks;
    const auto report = std::get<BookmarksReport>(gather(options_, factory(false), observer_));
    EXPECT_EQ(report.browsers[0].error, "no bookmarks");
    EXPECT_TRUE(report.browsers[0].bookmarks.empty());
}

}  // namespace
}  // namespace browsersweep::cli
