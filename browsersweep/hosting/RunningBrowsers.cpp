#include "browsersweep/hosting/RunningBrowsers.h"

#include <algorithm>
#include <exception>
#include <system_error>
#include <utility>

#include "browsersweep/base/internal/BrowserTable.h"
#include "browsersweep/hosting/internal/BrowserLocks.h"
#include "browsersweep/platform/internal/Processes.h"
#include "browsersweep/profiles/firefox/FirefoxProfile.h"
#include "browsersweep/profiles/firefox/FirefoxProfileReader.h"

namespace browsersweep {
namespace {

/** Another home may still be the user's own folder by another name. */
bool isCurrentUsers(const FileManager& fileManager) {
    std::error_code error;
    return fileManager.servesCurrentUser() ||
           std::filesystem::equivalent(fileManager.homeDirectory(),
                                       FileManager::defaultManager()->homeDirectory(), error);
}

/** Firefox keeps a lock in every profile folder. */
bool isAnyFirefoxProfileHeld(const Home& home) {
    try {
        const auto profiles = FirefoxProfileReader(home).profiles();
        return std::any_of(profiles.begin(), profiles.end(), [](const auto& profile) {
            const auto folders = profile->folders();
            return folders && isHeldByFirefox(folders->data);
        });
    } catch (const std::exception&) {
        return false;  // no profile of it will be cleaned either, and the report says why
    }
}

}  // namespace

RunningBrowsers::RunningBrowsers(Home home) : home_(std::move(home)) {
    if (isCurrentUsers(*home_.fileManager())) {
        programNames_ = namesOfRunningPrograms();
    }
}

RunningBrowsers::RunningBrowsers(Home home, std::vector<std::string> programNames)
    : home_(std::move(home)), programNames_(std::move(programNames)) {}

std::optional<RunningBrowser> RunningBrowsers::find(Browser browser) const {
    if (isDataHeld(browser)) {
        return RunningBrowser{};
    }
    const BrowserRow& row = rowOf(browser);
    for (const std::string& program : programNames_) {
        const auto& elsewhere = row.processesElsewhere;
        if (program == row.processOnMac ||
            (!program.empty() &&
             std::find(elsewhere.begin(), elsewhere.end(), program) != elsewhere.end())) {
            return RunningBrowser{program};
        }
    }
    return std::nullopt;
}

bool RunningBrowsers::isDataHeld(Browser browser) const {
    const BrowserRow& row = rowOf(browser);
    switch (row.family) {
        case BrowserFamily::chromium:
            return isHeldByChromium(home_.directoryProvider()->applicationSupportDirectory() /
                                    row.applicationSupportFolder);
        case BrowserFamily::firefox:
            return isAnyFirefoxProfileHeld(home_);
        case BrowserFamily::safari:
            break;
    }
    return false;  // Safari locks no folder
}

}  // namespace browsersweep
