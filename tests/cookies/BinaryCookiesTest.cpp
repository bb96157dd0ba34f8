#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDataEncoder.h"
#include "browsersweep/binarycoding/BinaryDecodingError.h"
#include "browsersweep/binarycoding/BinaryEncodingError.h"
#include "browsersweep/cookies/BinaryCookies.h"
#include "browsersweep/documents/DecodingError.h"

#include "tests/support/BinaryCookieFileBuilder.h"
#include "tests/support/Python.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

using tests::ByteText;
using tests::cookieFile;
using tests::cookiePage;
using tests::CookieRecord;
using tests::emptyDictionary;
using Flags = BinaryCookies::Cookie::Flags;

BinaryCookies decoded(const Bytes& file) {
    return BinaryDataDecoder().decode<BinaryCookies>(file);
}

Bytes encoded(const BinaryCookies& cookies) {
    return BinaryDataEncoder().encode(cookies);
}

std::string errorOf(const Bytes& file) {
    try {
        decoded(file);
    } catch (const BinaryDecodingError& error) {
        return error.context().debugDescription;
    } catch (const DecodingError&) {
        return "property list";
    }
    return "no error";
}

CookieRecord named(std::string name) {
    CookieRecord record;
    record.name = std::move(name);
    return record;
}

CookieRecord withPort(std::uint16_t port) {
    CookieRecord record;
    record.portMarker = 1;
    record.port = port;
    return record;
}

Bytes smallFile() {
    return cookieFile({cookiePage({CookieRecord().data(), withPort(8080).data()}),
                       cookiePage({named("b").data()})},
                      emptyDictionary());
}

// So many bytes from a place on, fewer at the end.
Bytes slice(const Bytes& data, std::size_t from, std::size_t length) {
    const auto first = data.begin() + static_cast<std::ptrdiff_t>(std::min(from, data.size()));
    const auto rest = static_cast<std::size_t>(data.end() - first);
    return {first, first + static_cast<std::ptrdiff_t>(std::min(length, rest))};
}

// The bytes of a file with some of them replaced.
Bytes patched(Bytes file, std::size_t offset, const Bytes& bytes) {
    std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(offset));
    return file;
}

}  // namespace

TEST(BinaryCookies, readsEveryField) {
    const BinaryCookies cookies = decoded(smallFile());
    ASSERT_EQ(cookies.pages.size(), 2U);
    EXPECT_EQ(cookies.cookieCount(), 3U);
    BinaryCookies::Cookie expected;
    expected.size = 56 + 12 + 3 + 2 + 3 + 2;
    expected.version = 1;
    expected.flags = Flags(5);
    expected.port = std::uint16_t{8080};
    expected.urlOffset = 58;
    expected.nameOffset = 70;
    expected.pathOffset = 73;
    expected.valueOffset = 75;
    expected.expirationDate = dateFromReferenceSeconds(700000000.5);
    expected.creationDate = dateFromReferenceSeconds(600000000.25);
    expected.urlString = "example.org";
    expected.name = "id";
    expected.path = "/";
    expected.value = "42";
    EXPECT_EQ(cookies.cookies().at(1), expected);
    EXPECT_EQ(expected.url()->absoluteString(), "example.org");
    EXPECT_EQ(expected.commentURL(), std::nullopt);
}

TEST(BinaryCookies, writesATightlyPackedFileBackToTheSameBytes) {
    EXPECT_EQ(encoded(decoded(smallFile())), smallFile());
}

TEST(BinaryCookies, readsAndWritesAFileWithoutPages) {
    const Bytes file = cookieFile({}, emptyDictionary());
    EXPECT_TRUE(decoded(file).isEmpty());
    EXPECT_EQ(encoded(decoded(file)), file);
}

