#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "browsersweep/base/Browser.h"
#include "browsersweep/catalogue/BrowserCleaner.h"
#include "browsersweep/platform/FileManager.h"

namespace browsersweep::cli {

/**
 * Tells whether a browser seems to be running, from the lock in its data folder and from the names
 * of running programs. Programs tell nothing about a home folder that is not the user's own: there
 * the locks alone count.
 */
class RunningBrowsers {
public:
    RunningBrowsers(const FileManager& fileManager, std::vector<std::string> programNames);

    /** Why it seems to be running, as a sentence's end; absent where it does not. */
    std::optional<std::string> reason(Browser browser, const BrowserCleaner& cleaner) const;

private:
    bool isDataHeld(Browser browser, const BrowserCleaner& cleaner) const;

    std::filesystem::path applicationSupport_;
    std::vector<std::string> programNames_;
};

/** The names under which a browser's program runs. */
std::vector<std::string> programNamesOf(Browser browser);

}  // namespace browsersweep::cli
