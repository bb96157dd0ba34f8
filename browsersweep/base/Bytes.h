#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace browsersweep {

/** A run of bytes that is owned: the contents of a file, a property list's data. */
using Bytes = std::vector<std::uint8_t>;

/** A view of bytes that are owned elsewhere. */
using BytesView = std::span<const std::uint8_t>;

}  // namespace browsersweep
