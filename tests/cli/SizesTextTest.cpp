#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cli/SizesText.h"

namespace browsersweep::cli {
namespace {

const Appearance plainASCII{};

CategorySize part(CleanableDataCategory category, CleanableDataSize size) {
    return {category, {}, size, true};
}

ProfileSizes profile(const std::string& name, const CategorySize& only) {
    return {{name, true, {}, false}, {only}};
}

BrowserSizes browser(Browser browser, std::vector<CategorySize> parts) {
    BrowserSizes row{};
    row.browser = browser;
    row.size = sumOf(parts).value_or(CleanableDataSize::zero);
    row.categories = std::move(parts);
    return row;
}

/** Firefox keeps little in many items, Opera much in few; Safari and Vivaldi keep nothing. */
SizesReport sizes() {
    const auto cache = part(CleanableDataCategory::cache, {{1300}, {1000000}});
    const auto history = part(CleanableDataCategory::history, {{2}, {2000000, true}});
    auto firefox = browser(Browser::firefox, {cache});
    firefox.profiles = {profile("default", cache)};
    auto opera = browser(Browser::opera,
                         {part(CleanableDataCategory::cache, CleanableDataSize::zero), history});
    opera.profiles = {profile("Work", history), profile("old", cache)};
    opera.profiles[1].categories[0].size = CleanableDataSize::zero;
    SizesReport report;
    report.browsers = {firefox, opera, browser(Browser::safari, {}), browser(Browser::vivaldi, {})};
    report.total = *firefox.size + *opera.size;
    return report;
}

SizesView by(Grouping grouping) {
    SizesView view;
    view.grouping = grouping;
    return view;
}

TEST(SizesText, hasARowForEachBrowserThatKeepsSomethingTheLargestFirst) {
    EXPECT_EQ(sizesText(sizes(), {}, plainASCII),
              "Browser  Items     Size\n"
              "Opera        2  ~2.0 MB  ####################\n"
              "Firefox  1,300   1.0 MB  ##########\n"
              "Total    1,302  ~3.0 MB\n"
              "~ approximate: databases count with their whole file\n");
}

TEST(SizesText, theRowsOfTheOnlyBrowserAreItsCategories) {
    auto report = sizes();
    report.browsers = {report.browsers[1]};
    report.total = *report.browsers[0].size;
    EXPECT_EQ(sizesText(report, {}, plainASCII),
              "Category  Items     Size\n"
              "History       2  ~2.0 MB  ####################\n"
              "Total         2  ~2.0 MB\n"
              "~ approximate: databases count with their whole file\n");
    EXPECT_EQ(sizesText(report, by(Grouping::browser), plainASCII),
              "Browser  Items     Size\n"
              "Opera        2  ~2.0 MB  ####################\n"
              "Total        2  ~2.0 MB\n"
              "~ approximate: databases count with their whole file\n");
}

TEST(SizesText, addsUpCategoriesOverAllBrowsers) {
    auto report = sizes();
    report.browsers[2] =
        browser(Browser::safari, {part(CleanableDataCategory::cache, {{1}, {500000}})});
    report.total = report.total + *report.browsers[2].size;
    EXPECT_EQ(sizesText(report, by(Grouping::category), plainASCII),
              "Category  Items     Size\n"
              "History       2  ~2.0 MB  ####################\n"
              "Cache     1,301   1.5 MB  ###############\n"
              "Total     1,303  ~3.5 MB\n"
              "~ approximate: databases count with their whole file\n");
}

TEST(SizesText, afterACleanARowTellsTheWorstThatHappenedToItsItems) {
    const auto itemsWith = [](std::vector<ItemVerdict> verdicts) {
        std::vector<ItemRow> items;
        for (const ItemVerdict verdict : verdicts) {
            items.push_back({{}, {}, "", verdict, {}, {}});
        }
        return items;
    };
    auto cache = part(CleanableDataCategory::cache, {{3}, {3000}});
    cache.items = itemsWith({ItemVerdict::emptied, ItemVerdict::nothingThere});
    auto cookies = part(CleanableDataCategory::httpCookies, CleanableDataSize::zero);
    cookies.items = itemsWith({ItemVerdict::held});
    auto forms = part(CleanableDataCategory::formData, CleanableDataSize::zero);
    forms.items = itemsWith({ItemVerdict::nothingThere});
    SizesReport report;
    report.measure = Measure::removed;
    report.browsers = {browser(Browser::opera, {cache, cookies, forms})};
    report.total = *report.browsers[0].size;
    EXPECT_EQ(sizesText(report, {}, plainASCII),
              "Category  Items  Removed  Freed  Result\n"
              "Cache         3   3.0 KB    0 B  emptied                  ####################\n"
              "Cookies       0      0 B    0 B  held by another program\n"
              "Total         3   3.0 KB    0 B\n");
    EXPECT_EQ(sizesText(report, by(Grouping::browser), plainASCII),
              "Browser  Items  Removed  Freed  Result\n"
              "Opera        3   3.0 KB    0 B  held by another program (1 of 4)  "
              "####################\n"
              "Total        3   3.0 KB    0 B\n");
}

TEST(SizesText, hasARowForEachProfile) {
    EXPECT_EQ(sizesText(sizes(), by(Grouping::profile), plainASCII),
              "Browser  Profile  Items     Size\n"
              "Opera    Work         2  ~2.0 MB  ####################\n"
              "Firefox  default  1,300   1.0 MB  ##########\n"
              "Total             1,302  ~3.0 MB\n"
              "~ approximate: databases count with their whole file\n");
}

TEST(SizesText, sortsByNameAndByItems) {
    auto view = by(Grouping::browser);
    for (const Order order : {Order::name, Order::items}) {
        view.order = order;
        EXPECT_EQ(sizesText(sizes(), view, plainASCII),
                  "Browser  Items     Size\n"
                  "Firefox  1,300   1.0 MB  ##########\n"
                  "Opera        2  ~2.0 MB  ####################\n"
                  "Total    1,302  ~3.0 MB\n"
                  "~ approximate: databases count with their whole file\n");
    }
}

TEST(SizesText, namesAreSortedWithoutRegardToLetterCase) {
    auto report = sizes();
    report.browsers = {report.browsers[1]};
    report.browsers[0].profiles[0].profile.name = "Zoe";
    auto view = by(Grouping::profile);
    view.order = Order::name;
    view.showsZeros = true;
    const auto text = sizesText(report, view, plainASCII);
    EXPECT_LT(text.find(" old "), text.find(" Zoe ")) << text;
}

TEST(SizesText, showsZerosWhereTheyAreWantedAndOtherwiseSaysHowManyThereAre) {
    SizesView view;
    view.offersZeros = true;
    EXPECT_EQ(sizesText(sizes(), view, plainASCII),
              "Browser  Items     Size\n"
              "Opera        2  ~2.0 MB  ####################\n"
              "Firefox  1,300   1.0 MB  ##########\n"
              "Total    1,302  ~3.0 MB\n"
              "Nothing in 2 more browsers; --all shows them\n"
              "~ approximate: databases count with their whole file\n");
    view.showsZeros = true;
    EXPECT_EQ(sizesText(sizes(), view, plainASCII),
              "Browser  Items     Size\n"
              "Opera        2  ~2.0 MB  ####################\n"
              "Firefox  1,300   1.0 MB  ##########\n"
              "Safari       0      0 B\n"
              "Vivaldi      0      0 B\n"
              "Total    1,302  ~3.0 MB\n"
              "~ approximate: databases count with their whole file\n");
}

TEST(SizesText, aHomeWithoutAnythingHasATotalOfZero) {
    SizesReport report;
    report.browsers = {browser(Browser::safari, {}), browser(Browser::vivaldi, {})};
    SizesView view;
    view.offersZeros = true;
    EXPECT_EQ(sizesText(report, view, plainASCII),
              "Browser  Items  Size\n"
              "Total        0   0 B\n"
              "Nothing in 2 browsers; --all shows them\n");
}

TEST(SizesText, whatFailedIsNeverAZeroAndMakesSumsApproximate) {
    auto report = sizes();
    auto& opera = report.browsers[1];
    opera.categories[0] = {CleanableDataCategory::cache, "broken", {}, true};
    report.browsers[2].error = "unreadable";
    report.browsers[2].size.reset();
    report.browsers[3].categories = {{CleanableDataCategory::cache, "broken", {}, true}};
    EXPECT_EQ(sizesText(report, {}, plainASCII),
              "Browser   Items     Size\n"
              "Opera        ~2  ~2.0 MB  ####################\n"
              "Firefox   1,300   1.0 MB  ##########\n"
              "Safari            failed\n"
              "Vivaldi           failed\n"
              "Total    ~1,302  ~3.0 MB\n"
              "~ approximate: databases count with their whole file, and what failed is not "
              "counted\n");
}

TEST(SizesText, anApproximateZeroIsNotLeftOut) {
    SizesReport report;
    report.browsers = {
        browser(Browser::opera, {part(CleanableDataCategory::cache, {{0, true}, {0, true}})}),
        browser(Browser::safari, {})};
    EXPECT_EQ(sizesText(report, {}, plainASCII),
              "Browser  Items  Size\n"
              "Opera       ~0  ~0 B\n"
              "Total        0   0 B\n");
}

TEST(SizesText, theHeaderSaysWhatTheFiguresAreAndARemovalWhatTheDiskGained) {
    auto report = sizes();
    report.measure = Measure::removed;
    report.freedBytes = 1000;
    report.browsers[0].freedBytes = 1000;
    report.browsers[1].freedBytes = -5;
    EXPECT_EQ(sizesText(report, {}, plainASCII),
              "Browser  Items  Removed   Freed  Result\n"
              "Opera        2  ~2.0 MB     0 B          ####################\n"
              "Firefox  1,300   1.0 MB  1.0 KB          ##########\n"
              "Total    1,302  ~3.0 MB  1.0 KB\n"
              "~ approximate: databases count with their whole file\n");
    report.measure = Measure::wouldBeRemoved;
    EXPECT_NE(sizesText(report, {}, plainASCII).find("  To be removed\n"), std::string::npos);
}

TEST(SizesText, onATerminalBarsAreColouredSumsStandOutAndRemarksStandBack) {
    auto report = sizes();
    report.browsers.resize(2);
    EXPECT_EQ(sizesText(report, {}, {true, CharacterSet::utf8, CharacterSet::utf8}),
              "\x1b[2mBrowser\x1b[0m  \x1b[2mItems\x1b[0m     \x1b[2mSize\x1b[0m\n"
              "Opera        2  ~2.0 MB  \x1b[36m████████████████████\x1b[0m\n"
              "Firefox  1,300   1.0 MB  \x1b[36m██████████\x1b[0m\n"
              "\x1b[1mTotal\x1b[0m    \x1b[1m1,302\x1b[0m  \x1b[1m~3.0 MB\x1b[0m\n"
              "\x1b[2m~ approximate: databases count with their whole file\x1b[0m\n");
}

TEST(SizesText, fitsTheTerminal) {
    auto appearance = plainASCII;
    appearance.columns = 40;
    EXPECT_EQ(sizesText(sizes(), {}, appearance),
              "Browser  Items     Size\n"
              "Opera        2  ~2.0 MB  ###############\n"
              "Firefox  1,300   1.0 MB  ########\n"
              "Total    1,302  ~3.0 MB\n"
              "~ approximate: databases count with\n"
              "their whole file\n");
}

}  // namespace
}  // namespace browsersweep::cli
