#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "browsersweep/cleanable/CleanableDataSize.h"

#include "cli/Appearance.h"

namespace browsersweep::cli {

/** A count for people: "1,234", with "~" before an approximate one. */
std::string countText(const CleanableDataSize::Measurement& count);

/** A number of bytes for people in steps of 1000: "512 B", "1.5 KB", "~2.0 GB". */
std::string bytesText(const CleanableDataSize::Measurement& bytes);

/**
 * A bar as long as the value's share of the largest value, which takes the whole width; at least
 * the smallest mark for any share. In UTF-8 its end is drawn in eighths of a column.
 */
std::string bar(std::int64_t value, std::int64_t largest, std::size_t width,
                CharacterSet characters);

}  // namespace browsersweep::cli
