#include "cli/Options.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/Filters.h"
#include "cli/Help.h"
#include "cli/Names.h"
#include "cli/Suggestion.h"
#include "cli/Text.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

using Rule = CleanableDataFilter::Rule;
using DatesRule = CleanableDataFilter::Dates::Rule;

/** The commands that an option is for; one of the whole program may stand without any. */
enum class Scope { program, everyCommand, sizeAndClean, size, clean };

struct OptionRow {
    std::string_view name;
    const char* names;  ///< as the parser takes them
    const char* value;  ///< what the help calls the value; empty for a flag
    const char* group;
    Scope scope;
    const char* help;
    void (*take)(const std::string& value, Options& options);
    std::string (*fault)(const std::string& value);  ///< what is wrong with a value; may be null
};

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
                              : fmt::format("'{}' is no browser; {}", printable(name),
                                            suggestion(name, rawValues(allBrowsers)));
}

std::string faultOfCategory(const std::string& name) {
    return categoryNamed(name)
               ? ""
               : fmt::format("'{}' is no category; {}", printable(name),
                             suggestion(name, rawValues(allCleanableDataCategories)));
}

std::string faultOfFolder(const std::string& path) {
    return path.empty() ? "the value is empty; give the folder that holds Library" : "";
}

std::string faultOfFile(const std::string& path) {
    return path.empty() ? "the value is empty; give the file to write" : "";
}

