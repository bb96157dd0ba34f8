#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/binarycoding/AnyBufferedDataSource.h"
#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDecodingContainer.h"
#include "browsersweep/binarycoding/BinaryDecodingError.h"
#include "browsersweep/binarycoding/BufferedData.h"
#include "browsersweep/binarycoding/DataBufferedDataSource.h"

#include "tests/support/StreamedData.h"

namespace browsersweep {
namespace {

using List = std::vector<std::uint8_t>;
using UntilResult = BufferedData::UntilResult;

using tests::NotedStream;

/** A source that gives its bytes in pieces of at most two, and may not know its end in advance. */
BufferedData inShortAnswers(List data, bool knowsItsEnd = true) {
    const auto rest = std::make_shared<List>(std::move(data));
    return BufferedData(std::make_unique<AnyBufferedDataSource>(
        [rest](std::size_t length) {
            const auto end = rest->begin() + static_cast<std::ptrdiff_t>(
                                                 std::min({length, rest->size(), std::size_t{2}}));
            List piece(rest->begin(), end);
            rest->erase(rest->begin(), end);
            return piece.empty() ? std::nullopt : std::optional(piece);
        },
        [rest, knowsItsEnd] { return knowsItsEnd && rest->empty(); }));
}

const List ten{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};

TEST(BufferedDataInShortAnswers, readsAndPeeksAsMuchAsItIsAskedFor) {
    BufferedData data = inShortAnswers(ten);
    EXPECT_EQ(data.peek(5), (List{0, 1, 2, 3, 4}));
    EXPECT_EQ(data.read(3), (List{0, 1, 2}));
    EXPECT_EQ(data.peek(5), (List{3, 4, 5, 6, 7}));
    EXPECT_EQ(data.read(7), (List{3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(data.read(1), List{});
}

TEST(BufferedDataInShortAnswers, findsADelimiterInWhatIsBufferedAndBeyond) {
    BufferedData data = inShortAnswers(ten);
    data.peek(3);
    EXPECT_EQ(data.readUntil(1), (BufferedData::UntilResult{{0}, true}));
    EXPECT_EQ(data.readUntil(6), (BufferedData::UntilResult{{2, 3, 4, 5}, true}));
    EXPECT_EQ(data.readUntil(6), (BufferedData::UntilResult{{7, 8, 9}, false}));
}

TEST(BufferedDataInShortAnswers, takesTheRemainderWithWhatIsBuffered) {
    for (const bool knowsItsEnd : {true, false}) {
        BufferedData data = inShortAnswers(ten, knowsItsEnd);
        data.peek(4);
        data.read(1);
        const auto rest = data.takeRemainder();
        EXPECT_EQ(List(rest.begin(), rest.end()), (List{1, 2, 3, 4, 5, 6, 7, 8, 9}));
        EXPECT_EQ(data.takeRemainder().size(), 0U);
    }
}

TEST(BufferedData, takesAnAnswerWithoutBytesForTheEnd) {
    const auto answers = std::make_shared<int>(0);
    BufferedData data(std::make_unique<AnyBufferedDataSource>(
        [answers](std::size_t) {
            const int number = ++*answers;
            return number > 100 ? std::nullopt : std::optional(number == 1 ? List{7} : List());
        },
        [] { return false; }));
    EXPECT_EQ(data.read(2), List{7});
    EXPECT_EQ(*answers, 2);
    EXPECT_EQ(data.readUntil(7), (BufferedData::UntilResult{{}, false}));
    EXPECT_EQ(data.takeRemainder().size(), 0U);
    EXPECT_EQ(*answers, 4);
}

TEST(BufferedDataInShortAnswers, takesARemainderThatIsLongerThanTheBuffer) {
    const List data(5 * BufferedData::defaultCapacity + 1, 7);
    BufferedData buffered = inShortAnswers(data);
    const auto rest = buffered.takeRemainder();
    EXPECT_EQ(List(rest.begin(), rest.end()), data);
}

TEST(BufferedDataInShortAnswers, isNotAtItsEndWhileAnythingIsBuffered) {
    BufferedData data = inShortAnswers({1, 2});
    EXPECT_EQ(data.peek(2), (List{1, 2}));
    EXPECT_FALSE(data.isAtEnd());
    EXPECT_EQ(data.read(1), List{1});
    EXPECT_FALSE(data.isAtEnd());
    EXPECT_EQ(data.read(1), List{2});
    EXPECT_TRUE(data.isAtEnd());
}

TEST(BufferedDataInShortAnswers, keepsTheOrderOfManySmallPieces) {
    List data;
    for (unsigned value = 0; value < 5000; ++value) {
        data.push_back(static_cast<std::uint8_t>(value * 31));
    }
    BufferedData buffered = inShortAnswers(data);
    List read;
    for (std::size_t step = 0; !buffered.isAtEnd(); ++step) {
        buffered.peek(step % 7);
        const List piece = buffered.read(step % 5 + 1);
        read.insert(read.end(), piece.begin(), piece.end());
    }
    EXPECT_EQ(read, data);
}

TEST(BufferedData, asksItsSourceForExactlyTheShortfall) {
    NotedStream stream({1, 2, 3, 4, 5, 6, 7, 8});
    BufferedData data = stream.buffered();
    EXPECT_EQ(data.peek(2), (List{1, 2}));
    EXPECT_EQ(data.read(5), (List{1, 2, 3, 4, 5}));
    EXPECT_EQ(data.readUntil(7), (UntilResult{{6}, true}));
    EXPECT_EQ(stream.asked(), (std::vector<std::size_t>{2, 1, 3, 2, 1, 1, 1}));
    EXPECT_FALSE(data.isAtEnd());
    EXPECT_EQ(data.readUntil(0), (UntilResult{{8}, false}));
    EXPECT_TRUE(data.isAtEnd());
    EXPECT_EQ(data.read(1), List{});
}

TEST(BufferedData, givesTheRestWhereTheDelimiterNeverComes) {
    const List data{1, 2, 3};
    EXPECT_EQ(BinaryDataDecoder::bufferedData(data)->readUntil(9), (UntilResult{{1, 2, 3}, false}));
}

TEST(BufferedData, passesErrorsOfItsSourceOn) {
    BufferedData data(std::make_unique<AnyBufferedDataSource>(
        [](std::size_t) -> std::optional<List> { throw std::domain_error("gone"); },
        [] { return false; }));
    EXPECT_THROW(BinaryDataDecoder().decode<int>(data), std::domain_error);
}

TEST(BufferedData, asksForNoByteBeyondALimitNorForOneThatIsBuffered) {
    NotedStream stream({1, 2, 3, 4});
    BufferedData data = stream.buffered();
    const DelimitedBytes none = data.takeUntil(3, 2);
    EXPECT_EQ(List(none.data.begin(), none.data.end()), (List{1, 2}));
    EXPECT_FALSE(none.didFindDelimiter);
    EXPECT_EQ(stream.asked(), (std::vector<std::size_t>{1, 1}));
    EXPECT_EQ(data.peek(2), (List{3, 4}));
    EXPECT_EQ(data.readUntil(4), (UntilResult{{3}, true}));
    EXPECT_EQ(stream.asked(), (std::vector<std::size_t>{1, 1, 2, 1}));
}

TEST(BufferedData, asksForARemainderInPiecesOfItsCapacityOrTheLeastThatIsWorthIt) {
    for (const auto& [capacity, piece] :
         {std::pair(std::size_t{5000}, std::size_t{5000}),
          std::pair(std::size_t{10}, BufferedData::defaultCapacity)}) {
        NotedStream stream({1, 2});
        BufferedData data = stream.buffered(capacity);
        EXPECT_EQ(data.takeRemainder().size(), 2U);
        EXPECT_EQ(stream.asked(), (std::vector<std::size_t>{piece, piece}));
        const List bytes{1, 2};
        DataBufferedDataSource borrowed(bytes);
        EXPECT_EQ(BufferedData(borrowed, capacity).takeRemainder().size(), 2U);
    }
}

TEST(BufferedData, findsADelimiterInMemory) {
    const List bytes{1, 2, 3, 0};
    const auto data = BinaryDataDecoder::bufferedData(bytes);
    EXPECT_EQ(data->readUntil(2), (UntilResult{{1}, true}));
    EXPECT_EQ(data->readUntil(0), (UntilResult{{3}, true}));
    EXPECT_EQ(UntilResult(), (UntilResult{{}, false}));
}

/** A source that shows its bytes at times: a byte that is read is followed by those it shows. */
class AtTimesInMemory : public BufferedDataSource {
public:
    explicit AtTimesInMemory(std::span<const std::uint8_t> data) : memory_(data) {}

    void show(bool shows) noexcept { shows_ = shows; }

    std::optional<List> read(std::size_t length) override { return memory_.read(length); }
    bool isAtEnd() override { return memory_.isAtEnd(); }
    std::optional<std::span<const std::uint8_t>> view(std::size_t length) override {
        return shows_ ? memory_.view(length) : std::nullopt;
    }
    std::optional<DelimitedBytes> viewUntil(std::uint8_t delimiter, std::size_t length) override {
        return shows_ ? memory_.viewUntil(delimiter, length) : std::nullopt;
    }
    std::optional<std::span<const std::uint8_t>> lookAhead(std::size_t length) override {
        return shows_ ? memory_.lookAhead(length) : std::nullopt;
    }

private:
    DataBufferedDataSource memory_;
    bool shows_ = false;
};

TEST(BufferedData, givesWhatIsBufferedBeforeWhatItsSourceShows) {
    using Asking = std::function<List(BufferedData&)>;
    for (const auto& [ask, expected] : std::vector<std::pair<Asking, List>>{
             {[](BufferedData& data) { return data.read(3); }, {0, 1, 2}},
             {[](BufferedData& data) { return data.peek(3); }, {0, 1, 2}},
             {[](BufferedData& data) { return data.readUntil(3).data; }, {0, 1, 2}},
             {[](BufferedData& data) {
                  const auto rest = data.takeRemainder();
                  return List(rest.begin(), rest.end());
              },
              ten}}) {
        AtTimesInMemory source(ten);
        BufferedData data(source);
        EXPECT_EQ(data.peek(1), List{0});
        source.show(true);
        EXPECT_EQ(ask(data), expected);
    }
}

TEST(BufferedData, showsWhatItHasBufferedAndItsSource) {
    auto source = std::make_unique<AnyBufferedDataSource>(
        [](std::size_t length) { return std::optional(List(length, 7)); }, [] { return false; });
    const AnyBufferedDataSource* const address = source.get();
    BufferedData data(std::move(source));
    data.peek(3);
    data.read(1);
    EXPECT_EQ(List(data.buffer().begin(), data.buffer().end()), (List{7, 7}));
    EXPECT_EQ(&data.reader(), address);
}

TEST(AnyBufferedDataSource, isItsTwoCallbacksAndShowsThem) {
    const AnyBufferedDataSource source(
        [](std::size_t length) { return std::optional(List{static_cast<std::uint8_t>(length)}); },
        [] { return true; });
    EXPECT_EQ(source.readCallback()(9), List{9});
    EXPECT_TRUE(source.isAtEndCallback()());
}

TEST(BinaryDecodingContainerInShortAnswers, isAtItsEndWhereTheDataEndsBeforeTheLimit) {
    BufferedData data = inShortAnswers({1, 2});
    const BinaryUserInfo userInfo;
    BinaryDecodingContainer root(data, userInfo);
    auto page = root.nestedContainer(10);
    auto record = page.nestedContainer(5);
    for (BinaryDecodingContainer* const each : {&root, &page, &record}) {
        EXPECT_FALSE(each->isAtEnd());
    }
    EXPECT_EQ(record.decode(2), (List{1, 2}));
    EXPECT_EQ(record.remainingLength(), 3U);
    EXPECT_EQ(page.remainingLength(), 8U);
    for (BinaryDecodingContainer* const each : {&root, &page, &record}) {
        EXPECT_TRUE(each->isAtEnd());
    }
    EXPECT_THROW(record.decode(1), BinaryDecodingError);
}

TEST(BinaryDecodingContainerInShortAnswers, isNotAtItsEndWhileAnythingIsPeeked) {
    BufferedData data = inShortAnswers({1, 2});
    const BinaryUserInfo userInfo;
    BinaryDecodingContainer root(data, userInfo);
    EXPECT_EQ(root.peek(4), (List{1, 2}));
    EXPECT_FALSE(root.isAtEnd());
    EXPECT_EQ(root.decode(2), (List{1, 2}));
    EXPECT_TRUE(root.isAtEnd());
}

TEST(BinaryDecodingContainerInShortAnswers, decodesTheRemainderOfAStreamUpToItsLimit) {
    BufferedData data = inShortAnswers(ten);
    const BinaryUserInfo userInfo;
    BinaryDecodingContainer root(data, userInfo);
    auto page = root.nestedContainer(6);
    EXPECT_EQ(page.peek(2), (List{0, 1}));
    auto record = page.nestedContainer(4);
    EXPECT_EQ(record.decode(1), List{0});
    EXPECT_EQ(record.decodeRemainder(), (List{1, 2, 3}));
    EXPECT_EQ(page.decodeRemainder(), (List{4, 5}));
    EXPECT_EQ(root.decodeRemainder(), (List{6, 7, 8, 9}));
}

TEST(BinaryDecodingContainerInShortAnswers, readsAListUntilTheDataEnds) {
    BufferedData data = inShortAnswers({1, 0, 2, 0, 3, 0});
    const BinaryUserInfo userInfo;
    BinaryDecodingContainer root(data, userInfo);
    auto page = root.nestedContainer(100);
    EXPECT_EQ(page.decode<std::vector<std::uint16_t>>(), (std::vector<std::uint16_t>{1, 2, 3}));
}

}  // namespace
}  // namespace browsersweep
