#include <gtest/gtest.h>

#include "cli/Table.h"

namespace browsersweep::cli {
namespace {

TEST(Table, columnsAreAlignedWhateverTheWidthOfTheCharacters) {
    Table table({{"Name"}, {"Size", Alignment::right}, {"End"}});
    table.addRow({"日本語", "1", "x"});
    table.addRow({"e\u0301", "12345", ""});
    EXPECT_EQ(table.text(),
              "Name     Size  End\n"
              "日本語      1  x\n"
              "e\u0301       12345\n");
}

TEST(Table, aCellStaysOnItsLine) {
    Table table({{"A"}, {"B"}});
    table.addRow({"a\nb", "\x1B[0m"});
    EXPECT_EQ(table.text(), "A    B\na�b  �[0m\n");
}

}  // namespace
}  // namespace browsersweep::cli
