#include "browsersweep/binarycoding/BufferedData.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace browsersweep {
namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

}  // namespace

BufferedData::BufferedData(std::unique_ptr<BufferedDataSource> reader, std::size_t initialCapacity)
    : ownReader_(std::move(reader)), reader_(ownReader_.get()), initialCapacity_(initialCapacity) {}

BufferedData::BufferedData(BufferedDataSource& reader, std::size_t initialCapacity) noexcept
    : reader_(&reader), initialCapacity_(initialCapacity) {}

BufferedData::~BufferedData() = default;

std::vector<std::uint8_t> BufferedData::read(std::size_t maxBytes) {
    const std::span<const std::uint8_t> piece = take(maxBytes);
    return {piece.begin(), piece.end()};
}

BufferedData::UntilResult BufferedData::readUntil(std::uint8_t delimiter) {
    const DelimitedBytes found = takeUntil(delimiter, unlimited);
    return {{found.data.begin(), found.data.end()}, found.didFindDelimiter};
}

std::vector<std::uint8_t> BufferedData::peek(std::size_t maxLength) {
    const std::span<const std::uint8_t> piece = lookAhead(maxLength);
    return {piece.begin(), piece.end()};
}

bool BufferedData::isAtEnd() {
    return buffer().empty() && reader_->isAtEnd();
}

DelimitedBytes BufferedData::takeUntil(std::uint8_t delimiter, std::size_t maxBytes) {
    if (buffer().empty()) {
        if (const auto found = reader_->viewUntil(delimiter, maxBytes)) {
            return *found;
        }
    }
    return takeUntilThroughBuffer(delimiter, maxBytes);
}

std::span<const std::uint8_t> BufferedData::takeRemainder() {
    if (buffer().empty()) {
        if (const auto piece = reader_->view(unlimited)) {
            return *piece;
        }
    }
    while (append(std::max(initialCapacity_, defaultCapacity))) {
    }
    return consume(buffer().size());
}

std::span<const std::uint8_t> BufferedData::takeThroughBuffer(std::size_t maxBytes) {
    fill(maxBytes);
    return consume(std::min(maxBytes, buffer().size()));
}

std::span<const std::uint8_t> BufferedData::lookAheadThroughBuffer(std::size_t maxLength) {
    fill(maxLength);
    return buffer().first(std::min(maxLength, buffer().size()));
}

DelimitedBytes BufferedData::takeUntilThroughBuffer(std::uint8_t delimiter, std::size_t maxBytes) {
    for (std::size_t seen = 0; seen < maxBytes; ++seen) {
        // The distance to the delimiter is unknown, so no more than a byte at a time may be
        // requested.
        if (seen == buffer().size() && !append(1)) {
            break;
        }
        if (buffer()[seen] == delimiter) {
            return {consume(seen + 1).first(seen), true};
        }
    }
    return {consume(std::min(maxBytes, buffer().size())), false};
}

void BufferedData::fill(std::size_t count) {
    while (buffer().size() < count && append(count - buffer().size())) {
    }
}

// False where the source has no more.
bool BufferedData::append(std::size_t maxBytes) {
    if (reader_->isAtEnd()) {
        return false;
    }
    const std::optional<std::vector<std::uint8_t>> piece = reader_->read(maxBytes);
    if (!piece || piece->empty()) {
        return false;
    }
    makeRoom();
    buffer_.insert(buffer_.end(), piece->begin(), piece->end());
    return true;
}

void BufferedData::makeRoom() {
    if (buffer_.capacity() == 0) {
        buffer_.reserve(initialCapacity_);
    }
    // Moving what is left only once as much was consumed keeps the cost per byte constant.
    if (position_ >= buffer_.size() - position_) {
        buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(position_));
        position_ = 0;
    }
}

std::span<const std::uint8_t> BufferedData::consume(std::size_t count) noexcept {
    const std::span<const std::uint8_t> piece = buffer().first(count);
    position_ += count;
    return piece;
}

}  // namespace browsersweep
