#include "cli/OptionTable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <optional>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Commands.h"
#include "cli/Filters.h"
#include "cli/Names.h"
#include "cli/SiteCommands.h"
#include "cli/Suggestion.h"
#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

using Rule = CleanableDataFilter::Rule;
using DatesRule = CleanableDataFilter::Dates::Rule;

template <typename Cases>
std::vector<std::string_view> rawValues(const Cases& cases) {
    std::vector<std::string_view> names;
    names.reserve(cases.size());
    for (const auto value : cases) {
        names.push_back(rawValue(value));
    }
    return names;
}

std::string faultOfBrowser(const std::string& name) {
    return browserNamed(name) ? ""
                              : fmt::format("'{}' is not a browser; {}", printable(name),
                                            suggestion(name, rawValues(allBrowsers)));
}

std::string faultOfCategory(const std::string& name) {
    return categoryNamed(name)
               ? ""
               : fmt::format("'{}' is not a category; {}", printable(name),
                             suggestion(name, rawValues(allCleanableDataCategories)));
}

std::string faultOfFolder(const std::string& path) {
    return path.empty() ? "the value is empty; give the folder that contains Library" : "";
}

std::string faultOfFile(const std::string& path) {
    return path.empty() ? "the value is empty; give the file to write" : "";
}

constexpr std::array orders{
    std::pair{std::string_view("size"), Order::size},
    std::pair{std::string_view("name"), Order::name},
    std::pair{std::string_view("items"), Order::items},
    std::pair{std::string_view("last"), Order::last},
};

constexpr std::array groupings{
    std::pair{std::string_view("browser"), Grouping::browser},
    std::pair{std::string_view("category"), Grouping::category},
    std::pair{std::string_view("profile"), Grouping::profile},
};

