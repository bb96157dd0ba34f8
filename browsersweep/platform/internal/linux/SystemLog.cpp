#include "browsersweep/platform/SystemLog.h"

#include <algorithm>
#include <limits>

#include <syslog.h>

namespace browsersweep {
namespace {

class Syslog final : public SystemLog {
public:
    void debug(std::string_view message) const noexcept override {
        constexpr std::size_t longest = std::numeric_limits<int>::max();
        const auto length = static_cast<int>(std::min(message.size(), longest));
        // openlog is not called: its settings belong to the whole process, which is the host's.
        ::syslog(LOG_USER | LOG_DEBUG, "%.*s", length, message.data());
    }
};

}  // namespace

std::shared_ptr<const SystemLog> SystemLog::system() {
    return std::make_shared<const Syslog>();
}

}  // namespace browsersweep
