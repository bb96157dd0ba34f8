#include <clocale>
#include <cstdlib>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "browsersweep/documents/internal/DecimalText.h"

namespace browsersweep {
namespace {

struct DecimalCase {
    double value;
    const char* text;
};

// clang-format off
constexpr DecimalCase decimalCases[] = {  // NOLINT(cppcoreguidelines-avoid-c-arrays): a table of cases
    {0.0,                    "0.0"},
    {-0.0,                   "-0.0"},
    {1.0,                    "1.0"},
    {-1.0,                   "-1.0"},
    {0.1,                    "0.1"},
    {0.3,                    "0.3"},
    {0.1 + 0.2,              "0.30000000000000004"},
    {1.5,                    "1.5"},
    {100.0,                  "100.0"},
    {123456.789,             "123456.789"},
    {700000000.0,            "700000000.0"},
    {700000000.25,           "700000000.25"},
    {-978307200.0,           "-978307200.0"},
    {0.0001,                 "0.0001"},
    {0.00012345,             "0.00012345"},
    {0.00001,                "1e-05"},
    {0.000012345,            "1.2345e-05"},
    {9007199254740991.0,     "9007199254740991.0"},
    {9007199254740992.0,     "9007199254740992.0"},
    {9007199254740994.0,     "9.007199254740994e+15"},
    {1e16,                   "1e+16"},
    {1e22,                   "1e+22"},
    {1e100,                  "1e+100"},
    {-1.25e-7,               "-1.25e-07"},
    {1.7976931348623157e308, "1.7976931348623157e+308"},
    {2.2250738585072014e-308, "2.2250738585072014e-308"},
    {5e-324,                 "5e-324"},
};
// clang-format on

TEST(DecimalText, theShortestDigitsThatReadBackTheSameAreWritten) {
    for (const DecimalCase& row : decimalCases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(row.text, decimalText(row.value));
        EXPECT_EQ(row.value, std::strtod(decimalText(row.value).c_str(), nullptr));
    }
}

TEST(DecimalText, whatIsNoNumberIsNamed) {
    EXPECT_EQ("inf", decimalText(std::numeric_limits<double>::infinity()));
    EXPECT_EQ("-inf", decimalText(-std::numeric_limits<double>::infinity()));
    EXPECT_EQ("nan", decimalText(std::numeric_limits<double>::quiet_NaN()));
}

TEST(DecimalText, theLocaleOfTheProcessDoesNotMatter) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    const char* found = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8"}) {
        found = found == nullptr ? std::setlocale(LC_NUMERIC, name) : found;
    }
    if (found == nullptr) {
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    const std::string text = decimalText(700000000.25);
    std::setlocale(LC_NUMERIC, before.c_str());
    EXPECT_EQ("700000000.25", text);
}

}  // namespace
}  // namespace browsersweep
