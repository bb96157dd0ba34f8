#include <gtest/gtest.h>

#include "browsersweep/platform/HTTPCookieStorage.h"

namespace browsersweep {

TEST(HTTPCookieStorage, isOneForEachIdentifier) {
    EXPECT_EQ(HTTPCookieStorage::shared("one"), HTTPCookieStorage::shared("one"));
    EXPECT_NE(HTTPCookieStorage::shared("one"), HTTPCookieStorage::shared("two"));
}

TEST(HTTPCookieStorage, holdsEachCookieOnce) {
    const auto storage = HTTPCookieStorage::shared("holdsEachCookieOnce");
    const HTTPCookie a{"example.org", "a", "/"};
    const HTTPCookie b{"example.org", "b", "/"};
    storage->setCookie(a);
    storage->setCookie(b);
    storage->setCookie(a);
    EXPECT_EQ(storage->cookies(), (std::vector{b, a}));
    storage->deleteCookie(b);
    storage->deleteCookie(b);
    EXPECT_EQ(storage->cookies(), std::vector{a});
}

}  // namespace browsersweep
