#include <string>

#include <gtest/gtest.h>

#include "browsersweep/profiles/safari/SafariNamedProfile.h"

#include "tests/support/SafariHome.h"

namespace browsersweep {
namespace {

constexpr const char* identifier = "0F1e2d3c-0000-4000-8000-0123456789ab";

TEST(SafariNamedProfile, hasAFolderInCapitalsAndOneInSmallLetters) {
    const tests::SafariHome home;
    const SafariNamedProfile profile("Work", identifier, home.home);
    EXPECT_EQ(profile.name(), "Work");
    EXPECT_EQ(profile.folder(), identifier);
    EXPECT_EQ(profile.sourceBrowser(), Browser::safari);
    EXPECT_FALSE(profile.isPrimary());
    EXPECT_EQ(profile.leftOutReason(), std::nullopt);
    EXPECT_EQ(
        profile.folders(),
        (ProfileFolders{
            home.library() / "Safari/Profiles/0F1E2D3C-0000-4000-8000-0123456789AB",
            home.container() / "WebKit/WebsiteDataStore/0f1e2d3c-0000-4000-8000-0123456789ab"}));
}

TEST(SafariNamedProfile, hasNothingThatIsCleaned) {
    const tests::SafariHome home;
    const SafariNamedProfile profile({}, identifier, home.home);
    EXPECT_TRUE(profile.cleanableData().lists().empty());
    EXPECT_TRUE(profile.bookmarks().empty());
    EXPECT_TRUE(profile.notificationSubscriptions().empty());
}

TEST(SafariNamedProfile, isLeftOutWhereItsIdentifierCouldLeadElsewhere) {
    const tests::SafariHome home;
    for (const std::string bad :
         {"", "..", "../../Documents", "0F1E2D3C-0000-4000-8000-0123456789A/",
          "0F1E2D3C-0000-4000-8000-0123456789AB/x", "0F1E2D3C00000-4000-8000-0123456789AB"}) {
        const SafariNamedProfile profile("x", bad, home.home);
        EXPECT_EQ(profile.leftOutReason(), "its identifier is not of the form of a UUID") << bad;
        EXPECT_EQ(profile.folders(), std::nullopt) << bad;
    }
}

}  // namespace
}  // namespace browsersweep
