#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "browsersweep/sites/internal/Punycode.h"

namespace browsersweep {
namespace {

struct Row {
    std::string_view typed;
    std::string_view written;
};

// The labels are those of Python's codec "punycode".
TEST(Punycode, isHowBrowsersWriteLettersBeyondASCII) {
    for (const auto& [typed, written] : {
             Row{"münchen.de", "xn--mnchen-3ya.de"},
             Row{"www.bücher.example.com", "www.xn--bcher-kva.example.com"},
             Row{"日本語.jp", "xn--wgv71a119e.jp"},
             Row{"пример.испытание", "xn--e1afmkfd.xn--80akhbyknj4f"},
             Row{"ü", "xn--tda"},
             Row{"a-ü-ö.com", "xn--a---una2a.com"},
             Row{"😀.com", "xn--e28h.com"},
             Row{"example.com", "example.com"},
         }) {
        EXPECT_EQ(asciiHost(typed), written) << typed;
    }
}

TEST(Punycode, isMadeOfSmallLetters) {
    EXPECT_EQ(asciiHost("MÜNCHEN.De"), "xn--mnchen-3ya.de");
    EXPECT_EQ(asciiHost("ПРИМЕР.испытание"), "xn--e1afmkfd.xn--80akhbyknj4f");
}

TEST(Punycode, isNotMadeOfWhatIsNoName) {
    EXPECT_EQ(asciiHost("mu\u0308nchen.de"), "");
    EXPECT_EQ(asciiHost("m\xFCnchen.de"), "");
    EXPECT_EQ(asciiHost(std::string(5000, 'a')), "");
    for (const char* mark : {"\u00A0", "\u00AD", "\u200B", "\u202F", "\u2060", "\u3002", "\uFEFF",
                             "\uFF0E", "\uFF61"}) {
        EXPECT_EQ(asciiHost(std::string("a") + mark + "b.com"), "") << mark;
    }
    EXPECT_NE(asciiHost("a\u200Cb.com"), "");
}

}  // namespace
}  // namespace browsersweep
