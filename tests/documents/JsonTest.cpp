#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/internal/Json.h"

#include "tests/support/Bytes.h"

namespace browsersweep {
namespace {

using Kind = DecodingError::Kind;
using tests::bytes;

JsonDocument parse(std::string_view text) {
    return JsonDocument::parse(bytes(text));
}

template <typename Operation>
Kind errorKind(Operation operation) {
    try {
        operation();
    } catch (const DecodingError& error) {
        return error.kind();
    }
    ADD_FAILURE() << "no error";
    return {};
}

std::vector<JsonValue> elementsOf(const JsonValue& array) {
    const JsonElements elements = array.elements();
    return {elements.begin(), elements.end()};
}

std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    for (std::size_t round = 0; round < times; ++round) {
        all += text;
    }
    return all;
}

TEST(Json, valuesOfEveryKind) {
    const auto document =
        parse(R"( {"t": true, "n": -7, "s": "aé\u00e9", "l": [1, 2], "z": null} )");
    const auto root = document.root();
    EXPECT_TRUE(root.required("t").boolean());
    EXPECT_EQ(root.required("n").integer(), -7);
    EXPECT_EQ(root.required("s").string(), "a\u00e9\u00e9");
    EXPECT_EQ(elementsOf(root.required("l"))[1].integer(), 2);
    EXPECT_TRUE(root.find("z")->isNull());
}

TEST(Json, membersKeepTheFilesOrderAndTheFirstOfEqualKeys) {
    const auto document = parse(R"({"b": 1, "a": {"x": 5}, "b": 2, "c": 3})");
    std::string seen;
    for (const auto& [key, value] : document.root().members()) {
        seen += key;
        seen += value.isObject() ? "{}" : std::to_string(value.integer());
    }
    EXPECT_EQ(seen, "b1a{}c3");
    EXPECT_EQ(document.root().required("b").integer(), 1);
}

TEST(Json, theFirstOfEqualKeysCountsAmongManyToo) {
    std::string text = "{";
    for (int number = 0; number < 100; ++number) {
        text += "\"key" + std::to_string(number % 50) + "\": " + std::to_string(number) + ",";
    }
    text.back() = '}';
    const auto document = parse(text);
    const auto members = document.root().members();
    ASSERT_EQ(members.size(), 50U);
    EXPECT_EQ(members[49].second.integer(), 49);
}

TEST(Json, numbersThatAreWholeAreIntegersHoweverTheyAreWritten) {
    const auto document = parse("[1.0, 1e3, -0.0, 9223372036854775807, -9223372036854775808]");
    const auto elements = elementsOf(document.root());
    EXPECT_EQ(elements[0].integer(), 1);
    EXPECT_EQ(elements[1].integer(), 1000);
    EXPECT_EQ(elements[2].integer(), 0);
    EXPECT_EQ(elements[3].integer(), INT64_MAX);
    EXPECT_EQ(elements[4].integer(), INT64_MIN);
}

TEST(Json, integersOfEverySizeKeepTheirValueAndTheirSign) {
    for (const std::int64_t value : {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}}) {
        for (unsigned bit = 0; bit < 63; ++bit) {
            for (const std::int64_t near : {-1, 0, 1}) {
                const std::int64_t number = value * (std::int64_t{1} << bit) + near;
                const auto document = parse("{\"key\": " + std::to_string(number) + "}");
                EXPECT_EQ(document.root().required("key").integer(), number);
            }
        }
    }
}

