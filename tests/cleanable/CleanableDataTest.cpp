#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableData.h"

#include "tests/support/RecordingItem.h"

namespace browsersweep {
namespace {

using tests::RecordingItem;

const CleanableDataSize unknownSize{{0, true}, {0, true}};

class CleanableDataTest : public testing::Test {
protected:
    RecordingItem item(CleanableDataSize size = {1, 10}) const { return {"item", size, record}; }

    RecordingItem::Record record = std::make_shared<std::vector<std::string>>();
};

TEST_F(CleanableDataTest, formsWithoutArgumentsHaveNoFilters) {
    const auto one = item();
    EXPECT_EQ(one.size(), (CleanableDataSize{1, 10}));
    EXPECT_EQ(one.sizeIgnoringErrors(), (CleanableDataSize{1, 10}));
    one.clean();
    one.cleanIgnoringErrors();
    EXPECT_EQ(*record, (std::vector<std::string>{"item sized with 0", "item sized with 0",
                                                 "item cleaned with 0", "item cleaned with 0"}));
}

TEST_F(CleanableDataTest, sizeIgnoringErrorsOfAFailureIsAnApproximateZero) {
    EXPECT_EQ(item().failing().sizeIgnoringErrors(), unknownSize);
}

TEST_F(CleanableDataTest, cleanIgnoringErrorsDropsTheError) {
    EXPECT_NO_THROW(item().failing().cleanIgnoringErrors());
    EXPECT_THROW(item().failing().clean(), std::runtime_error);
}

TEST_F(CleanableDataTest, cleanAndReturnSizeIsTheDifferenceMeasured) {
    const auto one = item({10, 4096}).leaving({2, 1024});
    EXPECT_EQ(one.cleanAndReturnSize({}), (CleanableDataSize{8, 3072}));
    EXPECT_EQ(*record, (std::vector<std::string>{"item sized with 0", "item cleaned with 0",
                                                 "item sized with 0"}));
}

TEST_F(CleanableDataTest, cleanAndReturnSizeEndsWithTheFirstFailure) {
    EXPECT_THROW(item().failing().cleanAndReturnSize({}), std::runtime_error);
    EXPECT_EQ(record->size(), 1U);
}

TEST_F(CleanableDataTest, cleanAndReturnSizeIgnoringErrorsMarksWhatItCouldNotMeasure) {
    EXPECT_EQ(item().failing().cleanAndReturnSizeIgnoringErrors({}), unknownSize);
    EXPECT_EQ(record->size(), 3U);
}

}  // namespace
}  // namespace browsersweep
