#include <string_view>

#include <gtest/gtest.h>

#include "browsersweep/sites/internal/SiteText.h"

#include "tests/support/LevelRecords.h"

namespace browsersweep {
namespace {

using namespace std::string_literals;

bool named(std::string_view bytes) {
    return namesSite(bytes, *Site::ofHost("a.com"));
}

TEST(SiteText, aSiteIsNamedByWholeLabelsInAnyCaseAndInUTF16) {
    EXPECT_TRUE(named("a.com"));
    EXPECT_TRUE(named("https://www.A.Com/x"));
    EXPECT_TRUE(named("x a.com."));
    EXPECT_TRUE(named("ba.com a.com"));
    EXPECT_TRUE(named("\x01\0a\0.\0c\0o\0m\0/\0"s));
}

TEST(SiteText, anotherSiteWithTheSameLettersIsNotMeant) {
    for (const char* text : {"", "a", "ba.com", "a.community", "a.com.org", "x-a.com", "a.com-x"}) {
        EXPECT_FALSE(named(text)) << text;
    }
    EXPECT_TRUE(namesAny("b.com", {*Site::ofHost("a.com"), *Site::ofHost("b.com")}));
    EXPECT_FALSE(namesAny("c.com", {*Site::ofHost("a.com"), *Site::ofHost("b.com")}));
}

}  // namespace
}  // namespace browsersweep
