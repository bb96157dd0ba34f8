#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/propertylist/internal/BinaryPropertyList.h"

#include "tests/support/Bytes.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/Python.h"

namespace browsersweep {
namespace {

using tests::dictionary;
using tests::expectCorrupted;
using tests::text;

std::string hexadecimal(BytesView bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (const std::uint8_t byte : bytes) {
        result.push_back(digits[byte >> 4]);
        result.push_back(digits[byte & 0x0FU]);
    }
    return result;
}

PropertyList numbers(std::int64_t count) {
    PropertyList::Array values;
    for (std::int64_t number = 0; number < count; ++number) {
        values.push_back(PropertyList::integer(number));
    }
    return PropertyList::array(std::move(values));
}

/** A value, and what makes the same one in Python. */
struct OracleCase {
    std::string python;
    PropertyList value;
};

std::vector<OracleCase> scalarCases() {
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
    return {
        {"True", PropertyList::boolean(true)},
        {"False", PropertyList::boolean(false)},
        {"0", PropertyList::integer(0)},
        {"255", PropertyList::integer(255)},
        {"256", PropertyList::integer(256)},
        {"65535", PropertyList::integer(65535)},
        {"65536", PropertyList::integer(65536)},
        {"2**32 - 1", PropertyList::integer(4294967295)},
        {"2**32", PropertyList::integer(4294967296)},
        {"2**63 - 1", PropertyList::integer(largest)},
        {"2**63", PropertyList::unsignedInteger(std::uint64_t{1} << 63)},
        {"2**64 - 1", PropertyList::unsignedInteger(std::numeric_limits<std::uint64_t>::max())},
        {"-1", PropertyList::integer(-1)},
        {"-2**63", PropertyList::integer(smallest)},
        {"0.0", PropertyList::real(0)},
        {"1.5", PropertyList::real(1.5)},
        {"-0.1", PropertyList::real(-0.1)},
        {"1e300", PropertyList::real(1e300)},
        {"float('inf')", PropertyList::real(std::numeric_limits<double>::infinity())},
        {"datetime.datetime(2001, 1, 1)", PropertyList::date(dateFromReferenceSeconds(0))},
        {"datetime.datetime(2023, 3, 8, 20, 26, 40)",
         PropertyList::date(dateFromReferenceSeconds(700000000))},
        {"datetime.datetime(1999, 1, 1)", PropertyList::date(dateFromReferenceSeconds(-63158400))},
        {"b''", PropertyList::data({})},
        {"bytes(range(14))", PropertyList::data({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13})},
        {"b'x' * 15", PropertyList::data(Bytes(15, 'x'))},
        {"b'x' * 300", PropertyList::data(Bytes(300, 'x'))},
        {"b'x' * 70000", PropertyList::data(Bytes(70000, 'x'))},
        {"''", text("")},
        {"'a' * 14", text(std::string(14, 'a'))},
        {"'a' * 15", text(std::string(15, 'a'))},
        {"'a' * 256", text(std::string(256, 'a'))},
        {"'\\u00fc'", text("\xC3\xBC")},
        {"'a\\u20ac' * 20", text([] {
             std::string euros;
             for (int count = 0; count < 20; ++count) {
                 euros += "a\xE2\x82\xAC";
             }
             return euros;
         }())},
        {"'\\U0001f36a'", text("\xF0\x9F\x8D\xAA")},
        {"plistlib.UID(3)", PropertyList::uid(3)},
        {"plistlib.UID(70000)", PropertyList::uid(70000)},
    };
}

std::vector<OracleCase> containerCases() {
    const PropertyList one = PropertyList::integer(1);
    return {
        {"[]", PropertyList::array({})},
        {"{}", dictionary({})},
        {"[1, 'a', 1, 'a']", PropertyList::array({one, text("a"), one, text("a")})},
        {"[1, 1.0, b'1', '1']",
         PropertyList::array({one, PropertyList::real(1), PropertyList::data({'1'}), text("1")})},
        {"{'b': 1, 'a': 2}", dictionary({{"b", one}, {"a", PropertyList::integer(2)}})},
        {"{'a': 'b', 'b': 'a'}", dictionary({{"a", text("b")}, {"b", text("a")}})},
        {"{'a': {'c': [1, [2]]}, 'b': {'c': 'a'}}",
         dictionary(
             {{"a",
               dictionary({{"c", PropertyList::array(
                                     {one, PropertyList::array({PropertyList::integer(2)})})}})},
              {"b", dictionary({{"c", text("a")}})}})},
        {"{'NSHTTPCookieAcceptPolicy': 2, 'other': True}",
         dictionary({{"NSHTTPCookieAcceptPolicy", PropertyList::integer(2)},
                     {"other", PropertyList::boolean(true)}})},
        {"[datetime.datetime(2002, 1, 1), datetime.datetime(2002, 1, 1)]",
         PropertyList::array({PropertyList::date(dateFromReferenceSeconds(31536000)),
                              PropertyList::date(dateFromReferenceSeconds(31536000))})},
        {"list(range(14))", numbers(14)},
        {"list(range(15))", numbers(15)},
        {"list(range(254))", numbers(254)},
        {"list(range(255))", numbers(255)},
        {"list(range(256))", numbers(256)},
        {"list(range(70000))", numbers(70000)},
    };
}

std::vector<OracleCase> oracleCases() {
    std::vector<OracleCase> cases = scalarCases();
    for (OracleCase& row : containerCases()) {
        cases.push_back(std::move(row));
    }
    return cases;
}

std::vector<std::string> outputLines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        result.push_back(line);
    }
    return result;
}