template <typename Table>
auto valueNamed(std::string_view name, const Table& table) {
    const auto found = std::find_if(table.begin(), table.end(),
                                    [name](const auto& each) { return each.first == name; });
    return found == table.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Order> orderNamed(std::string_view name) {
    return valueNamed(name, orders);
}

std::optional<Grouping> groupingNamed(std::string_view name) {
    return valueNamed(name, groupings);
}

template <typename Table>
std::string faultOf(const std::string& name, std::string_view what, const Table& table) {
    std::vector<std::string_view> names;
    names.reserve(table.size());
    for (const auto& each : table) {
        names.push_back(each.first);
    }
    return valueNamed(name, table)
               ? ""
               : fmt::format("'{}' is not {}; {}", printable(name), what, suggestion(name, names));
}

std::string faultOfOrder(const std::string& name) {
    return faultOf(name, "an order", orders);
}

std::string faultOfGrouping(const std::string& name) {
    return faultOf(name, "a part of a report", groupings);
}

// clang-format off
constexpr std::array ownOptions{
    OptionRow{"--browser", "-b,--browser", "BROWSER", "selection", Scope::everyCommand,
              "a browser, such as firefox or chrome; 'browsersweep browsers' lists them",
              [](const std::string& value, Options& options) {
                  options.selection.browsers.push_back(browserNamed(value).value());
              }, faultOfBrowser},
    OptionRow{"--profile", "--profile", "PROFILE", "selection", Scope::everyCommand,
              "the profiles with exactly this name, or else the one in this folder",
              [](const std::string& value, Options& options) {
                  options.selection.profileNames.push_back(value);
              }, nullptr},
    OptionRow{"--primary-only", "--primary-only", "", "selection", Scope::everyCommand,
              "primary profiles only",
              [](const std::string& /*value*/, Options& options) {
                  options.selection.primaryOnly = true;
              }, nullptr},
    OptionRow{"--category", "-c,--category", "CATEGORY", "selection", Scope::sizeAndClean,
              "cache, history, httpCookies (or cookies), flashCookies (flash), formData (forms) "
              "or localStorage (storage)",
              [](const std::string& value, Options& options) {
                  options.selection.categories.push_back(categoryNamed(value).value());
              }, faultOfCategory},
    OptionRow{"--include", "--include", "PATTERN", "filters", Scope::sizeAndClean,
              "only what contains this text, such as part of a host name",
              [](const std::string& value, Options& options) {
                  options.filters.push_back(patternFilter(Rule::include, value));
              }, nullptr},
    OptionRow{"--exclude", "--exclude", "PATTERN", "filters", Scope::sizeAndClean,
              "only what does not contain it",
              [](const std::string& value, Options& options) {
                  options.filters.push_back(patternFilter(Rule::exclude, value));
              }, nullptr},
    OptionRow{"--inside", "--inside", "START..END", "filters", Scope::sizeAndClean,
              "only what is dated in the range; either end may be left empty",
              [](const std::string& value, Options& options) {
                  options.filters.push_back(datesFilter(DatesRule::insideRange, value));
              }, nullptr},
    OptionRow{"--outside", "--outside", "START..END", "filters", Scope::sizeAndClean,
              "only what is dated outside it",
              [](const std::string& value, Options& options) {
                  options.filters.push_back(datesFilter(DatesRule::outsideRange, value));
              }, nullptr},
    OptionRow{"--days", "--days", "DAYS", "filters", Scope::sizeAndClean,
              "only what is dated on these days, in local time: 2024-02-29, 2024-02, today, "
              "yesterday, or two of them with .. between; for Chrome's history see below",
              [](const std::string& value, Options& options) {
                  options.filters.push_back(daysFilter(value));
              }, nullptr},
    OptionRow{"--last", "--last", "AGE", "filters", Scope::sizeAndClean,
              "only what is dated in the last hours, days, weeks or years, such as 1h or 7d; for "
              "Chrome's history see below",
              [](const std::string& value, Options& options) {
                  options.filters.push_back(lastFilter(value));
              }, nullptr},
    OptionRow{"--filter", "--filter", "JSON", "filters", Scope::sizeAndClean,
              "any filter, in JSON; filters apply in the order given",
              [](const std::string& value, Options& options) {
                  options.filters.push_back(filterFromJSON(value));
              }, nullptr},
    OptionRow{"--strict", "--strict", "", "filters", Scope::sizeAndClean,
              "leave out what the filters cannot see, instead of taking it whole",
              [](const std::string& /*value*/, Options& options) {
                  options.strict = true;
              }, nullptr},
    OptionRow{"--ignore-errors", "--ignore-errors", "", "options", Scope::sizeAndClean,
              "go on after errors; the figures become approximate",
              [](const std::string& /*value*/, Options& options) {
                  options.ignoreErrors = true;
              }, nullptr},
    OptionRow{"--keep-going", "--keep-going", "", "options", Scope::sizeAndClean,
              "go on with the next item where one fails",
              [](const std::string& /*value*/, Options& options) {
                  options.keepGoing = true;
              }, nullptr},
    OptionRow{"--html", "--html", "FILE", "options", Scope::sizeAndSites,
              "also write a page for a web browser to FILE; - is standard output, in place of the "
              "report",
              [](const std::string& value, Options& options) {
                  options.html = value == Options::standardOutput
                                     ? std::filesystem::path(value)
                                     : std::filesystem::absolute(value);
              }, faultOfFile},
    OptionRow{"--by", "--by", "WHAT", "options", Scope::sizeAndClean,
              "one row for each browser, category or profile; by default for each browser, or for "
              "each category if one browser is selected",
              [](const std::string& value, Options& options) {
                  options.view.grouping = groupingNamed(value);
              }, faultOfGrouping},
    OptionRow{"--sort", "--sort", "ORDER", "options", Scope::sizeCleanAndSites,
              "size (the default, the largest first), name, items (the most first) or, for sites, "
              "last (the latest used first)",
              [](const std::string& value, Options& options) {
                  options.view.order = orderNamed(value).value();
              }, faultOfOrder},
    OptionRow{"--all", "--all", "", "options", Scope::sizeAndForget,
              "size: show empty rows, too; forget: every site except those that are kept",
              [](const std::string& /*value*/, Options& options) {
                  options.view.showsZeros = true;
                  options.sites.all = true;
              }, nullptr},
    OptionRow{"--list", "--list", "", "options", Scope::clean,
              "list every file and table that would go, and delete nothing",
              [](const std::string& /*value*/, Options& options) {
                  options.list = true;
                  options.dryRun = true;
              }, nullptr},
    OptionRow{"--no-config", "--no-config", "", "options", Scope::cleanAndForget,
              "ignore the keep list in the home folder",
              [](const std::string& /*value*/, Options& options) {
                  options.ignoresConfig = true;
              }, nullptr},
    OptionRow{"--dry-run", "-n,--dry-run", "", "options", Scope::cleanAndForget,
              "say what would be removed and delete nothing",
              [](const std::string& /*value*/, Options& options) {
                  options.dryRun = true;
              }, nullptr},
    OptionRow{"--yes", "-y,--yes", "", "options", Scope::cleanAndForget,
              "do not ask (needed when standard input is not a terminal)",
              [](const std::string& /*value*/, Options& options) {
                  options.yes = true;
              }, nullptr},
    OptionRow{"--force", "--force", "", "options", Scope::cleanAndForget,
              "go on even if a selected browser seems to be running or the home is another user's",
              [](const std::string& /*value*/, Options& options) {
                  options.force = true;
              }, nullptr},
    OptionRow{"--home", "--home", "DIR", "options", Scope::program,
              "act on the Library folder under DIR instead of the user's home",
              [](const std::string& value, Options& options) {
                  options.home = std::filesystem::absolute(value);
              }, faultOfFolder},
    OptionRow{"--json", "--json", "", "options", Scope::program,
              "machine-readable output on standard output",
              [](const std::string& /*value*/, Options& options) {
                  options.json = true;
              }, nullptr},
};
// clang-format on

/** The commands of the scopes that are not about all of them; empty places at the end. */
using Commands = std::array<std::string_view, 3>;

Commands namesOf(Scope scope) noexcept {
    // clang-format off
    constexpr std::array<Commands, 11> table{{
        {},
        {},
        {"size", "clean"},
        {"clean"},
        {"size", "sites"},
        {"size", "forget"},
        {"size", "clean", "sites"},
        {"clean", "forget"},
        {"sites"},
        {"forget"},
        {"sites", "forget"},
    }};
    // clang-format on
    return table.at(static_cast<std::size_t>(scope));
}

/** Names in a sentence: "size, clean and sites". */
std::string listOf(const std::vector<std::string_view>& names) {
    const std::vector<std::string_view> first(names.begin(), names.end() - 1);
    return first.empty() ? std::string(names.back())
                         : fmt::format("{} and {}", fmt::join(first, ", "), names.back());
}

std::vector<OptionRow> allOptions() {
    std::vector<OptionRow> rows(ownOptions.begin(), ownOptions.end());
    const auto& more = siteOptions();
    const auto end = std::find_if(rows.begin(), rows.end(), [](const OptionRow& row) {
        return row.scope == Scope::cleanAndForget;
    });
    rows.insert(end, more.begin(), more.end());
    return rows;
}

}  // namespace

