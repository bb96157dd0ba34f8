#pragma once

#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "browsersweep/Export.h"

namespace browsersweep {

/** Runs other programs. A seam: tests record what would have been run. */
class BROWSERSWEEP_EXPORT ProcessLauncher {
public:
    ProcessLauncher() = default;
    ProcessLauncher(const ProcessLauncher&) = delete;
    ProcessLauncher& operator=(const ProcessLauncher&) = delete;
    virtual ~ProcessLauncher();

    /** The one that really runs them. */
    static std::shared_ptr<const ProcessLauncher> system();

    /**
     * Runs a program with arguments and waits until it ends. It reads nothing and what it prints
     * goes nowhere; it blocks no signal, and finds only the system's own programs by their names.
     * How it ended is not told, nor whether it could be started at all.
     */
    virtual void runAndWait(const std::filesystem::path& executable,
                            std::span<const std::string> arguments) const noexcept = 0;
};

}  // namespace browsersweep