/** Assembles a binary property list from its objects, with offsets and references of one byte. */
Bytes assembled(const std::vector<Bytes>& objects) {
    Bytes file = tests::bytes("bplist00");
    Bytes offsets;
    for (const Bytes& object : objects) {
        offsets.push_back(static_cast<std::uint8_t>(file.size()));
        file.insert(file.end(), object.begin(), object.end());
    }
    const auto table = static_cast<std::uint8_t>(file.size());
    file.insert(file.end(), offsets.begin(), offsets.end());
    file.insert(file.end(), {0, 0, 0, 0, 0, 0, 1, 1});
    const auto count = static_cast<std::uint8_t>(objects.size());
    for (const std::uint8_t number : {count, std::uint8_t{0}, table}) {
        file.insert(file.end(), {0, 0, 0, 0, 0, 0, 0, number});
    }
    return file;
}

PropertyList small() {
    return dictionary(
        {{"key", PropertyList::array({PropertyList::integer(300), PropertyList::real(0.5),
                                      text("\xC3\xBC"), PropertyList::boolean(true)})},
         {"date", PropertyList::date(dateFromReferenceSeconds(1.25))},
         {"data", PropertyList::data({1, 2, 3})},
         {"more", dictionary({{"key", PropertyList::integer(-1)}})}});
}

TEST(BinaryPropertyList, theBytesAreThoseOfPython) {
    std::string expressions;
    const std::vector<OracleCase> cases = oracleCases();
    for (const OracleCase& row : cases) {
        expressions += row.python + "\n";
    }
    const std::optional<std::string> output = tests::runPython(
        "import datetime, plistlib, sys\n"
        "for line in sys.stdin:\n"
        "    data = plistlib.dumps(eval(line), fmt=plistlib.FMT_BINARY, sort_keys=False)\n"
        "    print(data.hex())\n",
        expressions);
    if (!output) {
        GTEST_SKIP() << "there is no python3 to compare with";
    }
    const std::vector<std::string> expected = outputLines(*output);
    ASSERT_EQ(cases.size(), expected.size());
    for (std::size_t index = 0; index < cases.size(); ++index) {
        SCOPED_TRACE(cases[index].python);
        EXPECT_EQ(expected[index], hexadecimal(cases[index].value.binaryData()));
    }
}

TEST(BinaryPropertyList, pythonReadsWhatIsWritten) {
    std::string input;
    const std::vector<OracleCase> cases = oracleCases();
    for (const OracleCase& row : cases) {
        input += hexadecimal(row.value.binaryData()) + "\t" + row.python + "\n";
    }
    const std::optional<std::string> output = tests::runPython(
        "import datetime, plistlib, sys\n"
        "for line in sys.stdin:\n"
        "    data, expression = line.split('\\t')\n"
        "    print(plistlib.loads(bytes.fromhex(data)) == eval(expression))\n",
        input);
    if (!output) {
        GTEST_SKIP() << "there is no python3 to compare with";
    }
    EXPECT_EQ(std::vector<std::string>(cases.size(), "True"), outputLines(*output));
}

TEST(BinaryPropertyList, theBytesOfADictionaryAreLaidOutKeysFirst) {
    const PropertyList value = dictionary({{"b", PropertyList::integer(1)}, {"a", text("b")}});
    EXPECT_EQ(
        "62706c6973743030"   // bplist00
        "d201020301"         // two keys, objects 1 and 2; their values, objects 3 and 1
        "5162"               // "b", once for key and value
        "5161"               // "a"
        "1001"               // 1
        "080d0f11"           // offsets
        "0000000000000101"   // sizes of offsets and references
        "0000000000000004"   // objects
        "0000000000000000"   // the outermost one
        "0000000000000013",  // the place of the offsets
        hexadecimal(value.binaryData()));
}

