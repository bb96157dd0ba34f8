#include <string>

#include <gtest/gtest.h>

#include "cli/SiteText.h"

namespace browsersweep::cli {
namespace {

constexpr KindName history{"history", "History"};
constexpr KindName tabs{"openTabs", "Open tabs"};

SiteOwner chromium() {
    return {Browser::chromium, "Work", "Profile 1"};
}

SiteRow site(const std::string& name, std::int64_t items) {
    SiteRow row{name, {items, 1000 * items}, dateFrom1970Seconds(1709209800), {}, 0};
    row.traces.push_back({chromium(), history, {name}, row.size, row.lastUsed, 0});
    row.traces.push_back({{Browser::firefox, {}, "x.default"}, history, {name}, {}, {}, 0});
    return row;
}

TEST(SiteText, isATableOfSites) {
    SiteListReport report;
    report.sites = {site("a.com", 12), site("b.org", 3)};
    report.sites[1].lastUsed.reset();
    report.notBySite = {{chromium(), tabs, "Sessions", {{1}, {50, true}}, "tabs", 0}};
    EXPECT_EQ(peopleText(report, {}),
              "Site   Browsers           Items     Size  Last use\n"
              "a.com  Chromium, Firefox     12  12.0 KB  2024-02-29\n"
              "b.org  Chromium, Firefox      3   3.0 KB\n"
              "\n"
              "Of no single site  Where           Items   Size\n"
              "Open tabs          Chromium, Work      1  ~50 B\n"
              "2 sites\n"
              "~ approximate: files are shared by sites, or counted in part\n");
    EXPECT_EQ(peopleText(SiteListReport{}, {}), "No traces of sites were found.\n");
}

TEST(SiteText, fitsATerminalOfFortyColumns) {
    SiteListReport report;
    report.sites = {site("a-site-with-quite-a-long-name.example.com", 12)};
    Appearance appearance;
    appearance.columns = 40;
    EXPECT_EQ(peopleText(report, appearance),
              "Site          Items     Size  Last use\n"
              "a-site-wit..     12  12.0 KB  2024-02-29\n");
}

TEST(SiteText, tellsWhatWouldGoAndWhatStays) {
    ForgetReport report;
    report.isPlan = true;
    report.forgotten = {site("a.com", 2)};
    report.forgotten[0].traces.pop_back();
    report.total = {2, 2000};
    report.kept = {
        {chromium(), tabs, "/p/Sessions", "other tabs would close"},
        {chromium(), history, "/p/History", "no key"},
        {{Browser::chromium, "Home", "Default"}, tabs, "/d/Sessions", "other tabs would close"}};
    report.hints = {"--mixed takes them."};
    EXPECT_EQ(peopleText(report, {}),
              "Site   Kind     Where           Items  To be removed\n"
              "a.com  History  Chromium, Work      2         2.0 KB\n"
              "Total                               2         2.0 KB\n"
              "Stays:\n"
              "  Open tabs: other tabs would close\n"
              "      Chromium, Work: /p/Sessions\n"
              "      Chromium, Home: /d/Sessions\n"
              "  History: no key\n"
              "      Chromium, Work: /p/History\n"
              "--mixed takes them.\n");
}

TEST(SiteText, aNarrowTerminalTellsWhoseTracesTheyAre) {
    ForgetReport report;
    report.isPlan = true;
    report.forgotten = {site("a.com", 2)};
    report.forgotten[0].traces.pop_back();
    report.total = {2, 2000};
    Appearance appearance;
    appearance.columns = 40;
    EXPECT_EQ(peopleText(report, appearance),
              "Kind       Items  To be removed\n"
              "a.com\n"
              "Chromium, Work\n"
              "  History      2         2.0 KB\n"
              "Total          2         2.0 KB\n");
    report.forgotten.push_back(site("b.com", 1));
    report.notBySite = {{chromium(), tabs, "Sessions", {1, 5}, "tabs", 0}};
    EXPECT_EQ(peopleText(report, appearance),
              "Kind         Items  To be removed\n"
              "a.com: Chromium, Work\n"
              "  History        2         2.0 KB\n"
              "b.com: Chromium, Work\n"
              "  History        1         1.0 KB\n"
              "b.com: Firefox, x.default\n"
              "  History        0            0 B\n"
              "(any site): Chromium, Work\n"
              "  Open tabs      1            5 B\n"
              "Total            2         2.0 KB\n");
}

TEST(SiteText, aNarrowTerminalTellsWhereDataOfNoSingleSiteIs) {
    SiteListReport report;
    report.notBySite = {{chromium(), tabs, "Sessions", {1, 5}, "tabs", 0}};
    Appearance appearance;
    appearance.columns = 40;
    EXPECT_EQ(peopleText(report, appearance),
              "No traces of sites were found.\n"
              "\n"
              "Of no single site  Items  Size\n"
              "Chromium, Work\n"
              "  Open tabs            1   5 B\n");
}

TEST(SiteText, onATerminalReasonsAreBrokenAndPathsCutAtTheirFront) {
    ForgetReport report;
    report.isPlan = true;
    report.kept = {
        {chromium(), tabs, "/Users/u/Library/Sessions", "all the other tabs would close"}};
    Appearance appearance;
    appearance.columns = 40;
    EXPECT_EQ(peopleText(report, appearance),
              "Nothing would be removed.\n"
              "Stays:\n"
              "  Open tabs: all the other tabs would\n"
              "    close\n"
              "      Chromium, Work: ..Library/Sessions\n");
    appearance.columns = 36;
    EXPECT_NE(peopleText(report, appearance)
                  .find("      Chromium, Work:\n        /Users/u/Library/Sessions\n"),
              std::string::npos);
    appearance.columns = 32;
    EXPECT_NE(peopleText(report, appearance)
                  .find("      Chromium, Work:\n        ..ers/u/Library/Sessions\n"),
              std::string::npos);
}

TEST(SiteText, aProfileWhoseNameIsSharedIsShownWithItsFolder) {
    auto owner = chromium();
    owner.isNameShared = true;
    EXPECT_EQ(displayName(owner), "Chromium, Work (Profile 1)");
}

TEST(SiteText, countsManySitesInPlaceOfNamingThem) {
    ForgetReport report;
    for (int i = 0; i < 21; ++i) {
        report.forgotten.push_back(site("a" + std::to_string(i) + ".com", 1));
        report.forgotten.back().traces.pop_back();
    }
    report.notBySite = {{chromium(), tabs, "Sessions", {1, 5}, "tabs", 0}};
    report.total = {22, 21005};
    report.freedBytes = 4096;
    EXPECT_EQ(peopleText(report, {}),
              "Where           Kind       Sites  Items  Removed\n"
              "Chromium, Work  History       21     21  21.0 KB\n"
              "Chromium, Work  Open tabs      0      1      5 B\n"
              "Total                         21     22  21.0 KB\n"
              "The disk gained 4.1 KB.\n");
    Appearance appearance;
    appearance.columns = 40;
    EXPECT_EQ(peopleText(report, appearance),
              "Kind         Sites  Items  Removed\n"
              "Chromium, Work\n"
              "  History       21     21  21.0 KB\n"
              "  Open tabs      0      1      5 B\n"
              "Total           21     22  21.0 KB\n"
              "The disk gained 4.1 KB.\n");
}

TEST(SiteText, saysWhereRemainsMayBeLeft) {
    ForgetReport report;
    report.stores = {{chromium(), "/p/History", ItemVerdict::emptied, {}, {}, 0, false}};
    EXPECT_EQ(
        peopleText(report, {}),
        "Nothing was removed.\n"
        "The disk had no room to rewrite these files, so they may still hold remains of what was "
        "removed:\n"
        "  Chromium, Work: /p/History\n");
}

}  // namespace
}  // namespace browsersweep::cli
