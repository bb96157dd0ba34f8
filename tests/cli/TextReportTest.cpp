#include <gtest/gtest.h>

#include "cli/TextReport.h"

namespace browsersweep::cli {
namespace {

const Appearance plainASCII{};

SizesReport sizes() {
    SizesReport report;
    report.total = {{1302, false}, {3000000, true}};
    BrowserSizes opera{};
    opera.browser = Browser::opera;
    opera.size = report.total;
    opera.categories = {
        {CleanableDataCategory::cache, {}, CleanableDataSize{{1300}, {2000000}}, true},
        {CleanableDataCategory::history, {}, CleanableDataSize{{2}, {1000000, true}}, true},
        {CleanableDataCategory::formData, "broken", {}, true},
    };
    BrowserSizes broken{};
    broken.browser = Browser::brave;
    broken.error = "unreadable";
    BrowserSizes empty{};
    empty.browser = Browser::safari;
    empty.size = CleanableDataSize::zero;
    report.browsers = {broken, opera, empty};
    return report;
}

TEST(TextReport, sizesAreATableWithBarsAndMarksOnApproximateValues) {
    EXPECT_EQ(peopleText(sizes(), plainASCII),
              "Browser        Category   Items     Size\n"
              "Brave Browser                     failed\n"
              "Opera          Cache      1,300   2.0 MB  #############\n"
              "Opera          History        2  ~1.0 MB  #######\n"
              "Opera          Form data          failed\n"
              "Opera          all        1,302  ~3.0 MB  ####################\n"
              "Total                     1,302  ~3.0 MB\n"
              "No data found: Safari\n"
              "~ approximate: databases count with their whole file\n");
}

TEST(TextReport, onATerminalBarsAreColouredSumsStandOutAndRemarksStandBack) {
    auto report = sizes();
    report.browsers.erase(report.browsers.begin());
    EXPECT_EQ(peopleText(report, {true, CharacterSet::utf8, CharacterSet::utf8}),
              "\x1b[2mBrowser\x1b[0m  \x1b[2mCategory\x1b[0m   \x1b[2mItems\x1b[0m     "
              "\x1b[2mSize\x1b[0m\n"
              "Opera    Cache      1,300   2.0 MB  \x1b[36m█████████████▍\x1b[0m\n"
              "Opera    History        2  ~1.0 MB  \x1b[36m██████▋\x1b[0m\n"
              "Opera    Form data          \x1b[31mfailed\x1b[0m\n"
              "\x1b[1mOpera\x1b[0m    \x1b[1mall\x1b[0m        \x1b[1m1,302\x1b[0m  "
              "\x1b[1m~3.0 MB\x1b[0m  \x1b[36m████████████████████\x1b[0m\n"
              "\x1b[1mTotal\x1b[0m               \x1b[1m1,302\x1b[0m  \x1b[1m~3.0 MB\x1b[0m\n"
              "\x1b[2mNo data found: Safari\x1b[0m\n"
              "\x1b[2m~ approximate: databases count with their whole file\x1b[0m\n");
}

TEST(TextReport, theHeaderSaysWhatTheFiguresAre) {
    auto report = sizes();
    report.measure = Measure::removed;
    report.freedBytes = 1000;
    const auto text = peopleText(report, plainASCII);
    EXPECT_NE(text.find(" Removed   Freed\n"), std::string::npos) << text;
    EXPECT_NE(text.find(" ~3.0 MB  1.0 KB\n"), std::string::npos) << text;
    report.measure = Measure::wouldBeRemoved;
    EXPECT_NE(peopleText(report, plainASCII).find(" To be removed\n"), std::string::npos);
}

TEST(TextReport, everyFailureIsToldWithItsPlace) {
    const auto failed = failures(sizes());
    ASSERT_EQ(failed.size(), 2U);
    EXPECT_EQ(failed[0].where + ": " + failed[0].error, "Brave Browser: unreadable");
    EXPECT_EQ(failed[1].where + ": " + failed[1].error, "Opera, Form data: broken");
}

TEST(TextReport, profilesWithoutANameAreShownAsSuch) {
    ProfilesReport report;
    report.browsers.push_back({Browser::opera, {}, {{{}, true}, {"Work", false}}});
    EXPECT_EQ(peopleText(report, plainASCII),
              "Browser  Profile    Primary\n"
              "Opera    (no name)  yes\n"
              "Opera    Work\n");
}

}  // namespace
}  // namespace browsersweep::cli
