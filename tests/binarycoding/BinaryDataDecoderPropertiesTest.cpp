#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "browsersweep/binarycoding/BinaryDataDecoder.h"

#include "tests/support/StreamedData.h"

namespace browsersweep {
namespace {

using tests::streamed;

using List = std::vector<std::uint8_t>;

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
