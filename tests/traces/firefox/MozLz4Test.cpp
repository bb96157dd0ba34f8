#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/traces/firefox/internal/MozLz4.h"

#include "tests/support/Bytes.h"

namespace browsersweep {
namespace {

using namespace std::string_literals;
using tests::bytes;

/** The letter a 160 times, compressed by another program. */
const std::string ofAnother = "mozLz40\0\xA0\0\0\0\x1F\x61\x01\0\x87P\x61\x61\x61\x61\x61"s;

TEST(MozLz4, contentsComeBackAsTheyWere) {
    for (const std::string& text : {""s, "{}"s, std::string(100'000, 'x'), "\0\xFF a\n"s}) {
        const Bytes file = encodedMozLz4(text);
        EXPECT_TRUE(std::equal(file.begin(), file.begin() + 8, "mozLz40\0"));
        EXPECT_EQ(decodedMozLz4(file), bytes(text));
    }
}

TEST(MozLz4, theLengthStandsWithItsLeastByteFirst) {
    EXPECT_EQ(decodedMozLz4(bytes(ofAnother)), bytes(std::string(160, 'a')));
    EXPECT_EQ(encodedMozLz4(std::string(0x010203, 'x')).at(8), 0x03);
    EXPECT_EQ(encodedMozLz4(std::string(0x010203, 'x')).at(10), 0x01);
}

TEST(MozLz4, everyCorruptionIsAnErrorOrOtherContents) {
    EXPECT_THROW(decodedMozLz4({}), DecodingError);
    EXPECT_THROW(decodedMozLz4(bytes("{\"windows\":[]}")), DecodingError);
    for (std::size_t size = 0; size < ofAnother.size(); ++size) {
        EXPECT_THROW(decodedMozLz4(bytes(ofAnother.substr(0, size))), DecodingError) << size;
    }
    EXPECT_THROW(decodedMozLz4(bytes(ofAnother + "x")), DecodingError);
}

TEST(MozLz4, moreThanAnySessionHoldsIsRefused) {
    const std::string text((std::size_t{64} << 20) + 1, 'x');
    EXPECT_THROW(decodedMozLz4(encodedMozLz4(text)), DecodingError);
    EXPECT_EQ(decodedMozLz4(encodedMozLz4(text.substr(1))).size(), text.size() - 1);
}

TEST(MozLz4, aLengthThatTheBytesCannotHaveAsksForNoMemory) {
    std::string file = ofAnother;
    for (const char byte : {'\x7F', '\xFF'}) {
        std::fill(file.begin() + 8, file.begin() + 12, byte);
        EXPECT_THROW(decodedMozLz4(bytes(file)), DecodingError);
    }
}

}  // namespace
}  // namespace browsersweep
