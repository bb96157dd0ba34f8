#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace browsersweep
