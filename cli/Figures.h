#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "browsersweep/cleanable/CleanableDataSize.h"

namespace browsersweep::cli {

/** A count for people: "1,234", with "~" before an approximate one. */
std::string countText(const CleanableDataSize::Measurement& count);

/** A number of bytes for people in steps of 1000: "512 B", "1.5 KB", "~2.0 GB". */
std::string bytesText(const CleanableDataSize::Measurement& bytes);

/** A bar as long as the value's share of the largest value; at least one mark for any share. */
std::string bar(std::int64_t value, std::int64_t largest, std::size_t width);

}  // namespace browsersweep::cli
