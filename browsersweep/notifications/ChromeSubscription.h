#pragma once

#include <filesystem>
#include <utility>

#include "browsersweep/notifications/NotificationSubscription.h"

namespace browsersweep {

/** A permission from the "Preferences" file of a Chromium-based profile. */
class BROWSERSWEEP_EXPORT ChromeSubscription : public NotificationSubscription {
public:
    /** A site of a browser, with the "Preferences" file it was found in. */
    ChromeSubscription(URL sourceURL, Browser browser, std::filesystem::path profile)
        : sourceURL_(std::move(sourceURL)), browser_(browser), profile_(std::move(profile)) {}

    const URL& sourceURL() const noexcept override { return sourceURL_; }
    Browser browser() const noexcept override { return browser_; }
    std::filesystem::path store() const override { return profile_; }
    /** The profile's "Preferences" file. */
    const std::filesystem::path& profile() const noexcept { return profile_; }
    void blockNotifications() const noexcept override {}

    /** Whether site, browser and file are the same. */
    friend bool operator==(const ChromeSubscription& a, const ChromeSubscription& b) noexcept {
        return a.sourceURL_ == b.sourceURL_ && a.browser_ == b.browser_ && a.profile_ == b.profile_;
    }

private:
    URL sourceURL_;
    Browser browser_;
    std::filesystem::path profile_;
};

}  // namespace browsersweep