TEST(Json, valuesOfEveryKindFollowEachOtherInArraysAndUnderKeys) {
    const std::string values =
        R"(null, true, 5, 5000000000, 0.5, "", "text", [], [0], {}, {"": 0})";
    const auto document = parse("[" + values + ", " + values + "]");
    const auto elements = elementsOf(document.root());
    ASSERT_EQ(elements.size(), 22U);
    for (const std::size_t start : {0U, 11U}) {
        EXPECT_TRUE(elements[start].isNull());
        EXPECT_TRUE(elements[start + 1].boolean());
        EXPECT_EQ(elements[start + 2].integer(), 5);
        EXPECT_EQ(elements[start + 3].integer(), 5'000'000'000);
        EXPECT_EQ(elements[start + 5].string(), "");
        EXPECT_EQ(elements[start + 6].string(), "text");
        EXPECT_TRUE(elementsOf(elements[start + 7]).empty());
        EXPECT_EQ(elementsOf(elements[start + 8])[0].integer(), 0);
        EXPECT_TRUE(elements[start + 9].members().empty());
        EXPECT_EQ(elements[start + 10].required("").integer(), 0);
    }
}

TEST(Json, numbersThatAreNoIntegersFail) {
    const auto document = parse("[1.5, 9223372036854775808, 123456789012345678901234567890]");
    for (const JsonValue element : document.root().elements()) {
        EXPECT_EQ(errorKind([&] { return element.integer(); }), Kind::dataCorrupted);
    }
}

TEST(Json, numbersAreNoBooleansAndBooleansNoNumbers) {
    const auto document = parse(R"([1, true, "true"])");
    const auto elements = elementsOf(document.root());
    EXPECT_EQ(errorKind([&] { return elements[0].boolean(); }), Kind::typeMismatch);
    EXPECT_EQ(errorKind([&] { return elements[1].integer(); }), Kind::typeMismatch);
    EXPECT_EQ(errorKind([&] { return elements[2].boolean(); }), Kind::typeMismatch);
    EXPECT_EQ(errorKind([&] { return elements[0].string(); }), Kind::typeMismatch);
    EXPECT_EQ(errorKind([&] { return elements[0].elements(); }), Kind::typeMismatch);
    EXPECT_EQ(errorKind([&] { return elements[0].members(); }), Kind::typeMismatch);
}

TEST(Json, nullIsAbsenceWhereAMemberIsOptionalAndAnErrorWhereItIsRequired) {
    const auto document = parse(R"({"z": null, "a": 1})");
    const auto root = document.root();
    EXPECT_FALSE(root.optional("z").has_value());
    EXPECT_FALSE(root.optional("missing").has_value());
    EXPECT_TRUE(root.optional("a").has_value());
    EXPECT_EQ(errorKind([&] { return root.required("z"); }), Kind::valueNotFound);
    EXPECT_EQ(errorKind([&] { return root.required("missing"); }), Kind::keyNotFound);
}

TEST(Json, aByteOrderMarkIsSkipped) {
    EXPECT_EQ(parse("\xEF\xBB\xBF{\"a\": 1}").root().required("a").integer(), 1);
}

TEST(Json, textsThatAreNoDocumentFail) {
    using namespace std::string_view_literals;
    for (const std::string_view text :
         {""sv, " "sv, "{"sv, "[1,]"sv, "{\"a\":1,}"sv, "{\"a\" 1}"sv, "nul"sv, "01"sv, "1 2"sv,
          "\"\x80\""sv, "\"\\ud800\""sv, "\"\n\""sv, "{}\0"sv, "{}\0garbage"sv, "'a'"sv,
          "[1e400]"sv, "{\"ignored\": 1e400}"sv, "NaN"sv, "// comment\n1"sv}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(errorKind([&] { parse(text); }), Kind::dataCorrupted);
    }
}

TEST(Json, everyTruncationOfADocumentFails) {
    const std::string text = R"({"a": [1, 2.5, "x\u0041", {"b": null}], "c": true})";
    for (std::size_t length = 0; length < text.size(); ++length) {
        SCOPED_TRACE(length);
        EXPECT_EQ(errorKind([&] { parse(text.substr(0, length)); }), Kind::dataCorrupted);
    }
    EXPECT_NO_THROW(parse(text));
}

TEST(Json, nestingIsLimitedTo512Levels) {
    EXPECT_NO_THROW(parse(repeated("[", 512) + repeated("]", 512)));
    EXPECT_EQ(errorKind([] { parse(repeated("[", 513) + repeated("]", 513)); }),
              Kind::dataCorrupted);
    EXPECT_EQ(errorKind([] { parse(repeated("{\"a\":", 1'000'000)); }), Kind::dataCorrupted);
}

}  // namespace
}  // namespace browsersweep
