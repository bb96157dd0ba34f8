#include <any>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDataEncoder.h"

#include "tests/support/StreamedData.h"

namespace browsersweep {
namespace {

using tests::streamed;

using List = std::vector<std::uint8_t>;

// A number that is stored with what its reader or writer was told to add.
struct Shifted {
    explicit Shifted(std::uint16_t number) : value(number) {}
    explicit Shifted(const BinaryDecoder& from)
        : value(static_cast<std::uint16_t>(from.container().decode<std::uint16_t>() -
                                           std::any_cast<int>(from.userInfo().at("shift")))) {}
    void encode(const BinaryEncoder& to) const {
        to.container().encode(
            static_cast<std::uint16_t>(value + std::any_cast<int>(to.userInfo().at("shift"))));
    }
    friend bool operator==(const Shifted&, const Shifted&) = default;

    std::uint16_t value;
};

// Reads a list of them in a container within a container.
struct Nested {
    explicit Nested(const BinaryDecoder& from) {
        auto page = from.container().nestedContainer(4);
        auto record = page.nestedContainer();
        numbers = record.decode<std::vector<Shifted>>();
    }
    std::vector<Shifted> numbers;
};

}  // namespace

TEST(BinaryDataDecoder, readsABufferAListAndBufferedData) {
    const List list{1, 2};
    EXPECT_EQ(BinaryDataDecoder().decode<std::uint16_t>(list), 0x0201);
    EXPECT_EQ(BinaryDataDecoder().decode<std::uint16_t>(std::span<const std::uint8_t>(list)),
              0x0201);
    EXPECT_EQ(BinaryDataDecoder().decode<std::uint16_t>(*BinaryDataDecoder::bufferedData(list)),
              0x0201);
    EXPECT_EQ(BinaryDataDecoder().decode<std::uint16_t>(*streamed(list)), 0x0201);
}

TEST(BinaryDataDecoder, leavesBytesThatAValueDoesNotNeed) {
    const auto data = streamed({1, 2, 3});
    EXPECT_EQ(BinaryDataDecoder().decode<std::uint8_t>(*data), 1);
    EXPECT_EQ(data->read(9), (List{2, 3}));
    EXPECT_EQ(BinaryDataDecoder().decode<std::uint8_t>(List{1, 2, 3}), 1);
}

TEST(BinaryDataDecoder, handsItsUserInfoToEveryValueHoweverDeep) {
    const BinaryDataDecoder decoder(BinaryUserInfo{{"shift", 10}});
    EXPECT_EQ(decoder.decode<Nested>(List{11, 0, 12, 0, 13, 0}).numbers,
              (std::vector{Shifted(1), Shifted(2)}));
    EXPECT_TRUE(BinaryDataDecoder().userInfo().empty());
}

TEST(BinaryDataEncoder, handsItsUserInfoToEveryValue) {
    const BinaryDataEncoder encoder(BinaryUserInfo{{"shift", 10}});
    EXPECT_EQ(encoder.encode(std::vector{Shifted(1), Shifted(2)}), (List{11, 0, 12, 0}));
    EXPECT_TRUE(BinaryDataEncoder().userInfo().empty());
}

}  // namespace browsersweep
