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

}  // namespace
}  // namespace browsersweep
