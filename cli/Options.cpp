#include "cli/Options.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/Filters.h"
#include "cli/Suggestion.h"
#include "cli/Text.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

constexpr std::array commands{
    std::pair{std::string_view("browsers"), Command::browsers},
    std::pair{std::string_view("profiles"), Command::profiles},
    std::pair{std::string_view("size"), Command::size},
    std::pair{std::string_view("clean"), Command::clean},
    std::pair{std::string_view("bookmarks"), Command::bookmarks},
    std::pair{std::string_view("notifications"), Command::notifications},
    std::pair{std::string_view("doctor"), Command::doctor},
};

enum class Scope { everywhere, sizeAndClean, size, clean };

struct OptionRow {
    std::string_view name;
    bool takesValue;
    Scope scope;
};

// clang-format off
constexpr std::array optionTable{
    OptionRow{"--home",          true,  Scope::everywhere},
    OptionRow{"--json",          false, Scope::everywhere},
    OptionRow{"--browser",       true,  Scope::everywhere},
    OptionRow{"--profile",       true,  Scope::everywhere},
    OptionRow{"--primary-only",  false, Scope::everywhere},
    OptionRow{"--category",      true,  Scope::sizeAndClean},
    OptionRow{"--include",       true,  Scope::sizeAndClean},
    OptionRow{"--exclude",       true,  Scope::sizeAndClean},
    OptionRow{"--inside",        true,  Scope::sizeAndClean},
    OptionRow{"--outside",       true,  Scope::sizeAndClean},
    OptionRow{"--filter",        true,  Scope::sizeAndClean},
    OptionRow{"--ignore-errors", false, Scope::sizeAndClean},
    OptionRow{"--html",          true,  Scope::size},
    OptionRow{"--dry-run",       false, Scope::clean},
    OptionRow{"--yes",           false, Scope::clean},
    OptionRow{"--force",         false, Scope::clean},
};
// clang-format on

std::vector<std::string_view> optionNames() {
    std::vector<std::string_view> names{"--help", "--version"};
    names.reserve(names.size() + optionTable.size());
    for (const auto& row : optionTable) {
        names.push_back(row.name);
    }
    return names;
}

const OptionRow* findOption(std::string_view name) {
    const auto* const found =
        std::find_if(optionTable.begin(), optionTable.end(),
                     [name](const OptionRow& row) { return row.name == name; });
    return found == optionTable.end() ? nullptr : &*found;
}

/**
 * Makes one thing of an option and its value, because the parser below takes "--include=" for an
 * option whose value follows, and "--profile --yes" for a profile named "--yes".
 */
std::vector<std::string> joinValues(const std::vector<std::string>& arguments) {
    std::vector<std::string> joined;
    joined.reserve(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--") {
            joined.insert(joined.end(), arguments.begin() + static_cast<std::ptrdiff_t>(i),
                          arguments.end());
            break;
        }
        const auto equals = argument.find('=');
        const auto* const row = findOption(std::string_view(argument).substr(0, equals));
        if (row == nullptr || !row->takesValue) {
            joined.push_back(argument);
        } else if (equals != std::string::npos) {
            joined.emplace_back(row->name);
            joined.push_back(argument.substr(equals + 1));
        } else if (i + 1 == arguments.size() || arguments[i + 1].substr(0, 2) == "--") {
            throw UsageError(fmt::format("{0} needs a value; write {0}=VALUE", row->name));
        } else {
            joined.push_back(argument);
            joined.push_back(arguments[++i]);
        }
    }
    return joined;
}

/** The texts of a command line, sorted by option, not yet understood. */
struct RawCommandLine {
    std::vector<std::string> positionals;
    std::map<std::string_view, std::size_t> counts;
    std::vector<std::pair<std::string_view, std::string>> values;  ///< as given, in that order
    std::vector<std::string> unknown;

    bool has(std::string_view name) const { return counts.find(name) != counts.end(); }
};

/** The parser with every option of the table. */
class Parser {
public:
    Parser() {
        app_.set_help_flag("-h,--help");
        app_.set_version_flag("--version", std::string("browsersweep " BROWSERSWEEP_VERSION "\n"));
        app_.allow_extras();
        for (const auto& row : optionTable) {
            byOption_.emplace(add(row), row.name);
        }
    }

    RawCommandLine parse(std::vector<std::string> arguments) {
        std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
        app_.parse(std::move(arguments));
        RawCommandLine raw;
        std::map<const CLI::Option*, std::size_t> read;
        for (const CLI::Option* const option : app_.parse_order()) {
            const auto known = byOption_.find(option);
            if (known != byOption_.end()) {
                ++raw.counts[known->second];
                raw.values.emplace_back(known->second, option->results().at(read[option]++));
            }
        }
        for (auto& extra : app_.remaining()) {
            if (extra == "--") {
                continue;
            }
            const bool isOption = extra.size() > 1 && extra.front() == '-';
            (isOption ? raw.unknown : raw.positionals).push_back(std::move(extra));
        }
        return raw;
    }

private:
    const CLI::Option* add(const OptionRow& row) {
        const std::string name(row.name);
        if (!row.takesValue) {
            return app_.add_flag(name)->disable_flag_override();
        }
        const auto keepAsText = [](const CLI::results_t&) { return true; };
        return app_.add_option(name, keepAsText)
            ->expected(1)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }

    CLI::App app_;
    std::map<const CLI::Option*, std::string_view> byOption_;
};

std::vector<std::string_view> commandNames() {
    std::vector<std::string_view> names;
    names.reserve(commands.size());
    for (const auto& [name, command] : commands) {
        names.push_back(name);
    }
    return names;
}

