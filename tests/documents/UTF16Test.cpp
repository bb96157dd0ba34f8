#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "browsersweep/documents/internal/UTF16.h"

namespace browsersweep {
namespace {

struct EncodedText {
    std::string_view utf8;
    Bytes bigEndian;
};

const std::array<EncodedText, 7>& encodedTexts() {
    static const std::array<EncodedText, 7> table = {{
        {"", {}},
        {"a", {0x00, 0x61}},
        {"\xC3\xBC", {0x00, 0xFC}},
        {"\xE2\x82\xAC", {0x20, 0xAC}},
        {"\xEF\xBF\xBF", {0xFF, 0xFF}},
        {"\xF0\x90\x80\x80", {0xD8, 0x00, 0xDC, 0x00}},
        {"\xF4\x8F\xBF\xBF", {0xDB, 0xFF, 0xDF, 0xFF}},
    }};
    return table;
}

TEST(UTF16, bothFormsOfTheSameTextAreConvertedIntoEachOther) {
    for (const EncodedText& row : encodedTexts()) {
        SCOPED_TRACE(std::string(row.utf8));
        EXPECT_EQ(row.bigEndian, utf16BigEndianFromUTF8(row.utf8));
        EXPECT_EQ(row.utf8, utf8FromUTF16(row.bigEndian, ByteOrder::bigEndian));
        Bytes swapped = row.bigEndian;
        for (std::size_t index = 0; index < swapped.size(); index += 2) {
            std::swap(swapped[index], swapped[index + 1]);
        }
        EXPECT_EQ(row.utf8, utf8FromUTF16(swapped, ByteOrder::littleEndian));
    }
}

TEST(UTF16, aSurrogateWithoutItsOtherHalfIsRefused) {
    const std::array<Bytes, 6> malformed = {{
        {0x61},
        {0xD8, 0x00},
        {0xDC, 0x00},
        {0xDC, 0x00, 0xD8, 0x00},
        {0xD8, 0x00, 0x00, 0x61},
        {0xD8, 0x00, 0xD8, 0x00, 0xDC, 0x00},
    }};
    for (const Bytes& bytes : malformed) {
        EXPECT_EQ(std::nullopt, utf8FromUTF16(bytes, ByteOrder::bigEndian));
    }
}

TEST(UTF16, utf8IsWellFormedOrNot) {
    for (const EncodedText& row : encodedTexts()) {
        EXPECT_TRUE(isUTF8(row.utf8));
    }
    const std::array<std::string_view, 10> malformed = {
        "\x80",              // a continuation alone
        "\xC0\x80",          // overlong
        "\xC1\xBF",          // overlong
        "\xE0\x80\x80",      // overlong
        "\xF0\x80\x80\x80",  // overlong
        "\xED\xA0\x80",      // a surrogate
        "\xF4\x90\x80\x80",  // beyond the last code point
        "\xC3",              // cut off
        "\xE2\x82",          // cut off
        "a\xFF",
    };
    for (const std::string_view text : malformed) {
        EXPECT_FALSE(isUTF8(text));
    }
}

}  // namespace
}  // namespace browsersweep
