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

/** A date in the time zone of the device, with the zone's name: "2024-02-29 12:30:00 CET". */
std::string localText(Date date);

}  // namespace browsersweep::cli
