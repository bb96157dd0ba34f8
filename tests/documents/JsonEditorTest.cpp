#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/internal/JsonEditor.h"

#include "tests/support/Bytes.h"

namespace browsersweep {
namespace {

using tests::bytes;

/** The document without those members of its outermost value that stand at these places. */
std::string without(std::string_view text, const std::vector<std::size_t>& places) {
    JsonEditor editor(bytes(text));
    const auto members = editor.members(editor.root());
    std::vector<bool> isRemoved(members.size());
    for (const std::size_t place : places) {
        isRemoved.at(place) = true;
    }
    editor.remove(members, isRemoved);
    return editor.edited();
}

TEST(JsonEditor, whatIsNotTakenOutKeepsEveryByte) {
    const std::string text =
        "\xEF\xBB\xBF {\n\t\"b\" : 1.0e5 ,\"a\":[ 1.00, -0 , 12345678901234567890 ],\r\n"
        " \"\\u0061\\\"]\" : \"\\/,}\" , \"c\":{ }, \"d\": [ ] } \n";
    JsonEditor editor(bytes(text));
    EXPECT_EQ(editor.edited(), text);
    EXPECT_FALSE(editor.isChanged());
    std::vector<std::string> found;
    for (const auto& member : editor.members(editor.root())) {
        found.push_back(member.key + "=" + std::string(editor.text(member.value)));
    }
    EXPECT_EQ(found, (std::vector<std::string>{"b=1.0e5", "a=[ 1.00, -0 , 12345678901234567890 ]",
                                               "a\"]=\"\\/,}\"", "c={ }", "d=[ ]"}));
}

TEST(JsonEditor, eachMemberGoesWithOneComma) {
    const std::string_view text = "{\"a\":1, \"b\":{\"x\":[1,2]} ,\"c\":\"3\"}";
    EXPECT_EQ(without(text, {0}), "{ \"b\":{\"x\":[1,2]} ,\"c\":\"3\"}");
    EXPECT_EQ(without(text, {1}), "{\"a\":1,\"c\":\"3\"}");
    EXPECT_EQ(without(text, {2}), "{\"a\":1, \"b\":{\"x\":[1,2]} }");
    EXPECT_EQ(without(text, {0, 1}), "{\"c\":\"3\"}");
    EXPECT_EQ(without(text, {0, 2}), "{ \"b\":{\"x\":[1,2]} }");
    EXPECT_EQ(without(text, {1, 2}), "{\"a\":1}");
    EXPECT_EQ(without(text, {0, 1, 2}), "{}");
    EXPECT_EQ(without("[1]", {0}), "[]");
    EXPECT_EQ(without("[1,\"[\\\",\",true]", {1}), "[1,true]");
}

TEST(JsonEditor, membersOfMembersAreTakenOutToo) {
    JsonEditor editor(bytes("{\"a\":{\"x\":1,\"y\":2},\"b\":{\"x\":3,\"y\":4}}"));
    const auto outer = editor.members(editor.root());
    editor.remove(editor.members(outer[0].value), {true, false});
    editor.remove(editor.members(outer[1].value), {false, true});
    EXPECT_EQ(editor.edited(), "{\"a\":{\"y\":2},\"b\":{\"x\":3}}");
    editor.remove(outer, {false, true});
    EXPECT_EQ(editor.edited(), "{\"a\":{\"y\":2}}");
    EXPECT_TRUE(editor.isChanged());
}

TEST(JsonEditor, equalKeysAreAllFoundHoweverTheyAreWritten) {
    const JsonEditor editor(bytes("{\"key\":1,\"k\\u0065y\":2,\"Key\":3}"));
    std::vector<std::string> found;
    for (const auto& member : editor.members(editor.root(), "key")) {
        found.emplace_back(editor.text(member.value));
    }
    EXPECT_EQ(found, (std::vector<std::string>{"1", "2"}));
}

TEST(JsonEditor, halfOfAPairStaysAsItIsAndReadsAsNoCharacter) {
    const std::string_view text =
        R"({"a":"x\ud83d","b":"\udE00\ud83d\ude00\ud83d","\ud800":"\\ud800"})";
    const JsonEditor editor(bytes(text));
    EXPECT_EQ(editor.edited(), text);
    std::vector<std::string> found;
    for (const auto& member : editor.members(editor.root())) {
        found.push_back(member.key + "=" + editor.string(member.value));
    }
    EXPECT_EQ(found, (std::vector<std::string>{"a=x\xEF\xBF\xBD",
                                               "b=\xEF\xBF\xBD\xF0\x9F\x98\x80\xEF\xBF\xBD",
                                               "\xEF\xBF\xBD=\\ud800"}));
    for (const char* damaged : {R"("\ud8")", R"("\ud83x")", R"("\u-800")", R"("\)"}) {
        EXPECT_THROW(JsonEditor(bytes(damaged)), DecodingError) << damaged;
    }
}

TEST(JsonEditor, onlyAStringHasOneAndOnlyArraysAndObjectsHaveMembers) {
    for (const char* text : {"1", "\"text\"", "null", "[]", "{}", "[ ]", "{\n}"}) {
        const JsonEditor editor(bytes(text));
        EXPECT_TRUE(editor.members(editor.root()).empty()) << text;
        EXPECT_TRUE(editor.members(editor.root(), "").empty()) << text;
        EXPECT_EQ(editor.edited(), text);
    }
    const JsonEditor editor(bytes(" \"a\\n\\u20ac\" "));
    EXPECT_EQ(editor.string(editor.root()), "a\n\xE2\x82\xAC");
    EXPECT_EQ(JsonEditor(bytes("12")).string(JsonEditor(bytes("12")).root()), "");
}

TEST(JsonEditor, whatIsNoDocumentIsAnError) {
    for (const char* text : {"", "{", "{\"a\":}", "[1,]", "{} x", "\"", "{'a':1}", "nul"}) {
        EXPECT_THROW(JsonEditor{bytes(text)}, DecodingError) << text;
    }
    EXPECT_THROW(JsonEditor{bytes(std::string(100'000, '['))}, DecodingError);
}

TEST(JsonEditor, aValueIsReplacedByAnotherText) {
    JsonEditor editor(bytes("{\"a\": 12 ,\"b\":[1,2],\"c\":{\"d\":3}}"));
    const auto members = editor.members(editor.root());
    const auto elements = editor.members(members[1].value);
    const auto inner = editor.members(members[2].value);
    editor.replace(members[0].value, "7");
    editor.replace(members[1].value, "[]");
    editor.remove(elements, {true, false});
    editor.replace(inner[0].value, "4");
    editor.remove(members, {false, false, true});
    EXPECT_TRUE(editor.isChanged());
    EXPECT_EQ(editor.edited(), "{\"a\": 7 ,\"b\":[]}");
}

}  // namespace
}  // namespace browsersweep
