#pragma once

#include <cstdint>
#include <optional>

#include "browsersweep/base/Date.h"

namespace browsersweep {

/** A moment as Chromium writes it: microseconds since the year 1601 began. Absent for none. */
std::optional<Date> dateFromChromium(std::uint64_t microseconds) noexcept;

}  // namespace browsersweep
