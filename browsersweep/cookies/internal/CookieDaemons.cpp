#include "browsersweep/cookies/internal/CookieDaemons.h"

#include <array>
#include <string>
#include <string_view>

namespace browsersweep {

void stopCookieDaemons(const ProcessLauncher& launcher) {
    constexpr std::array<std::string_view, 2> daemons{"nsurlstoraged", "nsurlsessiond"};
    for (const std::string_view daemon : daemons) {
        const std::array<std::string, 2> arguments{"-c", "killall -KILL " + std::string(daemon)};
        launcher.runAndWait("/bin/sh", arguments);
    }
}

}  // namespace browsersweep
