#include "browsersweep/cleanable/FilterSight.h"

namespace browsersweep {
namespace {

using Patterns = CleanableDataFilter::Patterns;

FilterSight partsOf(const CleanableDataFilter& filter) noexcept {
    FilterSight parts;
    if (!filter.patterns().empty()) {
        const bool includes = filter.patternsData->rule == Patterns::Rule::include;
        (includes ? parts.inclusions : parts.exclusions) = true;
    }
    const auto& dates = filter.dates();
    parts.dates = dates && (dates->startDate || dates->endDate);
    return parts;
}

}  // namespace

FilterSight FilterSight::without(const FilterSight& other) const noexcept {
    return {inclusions && !other.inclusions, exclusions && !other.exclusions,
            dates && !other.dates};
}

FilterSight FilterSight::with(const FilterSight& other) const noexcept {
    return {inclusions || other.inclusions, exclusions || other.exclusions, dates || other.dates};
}

FilterSight partsOf(CleanableDataFilters filters) noexcept {
    FilterSight parts;
    for (const CleanableDataFilter& filter : filters) {
        parts = parts.with(partsOf(filter));
    }
    return parts;
}

}  // namespace browsersweep
