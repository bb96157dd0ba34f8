#include "cli/Commands.h"

#include <algorithm>

#include "cli/SiteCommands.h"

namespace browsersweep::cli {
namespace {

constexpr std::string_view filterNotes =
    R"(A filter protects only what it can see. Data without a date goes whole under
--inside and --outside, data without a text to compare goes whole under
--include and --exclude: form data and the list of downloads under any filter,
cookies of the Chromium family and of Firefox under dates. Every plan says how
much that is, and --strict leaves it out.

DAYS are whole days in local time, the last one included. A date is
YYYY-MM-DD (midnight UTC), YYYY-MM-DDTHH:MM:SS[.fff]Z, a number of up to nine
digits, which are seconds since 2001-01-01 00:00:00 UTC, or @ and a number of
seconds since 1970.

In the history of Chrome and all its family a bound takes effect later by as
much as local time was ahead of UTC in 1601, or earlier by as much as it was
behind: there --last 1h takes 6 minutes in Berlin, and nearly 6 hours in New
York.

A filter in JSON, of which every part may be left out:
  {"patterns":{"rule":"include","patterns":["a","b"]},
   "dates":{"rule":"insideRange","startDate":DATE,"endDate":DATE}}
The other rules are exclude and outsideRange.
)";

std::vector<CommandRow> ownCommands() {
    return {
        {"browsers",
         Command::browsers,
         "list the thirteen browsers",
         {{"browsersweep browsers", "the names that --browser takes"}},
         {}},
        {"profiles",
         Command::profiles,
         "list the profiles of the selected browsers",
         {{"browsersweep profiles -b chrome", "the profiles of one browser, and their folders"}},
         {}},
        {"size",
         Command::size,
         "measure the selected data",
         {{"browsersweep size", "what every browser keeps"},
          {"browsersweep size -b chrome", "what one browser keeps, category by category"},
          {"browsersweep size --by profile --sort name",
           "what each profile keeps, in alphabetical order"},
          {"browsersweep size --html sizes.html",
           "the same, and a page with charts, for a web browser"},
          {"browsersweep size -b chrome -c history", "the history of one browser"}},
         filterNotes},
        {"clean",
         Command::clean,
         "delete the selected data and report what was removed",
         {{"browsersweep clean --dry-run -b firefox --outside 2024-01-01..",
           "what cleaning everything before 2024, or without a date, would remove"},
          {"browsersweep clean -b firefox -c cookies --exclude example.com",
           "delete Firefox's cookies except those of example.com, after asking"},
          {"browsersweep clean --list -b chrome -c history --last 7d --strict",
           "every file and table of the last week's history that would go"}},
         filterNotes},
        {"bookmarks",
         Command::bookmarks,
         "list bookmarks",
         {{"browsersweep bookmarks --primary-only --json",
           "the bookmarks of the main profiles, for another program"}},
         {}},
        {"notifications",
         Command::notifications,
         "list the sites that may send push notifications",
         {{"browsersweep notifications -b edge", "the sites that may do so in one browser"}},
         {}},
        {"doctor",
         Command::doctor,
         "say which data can be reached, and what to do if not",
         {{"browsersweep doctor", "what the program cannot reach, browser by browser"}},
         {}},
    };
}

/** With the commands about sites after those that measure and delete. */
std::vector<CommandRow> allCommands() {
    auto rows = ownCommands();
    const auto& more = siteCommands();
    const auto last = std::find_if(rows.begin(), rows.end(), [](const CommandRow& row) {
        return row.command == Command::clean;
    });
    rows.insert(last + 1, more.begin(), more.end());
    return rows;
}

}  // namespace

const std::vector<CommandRow>& commandTable() {
    static const std::vector<CommandRow> table = allCommands();
    return table;
}

const CommandRow* findCommand(std::string_view name) {
    const auto& table = commandTable();
    const auto found = std::find_if(table.begin(), table.end(),
                                    [name](const CommandRow& row) { return row.name == name; });
    return found == table.end() ? nullptr : &*found;
}

}  // namespace browsersweep::cli
