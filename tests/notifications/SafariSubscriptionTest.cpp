#include <gtest/gtest.h>

#include "browsersweep/notifications/SafariSubscription.h"

namespace browsersweep {
namespace {

TEST(SafariSubscription, itKeepsItsFieldsAndBlockingChangesNothing) {
    const URL site = URL::parse("https://push.example.org").value();
    const SafariSubscription subscription(site, Browser::safari, "/h/Permissions.plist");
    const SafariSubscription copy = subscription;
    subscription.blockNotifications();
    subscription.blockNotifications();
    EXPECT_EQ(copy, subscription);
    EXPECT_EQ(site, subscription.sourceURL());
    EXPECT_EQ(Browser::safari, subscription.browser());
    EXPECT_EQ("/h/Permissions.plist", subscription.permissionsFile());
    EXPECT_EQ("/h/Permissions.plist", subscription.store());
}

TEST(SafariSubscription, subscriptionsDifferInAnyField) {
    const URL site = URL::parse("https://push.example.org").value();
    const SafariSubscription subscription(site, Browser::safari, "/a");
    EXPECT_FALSE(subscription == SafariSubscription(URL::parse("https://b.example").value(),
                                                    Browser::safari, "/a"));
    EXPECT_FALSE(subscription == SafariSubscription(site, Browser::firefox, "/a"));
    EXPECT_FALSE(subscription == SafariSubscription(site, Browser::safari, "/b"));
}

}  // namespace
}  // namespace browsersweep
