#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/platform/internal/Text.h"

namespace browsersweep {
namespace {

using Groups = std::optional<std::vector<std::string>>;

std::vector<std::string_view> lines(std::string_view text) {
    std::vector<std::string_view> taken;
    for (auto rest = std::optional(text); rest;) {
        taken.push_back(takeLine(rest));
    }
    return taken;
}

TEST(Text, linesEndAtEverySingleNewlineCharacter) {
    struct Row {
        std::string_view text;
        std::vector<std::string_view> expected;
    };
    // clang-format off
    const std::vector<Row> rows{
        {"", {""}},
        {"one", {"one"}},
        {"a\nb", {"a", "b"}},
        {"a\n", {"a", ""}},
        {"a\r\nb", {"a", "", "b"}},
        {"a\rb\vc\fd", {"a", "b", "c", "d"}},
        {"a\xC2\x85" "b", {"a", "b"}},        // NEL
        {"a\xE2\x80\xA8" "b", {"a", "b"}},    // line separator
        {"a\xE2\x80\xA9" "b", {"a", "b"}},    // paragraph separator
        {"a\x1C" "b\x1D" "c", {"a\x1C" "b\x1D" "c"}},
        {"a\xC2\xA0" "b", {"a\xC2\xA0" "b"}},           // a no-break space is no newline
        {"\xE2\x80\xA7", {"\xE2\x80\xA7"}},             // nor is the character before U+2028
        {"\n\n", {"", "", ""}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        EXPECT_EQ(lines(row.text), row.expected);
    }
}

TEST(Text, userPerceivedCharactersAreReversedWhole) {
    struct Row {
        std::string_view text;
        std::string_view expected;
    };
    // clang-format off
    const std::vector<Row> rows{
        {"", ""},
        {"a", "a"},
        {"example.com", "moc.elpmaxe"},
        {"caf\u00E9", "\u00E9fac"},
        {"cafe\u0301s", "se\u0301fac"},                    // the accent stays on its letter
        {"a\u0323\u0307b", "ba\u0323\u0307"},              // two marks on one letter
        {"a\u00DFb", "b\u00DFa"},
        {"a\U0001F600b", "b\U0001F600a"},
        {"x\U0001F468\u200D\U0001F469\u200D\U0001F467y",    // a family stays together
         "y\U0001F468\u200D\U0001F469\u200D\U0001F467x"},
        {"a\U0001F44D\U0001F3FDb", "b\U0001F44D\U0001F3FDa"},  // a skin tone
        {"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7",           // two flags
         "\U0001F1EB\U0001F1F7\U0001F1E9\U0001F1EA"},
        {"\u2764\uFE0Fb", "b\u2764\uFE0F"},                // a variation selector
        {"\u1112\u1161\u11ABa", "a\u1112\u1161\u11AB"},    // Hangul jamo of one syllable
        {"a\r\nb", "b\r\na"},
        {"a\n\rb", "b\r\na"},                             // here they are two
        // What macOS itself does not take for one character.
        {"a\u0E01\u0E33b", "b\u0E01\u0E33a"},             // Thai with its vowel sign AM
        {"a\u0E81\u0EB3b", "b\u0E81\u0EB3a"},             // Lao
        {"ab\u200Cc", "cb\u200Ca"},                       // the zero width non-joiner
        {"ab\u0301\u200C\u0301c", "cb\u0301\u200C\u0301a"},
        {"a\n\u200Cb", "b\u200C\na"},                     // nothing joins a control character
        {"a\u0600\u0661b", "b\u0600\u0661a"},             // an Arabic number sign and its number
        {"a\u0600\u0601\u0661b", "b\u0600\u0601\u0661a"},
        {"a\u0600\n", "\n\u0600a"},
        {"\u0E33", "\u0E33"},
        {"\u0600", "\u0600"},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(reversedCharacters(row.text), row.expected);
    }
}

struct ContainmentRow {
    std::string_view text;
    std::string_view pattern;
    bool expected;
};

/** Whether every row holds; the first that does not goes to standard error. */
bool holds(const std::vector<ContainmentRow>& rows) {
    for (const ContainmentRow& row : rows) {
        if (localizedCaseInsensitiveContains(row.text, row.pattern) != row.expected) {
            std::cerr << "\"" << row.text << "\" / \"" << row.pattern << "\": expected "
                      << row.expected << '\n';
            return false;
        }
    }
    return true;
}

TEST(Text, containmentIsCaseInsensitiveAndCanonical) {
    // clang-format off
    const std::vector<ContainmentRow> rows{
        {"", "", false},
        {"text", "", false},                           // an empty pattern is never found
        {"", "a", false},
        {".Example.COM", "example.com", true},
        {"example.com", "EXAMPLE", true},
        {"example.com", "example.org", false},
        {"example.com", "example.com.", false},
        {"aab", "ab", true},
        {"caf\u00E9", "CAF\u00C9", true},
        {"caf\u00E9", "cafe", false},                  // diacritics count
        {"cafe", "caf\u00E9", false},
        {"cafe\u0301", "caf\u00E9", true},             // canonically equal
        {"caf\u00E9", "cafe\u0301", true},
        {"cafe\u0301", "cafe", false},                 // a mark follows the hit
        {"cafe\u0301 cafe", "cafe", true},             // but not the second one
        {"stra\u00DFe", "STRASSE", true},              // full case folding
        {"STRASSE", "stra\u00DFe", true},
        {"\u03A3\u03AF\u03C3\u03C5\u03C6\u03BF\u03C2", "\u03C3\u03AF\u03C3\u03C5\u03C6\u03BF\u03C3",
         true},                                        // final sigma
        {"\u212B", "\u00E5", true},                    // the angstrom sign is a letter
        {"m\u00FCnchen.de", "M\u00DCNCHEN", true},
    };
    // clang-format on
    EXPECT_TRUE(holds(rows));
}

/** Runs the rows in a process of its own: the locale is settled when a process first asks. */
void expectUnderLocale(const char* locale, const std::vector<ContainmentRow>& rows) {
#ifdef __APPLE__
    GTEST_SKIP() << "the locale is that of the user's settings, whatever LANG says: " << locale;
#endif
    SCOPED_TRACE(locale);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const char* name : {"LANG", "LC_ALL", "LC_MESSAGES", "LANGUAGE", "LANGUAGES"}) {
        ASSERT_EQ(unsetenv(name), 0);
    }
    ASSERT_EQ(setenv("LANG", locale, 1), 0);
    EXPECT_EXIT(std::exit(holds(rows) ? EXIT_SUCCESS : EXIT_FAILURE),
                testing::ExitedWithCode(EXIT_SUCCESS), "");
}

/** With the two letters that ASCII has, a dotless small one and a dotted capital one. */
std::vector<ContainmentRow> rowsOfTheLetterI(bool turkic) {
    // clang-format off
    return {
        {"TITLE.COM", "title.com", !turkic},
        {"title.com", "TITLE.COM", !turkic},
        {"TITLE", "t\u0131tle", turkic},
        {"t\u0131tle", "TITLE", turkic},
        {"T\u0130TLE", "t\u0130tle", true},
        {"WWW", "www", true},
    };
    // clang-format on
}

TEST(Text, containmentFoldsTheLetterIAsEnglishDoes) {
    expectUnderLocale("en_US.UTF-8", rowsOfTheLetterI(false));
}

TEST(Text, containmentFoldsTheLetterIAsTurkishDoes) {
    expectUnderLocale("tr_TR.UTF-8", rowsOfTheLetterI(true));
}

TEST(Text, containmentFoldsTheLetterIAsAzerbaijaniDoes) {
    expectUnderLocale("az_AZ.UTF-8", rowsOfTheLetterI(true));
}

TEST(RegularExpression, firstMatchGivesTheMatchAndItsGroups) {
    struct Row {
        std::string_view pattern;
        std::string_view text;
        Groups expected;
    };
    // clang-format off
    const std::vector<Row> rows{
        {"b", "abc", Groups{{"b"}}},
        {"x", "abc", std::nullopt},
        {"x*", "abc", Groups{{""}}},
        {"(a)(b)?(c)", "ac", Groups{{"ac", "a", "", "c"}}},
        {"a|b", "ba", Groups{{"b"}}},                                // the leftmost one
        {"^b", "ab", std::nullopt},
        {"[[:alpha:]]+", "12 caf\u00E9 34", Groups{{"caf\u00E9"}}},
        {"B", "abc", std::nullopt},                                  // letter case counts
        {R"((\S+)\s?=\s?(\S+))", "key = v\U0001F600", Groups{{"key = v\U0001F600", "key", "v\U0001F600"}}},
        {R"(\s)", "a\u00A0b", Groups{{"\u00A0"}}},                     // Unicode's white space
        {R"(\s)", "a\u2003b", Groups{{"\u2003"}}},
        {R"(\s)", "a\u0085b", Groups{{"\u0085"}}},
        {R"(\s)", "a\u200Bb", std::nullopt},
        {".", "\u2028x", Groups{{"x"}}},                             // no line separator
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.pattern);
        SCOPED_TRACE(row.text);
        EXPECT_EQ(RegularExpression(row.pattern).firstMatch(row.text), row.expected);
    }
}

TEST(RegularExpression, matchesAnyNumberOfTextsAfterAMove) {
    RegularExpression first("[0-9]+");
    const RegularExpression second = std::move(first);
    EXPECT_EQ(second.firstMatch("a12"), (Groups{{"12"}}));
    EXPECT_EQ(second.firstMatch("none"), std::nullopt);
    EXPECT_EQ(second.firstMatch("345b"), (Groups{{"345"}}));
}

TEST(RegularExpression, patternThatDoesNotCompileEndsTheProcess) {
    EXPECT_DEATH(RegularExpression("(unclosed"), "regular expression");
}

}  // namespace
}  // namespace browsersweep
