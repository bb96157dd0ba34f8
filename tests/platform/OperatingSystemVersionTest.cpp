#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "browsersweep/platform/OperatingSystemVersion.h"

namespace browsersweep {
namespace {

struct VersionRow {
    std::string_view text;
    std::optional<OperatingSystemVersion> expected;
};

TEST(OperatingSystemVersion, aVersionIsOneToThreeNumbersBetweenPoints) {
    // clang-format off
    const VersionRow cases[] = {  // NOLINT(cppcoreguidelines-avoid-c-arrays): a table of cases
        {"10.15.7",    OperatingSystemVersion{10, 15, 7}},
        {"10.14",      OperatingSystemVersion{10, 14, 0}},
        {"14",         OperatingSystemVersion{14, 0, 0}},
        {"26.0.1",     OperatingSystemVersion{26, 0, 1}},
        {"",           std::nullopt},
        {"10.",        std::nullopt},
        {".15",        std::nullopt},
        {"10..1",      std::nullopt},
        {"10.15.7.1",  std::nullopt},
        {"10.15b",     std::nullopt},
        {" 10.15",     std::nullopt},
        {"-1.2",       std::nullopt},
        {"9999999999", std::nullopt},
    };
    // clang-format on
    for (const VersionRow& row : cases) {
        SCOPED_TRACE(std::string(row.text));
        EXPECT_EQ(row.expected, OperatingSystemVersion::parse(row.text));
    }
}

TEST(OperatingSystemVersion, versionsAreOrderedNumberByNumber) {
    EXPECT_LT((OperatingSystemVersion{10, 14, 6}), (OperatingSystemVersion{10, 15, 0}));
    EXPECT_LT((OperatingSystemVersion{10, 15, 7}), (OperatingSystemVersion{11, 0, 0}));
    EXPECT_GE((OperatingSystemVersion{10, 15, 0}), (OperatingSystemVersion{10, 15, 0}));
}

TEST(OperatingSystemVersion, theRunningSystemIsNotOlderThanSupported) {
    EXPECT_GE(OperatingSystemVersion::current(), (OperatingSystemVersion{10, 13, 0}));
}

}  // namespace
}  // namespace browsersweep
