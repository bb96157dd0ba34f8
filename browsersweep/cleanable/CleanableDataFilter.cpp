#include "browsersweep/cleanable/CleanableDataFilter.h"

#include <utility>

namespace browsersweep {
namespace {

CleanableDataFilter::Patterns::Rule patternsRule(CleanableDataFilter::Rule rule) noexcept {
    return rule == CleanableDataFilter::Rule::include
               ? CleanableDataFilter::Patterns::Rule::include
               : CleanableDataFilter::Patterns::Rule::exclude;
}

}  // namespace

bool CleanableDataFilter::Dates::matches(Date date) const noexcept {
    if (!startDate && !endDate) {
        return true;
    }
    if (rule == Rule::insideRange) {
        return (!startDate || date >= *startDate) && (!endDate || date <= *endDate);
    }
    return (startDate && date < *startDate) || (endDate && date > *endDate);
}

CleanableDataFilter::CleanableDataFilter(std::optional<Patterns> patterns,
                                         std::optional<Dates> dates)
    : patternsData(std::move(patterns)), datesData(dates) {}

CleanableDataFilter::CleanableDataFilter(Patterns patterns) : patternsData(std::move(patterns)) {}

CleanableDataFilter::CleanableDataFilter(Dates dates) : datesData(dates) {}

CleanableDataFilter::CleanableDataFilter(Rule rule, std::set<std::string> patterns)
    : patternsData(Patterns{patternsRule(rule), std::move(patterns)}) {}

CleanableDataFilter::Rule CleanableDataFilter::rule() const noexcept {
    return patternsData && patternsData->rule == Patterns::Rule::include ? Rule::include
                                                                         : Rule::exclude;
}

const std::set<std::string>& CleanableDataFilter::patterns() const noexcept {
    static const std::set<std::string> none;
    return patternsData ? patternsData->patterns : none;
}

}  // namespace browsersweep
