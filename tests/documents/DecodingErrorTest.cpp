#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"

namespace browsersweep {
namespace {

TEST(DecodingError, tellsWhatAndWhere) {
    const DecodingError plain(DecodingError::Kind::dataCorrupted, "broken");
    EXPECT_STREQ(plain.what(), "broken");
    const DecodingError placed(DecodingError::Kind::keyNotFound, "missing", {"profile", "x"});
    EXPECT_STREQ(placed.what(), "missing (at profile > x)");
    EXPECT_EQ(placed.description(), "missing");
    EXPECT_EQ(placed.kind(), DecodingError::Kind::keyNotFound);
}

TEST(DecodingError, decodingBelowAKeyPutsItInFrontOfThePath) {
    try {
        decodingBelow("outer", [] {
            decodingBelow("inner", [] {
                throw DecodingError(DecodingError::Kind::typeMismatch, "wrong", {"Index 3"});
            });
        });
        FAIL() << "no error";
    } catch (const DecodingError& error) {
        EXPECT_EQ(error.codingPath(), (CodingPath{"outer", "inner", "Index 3"}));
        EXPECT_EQ(error.kind(), DecodingError::Kind::typeMismatch);
    }
    EXPECT_EQ(decodingBelow("key", [] { return 7; }), 7);
}

}  // namespace
}  // namespace browsersweep
