#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/binarycoding/StringEncoding.h"

namespace browsersweep {
namespace {

using Bytes = std::vector<std::uint8_t>;

/** UTF-8 by its definition: the bits of the number, spread over one to four bytes. */
std::string utf8Of(std::uint32_t number) {
    const auto tail = [&](unsigned shift) {
        return static_cast<char>(0x80 + number / (1U << shift) % 64);
    };
    if (number < 0x80) {
        return {static_cast<char>(number)};
    }
    if (number < 0x800) {
        return {static_cast<char>(192 + number / 64), tail(0)};
    }
    if (number < 0x10000) {
        return {static_cast<char>(224 + number / 4096), tail(6), tail(0)};
    }
    return {static_cast<char>(240 + number / 262144), tail(12), tail(6), tail(0)};
}

bool isCharacter(std::uint32_t number) {
    return number <= 0x10FFFF && (number < 0xD800 || number > 0xDFFF);
}

TEST(StringEncoding, everyCharacterIsUTF8AndNoHalfOfAPairIs) {
    for (std::uint32_t number = 0; number < 0x140000; ++number) {
        const std::string text = utf8Of(number);
        const auto expected = isCharacter(number) ? std::optional(text) : std::nullopt;
        ASSERT_EQ(encodedText(text, StringEncoding::utf8), expected) << number;
    }
}

TEST(StringEncoding, noOtherSequenceOfUpToThreeBytesIsOneCharacter) {
    std::set<std::string> characters;
    for (std::uint32_t number = 0x80; number < 0x10000; ++number) {
        if (isCharacter(number)) {
            characters.insert(utf8Of(number));
        }
    }
    const std::vector<unsigned> thirds{0x00, 0x7F, 0x80, 0xBF, 0xC0, 0xFF};
    for (unsigned first = 0x80; first < 0x100; ++first) {
        const std::string alone{static_cast<char>(first)};
        ASSERT_EQ(encodedText(alone, StringEncoding::utf8), std::nullopt) << first;
        for (unsigned second = 0; second < 0x100; ++second) {
            const std::string two{static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(encodedText(two, StringEncoding::utf8).has_value(),
                      characters.count(two) == 1)
                << first << ' ' << second;
            for (const unsigned third : thirds) {
                const std::string three = two + static_cast<char>(third);
                const bool isText =
                    characters.count(three) == 1 || (characters.count(two) == 1 && third < 0x80);
                ASSERT_EQ(encodedText(three, StringEncoding::utf8).has_value(), isText)
                    << first << ' ' << second << ' ' << third;
            }
        }
    }
}

TEST(StringEncoding, noSequenceOfFourBytesIsOneCharacterButThoseOfTheHighPlanes) {
    for (unsigned first = 0xF0; first < 0x100; ++first) {
        for (unsigned second = 0; second < 0x100; ++second) {
            for (const unsigned last : {0x7FU, 0x80U, 0xBFU, 0xC0U}) {
                const std::string text{static_cast<char>(first), static_cast<char>(second),
                                       static_cast<char>(0x80), static_cast<char>(last)};
                const bool isText = (last == 0x80 || last == 0xBF) && second >= 0x80 &&
                                    second < 0xC0 && first < 0xF5 &&
                                    (first > 0xF0 || second >= 0x90) &&
                                    (first < 0xF4 || second < 0x90);
                ASSERT_EQ(encodedText(text, StringEncoding::utf8).has_value(), isText)
                    << first << ' ' << second << ' ' << last;
            }
        }
    }
}

TEST(StringEncoding, everyByteIsACharacterOfLatin1AndNoOtherCharacterIsAByte) {
    for (std::uint32_t number = 0; number < 0x1000; ++number) {
        const std::string text = utf8Of(number);
        if (number < 0x100) {
            const Bytes byte{static_cast<std::uint8_t>(number)};
            ASSERT_EQ(decodedText(byte, StringEncoding::isoLatin1), text);
            ASSERT_EQ(encodedText(text, StringEncoding::isoLatin1),
                      std::string(1, static_cast<char>(number)));
        } else {
            ASSERT_EQ(encodedText(text, StringEncoding::isoLatin1), std::nullopt) << number;
        }
    }
    EXPECT_EQ(encodedText("a\xC3", StringEncoding::isoLatin1), std::nullopt);
    EXPECT_EQ(encodedText("\xC3\xA9t\xC3\xA9", StringEncoding::isoLatin1), "\xE9t\xE9");
    EXPECT_EQ(encodedText("\xF0\x9F\x98\x80", StringEncoding::isoLatin1), std::nullopt);
}

TEST(StringEncoding, asciiHasSevenBits) {
    for (unsigned number = 0; number < 0x100; ++number) {
        const Bytes byte{static_cast<std::uint8_t>(number)};
        ASSERT_EQ(decodedText(byte, StringEncoding::ascii).has_value(), number < 0x80) << number;
    }
    EXPECT_EQ(encodedText("a\x7F", StringEncoding::ascii), "a\x7F");
    EXPECT_EQ(encodedText("\xC3\xA9", StringEncoding::ascii), std::nullopt);
}

}  // namespace
}  // namespace browsersweep