Command commandOf(const std::vector<std::string>& positionals) {
    if (positionals.empty()) {
        throw UsageError("no command is given; " + suggestion("", commandNames()));
    }
    const auto* const found =
        std::find_if(commands.begin(), commands.end(),
                     [&](const auto& entry) { return entry.first == positionals.front(); });
    if (found == commands.end()) {
        throw UsageError(fmt::format("'{}' is no command; {}", printable(positionals.front()),
                                     suggestion(positionals.front(), commandNames())));
    }
    if (positionals.size() > 1) {
        throw UsageError(
            fmt::format("'{}' is one word too many after the command {}; give browsers with "
                        "--browser and patterns with --include or --exclude",
                        printable(positionals[1]), found->first));
    }
    return found->second;
}

bool isAllowed(Scope scope, Command command) noexcept {
    switch (scope) {
        case Scope::everywhere:
            return true;
        case Scope::sizeAndClean:
            return command == Command::size || command == Command::clean;
        case Scope::size:
            return command == Command::size;
        case Scope::clean:
            return command == Command::clean;
    }
    return false;
}

std::string_view commandsOf(Scope scope) noexcept {
    constexpr std::array<std::string_view, 4> names{"any command", "the commands size and clean",
                                                    "the command size", "the command clean"};
    return names.at(static_cast<std::size_t>(scope));
}

void requireKnownOptions(const RawCommandLine& raw) {
    if (!raw.unknown.empty()) {
        const auto name = raw.unknown.front().substr(0, raw.unknown.front().find('='));
        throw UsageError(
            fmt::format("'{}' is no option; {}", printable(name), suggestion(name, optionNames())));
    }
}

void requireOptionsOfCommand(const RawCommandLine& raw, Command command) {
    for (const auto& row : optionTable) {
        if (raw.has(row.name) && !isAllowed(row.scope, command)) {
            throw UsageError(
                fmt::format("{} belongs to {}; leave it out", row.name, commandsOf(row.scope)));
        }
    }
}

template <typename Value>
Value known(std::string_view kind, std::string_view text, std::optional<Value> value,
            const std::vector<std::string_view>& names) {
    if (!value) {
        throw UsageError(
            fmt::format("'{}' is no {}; {}", printable(text), kind, suggestion(text, names)));
    }
    return *value;
}

template <typename Cases>
std::vector<std::string_view> rawValues(const Cases& cases) {
    std::vector<std::string_view> names;
    names.reserve(cases.size());
    for (const auto value : cases) {
        names.push_back(rawValue(value));
    }
    return names;
}

std::filesystem::path pathFrom(std::string_view name, const std::string& text,
                               std::string_view meaning) {
    if (text.empty()) {
        throw UsageError(fmt::format("{} is empty; give the {}", name, meaning));
    }
    return std::filesystem::absolute(text);
}

void addFilter(std::string_view name, const std::string& text,
               std::vector<CleanableDataFilter>& filters) {
    using Rule = CleanableDataFilter::Rule;
    using DatesRule = CleanableDataFilter::Dates::Rule;
    if (name == "--include") {
        filters.push_back(patternFilter(Rule::include, text));
    } else if (name == "--exclude") {
        filters.push_back(patternFilter(Rule::exclude, text));
    } else if (name == "--inside") {
        filters.push_back(datesFilter(DatesRule::insideRange, text));
    } else if (name == "--outside") {
        filters.push_back(datesFilter(DatesRule::outsideRange, text));
    } else if (name == "--filter") {
        filters.push_back(filterFromJSON(text));
    }
}

void takeValue(std::string_view name, const std::string& text, Options& options) {
    auto& selection = options.selection;
    if (name == "--home") {
        options.home = pathFrom(name, text, "folder that holds Library");
    } else if (name == "--html") {
        options.html = pathFrom(name, text, "file to write");
    } else if (name == "--browser") {
        selection.browsers.push_back(
            known("browser", text, browserFromRawValue(text), rawValues(allBrowsers)));
    } else if (name == "--profile") {
        selection.profileNames.push_back(text);
    } else if (name == "--category") {
        selection.categories.push_back(known("category", text,
                                             cleanableDataCategoryFromRawValue(text),
                                             rawValues(allCleanableDataCategories)));
    } else {
        addFilter(name, text, options.filters);
    }
}

void requireOnce(const RawCommandLine& raw, std::string_view name, std::string_view value) {
    if (const auto found = raw.counts.find(name); found != raw.counts.end() && found->second > 1) {
        throw UsageError(fmt::format("{} is given twice; give one {}", name, value));
    }
}

Options optionsFrom(const RawCommandLine& raw) {
    requireKnownOptions(raw);
    Options options;
    options.command = commandOf(raw.positionals);
    requireOptionsOfCommand(raw, options.command);
    requireOnce(raw, "--home", "folder");
    requireOnce(raw, "--html", "file");
    for (const auto& [name, text] : raw.values) {
        takeValue(name, text, options);
    }
    options.selection.primaryOnly = raw.has("--primary-only");
    options.ignoreErrors = raw.has("--ignore-errors");
    options.dryRun = raw.has("--dry-run");
    options.yes = raw.has("--yes");
    options.force = raw.has("--force");
    options.json = raw.has("--json");
    return options;
}

/** One line of the parser's own message, whatever it holds. */
std::string oneLine(std::string_view text) {
    return printable(text.substr(0, text.find('\n')));
}

}  // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments) {
    Parser parser;
    try {
        return optionsFrom(parser.parse(joinValues(arguments)));
    } catch (const CLI::CallForHelp&) {
        return Information{helpText()};
    } catch (const CLI::CallForVersion& version) {
        return Information{version.what()};
    } catch (const CLI::ParseError& error) {
        throw UsageError(oneLine(error.what()) + "; 'browsersweep --help' shows what is right");
    }
}

}  // namespace browsersweep::cli
