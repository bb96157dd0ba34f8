#pragma once

#include <filesystem>

#include "browsersweep/Export.h"
#include "browsersweep/base/Browser.h"
#include "browsersweep/base/URL.h"

namespace browsersweep {

/** One site that a profile allows to show push notifications. */
class BROWSERSWEEP_EXPORT NotificationSubscription {
public:
    NotificationSubscription() = default;
    virtual ~NotificationSubscription();

    /** The site's address. */
    virtual const URL& sourceURL() const noexcept = 0;

    /** The browser of the profile that the permission was read from. */
    virtual Browser browser() const noexcept = 0;

    /** The file that the permission was read from; empty for a kind that comes from no file. */
    virtual std::filesystem::path store() const;

    /**
     * Does nothing, for every kind: subscriptions are reported, never removed, and no permission
     * file is ever written. A host that offers blocking must say so itself.
     */
    virtual void blockNotifications() const noexcept = 0;

protected:
    /** @{ */
    /** For derived classes: the base alone is never copied. */
    NotificationSubscription(const NotificationSubscription&) = default;
    NotificationSubscription(NotificationSubscription&&) = default;
    NotificationSubscription& operator=(const NotificationSubscription&) = default;
    NotificationSubscription& operator=(NotificationSubscription&&) = default;
    /** @} */
};

}  // namespace browsersweep
