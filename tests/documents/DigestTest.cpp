#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "browsersweep/documents/internal/Digest.h"

namespace browsersweep {
namespace {

template <std::size_t count>
std::string hexadecimal(const std::array<std::uint8_t, count>& bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += digits[byte / 16];
        text += digits[byte % 16];
    }
    return text;
}

// The examples that FIPS 180-4 and RFC 1321 give, and lengths around the end of a block.
TEST(Digest, sha256IsThatOfThePublishedExamples) {
    EXPECT_EQ(hexadecimal(sha256("")),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(hexadecimal(sha256("abc")),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(hexadecimal(sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(hexadecimal(sha256(std::string(1'000'000, 'a'))),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Digest, md5IsThatOfThePublishedExamples) {
    EXPECT_EQ(hexadecimal(md5("")), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(hexadecimal(md5("abc")), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(hexadecimal(md5("1234567890123456789012345678901234567890123456789012345678901234"
                              "5678901234567890")),
              "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(Digest, md5InDigitsHasSmallLetters) {
    EXPECT_EQ(md5InDigits("abc"), "900150983cd24fb0d6963f7d28e17f72");
}

TEST(Digest, everyLengthAroundTheEndOfABlockIsPadded) {
    EXPECT_EQ(hexadecimal(md5(std::string(55, 'a'))), "ef1772b6dff9a122358552954ad0df65");
    EXPECT_EQ(hexadecimal(md5(std::string(56, 'a'))), "3b0c8ac703f828b04c6c197006d17218");
    EXPECT_EQ(hexadecimal(md5(std::string(64, 'a'))), "014842d480b571495a4a0363793f7367");
    EXPECT_EQ(hexadecimal(sha256(std::string(55, 'a'))),
              "9f4390f8d30c2dd92ec9f095b65e2b9ae9b0a925a5258e241c9f1e910f734318");
    EXPECT_EQ(hexadecimal(sha256(std::string(64, 'a'))),
              "ffe054fe7ae0cb6dc65c3af9b61d5209f439851db43d0ba5997337df154668eb");
}

}  // namespace
}  // namespace browsersweep
