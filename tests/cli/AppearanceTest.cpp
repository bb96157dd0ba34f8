#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Appearance.h"

namespace browsersweep::cli {
namespace {

using Variables = std::map<std::string, std::string>;

Environment environmentOf(const Variables& variables) {
    return [variables](const char* name) {
        const auto found = variables.find(name);
        return found == variables.end() ? std::nullopt : std::optional(found->second);
    };
}

TEST(Appearance, stylesAreForTerminalsThatUnderstandThemAndUsersWhoWantThem) {
    struct Row {
        bool isTerminal;
        Variables variables;
        bool hasStyles;
    };
    const std::vector<Row> rows = {
        {true, {{"TERM", "xterm"}}, true},
        {false, {{"TERM", "xterm"}}, false},
        {true, {{"TERM", "dumb"}}, false},
        {true, {{"TERM", ""}}, false},
        {true, {}, false},
        {true, {{"TERM", "xterm"}, {"NO_COLOR", "1"}}, false},
        {true, {{"TERM", "xterm"}, {"NO_COLOR", "0"}}, false},
        {true, {{"TERM", "xterm"}, {"NO_COLOR", ""}}, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.variables));
        EXPECT_EQ(appearanceOf(row.isTerminal, environmentOf(row.variables)).hasStyles,
                  row.hasStyles);
    }
}

TEST(Appearance, theFirstLocaleVariableThatIsSetDecidesWhatIsDrawn) {
    struct Row {
        Variables variables;
        CharacterSet drawing;
    };
    const std::vector<Row> rows = {
        {{}, CharacterSet::ascii},
        {{{"LANG", "C"}}, CharacterSet::ascii},
        {{{"LANG", "de_DE.ISO-8859-1"}}, CharacterSet::ascii},
        {{{"LANG", "de_DE.UTF-8"}}, CharacterSet::utf8},
        {{{"LANG", "C.utf8"}}, CharacterSet::utf8},
        {{{"LC_CTYPE", "UTF-8"}}, CharacterSet::utf8},
        {{{"LANG", "de_DE.UTF-8"}, {"LC_ALL", "C"}}, CharacterSet::ascii},
        {{{"LANG", "de_DE.UTF-8"}, {"LC_CTYPE", "C"}}, CharacterSet::ascii},
        {{{"LANG", "C"}, {"LC_CTYPE", "en_US.UTF-8"}}, CharacterSet::utf8},
        {{{"LANG", "de_DE.UTF-8"}, {"LC_ALL", ""}}, CharacterSet::utf8},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.variables));
        for (const bool isTerminal : {false, true}) {
            EXPECT_EQ(appearanceOf(isTerminal, environmentOf(row.variables)).drawing, row.drawing);
        }
    }
}

TEST(Appearance, namesAreChangedForATerminalAlone) {
    EXPECT_EQ(appearanceOf(true, environmentOf({})).text, CharacterSet::ascii);
    EXPECT_EQ(appearanceOf(false, environmentOf({})).text, CharacterSet::utf8);
    EXPECT_EQ(appearanceOf(true, environmentOf({{"LANG", "C.UTF-8"}})).text, CharacterSet::utf8);
}

TEST(Appearance, whatHasNoStyleOrNoTextIsUnchanged) {
    const Appearance colourful{true, CharacterSet::utf8, CharacterSet::utf8};
    EXPECT_EQ(styled("x", Style::strong, colourful), "\x1b[1mx\x1b[0m");
    EXPECT_EQ(styled("x", Style::plain, colourful), "x");
    EXPECT_EQ(styled("", Style::strong, colourful), "");
    EXPECT_EQ(styled("x", Style::strong, {}), "x");
}

}  // namespace
}  // namespace browsersweep::cli