TEST(BinaryCookies, keepsMetadataByteForByte) {
    const Bytes metadata =
        PropertyList::dictionary({{"NSHTTPCookieAcceptPolicy", PropertyList::integer(2)},
                                  {"a", PropertyList::real(0.5)},
                                  {"b", PropertyList::array({PropertyList::string("x")})}})
            .binaryData();
    const Bytes file = cookieFile({cookiePage({CookieRecord().data()})}, metadata);
    EXPECT_EQ(encoded(decoded(file)), file);
    EXPECT_EQ(decoded(cookieFile({}, PropertyList::string("t").binaryData())).metadata,
              PropertyList::string("t"));
}

TEST(BinaryCookies, acceptsAWrongChecksumAndWritesTheRightOne) {
    const std::size_t checksum = smallFile().size() - emptyDictionary().size() - 12;
    const Bytes wrong = patched(smallFile(), checksum, {9, 9, 9, 9});
    EXPECT_EQ(encoded(decoded(wrong)), smallFile());
}

TEST(BinaryCookies, ignoresOffsetsOfThePageIndexAndReplacesThem) {
    EXPECT_EQ(encoded(decoded(patched(smallFile(), 16 + 8, Bytes(8, 0xFF)))), smallFile());
}

TEST(BinaryCookies, hasNoPortUnderAnyMarkerButOne) {
    CookieRecord record;
    record.portMarker = 2;
    const BinaryCookies cookies =
        decoded(cookieFile({cookiePage({record.data()})}, emptyDictionary()));
    EXPECT_EQ(cookies.cookies().at(0).port, std::nullopt);
    EXPECT_EQ(cookies.cookies().at(0).urlString, "example.org");
}

TEST(BinaryCookies, givesStringsToFieldsInTheOrderOfTheirOffsets) {
    // Value, comment and address of the comment first, the domain last; no name, no path.
    Bytes record = ByteText().little(56 + 10, 4).little(0, 8).little(0, 4).data();
    record = ByteText()
                 .raw(record)
                 .little(90, 4)
                 .little(0, 4)
                 .little(0, 4)
                 .little(56, 4)
                 .little(57, 4)
                 .little(60, 4)
                 .little(0, 16)
                 .text(std::string_view("v\0c\0h:\0d\0", 9))
                 .text(std::string_view("\0", 1))
                 .data();
    const Bytes file = cookieFile({cookiePage({record})}, emptyDictionary());
    // The last byte is padding, so what follows the page is read one byte too early.
    EXPECT_EQ(errorOf(file), "Footer is missing or incorrect");
    record.pop_back();
    const BinaryCookies cookies = decoded(cookieFile({cookiePage({record})}, emptyDictionary()));
    const BinaryCookies::Cookie cookie = cookies.cookies().at(0);
    EXPECT_EQ(cookie.urlString, "d");
    EXPECT_EQ(cookie.value, "v");
    EXPECT_EQ(cookie.comment, OptionalText("c"));
    EXPECT_EQ(cookie.commentURL(), URL::parse("h:"));
    EXPECT_EQ(cookie.name + cookie.path, "");
    EXPECT_EQ(decoded(encoded(cookies)), cookies);
}

TEST(BinaryCookies, readsEqualOffsetsAsTheFirstOfTheirFields) {
    Bytes record = CookieRecord().data();
    record = patched(record, 20, Bytes(record.begin() + 16, record.begin() + 20));
    const BinaryCookies cookies = decoded(cookieFile({cookiePage({record})}, emptyDictionary()));
    EXPECT_EQ(cookies.cookies().at(0).urlString, "id");
    EXPECT_EQ(cookies.cookies().at(0).name, "");
}

