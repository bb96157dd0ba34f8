#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/catalogue/BrowserCleaner.h"
#include "browsersweep/sqlite/SQLiteError.h"

#include "tests/support/PageDamage.h"
#include "tests/support/SampleHome.h"

namespace browsersweep {
namespace {

using tests::Files;
using tests::PageDamage;
using tests::SampleHome;

using Use = std::function<void(const CleanableData&)>;

std::vector<CleanableDataFilter> patternsAndDates() {
    const CleanableDataFilter::Dates dates{CleanableDataFilter::Dates::Rule::insideRange,
                                           dateFromReferenceSeconds(0), std::nullopt};
    return {{CleanableDataFilter::Rule::include, {"one", "two"}}, {std::nullopt, dates}};
}

void measure(const CleanableData& item) {
    EXPECT_GE(item.size().itemCount.value, 0);
}

void measureByFilters(const CleanableData& item) {
    EXPECT_GE(item.size(patternsAndDates()).itemCount.value, 0);
}

/** Every database of one browser in a sample home, some of them damaged. */
class PageDamages : public testing::TestWithParam<Browser> {
protected:
    PageDamages() {
        for (const std::string& name : home_.databases()) {
            whole_.emplace(name, tests::readFile(home_.path() / name));
        }
    }

    void damage(std::uint32_t seed) {
        PageDamage pages(seed);
        damaged_.clear();
        for (const auto& [name, contents] : whole_) {
            if (pages.hitsNext()) {
                std::ofstream(home_.path() / name, std::ios::binary) << pages.damaged(contents);
                damaged_.insert(name);
            }
        }
    }

    /** Does something with every single item; each may fail, but only with an error of SQLite. */
    void forEachItem(const Use& use) {
        const auto data = cleaner_->cleanableData([](const BrowserProfile&) { return true; });
        for (const auto& [category, list] : data.lists()) {
            for (const auto& item : list.items()) {
                attempt([&] { use(*item); });
            }
        }
    }

    void readNotifications() {
        for (const auto& profile : cleaner_->profileReader().profiles()) {
            attempt([&] { profile->notificationSubscriptions(); });
        }
    }

    /** What a clean must not have done, but for what happened to the damaged databases. */
    std::vector<std::string> harmElsewhere() const {
        return home_.harm(undamaged(home_.changes()));
    }

    void expectNoTemporaryFiles() const {
        EXPECT_EQ(tests::filesBelow(home_.temporaryFolder()), Files());
    }

    std::array<Browser, 1> browsers_{GetParam()};
    SampleHome home_{browsers_};
    std::size_t failures_ = 0;
    std::size_t results_ = 0;

private:
    void attempt(const std::function<void()>& operation) {
        try {
            operation();
            ++results_;
        } catch (const SQLiteError& error) {
            EXPECT_TRUE(error.errorDescription().has_value());
            ++failures_;
        }
    }

    /** The names that are neither those of damaged databases nor of their journals. */
    std::vector<std::string> undamaged(std::vector<std::string> names) const {
        std::erase_if(names, [this](const std::string& name) {
            return std::any_of(damaged_.begin(), damaged_.end(), [&](const std::string& database) {
                return name == database || name == database + "-journal";
            });
        });
        return names;
    }

    std::unique_ptr<const BrowserCleaner> cleaner_ =
        SampleHome::cleaner(GetParam(), home_.fileManager());
    Files whole_;
    std::set<std::string> damaged_;
};

TEST_P(PageDamages, giveAnErrorOrAResultAndHarmNothingElse) {
    constexpr std::uint32_t rounds = 60;
    for (std::uint32_t seed = 0; seed < rounds; ++seed) {
        SCOPED_TRACE(seed);
        damage(seed);
        const Files before = home_.files();
        forEachItem(measure);
        forEachItem(measureByFilters);
        readNotifications();
        EXPECT_EQ(tests::differences(before, home_.files()), std::vector<std::string>());
        forEachItem([](const CleanableData& item) { item.clean(patternsAndDates()); });
        forEachItem([](const CleanableData& item) { item.clean(); });
        EXPECT_EQ(harmElsewhere(), std::vector<std::string>());
        expectNoTemporaryFiles();
        home_.restore();
    }
    EXPECT_GT(failures_, rounds / 2);
    EXPECT_GT(results_, rounds);
}

INSTANTIATE_TEST_SUITE_P(Families, PageDamages,
                         testing::Values(Browser::chromium, Browser::firefox, Browser::safari),
                         [](const auto& row) { return std::string(rawValue(row.param)); });

}  // namespace
}  // namespace browsersweep
