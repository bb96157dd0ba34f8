#include "cli/Host.h"

#include <system_error>

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
    : fileManager_(home ? FileManager::forHome(*home) : FileManager::defaultManager()),
      isOwnHome_(!home || isSameFolder(*home, FileManager::defaultManager()->homeDirectory())) {}

CleanerFactory Host::cleanerFactory() const {
    return [fileManager = fileManager_](Browser browser) { return cleaner(browser, fileManager); };
}

RunningBrowsers Host::runningBrowsers() const {
    return {*fileManager_, isOwnHome_ ? namesOfRunningPrograms() : std::vector<std::string>{}};
}

bool Host::exists() const {
    return fileManager_->fileExists(fileManager_->homeDirectory()).isDirectory;
}

}  // namespace browsersweep::cli