const std::vector<OptionRow>& optionTable() {
    static const std::vector<OptionRow> table = allOptions();
    return table;
}

const OptionRow* findOption(std::string_view name) {
    const auto& table = optionTable();
    const auto found = std::find_if(table.begin(), table.end(), [name](const OptionRow& row) {
        const std::string_view names = row.names;
        return row.name == name ||
               (names.size() > row.name.size() && names.substr(0, names.find(',')) == name);
    });
    return found == table.end() ? nullptr : &*found;
}

bool isAllowed(Scope scope, std::string_view command) noexcept {
    if (scope == Scope::program || scope == Scope::everyCommand) {
        return scope == Scope::program || command != helpCommand;
    }
    const auto names = namesOf(scope);
    return std::find(names.begin(), names.end(), command) != names.end();
}

std::string commandsOf(Scope scope) {
    if (scope == Scope::program || scope == Scope::everyCommand) {
        return scope == Scope::program ? "any command" : "the commands that look at data";
    }
    const auto names = namesOf(scope);
    std::vector<std::string_view> known;
    std::copy_if(names.begin(), names.end(), std::back_inserter(known),
                 [](std::string_view name) { return findCommand(name) != nullptr; });
    return fmt::format("the command{} {}", known.size() == 1 ? "" : "s", listOf(known));
}

}  // namespace browsersweep::cli
