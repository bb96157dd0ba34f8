#include "cli/Help.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Commands.h"

namespace browsersweep::cli {
namespace {

constexpr std::size_t columns = 80;
constexpr std::array groups{
    std::pair{std::string_view("selection"), std::string_view(" [SELECTION]")},
    std::pair{std::string_view("filters"), std::string_view(" [FILTERS]")},
    std::pair{std::string_view("options"), std::string_view(" [OPTIONS]")},
};

constexpr std::string_view exitStatuses = R"(
exit status
  0 all done; 1 something failed or was not done; 2 the command line is wrong;
  129, 130 or 143 ended early by a hang-up, an interrupt or a termination signal
)";

constexpr std::string_view manual = "\nThe manual: man browsersweep\n";

/** The text after an indented label, broken between words where its lines would be too long. */
std::string row(std::string_view label, std::size_t indent, std::string_view text) {
    std::string line = fmt::format("  {:<{}}", label, indent - 2);
    std::string rows;
    bool isBegun = false;
    while (!text.empty()) {
        const auto end = std::min(text.find(' '), text.size());
        if (isBegun && line.size() + 1 + end > columns) {
            rows += line + "\n";
            line.assign(indent, ' ');
            isBegun = false;
        }
        line += (isBegun ? " " : "") + std::string(text.substr(0, end));
        isBegun = true;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return rows + line + "\n";
}

std::string labelOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const auto& name : option.get_snames()) {
        names.push_back("-" + name);
    }
    for (const auto& name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    const auto value = option.get_type_name();
    return fmt::format("{}{}{}", fmt::join(names, ", "), value.empty() ? "" : " ", value);
}

/** Of "size: rows; forget: sites" what is about the command; a text that is about none as it is. */
std::string_view partAbout(std::string_view command, std::string_view text) {
    const auto label = fmt::format("{}: ", command);
    const auto start = text.starts_with(label) ? 0 : text.find("; " + label);
    if (start == std::string_view::npos) {
        return text;
    }
    text.remove_prefix(start + label.size() + (start == 0 ? 0 : 2));
    return text.substr(0, text.find("; "));
}

template <typename IsShown>
std::string groupText(const CLI::App& app, std::string_view group, std::string_view command,
                      const IsShown& isShown) {
    constexpr std::size_t indent = 27;
    std::string rows;
    for (const auto* const option : app.get_options({})) {
        if (option->get_group() == group && isShown(*option)) {
            const auto text = option->get_description();
            rows += row(labelOf(*option), indent, partAbout(command, text));
        }
    }
    return rows.empty() ? rows : fmt::format("\n{}\n{}", group, rows);
}

std::string listOfCommands(const CLI::App& app) {
    constexpr std::size_t indent = 18;
    std::string text = "\ncommands\n";
    for (const auto* const command : app.get_subcommands({})) {
        text += row(command->get_name(), indent, command->get_description());
    }
    return text;
}

/** What most people come for. */
std::string beginning() {
    constexpr std::size_t indent = 44;
    constexpr std::array commands{
        std::pair{"size", Example{"browsersweep size", "what every browser keeps"}},
        std::pair{"clean",
                  Example{"browsersweep clean -b firefox --dry-run", "what a clean would remove"}},
        std::pair{"forget", Example{"browsersweep forget example.com", "all that one site left"}},
    };
    std::string text;
    for (const auto& [command, example] : commands) {
        text += findCommand(command) == nullptr ? "" : row(example.line, indent, example.meaning);
    }
    return text;
}

std::string exampleText(const Example& example) {
    return fmt::format("  {}\n      {}\n", example.line, example.meaning);
}

}  // namespace

HelpFormatter::HelpFormatter(Belongs belongs) : belongs_(std::move(belongs)) {}

std::string HelpFormatter::make_help(const CLI::App* app, std::string /*name*/,
                                     CLI::AppFormatMode /*mode*/) const {
    return app->get_parent() == nullptr ? overview(*app) : helpOf(*app);
}

std::string HelpFormatter::summary(const CLI::App& app) {
    return fmt::format(
        "{}\n\nusage: browsersweep COMMAND [SELECTION] [FILTERS] [OPTIONS]\n{}\nto begin with\n{}\n"
        "'browsersweep help' shows more, 'browsersweep help COMMAND' all about a command.{}",
        app.get_description(), listOfCommands(app), beginning(), manual);
}

std::string HelpFormatter::overview(const CLI::App& app) const {
    std::string text = fmt::format(
        "{}\n\nusage\n  browsersweep [--home DIR] [--json] COMMAND [SELECTION] [FILTERS] "
        "[OPTIONS]\n{}",
        app.get_description(), listOfCommands(app));
    text += "\n'browsersweep help COMMAND' shows what a command takes.\n";
    text += groupText(app, "options", helpCommand,
                      [this](const CLI::Option& option) { return belongs_(option, "help"); });
    text += "\nexamples\n";
    for (const auto& each : commandTable()) {
        text += exampleText(each.examples.front());
    }
    return text.append(exitStatuses).append(manual);
}

std::string HelpFormatter::helpOf(const CLI::App& command) const {
    const auto& name = command.get_name();
    const CommandRow* const row = findCommand(name);
    std::string usage = "browsersweep " + name;
    if (row != nullptr && !row->operands.empty()) {
        usage.append(" ").append(row->operands);
    }
    std::string options;
    for (const auto& [group, placeholder] : groups) {
        const auto rows =
            groupText(*command.get_parent(), group, name,
                      [&](const CLI::Option& option) { return belongs_(option, name); });
        usage += rows.empty() ? std::string_view() : placeholder;
        options += rows;
    }
    std::string text = fmt::format("browsersweep {} - {}\n\nusage\n  {}\n{}", name,
                                   command.get_description(), usage, options);
    if (row != nullptr) {
        text += row->notes.empty() ? "" : fmt::format("\n{}", row->notes);
        text += "\nexamples\n";
        for (const auto& example : row->examples) {
            text += exampleText(example);
        }
    }
    return text.append(manual);
}

}  // namespace browsersweep::cli
