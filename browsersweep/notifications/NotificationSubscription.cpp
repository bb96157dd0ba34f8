#include "browsersweep/notifications/NotificationSubscription.h"

namespace browsersweep {

NotificationSubscription::~NotificationSubscription() = default;

std::filesystem::path NotificationSubscription::store() const {
    return {};
}

}  // namespace browsersweep
