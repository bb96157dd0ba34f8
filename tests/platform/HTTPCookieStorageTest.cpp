#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/platform/HTTPCookieStorage.h"

#include "tests/support/AccountCookies.h"

namespace browsersweep {
namespace {

/** Two storages that the tests share with nobody, empty before and after. */
class HTTPCookieStorageTest : public testing::Test {
protected:
    static constexpr std::string_view first = "test.browsersweep.first";
    static constexpr std::string_view second = "test.browsersweep.second";

    void SetUp() override {
        if (!tests::mayUseAccountCookies()) {
            GTEST_SKIP() << tests::whyNoAccountCookies;
        }
        clear();
    }
    void TearDown() override {
        if (!IsSkipped()) {
            clear();
        }
    }

    static void clear() {
        for (const std::string_view identifier : {first, second}) {
            const auto storage = HTTPCookieStorage::shared(identifier);
            for (const HTTPCookie& cookie : storage->cookies()) {
                storage->deleteCookie(cookie);
            }
        }
    }

    /** What a storage holds, in an order of our own: storages promise none. */
    static std::vector<std::string> cookiesOf(std::string_view identifier) {
        std::vector<std::string> result;
        for (const HTTPCookie& cookie : HTTPCookieStorage::shared(identifier)->cookies()) {
            result.push_back(cookie.domain + " " + cookie.name + " " + cookie.path);
        }
        std::sort(result.begin(), result.end());
        return result;
    }

    using Lines = std::vector<std::string>;
};

TEST_F(HTTPCookieStorageTest, isOneForEachIdentifier) {
    HTTPCookieStorage::shared(first)->setCookie({"example.org", "a", "/"});
    EXPECT_EQ(cookiesOf(first), Lines{"example.org a /"});
    EXPECT_EQ(cookiesOf(second), Lines{});
}

TEST_F(HTTPCookieStorageTest, holdsOneCookieForEachDomainNameAndPath) {
    const auto storage = HTTPCookieStorage::shared(first);
    const HTTPCookie cookie{"example.org", "a", "/"};
    for (const HTTPCookie& other : std::vector<HTTPCookie>{cookie,
                                                           {"example.org", "b", "/"},
                                                           {"example.org", "a", "/path"},
                                                           {".example.org", "a", "/"},
                                                           {"sub.example.org", "a", "/"},
                                                           cookie}) {
        storage->setCookie(other);
    }
    EXPECT_EQ(cookiesOf(first), (Lines{".example.org a /", "example.org a /", "example.org a /path",
                                       "example.org b /", "sub.example.org a /"}));
}

TEST_F(HTTPCookieStorageTest, deletesTheOneCookieAndNoOther) {
    const auto storage = HTTPCookieStorage::shared(first);
    storage->setCookie({"example.org", "a", "/"});
    storage->setCookie({"example.org", "b", "/"});
    storage->setCookie({"example.com", "a", "/"});
    storage->deleteCookie({"example.org", "a", "/"});
    EXPECT_EQ(cookiesOf(first), (Lines{"example.com a /", "example.org b /"}));
}

TEST_F(HTTPCookieStorageTest, deletesEveryListedCookieAndOneThatCameSince) {
    const auto storage = HTTPCookieStorage::shared(first);
    for (int number = 0; number < 1000; ++number) {
        storage->setCookie({"example.org", std::to_string(number), "/"});
    }
    const auto listed = storage->cookies();
    EXPECT_EQ(listed.size(), 1000U);
    storage->setCookie({"example.com", "later", "/"});
    storage->setCookie({"example.com", "kept", "/"});
    storage->deleteCookie({"example.com", "later", "/"});
    for (const HTTPCookie& cookie : listed) {
        storage->deleteCookie(cookie);
    }
    EXPECT_EQ(cookiesOf(first), Lines{"example.com kept /"});
}

TEST_F(HTTPCookieStorageTest, deletingACookieThatIsNotThereIsNoError) {
    const auto storage = HTTPCookieStorage::shared(first);
    storage->setCookie({"example.org", "a", "/"});
    storage->deleteCookie({"example.org", "b", "/"});
    storage->deleteCookie({"example.org", "a", "/other"});
    storage->deleteCookie({"example.com", "a", "/"});
    EXPECT_EQ(cookiesOf(first), Lines{"example.org a /"});
}

}  // namespace
}  // namespace browsersweep
