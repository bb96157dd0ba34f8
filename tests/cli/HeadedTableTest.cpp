#include <string>

#include <gtest/gtest.h>

#include "cli/HeadedTable.h"

namespace browsersweep::cli {
namespace {

Appearance ofColumns(std::size_t columns) {
    Appearance appearance;
    appearance.columns = columns;
    return appearance;
}

HeadedTable table(std::size_t placeIndex) {
    return {{{"Kind"}, {"Items", Alignment::right}}, placeIndex};
}

TEST(HeadedTable, hasColumnsOfSitesAndPlacesWhereTheyFit) {
    auto sites = table(1);
    sites.addRow({"a.com", "Chromium, Work", {"History", "2"}});
    sites.addRow({"b.org", "Safari", {"Cookies", "10"}});
    sites.addTotal({"12"});
    const std::string whole =
        "Site   Kind     Where           Items\n"
        "a.com  History  Chromium, Work      2\n"
        "b.org  Cookies  Safari             10\n"
        "Total                              12\n";
    EXPECT_EQ(sites.text({}), whole);
    EXPECT_EQ(sites.text(ofColumns(37)), whole);
}

TEST(HeadedTable, hasThemAsHeadingsWhereTheyDoNot) {
    auto sites = table(1);
    sites.addRow({"a.com", "Chromium, Work", {"History", "2"}});
    sites.addRow({"a.com", "Chromium, Work", {"Icons", "1"}});
    sites.addRow({"b.org", "Chromium, Work", {"Cookies", "10"}});
    sites.addTotal({"13"});
    EXPECT_EQ(sites.text(ofColumns(36)),
              "Kind       Items\n"
              "a.com: Chromium, Work\n"
              "  History      2\n"
              "  Icons        1\n"
              "b.org: Chromium, Work\n"
              "  Cookies     10\n"
              "Total         13\n");
}

TEST(HeadedTable, namesTheOnlySiteOnceWhereItsColumnDoesNotFit) {
    auto one = table(1);
    one.addRow({"a.com", "Chromium, Work", {"History", "2"}});
    one.addRow({"a.com", "Safari", {"History", "1"}});
    EXPECT_EQ(one.text(ofColumns(36)),
              "Kind     Where           Items\n"
              "a.com\n"
              "History  Chromium, Work      2\n"
              "History  Safari              1\n");
    EXPECT_EQ(one.text(ofColumns(29)),
              "Kind       Items\n"
              "a.com\n"
              "Chromium, Work\n"
              "  History      2\n"
              "Safari\n"
              "  History      1\n");
}

TEST(HeadedTable, breaksAHeadingThatIsTooLong) {
    auto narrow = table(0);
    narrow.addRow({"", "Quenby Secure Browser, Personal", {"History", "2"}});
    EXPECT_EQ(narrow.text(ofColumns(20)),
              "Kind       Items\n"
              "Quenby Secure\n"
              "  Browser, Personal\n"
              "  History      2\n");
}

TEST(HeadedTable, mayHavePlacesFirstAndNoSites) {
    auto places = table(0);
    places.addRow({"", "Safari", {"History", "2"}});
    places.addTotal({"2"});
    EXPECT_EQ(places.text({}),
              "Where   Kind     Items\n"
              "Safari  History      2\n"
              "Total                2\n");
    EXPECT_EQ(table(0).text(ofColumns(12)), "Kind  Items\n");
}

}  // namespace
}  // namespace browsersweep::cli
