#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
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

}  // namespace browsersweep::tests
