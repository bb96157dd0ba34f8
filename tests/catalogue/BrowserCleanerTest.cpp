#include <stdexcept>

#include <gtest/gtest.h>

#include "browsersweep/catalogue/BrowserCleaner.h"

#include "tests/support/RecordingItem.h"

namespace browsersweep {
namespace {

using Category = CleanableDataCategory;
using Record = tests::RecordingItem::Record;
using Lines = std::vector<std::string>;

/** A profile that writes down what is asked of it, and may fail. */
class FakeProfile : public BrowserProfile {
public:
    FakeProfile(std::string name, std::vector<Category> categories, Record record, bool fails)
        : name_(std::move(name)),
          categories_(std::move(categories)),
          record_(std::move(record)),
          fails_(fails) {}

    std::optional<std::string> name() const override { return name_; }
    Browser sourceBrowser() const noexcept override { return Browser::brave; }
    bool isPrimary() const noexcept override { return true; }

    CleanableDataMap cleanableData() const override {
        note("data");
        CleanableDataMap::Lists lists;
        for (const Category category : categories_) {
            const auto item =
                std::make_shared<tests::RecordingItem>(name_, CleanableDataSize{}, record_);
            lists.emplace(category, CleanableDataList({item, item}));
        }
        return CleanableDataMap(std::move(lists));
    }

    std::vector<Bookmark> bookmarks() const override {
        note("bookmarks");
        return {{name_, *URL::parse("http://x.test/1")}, {name_, *URL::parse("http://x.test/1")}};
    }

    std::vector<std::shared_ptr<const NotificationSubscription>> notificationSubscriptions()
        const override {
        return {};
    }

private:
    void note(const std::string& what) const {
        record_->push_back(name_ + " " + what);
        if (fails_) {
            throw std::runtime_error(name_ + " failed");
        }
    }

    std::string name_;
    std::vector<Category> categories_;
    Record record_;
    bool fails_;
};

class FakeReader : public BrowserProfileReader {
public:
    std::vector<std::shared_ptr<const BrowserProfile>> profiles() const override {
        if (fails) {
            throw std::runtime_error("reader failed");
        }
        return list;
    }

    std::vector<std::shared_ptr<const BrowserProfile>> list;
    bool fails = false;
};

class FakeCleaner : public BrowserCleaner {
public:
    explicit FakeCleaner(const FakeReader& reader) : reader_(&reader) {}
    std::string_view name() const noexcept override { return "Fake"; }
    std::string_view bundleIdentifier() const noexcept override { return "test.fake"; }
    const BrowserProfileReader& profileReader() const noexcept override { return *reader_; }

private:
    const FakeReader* reader_;
};

class BrowserCleanerTest : public testing::Test {
protected:
    void add(const std::string& name, std::vector<Category> categories, bool fails = false) {
        reader.list.push_back(
            std::make_shared<FakeProfile>(name, std::move(categories), record, fails));
    }

    static bool all(const BrowserProfile& /*profile*/) { return true; }
    static bool none(const BrowserProfile& /*profile*/) { return false; }

    Record record = std::make_shared<Lines>();
    FakeReader reader;
    FakeCleaner cleaner{reader};
};

TEST_F(BrowserCleanerTest, aPredicateThatRefusesAllAsksNoProfile) {
    add("one", {Category::cache});
    EXPECT_TRUE(cleaner.cleanableData(none).lists().empty());
    EXPECT_TRUE(cleaner.bookmarks(none).empty());
    EXPECT_TRUE(record->empty());
}

TEST_F(BrowserCleanerTest, listsOfOneCategoryAreJoinedFirstProfileFirst) {
    add("one", {Category::cache, Category::history});
    add("two", {Category::cache});
    const auto data = cleaner.cleanableData(all);
    record->clear();
    data.find(Category::cache)->clean();
    EXPECT_EQ(*record, (Lines{"one cleaned with 0", "one cleaned with 0", "two cleaned with 0",
                              "two cleaned with 0"}));
    EXPECT_EQ(data.find(Category::history)->items().size(), 2U);
    EXPECT_EQ(data.find(Category::formData), nullptr);
}

TEST_F(BrowserCleanerTest, thePredicateChoosesProfiles) {
    add("one", {Category::cache});
    add("two", {Category::history});
    const auto onlyTwo = [](const BrowserProfile& profile) { return profile.name() == "two"; };
    EXPECT_EQ(cleaner.cleanableData(onlyTwo).find(Category::cache), nullptr);
    EXPECT_EQ(*record, (Lines{"two data"}));
}

TEST_F(BrowserCleanerTest, aProfileThatFailsMakesTheWholeCallFail) {
    add("one", {Category::cache});
    add("two", {Category::cache}, true);
    add("three", {Category::cache});
    EXPECT_THROW(cleaner.cleanableData(all), std::runtime_error);
    EXPECT_THROW(cleaner.bookmarks(all), std::runtime_error);
    EXPECT_EQ(*record, (Lines{"one data", "two data", "one bookmarks", "two bookmarks"}));
}

TEST_F(BrowserCleanerTest, aReaderThatFailsDoesSoBeforeThePredicateIsAsked) {
    add("one", {});
    reader.fails = true;
    int asked = 0;
    const auto counting = [&](const BrowserProfile&) { return ++asked > 0; };
    EXPECT_THROW(cleaner.cleanableData(counting), std::runtime_error);
    EXPECT_THROW(cleaner.bookmarks(counting), std::runtime_error);
    EXPECT_EQ(asked, 0);
}

TEST_F(BrowserCleanerTest, aPredicateThatFailsPassesItsErrorOn) {
    add("one", {});
    const auto failing = [](const BrowserProfile&) -> bool { throw std::out_of_range("own"); };
    EXPECT_THROW(cleaner.cleanableData(failing), std::out_of_range);
    EXPECT_THROW(cleaner.bookmarks(failing), std::out_of_range);
}

TEST_F(BrowserCleanerTest, eachProfileIsAskedAboutAndReadBeforeTheNextOne) {
    add("one", {Category::cache});
    add("two", {Category::cache});
    add("three", {Category::cache});
    const auto butTwo = [this](const BrowserProfile& profile) {
        record->push_back(profile.name().value() + " offered");
        return profile.name() != "two";
    };
    cleaner.cleanableData(butTwo);
    EXPECT_EQ(*record,
              (Lines{"one offered", "one data", "two offered", "three offered", "three data"}));
    record->clear();
    cleaner.bookmarks(butTwo);
    EXPECT_EQ(*record, (Lines{"one offered", "one bookmarks", "two offered", "three offered",
                              "three bookmarks"}));
}

TEST_F(BrowserCleanerTest, bookmarksAreGatheredInOrderWithoutRemovingDuplicates) {
    add("one", {});
    add("two", {});
    const Bookmark one{"one", *URL::parse("http://x.test/1")};
    const Bookmark two{"two", *URL::parse("http://x.test/1")};
    EXPECT_EQ(cleaner.bookmarks(all), (std::vector<Bookmark>{one, one, two, two}));
}

TEST_F(BrowserCleanerTest, withoutProfilesThereIsNothing) {
    EXPECT_TRUE(cleaner.cleanableData(all).lists().empty());
    EXPECT_TRUE(cleaner.bookmarks(all).empty());
}

}  // namespace
}  // namespace browsersweep
