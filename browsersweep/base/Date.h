#pragma once

#include <chrono>

#include "browsersweep/Export.h"

namespace browsersweep {

/**
 * A clock whose epoch is 2001-01-01 00:00:00 UTC and whose ticks are seconds in a double: what
 * Safari's files and macOS itself store, so that a time read from a file goes back bit for bit.
 */
struct BROWSERSWEEP_EXPORT ReferenceClock {
    using rep = double;                                   ///< ticks: seconds with their fraction
    using period = std::ratio<1>;                         ///< one second
    using duration = std::chrono::duration<rep, period>;  ///< seconds between two times
    using time_point = std::chrono::time_point<ReferenceClock>;  ///< as `Date`
    /** It follows the system's clock, which can be set back. */
    static constexpr bool is_steady = false;  // NOLINT(readability-identifier-naming)

    /** The system's present time. */
    static time_point now() noexcept;
};

/** A point in time. Its bounds in filters are inclusive; it may hold any double. */
using Date = ReferenceClock::time_point;

/** Seconds from 1970-01-01 00:00:00 UTC to the reference date. */
inline constexpr double referenceDateSince1970 = 978307200.0;

/** The time so many seconds after 2001-01-01 00:00:00 UTC: how Safari and macOS store times. */
constexpr Date dateFromReferenceSeconds(double seconds) noexcept {
    return Date{ReferenceClock::duration{seconds}};
}

/** Seconds since 2001-01-01 00:00:00 UTC, bit for bit as the date was made of them. */
constexpr double referenceSeconds(Date date) noexcept {
    return date.time_since_epoch().count();
}

/** The time so many seconds after 1970-01-01 00:00:00 UTC, as far as a double is precise. */
constexpr Date dateFrom1970Seconds(double seconds) noexcept {
    return dateFromReferenceSeconds(seconds - referenceDateSince1970);
}

/** Seconds since 1970-01-01 00:00:00 UTC, as far as a double is precise. */
constexpr double secondsSince1970(Date date) noexcept {
    return referenceSeconds(date) + referenceDateSince1970;
}

}  // namespace browsersweep
