#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <locale>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDataEncoder.h"
#include "browsersweep/binarycoding/BinaryDecodingContainer.h"
#include "browsersweep/binarycoding/BinaryDecodingError.h"

#include "tests/support/Bytes.h"
#include "tests/support/StreamedData.h"

namespace browsersweep {

enum class Colour : std::uint8_t { red = 1, blue = 7 };

template <>
struct RawRepresentation<Colour> {
    using RawValue = std::uint8_t;
    static RawValue rawValue(Colour colour) { return static_cast<RawValue>(colour); }
    static std::optional<Colour> fromRawValue(RawValue raw) {
        return raw == 1 || raw == 7 ? std::optional(static_cast<Colour>(raw)) : std::nullopt;
    }
};

enum class Word { yes, cafe };

template <>
struct RawRepresentation<Word> {
    using RawValue = std::string;
    static RawValue rawValue(Word word) { return word == Word::yes ? "yes" : "caf\xC3\xA9"; }
    static std::optional<Word> fromRawValue(const RawValue& raw) {
        for (const Word each : {Word::yes, Word::cafe}) {
            if (raw == rawValue(each)) {
                return each;
            }
        }
        return std::nullopt;
    }
};

/** Only the value one is valid, as a number of either kind. */
template <typename Number>
struct One {
    bool operator==(const One&) const = default;
};

template <typename Number>
struct RawRepresentation<One<Number>> {
    using RawValue = Number;
    static RawValue rawValue(One<Number> /*one*/) { return 1; }
    static std::optional<One<Number>> fromRawValue(RawValue raw) {
        return raw == 1 ? std::optional(One<Number>()) : std::nullopt;
    }
};

namespace {

using List = std::vector<std::uint8_t>;
using Reading = std::function<void(BinaryDecodingContainer&)>;

void reading(const List& data, const Reading& read) {
    const auto buffered = BinaryDataDecoder::bufferedData(data);
    const BinaryUserInfo userInfo;
    BinaryDecodingContainer container(*buffered, userInfo);
    read(container);
}

std::string errorOf(const List& data, const Reading& read) {
    try {
        reading(data, read);
    } catch (const BinaryDecodingError& error) {
        EXPECT_EQ(error.kind(), BinaryDecodingError::Kind::dataCorrupted);
        return error.context().debugDescription;
    }
    return "no error";
}

template <typename T>
void expectRoundTrip(T value, const List& data) {
    EXPECT_EQ(BinaryDataEncoder().encode(value), data);
    EXPECT_EQ(BinaryDataDecoder().decode<T>(data), value);
    const auto view = browsersweep::bytes(value);
    EXPECT_EQ(List(view.begin(), view.end()), data);
}

}  // namespace

TEST(BinaryDecodingContainer, readsNumbersOfEveryWidthInLittleEndianOrder) {
    expectRoundTrip<std::uint8_t>(0xFE, {0xFE});
    expectRoundTrip<std::int8_t>(-2, {0xFE});
    expectRoundTrip<std::uint16_t>(0xFE01, {0x01, 0xFE});
    expectRoundTrip<std::int16_t>(-2, {0xFE, 0xFF});
    expectRoundTrip<std::uint32_t>(65536, {0, 0, 1, 0});
    expectRoundTrip<std::int32_t>(-2, {0xFE, 0xFF, 0xFF, 0xFF});
    expectRoundTrip<std::uint64_t>(0x4B00000005201707, {0x07, 0x17, 0x20, 0x05, 0, 0, 0, 0x4B});
    expectRoundTrip<std::int64_t>(std::numeric_limits<std::int64_t>::min(),
                                  {0, 0, 0, 0, 0, 0, 0, 0x80});
    expectRoundTrip<float>(1.5F, {0, 0, 0xC0, 0x3F});
    expectRoundTrip<double>(-2.0, {0, 0, 0, 0, 0, 0, 0, 0xC0});
}

TEST(BinaryDecodingContainer, namesEveryFailure) {
    struct Case {
        List data;
        Reading read;
        const char* error;
    };
    const std::vector<Case> cases{
        {{1, 2},
         [](auto& c) { c.template decode<std::uint32_t>(); },
         "Not enough data to create a a type of std::uint32_t. Needed: 4. Received: 2."},
        {{1},
         [](auto& c) { c.template decode<std::int16_t>(); },
         "Not enough data to create a a type of std::int16_t. Needed: 2. Received: 1."},
        {{},
         [](auto& c) { c.template decode<double>(); },
         "Not enough data to create a a type of double. Needed: 8. Received: 0."},
        {{1, 2},
         [](auto& c) { c.decode(5); },
         "Not enough bytes available to decode. Requested 5, but received 2."},
        {{1},
         [](auto& c) { c.peekExactly(2); },
         "Not enough bytes available to decode. Requested 2, but received 1."},
        {{'a'},
         [](auto& c) { c.decodeString(StringEncoding::ascii, 0); },
         "Unable to find delimiter for string."},
        {{0xC3, 0},
         [](auto& c) { c.decodeString(StringEncoding::ascii, 0); },
         "Unable to create string from data with ASCII encoding."},
        {{0xC3},
         [](auto& c) { c.decodeString(StringEncoding::utf8); },
         "Unable to create string from data with UTF-8 encoding."},
        {{2},
         [](auto& c) { c.template decode<Colour>(); },
         "Cannot initialize browsersweep::Colour from invalid std::uint8_t value 2"},
        {{'n', 'o'},
         [](auto& c) { c.template decode<Word>(); },
         "Cannot initialize browsersweep::Word from invalid std::string value no"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.error);
        EXPECT_EQ(errorOf(each.data, each.read), each.error);
    }
}

template <typename Number>
void expectShown(Number raw, const std::string& text) {
    SCOPED_TRACE(text);
    const List data = BinaryDataEncoder().encode(raw);
    const auto error =
        errorOf(data, [](auto& container) { container.template decode<One<Number>>(); });
    EXPECT_EQ(error.substr(error.rfind(' ') + 1), text);
}

TEST(BinaryDecodingContainer, showsAnInvalidFractionWithTheFewestDigits) {
    expectShown(0.1, "0.1");
    expectShown(-2.0, "-2.0");
    expectShown(0.30000000000000004, "0.30000000000000004");
    expectShown(123456.789, "123456.789");
    expectShown(0.1F, "0.1");
    expectShown(3.14159274F, "3.1415927");
    EXPECT_EQ(BinaryDataDecoder().decode<One<double>>(BinaryDataEncoder().encode(1.0)),
              One<double>());
}

TEST(BinaryDecodingContainer,
     showsAnInvalidFractionWithAnExponentOnlyBeyondWhatCountsWholeNumbers) {
    expectShown(0.0, "0.0");
    expectShown(-0.0, "-0.0");
    expectShown(100.0, "100.0");
    expectShown(100.0F, "100.0");
    expectShown(700000000.0, "700000000.0");
    expectShown(9007199254740992.0, "9007199254740992.0");
    expectShown(9007199254740994.0, "9.007199254740994e+15");
    expectShown(16777216.0F, "16777216.0");
    expectShown(16777218.0F, "1.6777218e+07");
    expectShown(1e300, "1e+300");
    expectShown(0.0001, "0.0001");
    expectShown(0.0001F, "0.0001");
    expectShown(-0.000012345, "-1.2345e-05");
    expectShown(5e-324, "5e-324");
    expectShown(std::numeric_limits<double>::max(), "1.7976931348623157e+308");
}

TEST(BinaryDecodingContainer, namesAnInvalidFractionThatIsNoNumber) {
    expectShown(std::numeric_limits<double>::infinity(), "inf");
    expectShown(-std::numeric_limits<float>::infinity(), "-inf");
    expectShown(std::numeric_limits<double>::quiet_NaN(), "nan");
    expectShown(-std::numeric_limits<double>::quiet_NaN(), "nan");
}

/** Has a comma in the place of the decimal point. */
class Comma : public std::numpunct<char> {
public:
    Comma() : std::numpunct<char>(1) {}  // it outlives the locales that it is in

protected:
    char do_decimal_point() const override { return ','; }
};

TEST(BinaryDecodingContainer, showsAnInvalidFractionWithAPointWhereverItRuns) {
    Comma comma;
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), &comma));
    expectShown(0.1, "0.1");
    expectShown(1.5e300, "1.5e+300");
    std::locale::global(before);
}

