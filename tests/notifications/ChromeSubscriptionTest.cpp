#include <gtest/gtest.h>

#include "browsersweep/notifications/ChromeSubscription.h"

namespace browsersweep {
namespace {

TEST(ChromeSubscription, holdsItsFieldsAndBlockingChangesNothing) {
    const ChromeSubscription subscription(*URL::parse("https://a.test"), Browser::brave,
                                          "/home/Preferences");
    const ChromeSubscription before = subscription;
    subscription.blockNotifications();
    subscription.blockNotifications();
    EXPECT_EQ(subscription, before);
    EXPECT_EQ(subscription.sourceURL().absoluteString(), "https://a.test");
    EXPECT_EQ(subscription.browser(), Browser::brave);
    EXPECT_EQ(subscription.profile(), "/home/Preferences");
    EXPECT_EQ(subscription.store(), "/home/Preferences");
}

TEST(ChromeSubscription, isEqualWhereAllThreeFieldsAre) {
    const URL site = *URL::parse("https://a.test");
    const ChromeSubscription one(site, Browser::brave, "/home/Preferences");
    EXPECT_TRUE(one == ChromeSubscription(site, Browser::brave, "/home/Preferences"));
    EXPECT_FALSE(one == ChromeSubscription(*URL::parse("https://b.test"), Browser::brave,
                                           "/home/Preferences"));
    EXPECT_FALSE(one == ChromeSubscription(site, Browser::opera, "/home/Preferences"));
    EXPECT_FALSE(one == ChromeSubscription(site, Browser::brave, "/other/Preferences"));
}

}  // namespace
}  // namespace browsersweep