TEST(BinaryCookies, namesWhatIsMissing) {
    const std::size_t checksum = smallFile().size() - emptyDictionary().size() - 12;
    struct Case {
        Bytes file;
        const char* error;
    };
    const std::vector<Case> cases{
        {{}, "Magic number is missing or incorrect"},
        {{'c', 'o', 'o'}, "Magic number is missing or incorrect"},
        {patched(smallFile(), 0, {'C'}), "Magic number is missing or incorrect"},
        {patched(smallFile(), 16, {1}), "Page header is invalid or missing"},
        {patched(smallFile(), 16 + 16, {1}), "Page footer is invalid or missing"},
        {patched(smallFile(), checksum + 4, {1}), "Footer is missing or incorrect"},
        {cookieFile({}, {}), "property list"},
        {{'c', 'o', 'o', 'k', 0, 0},
         "Not enough data to create a a type of std::uint32_t. Needed: 4. Received: 2."},
        {patched(smallFile(), 16 + 20 + 56, Bytes(1, 0xC3)),
         "Unable to create string from data with ASCII encoding."},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.error);
        EXPECT_EQ(errorOf(each.file), each.error);
    }
}

TEST(BinaryCookies, refusesAPageThatIsLongerThanItsSize) {
    EXPECT_EQ(errorOf(patched(smallFile(), 11, {60})),
              "Not enough data to create a a type of double. Needed: 8. Received: 0.");
}

TEST(BinaryCookies, readsWhatPadsARecordAsTheStartOfWhatFollows) {
    const Bytes padded = ByteText().raw(CookieRecord().data()).little(0, 4).data();
    const Bytes plain = CookieRecord().data();
    struct Case {
        std::vector<Bytes> pages;
        std::string error;
    };
    const std::vector<Case> cases{
        {{cookiePage({padded, plain})},
         "Not enough data to create a a type of std::uint32_t. Needed: 4. Received: 0."},
        {{cookiePage({padded}), cookiePage({plain})}, "Page header is invalid or missing"},
        {{cookiePage({padded})}, "Footer is missing or incorrect"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.error);
        EXPECT_EQ(errorOf(cookieFile(each.pages, emptyDictionary())), each.error);
    }
}

TEST(BinaryCookies, readsMoreCookiesThanItMakesRoomForAtFirst) {
    std::vector<Bytes> records;
    for (std::size_t index = 0; index < 5000; ++index) {
        records.push_back(named(std::to_string(index)).data());
    }
    const Bytes file = cookieFile({cookiePage(records)}, emptyDictionary());
    const BinaryCookies cookies = decoded(file);
    ASSERT_EQ(cookies.cookieCount(), 5000U);
    EXPECT_EQ(cookies.pages.front().cookies.back().name, "4999");
    EXPECT_EQ(encoded(cookies), file);
}

TEST(BinaryCookies, refusesARecordSizeOfZero) {
    EXPECT_EQ(errorOf(patched(smallFile(), 16 + 20, Bytes(4, 0))),
              "Not enough data to create a a type of std::uint32_t. Needed: 4. Received: 0.");
}

TEST(BinaryCookies, refusesAStringWithoutTerminator) {
    Bytes record = CookieRecord().data();
    record.back() = 'x';
    EXPECT_EQ(errorOf(cookieFile({cookiePage({record})}, emptyDictionary())),
              "Unable to find delimiter for string.");
}

TEST(BinaryCookies, refusesAStringThatEndsBehindALongRecord) {
    CookieRecord longest;
    longest.value = std::string(70000, 'v');
    Bytes record = longest.data();
    record.back() = 'x';
    EXPECT_EQ(errorOf(cookieFile({cookiePage({record, CookieRecord().data()})}, emptyDictionary())),
              "Unable to find delimiter for string.");
}

TEST(BinaryCookies, readsNothingOfAFileOfZeros) {
    EXPECT_EQ(errorOf(Bytes(std::size_t{100} << 20U, 0)), "Magic number is missing or incorrect");
}

TEST(BinaryCookies, endsInAnErrorAtEveryTruncation) {
    const Bytes file = smallFile();
    const std::size_t metadata = file.size() - emptyDictionary().size();
    for (std::size_t length = 0; length < file.size(); ++length) {
        SCOPED_TRACE(length);
        const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
        // A beginning of "bplist00" that lacks its end is a word: an old-style property list.
        const bool isWord = length > metadata && length < metadata + 8;
        EXPECT_EQ(errorOf(cut) == "no error", isWord);
    }
}

