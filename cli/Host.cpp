#include "cli/Host.h"

#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "browsersweep/catalogue/BrowserCleaners.h"
#include "browsersweep/platform/SystemServices.h"

#include "cli/Processes.h"

namespace browsersweep::cli {
namespace {

bool isSameFolder(const std::filesystem::path& a, const std::filesystem::path& b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error) && !error;
}

/** A cookie storage of this process alone, without any cookie. */
class EmptyCookieStorage : public HTTPCookieStorage {
public:
    std::vector<HTTPCookie> cookies() const override { return {}; }
    void setCookie(const HTTPCookie& /*cookie*/) override {}
    void deleteCookie(const HTTPCookie& /*cookie*/) override {}
};

class NoProcessLauncher : public ProcessLauncher {
public:
    void runAndWait(const std::filesystem::path& /*executable*/,
                    std::span<const std::string> /*arguments*/) const noexcept override {}
};

/** Services that leave the user's shared cookies and the system's daemons alone. */
SystemServices isolatedServices() {
    auto services = SystemServices::current();
    services.sharedCookieStorage = [](std::string_view) {
        return std::make_shared<EmptyCookieStorage>();
    };
    services.processLauncher = std::make_shared<NoProcessLauncher>();
    return services;
}

}  // namespace

Host::Host(const std::optional<std::filesystem::path>& home)
    : isNamedHome_(home.has_value()),
      fileManager_(home ? FileManager::forHome(*home) : FileManager::defaultManager()),
      isOwnHome_(!home || isSameFolder(*home, FileManager::defaultManager()->homeDirectory())) {}

CleanerFactory Host::cleanerFactory() const {
    const auto services = isNamedHome_ ? isolatedServices() : SystemServices::current();
    return [fileManager = fileManager_, services](Browser browser) {
        return cleaner(browser, fileManager, services);
    };
}

RunningBrowsers Host::runningBrowsers() const {
    return {*fileManager_, isOwnHome_ ? namesOfRunningPrograms() : std::vector<std::string>{}};
}

bool Host::exists() const {
    return fileManager_->fileExists(fileManager_->homeDirectory()).isDirectory;
}

}  // namespace browsersweep::cli
