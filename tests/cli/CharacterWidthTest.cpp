#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "cli/CharacterWidth.h"

namespace browsersweep::cli {
namespace {

TEST(CharacterWidth, wideCharactersTakeTwoColumnsAndAccentsNone) {
    struct Row {
        char32_t codePoint;
        std::size_t width;
    };
    const std::vector<Row> rows = {
        {U'a', 1},      {U'~', 1},      {U'\u00A0', 1}, {U'é', 1},          {U'\u0301', 0},
        {U'א', 1},      {U'\u05B0', 0}, {U'\u200B', 0}, {U'—', 1},          {U'❤', 1},
        {U'日', 2},     {U'한', 2},     {U'ｱ', 1},      {U'Ａ', 2},         {U'\U0001F600', 2},
        {U'\uFFFD', 1}, {U'\uE000', 1}, {U'\u3099', 0}, {U'\U00020000', 2}, {U'\U000E0100', 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(static_cast<unsigned>(row.codePoint));
        EXPECT_EQ(characterWidth(row.codePoint), row.width);
    }
}

}  // namespace
}  // namespace browsersweep::cli