TEST(BinaryDecodingContainer, readsSeveralNumbersAtOnceAsOneByOne) {
    reading({1, 0, 0, 0, 2, 0, 0, 0, 3, 0}, [](auto& root) {
        auto page = root.nestedContainer(9);
        EXPECT_EQ((page.template decodeNumbers<std::uint32_t, 2>()),
                  (std::array<std::uint32_t, 2>{1, 2}));
        EXPECT_EQ(page.remainingLength(), 1U);
    });
    // The error is that of the number at which the bytes end.
    EXPECT_EQ(
        errorOf({1, 0, 0, 0, 2, 0, 0},
                [](auto& container) { container.template decodeNumbers<std::uint32_t, 3>(); }),
        "Not enough data to create a a type of std::uint32_t. Needed: 4. Received: 3.");
}

TEST(BinaryDecodingContainer, readsAndWritesRawValues) {
    EXPECT_EQ(BinaryDataDecoder().decode<std::vector<Colour>>(List{7, 1}),
              (std::vector{Colour::blue, Colour::red}));
    EXPECT_EQ(BinaryDataEncoder().encode(std::vector{Colour::blue, Colour::red}), (List{7, 1}));
    for (const auto& [word, text] :
         {std::pair(Word::yes, "yes"), std::pair(Word::cafe, "caf\xC3\xA9")}) {
        EXPECT_EQ(BinaryDataDecoder().decode<Word>(tests::bytes(text)), word);
        EXPECT_EQ(BinaryDataEncoder().encode(word), tests::bytes(text));
    }
}

