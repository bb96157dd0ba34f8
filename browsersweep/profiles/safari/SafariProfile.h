#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfile.h"

namespace browsersweep {

/** The one set of data that Safari keeps per user. It never writes a file itself. */
class BROWSERSWEEP_EXPORT SafariProfile : public BrowserProfile {
public:
    /** The profile in this home. */
    explicit SafariProfile(Home home) : home_(std::move(home)) {}

    /** Always absent. */
    std::optional<std::string> name() const override { return std::nullopt; }
    Browser sourceBrowser() const noexcept override { return Browser::safari; }
    bool isPrimary() const noexcept override { return true; }
    /** "Safari" in the Library folder, and Safari's older cache. */
    std::optional<ProfileFolders> folders() const override;
    /** What reaches its files. */
    const std::shared_ptr<const FileManager>& fileManager() const noexcept {
        return home_.fileManager();
    }
    /** Where its user's data lies. */
    const std::shared_ptr<const CurrentUserDirectoryProvider>& directoryProvider() const noexcept {
        return home_.directoryProvider();
    }

    /**
     * All categories but form data. The folders of the cache need Safari closed from macOS 10.15
     * on; the version is asked at each call. Touches no file.
     */
    CleanableDataMap cleanableData() const override;

    /**
     * From "Bookmarks.plist". A missing file is an error here, other than for the other families.
     * Throws `filesystem_error` and `DecodingError`.
     */
    std::vector<Bookmark> bookmarks() const override;

    /**
     * From "Permissions.plist", each a `SafariSubscription`. A file that is missing, cannot be read
     * or is no property list gives none: this never throws those errors.
     */
    std::vector<std::shared_ptr<const NotificationSubscription>> notificationSubscriptions()
        const override;

private:
    std::filesystem::path safariFolder() const;
    CleanableDataList directories(std::span<const std::filesystem::path> paths,
                                  bool requiresClosedBrowser) const;

    Home home_;
};

}  // namespace browsersweep
