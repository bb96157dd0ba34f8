#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Browser.h"
#include "browsersweep/cleanable/CleanableDataDictionary.h"
#include "browsersweep/notifications/NotificationSubscription.h"
#include "browsersweep/profiles/Bookmark.h"

namespace browsersweep {

/** Where a profile's files lie. Folders need not exist. */
struct ProfileFolders {
    std::filesystem::path data;   ///< below Application Support, or where the browser says
    std::filesystem::path cache;  ///< below Caches, where the browser keeps one there

    /** Whether all fields are equal. */
    friend bool operator==(const ProfileFolders&, const ProfileFolders&) = default;
};

/** One profile of a browser. Everything is read afresh at each call. */
class BROWSERSWEEP_EXPORT BrowserProfile {
public:
    BrowserProfile() = default;
    virtual ~BrowserProfile();

    /** The name as the browser shows it; absent (not empty) where the browser records none. */
    virtual std::optional<std::string> name() const = 0;

    /** The browser that the profile belongs to. */
    virtual Browser sourceBrowser() const noexcept = 0;

    /** Whether this is the browser's main profile, by the rule of its family. */
    virtual bool isPrimary() const noexcept = 0;

    /**
     * The profile's folder as the browser records it, byte for byte: a name with Chromium-based
     * browsers, a path with Firefox. Absent where the browser records none.
     */
    virtual std::optional<std::string> folder() const;

    /**
     * Why the profile is left alone: what the browser records as its folder would lead out of the
     * browser's own, and any program of the user can write such a record. Such a profile has no
     * data, no bookmarks and no subscriptions. Absent for every other profile.
     */
    virtual std::optional<std::string> leftOutReason() const;

    /** Where its files lie; absent of a profile that is left out. Touches no file. */
    virtual std::optional<ProfileFolders> folders() const;

    /** The profile's data by category. A category that it does not have is no key. */
    virtual CleanableDataMap cleanableData() const = 0;

    /** The profile's bookmarks. Throws the error of reading or decoding them. */
    virtual std::vector<Bookmark> bookmarks() const = 0;

    /** The sites that may send notifications. Throws the error of reading or decoding them. */
    virtual std::vector<std::shared_ptr<const NotificationSubscription>> notificationSubscriptions()
        const = 0;

protected:
    /** @{ */
    /** For derived classes: the base alone is never copied. */
    BrowserProfile(const BrowserProfile&) = default;
    BrowserProfile(BrowserProfile&&) = default;
    BrowserProfile& operator=(const BrowserProfile&) = default;
    BrowserProfile& operator=(BrowserProfile&&) = default;
    /** @} */
};

}  // namespace browsersweep
