#include <gtest/gtest.h>

#include "cli/Names.h"

namespace browsersweep::cli {
namespace {

TEST(Names, rawValuesMeanThemselves) {
    for (const auto browser : allBrowsers) {
        EXPECT_EQ(browserNamed(rawValue(browser)), browser);
    }
    for (const auto category : allCleanableDataCategories) {
        EXPECT_EQ(categoryNamed(rawValue(category)), category);
    }
}

TEST(Names, shortNamesMeanOneOfThem) {
    EXPECT_EQ(browserNamed("chrome"), Browser::googleChrome);
    EXPECT_EQ(browserNamed("edge"), Browser::microsoftEdge);
    EXPECT_EQ(browserNamed("yandex"), Browser::yandexBrowser);
    EXPECT_EQ(categoryNamed("cookies"), CleanableDataCategory::httpCookies);
    EXPECT_EQ(categoryNamed("storage"), CleanableDataCategory::localStorage);
}

TEST(Names, othersMeanNothing) {
    for (const auto* const name : {"", "Chrome", "chrom", "cookies"}) {
        EXPECT_EQ(browserNamed(name), std::nullopt);
    }
    for (const auto* const name : {"", "Cookies", "cookie", "chrome"}) {
        EXPECT_EQ(categoryNamed(name), std::nullopt);
    }
}

}  // namespace
}  // namespace browsersweep::cli
