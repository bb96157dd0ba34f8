#include "cli/FilterLimits.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include <fmt/format.h>

#include "browsersweep/sqlite/FilterFault.h"

#include "cli/Figures.h"
#include "cli/Text.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

FilteredStatement deepestStatement(const Selection& selection) {
    constexpr auto history = CleanableDataCategory::history;
    const auto browsers = selection.selectedBrowsers();
    const bool isDeep = std::any_of(browsers.begin(), browsers.end(), [](Browser browser) {
        return filteredStatement(browser, history) == FilteredStatement::ofSafariHistory;
    });
    return isDeep && selection.includes(history) ? FilteredStatement::ofSafariHistory
                                                 : FilteredStatement::ofTable;
}

std::string figure(std::size_t count) {
    return countText({static_cast<std::int64_t>(count)});
}

/** How many conditions there are, and which of them nobody typed now. */
std::string countOf(const Options& options) {
    std::size_t count = 0;
    for (const CleanableDataFilter& filter : options.filters) {
        count += filter.patterns().size() + (filter.datesData ? 1 : 0);
    }
    const auto text = figure(count) + " patterns and ranges of dates";
    const std::size_t kept = options.keep ? options.keep->sites.size() : 0;
    return kept == 0 ? text
                     : fmt::format(
                           "{} ({} of them sites of the keep list {}, which --no-config "
                           "ignores)",
                           text, figure(kept), printable(options.keep->file.string()));
}

}  // namespace

void requireFittingFilters(const Options& options) {
    const auto statement = deepestStatement(options.selection);
    const auto fault = filterFault(options.filters, statement);
    if (fault == FilterFault::tooLong) {
        throw UsageError(
            "a pattern is longer than databases compare; give a part of a host name, such as "
            "example.com");
    }
    if (fault) {
        const bool isSafari = statement == FilteredStatement::ofSafariHistory;
        throw UsageError(fmt::format(
            "the filters have {}, more than {} takes; give at most {}; nothing was done",
            countOf(options), isSafari ? "Safari's history" : "a database",
            isSafari ? "490, or leave Safari's history out" : "990"));
    }
}

}  // namespace browsersweep::cli
