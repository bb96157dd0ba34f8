#include "cli/Options.h"

namespace browsersweep::cli {

std::string helpText() {
    return R"(browsersweep - finds, measures and deletes the data that web browsers keep

examples
  browsersweep size
      what every browser keeps
  browsersweep size --html sizes.html
      the same, and a page with charts, for a web browser
  browsersweep size --browser googleChrome --category history
      the history of one browser
  browsersweep clean --dry-run --browser firefox --outside 2024-01-01..
      what a clean of all before 2024, and of all without a date, would remove
  browsersweep clean --browser firefox --category httpCookies --exclude example.com
      delete Firefox's cookies but those of example.com, after a question
  browsersweep --json bookmarks --primary-only
      the bookmarks of the main profiles, for another program

usage
  browsersweep [--home DIR] [--json] COMMAND [SELECTION] [FILTERS] [OPTIONS]

commands
  browsers        the thirteen browsers
  profiles        the profiles of the selected browsers
  size            measure the selected data
  clean           delete the selected data and report what was removed
  bookmarks       list bookmarks
  notifications   list the sites that may send push notifications
  doctor          say which browsers' data can be reached, and what to do where it cannot

selection (all repeatable; nothing given selects everything)
  --browser RAW         a browser, such as googleChrome; 'browsersweep browsers' lists them
  --profile NAME        profiles with exactly this name
  --primary-only        primary profiles only
  --category RAW        cache, history, httpCookies, flashCookies, formData or localStorage
                        (size and clean)

filters (size and clean; repeatable, applied in the order given)
  --include PATTERN     only what holds this text, such as a part of a host name
  --exclude PATTERN     only what does not hold it
  --inside START..END   only what is dated in the range; either end may be left empty
  --outside START..END  only what is dated outside it
  --filter JSON         {"patterns":{"rule":"include","patterns":["a","b"]},
                         "dates":{"rule":"insideRange","startDate":DATE,"endDate":DATE}}

  A filter keeps only what it can see. Data without a date goes whole under --inside and --outside,
  data without a text to compare goes whole under --include and --exclude: form data and the list
  of downloads under any filter, cookies of the Chromium family and of Firefox under dates. A dry
  run shows it.

  A date is YYYY-MM-DD (midnight UTC), YYYY-MM-DDTHH:MM:SS[.fff]Z, a number of seconds since
  2001-01-01 00:00:00 UTC, or @ and a number of seconds since 1970.

options
  --home DIR            act on the Library folder under DIR instead of the user's home
  --ignore-errors       size and clean: carry on over errors; the figures become approximate
  --html FILE           size: write a page with charts and a table to FILE as well
  --dry-run             clean: say what would be removed and delete nothing
  --yes                 clean: do not ask (needed when standard input is no terminal)
  --force               clean: go on although a selected browser seems to be running, or the home
                        is another user's
  --json                machine output on standard output
  -h, --help            this text
  --version             the version

exit status
  0 all done; 1 something failed or was not done; 2 the command line is wrong;
  130 or 143 ended early by an interrupt or a termination signal
)";
}

}  // namespace browsersweep::cli
