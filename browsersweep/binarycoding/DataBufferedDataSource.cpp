#include "browsersweep/binarycoding/DataBufferedDataSource.h"

#include <algorithm>
#include <cstring>

namespace browsersweep {

std::optional<std::vector<std::uint8_t>> DataBufferedDataSource::read(std::size_t length) {
    if (data_.empty()) {
        return std::nullopt;
    }
    const std::span<const std::uint8_t> piece = *view(length);
    return std::vector<std::uint8_t>(piece.begin(), piece.end());
}

bool DataBufferedDataSource::isAtEnd() {
    return data_.empty();
}

std::optional<std::span<const std::uint8_t>> DataBufferedDataSource::view(std::size_t length) {
    const std::span<const std::uint8_t> piece = data_.first(std::min(length, data_.size()));
    data_ = data_.subspan(piece.size());
    return piece;
}

std::optional<std::span<const std::uint8_t>> DataBufferedDataSource::lookAhead(std::size_t length) {
    return data_.first(std::min(length, data_.size()));
}

std::optional<DelimitedBytes> DataBufferedDataSource::viewUntil(std::uint8_t delimiter,
                                                                std::size_t length) {
    const std::size_t count = std::min(length, data_.size());
    const void* const hit = count == 0 ? nullptr : std::memchr(data_.data(), delimiter, count);
    if (hit == nullptr) {
        return DelimitedBytes{*view(count), false};
    }
    const auto before =
        static_cast<std::size_t>(static_cast<const std::uint8_t*>(hit) - data_.data());
    return DelimitedBytes{view(before + 1)->first(before), true};
}

}  // namespace browsersweep
