#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/propertylist/PropertyList.h"

#include "tests/support/Bytes.h"
#include "tests/support/PropertyLists.h"

namespace browsersweep {
namespace {

using tests::bytes;
using tests::text;

PropertyList nestedArrays(std::size_t count) {
    PropertyList value = PropertyList::array({});
    for (std::size_t depth = 1; depth < count; ++depth) {
        value = PropertyList::array({value});
    }
    return value;
}

TEST(PropertyList, eachAccessorAnswersOnlyForItsKind) {
    const PropertyList number = PropertyList::integer(-3);
    EXPECT_EQ(PropertyList::Kind::integer, number.kind());
    EXPECT_EQ(-3, number.asInteger());
    EXPECT_EQ(std::nullopt, number.asUnsignedInteger());
    EXPECT_EQ(std::nullopt, number.asReal());
    EXPECT_EQ(std::nullopt, number.asBoolean());
    EXPECT_EQ(std::nullopt, number.asDate());
    EXPECT_EQ(std::nullopt, number.asUID());
    EXPECT_EQ(nullptr, number.asString());
    EXPECT_EQ(nullptr, number.asData());
    EXPECT_EQ(nullptr, number.asArray());
    EXPECT_EQ(nullptr, number.asDictionary());
    EXPECT_EQ(nullptr, number.find("key"));
    EXPECT_EQ(true, PropertyList::boolean(true).asBoolean());
    EXPECT_EQ(1.5, PropertyList::real(1.5).asReal());
    EXPECT_EQ("a", *text("a").asString());
    EXPECT_EQ(dateFromReferenceSeconds(2.5),
              PropertyList::date(dateFromReferenceSeconds(2.5)).asDate());
    EXPECT_EQ(Bytes{1}, *PropertyList::data({1}).asData());
    EXPECT_EQ(7U, PropertyList::uid(7).asUID());
}

TEST(PropertyList, anIntegerAboveTheSignedRangeIsOnlyUnsigned) {
    const PropertyList large =
        PropertyList::unsignedInteger(std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(PropertyList::Kind::integer, large.kind());
    EXPECT_EQ(std::nullopt, large.asInteger());
    EXPECT_EQ(std::numeric_limits<std::uint64_t>::max(), large.asUnsignedInteger());
    EXPECT_EQ(PropertyList::integer(5), PropertyList::unsignedInteger(5));
    EXPECT_EQ(5U, PropertyList::integer(5).asUnsignedInteger());
}

TEST(PropertyList, ofEqualKeysTheLastOneCounts) {
    const PropertyList value =
        PropertyList::dictionary({{"a", text("first")}, {"b", text("b")}, {"a", text("last")}});
    EXPECT_EQ(text("last"), *value.find("a"));
    EXPECT_EQ(nullptr, value.find("c"));
    EXPECT_EQ(3U, value.asDictionary()->size());
}

TEST(PropertyList, equalityComparesKindOrderAndBits) {
    EXPECT_EQ(PropertyList::real(std::nan("")), PropertyList::real(std::nan("")));
    EXPECT_FALSE(PropertyList::real(0.0) == PropertyList::real(-0.0));
    EXPECT_FALSE(PropertyList::integer(1) == PropertyList::real(1.0));
    EXPECT_FALSE(PropertyList::integer(1) == PropertyList::boolean(true));
    EXPECT_FALSE(PropertyList::integer(1) == PropertyList::uid(1));
    EXPECT_FALSE(PropertyList::array({text("a"), text("b")}) ==
                 PropertyList::array({text("b"), text("a")}));
    EXPECT_FALSE(PropertyList::dictionary({{"a", text("1")}, {"b", text("2")}}) ==
                 PropertyList::dictionary({{"b", text("2")}, {"a", text("1")}}));
    EXPECT_EQ(PropertyList::dictionary({{"a", text("1")}}),
              PropertyList::dictionary({{"a", text("1")}}));
}

TEST(PropertyList, textThatIsNotUTF8IsRefused) {
    EXPECT_THROW(PropertyList::string("\xFF"), std::invalid_argument);
    EXPECT_THROW(PropertyList::dictionary({{"\xC3", text("a")}}), std::invalid_argument);
}

TEST(PropertyList, aValueBeyondTheDepthLimitCannotBeMade) {
    const PropertyList deepest = nestedArrays(PropertyList::maximumDepth);
    EXPECT_EQ(PropertyList::maximumDepth, deepest.depth());
    EXPECT_EQ(deepest, PropertyList::parse(deepest.binaryData()));
    EXPECT_THROW(PropertyList::array({deepest}), std::length_error);
    EXPECT_THROW(PropertyList::dictionary({{"a", deepest}}), std::length_error);
}

TEST(PropertyList, zeroBytesAreNoPropertyList) {
    try {
        PropertyList::parse({});
        FAIL() << "an empty file was accepted";
    } catch (const DecodingError& error) {
        EXPECT_EQ(DecodingError::Kind::dataCorrupted, error.kind());
        EXPECT_EQ(CodingPath{}, error.codingPath());
    }
}

TEST(PropertyList, theFormOfAFileIsFoundOut) {
    const PropertyList expected = PropertyList::dictionary({{"a", text("1")}});
    const Bytes forms[] = {
        // NOLINT(cppcoreguidelines-avoid-c-arrays): a table of cases
        expected.binaryData(),
        bytes("<?xml version=\"1.0\"?><plist><dict><key>a</key><string>1</string></dict></plist>"),
        bytes("\xEF\xBB\xBF \n<plist><dict><key>a</key><string>1</string></dict></plist>"),
        bytes("{ a = 1; }"),
        bytes("\xEF\xBB\xBF{ a = 1; }"),
        bytes("a = 1;"),
    };
    for (const Bytes& form : forms) {
        SCOPED_TRACE(std::string(form.begin(), form.end()));
        EXPECT_EQ(expected, PropertyList::parse(form));
    }
    EXPECT_EQ(PropertyList::data({0xDE, 0xAD}), PropertyList::parse(bytes("<dead>")));
}

}  // namespace
}  // namespace browsersweep