TEST(BinaryPropertyList, whatWasWrittenIsReadAgain) {
    for (const OracleCase& row : oracleCases()) {
        SCOPED_TRACE(row.python);
        EXPECT_EQ(row.value, PropertyList::parse(row.value.binaryData()));
    }
}

TEST(BinaryPropertyList, readAndWrittenAgainTheBytesAreTheSame) {
    const Bytes file = small().binaryData();
    EXPECT_EQ(file, PropertyList::parse(file).binaryData());
}

TEST(BinaryPropertyList, booleansAreStoredEachTime) {
    const PropertyList yes = PropertyList::boolean(true);
    EXPECT_EQ(assembled({{0xA2, 1, 2}, {0x09}, {0x09}}),
              PropertyList::array({yes, yes}).binaryData());
}

TEST(BinaryPropertyList, datesAndRealsKeepTheirBits) {
    const double next = 700000000.0000001;
    for (const double number : {next, -0.0, std::numeric_limits<double>::quiet_NaN(), 5e-324}) {
        const PropertyList date = PropertyList::date(dateFromReferenceSeconds(number));
        const PropertyList real = PropertyList::real(number);
        EXPECT_EQ(date, PropertyList::parse(date.binaryData()));
        EXPECT_EQ(real, PropertyList::parse(real.binaryData()));
    }
    const PropertyList zeros =
        PropertyList::array({PropertyList::real(0), PropertyList::real(-0.0)});
    EXPECT_EQ(zeros, PropertyList::parse(zeros.binaryData()));
}

TEST(BinaryPropertyList, formsThatAreNotWrittenAreRead) {
    EXPECT_EQ(PropertyList::real(1.5), PropertyList::parse(assembled({{0x22, 0x3F, 0xC0, 0, 0}})));
    const Bytes wideMinusOne(16, 0xFF);
    Bytes object{0x14};
    object.insert(object.end(), wideMinusOne.begin(), wideMinusOne.end());
    EXPECT_EQ(PropertyList::integer(-1), PropertyList::parse(assembled({object})));
    EXPECT_EQ(PropertyList::uid(0x010203), PropertyList::parse(assembled({{0x82, 1, 2, 3}})));
    EXPECT_EQ(text("abc"), PropertyList::parse(assembled({{0x5F, 0x10, 3, 'a', 'b', 'c'}})));
}

TEST(BinaryPropertyList, whatIsNoValueIsRefused) {
    const std::vector<std::vector<Bytes>> cases = {
        {{0x00}},                                // null
        {{0x0F}},                                // a filler
        {{0x0C}},                                // a base address
        {{0x70}},                                // an unused kind
        {{0x90}},                                // an unused kind
        {{0xB0}},                                // an ordered set
        {{0xC0}},                                // a set
        {{0xE0}},                                // an unused kind
        {{0x15, 0, 0, 0, 0}},                    // an integer of 32 bytes
        {{0x21, 0, 0}},                          // a real of two bytes
        {{0x30, 0}},                             // a date of one byte
        {{0x88, 0, 0, 0, 0, 0, 0, 0, 0, 0}},     // a reference of nine bytes
        {{0x51, 0x80}},                          // text that is no ASCII
        {{0x61, 0xD8, 0x00}},                    // half a character
        {{0x62, 0xDC, 0x00, 0xD8, 0x00}},        // its halves the wrong way round
        {{0xD1, 1, 1}, {0x10, 1}},               // a key that is a number
        {{0xA1, 2}, {0x10, 1}},                  // a reference beyond the objects
        {{0x5F, 0x23, 0, 0, 0, 0, 0, 0, 0, 0}},  // a count that is a real
        {{0x5F, 0x14, 0, 0, 0, 0, 0, 0, 0, 0}},  // a count of sixteen bytes
    };
    for (const std::vector<Bytes>& objects : cases) {
        SCOPED_TRACE(hexadecimal(objects.front()));
        expectCorrupted(assembled(objects));
    }
    // An integer of which the upper half counts.
    Bytes wide{0x14};
    wide.insert(wide.end(), {0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0});
    expectCorrupted(assembled({wide}));
}

TEST(BinaryPropertyList, hugeCountsAreRefused) {
    for (const std::uint8_t kind : Bytes{0x4F, 0x5F, 0x6F, 0xAF, 0xDF}) {
        for (const std::uint8_t byte : Bytes{0xFF, 0x7F, 0x80, 0x01}) {
            SCOPED_TRACE(std::to_string(kind) + " " + std::to_string(byte));
            Bytes object{kind, 0x13};
            object.push_back(byte);
            object.insert(object.end(), 7, byte == 0x80 ? std::uint8_t{0} : std::uint8_t{0xFF});
            expectCorrupted(assembled({object}));
        }
    }
}

