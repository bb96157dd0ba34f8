#pragma once

#include <optional>
#include <set>
#include <span>
#include <string>

#include "browsersweep/Export.h"
#include "browsersweep/platform/Date.h"

namespace browsersweep {

/**
 * Narrows what is sized or cleaned, by text that must or must not occur and by a range of dates.
 * What a list of filters means for an item is the item's own: databases turn it into one condition,
 * directories ask filter after filter, Safari's cookies differ again. An empty list selects all.
 */
struct BROWSERSWEEP_EXPORT CleanableDataFilter {
    enum class Rule { exclude, include };

    /** Texts, typically parts of host names. */
    struct BROWSERSWEEP_EXPORT Patterns {
        enum class Rule { exclude, include };

        Rule rule = Rule::exclude;
        std::set<std::string> patterns;

        friend bool operator==(const Patterns&, const Patterns&) = default;
    };

    /** A range of dates, bounds included. A bound that is absent leaves its end open. */
    struct BROWSERSWEEP_EXPORT Dates {
        enum class Rule { insideRange, outsideRange };

        Rule rule = Rule::insideRange;
        std::optional<Date> startDate;
        std::optional<Date> endDate;

        /** Whether a date passes: without any bound every date does, under both rules. */
        bool matches(Date date) const noexcept;

        friend bool operator==(const Dates&, const Dates&) = default;
    };

    std::optional<Patterns> patternsData;
    std::optional<Dates> datesData;

    CleanableDataFilter() = default;
    CleanableDataFilter(std::optional<Patterns> patterns, std::optional<Dates> dates);
    /** A filter of patterns alone. */
    CleanableDataFilter(Rule rule, std::set<std::string> patterns);

    /** The rule of the patterns; `exclude` where there are none. */
    Rule rule() const noexcept;
    /** The patterns; none where the filter has no such part. */
    const std::set<std::string>& patterns() const noexcept;
    /** The range of dates, if the filter has one. */
    const std::optional<Dates>& dates() const noexcept { return datesData; }

    friend bool operator==(const CleanableDataFilter&, const CleanableDataFilter&) = default;
};

/** A list of filters as every operation takes it. */
using CleanableDataFilters = std::span<const CleanableDataFilter>;

}  // namespace browsersweep
