#include <string>

#include <gtest/gtest.h>

#include "cli/Table.h"

namespace browsersweep::cli {
namespace {

TEST(Table, columnsAreAlignedWhateverTheWidthOfTheCharacters) {
    Table table({{"Name"}, {"Size", Alignment::right}, {"End"}});
    table.addRow({"日本語", "1", "x"});
    table.addRow({"e\u0301", "12345", ""});
    EXPECT_EQ(table.text({}),
              "Name     Size  End\n"
              "日本語      1  x\n"
              "e\u0301       12345\n");
}

TEST(Table, stylesTakeNoRoom) {
    Table table({{"A"}, {"B", Alignment::right}});
    table.addRow({{"long", Style::strong}, {"1", Style::failure}});
    table.addRow({"x", "22"}, {1, 20});
    EXPECT_EQ(table.text({true, CharacterSet::utf8, CharacterSet::utf8}),
              "\x1b[2mA\x1b[0m      \x1b[2mB\x1b[0m\n"
              "\x1b[1mlong\x1b[0m   \x1b[31m1\x1b[0m\n"
              "x     22  \x1b[36m█\x1b[0m\n");
}

TEST(Table, whereTheTerminalCannotShowACharacterAQuestionMarkKeepsTheColumnsAligned) {
    Table table({{"Name"}, {"End"}});
    table.addRow({"日本語", "x"});
    table.addRow({"Zoe\u0301", "y"});
    EXPECT_EQ(table.text({false, CharacterSet::ascii, CharacterSet::ascii}),
              "Name  End\n"
              "???   x\n"
              "Zoe   y\n");
}

TEST(Table, aVeryLongCellIsWholeAndWidensNoOtherRow) {
    const std::string title(1'000'000, 'x');
    Table table({{"A"}, {"B"}});
    table.addRow({title, "1"});
    table.addRow({"a", "2"});
    const std::string rest(200 - 1, ' ');
    EXPECT_EQ(table.text({}), "A" + rest + "  B\n" + title + "  1\na" + rest + "  2\n");
}

TEST(Table, aCellStaysOnItsLine) {
    Table table({{"A"}, {"B"}});
    table.addRow({"a\nb", "\x1B[0m"});
    EXPECT_EQ(table.text({}), "A    B\na�b  �[0m\n");
}

/** A table whose columns may be narrowed or left out, for so many columns of a terminal. */
std::string fitted(std::size_t columns) {
    Table table({{"Site", Alignment::left, 6},
                 {"Browsers", Alignment::left, 4, 2},
                 {"Items", Alignment::right, 0, 1},
                 {"Size", Alignment::right}});
    table.addRow({"a-long-name.example", "Chromium", "12", "1.0 KB"});
    table.addRow({"b.org", "Firefox", "3", "2.0 KB"});
    Appearance appearance;
    appearance.columns = columns;
    return table.text(appearance);
}

TEST(Table, staysAsItIsWhereItFits) {
    EXPECT_EQ(fitted(0), fitted(44));
    EXPECT_EQ(fitted(44),
              "Site                 Browsers  Items    Size\n"
              "a-long-name.example  Chromium     12  1.0 KB\n"
              "b.org                Firefox       3  2.0 KB\n");
}

TEST(Table, cutsTheWidestOfTheCellsThatMayBeCut) {
    EXPECT_EQ(fitted(36),
              "Site         Browsers  Items    Size\n"
              "a-long-na..  Chromium     12  1.0 KB\n"
              "b.org        Firefox       3  2.0 KB\n");
}

TEST(Table, leavesOutColumnsWhereCuttingIsNotEnough) {
    EXPECT_EQ(fitted(26),
              "Site         Items    Size\n"
              "a-long-na..     12  1.0 KB\n"
              "b.org            3  2.0 KB\n");
    EXPECT_EQ(fitted(14),
              "Site      Size\n"
              "a-lo..  1.0 KB\n"
              "b.org   2.0 KB\n");
}

/** A table with bars, for so many columns of a terminal. */
std::string barred(std::size_t columns) {
    Table table({{"Browser", Alignment::left, 4}, {"Size", Alignment::right}});
    table.addRow({"Chromium", "9 B"}, {9, 9});
    table.addRow({"Opera", "3 B"}, {3, 9});
    table.addRow({"Total", "12 B"});
    Appearance appearance;
    appearance.columns = columns;
    return table.text(appearance);
}

TEST(Table, barsTakeTheRoomThatIsLeft) {
    EXPECT_EQ(barred(0),
              "Browser   Size\n"
              "Chromium   9 B  ####################\n"
              "Opera      3 B  #######\n"
              "Total     12 B\n");
    EXPECT_EQ(barred(25),
              "Browser   Size\n"
              "Chromium   9 B  #########\n"
              "Opera      3 B  ###\n"
              "Total     12 B\n");
}

TEST(Table, barsAreNotLongerThanTheEyeCompares) {
    EXPECT_EQ(barred(76), barred(200));
    EXPECT_NE(barred(75), barred(76));
}

TEST(Table, namesMakeRoomForBars) {
    EXPECT_EQ(barred(19),
              "Brow..  Size\n"
              "Chro..   9 B  #####\n"
              "Opera    3 B  ##\n"
              "Total   12 B\n");
}

TEST(Table, leavesOutBarsWhereNoRoomCanBeMadeForThem) {
    EXPECT_EQ(barred(16),
              "Browser   Size\n"
              "Chromium   9 B\n"
              "Opera      3 B\n"
              "Total     12 B\n");
}

TEST(Table, isWiderThanTheTerminalWhereNothingMoreMayBeTaken) {
    EXPECT_EQ(fitted(5), fitted(14));
}

}  // namespace
}  // namespace browsersweep::cli
