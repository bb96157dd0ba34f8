#include <set>

#include <gtest/gtest.h>

#include "browsersweep/sites/internal/SiteMatcher.h"

namespace browsersweep {
namespace {

const std::set<Site> exampleAlone{*Site::ofHost("example.com")};

TEST(SiteMatcher, asksAboutEachHostOfATextByWholeLabels) {
    SiteMatcher matcher(SiteSelection::only(exampleAlone));
    EXPECT_TRUE(matcher.selects(SiteForm::address, "https://www.example.com/"));
    EXPECT_TRUE(matcher.selects(SiteForm::storageKey, "https://a.org/^0https://example.com"));
    EXPECT_FALSE(matcher.selects(SiteForm::address, "https://notexample.com/example.com"));
    EXPECT_FALSE(matcher.selects(SiteForm::address, "chrome-extension://example.com/"));
}

TEST(SiteMatcher, keepsWhatBelongsToAKeptSiteAmongOthers) {
    SiteMatcher matcher(SiteSelection::allBut(exampleAlone));
    EXPECT_FALSE(matcher.selects(SiteForm::storageKey, "https://a.org/^0https://example.com"));
    EXPECT_TRUE(matcher.selects(SiteForm::storageKey, "https://a.org/"));
    EXPECT_TRUE(matcher.selects(SiteForm::host, ""));
}

TEST(SiteMatcher, agreesWithTheSelectionHoweverOftenItIsAsked) {
    SiteMatcher everything(SiteSelection::everything());
    SiteMatcher one(SiteSelection::only(exampleAlone));
    for (int time = 0; time < 3; ++time) {
        EXPECT_TRUE(everything.selects(SiteForm::host, "a.org"));
        EXPECT_FALSE(one.selects(SiteForm::host, "a.org"));
        EXPECT_TRUE(one.selects(SiteForm::host, "b.example.com"));
    }
}

}  // namespace
}  // namespace browsersweep
