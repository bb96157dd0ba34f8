#pragma once

#include <filesystem>
#include <utility>

#include "browsersweep/notifications/NotificationSubscription.h"

namespace browsersweep {

/** A permission from the "permissions.sqlite" file of a Firefox profile. */
class BROWSERSWEEP_EXPORT FirefoxSubscription : public NotificationSubscription {
public:
    /** A site of a browser, with the "permissions.sqlite" file it was found in. */
    FirefoxSubscription(URL sourceURL, Browser browser, std::filesystem::path permissionFile)
        : sourceURL_(std::move(sourceURL)),
          browser_(browser),
          permissionFile_(std::move(permissionFile)) {}

    const URL& sourceURL() const noexcept override { return sourceURL_; }
    Browser browser() const noexcept override { return browser_; }
    std::filesystem::path store() const override { return permissionFile_; }
    /** The profile's "permissions.sqlite" file. */
    const std::filesystem::path& permissionFile() const noexcept { return permissionFile_; }
    void blockNotifications() const noexcept override {}

    /** Whether site, browser and file are the same. */
    friend bool operator==(const FirefoxSubscription& a, const FirefoxSubscription& b) noexcept {
        return a.sourceURL_ == b.sourceURL_ && a.browser_ == b.browser_ &&
               a.permissionFile_ == b.permissionFile_;
    }

private:
    URL sourceURL_;
    Browser browser_;
    std::filesystem::path permissionFile_;
};

}  // namespace browsersweep
