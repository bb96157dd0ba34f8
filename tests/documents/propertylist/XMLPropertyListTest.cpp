#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/propertylist/internal/XMLPropertyList.h"

#include "tests/support/Bytes.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/Python.h"

namespace browsersweep {
namespace {

using tests::bytes;
using tests::dictionary;
using tests::expectCorrupted;
using tests::text;

std::string inPlist(const std::string& value) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n" +
           value + "\n</plist>\n";
}

struct XMLCase {
    std::string xml;
    PropertyList expected;
};

std::vector<XMLCase> xmlCases() {
    return {
        {"<string>a &amp; b</string>", text("a & b")},
        {"<string/>", text("")},
        {"<string> kept </string>", text(" kept ")},
        {"<string><![CDATA[<b>]]></string>", text("<b>")},
        {"<string>a<!-- comment -->b</string>", text("ab")},
        {"<true/>", PropertyList::boolean(true)},
        {"<false></false>", PropertyList::boolean(false)},
        {"<integer> -12 </integer>", PropertyList::integer(-12)},
        {"<integer>+7</integer>", PropertyList::integer(7)},
        {"<integer>0xFf</integer>", PropertyList::integer(255)},
        {"<integer>-9223372036854775808</integer>",
         PropertyList::integer(std::numeric_limits<std::int64_t>::min())},
        {"<integer>18446744073709551615</integer>",
         PropertyList::unsignedInteger(std::numeric_limits<std::uint64_t>::max())},
        {"<real>0.5</real>", PropertyList::real(0.5)},
        {"<real>1e3</real>", PropertyList::real(1000)},
        {"<real>-.5</real>", PropertyList::real(-0.5)},
        {"<real>5e-324</real>", PropertyList::real(5e-324)},
        {"<real>-inf</real>", PropertyList::real(-std::numeric_limits<double>::infinity())},
        {"<date>2001-01-01T00:00:00Z</date>", PropertyList::date(dateFromReferenceSeconds(0))},
        {"<date>2023-03-08T20:26:40Z</date>",
         PropertyList::date(dateFromReferenceSeconds(700000000))},
        {"<date>1969-12-31T23:59:59Z</date>",
         PropertyList::date(dateFromReferenceSeconds(-978307201))},
        {"<data>\n\tAQID\n</data>", PropertyList::data({1, 2, 3})},
        {"<data>AQI=</data>", PropertyList::data({1, 2})},
        {"<data>AQ==</data>", PropertyList::data({1})},
        {"<data></data>", PropertyList::data({})},
        {"<array/>", PropertyList::array({})},
        {"<array> <true/> <array><string>a</string></array> </array>",
         PropertyList::array({PropertyList::boolean(true), PropertyList::array({text("a")})})},
        {"<dict/>", PropertyList::dictionary({})},
        {"<dict><key>b</key><string>1</string><key>a</key><dict/></dict>",
         PropertyList::dictionary({{"b", text("1")}, {"a", PropertyList::dictionary({})}})},
    };
}

TEST(XMLPropertyList, eachElementIsAValue) {
    for (const XMLCase& row : xmlCases()) {
        SCOPED_TRACE(row.xml);
        EXPECT_EQ(row.expected, PropertyList::parse(bytes(inPlist(row.xml))));
        EXPECT_EQ(row.expected, PropertyList::parse(bytes(row.xml))) << "without plist around";
    }
}

TEST(XMLPropertyList, whatPythonWritesIsRead) {
    const auto output = tests::runPython(
        "import datetime, plistlib, sys\n"
        "value = {'z': [1, -1, 2**64 - 1, 0.1, True, False], 'a': 'x & \\u00fc < \\U0001f36a',\n"
        "         'date': datetime.datetime(2024, 2, 29, 23, 59, 59), 'data': bytes(range(256)),\n"
        "         'empty': {}, 'list': []}\n"
        "sys.stdout.write(plistlib.dumps(value, sort_keys=False).decode())\n",
        "");
    if (!output) {
        GTEST_SKIP() << "there is no python3 to compare with";
    }
    Bytes everyByte;
    for (unsigned byte = 0; byte < 256; ++byte) {
        everyByte.push_back(static_cast<std::uint8_t>(byte));
    }
    const PropertyList expected = PropertyList::dictionary(
        {{"z", PropertyList::array(
                   {PropertyList::integer(1), PropertyList::integer(-1),
                    PropertyList::unsignedInteger(std::numeric_limits<std::uint64_t>::max()),
                    PropertyList::real(0.1), PropertyList::boolean(true),
                    PropertyList::boolean(false)})},
         {"a", text("x & \xC3\xBC < \xF0\x9F\x8D\xAA")},
         {"date", PropertyList::date(dateFromReferenceSeconds(730943999))},
         {"data", PropertyList::data(everyByte)},
         {"empty", PropertyList::dictionary({})},
         {"list", PropertyList::array({})}});
    EXPECT_EQ(expected, PropertyList::parse(bytes(*output)));
}

TEST(XMLPropertyList, whatIsNoValueOfItsElementIsRefused) {
    for (const char* value : {"<integer/>",
                              "<integer>1.5</integer>",
                              "<integer>12a</integer>",
                              "<integer>-</integer>",
                              "<integer>0x</integer>",
                              "<integer>18446744073709551616</integer>",
                              "<integer>-9223372036854775809</integer>",
                              "<real/>",
                              "<real>1,5</real>",
                              "<real>e5</real>",
                              "<real>1e</real>",
                              "<real>1e400</real>",
                              "<real>0x10</real>",
                              "<real>.</real>",
                              "<date/>",
                              "<date>2001-01-01</date>",
                              "<date>2001-02-29T00:00:00Z</date>",
                              "<date>2001-01-01T24:00:00Z</date>",
                              "<date>2001-01-01T00:60:00Z</date>",
                              "<date>2001-01-01T00:00:60Z</date>",
                              "<date>2001-01-01T00:00:00+</date>",
                              "<data>A</data>",
                              "<data>AQID=</data>",
                              "<data>====</data>",
                              "<data>A===</data>",
                              "<data>AQ==AQID</data>",
                              "<data>A*ID</data>",
                              "<true>yes</true>"}) {
        expectCorrupted(bytes(inPlist(value)));
    }
}

TEST(XMLPropertyList, anElementOutOfPlaceIsRefused) {
    for (const char* value :
         {"", "text", "<key>a</key>", "<string>a</string><string>b</string>",
          "<dict><string>a</string></dict>", "<dict><key>a</key></dict>",
          "<dict><key>a</key><key>b</key><true/></dict>", "<dict><key>a</key><true/><true/></dict>",
          "<array><key>a</key></array>", "<string><true/></string>", "<unknown/>",
          "<plist><true/></plist>", "<array>text</array>", "<array><plist/></array>", "<set/>"}) {
        expectCorrupted(bytes(inPlist(value)));
    }
}

TEST(XMLPropertyList, malformedDocumentsAreRefused) {
    for (const char* document :
         {"<plist><true/></plist>junk", "<plist><true/></plist><plist><true/></plist>",
          "<plist><true/>", "<plist><array></plist>", "<", "<plist", "<?xml version=\"1.0\"?>",
          "<string>&unknown;</string>", "<string>\x01</string>", "<string>\xFF</string>"}) {
        expectCorrupted(bytes(document));
    }
}

TEST(XMLPropertyList, aDocumentWithEntitiesOfItsOwnIsRefused) {
    expectCorrupted(bytes("<!DOCTYPE plist [<!ENTITY a \"b\">]><string>&a;</string>"));
    std::string laughs = "<!DOCTYPE plist [<!ENTITY l0 \"ha\">";
    for (int level = 1; level < 30; ++level) {
        const std::string before = "&l" + std::to_string(level - 1) + ";";
        laughs += "<!ENTITY l" + std::to_string(level) + " \"" + before + before + "\">";
    }
    expectCorrupted(bytes(laughs + "]><string>&l29;</string>"));
}

TEST(XMLPropertyList, nestingEndsAtTheLimit) {
    const auto nested = [](std::size_t depth) {
        std::string document = "<plist>";
        for (std::size_t count = 0; count < depth; ++count) {
            document += "<array>";
        }
        for (std::size_t count = 0; count < depth; ++count) {
            document += "</array>";
        }
        return document + "</plist>";
    };
    EXPECT_EQ(PropertyList::maximumDepth,
              PropertyList::parse(bytes(nested(PropertyList::maximumDepth))).depth());
    expectCorrupted(bytes(nested(PropertyList::maximumDepth + 1)));
    expectCorrupted(bytes(nested(100000)));
}

TEST(XMLPropertyList, documentsInUTF16AreRead) {
    const std::string document = "<plist><string>a</string></plist>";
    for (const bool isBig : {true, false}) {
        Bytes file = isBig ? Bytes{0xFE, 0xFF} : Bytes{0xFF, 0xFE};
        for (const char character : document) {
            const auto byte = static_cast<std::uint8_t>(character);
            file.insert(file.end(), isBig ? std::initializer_list<std::uint8_t>{0, byte}
                                          : std::initializer_list<std::uint8_t>{byte, 0});
        }
        EXPECT_EQ(text("a"), PropertyList::parse(file));
    }
}

TEST(XMLPropertyList, halfACharacterAtTheEndIsRefused) {
    std::string file;
    for (const char character : std::string("<plist><array/></plist>\r\n")) {
        file += {character, '\0'};
    }
    EXPECT_EQ(PropertyList::array({}), PropertyList::parse(bytes(file)));
    file.pop_back();
    expectCorrupted(bytes(file));
}

TEST(XMLPropertyList, aDocumentLongerThanTheParsersChunksIsRead) {
    const std::string longText(3U << 20, 'x');
    EXPECT_EQ(text(longText), PropertyList::parse(bytes("<string>" + longText + "</string>")));
}

TEST(XMLPropertyList, whiteSpaceOfAnyLengthMayStandBetweenElements) {
    const std::string blanks(1U << 20, '\n');
    EXPECT_EQ(PropertyList::array({PropertyList::boolean(true)}),
              PropertyList::parse(bytes(blanks + "<plist>" + blanks + "<array>" + blanks +
                                        "<true/>" + blanks + "</array></plist>" + blanks)));
}

TEST(XMLPropertyList, whatTheParserWouldHaveToKeepForLongIsRefused) {
    const std::string letters(1U << 20, 'x');
    expectCorrupted(bytes("<plist><!--" + letters + "--><true/></plist>"));
    expectCorrupted(bytes("<plist a=\"" + letters + "\"><true/></plist>"));
    expectCorrupted(bytes("<plist a='' b='' c='' d='' e=''><true/></plist>"));
    EXPECT_EQ(PropertyList::boolean(true),
              PropertyList::parse(bytes("<plist a='' b='' c='' d=''><true/></plist>")));
}

TEST(XMLPropertyList, emptyValuesOfAllKindsStandBesideEachOther) {
    const PropertyList expected = PropertyList::array(
        {PropertyList::boolean(true), PropertyList::boolean(false), text(""),
         PropertyList::data({}), PropertyList::array({}), PropertyList::dictionary({}),
         PropertyList::array({PropertyList::array({}), text("a")}),
         dictionary({{"", PropertyList::array({})}, {"b", text("")}})});
    EXPECT_EQ(expected, PropertyList::parse(bytes(
                            inPlist("<array><true/><false/><string/><data/><array/><dict/>"
                                    "<array><array/><string>a</string></array>"
                                    "<dict><key/><array/><key>b</key><string/></dict></array>"))));
}

TEST(XMLPropertyList, everyTruncationIsRefused) {
    const std::string document =
        inPlist("<dict><key>a</key><array><integer>1</integer></array></dict>");
    const std::size_t whole = document.find("</plist>") + 8;
    for (std::size_t length = 1; length < whole; ++length) {
        expectCorrupted(bytes(std::string_view(document).substr(0, length)));
    }
}

TEST(XMLPropertyList, everyCorruptionOfOneByteIsAnErrorOrAValue) {
    const Bytes valid = bytes(
        "<plist><dict><key>a</key><array><integer>1</integer><data>AQID</data>"
        "<date>2001-01-01T00:00:00Z</date><real>1.5</real></array></dict></plist>");
    tests::expectErrorOrValueForEveryCorruptionOfOneByte(valid);
}

std::string written(const PropertyList& value) {
    const Bytes bytes = xmlPropertyListData(value);
    return {bytes.begin(), bytes.end()};
}

TEST(XMLPropertyList, isWrittenAsThePlatformWritesIt) {
    const Bytes data(60, 0xFF);
    EXPECT_EQ(
        written(tests::dictionary(
            {{"z", text("a & <b>\r\n")},
             {"a", PropertyList::array({PropertyList::boolean(true), PropertyList::integer(-3),
                                        PropertyList::unsignedInteger(~std::uint64_t{0}),
                                        PropertyList::real(0.1)})},
             {"data", PropertyList::data(data)},
             {"date", PropertyList::date(dateFromReferenceSeconds(700000000.75))},
             {"none", tests::dictionary({})}})),
        inPlist("<dict>\n\t<key>z</key>\n\t<string>a &amp; &lt;b&gt;&#13;\n</string>\n"
                "\t<key>a</key>\n\t<array>\n\t\t<true/>\n\t\t<integer>-3</integer>\n"
                "\t\t<integer>18446744073709551615</integer>\n\t\t<real>0.1</real>\n\t</array>\n"
                "\t<key>data</key>\n\t<data>\n\t" +
                std::string(68, '/') + "\n\t" + std::string(12, '/') +
                "\n\t</data>\n"
                "\t<key>date</key>\n\t<date>2023-03-08T20:26:40Z</date>\n"
                "\t<key>none</key>\n\t<dict/>\n</dict>"));
}

TEST(XMLPropertyList, isReadAgainAsItWasWritten) {
    for (const XMLCase& each : xmlCases()) {
        const Bytes bytes = xmlPropertyListData(each.expected);
        EXPECT_EQ(parseXMLPropertyList(bytes), each.expected) << each.xml;
    }
}

TEST(XMLPropertyList, hasNoWordForSomeValues) {
    for (const PropertyList& value :
         {PropertyList::uid(1), text(std::string("a\1")),
          PropertyList::date(dateFromReferenceSeconds(1e15)),
          PropertyList::date(dateFromReferenceSeconds(std::numeric_limits<double>::quiet_NaN()))}) {
        EXPECT_THROW(xmlPropertyListData(value), std::invalid_argument);
    }
}

TEST(XMLPropertyList, isTheFormOfWhatStandsInTheSameFormOrInNone) {
    const PropertyList value = text("a");
    EXPECT_EQ(value.dataLike(bytes("<plist><true/></plist>")), xmlPropertyListData(value));
    EXPECT_EQ(value.dataLike(value.binaryData()), value.binaryData());
}

}  // namespace
}  // namespace browsersweep
