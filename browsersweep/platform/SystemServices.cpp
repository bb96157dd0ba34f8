#include "browsersweep/platform/SystemServices.h"

namespace browsersweep {

SystemServices SystemServices::current() {
    return {OperatingSystemVersion::current, HTTPCookieStorage::shared, ProcessLauncher::system(),
            SystemLog::system()};
}

}  // namespace browsersweep
