#include <string>

#include <gtest/gtest.h>

#include "browsersweep/hosting/internal/BrowserLocks.h"

namespace browsersweep {
namespace {

TEST(BrowserLocks, theLockOfAChromiumBasedBrowserNamesHostAndProcess) {
    const auto owner = chromiumLockOwner("my-host.local-1234");
    ASSERT_TRUE(owner);
    EXPECT_EQ(owner->host, "my-host.local");
    EXPECT_EQ(owner->process, 1234);
}

TEST(BrowserLocks, theLinkOfAFirefoxProfileNamesTheProcess) {
    for (const std::string target : {"127.0.1.1:+4321", "127.0.1.1:4321", "[::1]:4321"}) {
        SCOPED_TRACE(target);
        const auto owner = firefoxLockOwner(target);
        ASSERT_TRUE(owner);
        EXPECT_EQ(owner->process, 4321);
    }
}

TEST(BrowserLocks, anythingElseNamesNobody) {
    for (const std::string target :
         {"", "host", "host-", "host-x", "host-1x", "host-0", "host--"}) {
        SCOPED_TRACE(target);
        EXPECT_FALSE(chromiumLockOwner(target));
    }
    for (const std::string target :
         {"", "host", "host:", "host:+", "host:x", "host:-5", "host:0"}) {
        SCOPED_TRACE(target);
        EXPECT_FALSE(firefoxLockOwner(target));
    }
}

}  // namespace
}  // namespace browsersweep
