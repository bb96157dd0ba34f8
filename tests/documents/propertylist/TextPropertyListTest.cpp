#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/propertylist/internal/TextPropertyList.h"

#include "tests/support/Bytes.h"
#include "tests/support/PropertyLists.h"

namespace browsersweep {
namespace {

using tests::bytes;
using tests::dictionary;
using tests::expectCorrupted;
using tests::text;

struct TextCase {
    std::string source;
    PropertyList expected;
};

TEST(TextPropertyList, eachFormIsAValue) {
    const std::vector<TextCase> cases = {
        {"word", text("word")},
        {" /usr/bin:a_b-$.1 ", text("/usr/bin:a_b-$.1")},
        {"\"two words\"", text("two words")},
        {"'single \"quotes\"'", text("single \"quotes\"")},
        {R"("\a\b\f\n\r\t\v\"\\\x")", text("\a\b\f\n\r\t\v\"\\x")},
        {R"("\101\12")", text("A\n")},
        {R"("\341\200")", text("\xC3\x86\xC2\xA0")},
        {R"("\U00fc\Ue9 ")", text("\xC3\xBC\xC3\xA9 ")},
        {R"("\UD83C\UDF6A")", text("\xF0\x9F\x8D\xAA")},
        {"( )", PropertyList::array({})},
        {"(a, b)", PropertyList::array({text("a"), text("b")})},
        {"(a, (b,),)", PropertyList::array({text("a"), PropertyList::array({text("b")})})},
        {"{}", dictionary({})},
        {"{ b = 1; \"a\" = (x); }",
         dictionary({{"b", text("1")}, {"a", PropertyList::array({text("x")})}})},
        {"{ a; }", dictionary({{"a", text("a")}})},
        {"<0f bd\n7 7>", PropertyList::data({0x0F, 0xBD, 0x77})},
        {"<0fbd 77>", PropertyList::data({0x0F, 0xBD, 0x77})},
        {"<>", PropertyList::data({})},
        {"// before\n{ a /* between */ = b; } // after", dictionary({{"a", text("b")}})},
        {"a = b;\n\"c\";", dictionary({{"a", text("b")}, {"c", text("c")}})},
        {" \n\t ", dictionary({})},
    };
    for (const TextCase& row : cases) {
        SCOPED_TRACE(row.source);
        EXPECT_EQ(row.expected, PropertyList::parse(bytes(row.source)));
    }
}

TEST(TextPropertyList, oneBareWordIsAValueAndTwoAreNot) {
    EXPECT_EQ(text("word"), PropertyList::parse(bytes("word")));
    expectCorrupted(bytes("two words"));
}

TEST(TextPropertyList, malformedTextIsRefused) {
    for (const char* source : {"(",
                               "(a",
                               "(a b)",
                               "{",
                               "{a",
                               "{a}",
                               "{a=}",
                               "{a=b}",
                               "{a=b;",
                               "{=b;}",
                               "{a b;}",
                               "\"a",
                               "'a",
                               "<0",
                               "<0>",
                               "<0fbd1>",
                               "\xC3\xBC = 1;",
                               "<0g>",
                               "/* a",
                               "{} {}",
                               "() x",
                               "a = b",
                               "a = b; c",
                               ")",
                               "}",
                               ";",
                               "*",
                               "{ (a) = b; }",
                               R"("\UD83C")",
                               R"("\UDF6A")",
                               R"("\UD83Cx")",
                               "\"\\"}) {
        expectCorrupted(bytes(source));
    }
    expectCorrupted(bytes("<0x>"));
    expectCorrupted(Bytes{'a', 0});
    expectCorrupted(Bytes(1000, 0));
    expectCorrupted(Bytes{'"', 0xFF, '"'});
}

TEST(TextPropertyList, aZeroByteEndsNoText) {
    using namespace std::string_literals;
    for (const std::string& source :
         {"a = b;\0"s, "a = b;\0 c = d;"s, "\0"s, "a\0"s, "{ a = b; }\0"s, "{ a = b; \0 }"s}) {
        expectCorrupted(bytes(source));
    }
}

TEST(TextPropertyList, textInUTF16IsRead) {
    EXPECT_EQ(text("a"), PropertyList::parse(Bytes{0xFE, 0xFF, 0, 'a'}));
    EXPECT_EQ(text("a"), PropertyList::parse(Bytes{0xFF, 0xFE, 'a', 0}));
    expectCorrupted(Bytes{0xFE, 0xFF, 0});
    expectCorrupted(Bytes{0xFE, 0xFF, 0xD8, 0});
}

TEST(TextPropertyList, nestingEndsAtTheLimit) {
    const auto nested = [](std::size_t depth) {
        return bytes(std::string(depth, '(') + std::string(depth, ')'));
    };
    EXPECT_EQ(PropertyList::maximumDepth,
              PropertyList::parse(nested(PropertyList::maximumDepth)).depth());
    EXPECT_THROW(PropertyList::parse(nested(PropertyList::maximumDepth + 1)), DecodingError);
    EXPECT_THROW(PropertyList::parse(nested(1000000)), DecodingError);
    EXPECT_THROW(PropertyList::parse(bytes(std::string(1000000, '{'))), DecodingError);
}

TEST(TextPropertyList, manyValuesWithLittleInThemAreRefused) {
    const auto list = [](std::size_t count, const std::string& value) {
        std::string source = "(";
        for (std::size_t index = 0; index < count; ++index) {
            source += value + ",";
        }
        return bytes(source + ")");
    };
    constexpr std::size_t few = 16'000;
    constexpr std::size_t many = 20'000;
    EXPECT_EQ(few, PropertyList::parse(list(few, "a")).asArray()->size());
    EXPECT_EQ(many, PropertyList::parse(list(many, std::string(63, 'a'))).asArray()->size());
    expectCorrupted(list(many, "a"));
    expectCorrupted(list(many, "{}"));
    expectCorrupted(list(many / 2, "{a;}"));
}

TEST(TextPropertyList, everyCorruptionOfOneByteIsAnErrorOrAValue) {
    tests::expectErrorOrValueForEveryCorruptionOfOneByte(
        bytes("{ a = (\"b\\U00fc\", <0fbd>); /* c */ d; }"));
}

}  // namespace
}  // namespace browsersweep
