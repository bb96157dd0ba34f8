#pragma once

#include <filesystem>
#include <optional>

#include "browsersweep/home/Home.h"

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
    Home home_;
    bool isOwnHome_;
};

}  // namespace browsersweep::cli
