#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/internal/UTF16.h"
#include "browsersweep/platform/internal/Text.h"
#include "browsersweep/profiles/firefox/IniFile.h"

namespace browsersweep {
namespace {

using Sections = IniFile::Sections;

struct IniCase {
    std::string_view text;
    Sections expected;
};

void expectSections(const std::vector<IniCase>& rows) {
    for (const IniCase& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        EXPECT_EQ(IniFile(row.text).sections(), row.expected);
    }
}

/** What one line below the header of a section S gives. */
IniFile::Properties propertiesOfLine(std::string_view line) {
    return IniFile("[S]\n" + std::string(line)).sections().at("S");
}

TEST(IniFile, emptyTextHasNoSections) {
    expectSections({{"", {}}, {"\n\n", {}}, {" \t \n", {}}});
}

TEST(IniFile, propertyBelongsToTheSectionAboveIt) {
    expectSections({
        {"[General]\nStartWithLastProfile=1", {{"General", {{"StartWithLastProfile", "1"}}}}},
        {"[A]\na=1\nb=2\n[B]\na=3\n", {{"A", {{"a", "1"}, {"b", "2"}}}, {"B", {{"a", "3"}}}}},
    });
}

TEST(IniFile, sectionsAreNumberedByTheirNamesAndTheLastOfAName) {
    const IniFile file("[b]\na=1\n[c]\na=2\n[a]\na=3\n[b]\na=4\n[c]\na=5\n[b]\na=6\n");
    std::vector<std::string> found;
    for (std::size_t number = 0; number < file.count(); ++number) {
        const auto section = file.section(number);
        found.push_back(std::string(section.name()) + section.find("a").value_or("none"));
    }
    EXPECT_EQ(found, (std::vector<std::string>{"a3", "b6", "c5"}));
}

TEST(IniFile, carriageReturnLineFeedIsANewline) {
    expectSections({{"[A]\r\na=1\r\n", {{"A", {{"a", "1"}}}}}});
}

TEST(IniFile, everyUnicodeNewlineEndsALine) {
    expectSections({{"[A]\u0085a=1\u2028b=2\u2029c=3\vd=4\fe=5",
                     {{"A", {{"a", "1"}, {"b", "2"}, {"c", "3"}, {"d", "4"}, {"e", "5"}}}}}});
}

TEST(IniFile, headerMayHaveWhiteSpaceBeforeItAndAnythingAfterIt) {
    expectSections({
        {"  [Profile0]  ; comment", {{"Profile0", {}}}},
        {"\t[Profile0] anything=else", {{"Profile0", {}}}},
        {"[a]b]", {{"a", {}}}},
        {"[[a]]", {{"[a", {}}}},
        {"[two words]", {{"two words", {}}}},
        {"[]", {}},
        {"[]]", {{"]", {}}}},
        {"x[a]", {}},
        {"[unclosed", {}},
    });
}

TEST(IniFile, pathIsKeptWhole) {
    EXPECT_EQ(propertiesOfLine("Path=Profiles/abc.default"),
              (IniFile::Properties{{"Path", "Profiles/abc.default"}}));
}

TEST(IniFile, propertyBeforeTheFirstSectionIsDropped) {
    expectSections({{"a=1\n[A]\nb=2", {{"A", {{"b", "2"}}}}}});
}

TEST(IniFile, repeatedSectionKeepsOnlyWhatFollowsItsLastHeader) {
    expectSections({
        {"[Profile0]\na=1\nb=2\n[Profile1]\nc=3\n[Profile0]\nb=4",
         {{"Profile0", {{"b", "4"}}}, {"Profile1", {{"c", "3"}}}}},
        {"[Profile0]\na=1\n[Profile0]", {{"Profile0", {}}}},
    });
}

TEST(IniFile, repeatedKeyKeepsItsLastValue) {
    expectSections({{"[A]\na=1\na=2", {{"A", {{"a", "2"}}}}}});
}

TEST(IniFile, semicolonBeginsACommentAnywhere) {
    // clang-format off
    expectSections({
        {"[A]\nkey=value;comment", {{"A", {{"key", "value"}}}}},
        {"[A]\n;key=value",        {{"A", {}}}},
        {"[A]\n ;key=value",       {{"A", {}}}},
        {"[A]\nkey;=value",        {{"A", {}}}},
        {"[A]\nkey=;value",        {{"A", {}}}},
        {";[A]\nkey=value",        {}},
        {"[A;B]\nkey=value",       {}},
    });
    // clang-format on
}

TEST(IniFile, numberSignBeginsNoComment) {
    EXPECT_EQ(propertiesOfLine("#key=value#1"), (IniFile::Properties{{"#key", "value#1"}}));
}

TEST(IniFile, valueIsCutAtItsFirstWhiteSpace) {
    EXPECT_EQ(propertiesOfLine("Name=My Profile"), (IniFile::Properties{{"Name", "My"}}));
    EXPECT_EQ(propertiesOfLine("Name=My\u00A0Profile"), (IniFile::Properties{{"Name", "My"}}));
}

TEST(IniFile, keyIsTheLastWordBeforeTheEqualsSign) {
    EXPECT_EQ(propertiesOfLine("My Key=value"), (IniFile::Properties{{"Key", "value"}}));
}

TEST(IniFile, oneWhiteSpaceCharacterMayStandOnEachSideOfTheEqualsSign) {
    // clang-format off
    const std::vector<std::pair<std::string_view, IniFile::Properties>> rows{
        {"a=b",         {{"a", "b"}}},
        {"a = b",       {{"a", "b"}}},
        {"a\t=\tb",     {{"a", "b"}}},
        {"a =b",        {{"a", "b"}}},
        {"a  =  b",     {}},
        {"a  = b",      {}},
        {"a =  b",      {}},
        {"=b",          {}},
        {"a=",          {}},
        {"a = ",        {}},
    };
    // clang-format on
    for (const auto& [line, expected] : rows) {
        SCOPED_TRACE(line);
        EXPECT_EQ(propertiesOfLine(line), expected);
    }
}

TEST(IniFile, lastEqualsSignOfAWordDividesKeyAndValue) {
    EXPECT_EQ(propertiesOfLine("a=b=c"), (IniFile::Properties{{"a=b", "c"}}));
    EXPECT_EQ(propertiesOfLine("a=b=="), (IniFile::Properties{{"a=b", "="}}));
}

TEST(IniFile, letterCaseCounts) {
    expectSections({{"[A]\nkey=1\nKey=2\n[a]\nkey=3",
                     {{"A", {{"key", "1"}, {"Key", "2"}}}, {"a", {{"key", "3"}}}}}});
}

TEST(IniFile, textBeyondAsciiIsKept) {
    expectSections({{"[Pr\u00F6f]\nNam\u0065\u0301=\U0001F469\u200D\U0001F680",
                     {{"Pr\u00F6f", {{"Nam\u0065\u0301", "\U0001F469\u200D\U0001F680"}}}}}});
}

TEST(IniFile, hugeTextWithLongLinesIsRead) {
    const std::string word(200'000, 'a');
    std::string text = "[S]\n" + word + "\n" + word + "=\n" + word + "  =b\nlong=" + word + "\n";
    constexpr int sectionCount = 20'000;
    for (int section = 0; section < sectionCount; ++section) {
        text += "[Profile" + std::to_string(section) + "]\nName=n\n";
    }
    const IniFile iniFile(text);
    EXPECT_EQ(iniFile.sections().size(), sectionCount + 1U);
    EXPECT_TRUE(iniFile.sections().at("S") == (IniFile::Properties{{"long", word}}));
}

/**
 * What a line below the header of a section S gives by the three regular expressions themselves,
 * run by an engine: the contract that the reader keeps to in linear time.
 */
class RegularReader {
public:
    Sections sectionsOf(std::string_view line) const {
        Sections sections{{"S", {}}};
        const auto beforeComment = comment_.firstMatch(line);
        std::string content = beforeComment ? beforeComment->at(1) : std::string(line);
        if (line.substr(0, 1) == ";" || content.find_first_not_of(" \t") == std::string::npos) {
            return sections;
        }
        if (const auto section = section_.firstMatch(content)) {
            sections[section->at(1)] = {};
        } else if (const auto property = property_.firstMatch(content)) {
            sections["S"][property->at(1)] = property->at(2);
        }
        return sections;
    }

private:
    RegularExpression section_{R"(^\s*\[(.+?)\])"};
    RegularExpression property_{R"((\S+)\s?=\s?(\S+))"};
    RegularExpression comment_{R"(^([^;]+)[;]?.*$)"};
};

void expectSame(const RegularReader& regular, const std::string& line) {
    EXPECT_EQ(IniFile("[S]\n" + line).sections(), regular.sectionsOf(line))
        << testing::PrintToString(line);
}

const std::vector<std::string> telling{" ", "=", "a", "[", "]", ";", "\u00A0"};

void expectSameForAll(const RegularReader& regular, const std::string& start, int more) {
    expectSame(regular, start);
    for (std::size_t index = 0; more > 0 && index < telling.size(); ++index) {
        expectSameForAll(regular, start + telling[index], more - 1);
    }
}

TEST(IniFile, everyShortLineGivesWhatTheRegularExpressionsGive) {
    expectSameForAll(RegularReader(), "", 5);
}

TEST(IniFile, randomLinesGiveWhatTheRegularExpressionsGive) {
    const RegularReader regular;
    std::vector<std::string> pieces = telling;
    pieces.insert(pieces.end(),
                  {"\t", "=", "=", " ", "b", std::string(1, '\0'), "\u2003", "\u3000", "\u200B",
                   "\uFEFF", "\u180E", "日", "\U0001F600", "\\", "\"", "#"});
    std::mt19937 random(20'011);
    for (int round = 0; round < 20'000; ++round) {
        std::string line;
        for (auto length = random() % 40; length > 0; --length) {
            line += pieces[random() % pieces.size()];
        }
        // Some engines take a mark at the very beginning for no part of the text.
        if (line.starts_with("\uFEFF")) {
            line.insert(0, "b");
        }
        expectSame(regular, line);
    }
}

TEST(IniFile, whiteSpaceIsThatOfTheRegularExpressions) {
    const RegularReader regular;
    for (char32_t code = 1; code < 0x3100; ++code) {
        const bool isNewline = (code >= 0xA && code <= 0xD) || code == 0x85 || code == 0x2028 ||
                               code == 0x2029;  // which ends the line
        if (!isNewline) {
            std::string character;
            appendUTF8(character, code);
            expectSame(regular, "a" + character + "=" + character + "b");
        }
    }
}

TEST(IniFile, longLinesTakeTimeThatGrowsWithThem) {
    constexpr std::size_t length = 500'000;  // quadratic time would take hours
    for (const std::string piece : {"a", "=", "a=", " =", "= ", "[", " ", "\u00A0", "a = ", "[a"}) {
        std::string line;
        while (line.size() < length) {
            line += piece;
        }
        EXPECT_LE(propertiesOfLine(line).size(), 1U) << piece;
        EXPECT_LE(propertiesOfLine(line + " x=y").size(), 1U) << piece;
    }
}

}  // namespace
}  // namespace browsersweep
