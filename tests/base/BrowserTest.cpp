#include <gtest/gtest.h>

#include "browsersweep/base/Browser.h"

namespace browsersweep {
namespace {

TEST(Browser, thirteenCasesInTheirOrder) {
    ASSERT_EQ(allBrowsers.size(), 13U);
    EXPECT_EQ(allBrowsers.front(), Browser::quenbySecureBrowser);
    EXPECT_EQ(allBrowsers.back(), Browser::yandexBrowser);
    for (std::size_t ordinal = 0; ordinal < allBrowsers.size(); ++ordinal) {
        EXPECT_EQ(static_cast<std::size_t>(allBrowsers[ordinal]), ordinal);
    }
}

TEST(Browser, namesOfEveryCase) {
    struct Row {
        Browser browser;
        std::string_view raw;
        std::string_view display;
        std::string_view bundle;
    };
    // clang-format off
    const Row rows[] = {  // NOLINT(cppcoreguidelines-avoid-c-arrays,modernize-avoid-c-arrays)
        {Browser::quenbySecureBrowser,   "quenbySecureBrowser",   "Quenby Secure Browser",  "com.quenby.browser"},
        {Browser::tarrowSecureBrowser,   "tarrowSecureBrowser",   "Tarrow Secure Browser",  "com.tarrow.browser"},
        {Browser::brave,                 "brave",                 "Brave Browser",          "com.brave.Browser"},
        {Browser::chromium,              "chromium",              "Chromium",               "org.chromium.Chromium"},
        {Browser::firefox,               "firefox",               "Firefox",                "org.mozilla.Firefox"},
        {Browser::googleChrome,          "googleChrome",          "Google Chrome",          "com.google.Chrome"},
        {Browser::microsoftEdge,         "microsoftEdge",         "Microsoft Edge",         "com.microsoft.edgemac"},
        {Browser::orvo,                  "orvo",                  "Orvo",                   "com.orvo.browser"},
        {Browser::brellisPrivateBrowser, "brellisPrivateBrowser", "Brellis Private Browser","com.brellis.browser"},
        {Browser::opera,                 "opera",                 "Opera",                  "com.operasoftware.Opera"},
        {Browser::safari,                "safari",                "Safari",                 "com.apple.Safari"},
        {Browser::vivaldi,               "vivaldi",               "Vivaldi",                "com.vivaldi.Vivaldi"},
        {Browser::yandexBrowser,         "yandexBrowser",         "Yandex Browser",         "ru.yandex.desktop.yandex-browser"},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.raw);
        EXPECT_EQ(rawValue(row.browser), row.raw);
        EXPECT_EQ(displayName(row.browser), row.display);
        EXPECT_EQ(bundleIdentifier(row.browser), row.bundle);
        EXPECT_EQ(browserFromRawValue(row.raw), row.browser);
    }
}

TEST(Browser, rawValuesAreCaseSensitiveAndUnknownOnesAbsent) {
    EXPECT_EQ(browserFromRawValue("orvo"), Browser::orvo);
    for (const std::string_view unknown : {"Orvo", "", "chrome", "orvo "}) {
        SCOPED_TRACE(unknown);
        EXPECT_EQ(browserFromRawValue(unknown), std::nullopt);
    }
}

}  // namespace
}  // namespace browsersweep
