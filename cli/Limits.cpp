#include "cli/Limits.h"

#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/SiteReport.h"

namespace browsersweep::cli {
namespace {

using Dates = CleanableDataFilter::Dates;
using Rule = CleanableDataFilter::Rule;

template <typename Texts>
std::string quoted(const Texts& texts) {
    std::vector<std::string> names;
    names.reserve(texts.size());
    for (const auto& text : texts) {
        names.push_back(fmt::format("\u201C{}\u201D", text));
    }
    return fmt::format("{}", fmt::join(names, " or "));
}

template <typename Values>
std::string namesOf(const Values& values) {
    std::vector<std::string_view> names;
    names.reserve(values.size());
    for (const auto value : values) {
        names.push_back(displayName(value));
    }
    return fmt::format("{}", fmt::join(names, ", "));
}

std::string textOf(Date date) {
    const auto moment = momentText(date);
    if (!moment) {
        return fmt::format("@{}", secondsSince1970(date));
    }
    constexpr std::size_t day = 10;
    constexpr std::size_t time = 8;
    return fmt::format("{} {} UTC", moment->substr(0, day), moment->substr(day + 1, time));
}

std::string textOf(const Dates& dates) {
    const bool isInside = dates.rule == Dates::Rule::insideRange;
    const auto& start = dates.startDate;
    const auto& end = dates.endDate;
    if (start && end) {
        const auto [first, last] = std::pair(textOf(*start), textOf(*end));
        return isInside ? fmt::format("what is dated from {} to {}", first, last)
                        : fmt::format("what is dated before {} or after {}", first, last);
    }
    if (start) {
        return fmt::format("what is dated {} {}", isInside ? "from" : "before", textOf(*start));
    }
    return end ? fmt::format("what is dated {} {}", isInside ? "until" : "after", textOf(*end))
               : std::string();
}

void add(const CleanableDataFilter& filter, std::vector<std::string>& limits) {
    if (!filter.patterns().empty()) {
        limits.push_back(fmt::format("what {} {}",
                                     filter.rule() == Rule::include ? "holds" : "does not hold",
                                     quoted(filter.patterns())));
    }
    if (const auto text = filter.dates() ? textOf(*filter.dates()) : ""; !text.empty()) {
        limits.push_back(text);
    }
}

void addSelection(const Selection& selection, std::vector<std::string>& limits) {
    if (!selection.browsers.empty()) {
        limits.push_back(namesOf(selection.selectedBrowsers()));
    }
    if (!selection.profileNames.empty()) {
        limits.push_back("profiles called " + quoted(selection.profileNames));
    }
    if (selection.primaryOnly) {
        limits.emplace_back("primary profiles");
    }
    if (!selection.categories.empty()) {
        limits.push_back(namesOf(selection.categories));
    }
}

void addSites(const SiteOptions& options, std::vector<std::string>& limits) {
    if (!options.kinds.empty()) {
        limits.push_back(fmt::format("{}", fmt::join(options.kinds, ", ")));
    }
    if (options.olderThan) {
        constexpr double hour = 3600;
        constexpr double day = 24 * hour;
        const bool isDays = *options.olderThan >= day;
        limits.push_back(fmt::format("sites that were not used for {:.5g} {}",
                                     *options.olderThan / (isDays ? day : hour),
                                     isDays ? "days" : "hours"));
    }
}

}  // namespace

std::vector<std::string> limitsOf(const Options& options) {
    std::vector<std::string> limits;
    addSelection(options.selection, limits);
    for (const auto& filter : options.filters) {
        add(filter, limits);
    }
    addSites(options.sites, limits);
    return limits;
}

}  // namespace browsersweep::cli
