#pragma once

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableDataFilter.h"

namespace browsersweep {

/**
 * The parts of filters that some data can be told by, or that a list of filters has. Data that
 * cannot be told by a part of a filter goes whatever that part says.
 */
struct BROWSERSWEEP_EXPORT FilterSight {
    bool inclusions = false;  ///< patterns with the rule `include`
    bool exclusions = false;  ///< patterns with the rule `exclude`
    bool dates = false;       ///< ranges of dates

    /** Whether there is any. */
    bool any() const noexcept { return inclusions || exclusions || dates; }

    /** Those that another one lacks. */
    FilterSight without(const FilterSight& other) const noexcept;

    /** Those of both. */
    FilterSight with(const FilterSight& other) const noexcept;

    /** Whether all fields are equal. */
    friend bool operator==(const FilterSight&, const FilterSight&) = default;
};

/**
 * The parts that a list of filters has. Patterns without a text and ranges without a bound restrict
 * nothing anywhere, so they do not count.
 */
BROWSERSWEEP_EXPORT FilterSight partsOf(CleanableDataFilters filters) noexcept;

}  // namespace browsersweep
