#pragma once

#include <string_view>

#include "browsersweep/cleanable/CleanableDataFilter.h"

namespace browsersweep::cli {

/**
 * A filter of one pattern. Throws a `UsageError` for a pattern that the library, which puts
 * patterns into SQL as they stand, could not take: an empty one, one with a quote, a wildcard or a
 * control character, and what is no UTF-8.
 */
CleanableDataFilter patternFilter(CleanableDataFilter::Rule rule, std::string_view pattern);

/** A filter of one range of dates, see `parseDateRange`. */
CleanableDataFilter datesFilter(CleanableDataFilter::Dates::Rule rule, std::string_view range);

/** A filter of whole days in the time zone of the device, see `parseDays`. */
CleanableDataFilter daysFilter(std::string_view days);

/** A filter of the time since so long ago, see `parseLast`. */
CleanableDataFilter lastFilter(std::string_view age);

/**
 * Any filter, from JSON:
 * {"patterns": {"rule": "include", "patterns": ["a", "b"]},
 *  "dates": {"rule": "insideRange", "startDate": DATE, "endDate": DATE}}
 * Throws a `UsageError` for anything that is not exactly of this form.
 */
CleanableDataFilter filterFromJSON(std::string_view text);

}  // namespace browsersweep::cli