// clang-format off
constexpr std::array optionTable{
    OptionRow{"--browser", "-b,--browser", "BROWSER", "selection", Scope::everyCommand,
              "a browser, such as firefox or chrome; 'browsersweep browsers' lists them",
              [](const std::string& value, Options& options) {
                  options.selection.browsers.push_back(browserNamed(value).value());
              }, faultOfBrowser},
    OptionRow{"--profile", "--profile", "PROFILE", "selection", Scope::everyCommand,
              "the profiles of exactly this name, or else the one in this folder",
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
              "only what holds this text, such as a part of a host name",
              [](const std::string& value, Options& options) {
                  options.filters.push_back(patternFilter(Rule::include, value));
              }, nullptr},
    OptionRow{"--exclude", "--exclude", "PATTERN", "filters", Scope::sizeAndClean,
              "only what does not hold it",
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
    OptionRow{"--filter", "--filter", "JSON", "filters", Scope::sizeAndClean,
              "any filter; filters apply in the order given",
              [](const std::string& value, Options& options) {
                  options.filters.push_back(filterFromJSON(value));
              }, nullptr},
    OptionRow{"--ignore-errors", "--ignore-errors", "", "options", Scope::sizeAndClean,
              "carry on over errors; the figures become approximate",
              [](const std::string& /*value*/, Options& options) {
                  options.ignoreErrors = true;
              }, nullptr},
    OptionRow{"--keep-going", "--keep-going", "", "options", Scope::sizeAndClean,
              "go on with the next item where one fails",
              [](const std::string& /*value*/, Options& options) {
                  options.keepGoing = true;
              }, nullptr},
    OptionRow{"--html", "--html", "FILE", "options", Scope::size,
              "write a page with charts and a table to FILE as well; - is standard output, in "
              "place of the report",
              [](const std::string& value, Options& options) {
                  options.html = value == Options::standardOutput
                                     ? std::filesystem::path(value)
                                     : std::filesystem::absolute(value);
              }, faultOfFile},
    OptionRow{"--dry-run", "-n,--dry-run", "", "options", Scope::clean,
              "say what would be removed and delete nothing",
              [](const std::string& /*value*/, Options& options) {
                  options.dryRun = true;
              }, nullptr},
    OptionRow{"--yes", "-y,--yes", "", "options", Scope::clean,
              "do not ask (needed when standard input is no terminal)",
              [](const std::string& /*value*/, Options& options) {
                  options.yes = true;
              }, nullptr},
    OptionRow{"--force", "--force", "", "options", Scope::clean,
              "go on although a selected browser seems to be running, or the home is another "
              "user's",
              [](const std::string& /*value*/, Options& options) {
                  options.force = true;
              }, nullptr},
    OptionRow{"--home", "--home", "DIR", "options", Scope::program,
              "act on the Library folder under DIR instead of the user's home",
              [](const std::string& value, Options& options) {
                  options.home = std::filesystem::absolute(value);
              }, faultOfFolder},
    OptionRow{"--json", "--json", "", "options", Scope::program,
              "machine output on standard output",
              [](const std::string& /*value*/, Options& options) {
                  options.json = true;
              }, nullptr},
};
// clang-format on

constexpr const char* helpCommand = "help";

std::vector<std::string_view> optionNames() {
    std::vector<std::string_view> names{"--help", "--version"};
    names.reserve(names.size() + optionTable.size());
    for (const auto& row : optionTable) {
        names.push_back(row.name);
    }
    return names;
}

std::vector<std::string_view> commandNames() {
    std::vector<std::string_view> names;
    names.reserve(commandTable().size() + 1);
    for (const auto& row : commandTable()) {
        names.push_back(row.name);
    }
    names.emplace_back(helpCommand);
    return names;
}

/** The row of an option by its long or its short name. */
const OptionRow* findOption(std::string_view name) {
    const auto* const found =
        std::find_if(optionTable.begin(), optionTable.end(), [name](const OptionRow& row) {
            const std::string_view names = row.names;
            return row.name == name ||
                   (names.size() > row.name.size() && names.substr(0, names.find(',')) == name);
        });
    return found == optionTable.end() ? nullptr : &*found;
}

bool takesValue(const OptionRow& row) noexcept {
    return *row.value != '\0';
}

bool isAllowed(Scope scope, std::string_view command) noexcept {
    switch (scope) {
        case Scope::program:
            return true;
        case Scope::everyCommand:
            return command != helpCommand;
        case Scope::sizeAndClean:
            return command == "size" || command == "clean";
        case Scope::size:
            return command == "size";
        case Scope::clean:
            return command == "clean";
    }
    return false;
}

std::string_view commandsOf(Scope scope) noexcept {
    constexpr std::array<std::string_view, 5> names{"any command", "the commands that look at data",
                                                    "the commands size and clean",
                                                    "the command size", "the command clean"};
    return names.at(static_cast<std::size_t>(scope));
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
        if (row == nullptr || !takesValue(*row)) {
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

/** One line of the parser's own message, whatever it holds. */
std::string oneLine(std::string_view text) {
    return printable(text.substr(0, text.find('\n')));
}

/**
 * The program's options and a sub-command for each of its commands. Every option belongs to the
 * program, so that it may stand before and after the command and the order among filters is kept;
 * which of them a command takes is looked at when everything is read.
 */
class Parser {
public:
    Parser() : app_("browsersweep - finds, measures and deletes the data that web browsers keep") {
        for (const auto& row : optionTable) {
            rows_.emplace(add(row), &row);
        }
        app_.set_help_flag("-h,--help", "this help; after a command, that of the command");
        app_.get_help_ptr()->group("options");
        app_.set_version_flag("--version", std::string("browsersweep " BROWSERSWEEP_VERSION "\n"),
                              "the version")
            ->group("options");
        app_.allow_extras()->fallthrough()->require_subcommand(0, 1);
        app_.formatter(std::make_shared<HelpFormatter>(
            [this](const CLI::Option& option, const std::string& command) {
                const auto row = rows_.find(&option);
                return row == rows_.end() || isAllowed(row->second->scope, command);
            }));
        for (const auto& row : commandTable()) {
            app_.add_subcommand(std::string(row.name), std::string(row.description));
        }
        help_ = app_.add_subcommand(helpCommand, "show the help, or that of the command named");
        help_->add_option("COMMAND", topic_);
    }

    CommandLine parse(std::vector<std::string> arguments) {
        std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
        try {
            app_.parse(std::move(arguments));
        } catch (const CLI::CallForHelp&) {
            return Information{app_.help()};
        } catch (const CLI::CallForVersion& version) {
            return Information{version.what()};
        } catch (const CLI::ValidationError& error) {
            // Versions of the parser differ in what they look at first.
            if (isHelpAsked()) {
                return Information{app_.help()};
            }
            throw UsageError(error.what());
        } catch (const CLI::ParseError& error) {
            throw UsageError(oneLine(error.what()) + "; 'browsersweep --help' shows what is right");
        }
        sortExtras();
        requireKnownOptions();
        return help_->parsed() ? CommandLine(Information{helpOfTopic()}) : CommandLine(options());
    }

    std::string help() const { return app_.help(); }

private:
    const CLI::Option* add(const OptionRow& row) {
        if (!takesValue(row)) {
            return app_.add_flag(row.names, row.help)->disable_flag_override()->group(row.group);
        }
        const auto keepAsText = [](const CLI::results_t&) { return true; };
        auto* const option = app_.add_option(row.names, keepAsText, row.help)
                                 ->expected(1)
                                 ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
                                 ->type_name(row.value)
                                 ->group(row.group);
        return row.fault == nullptr ? option : option->check(row.fault);
    }

    bool isHelpAsked() const {
        const auto commands = app_.get_subcommands();
        return app_.get_help_ptr()->count() > 0 ||
               std::any_of(commands.begin(), commands.end(), [](const CLI::App* command) {
                   return command->get_help_ptr()->count() > 0;
               });
    }

    void sortExtras() {
        for (auto& extra : app_.remaining(true)) {
            if (extra == "--") {
                continue;
            }
            const bool isOption = extra.size() > 1 && extra.front() == '-';
            (isOption ? unknownOptions_ : words_).push_back(std::move(extra));
        }
    }

    void requireKnownOptions() const {
        if (!unknownOptions_.empty()) {
            const auto& first = unknownOptions_.front();
            const auto name = first.substr(0, first.find('='));
            throw UsageError(fmt::format("'{}' is no option; {}", printable(name),
                                         suggestion(name, optionNames())));
        }
    }

    std::string helpOfTopic() const {
        requireNoWordBeside(helpCommand);
        requireOptionsOf(helpCommand);
        if (topic_.empty()) {
            return app_.get_formatter()->make_help(&app_, "", CLI::AppFormatMode::Normal);
        }
        const auto names = commandNames();
        if (std::find(names.begin(), names.end(), topic_) == names.end()) {
            throwUnknownCommand(topic_);
        }
        return app_.get_subcommand(topic_)->help();
    }

    void requireNoWordBeside(std::string_view command) const {
        if (!words_.empty()) {
            throw UsageError(
                fmt::format("'{}' is one word too many after the command {}; give browsers with "
                            "--browser and patterns with --include or --exclude",
                            printable(words_.front()), command));
        }
    }

    [[noreturn]] static void throwUnknownCommand(std::string_view name) {
        throw UsageError(fmt::format("'{}' is no command; {}", printable(name),
                                     suggestion(name, commandNames())));
    }

    const CommandRow& command() const {
        const auto parsed = app_.get_subcommands();
        if (parsed.empty() && words_.empty()) {
            throw UsageError("no command is given; " + suggestion("", commandNames()));
        }
        if (parsed.empty()) {
            throwUnknownCommand(words_.front());
        }
        const CommandRow& row = *findCommand(parsed.front()->get_name());
        requireNoWordBeside(row.name);
        return row;
    }

    /** The options as they follow on each other, which is the order of the filters. */
    Options options() const {
        const CommandRow& command = this->command();
        requireOptionsOf(command.name);
        requireOnce("--home", "folder");
        requireOnce("--html", "file");
        Options options;
        options.command = command.command;
        std::map<const CLI::Option*, std::size_t> read;
        for (const CLI::Option* const option : app_.parse_order()) {
            if (const auto row = rows_.find(option); row != rows_.end()) {
                row->second->take(option->results().at(read[option]++), options);
            }
        }
        if (options.json && options.html == Options::standardOutput) {
            throw UsageError(
                "--json and --html - both write to standard output; give a file to --html");
        }
        return options;
    }

    void requireOptionsOf(std::string_view command) const {
        for (const auto& [option, row] : rows_) {
            if (option->count() > 0 && !isAllowed(row->scope, command)) {
                throw UsageError(fmt::format("{} belongs to {}; leave it out", row->name,
                                             commandsOf(row->scope)));
            }
        }
    }

    void requireOnce(const std::string& name, std::string_view value) const {
        if (app_.get_option(name)->count() > 1) {
            throw UsageError(fmt::format("{} is given twice; give one {}", name, value));
        }
    }

    CLI::App app_;
    std::map<const CLI::Option*, const OptionRow*> rows_;
    CLI::App* help_ = nullptr;
    std::string topic_;
    std::vector<std::string> words_;
    std::vector<std::string> unknownOptions_;
};

}  // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments) {
    Parser parser;
    if (arguments.empty()) {
        return Information{parser.help()};
    }
    return parser.parse(joinValues(arguments));
}

}  // namespace browsersweep::cli
