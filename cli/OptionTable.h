#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/Options.h"

namespace browsersweep::cli {

/** The commands that an option is for; one of the whole program may stand without any. */
enum class Scope {
    program,
    everyCommand,
    sizeAndClean,
    clean,
    sizeAndSites,
    sizeAndForget,
    sizeCleanAndSites,
    cleanAndForget,
    sites,
    forget,
    sitesAndForget,
};

/** What the parser and the help know of an option. */
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

/** All options, in the order in which the help shows them. */
const std::vector<OptionRow>& optionTable();

/** The row of an option by its long or its short name; null for a name that is none. */
const OptionRow* findOption(std::string_view name);

/** Whether an option of this scope may stand with a command, of which "help" is one. */
bool isAllowed(Scope scope, std::string_view command) noexcept;

/** The commands that a scope is about, for people. */
std::string commandsOf(Scope scope);

}  // namespace browsersweep::cli
