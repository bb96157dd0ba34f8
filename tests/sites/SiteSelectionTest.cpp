#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sites/SiteSelection.h"

namespace browsersweep {
namespace {

const Site a = *Site::ofHost("a.com");
const Site b = *Site::ofHost("b.com");

TEST(SiteSelection, ofEverythingSelectsWhatBelongsToNoSite) {
    EXPECT_TRUE(SiteSelection::everything().selects(std::vector<Site>{}));
    EXPECT_TRUE(SiteSelection::everything().selects(a));
}

TEST(SiteSelection, ofOnlySomeIsMetByOneOfTwoSites) {
    const auto selection = SiteSelection::only({a});
    EXPECT_TRUE(selection.selects(a));
    EXPECT_TRUE(selection.selects(std::vector{b, a}));
    EXPECT_FALSE(selection.selects(b));
    EXPECT_FALSE(selection.selects(std::vector<Site>{}));
}

TEST(SiteSelection, ofAllButSomeIsHinderedByOneOfTwoSites) {
    const auto selection = SiteSelection::allBut({a});
    EXPECT_FALSE(selection.selects(a));
    EXPECT_FALSE(selection.selects(std::vector{b, a}));
    EXPECT_TRUE(selection.selects(b));
    EXPECT_TRUE(selection.selects(std::vector<Site>{}));
}

}  // namespace
}  // namespace browsersweep
