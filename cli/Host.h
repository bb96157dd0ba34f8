#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "browsersweep/platform/FileManager.h"

#include "cli/Gather.h"
#include "cli/RunningBrowsers.h"

namespace browsersweep::cli {

/**
 * The home folder that the program acts on. With one that was named on the command line nothing of
 * the user's own is touched: neither the shared cookie storage nor the system's cookie daemons, and
 * the programs that run now say nothing about it.
 */
class Host {
public:
    explicit Host(const std::optional<std::filesystem::path>& home);

    CleanerFactory cleanerFactory() const;
    RunningBrowsers runningBrowsers() const;

    /** Whether the home folder is there at all. */
    bool exists() const;

private:
    bool isNamedHome_;
    std::shared_ptr<const FileManager> fileManager_;
    bool isOwnHome_;
};

}  // namespace browsersweep::cli
