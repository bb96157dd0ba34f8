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
 * One profile of Firefox. It never writes a file itself. Every database is read from a temporary
 * copy, so that one that a running Firefox holds can be read.
 */
class BROWSERSWEEP_EXPORT FirefoxProfile : public BrowserProfile {
public:
    /**
     * A relative path leads from the user's Application Support directory to the profile, and from
     * the Caches directory to its cache; with an absolute path both are the same folder. The
     * recorded path is what "profiles.ini" gives, where that is another text.
     */
    FirefoxProfile(std::optional<std::string> name, bool isPrimary, bool isRelative,
                   std::filesystem::path path, const Home& home,
                   std::optional<std::string> recordedPath = {});

    std::optional<std::string> name() const override { return name_; }
    Browser sourceBrowser() const noexcept override { return Browser::firefox; }
    bool isPrimary() const noexcept override { return isPrimary_; }
    /** Whether the path is relative, as "IsRelative" of "profiles.ini" says. */
    bool isRelative() const noexcept { return isRelative_; }
    /** The profile's folder as "Path" of "profiles.ini" says. */
    const std::filesystem::path& path() const noexcept { return path_; }
    /** What reaches its files. */
    const std::shared_ptr<const FileManager>& fileManager() const noexcept { return fileManager_; }
    /** Where its user's data lies. */
    const std::shared_ptr<const CurrentUserDirectoryProvider>& directoryProvider() const noexcept {
        return directoryProvider_;
    }

    /** The recorded path; without one the path itself. */
    std::optional<std::string> folder() const override;
    std::optional<std::string> leftOutReason() const override;
    std::optional<ProfileFolders> folders() const override;

    /** All six categories; none of a profile that is left out. Touches no file. */
    CleanableDataMap cleanableData() const override;

    /**
     * From "places.sqlite", which is looked for below the Application Support directory also where
     * the path is absolute. A missing file is an error. Throws `filesystem_error` and
     * `SQLiteError`.
     */
    std::vector<Bookmark> bookmarks() const override;

    /**
     * From "permissions.sqlite", looked for in the same place, each a `FirefoxSubscription`; none
     * where there is no such file. Throws `filesystem_error` and `SQLiteError`.
     */
    std::vector<std::shared_ptr<const NotificationSubscription>> notificationSubscriptions()
        const override;

private:
    std::filesystem::path profileDirectory() const;
    std::filesystem::path cacheDirectory() const;
    std::filesystem::path directoryBelowApplicationSupport() const;
    CleanableDataList::Item databaseItem(const std::filesystem::path& fileName) const;

    std::optional<std::string> name_;
    bool isPrimary_;
    bool isRelative_;
    std::filesystem::path path_;
    std::shared_ptr<const FileManager> fileManager_;
    std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider_;
    std::optional<std::string> recordedPath_;
};

}  // namespace browsersweep
