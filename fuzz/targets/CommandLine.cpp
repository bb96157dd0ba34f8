#include <string>
#include <string_view>
#include <vector>

#include "cli/Dates.h"
#include "cli/Filters.h"
#include "cli/Options.h"
#include "cli/UsageError.h"
#include "fuzz/targets/Input.h"
#include "fuzz/targets/Rule.h"
#include "fuzz/targets/Targets.h"

namespace browsersweep::fuzz {
namespace {

using Rule = CleanableDataFilter::Rule;
using DatesRule = CleanableDataFilter::Dates::Rule;

/** Runs what may refuse its text, which must be told in one line. */
template <typename Parse>
void parse(Parse parser) {
    try {
        parser();
    } catch (const cli::UsageError& error) {
        const std::string_view message(error.what());
        require(!message.empty() && message.find('\n') == std::string_view::npos,
                "a refusal is one line");
    }
}

void requireUsable(const CleanableDataFilter& filter) {
    for (const std::string& pattern : filter.patterns()) {
        require(!pattern.empty() && pattern.find_first_of("'%_") == std::string::npos,
                "no pattern changes the meaning of the SQL around it");
    }
    if (const auto& dates = filter.dates(); dates && dates->startDate && dates->endDate) {
        require(*dates->startDate <= *dates->endDate, "a range does not end before it starts");
    }
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> list(1);
    for (const char c : text) {
        if (c == '\n') {
            list.emplace_back();
        } else {
            list.back() += c;
        }
    }
    return list;
}

}  // namespace

void commandLine(BytesView input) {
    parse([&] {
        const auto parsed = cli::parseCommandLine(lines(textOf(input)));
        if (const auto* options = std::get_if<cli::Options>(&parsed)) {
            for (const CleanableDataFilter& filter : options->filters) {
                requireUsable(filter);
            }
            require(!options->selection.selectedBrowsers().empty(), "some browser is selected");
        }
    });
}

void commandLineFilter(BytesView input) {
    const std::string text = textOf(input);
    parse([&] { requireUsable(cli::filterFromJSON(text)); });
    parse([&] { requireUsable(cli::patternFilter(Rule::include, text)); });
}

void commandLineDate(BytesView input) {
    const std::string text = textOf(input);
    parse([&] {
        const double seconds = referenceSeconds(cli::parseDate(text));
        require(seconds > -1e13 && seconds < 1e13, "a date fits in a database");
    });
    parse([&] { requireUsable(cli::datesFilter(DatesRule::insideRange, text)); });
}

}  // namespace browsersweep::fuzz
