#include <gtest/gtest.h>

#include "browsersweep/traces/safari/internal/ValueSize.h"

#include "tests/support/PropertyLists.h"

namespace browsersweep {
namespace {

using tests::dictionary;
using tests::text;

TEST(ValueSize, isAboutWhatTheBinaryFormTakes) {
    const PropertyList list = PropertyList::array(
        {text("https://www.example.com/"), PropertyList::boolean(true), PropertyList::integer(1),
         PropertyList::real(1.5), PropertyList::data(Bytes(100, 1)),
         PropertyList::date(dateFromReferenceSeconds(1)),
         dictionary({{"title", text("Example")}, {"visits", PropertyList::integer(7)}})});
    EXPECT_EQ(roughSize(list), 4U + 28 + 4 + 12 + 12 + 104 + 12 + 4 + 9 + 11 + 10 + 12);
    const auto exact = list.binaryData().size();
    EXPECT_GT(roughSize(list), exact * 2 / 3);
    EXPECT_LT(roughSize(list), exact * 3 / 2);
}

TEST(ValueSize, countsWhatIsSharedEachTime) {
    const PropertyList one = text("12345678");
    EXPECT_EQ(roughSize(PropertyList::array({one, one, one})), 4U + 3 * 12);
}

}  // namespace
}  // namespace browsersweep
