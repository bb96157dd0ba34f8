#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/binarycoding/BinaryDataEncoder.h"
#include "browsersweep/binarycoding/BinaryEncodingContainer.h"
#include "browsersweep/binarycoding/BinaryEncodingError.h"

namespace browsersweep {
namespace {

using List = std::vector<std::uint8_t>;

TEST(BinaryEncodingContainer, writesStringsAndRefusesWhatTheEncodingLacks) {
    BinaryDataEncoderStorage storage;
    const BinaryUserInfo userInfo;
    BinaryEncodingContainer container = BinaryEncoder(storage, userInfo).container();
    container.encodeString("ab", StringEncoding::ascii, 0);
    container.encodeString("\xC3\xA9", StringEncoding::isoLatin1);
    container.encodeString("\xC3\xA9", StringEncoding::utf8);
    EXPECT_EQ(storage.data, (List{'a', 'b', 0, 0xE9, 0xC3, 0xA9}));
    try {
        container.encodeString("\xC3\xA9", StringEncoding::ascii, 0);
        FAIL() << "no error";
    } catch (const BinaryEncodingError& error) {
        EXPECT_EQ(error.kind(), BinaryEncodingError::Kind::incompatibleStringEncoding);
        EXPECT_EQ(error.what(), error.context().debugDescription);
        EXPECT_EQ(error.context().debugDescription,
                  "The string \xC3\xA9 could not be encoded as data using the encoding ASCII.");
    }
}

TEST(BinaryEncodingContainer, namesTheEncodingThatLacksAText) {
    BinaryDataEncoderStorage storage;
    const BinaryUserInfo userInfo;
    BinaryEncodingContainer container = BinaryEncoder(storage, userInfo).container();
    try {
        container.encodeString("\xE2\x82\xAC", StringEncoding::isoLatin1);
        FAIL() << "no error";
    } catch (const BinaryEncodingError& error) {
        EXPECT_EQ(error.context().debugDescription,
                  "The string \xE2\x82\xAC could not be encoded as data using the encoding "
                  "ISO-8859-1.");
    }
}

TEST(BinaryEncodingContainer, writesBytesAsTheyAreAndAnyTerminator) {
    BinaryDataEncoderStorage storage;
    const BinaryUserInfo userInfo;
    BinaryEncodingContainer container = BinaryEncoder(storage, userInfo).container();
    const List bytes{1, 0, 255};
    container.encode(std::span(bytes));
    container.encodeString("a", StringEncoding::ascii, 'x');
    EXPECT_EQ(storage.data, (List{1, 0, 255, 'a', 'x'}));
}

}  // namespace
}  // namespace browsersweep
