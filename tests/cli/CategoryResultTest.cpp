#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/CategoryResult.h"

namespace browsersweep::cli {
namespace {

std::string resultOf(const std::vector<ItemVerdict>& verdicts, bool isSuccess) {
    std::vector<ItemRow> items;
    for (const ItemVerdict verdict : verdicts) {
        items.push_back({{}, {}, "", verdict, {}, {}});
    }
    const CategoryResult result = cli::resultOf(items);
    EXPECT_EQ(result.isSuccess, isSuccess);
    return result.text;
}

TEST(CategoryResult, isTheBestWhereNothingFailed) {
    EXPECT_EQ(resultOf({}, true), "");
    EXPECT_EQ(resultOf({ItemVerdict::nothingThere}, true), "nothing there");
    EXPECT_EQ(resultOf({ItemVerdict::emptied, ItemVerdict::nothingThere}, true), "emptied");
}

TEST(CategoryResult, isTheWorstWithHowManyOfSeveralFaredSo) {
    EXPECT_EQ(resultOf({ItemVerdict::held}, false), "held by another program");
    EXPECT_EQ(
        resultOf({ItemVerdict::leftOut, ItemVerdict::notUnderstood, ItemVerdict::emptied}, false),
        "not understood (1 of 3)");
    EXPECT_EQ(resultOf({ItemVerdict::couldNotDelete, ItemVerdict::partlyEmptied,
                        ItemVerdict::couldNotDelete},
                       false),
              "could not delete (2 of 3)");
}

}  // namespace
}  // namespace browsersweep::cli
