#include "cli/FilterText.h"

#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/LocalDays.h"
#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

using Patterns = CleanableDataFilter::Patterns;
using Dates = CleanableDataFilter::Dates;

std::string textOf(const Patterns& patterns) {
    std::vector<std::string> quoted;
    for (const auto& pattern : patterns.patterns) {
        quoted.push_back(fmt::format("\"{}\"", printable(pattern)));
    }
    return fmt::format("{} contains {}",
                       patterns.rule == Patterns::Rule::include ? "only what" : "nothing that",
                       fmt::join(quoted, " or "));
}

std::string textOf(const Dates& dates) {
    const bool isInside = dates.rule == Dates::Rule::insideRange;
    const std::string start = dates.startDate ? localText(*dates.startDate) : "";
    const std::string end = dates.endDate ? localText(*dates.endDate) : "";
    if (start.empty() || end.empty()) {
        const bool isLater = start.empty() != isInside;
        return fmt::format(
            "dated {} {}",
            isLater ? (isInside ? "from" : "after") : (isInside ? "until" : "before"), start + end);
    }
    return isInside ? fmt::format("dated from {} to {}", start, end)
                    : fmt::format("dated before {} or after {}", start, end);
}

}  // namespace

std::vector<std::string> filterTexts(CleanableDataFilters filters) {
    std::vector<std::string> texts;
    for (const CleanableDataFilter& filter : filters) {
        std::vector<std::string> parts;
        if (!filter.patterns().empty()) {
            parts.push_back(textOf(*filter.patternsData));
        }
        if (const auto& dates = filter.dates(); dates && (dates->startDate || dates->endDate)) {
            parts.push_back(textOf(*dates));
        }
        texts.push_back(parts.empty() ? "everything" : fmt::format("{}", fmt::join(parts, ", ")));
    }
    return texts;
}

std::string sightText(const FilterSight& parts) {
    const bool isText = parts.inclusions || parts.exclusions;
    return isText && parts.dates ? "text or date" : isText ? "text" : parts.dates ? "date" : "";
}

}  // namespace browsersweep::cli
