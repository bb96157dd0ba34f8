#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "browsersweep/cleanable/CleanableDataFilter.h"

#include "cli/Commands.h"
#include "cli/KeepFile.h"
#include "cli/Selection.h"
#include "cli/SiteOptions.h"
#include "cli/SizesView.h"

namespace browsersweep::cli {

/** A command line that is right. */
struct Options {
    /** The file that means standard output. */
    static constexpr const char* standardOutput = "-";

    Command command = Command::browsers;
    Selection selection;
    std::vector<CleanableDataFilter> filters;  ///< in the order of the command line
    std::optional<std::filesystem::path> home;
    std::optional<std::filesystem::path> html;  ///< where a page is written
    SizesView view;                             ///< how a report is shown; its order that of sites
    SiteOptions sites;                          ///< of the commands about sites
    bool ignoreErrors = false;
    bool strict = false;            ///< what the filters cannot see is left out
    bool list = false;              ///< every file and table is told
    bool ignoresConfig = false;     ///< the lasting keep list counts for nothing
    std::optional<KeepRules> keep;  ///< what it says, once it was read
    bool keepGoing = false;
    bool dryRun = false;
    bool yes = false;
    bool force = false;
    bool json = false;
};

/** Text to print instead of doing anything: the help or the version. */
struct Information {
    std::string text;
};

using CommandLine = std::variant<Options, Information>;

/**
 * Reads the arguments after the program's name; without any, a short help is meant. Touches no
 * file. Throws a `UsageError` for a command line that is wrong in any way.
 */
CommandLine parseCommandLine(const std::vector<std::string>& arguments);

}  // namespace browsersweep::cli