TEST(BinaryDecodingContainer, readsAnEmptyListFromNothing) {
    EXPECT_EQ(BinaryDataDecoder().decode<std::vector<int>>(List{}), std::vector<int>{});
    EXPECT_EQ(BinaryDataEncoder().encode(std::vector<int>{}), List{});
}

TEST(BinaryDecodingContainer, peeksExactlyWhatIsThere) {
    reading({1, 2, 3}, [](auto& container) {
        EXPECT_EQ(container.peekExactly(2), (List{1, 2}));
        EXPECT_EQ(container.decodeRemainder(), (List{1, 2, 3}));
    });
}

TEST(BinaryDecodingContainer, readsTextInLatin1) {
    reading({'a', 0xE9, 0xFF}, [](auto& container) {
        EXPECT_EQ(container.decodeString(StringEncoding::isoLatin1), "a\xC3\xA9\xC3\xBF");
    });
}

TEST(BinaryDecodingContainer, readsATextUpToItsOwnTerminatorAlsoInAContainerWithin) {
    reading({'a', 0, 'x', 0xE9, 'x', 'b'}, [](auto& root) {
        auto page = root.nestedContainer(6);
        EXPECT_EQ(page.nestedContainer().decodeString(StringEncoding::ascii, 'x'),
                  std::string("a\0", 2));
        EXPECT_EQ(page.remainingLength(), 3U);
        EXPECT_EQ(page.decodeString(StringEncoding::isoLatin1, 'x'), "\xC3\xA9");
        EXPECT_EQ(page.remainingLength(), 1U);
        EXPECT_THROW(page.decodeString(StringEncoding::ascii, 'x'), BinaryDecodingError);
        EXPECT_EQ(page.remainingLength(), 0U);
    });
}

