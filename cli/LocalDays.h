#pragma once

#include <string>
#include <string_view>

#include "browsersweep/base/Date.h"
#include "browsersweep/cleanable/CleanableDataFilter.h"

namespace browsersweep::cli {

/**
 * The range of whole days, in the time zone of the device, that a text names: one of "2024-02-29",
 * "2024-02", "today" and "yesterday", or two of them with ".." between, of which either may be
 * left out. The last day belongs to it up to its last microsecond. Throws a `UsageError`.
 */
CleanableDataFilter::Dates parseDays(std::string_view text, Date now);

/** The range from so long before now, such as "7d". Throws a `UsageError`. */
CleanableDataFilter::Dates parseLast(std::string_view age, Date now);

/**
 * By how many hours local time was ahead of UTC at the midnight from which Chromium's history is
 * taken to count: the bounds of dates act so much later there. Negative where it was behind.
 */
double hoursAheadIn1601();

/** A date in the time zone of the device, with the zone's name: "2024-02-29 12:30:00 CET". */
std::string localText(Date date);

}  // namespace browsersweep::cli
