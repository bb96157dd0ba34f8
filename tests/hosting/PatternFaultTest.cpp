#include <string_view>

#include <gtest/gtest.h>

#include "browsersweep/hosting/PatternFault.h"

namespace browsersweep {
namespace {

TEST(PatternFault, plainPartsOfAddressesAreSafe) {
    for (const std::string_view pattern :
         {"example.com", "a", "b-c", "日本", "é", "\xC2\xA0", "a b", "\"", "\\", "*"}) {
        SCOPED_TRACE(pattern);
        EXPECT_EQ(patternFault(pattern), std::nullopt);
    }
}

TEST(PatternFault, whatWouldChangeAStatementIsRefused) {
    for (const std::string_view pattern : {"'", "a'b", "%", "100%", "a_b", "a\nb", "\t", "\x7F",
                                           "\x01", "é'", "\xC2\x80", "x\xC2\x9F"}) {
        SCOPED_TRACE(pattern);
        EXPECT_EQ(patternFault(pattern), PatternFault::reserved);
    }
    EXPECT_EQ(patternFault(std::string_view("a\0b", 3)), PatternFault::reserved);
}

TEST(PatternFault, whatIsEmptyOrNotUTF8IsRefused) {
    EXPECT_EQ(patternFault(""), PatternFault::empty);
    for (const std::string_view pattern : {"\xFF", "a\xC2", "\xC0\xA7", "\xED\xA0\x80"}) {
        EXPECT_EQ(patternFault(pattern), PatternFault::encoding);
    }
}

}  // namespace
}  // namespace browsersweep