TEST(BinaryDecodingContainer, refusesAByteBeyondTheLimit) {
    const List ten{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_EQ(errorOf(ten,
                      [](auto& container) {
                          auto nested = container.nestedContainer(4);
                          nested.decode(4);
                          EXPECT_TRUE(nested.isAtEnd());
                          nested.decode(1);
                      }),
              "Not enough bytes available to decode. Requested 1, but received 0.");
}

TEST(BinaryDecodingContainer, takesFromItsParentExactlyWhatItReads) {
    reading({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, [](auto& root) {
        auto page = root.nestedContainer(8);
        {
            auto record = page.nestedContainer(100);
            EXPECT_EQ(record.remainingLength(), 8U);
            EXPECT_EQ(record.template decode<std::uint16_t>(), 0x0100);
            EXPECT_EQ(page.remainingLength(), 6U);
        }
        EXPECT_EQ(page.decode(1), List{2});
        EXPECT_EQ(page.nestedContainer().decodeRemainder(), (List{3, 4, 5, 6, 7}));
        EXPECT_TRUE(page.isAtEnd());
        EXPECT_EQ(root.decodeRemainder(), (List{8, 9}));
    });
}

TEST(BinaryDecodingContainer, peeksWithoutReadingAndGivesFewerAtTheEnd) {
    reading({1, 2, 3}, [](auto& root) {
        auto page = root.nestedContainer(2);
        EXPECT_EQ(page.peek(4), (List{1, 2}));
        EXPECT_EQ(page.decodeRemainder(), (List{1, 2}));
        EXPECT_EQ(page.peek(4), List{});
        EXPECT_EQ(root.peek(4), List{3});
    });
}

TEST(BinaryDecodingContainer, leavesWhatItPeeksWithItsParent) {
    tests::NotedStream stream({1, 2, 3});
    BufferedData streamed = stream.buffered();
    const List list{1, 2, 3};
    const auto inMemory = BinaryDataDecoder::bufferedData(list);
    const BinaryUserInfo userInfo;
    for (BufferedData* const data : {&streamed, inMemory.get()}) {
        BinaryDecodingContainer root(*data, userInfo);
        auto page = root.nestedContainer(3);
        EXPECT_EQ(page.nestedContainer(2).peek(3), (List{1, 2}));
        EXPECT_EQ(page.remainingLength(), 3U);
        EXPECT_EQ(page.decodeRemainder(), (List{1, 2, 3}));
    }
}

TEST(BinaryDecodingContainer, readsStringsAcrossWhatWasPeeked) {
    reading(tests::bytes(std::string_view("abcdef\0gh", 9)), [](auto& root) {
        auto page = root.nestedContainer(8);
        page.peek(3);
        EXPECT_EQ(page.decodeString(StringEncoding::ascii, 0), "abcdef");
        EXPECT_EQ(page.decodeString(StringEncoding::utf8), "g");
        EXPECT_EQ(root.decodeString(StringEncoding::isoLatin1), "h");
    });
}

TEST(BinaryDecodingContainer, readsNestedContainersOfAStream) {
    tests::NotedStream stream({9, 8, 7, 'a', 0, 6});
    BufferedData data = stream.buffered();
    const BinaryUserInfo userInfo;
    BinaryDecodingContainer root(data, userInfo);
    auto page = root.nestedContainer(5);
    auto record = page.nestedContainer(5);
    EXPECT_EQ(record.decode<std::uint8_t>(), 9);
    EXPECT_EQ(record.decode(2), (List{8, 7}));
    EXPECT_EQ(record.decodeString(StringEncoding::ascii, 0), "a");
    EXPECT_TRUE(page.isAtEnd());
    EXPECT_EQ(root.decode<std::uint8_t>(), 6);
}

}  // namespace browsersweep
