#pragma once

#include <filesystem>
#include <utility>

#include "browsersweep/notifications/NotificationSubscription.h"

namespace browsersweep {

/** A permission from Safari's file "Permissions.plist". */
class BROWSERSWEEP_EXPORT SafariSubscription : public NotificationSubscription {
public:
    /** A site of a browser, with the "Permissions.plist" file it was found in. */
    SafariSubscription(URL sourceURL, Browser browser, std::filesystem::path permissionsFile)
        : sourceURL_(std::move(sourceURL)),
          browser_(browser),
          permissionsFile_(std::move(permissionsFile)) {}

    const URL& sourceURL() const noexcept override { return sourceURL_; }
    Browser browser() const noexcept override { return browser_; }
    std::filesystem::path store() const override { return permissionsFile_; }
    /** The file "Permissions.plist". */
    const std::filesystem::path& permissionsFile() const noexcept { return permissionsFile_; }
    void blockNotifications() const noexcept override {}

    /** Whether site, browser and file are the same. */
    friend bool operator==(const SafariSubscription& a, const SafariSubscription& b) noexcept {
        return a.sourceURL_ == b.sourceURL_ && a.browser_ == b.browser_ &&
               a.permissionsFile_ == b.permissionsFile_;
    }

private:
    URL sourceURL_;
    Browser browser_;
    std::filesystem::path permissionsFile_;
};

}  // namespace browsersweep
