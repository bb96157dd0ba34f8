#include <gtest/gtest.h>

#include "cli/TextReport.h"

namespace browsersweep::cli {
namespace {

const Appearance plainASCII{};

TEST(TextReport, profilesAreShownWithTheirFoldersAndWithoutANameAsSuch) {
    ProfilesReport report;
    report.browsers.push_back(
        {Browser::opera, {}, {{{}, true, "Default"}, {"Work", false, "Profile 1", true}}});
    EXPECT_EQ(peopleText(report, plainASCII),
              "Browser  Profile    Folder     Primary\n"
              "Opera    (no name)  Default    yes\n"
              "Opera    Work       Profile 1\n");
}

TEST(TextReport, aPathThatIsTooLongIsCutAtItsFront) {
    NotificationsReport report;
    BrowserNotifications row{};
    row.browser = Browser::opera;
    row.profiles = {{{"Work", true, {}, false}, {}, {{"https://a.com", "/home/u/Preferences"}}}};
    report.browsers = {row};
    auto appearance = plainASCII;
    appearance.columns = 46;
    EXPECT_EQ(peopleText(report, appearance),
              "Browser  Profile  Site           Stored in\n"
              "Opera    Work     https://a.com  ..Preferences\n");
}

}  // namespace
}  // namespace browsersweep::cli
