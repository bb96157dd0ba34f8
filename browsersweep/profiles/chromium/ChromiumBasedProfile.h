#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfile.h"

namespace browsersweep {

/**
 * One profile folder of a Chromium-based browser. It never writes a file itself. A folder that does
 * not exist still has all its categories, with nothing in them.
 */
class BROWSERSWEEP_EXPORT ChromiumBasedProfile : public BrowserProfile {
public:
    /**
     * The relative path leads from the user's Application Support directory to the profile folder,
     * and from the Caches directory to its cache; leading separators count for nothing. The
     * recorded folder is what the browser gives as the folder's name, where it gives any: the
     * path's last component should be just that, and a profile is left out where it cannot be.
     */
    ChromiumBasedProfile(std::optional<std::string> name, Browser browser, bool isPrimary,
                         std::filesystem::path relativePath, const Home& home,
                         std::optional<std::string> recordedFolder = {});

    std::optional<std::string> name() const override { return name_; }
    Browser sourceBrowser() const noexcept override { return browser_; }
    bool isPrimary() const noexcept override { return isPrimary_; }
    /** The path below Application Support and Caches that it was made with. */
    const std::filesystem::path& relativePath() const noexcept { return relativePath_; }
    /** What reaches its files. */
    const std::shared_ptr<const FileManager>& fileManager() const noexcept { return fileManager_; }
    /** Where its user's data lies. */
    const std::shared_ptr<const CurrentUserDirectoryProvider>& directoryProvider() const noexcept {
        return directoryProvider_;
    }

    /** The recorded folder's name; without one the last component of the path. */
    std::optional<std::string> folder() const override;
    std::optional<std::string> leftOutReason() const override;
    std::optional<ProfileFolders> folders() const override;

    /** All six categories; none of a profile that is left out. Touches no file. */
    CleanableDataMap cleanableData() const override;

    /** From "Bookmarks"; none where there is no such file. */
    std::vector<Bookmark> bookmarks() const override;

    /** From "Preferences", each a `ChromeSubscription`; none where there is no such file. */
    std::vector<std::shared_ptr<const NotificationSubscription>> notificationSubscriptions()
        const override;

private:
    std::filesystem::path profileFolder() const;
    std::filesystem::path cacheFolder() const;

    std::optional<std::string> name_;
    Browser browser_;
    bool isPrimary_;
    std::filesystem::path relativePath_;
    std::shared_ptr<const FileManager> fileManager_;
    std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider_;
    std::optional<std::string> recordedFolder_;
};

}  // namespace browsersweep
