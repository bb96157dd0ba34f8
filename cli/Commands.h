#pragma once

#include <string_view>
#include <vector>

namespace browsersweep::cli {

enum class Command {
    browsers,
    profiles,
    size,
    clean,
    bookmarks,
    notifications,
    doctor,
    sites,
    forget,
};

/** The name of the command that shows the help, which is no row of the table. */
inline constexpr std::string_view helpCommand = "help";

struct Example {
    std::string_view line;
    std::string_view meaning;
};

/** What people are told of a command. */
struct CommandRow {
    std::string_view name;
    Command command;
    std::string_view description;
    std::vector<Example> examples;
    std::string_view notes;       ///< what its options do not say, in lines that fit a terminal
    std::string_view operands{};  ///< what follows its name, for the line of its usage
};

/** All commands, in the order in which the help shows them. */
const std::vector<CommandRow>& commandTable();

/** The row of a command; null for a name that is none. */
const CommandRow* findCommand(std::string_view name);

}  // namespace browsersweep::cli
