#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "cli/Report.h"

namespace browsersweep::cli {
namespace {

TEST(Report, everyFailureIsToldWithItsPlace) {
    BrowserSizes broken{};
    broken.browser = Browser::brave;
    broken.error = "unreadable";
    BrowserSizes opera{};
    opera.browser = Browser::opera;
    opera.categories = {{CleanableDataCategory::formData, "broken", {}, true}};
    SizesReport report;
    report.browsers = {broken, opera};
    const auto failed = failures(report);
    ASSERT_EQ(failed.size(), 2U);
    EXPECT_EQ(failed[0].where + ": " + failed[0].error, "Brave Browser: unreadable");
    EXPECT_EQ(failed[1].where + ": " + failed[1].error, "Opera, Form data: broken");
}

TEST(Report, aProfileIsCalledByItsFolderTooWhereItsNameIsShared) {
    EXPECT_EQ(displayName(ProfileRow{"Work", true, "Profile 1", false}), "Work");
    EXPECT_EQ(displayName(ProfileRow{"Work", true, "Profile 1", true}), "Work (Profile 1)");
    EXPECT_EQ(displayName(ProfileRow{{}, true, "Profile 1", false}), "(no name)");
}

TEST(Report, theSumOfWhatFailedAloneIsAbsent) {
    const CategorySize failed{CleanableDataCategory::cache, "broken", {}, true};
    const CategorySize known{CleanableDataCategory::history, {}, CleanableDataSize{{1}, {2}}, true};
    EXPECT_EQ(sumOf({failed}), std::nullopt);
    EXPECT_EQ(sumOf({failed, known, known}), (CleanableDataSize{{2}, {4}}));
}

}  // namespace
}  // namespace browsersweep::cli
