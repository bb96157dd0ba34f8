#include <string>

#include <gtest/gtest.h>

#include "browsersweep/profiles/safari/internal/SafariIdentifier.h"

namespace browsersweep {
namespace {

TEST(SafariIdentifier, hasTheFormOfAUUIDInAnyLetters) {
    EXPECT_TRUE(isSafariIdentifier("01234567-89ab-cdef-ABCD-EF0123456789"));
    for (const std::string text :
         {"", "01234567-89ab-cdef-ABCD-EF012345678", "01234567-89ab-cdef-ABCD-EF01234567890",
          "0123456789ab-cdef-ABCD-EF01234567890", "0123456g-89ab-cdef-ABCD-EF0123456789",
          "../34567-89ab-cdef-ABCD-EF0123456789", "01234567/89ab-cdef-ABCD-EF0123456789"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(isSafariIdentifier(text));
    }
}

TEST(SafariIdentifier, lettersOfBothCasesAndNothingElseChange) {
    const std::string all = "@AMZ[`amz{09-\xC3\xA4";
    EXPECT_EQ(inCapitals(all), "@AMZ[`AMZ{09-\xC3\xA4");
    EXPECT_EQ(inSmallLetters(all), "@amz[`amz{09-\xC3\xA4");
}

}  // namespace
}  // namespace browsersweep
