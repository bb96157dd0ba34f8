#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sites/internal/ProtoFields.h"

#include "tests/support/LevelRecords.h"

namespace browsersweep {
namespace {

using namespace std::string_literals;

using Fields = std::vector<ProtoField>;

TEST(ProtoFields, numbersTextsAndFixedNumbersAreToldByTheirFields) {
    EXPECT_EQ(
        protoFields("\x08\x96\x01\x12\x03"
                    "abc\x2D\x01\x02\x03\x04\x29\x01\x02\x03\x04\x05\x06\x07\x08"),
        (Fields{{1, 150, {}}, {2, 0, "abc"}, {5, 0x04030201, {}}, {5, 0x0807060504030201, {}}}));
    EXPECT_EQ(protoFields("\x18\x00\x22\x00"s), (Fields{{3, 0, {}}, {4, 0, {}}}));
    EXPECT_EQ(protoFields(""), Fields());
}

TEST(ProtoFields, aDamagedMessageIsReadAsFarAsItGoes) {
    const std::string good = "\x08\x01";
    for (const char* rest : {"\x12", "\x12\x05xx", "\x08\xFF", "\x2D\x01\x02", "\x0B", "\xFF\xFF",
                             "\x12\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x01"}) {
        const std::string message = good + rest;
        EXPECT_EQ(protoFields(message), (Fields{{1, 1, {}}})) << rest;
    }
}

}  // namespace
}  // namespace browsersweep
