#include "browsersweep/binarycoding/BinaryDecodingContainer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ios>
#include <limits>
#include <locale>
#include <sstream>
#include <utility>

#include "browsersweep/binarycoding/BinaryDecodingError.h"

namespace browsersweep {
namespace {

constexpr std::uint64_t everything = std::numeric_limits<std::size_t>::max();

void requireLength(std::uint64_t requested, std::size_t received) {
    if (received < requested) {
        throw BinaryDecodingError::dataCorrupted(
            "Not enough bytes available to decode. Requested " + std::to_string(requested) +
            ", but received " + std::to_string(received) + ".");
    }
}

std::string requireText(std::span<const std::uint8_t> bytes, StringEncoding encoding) {
    std::optional<std::string> text = decodedText(bytes, encoding);
    if (!text) {
        throw BinaryDecodingError::dataCorrupted("Unable to create string from data with " +
                                                 std::string(displayName(encoding)) + " encoding.");
    }
    return *std::move(text);
}

template <typename Number>
std::string written(Number number, std::ios_base::fmtflags form, int decimals) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream.setf(form, std::ios_base::floatfield);
    stream.precision(decimals);
    stream << number;
    return stream.str();
}

template <typename Number>
bool reads(const std::string& text, Number number) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    Number found{};
    stream >> found;
    // What is beyond the range reads as the largest number. Some libraries refuse tiny ones, too.
    return found == number && (!stream.fail() || std::fabs(found) < 1);
}

// The fewest decimals of the exponent form that read back the same. An infinity never does.
template <typename Number>
int fewestDecimals(Number number) {
    int decimals = 0;
    while (decimals < std::numeric_limits<Number>::max_digits10 - 1 &&
           !reads(written(number, std::ios_base::scientific, decimals), number)) {
        ++decimals;
    }
    return decimals;
}

// Whether it is long enough for a text with an exponent: beyond what counts every whole number.
template <typename Number>
bool needsExponent(Number magnitude) {
    constexpr auto smallestPlain = static_cast<Number>(0.0001);
    constexpr auto largestPlain =
        static_cast<Number>(std::uint64_t{1} << std::numeric_limits<Number>::digits);
    return magnitude != 0 && (magnitude < smallestPlain || magnitude > largestPlain);
}

// The fewest digits that read back the same, at least one of them a decimal.
template <typename Number>
std::string shortestText(Number number) {
    if (std::isnan(number)) {
        return "nan";
    }
    const int decimals = fewestDecimals(number);
    std::string text = written(number, std::ios_base::scientific, decimals);
    if (needsExponent(std::fabs(number))) {
        return text;
    }
    const int exponent = std::stoi(text.substr(text.find('e') + 1));
    return written(number, std::ios_base::fixed, std::max(1, decimals - exponent));
}

}  // namespace

BinaryDecodingContainer::NestedSource::NestedSource(BinaryDecodingContainer& parent)
    : AnyBufferedDataSource([&parent](std::size_t length) { return parent.nextBytes(length); },
                            [&parent] { return parent.isAtEnd(); }),
      parent_(&parent) {}

std::optional<std::span<const std::uint8_t>> BinaryDecodingContainer::NestedSource::view(
    std::size_t length) {
    return parent_->take(length);
}

std::optional<DelimitedBytes> BinaryDecodingContainer::NestedSource::viewUntil(
    std::uint8_t delimiter, std::size_t length) {
    return parent_->takeUntil(delimiter, length);
}

std::optional<std::span<const std::uint8_t>> BinaryDecodingContainer::NestedSource::lookAhead(
    std::size_t length) {
    return parent_->lookAhead(length);
}

BinaryDecodingContainer::BinaryDecodingContainer(BinaryDecodingContainer& parent,
                                                 std::uint64_t limit)
    : ownSource_(std::in_place, parent),
      ownData_(std::in_place, *ownSource_),
      data_(&*ownData_),
      remainingLength_(limit),
      userInfo_(parent.userInfo_) {}

const BinaryUserInfo& BinaryDecoder::userInfo() const noexcept {
    return container_->userInfo();
}

std::string BinaryDecodingContainer::decodeString(StringEncoding encoding,
                                                  std::uint8_t terminator) {
    const DelimitedBytes found = takeUntil(terminator, everything);
    if (!found.didFindDelimiter) {
        throw BinaryDecodingError::dataCorrupted("Unable to find delimiter for string.");
    }
    return requireText(found.data, encoding);
}

std::string BinaryDecodingContainer::decodeString(StringEncoding encoding) {
    return requireText(takeRemainder(), encoding);
}

std::vector<std::uint8_t> BinaryDecodingContainer::decode(std::uint64_t length) {
    const std::span<const std::uint8_t> piece = take(length);
    requireLength(length, piece.size());
    return {piece.begin(), piece.end()};
}

std::vector<std::uint8_t> BinaryDecodingContainer::decodeRemainder() {
    const std::span<const std::uint8_t> piece = takeRemainder();
    return {piece.begin(), piece.end()};
}

std::span<const std::uint8_t> BinaryDecodingContainer::takeRemainder() {
    return remainingLength_ ? take(*remainingLength_) : data_->takeRemainder();
}

std::vector<std::uint8_t> BinaryDecodingContainer::peek(std::uint64_t length) {
    const std::span<const std::uint8_t> piece = lookAhead(length);
    return {piece.begin(), piece.end()};
}

std::vector<std::uint8_t> BinaryDecodingContainer::peekExactly(std::uint64_t length) {
    std::vector<std::uint8_t> piece = peek(length);
    requireLength(length, piece.size());
    return piece;
}

BinaryDecodingContainer BinaryDecodingContainer::nestedContainer(
    std::optional<std::uint64_t> maxLength) {
    if (!remainingLength_) {
        return {*data_, maxLength, *userInfo_};
    }
    return {*this, std::min(maxLength.value_or(*remainingLength_), *remainingLength_)};
}

bool BinaryDecodingContainer::isAtEnd() {
    return remainingLength_ == 0U || data_->isAtEnd();
}

std::vector<std::uint8_t> BinaryDecodingContainer::nextBytes(std::size_t length) {
    const std::span<const std::uint8_t> piece = take(length);
    return {piece.begin(), piece.end()};
}

DelimitedBytes BinaryDecodingContainer::takeUntil(std::uint8_t delimiter, std::uint64_t length) {
    const DelimitedBytes found = data_->takeUntil(delimiter, withinLimit(length));
    consume(found.data.size() + (found.didFindDelimiter ? 1 : 0));
    return found;
}

std::string BinaryDecodingContainer::textOf(float raw) {
    return shortestText(raw);
}

std::string BinaryDecodingContainer::textOf(double raw) {
    return shortestText(raw);
}

void BinaryDecodingContainer::failForNumber(const std::string& type, std::size_t needed,
                                            std::size_t received) {
    // The doubled word is part of the message.
    throw BinaryDecodingError::dataCorrupted("Not enough data to create a a type of " + type +
                                             ". Needed: " + std::to_string(needed) +
                                             ". Received: " + std::to_string(received) + ".");
}

void BinaryDecodingContainer::failForRawValue(const std::string& type, const std::string& rawType,
                                              const std::string& raw) {
    throw BinaryDecodingError::dataCorrupted("Cannot initialize " + type + " from invalid " +
                                             rawType + " value " + raw);
}

}  // namespace browsersweep
