#include <algorithm>
#include <any>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "browsersweep/binarycoding/AnyBufferedDataSource.h"
#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDataEncoder.h"

namespace browsersweep {
namespace {

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

// The bytes through a source that cannot show them.
std::unique_ptr<BufferedData> streamed(const List& data) {
    auto taken = std::make_shared<std::size_t>(0);
    return std::make_unique<BufferedData>(std::make_unique<AnyBufferedDataSource>(
        [taken, data](std::size_t length) {
            const auto first = data.begin() + static_cast<std::ptrdiff_t>(*taken);
            const std::size_t count = std::min(length, data.size() - *taken);
            *taken += count;
            return std::optional(List(first, first + static_cast<std::ptrdiff_t>(count)));
        },
        [taken, data] { return *taken == data.size(); }));
}

List slice(const List& data, std::size_t from, std::size_t length) {
    const std::size_t end = std::min(data.size(), from + length);
    return {data.begin() + static_cast<std::ptrdiff_t>(from),
            data.begin() + static_cast<std::ptrdiff_t>(end)};
}

// Where the bytes end that a container may read.
std::size_t endOf(const BinaryDecodingContainer& container, const List& data,
                  std::size_t position) {
    const std::size_t rest = data.size() - position;
    return position + std::min<std::size_t>(rest, container.remainingLength().value_or(rest));
}

// Opens containers within each other to any depth. Each looks ahead, reads what a step tells it to
// as far as it may, and leaves the rest to the one around it.
void readNested(BinaryDecodingContainer& container, const List& data, std::size_t& position,
                List& steps) {
    while (!steps.empty()) {
        const std::size_t step = steps.back();
        steps.pop_back();
        const std::size_t room = endOf(container, data, position) - position;
        const std::size_t length = std::min(step % 8, room);
        RC_ASSERT(container.peek(length + 1) == slice(data, position, std::min(length + 1, room)));
        RC_ASSERT(container.decode(length) == slice(data, position, length));
        position += length;
        if (step >= 200) {
            return;
        }
        if (step >= 100) {
            auto child = container.nestedContainer(step % 16);
            readNested(child, data, position, steps);
        }
    }
}

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

RC_GTEST_PROP(BinaryDataDecoderProperty, nestedContainersReadEveryByteOnceAndInOrder,
              (const List& data, const List& steps)) {
    const BinaryUserInfo userInfo;
    const auto inMemory = BinaryDataDecoder::bufferedData(data);
    const auto stream = streamed(data);
    for (BufferedData* const buffered : {inMemory.get(), stream.get()}) {
        BinaryDecodingContainer root(*buffered, userInfo);
        std::size_t position = 0;
        List stepsLeft = steps;
        readNested(root, data, position, stepsLeft);
        RC_ASSERT(root.decodeRemainder() == slice(data, position, data.size()));
    }
}

}  // namespace browsersweep
