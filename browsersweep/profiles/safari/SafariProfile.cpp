#include "browsersweep/profiles/safari/SafariProfile.h"

#include <array>
#include <utility>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/cookies/CleanableSafariCookies.h"
#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/notifications/SafariSubscription.h"
#include "browsersweep/profiles/safari/SafariBookmarks.h"
#include "browsersweep/profiles/safari/internal/SafariPermissions.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

namespace browsersweep {
namespace {

using Category = CleanableDataCategory;
using Items = std::vector<CleanableDataList::Item>;

// From this version on the folders of the cache lie within Safari's container, which it guards.
constexpr OperatingSystemVersion firstWithGuardedCaches{10, 15, 0};

// A permissions file that cannot be read or understood allows no site; that is no error.
std::vector<URL> sitesAllowedIn(const std::filesystem::path& file, const FileManager& fileManager) {
    try {
        return allowedSites(PropertyList::parse(fileManager.contents(file)));
    } catch (const std::filesystem::filesystem_error&) {
        return {};
    } catch (const DecodingError&) {
        return {};
    }
}

}  // namespace

std::filesystem::path SafariProfile::safariFolder() const {
    return home_.directoryProvider()->libraryDirectory() / "Safari";
}

std::optional<ProfileFolders> SafariProfile::folders() const {
    return ProfileFolders{safariFolder(),
                          home_.directoryProvider()->cachesDirectory() / "com.apple.Safari"};
}

CleanableDataList SafariProfile::directories(std::span<const std::filesystem::path> paths,
                                             bool requiresClosedBrowser) const {
    Items items;
    for (const std::filesystem::path& path : paths) {
        items.push_back(std::make_shared<CleanableDirectory>(
            path, requiresClosedBrowser, std::vector<CleanableDataFilter>{}, home_.fileManager()));
    }
    return CleanableDataList(std::move(items));
}

CleanableDataMap SafariProfile::cleanableData() const {
    const std::filesystem::path library = home_.directoryProvider()->libraryDirectory();
    const std::filesystem::path containerCaches =
        library / "Containers/com.apple.Safari/Data/Library/Caches";
    const bool guarded = home_.services().operatingSystemVersion() >= firstWithGuardedCaches;
    const std::array caches{containerCaches / "com.apple.Safari/", containerCaches / "WebKit/",
                            library / "Caches/com.apple.Safari/"};
    const std::array flash{library / "Preferences/Macromedia/"};
    const std::array storage{safariFolder() / "LocalStorage/"};
    const Items history{std::make_shared<SafariHistoryCleanableDatabase>(
        safariFolder() / "History.db", home_.fileManager())};

    const Items cookies{std::make_shared<CleanableSafariCookies>(home_)};

    CleanableDataMap::Lists lists;
    lists.emplace(Category::cache, directories(caches, guarded));
    lists.emplace(Category::history, CleanableDataList(history));
    lists.emplace(Category::httpCookies, CleanableDataList(cookies));
    lists.emplace(Category::flashCookies, directories(flash, false));
    lists.emplace(Category::localStorage, directories(storage, true));
    return CleanableDataMap(std::move(lists));
}

std::vector<Bookmark> SafariProfile::bookmarks() const {
    // Not tested for existence: without this file Safari's bookmarks are not known to be none.
    const Bytes contents = home_.fileManager()->contents(safariFolder() / "Bookmarks.plist");
    return SafariBookmarks::decode(contents).bookmarks();
}

std::vector<std::shared_ptr<const NotificationSubscription>>
SafariProfile::notificationSubscriptions() const {
    const std::filesystem::path file = safariFolder() / "RemoteNotifications/Permissions.plist";
    if (!home_.fileManager()->fileExists(file).isFile()) {
        return {};
    }
    std::vector<std::shared_ptr<const NotificationSubscription>> subscriptions;
    for (URL& site : sitesAllowedIn(file, *home_.fileManager())) {
        subscriptions.push_back(
            std::make_shared<SafariSubscription>(std::move(site), Browser::safari, file));
    }
    return subscriptions;
}

}  // namespace browsersweep
