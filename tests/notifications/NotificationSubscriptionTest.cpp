#include <filesystem>

#include <gtest/gtest.h>

#include "browsersweep/notifications/NotificationSubscription.h"

namespace browsersweep {
namespace {

/** A kind as a host may add it, with nothing but what every kind must have. */
class OwnSubscription : public NotificationSubscription {
public:
    const URL& sourceURL() const noexcept override { return site_; }
    Browser browser() const noexcept override { return Browser::opera; }
    void blockNotifications() const noexcept override {}

private:
    URL site_ = URL::parse("https://push.example.org").value();
};

TEST(NotificationSubscription, aKindThatComesFromNoFileHasAnEmptyStore) {
    EXPECT_EQ(std::filesystem::path(), OwnSubscription().store());
}

}  // namespace
}  // namespace browsersweep
