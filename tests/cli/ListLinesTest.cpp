#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "cli/ListLines.h"

namespace browsersweep::cli {
namespace {

using Lines = std::vector<ListLine>;

TEST(ListLines, areThoseThatHoldMoreThanBlanksAndAComment) {
    EXPECT_EQ(listLines("# mine\n\n \t a b\t# c\n#\nlast"), (Lines{{3, "a b"}, {5, "last"}}));
    EXPECT_EQ(listLines(""), Lines());
    EXPECT_EQ(listLines("\n\n"), Lines());
}

TEST(ListLines, endAsOnAnySystem) {
    const Lines expected{{2, "a"}, {4, "b"}};
    for (const std::string_view text : {"# x\na\n\nb\n", "# x\r\na\r\n\r\nb\r\n", "# x\ra\r\rb"}) {
        EXPECT_EQ(listLines(text), expected);
    }
}

TEST(ListLines, beginBehindAByteOrderMark) {
    EXPECT_EQ(listLines("\xEF\xBB\xBF"
                        "a\n"),
              (Lines{{1, "a"}}));
}

TEST(ListLines, keepTheLastByteOfALetterThatAByteOrderMarkHasToo) {
    EXPECT_EQ(listLines("\u043F"), (Lines{{1, "\u043F"}}));
}

}  // namespace
}  // namespace browsersweep::cli