TEST(BinaryCookies, readsOrRefusesEveryCorruptionOfOneByte) {
    const Bytes file = cookieFile({cookiePage({CookieRecord().data()})}, emptyDictionary());
    for (std::size_t offset = 0; offset < file.size(); ++offset) {
        for (unsigned value = 0; value < 256; ++value) {
            const Bytes bad = patched(file, offset, {static_cast<std::uint8_t>(value)});
            if (errorOf(bad) == "no error") {
                EXPECT_LE(decoded(bad).cookieCount(), 1U) << offset << ": " << value;
            }
        }
    }
}

TEST(BinaryCookies, believesNoCount) {
    for (const std::size_t offset : {4U, 8U, 12U, 16U + 4U, 16U + 20U}) {
        SCOPED_TRACE(offset);
        const std::string error = errorOf(patched(smallFile(), offset, Bytes(4, 0xFF)));
        EXPECT_TRUE(error == "no error" || error.starts_with("Not enough") ||
                    error.starts_with("Page footer") || error.starts_with("Unable"))
            << error;
    }
}

TEST(BinaryCookies, refusesToWriteSizesThatDoNotAddUp) {
    BinaryCookies cookies = decoded(smallFile());
    cookies.pages.at(0).cookies.at(0).size = 0xFFFFFFFF;
    EXPECT_THROW(encoded(cookies), std::length_error);
}

TEST(BinaryCookies, writesSizesThatJustAddUp) {
    BinaryCookies::Page page = decoded(smallFile()).pages.at(0);
    ASSERT_EQ(page.cookies.size(), 2U);
    page.cookies.at(0).size = 0xFFFFFFFF - 20;
    const Bytes data = BinaryDataEncoder().encode(page);
    EXPECT_EQ(slice(data, 8, 8), ByteText().little(20, 4).little(0xFFFFFFFF, 4).data());
}

TEST(BinaryCookies, aCookieThatIsMadeAnewIsEmpty) {
    const BinaryCookies::Cookie cookie;
    EXPECT_EQ(cookie.size, 0U);
    EXPECT_EQ(cookie.version, 0U);
    EXPECT_TRUE(cookie.flags.isEmpty());
    for (const std::uint32_t offset :
         {cookie.urlOffset, cookie.nameOffset, cookie.pathOffset, cookie.valueOffset,
          cookie.commentOffset, cookie.commentURLOffset}) {
        EXPECT_EQ(offset, 0U);
    }
}

TEST(BinaryCookies, writesAPageWhoseLastRecordClaimsAnySize) {
    BinaryCookies::Page page = decoded(smallFile()).pages.at(0);
    const std::uint32_t written = page.cookies.at(0).size;
    page.cookies.at(1).size = 0xFFFFFFFF;
    const Bytes data = BinaryDataEncoder().encode(page);
    EXPECT_EQ(slice(data, 8, 8), ByteText().little(20, 4).little(20 + written, 4).data());
    page.cookies.at(0).size = 0xFFFFFFFF;
    EXPECT_THROW(BinaryDataEncoder().encode(page), std::length_error);
}

TEST(BinaryCookies, computesPageSizesAndOffsetsFromTheStoredSizes) {
    BinaryCookies cookies = decoded(smallFile());
    const Bytes before = encoded(cookies);
    const std::uint32_t first = cookies.pages.at(0).cookies.at(0).size + 1000;
    const std::uint32_t second = cookies.pages.at(0).cookies.at(1).size;
    cookies.pages.at(0).cookies.at(0).size = first;
    const Bytes after = encoded(cookies);
    EXPECT_EQ(after.size(), before.size());  // nothing is padded
    EXPECT_EQ(slice(after, 8, 4), ByteText().big(12 + 8 + first + second, 4).data());
    EXPECT_EQ(slice(after, 12, 4), slice(before, 12, 4));
    EXPECT_EQ(slice(after, 16 + 8, 8), ByteText().little(20, 4).little(20 + first, 4).data());
    EXPECT_EQ(slice(after, 16 + 20, 4), ByteText().little(first, 4).data());
}

