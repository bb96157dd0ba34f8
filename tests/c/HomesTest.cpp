#include <memory>

#include <gtest/gtest.h>

#include "browsersweep/c/browsersweep.h"
#include "browsersweep/platform/HTTPCookieStorage.h"

#include "tests/support/AccountCookies.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

TEST(CInterface, cleaningAnotherHomeLeavesTheLiveUsersCookiesAlone) {
    if (!tests::mayUseAccountCookies()) {
        GTEST_SKIP() << tests::whyNoAccountCookies;
    }
    const HTTPCookie cookie{"live.example", "kept", "/"};
    const auto storage = HTTPCookieStorage::shared("Cookies");
    storage->setCookie(cookie);
    const auto before = storage->cookies().size();
    const tests::TemporaryFolder folder;
    browsersweep_browser safari = 0;
    ASSERT_TRUE(browsersweep_browser_from_raw_value("safari", &safari));
    auto* const home = browsersweep_home_at(folder.path().c_str(), nullptr);
    auto* const data = browsersweep_data_of_browser(home, safari, nullptr);
    EXPECT_TRUE(browsersweep_data_clean(data, BROWSERSWEEP_ALL_CATEGORIES, nullptr, 0, nullptr,
                                        nullptr, nullptr, nullptr));
    browsersweep_data_free(data);
    browsersweep_home_free(home);
    EXPECT_EQ(storage->cookies().size(), before);
    storage->deleteCookie(cookie);
}

}  // namespace
}  // namespace browsersweep
