#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/binarycoding/BufferedDataSource.h"

namespace browsersweep {

/** A source over bytes in memory, which it does not copy: they must outlive it. */
class BROWSERSWEEP_EXPORT DataBufferedDataSource final : public BufferedDataSource {
public:
    /** Hands out these bytes from the first on. */
    explicit DataBufferedDataSource(std::span<const std::uint8_t> data) noexcept : data_(data) {}

    /** The bytes not handed out yet. */
    std::span<const std::uint8_t> data() const noexcept { return data_; }

    std::optional<std::vector<std::uint8_t>> read(std::size_t length) override;
    bool isAtEnd() override;
    std::optional<std::span<const std::uint8_t>> view(std::size_t length) override;
    std::optional<DelimitedBytes> viewUntil(std::uint8_t delimiter, std::size_t length) override;
    std::optional<std::span<const std::uint8_t>> lookAhead(std::size_t length) override;

private:
    std::span<const std::uint8_t> data_;
};

}  // namespace browsersweep