TEST(BinaryCookies, writesNothingForAnAbsentCommentThatHasAnOffset) {
    BinaryCookies::Cookie cookie = decoded(smallFile()).cookies().at(0);
    const Bytes before = BinaryDataEncoder().encode(cookie);
    cookie.commentOffset = 57;  // between the domain and the name
    cookie.commentURLOffset = 5000;
    EXPECT_EQ(BinaryDataEncoder().encode(cookie),
              patched(before, 32, ByteText().little(57, 4).little(5000, 4).data()));
    cookie.comment = std::string("c");
    cookie.commentURLString = std::string();
    const Bytes after = BinaryDataEncoder().encode(cookie);
    EXPECT_EQ(slice(after, 56, after.size()), ByteText()
                                                  .text(std::string_view("example.org\0c\0", 14))
                                                  .text(std::string_view("id\0/\0"
                                                                         "42\0\0",
                                                                         9))
                                                  .data());
}

TEST(BinaryCookies, writesTheFirstOfTheFieldsForEveryOffsetThatIsEqual) {
    BinaryCookies::Cookie cookie = decoded(smallFile()).cookies().at(0);
    cookie.nameOffset = cookie.valueOffset;
    cookie.commentOffset = cookie.urlOffset;
    cookie.comment = std::string("never written");
    const Bytes data = BinaryDataEncoder().encode(cookie);
    EXPECT_EQ(slice(data, 56, data.size()),
              ByteText()
                  .text(std::string_view("example.org\0example.org\0", 24))
                  .text(std::string_view("/\0id\0id\0", 8))
                  .data());
}

TEST(BinaryCookies, writesAnyPortMarkerButOneBackAsNone) {
    CookieRecord record;
    record.portMarker = 2;
    const Bytes page = cookiePage({record.data()});
    const BinaryCookies cookies = decoded(cookieFile({page}, emptyDictionary()));
    EXPECT_EQ(encoded(cookies),
              cookieFile({cookiePage({CookieRecord().data()})}, emptyDictionary()));
}

TEST(BinaryCookies, takesMissingBytesOfARecordsSizeForZeros) {
    struct Case {
        Bytes rest;
        int received;
    };
    const std::vector<Case> cases{{{}, 0},     {{0}, 0},       {{1}, 1},
                                  {{0, 1}, 2}, {{2, 0, 0}, 2}, {{0, 0, 1}, 3}};
    for (const Case& each : cases) {
        SCOPED_TRACE(testing::PrintToString(each.rest));
        const Bytes page =
            ByteText().little(0x10000, 4).little(1, 4).little(0, 8).raw(each.rest).data();
        try {
            BinaryDataDecoder().decode<BinaryCookies::Page>(page);
            ADD_FAILURE() << "no error";
        } catch (const BinaryDecodingError& error) {
            EXPECT_EQ(error.context().debugDescription,
                      "Not enough data to create a a type of std::uint32_t. Needed: 4. Received: " +
                          std::to_string(each.received) + ".");
        }
    }
}

TEST(BinaryCookies, keepsPagesThatWereEmptyUntilCookiesAreRemoved) {
    const Bytes file = cookieFile({cookiePage({}), cookiePage({named("a").data()}), cookiePage({})},
                                  emptyDictionary());
    BinaryCookies cookies = decoded(file);
    EXPECT_EQ(cookies.pages.size(), 3U);
    EXPECT_EQ(encoded(cookies), file);
    cookies.remove([](const BinaryCookies::Cookie&) { return false; });
    EXPECT_EQ(encoded(cookies), cookieFile({cookiePage({named("a").data()})}, emptyDictionary()));
}

