#include "browsersweep/notifications/NotificationSubscription.h"

namespace browsersweep {

NotificationSubscription::~NotificationSubscription() = default;

}  // namespace browsersweep
