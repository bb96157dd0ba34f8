#include <gtest/gtest.h>

#include "cli/Remark.h"

namespace browsersweep::cli {
namespace {

TEST(Remark, fitsTheTerminalAndIsFaintWhereItHasStyles) {
    Appearance appearance;
    EXPECT_EQ(remark("", appearance), "");
    EXPECT_EQ(remark("one two", appearance), "one two\n");
    appearance.columns = 4;
    EXPECT_EQ(remark("one two", appearance), "one\ntwo\n");
    appearance.hasStyles = true;
    EXPECT_EQ(remark("one", appearance), "\x1B[2mone\x1B[0m\n");
}

}  // namespace
}  // namespace browsersweep::cli