TEST(BinaryPropertyList, hugeNumbersInTheTrailerAreRefused) {
    const Bytes valid = small().binaryData();
    for (std::size_t field = 0; field < 3; ++field) {
        for (const std::uint8_t byte : Bytes{0x01, 0x7F, 0x80, 0xFF}) {
            SCOPED_TRACE(std::to_string(field) + " " + std::to_string(byte));
            Bytes file = valid;
            file[file.size() - 24 + 8 * field] = byte;
            expectCorrupted(file);
        }
    }
}

TEST(BinaryPropertyList, anObjectThatContainsItselfIsRefused) {
    expectCorrupted(assembled({{0xA1, 0}}));
    expectCorrupted(assembled({{0xD1, 1, 0}, {0x51, 'a'}}));
    expectCorrupted(assembled({{0xA1, 1}, {0xA1, 2}, {0xA1, 0}}));
}

TEST(BinaryPropertyList, referencesThatMultiplyAreRefused) {
    std::vector<Bytes> objects;
    for (std::uint8_t level = 1; level <= 40; ++level) {
        objects.push_back({0xA3, level, level, level});
    }
    objects.push_back({0x10, 1});
    expectCorrupted(assembled(objects));
}

TEST(BinaryPropertyList, aLargeTextReferredToOftenIsRefused) {
    // A key that each of many dictionaries names would be stored that often.
    constexpr std::size_t keyLength = 1U << 18;
    const std::string key(keyLength, 'k');
    PropertyList::Array dictionaries(96, dictionary({{key, PropertyList::integer(1)}}));
    expectCorrupted(PropertyList::array(std::move(dictionaries)).binaryData());
}

TEST(BinaryPropertyList, someSharingIsAccepted) {
    const Bytes file = assembled({{0xA2, 1, 1}, {0xA2, 2, 2}, {0x51, 'a'}});
    const PropertyList inner = PropertyList::array({text("a"), text("a")});
    EXPECT_EQ(PropertyList::array({inner, inner}), PropertyList::parse(file));
}

TEST(BinaryPropertyList, objectsThatOverlapAreRefused) {
    // The text of the second object begins within the first one's.
    Bytes file = assembled({{0xA2, 1, 2}, {0x54, 0x53, 'a', 'b', 'c'}, {0x08}});
    const std::size_t offsets = file.size() - 32 - 3;
    file[offsets + 2] = static_cast<std::uint8_t>(file[offsets + 1] + 1);
    expectCorrupted(file);
}

TEST(BinaryPropertyList, nestingEndsAtTheLimit) {
    PropertyList deepest = PropertyList::array({});
    for (std::size_t depth = 1; depth < PropertyList::maximumDepth; ++depth) {
        deepest = PropertyList::array({deepest});
    }
    EXPECT_EQ(deepest, PropertyList::parse(deepest.binaryData()));

    // A chain of a hundred thousand arrays, each holding the next.
    constexpr std::uint32_t count = 100000;
    Bytes file = tests::bytes("bplist00");
    const auto append = [&file](std::uint64_t number, unsigned size) {
        for (unsigned place = size; place > 0; --place) {
            file.push_back(static_cast<std::uint8_t>(number >> (8 * (place - 1))));
        }
    };
    for (std::uint32_t index = 1; index < count; ++index) {
        file.push_back(0xA1);
        append(index, 4);
    }
    file.push_back(0xA0);
    const std::size_t table = file.size();
    for (std::uint32_t index = 0; index < count; ++index) {
        append(8 + std::uint64_t{5} * index, 4);
    }
    append(0x0404, 8);
    append(count, 8);
    append(0, 8);
    append(table, 8);
    expectCorrupted(file);
}

TEST(BinaryPropertyList, everyTruncationIsRefused) {
    const Bytes file = small().binaryData();
    for (std::size_t length = 8; length < file.size(); ++length) {
        SCOPED_TRACE(length);
        expectCorrupted(BytesView(file).first(length));
    }
}

TEST(BinaryPropertyList, everyCorruptionOfOneByteIsAnErrorOrAValue) {
    tests::expectErrorOrValueForEveryCorruptionOfOneByte(small().binaryData());
}

TEST(BinaryPropertyList, bytesAfterTheHeaderAloneAreRefused) {
    expectCorrupted(tests::bytes("bplist00"));
    expectCorrupted(Bytes(64, 0));
    Bytes zeros(1000, 0);
    const Bytes header = tests::bytes("bplist00");
    std::copy(header.begin(), header.end(), zeros.begin());
    expectCorrupted(zeros);
}

}  // namespace
}  // namespace browsersweep
