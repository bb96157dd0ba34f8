#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/catalogue/BrowserCleaners.h"

#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

TEST(BundleIdentifiers, areThoseOfTheBrowsers) {
    const std::vector<std::string> expected{
        "com.quenby.browser",
        "com.tarrow.browser",
        "com.brave.Browser",
        "org.chromium.Chromium",
        "org.mozilla.Firefox",
        "com.google.Chrome",
        "com.microsoft.edgemac",
        "com.orvo.browser",
        "com.brellis.browser",
        "com.operasoftware.Opera",
        "com.apple.Safari",
        "com.vivaldi.Vivaldi",
        "ru.yandex.desktop.yandex-browser",
    };
    const tests::TemporaryFolder home;
    std::vector<std::string> found;
    for (const Browser browser : allBrowsers) {
        found.emplace_back(
            cleaner(browser, tests::GuardedFileManager::forFixture(home))->bundleIdentifier());
    }
    EXPECT_EQ(found, expected);
}

}  // namespace
}  // namespace browsersweep
