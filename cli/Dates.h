#pragma once

#include <string_view>

#include "browsersweep/base/Date.h"
#include "browsersweep/cleanable/CleanableDataFilter.h"

namespace browsersweep::cli {

/**
 * The date that a text of the command line means: "2024-02-29" (midnight UTC),
 * "2024-02-29T12:30:00.250Z", "730857600.5" (seconds since 2001-01-01 00:00:00 UTC) or
 * "@1709164800" (seconds since 1970). Throws a `UsageError` for anything else, for a date that no
 * browser's database could hold, and for a bare number of ten or more digits before the decimal
 * point, which may be meant as seconds since 1970.
 */
Date parseDate(std::string_view text);

/** The date of a plain number of seconds since 2001, written so, under the same limits. */
Date dateFromNumber(double secondsSince2001, std::string_view text);

/**
 * The filter of a range "START..END", of which either end may be empty. Throws a `UsageError`,
 * also where the start is after the end.
 */
CleanableDataFilter::Dates parseDateRange(CleanableDataFilter::Dates::Rule rule,
                                          std::string_view text);

/** Throws a `UsageError` where both ends are given and the start is after the end. */
void requireOrder(const CleanableDataFilter::Dates& dates, std::string_view text);

}  // namespace browsersweep::cli
