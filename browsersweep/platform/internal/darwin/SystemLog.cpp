#include "browsersweep/platform/SystemLog.h"

#include <algorithm>
#include <limits>

#include <os/log.h>

namespace browsersweep {
namespace {

class OSLog final : public SystemLog {
public:
    void debug(std::string_view message) const noexcept override {
        constexpr std::size_t longest = std::numeric_limits<int>::max();
        const auto length = static_cast<int>(std::min(message.size(), longest));
        // Without "public" the system would show "<private>" in the message's place.
        os_log_debug(OS_LOG_DEFAULT, "%{public}.*s", length, message.data());
    }
};

}  // namespace

std::shared_ptr<const SystemLog> SystemLog::system() {
    return std::make_shared<const OSLog>();
}

}  // namespace browsersweep
