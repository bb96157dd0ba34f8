#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sites/internal/ByteHosts.h"

#include "tests/support/PropertyLists.h"

namespace browsersweep {
namespace {

using tests::dictionary;
using tests::text;
using Hosts = std::vector<std::string>;

std::string wide(const std::string& letters) {
    std::string bytes;
    for (const char letter : letters) {
        bytes += {letter, '\0'};
    }
    return bytes;
}

Bytes bytesOf(const std::string& letters) {
    return {letters.begin(), letters.end()};
}

std::string binary(const PropertyList& value) {
    const Bytes bytes = value.binaryData();
    return {bytes.begin(), bytes.end()};
}

TEST(ByteHosts, areFoundInBytesOfNoKnownForm) {
    EXPECT_EQ(hostsInBytes("\1\2https://www.a.test/x\3y http://b.test:8080 HTTPS://C.test"),
              (Hosts{"b.test", "c.test", "www.a.test"}));
    EXPECT_EQ(hostsInBytes(std::string("\7\0", 2) + wide("https://www.a.test/x") + "\1"),
              Hosts{"www.a.test"});
    EXPECT_EQ(hostsInBytes(std::string("\0", 1) + wide("http://b.test")), Hosts{"b.test"});
    EXPECT_EQ(hostsInBytes("a http://[::1]:80/"), Hosts{"::1"});
}

TEST(ByteHosts, areNoPartsOfOtherWords) {
    EXPECT_EQ(hostsInBytes(""), Hosts{});
    EXPECT_EQ(hostsInBytes("http:/a.test https//a.test http://"), Hosts{});
    EXPECT_EQ(hostsInBytes("ftp://a.test file:///h"), Hosts{});
}

TEST(ByteHosts, ofAPropertyListAreItsTextsAtAnyDepth) {
    const PropertyList inner =
        dictionary({{"https://key.test/", text("x")}, {"d", text("https://inner.test")}});
    const PropertyList all =
        dictionary({{"a", text("https://a.test")},
                    {"b", PropertyList::array({text("http://b.test/3"), PropertyList::integer(3)})},
                    {"c", PropertyList::data(bytesOf(binary(inner)))},
                    {"e", PropertyList::data(bytesOf(wide("https://wide.test/")))}});
    const Hosts hosts{"a.test", "b.test", "inner.test", "key.test", "wide.test"};
    EXPECT_EQ(hostsInBytes(binary(all)), hosts);
    EXPECT_EQ(hostsInBytes("vers" + binary(all)), hosts);
    EXPECT_EQ(hostsInValue(all), hosts);
}

TEST(ByteHosts, ofADamagedPropertyListAreThoseInItsBytes) {
    const std::string whole = binary(dictionary({{"a", text("https://a.test/x")}}));
    EXPECT_EQ(hostsInBytes(whole.substr(0, whole.size() - 3)), Hosts{"a.test"});
}

TEST(ByteHosts, propertyListsWithinPropertyListsEnd) {
    PropertyList value = text("https://deep.test/");
    for (int depth = 0; depth < 40; ++depth) {
        value = PropertyList::data(bytesOf(binary(value)));
    }
    EXPECT_EQ(hostsInValue(value), Hosts{"deep.test"});
}

TEST(ByteHosts, ofPropertyListsThatAddUpToTooMuchAreAnError) {
    const PropertyList value = tests::manyInEachOther(text("https://a.test/"));
    EXPECT_THROW(hostsInValue(value), DecodingError);
    EXPECT_THROW(hostsInBytes(binary(value)), DecodingError);
}

}  // namespace
}  // namespace browsersweep
