#pragma once

#include <optional>

#include "browsersweep/cleanable/CleanableDataFilter.h"

namespace browsersweep::tests {

inline constexpr auto inside = CleanableDataFilter::Dates::Rule::insideRange;
inline constexpr auto outside = CleanableDataFilter::Dates::Rule::outsideRange;

/** A filter by dates alone. The bounds are seconds since 2001; an absent one is open. */
inline CleanableDataFilter dates(CleanableDataFilter::Dates::Rule rule, std::optional<double> start,
                                 std::optional<double> end) {
    const auto at = [](std::optional<double> seconds) {
        return seconds ? std::optional(dateFromReferenceSeconds(*seconds)) : std::nullopt;
    };
    return {std::nullopt, CleanableDataFilter::Dates{rule, at(start), at(end)}};
}

}  // namespace browsersweep::tests
