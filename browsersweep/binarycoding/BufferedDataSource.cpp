#include "browsersweep/binarycoding/BufferedDataSource.h"

namespace browsersweep {

BufferedDataSource::~BufferedDataSource() = default;

std::optional<std::span<const std::uint8_t>> BufferedDataSource::view(std::size_t /*length*/) {
    return std::nullopt;
}

std::optional<DelimitedBytes> BufferedDataSource::viewUntil(std::uint8_t /*delimiter*/,
                                                            std::size_t /*length*/) {
    return std::nullopt;
}

std::optional<std::span<const std::uint8_t>> BufferedDataSource::lookAhead(std::size_t /*length*/) {
    return std::nullopt;
}

}  // namespace browsersweep
