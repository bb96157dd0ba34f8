#pragma once

#include <optional>
#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Browser.h"
#include "browsersweep/catalogue/BrowserCleaner.h"
#include "browsersweep/home/Home.h"

namespace browsersweep {

/** What makes a browser seem to be running. */
struct RunningBrowser {
    std::optional<std::string> program;  ///< that runs; absent where its data is locked instead
};

/**
 * Tells whether a browser seems to be running, from the locks in its data folder and from the names
 * of the programs that run. Programs tell nothing about a home that is not the current user's own:
 * there the locks alone count.
 */
class BROWSERSWEEP_EXPORT RunningBrowsers {
public:
    /** Looks at the programs that run now, where the home is the current user's. */
    explicit RunningBrowsers(Home home);

    /** The same with these names of programs in place of those that run. */
    RunningBrowsers(Home home, std::vector<std::string> programNames);

    /** Why it seems to be running; absent where it does not. Never fails. */
    std::optional<RunningBrowser> find(Browser browser) const;

private:
    bool isDataHeld(Browser browser) const;

    Home home_;
    std::vector<std::string> programNames_;
};

}  // namespace browsersweep
