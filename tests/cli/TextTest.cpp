#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

TEST(Text, onlyTheShortestFormOfAScalarValueIsWellFormed) {
    for (const std::string text : {"", "a", "é", "日本", "😀", "\x7F", "\xF4\x8F\xBF\xBF"}) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(isWellFormed(text));
    }
    for (const std::string text : {"\x80", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xC3",
                                   "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xC3("}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(isWellFormed(text));
    }
}

TEST(Text, whatIsNoTextOrMovesTheCursorBecomesAReplacementCharacter) {
    EXPECT_EQ(printable("Zoë 日本 😀"), "Zoë 日本 😀");
    EXPECT_EQ(printable("a\nb\x1B[2J\x7F"), "a�b�[2J�");
    EXPECT_EQ(printable("a\xFF\xC3(b"), "a��(b");
    EXPECT_EQ(printable("a\u0085\u2028\u202Eb"), "a���b");
    EXPECT_EQ(printable("a\u061C\u200E\u200F\u2069b"), "a����b");
}

TEST(Text, aDocumentHoldsNoCharacterThatActsOnATerminal) {
    EXPECT_EQ(escapedDocument("{\n \"a\": \"Zoë 日本 😀 \\n\"\n}\n"),
              "{\n \"a\": \"Zoë 日本 😀 \\n\"\n}\n");
    EXPECT_EQ(escapedDocument("\"\x7F\u0080\u009F\u00A0\""), "\"\\u007f\\u0080\\u009f\u00A0\"");
    EXPECT_EQ(escapedDocument("\u061C\u200E\u200F\u2028\u202E\u2066\u2069"),
              "\\u061c\\u200e\\u200f\\u2028\\u202e\\u2066\\u2069");
    EXPECT_EQ(escapedDocument("\u200B\u202F\u2065\u206A"), "\u200B\u202F\u2065\u206A");
}

TEST(Text, outsideUTF8EveryVisibleCharacterThatIsNotASCIIIsAQuestionMark) {
    EXPECT_EQ(asciiOf("Zoë e\u0301 日本 😀 a\u200Bb"), "Zo? e ?? ? ab");
    EXPECT_EQ(asciiOf("a\xFFz"), "a?z");
}

TEST(Text, wideCharactersTakeTwoColumnsAndAccentsNone) {
    struct Row {
        std::string text;
        std::size_t width;
    };
    const std::vector<Row> rows = {{"", 0},           {"abc", 3},    {"é", 1},       {"e\u0301", 1},
                                   {"日本", 4},       {"한글", 4},   {"ｱ", 1},       {"Ａ", 2},
                                   {"\U0001F600", 2}, {"\u200B", 0}, {"א\u05B0", 1}, {"�", 1},
                                   {"❤", 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(displayWidth(row.text), row.width);
    }
}

TEST(Text, isShortenedToWhatFitsWithASign) {
    EXPECT_EQ(shortened("abcdef", 6, CharacterSet::utf8), "abcdef");
    EXPECT_EQ(shortened("abcdef", 5, CharacterSet::utf8), "abcd\u2026");
    EXPECT_EQ(shortened("abcdef", 5, CharacterSet::ascii), "abc..");
    EXPECT_EQ(shortened("日本語", 5, CharacterSet::utf8), "日本\u2026");
    EXPECT_EQ(shortened("日本語", 4, CharacterSet::utf8), "日\u2026");
}

TEST(Text, isShortenedInFrontToWhatFitsWithASign) {
    EXPECT_EQ(shortenedInFront("abcdef", 6, CharacterSet::utf8), "abcdef");
    EXPECT_EQ(shortenedInFront("abcdef", 5, CharacterSet::utf8), "\u2026cdef");
    EXPECT_EQ(shortenedInFront("abcdef", 5, CharacterSet::ascii), "..def");
    EXPECT_EQ(shortenedInFront("日本語", 4, CharacterSet::utf8), "\u2026語");
}

}  // namespace
}  // namespace browsersweep::cli
