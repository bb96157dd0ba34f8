#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/UsageError.h"
#include "cli/sites/SiteNames.h"

namespace browsersweep::cli {
namespace {

using Texts = std::vector<std::string>;

TEST(SiteNames, areHostsAndAddresses) {
    for (const std::string text :
         {"example.com", "https://www.example.com/a", "localhost", "::1"}) {
        EXPECT_EQ(faultOfSite(text), "") << text;
    }
    for (const std::string text : {"", "a b", "*.example.com", "example.com/a", "\xFF.com"}) {
        EXPECT_NE(faultOfSite(text), "") << text;
    }
}

TEST(SiteNames, saysWhatATextStandsFor) {
    EXPECT_EQ(remarkOn("example.com"), "");
    EXPECT_EQ(remarkOn("Example.COM"), "");
    EXPECT_EQ(remarkOn("www.example.com"), "www.example.com means all of example.com");
    EXPECT_EQ(remarkOn("münchen.de"), "münchen.de means all of xn--mnchen-3ya.de");
}

TEST(SiteNames, suggestsASiteThatWasFoundForOneThatWasNot) {
    const auto found = sitesNamed({"example.com", "other.org"});
    EXPECT_EQ(remarkOnMissing(*Site::ofHost("exmaple.com"), found),
              "nothing of exmaple.com was found; did you mean example.com?");
    EXPECT_EQ(remarkOnMissing(*Site::ofHost("elsewhere.net"), found),
              "nothing of elsewhere.net was found");
    EXPECT_EQ(remarkOnMissing(*Site::ofHost("elsewhere.net"), {}),
              "nothing of elsewhere.net was found");
}

TEST(SiteNames, areReadFromAListLineByLine) {
    EXPECT_EQ(sitesInList("\xEF\xBB\xBF# mine\n example.com \r\n\nwww.other.org # shop", "list"),
              (Texts{"example.com", "www.other.org"}));
    EXPECT_EQ(sitesInList("", "list"), Texts());
}

TEST(SiteNames, aBadLineIsRefusedWithItsNumber) {
    try {
        sitesInList("example.com\n\na b\n", "list");
        FAIL();
    } catch (const UsageError& error) {
        EXPECT_STREQ(error.what(),
                     "list, line 3: 'a b' is not a site; write a name such as example.com");
    }
}

}  // namespace
}  // namespace browsersweep::cli
