#include "browsersweep/cookies/BinaryCookies.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <span>
#include <stdexcept>

#include "browsersweep/base/FatalError.h"
#include "browsersweep/binarycoding/BinaryDecodingContainer.h"
#include "browsersweep/binarycoding/BinaryDecodingError.h"
#include "browsersweep/binarycoding/BinaryEncodingContainer.h"

namespace browsersweep {
namespace {

using Cookie = BinaryCookies::Cookie;
using Page = BinaryCookies::Page;

constexpr std::array<std::uint8_t, 4> magic{'c', 'o', 'o', 'k'};
constexpr std::uint64_t fileFooter = 0x4B00000005201707U;
constexpr std::uint32_t pageHeader = 0x00010000U;
constexpr std::uint32_t portFollows = 1;
constexpr std::size_t recordHeadLength = 56;
constexpr std::uint8_t terminator = 0;

// The strings of a record in the order in which their offsets are stored.
constexpr std::size_t textCount = 6;
constexpr std::size_t commentIndex = 4;

using Offsets = std::array<std::uint32_t, textCount>;

Offsets offsetsOf(const Cookie& cookie) noexcept {
    return {cookie.urlOffset,   cookie.nameOffset,    cookie.pathOffset,
            cookie.valueOffset, cookie.commentOffset, cookie.commentURLOffset};
}

void setOffsets(Cookie& cookie, const Offsets& offsets) noexcept {
    cookie.urlOffset = offsets[0];
    cookie.nameOffset = offsets[1];
    cookie.pathOffset = offsets[2];
    cookie.valueOffset = offsets[3];
    cookie.commentOffset = offsets[4];
    cookie.commentURLOffset = offsets[5];
}

Offsets sorted(Offsets offsets) noexcept {
    std::sort(offsets.begin(), offsets.end());
    return offsets;
}

// The field that an offset belongs to. Of several with the same offset it is the first.
std::size_t fieldAt(const Offsets& offsets, std::uint32_t offset) noexcept {
    return static_cast<std::size_t>(std::find(offsets.begin(), offsets.end(), offset) -
                                    offsets.begin());
}

void setText(Cookie& cookie, std::size_t field, std::string text) {
    const std::array<std::string*, commentIndex> texts{&cookie.urlString, &cookie.name,
                                                       &cookie.path, &cookie.value};
    if (field < commentIndex) {
        *texts.at(field) = std::move(text);
    } else {
        (field == commentIndex ? cookie.comment : cookie.commentURLString) = std::move(text);
    }
}

// Absent where the field is.
std::optional<std::string_view> textAt(const Cookie& cookie, std::size_t field) {
    const std::array<const std::string*, commentIndex> texts{&cookie.urlString, &cookie.name,
                                                             &cookie.path, &cookie.value};
    if (field < commentIndex) {
        return *texts.at(field);
    }
    const OptionalText& text = field == commentIndex ? cookie.comment : cookie.commentURLString;
    return text.isPresent() ? std::optional(text.value()) : std::nullopt;
}

constexpr std::uint32_t byteSwapped(std::uint32_t value) noexcept {
    return (value >> 24U) | ((value >> 8U) & 0xFF00U) | ((value << 8U) & 0xFF0000U) |
           (value << 24U);
}

[[noreturn]] void failReading(const char* description) {
    throw BinaryDecodingError::dataCorrupted(description);
}

// A damaged record may claim any size. The sum must not wrap around: the page size that it gave
// could not be read again.
std::uint32_t checkedSum(std::uint32_t a, std::uint32_t b) {
    if (a > std::numeric_limits<std::uint32_t>::max() - b) {
        throw std::length_error("The sizes of the cookies of a page do not fit in 32 bits.");
    }
    return a + b;
}

std::uint32_t count32(std::size_t count) noexcept {
    if (count > std::numeric_limits<std::uint32_t>::max()) {
        fatalError("a cookie file has more entries than 32 bits can count");
    }
    return static_cast<std::uint32_t>(count);
}

std::uint32_t firstCookieOffset(const Page& page) {
    const std::uint64_t offset = 12 + 4 * std::uint64_t{count32(page.cookies.size())};
    if (offset > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("The cookies of a page do not fit in 32 bits.");
    }
    return static_cast<std::uint32_t>(offset);
}

std::uint32_t storedSize(const Page& page) {
    std::uint32_t size = firstCookieOffset(page);
    for (const Cookie& cookie : page.cookies) {
        size = checkedSum(size, cookie.size);
    }
    return size;
}

// How many bytes a page takes when written. Stored sizes are no guide to what to reserve: a damaged
// file may claim any.
std::size_t writtenLength(const Page& page) {
    std::size_t length = 12;
    for (const Cookie& cookie : page.cookies) {
        length += 4 + recordHeadLength + 2 + textCount + cookie.urlString.size() +
                  cookie.name.size() + cookie.path.size() + cookie.value.size() +
                  cookie.comment.value().size() + cookie.commentURLString.value().size();
    }
    return length;
}

std::uint32_t checksum(std::span<const std::uint8_t> page) noexcept {
    std::uint32_t sum = 0;
    for (std::size_t index = 0; index < page.size(); index += 4) {
        sum += page[index];
    }
    return sum;
}

std::vector<std::uint32_t> decodePageSizes(BinaryDecodingContainer& container) {
    const std::uint32_t pageCount = byteSwapped(container.decode<std::uint32_t>());
    // The count may be wrong: the list grows only with the bytes that are really there.
    std::vector<std::uint32_t> sizes;
    for (std::uint32_t index = 0; index < pageCount; ++index) {
        sizes.push_back(byteSwapped(container.decode<std::uint32_t>()));
    }
    return sizes;
}

// The count may be wrong, and a cookie in memory takes many times the four bytes of its offset. So
// the room grows with the records that were really there, and ends at the count.
void makeRoom(std::vector<Cookie>& cookies, std::size_t count) {
    constexpr std::size_t growth = 4;
    constexpr std::size_t steps = growth * growth * growth;
    constexpr std::size_t alwaysFits = 64;
    if (cookies.size() == cookies.capacity()) {
        const std::size_t room = std::max(count / steps + 1, growth * cookies.size());
        cookies.reserve(std::min(count, std::max(room, alwaysFits)));
    }
}

std::uint32_t peekRecordSize(BinaryDecodingContainer& container) {
    std::uint32_t size = 0;
    unsigned shift = 0;
    for (const std::uint8_t byte : container.lookAhead(sizeof size)) {
        size |= std::uint32_t{byte} << shift;
        shift += 8;
    }
    return size;
}

}  // namespace

Cookie::Cookie(const BinaryDecoder& from) {
    BinaryDecodingContainer& container = from.container();
    const auto head = container.decodeNumbers<std::uint32_t, 4>();
    const Offsets offsets = container.decodeNumbers<std::uint32_t, textCount>();
    const auto dates = container.decodeNumbers<double, 2>();
    size = head[0];
    version = head[1];
    flags = Flags(head[2]);
    setOffsets(*this, offsets);
    expirationDate = dateFromReferenceSeconds(dates[0]);
    creationDate = dateFromReferenceSeconds(dates[1]);
    if (head[3] == portFollows) {
        port = container.decode<std::uint16_t>();
    }
    for (const std::uint32_t offset : sorted(offsets)) {
        if (offset != 0) {
            setText(*this, fieldAt(offsets, offset),
                    container.decodeString(StringEncoding::ascii, terminator));
        }
    }
}

void Cookie::encode(const BinaryEncoder& to) const {
    BinaryEncodingContainer container = to.container();
    container.encode(size);
    container.encode(version);
    container.encode(flags);
    container.encode(port ? portFollows : std::uint32_t{0});
    const Offsets offsets = offsetsOf(*this);
    container.encodeContentsOf(offsets);
    container.encode(referenceSeconds(expirationDate));
    container.encode(referenceSeconds(creationDate));
    if (port) {
        container.encode(*port);
    }
    for (const std::uint32_t offset : sorted(offsets)) {
        if (offset == 0) {
            continue;
        }
        if (const auto text = textAt(*this, fieldAt(offsets, offset))) {
            container.encodeString(*text, StringEncoding::ascii, terminator);
        }
    }
}

std::optional<URL> Cookie::commentURL() const {
    return commentURLString.isPresent() ? URL::parse(commentURLString.value()) : std::nullopt;
}

Page::Page(const BinaryDecoder& from) {
    BinaryDecodingContainer& container = from.container();
    if (container.decode<std::uint32_t>() != pageHeader) {
        failReading("Page header is invalid or missing");
    }
    const auto count = container.decode<std::uint32_t>();
    for (std::uint32_t index = 0; index < count; ++index) {
        container.decode<std::uint32_t>();
    }
    if (container.decode<std::uint32_t>() != 0) {
        failReading("Page footer is invalid or missing");
    }
    for (std::uint32_t index = 0; index < count; ++index) {
        makeRoom(cookies, count);
        BinaryDecodingContainer record = container.nestedContainer(peekRecordSize(container));
        cookies.emplace_back(record.decoder());
    }
}

void Page::encode(const BinaryEncoder& to) const {
    BinaryEncodingContainer container = to.container();
    container.encode(pageHeader);
    container.encode(count32(cookies.size()));
    // The size of the last record leads to no offset, whatever it claims.
    std::uint32_t offset = firstCookieOffset(*this);
    for (const Cookie& cookie : cookies) {
        container.encode(offset);
        if (&cookie != &cookies.back()) {
            offset = checkedSum(offset, cookie.size);
        }
    }
    container.encode(std::uint32_t{0});
    container.encode(cookies);
}

BinaryCookies::BinaryCookies() : metadata(PropertyList::dictionary({})) {}

BinaryCookies::BinaryCookies(const BinaryDecoder& from) : BinaryCookies() {
    BinaryDecodingContainer& container = from.container();
    const auto start = container.peek(magic.size());
    if (!std::equal(start.begin(), start.end(), magic.begin(), magic.end())) {
        failReading("Magic number is missing or incorrect");
    }
    container.decode(magic.size());
    for (const std::uint32_t pageSize : decodePageSizes(container)) {
        BinaryDecodingContainer page = container.nestedContainer(pageSize);
        pages.emplace_back(page.decoder());
    }
    container.decode(sizeof(std::uint32_t));  // the checksum, which Safari may have left wrong
    if (container.decode<std::uint64_t>() != fileFooter) {
        failReading("Footer is missing or incorrect");
    }
    metadata = PropertyList::parse(container.takeRemainder());
}

void BinaryCookies::encode(const BinaryEncoder& to) const {
    BinaryEncodingContainer container = to.container();
    const Bytes tail = metadata.binaryData();
    std::vector<std::uint8_t>& data = container.storage().data;
    data.reserve(std::accumulate(
        pages.begin(), pages.end(), data.size() + 20 + 4 * pages.size() + tail.size(),
        [](std::size_t sum, const Page& page) { return sum + writtenLength(page); }));
    container.encode(std::span<const std::uint8_t>(magic));
    container.encode(byteSwapped(count32(pages.size())));
    for (const Page& page : pages) {
        container.encode(byteSwapped(storedSize(page)));
    }
    std::uint32_t sum = 0;
    for (const Page& page : pages) {
        const std::size_t start = data.size();
        container.encode(page);
        sum += checksum(std::span<const std::uint8_t>(data).subspan(start));
    }
    container.encode(byteSwapped(sum));
    container.encode(fileFooter);
    container.encode(std::span<const std::uint8_t>(tail));
}

std::vector<Cookie> BinaryCookies::cookies() const {
    std::vector<Cookie> all;
    all.reserve(cookieCount());
    for (const Page& page : pages) {
        all.insert(all.end(), page.cookies.begin(), page.cookies.end());
    }
    return all;
}

std::size_t BinaryCookies::cookieCount() const noexcept {
    return std::accumulate(
        pages.begin(), pages.end(), std::size_t{0},
        [](std::size_t count, const Page& page) { return count + page.cookies.size(); });
}

}  // namespace browsersweep