TEST(BinaryCookies, asksForEveryCookieOnceFromTheLastPageToTheFirst) {
    BinaryCookies cookies =
        decoded(cookieFile({cookiePage({named("a").data(), named("b").data()}),
                            cookiePage({named("c").data(), named("d").data(), named("e").data()})},
                           emptyDictionary()));
    std::string asked;
    cookies.remove([&](const BinaryCookies::Cookie& cookie) {
        asked += cookie.name;
        return cookie.name == "c" || cookie.name == "a";
    });
    EXPECT_EQ(asked, "cdeab");
    EXPECT_EQ(cookies.cookieCount(), 3U);
}

TEST(BinaryCookies, refusesToWriteATextThatIsNotASCII) {
    BinaryCookies cookies = decoded(smallFile());
    cookies.pages.at(0).cookies.at(0).value = "\xC3\xA9";
    EXPECT_THROW(encoded(cookies), BinaryEncodingError);
}

TEST(BinaryCookies, dropsPagesThatBecomeEmpty) {
    BinaryCookies cookies = decoded(smallFile());
    cookies.remove([](const BinaryCookies::Cookie& cookie) { return cookie.name == "id"; });
    EXPECT_EQ(encoded(cookies), cookieFile({cookiePage({named("b").data()})}, emptyDictionary()));
    cookies.remove([](const BinaryCookies::Cookie&) { return true; });
    EXPECT_EQ(encoded(cookies), cookieFile({}, emptyDictionary()));
}

TEST(BinaryCookies, keepsTheOrderOfTheCookiesThatStay) {
    BinaryCookies cookies =
        decoded(cookieFile({cookiePage({named("a").data(), named("b").data(), named("c").data()})},
                           emptyDictionary()));
    cookies.remove([](const BinaryCookies::Cookie& cookie) { return cookie.name == "b"; });
    EXPECT_EQ(encoded(cookies),
              cookieFile({cookiePage({named("a").data(), named("c").data()})}, emptyDictionary()));
}

TEST(BinaryCookiesFlags, areMadeOfAnyNumber) {
    EXPECT_EQ(Flags::fromRawValue(0xFFFFFFFF), Flags(0xFFFFFFFF));
}

TEST(BinaryCookiesFlags, areASet) {
    const Flags one(1);
    const Flags two(2);
    const Flags both{one, two};
    EXPECT_EQ(both.rawValue(), 3U);
    EXPECT_EQ(one.unionWith(two), both);
    EXPECT_EQ(both.intersection(two), two);
    EXPECT_EQ(both.symmetricDifference(two), one);
    EXPECT_TRUE(both.contains(one) && both.isSuperset(two) && one.isSubset(both));
    EXPECT_TRUE(one.isDisjoint(two) && !both.isDisjoint(two) && Flags().isEmpty());
    Flags changing = both;
    changing.remove(one);
    EXPECT_EQ(changing, two);
    changing.insert(one);
    EXPECT_EQ(changing, both);
}

TEST(BinaryCookies, writesWhatAnotherDecoderReads) {
    const std::filesystem::path script =
        std::filesystem::path(BROWSERSWEEP_TESTS_FOLDER) / "cookies/decode_cookies.py";
    const Bytes file = encoded(decoded(smallFile()));
    const auto output =
        tests::runPython(tests::readFile(script), std::string(file.begin(), file.end()));
    if (!output) {
        GTEST_SKIP() << "there is no python3";
    }
    EXPECT_EQ(*output,
              "1|5|None|700000000.5|600000000.25|example.org|id|/|42|None|None\n"
              "1|5|8080|700000000.5|600000000.25|example.org|id|/|42|None|None\n"
              "1|5|None|700000000.5|600000000.25|example.org|b|/|42|None|None\n"
              "{}\n");
}

}  // namespace browsersweep
