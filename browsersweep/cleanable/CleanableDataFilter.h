#pragma once

#include <iterator>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>

#include "browsersweep/Export.h"
#include "browsersweep/base/Date.h"

namespace browsersweep {

/** Anything to loop over whose elements are texts, or what a `std::string` is made of. */
template <typename Range>
concept RangeOfTexts = requires(Range& texts) {
    std::string(*std::begin(texts));
    std::end(texts);
};

/**
 * Narrows what is sized or cleaned, by text that must or must not occur and by a range of dates.
 * What a list of filters means for an item is the item's own: databases turn it into one condition,
 * directories ask filter after filter, Safari's cookies differ again. An empty list selects all.
 */
struct BROWSERSWEEP_EXPORT CleanableDataFilter {
    /** What patterns do to the data that they occur in. */
    enum class Rule {
        exclude,  ///< keep it, select the rest
        include,  ///< select it alone
    };

    /** Texts, typically parts of host names. */
    struct BROWSERSWEEP_EXPORT Patterns {
        /** What the patterns do to the data that they occur in. */
        enum class Rule {
            exclude,  ///< keep it, select the rest
            include,  ///< select it alone
        };

        Rule rule = Rule::exclude;       ///< for all the patterns
        std::set<std::string> patterns;  ///< texts in UTF-8

        Patterns() = default;
        /** These patterns under this rule. */
        Patterns(Rule patternsRule, std::set<std::string> texts)
            : rule(patternsRule), patterns(std::move(texts)) {}
        /** The same from any texts; those that come twice count once. */
        template <RangeOfTexts Range>
        Patterns(Rule patternsRule, Range&& texts) : rule(patternsRule) {
            for (auto&& text : texts) {
                patterns.emplace(std::forward<decltype(text)>(text));
            }
        }

        /** Whether all fields are equal. */
        friend bool operator==(const Patterns&, const Patterns&) = default;
    };

    /** A range of dates, bounds included. A bound that is absent leaves its end open. */
    struct BROWSERSWEEP_EXPORT Dates {
        /** Which side of the range is selected. */
        enum class Rule {
            insideRange,   ///< from the start to the end, both included
            outsideRange,  ///< before the start and after the end
        };

        /** Two dates and all between them. */
        struct ClosedRange {
            Date first;  ///< belongs to the range
            Date last;   ///< belongs to the range
        };
        /** A date and all after it. */
        struct RangeFrom {
            Date first;  ///< belongs to the range
        };
        /** A date and all before it. */
        struct RangeThrough {
            Date last;  ///< belongs to the range
        };

        Rule rule = Rule::insideRange;  ///< which side is selected
        std::optional<Date> startDate;  ///< absent: from the beginning of time
        std::optional<Date> endDate;    ///< absent: for ever

        Dates() = default;
        /** A range with the bounds that are given. */
        Dates(Rule datesRule, std::optional<Date> start, std::optional<Date> end)
            : rule(datesRule), startDate(start), endDate(end) {}
        /** @{ */
        /** The same with both bounds, or with one alone. */
        Dates(Rule datesRule, ClosedRange dates)
            : Dates(datesRule, std::optional(dates.first), dates.last) {}
        Dates(Rule datesRule, RangeFrom dates) : Dates(datesRule, dates.first, std::nullopt) {}
        Dates(Rule datesRule, RangeThrough dates) : Dates(datesRule, std::nullopt, dates.last) {}
        /** @} */

        /** Whether a date passes: without any bound every date does, under both rules. */
        bool matches(Date date) const noexcept;

        /** Whether all fields are equal. */
        friend bool operator==(const Dates&, const Dates&) = default;
    };

    std::optional<Patterns> patternsData;  ///< absent: patterns restrict nothing
    std::optional<Dates> datesData;        ///< absent: dates restrict nothing

    CleanableDataFilter() = default;
    /** A filter of patterns, of dates, of both or of neither. */
    CleanableDataFilter(std::optional<Patterns> patterns, std::optional<Dates> dates);
    /** A filter of patterns alone. */
    explicit CleanableDataFilter(Patterns patterns);
    /** A filter of dates alone. */
    explicit CleanableDataFilter(Dates dates);
    /** A filter of patterns alone, from its rule and its texts. */
    CleanableDataFilter(Rule rule, std::set<std::string> patterns);
    /** The same from any texts; those that come twice count once. */
    template <RangeOfTexts Range>
    CleanableDataFilter(Rule rule, Range&& patterns)
        : CleanableDataFilter(
              rule, Patterns(Patterns::Rule::include, std::forward<Range>(patterns)).patterns) {}

    /** The rule of the patterns; `exclude` where there are none. */
    Rule rule() const noexcept;
    /** The patterns; none where the filter has no such part. */
    const std::set<std::string>& patterns() const noexcept;
    /** The range of dates, if the filter has one. */
    const std::optional<Dates>& dates() const noexcept { return datesData; }

    /** Whether all fields are equal. */
    friend bool operator==(const CleanableDataFilter&, const CleanableDataFilter&) = default;
};

/** A list of filters as every operation takes it. */
using CleanableDataFilters = std::span<const CleanableDataFilter>;

}  // namespace browsersweep
