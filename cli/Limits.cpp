#include "cli/Limits.h"

#include <string_view>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/FilterText.h"

namespace browsersweep::cli {
namespace {

template <typename Texts>
std::string quoted(const Texts& texts) {
    std::vector<std::string> names;
    names.reserve(texts.size());
    for (const auto& text : texts) {
        names.push_back(fmt::format("\"{}\"", text));
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
    const auto filters = filterTexts(options.filters);
    limits.insert(limits.end(), filters.begin(), filters.end());
    addSites(options.sites, limits);
    return limits;
}

}  // namespace browsersweep::cli
