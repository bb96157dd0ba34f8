#include "cli/Host.h"

#include <string>
#include <system_error>
#include <vector>

#include "browsersweep/catalogue/BrowserCleaners.h"

#include "cli/Processes.h"

namespace browsersweep::cli {
namespace {

bool isSameFolder(const std::filesystem::path& a, const std::filesystem::path& b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error) && !error;
}

}  // namespace

Host::Host(const std::optional<std::filesystem::path>& home)
    : home_(home ? Home::at(*home) : Home::current()),
      isOwnHome_(!home || isSameFolder(*home, FileManager::defaultManager()->homeDirectory())) {}

CleanerFactory Host::cleanerFactory() const {
    return [home = home_](Browser browser) { return cleaner(browser, home); };
}

RunningBrowsers Host::runningBrowsers() const {
    return {*home_.fileManager(),
            isOwnHome_ ? namesOfRunningPrograms() : std::vector<std::string>{}};
}

bool Host::exists() const {
    const auto& files = *home_.fileManager();
    return files.fileExists(files.homeDirectory()).isDirectory;
}

}  // namespace browsersweep::cli
