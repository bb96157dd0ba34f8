#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfile.h"

namespace browsersweep {

/**
 * A profile that was made in Safari 17 or later, beside the one that every user has. It has what
 * sites left there and nothing else: its bookmarks, and what a clean deletes, are Safari's own.
 */
class BROWSERSWEEP_EXPORT SafariNamedProfile : public BrowserProfile {
public:
    /** The title is absent where Safari no longer knows it; the identifier is a UUID. */
    SafariNamedProfile(std::optional<std::string> title, std::string identifier, Home home)
        : title_(std::move(title)), identifier_(std::move(identifier)), home_(std::move(home)) {}

    std::optional<std::string> name() const override { return title_; }
    Browser sourceBrowser() const noexcept override { return Browser::safari; }
    bool isPrimary() const noexcept override { return false; }
    /** The identifier. */
    std::optional<std::string> folder() const override { return identifier_; }
    /** An identifier that is no UUID is a part of no path. */
    std::optional<std::string> leftOutReason() const override;
    /** Its folder in "Safari/Profiles", and that of its websites' data. */
    std::optional<ProfileFolders> folders() const override;
    /** Empty. */
    CleanableDataMap cleanableData() const override;
    /** None. */
    std::vector<Bookmark> bookmarks() const override { return {}; }
    /** None. */
    std::vector<std::shared_ptr<const NotificationSubscription>> notificationSubscriptions()
        const override {
        return {};
    }

private:
    std::optional<std::string> title_;
    std::string identifier_;
    Home home_;
};

}  // namespace browsersweep
