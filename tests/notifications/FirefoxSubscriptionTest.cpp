#include <gtest/gtest.h>

#include "browsersweep/notifications/FirefoxSubscription.h"

namespace browsersweep {
namespace {

FirefoxSubscription subscription(std::string_view site) {
    return {*URL::parse(site), Browser::firefox, "/profile/permissions.sqlite"};
}

TEST(FirefoxSubscription, tellsItsSiteItsBrowserAndItsFile) {
    const FirefoxSubscription allowed = subscription("https://example.com");
    EXPECT_EQ(allowed.sourceURL(), URL::parse("https://example.com"));
    EXPECT_EQ(allowed.browser(), Browser::firefox);
    EXPECT_EQ(allowed.permissionFile(), "/profile/permissions.sqlite");
    EXPECT_EQ(allowed.store(), "/profile/permissions.sqlite");
}

TEST(FirefoxSubscription, blockingChangesNothing) {
    const FirefoxSubscription allowed = subscription("https://example.com");
    allowed.blockNotifications();
    allowed.blockNotifications();
    EXPECT_EQ(allowed, subscription("https://example.com"));
}

TEST(FirefoxSubscription, isEqualWhereAllThreeFieldsAre) {
    const FirefoxSubscription one = subscription("https://example.com");
    EXPECT_TRUE(one == subscription("https://example.com"));
    EXPECT_FALSE(one == subscription("https://example.org"));
    EXPECT_FALSE(one == FirefoxSubscription(one.sourceURL(), Browser::brave, one.store()));
    EXPECT_FALSE(one == FirefoxSubscription(one.sourceURL(), Browser::firefox, "/other"));
}

}  // namespace
}  // namespace browsersweep
