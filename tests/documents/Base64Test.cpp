#include <string>

#include <gtest/gtest.h>

#include "browsersweep/documents/internal/Base64.h"

namespace browsersweep {
namespace {

// The examples of RFC 4648.
TEST(Base64, writesThreeBytesAsFourDigitsAndFillsUp) {
    EXPECT_EQ(toBase64(""), "");
    EXPECT_EQ(toBase64("f"), "Zg==");
    EXPECT_EQ(toBase64("fo"), "Zm8=");
    EXPECT_EQ(toBase64("foo"), "Zm9v");
    EXPECT_EQ(toBase64("foobar"), "Zm9vYmFy");
    EXPECT_EQ(toBase64(std::string("\xFB\xFF\0", 3)), "+/8A");
}

TEST(Base64, isReadAsFarAsItGoes) {
    EXPECT_EQ(fromBase64(""), "");
    EXPECT_EQ(fromBase64("Zg=="), "f");
    EXPECT_EQ(fromBase64("Zm8="), "fo");
    EXPECT_EQ(fromBase64("Zm9vYmFy"), "foobar");
    EXPECT_EQ(fromBase64("+/8A"), std::string("\xFB\xFF\0", 3));
    EXPECT_EQ(fromBase64("Zm9v YmFy"), "foo");
    EXPECT_EQ(base64Digit('/'), 63U);
    EXPECT_EQ(base64Digit('='), std::nullopt);
}

}  // namespace
}  // namespace browsersweep
