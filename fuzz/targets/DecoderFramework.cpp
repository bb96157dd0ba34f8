#include <algorithm>
#include <cstring>
#include <string>

#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDecodingError.h"

#include "fuzz/targets/Input.h"
#include "fuzz/targets/Rule.h"
#include "fuzz/targets/Targets.h"

namespace browsersweep::fuzz {
namespace {

/** Reads as the first bytes of the input say, and compares with the bytes themselves. */
class Reading {
public:
    explicit Reading(Input steps) noexcept : steps_(steps) {}

    /** `data` is what the container has before it. */
    void run(BinaryDecodingContainer& container, BytesView data, int depth) {
        const std::size_t whole = data.size();
        while (!steps_.isAtEnd()) {
            require(container.remainingLength() == data.size(), "a limit shrinks by what was read");
            require(container.isAtEnd() == data.empty(), "the end is where nothing remains");
            if (!step(container, data, depth)) {
                break;
            }
        }
        require(data.size() <= whole, "reading goes forward");
    }

private:
    bool step(BinaryDecodingContainer& container, BytesView& data, int depth) {
        switch (steps_.byte() % 8) {
            case 0:
                return number<std::uint8_t>(container, data);
            case 1:
                return number<std::uint32_t>(container, data);
            case 2:
                return number<std::uint64_t>(container, data);
            case 3:
                return peek(container, data);
            case 4:
                return exactly(container, data);
            case 5:
                return text(container, data);
            case 6:
                return nested(container, data, depth);
            default:
                break;
        }
        const auto rest = container.decodeRemainder();
        require(std::ranges::equal(rest, data), "the remainder is all that remains");
        data = {};
        return true;
    }

    template <typename Number>
    bool number(BinaryDecodingContainer& container, BytesView& data) {
        Number expected = 0;
        if (data.size() >= sizeof expected) {
            std::memcpy(&expected, data.data(), sizeof expected);
            data = data.subspan(sizeof expected);
        } else {
            data = {};
        }
        require(container.decode<Number>() == expected, "a number is its bytes");
        return true;
    }

    bool peek(BinaryDecodingContainer& container, BytesView data) {
        const std::size_t length = std::min<std::size_t>(steps_.byte(), data.size());
        require(std::ranges::equal(container.peek(length), data.first(length)),
                "peeking gives the next bytes");
        return true;
    }

    bool exactly(BinaryDecodingContainer& container, BytesView& data) {
        const std::size_t length = steps_.byte();
        const auto bytes = container.decode(length);
        require(length <= data.size() && std::ranges::equal(bytes, data.first(length)),
                "so many bytes are the next ones");
        data = data.subspan(length);
        return true;
    }

    bool text(BinaryDecodingContainer& container, BytesView& data) {
        const std::uint8_t terminator = steps_.byte();
        const auto end = std::find(data.begin(), data.end(), terminator);
        const std::string text = container.decodeString(StringEncoding::utf8, terminator);
        require(text == std::string(data.begin(), end), "a text ends before its terminator");
        const auto length = static_cast<std::size_t>(end - data.begin());
        data = data.subspan(std::min(length + 1, data.size()));
        return true;
    }

    bool nested(BinaryDecodingContainer& container, BytesView& data, int depth) {
        constexpr int deepest = 20;
        if (depth == deepest) {
            return false;
        }
        const std::size_t limit = std::min<std::size_t>(steps_.byte(), data.size());
        BinaryDecodingContainer inner = container.nestedContainer(limit);
        run(inner, data.first(limit), depth + 1);
        data = data.last(container.remainingLength().value_or(0));
        return false;
    }

    Input steps_;
};

}  // namespace

void decoderFramework(BytesView input) {
    Input head(input);
    const Input steps(head.take(head.byte()));
    const BytesView data = head.rest();
    const auto buffered = BinaryDataDecoder::bufferedData(data);
    const BinaryUserInfo userInfo;
    BinaryDecodingContainer outermost(*buffered, userInfo);
    BinaryDecodingContainer container = outermost.nestedContainer(data.size());
    try {
        Reading(steps).run(container, data, 0);
    } catch (const BinaryDecodingError&) {
        return;
    }
}

}  // namespace browsersweep::fuzz
