#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "browsersweep/Export.h"
#include "browsersweep/platform/HTTPCookieStorage.h"
#include "browsersweep/platform/OperatingSystemVersion.h"
#include "browsersweep/platform/ProcessLauncher.h"
#include "browsersweep/platform/SystemLog.h"

namespace browsersweep {

/**
 * What Safari's data needs of the running system beside its files. A plain set of replaceable
 * parts: tests, or a host with wishes of its own, put others in. None may be
 * empty.
 */
struct BROWSERSWEEP_EXPORT SystemServices {
    /** The version of the operating system; asked each time that it matters. */
    std::function<OperatingSystemVersion()> operatingSystemVersion;

    /** The cookie storage shared by the group container of the given identifier. */
    std::function<std::shared_ptr<HTTPCookieStorage>(std::string_view)> sharedCookieStorage;

    /** Runs what stops the system's cookie daemons before cookie files are changed. */
    std::shared_ptr<const ProcessLauncher> processLauncher;
    /** Is told why a cookie file was skipped. */
    std::shared_ptr<const SystemLog> systemLog;

    /** Those of the running system: they act on the user who is logged in. */
    static SystemServices current();

    /**
     * Those that touch nothing of any user: no program is run, and the cookie storages are empty
     * ones of their own. The version and the log are the running system's.
     */
    static SystemServices isolated();
};

}  // namespace browsersweep
