#include "cli/Options.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/Help.h"
#include "cli/OptionTable.h"
#include "cli/SiteCommands.h"
#include "cli/Suggestion.h"
#include "cli/Text.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

std::vector<std::string_view> optionNames() {
    std::vector<std::string_view> names{"--help", "--version"};
    names.reserve(names.size() + optionTable().size());
    for (const auto& row : optionTable()) {
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
    names.push_back(helpCommand);
    return names;
}

bool takesValue(const OptionRow& row) noexcept {
    return *row.value != '\0';
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
        for (const auto& row : optionTable()) {
            rows_.emplace(add(row), &row);
        }
        app_.set_help_flag("-h,--help", "this help; after a command, the help for that command");
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
        help_ = app_.add_subcommand(std::string(helpCommand),
                                    "show this help, or the help for a command");
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

    std::string shortHelp() const { return HelpFormatter::summary(app_); }

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
            throw UsageError(fmt::format("'{}' is not an option; {}", printable(name),
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
        throw UsageError(fmt::format("'{}' is not a command; {}", printable(name),
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
        if (row.command != Command::forget) {
            requireNoWordBeside(row.name);
        }
        return row;
    }

    /** The options as they follow on each other, which is the order of the filters. */
    Options options() const {
        const CommandRow& command = this->command();
        requireOptionsOf(command.name);
        requireOnce("--home", "folder");
        requireOnce("--html", "file");
        requireOnce("--keep-list", "file");
        requireOnce("--sort", "order");
        requireOnce("--by", "of them");
        requireOnce("--older-than", "age");
        Options options;
        options.command = command.command;
        options.sites.names = words_;
        std::map<const CLI::Option*, std::size_t> read;
        for (const CLI::Option* const option : app_.parse_order()) {
            if (const auto row = rows_.find(option); row != rows_.end()) {
                row->second->take(option->results().at(read[option]++), options);
            }
        }
        requireSites(options);
        if (options.view.order == Order::last && options.command != Command::sites) {
            throw UsageError(
                "--sort last belongs to the command sites; sort by size, name or items");
        }
        options.view.offersZeros = options.command == Command::size;
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
        const auto* const option = app_.get_option_no_throw(name);
        if (option != nullptr && option->count() > 1) {
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
        return Information{parser.shortHelp()};
    }
    return parser.parse(joinValues(arguments));
}

}  // namespace browsersweep::cli
