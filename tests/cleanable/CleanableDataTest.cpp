#include <array>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableData.h"

#include "tests/support/RecordingItem.h"

namespace browsersweep {
namespace {

using tests::RecordingItem;

const CleanableDataSize unknownSize{{0, true}, {0, true}};
using Lines = std::vector<std::string>;

/** An item whose failures are no exceptions of the standard library. */
class ThrowingNumbers : public CleanableData {
public:
    bool requiresClosedBrowserToClean() const noexcept override { return false; }
    CleanableDataSize size(CleanableDataFilters /*filters*/) const override { throw 1; }
    void clean(CleanableDataFilters /*filters*/) const override { throw 2; }
    using CleanableData::clean;
    using CleanableData::size;
};

class CleanableDataTest : public testing::Test {
protected:
    RecordingItem item(CleanableDataSize size = {1, 10}) const { return {"item", size, record}; }

    RecordingItem::Record record = std::make_shared<Lines>();
    std::array<CleanableDataFilter, 2> filters;
};

TEST_F(CleanableDataTest, theIgnoringFormsPassTheirFiltersOn) {
    EXPECT_EQ(item().sizeIgnoringErrors(filters), (CleanableDataSize{1, 10}));
    item().cleanIgnoringErrors(filters);
    EXPECT_EQ(*record, (Lines{"item sized with 2", "item cleaned with 2"}));
}

TEST_F(CleanableDataTest, whateverIsThrownIsIgnored) {
    const ThrowingNumbers item;
    EXPECT_EQ(item.sizeIgnoringErrors(), unknownSize);
    item.cleanIgnoringErrors();
    EXPECT_EQ(item.cleanAndReturnSizeIgnoringErrors(filters), unknownSize);
    EXPECT_THROW(item.cleanAndReturnSize(filters), int);
}

TEST_F(CleanableDataTest, cleanAndReturnSizeMeasuresAndCleansUnderItsFilters) {
    item().cleanAndReturnSize(filters);
    EXPECT_EQ(*record, (Lines{"item sized with 2", "item cleaned with 2", "item sized with 2"}));
}

TEST_F(CleanableDataTest, cleanAndReturnSizeIgnoringErrorsDoesSoToo) {
    const auto one = item({10, 4096}).leaving({2, 1024});
    EXPECT_EQ(one.cleanAndReturnSizeIgnoringErrors(filters), (CleanableDataSize{8, 3072}));
    EXPECT_EQ(*record, (Lines{"item sized with 2", "item cleaned with 2", "item sized with 2"}));
}

TEST_F(CleanableDataTest, theIgnoringFormsAreTheItemsOwnWhereItHasSome) {
    const tests::OwnIgnoringItem own("own", record);
    EXPECT_EQ(own.sizeIgnoringErrors(), (CleanableDataSize{7, 70}));
    own.cleanIgnoringErrors();
    EXPECT_EQ(own.cleanAndReturnSizeIgnoringErrors(filters), CleanableDataSize::zero);
    EXPECT_EQ(*record,
              (Lines{"own sized ignoring errors with 0", "own cleaned ignoring errors with 0",
                     "own sized ignoring errors with 2", "own cleaned ignoring errors with 2",
                     "own sized ignoring errors with 2"}));
}

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
