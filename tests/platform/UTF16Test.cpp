#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/platform/UTF16.h"

namespace browsersweep {
namespace {

using namespace std::string_view_literals;

TEST(UTF16, utf8IsWellFormedOrNot) {
    struct Row {
        std::string_view bytes;
        bool expected;
    };
    // clang-format off
    const std::vector<Row> rows{
        {"", true},
        {"plain", true},
        {"\0zero"sv, true},
        {"caf\xC3\xA9", true},
        {"\xE2\x82\xAC", true},
        {"\xF0\x9F\x98\x80", true},
        {"\xF4\x8F\xBF\xBF", true},          // U+10FFFF, the last one
        {"\xED\x9F\xBF\xEE\x80\x80", true},  // on both sides of the surrogates
        {"\xEF\xBB\xBF[General]", true},     // a byte order mark is a character
        {"caf\xE9", false},                  // Latin-1
        {"\xFF\xFE[\0"sv, false},            // UTF-16
        {"\x80", false},
        {"\xC3", false},
        {"\xE2\x82", false},
        {"\xF0\x9F\x98", false},
        {"\xC0\xAF", false},                 // overlong
        {"\xC1\xBF", false},
        {"\xE0\x9F\xBF", false},
        {"\xF0\x8F\xBF\xBF", false},
        {"\xED\xA0\x80", false},             // a surrogate
        {"\xF4\x90\x80\x80", false},         // above U+10FFFF
        {"\xF5\x80\x80\x80", false},
        {"\xC3\x28", false},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.bytes));
        EXPECT_EQ(isUTF8(row.bytes), row.expected);
    }
}

}  // namespace
}  // namespace browsersweep
