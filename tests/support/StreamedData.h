#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "browsersweep/binarycoding/AnyBufferedDataSource.h"
#include "browsersweep/binarycoding/BufferedData.h"

namespace browsersweep::tests {

/** The bytes through a source that cannot show them and gives no more than three at a time. */
inline std::unique_ptr<BufferedData> streamed(const std::vector<std::uint8_t>& data) {
    auto taken = std::make_shared<std::size_t>(0);
    return std::make_unique<BufferedData>(std::make_unique<AnyBufferedDataSource>(
        [taken, data](std::size_t length) {
            const auto first = data.begin() + static_cast<std::ptrdiff_t>(*taken);
            const std::size_t count = std::min({length, data.size() - *taken, std::size_t{3}});
            *taken += count;
            return std::optional(
                std::vector<std::uint8_t>(first, first + static_cast<std::ptrdiff_t>(count)));
        },
        [taken, data] { return *taken == data.size(); }));
}

/** A source that cannot show its bytes, gives one at a time, and notes what it was asked for. */
class NotedStream {
public:
    using Bytes = std::vector<std::uint8_t>;

    explicit NotedStream(Bytes data) : data_(std::move(data)) {}
    BufferedData buffered(std::size_t capacity = BufferedData::defaultCapacity) {
        return BufferedData(std::make_unique<AnyBufferedDataSource>(
                                [this](std::size_t length) { return read(length); },
                                [this] { return position_ == data_.size(); }),
                            capacity);
    }
    const std::vector<std::size_t>& asked() const { return asked_; }

private:
    std::optional<Bytes> read(std::size_t length) {
        asked_.push_back(length);
        const std::size_t end = std::min({data_.size(), position_ + length, position_ + 1});
        Bytes piece(data_.begin() + static_cast<std::ptrdiff_t>(position_),
                    data_.begin() + static_cast<std::ptrdiff_t>(end));
        position_ = end;
        return piece;
    }

    Bytes data_;
    std::size_t position_ = 0;
    std::vector<std::size_t> asked_;
};

}  // namespace browsersweep::tests
