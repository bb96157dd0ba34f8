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

}  // namespace
}  // namespace browsersweep
