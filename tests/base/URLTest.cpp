#include <gtest/gtest.h>

#include "browsersweep/base/URL.h"

namespace browsersweep {
namespace {

TEST(URL, textsThatParseAreKeptAsTheyWere) {
    for (const std::string_view text :
         {"example.com", "*", "[*.]example.com", "about:blank",
          "http:", "https://push.example.test", "http://x/%C3%A9", "http://x/a#b", "#", "a", "//",
          "http://[::1]:80/?q=1&r=2;s", "HTTP://USER:pw@Host/~a/(b)!$'*+,=_-."}) {
        SCOPED_TRACE(text);
        const auto url = URL::parse(text);
        ASSERT_TRUE(url.has_value());
        EXPECT_EQ(url->absoluteString(), text);
    }
}

TEST(URL, textsThatDoNotParseGiveNothing) {
    using namespace std::string_view_literals;
    for (const std::string_view text :
         {""sv, "http://ex ample.com"sv, "http://m\u00fcnchen.de/"sv, "http://x/%zz"sv, "a#b#c"sv,
          "javascript:(function(){alert(\"x\")})()"sv, "%"sv, "%4"sv, "a%4"sv, "a\0b"sv, "a\tb"sv,
          "a|b"sv, "a^b"sv, "a`b"sv, "a\\b"sv, "<a>"sv, "{a}"sv, "\x7f"sv,
          "https://push.example.test^userContextId=2"sv}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(URL::parse(text), std::nullopt);
    }
}

}  // namespace
}  // namespace browsersweep
