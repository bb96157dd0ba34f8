#include "browsersweep/traces/firefox/internal/FirefoxFileStores.h"

#include <array>
#include <filesystem>
#include <optional>
#include <string_view>
#include <utility>

#include "browsersweep/sites/internal/FolderStore.h"
#include "browsersweep/sites/internal/MixedStore.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/traces/firefox/internal/FirefoxCacheStore.h"
#include "browsersweep/traces/firefox/internal/ServiceWorkerListStore.h"
#include "browsersweep/traces/firefox/internal/SessionStore.h"
#include "browsersweep/traces/firefox/internal/StateFileStore.h"
#include "browsersweep/traces/firefox/internal/ThumbnailStore.h"

namespace browsersweep {
namespace {

/** "https+++www.example.com": what is of no web site is Firefox's, an extension's or the user's. */
std::optional<FolderOwner> ownerInName(const FileManager& /*fileManager*/,
                                       const std::filesystem::path& /*parent*/,
                                       const FolderEntry& entry) {
    if (entry.kind != FolderEntry::Kind::folder) {
        return std::nullopt;
    }
    auto hosts = hostsIn(SiteForm::firefoxFolder, entry.name);
    const bool isOfNoSite = hosts.empty();
    return FolderOwner{std::move(hosts), isOfNoSite};
}

// clang-format off
constexpr std::array folderRows{
    FolderRow{"storage/default", TraceKind::siteStorage, ownerInName, {}},
    FolderRow{"storage/temporary", TraceKind::siteStorage, ownerInName, {}},
    FolderRow{"storage/private", TraceKind::siteStorage, ownerInName, {}},
};

constexpr std::array mixedRows{
    MixedRow{"storage/to-be-removed", TraceKind::siteStorage,
             "site data that Firefox has begun to delete", false, true},
    MixedRow{"notificationstore.json", TraceKind::siteStorage, "notifications from any site"},
};

// Of both versions: the newer one reads the older one's file where its own is missing.
constexpr std::string_view unreadSecurity =
    "entries that cannot be read, about sites that must be loaded over HTTPS; without them the first request goes over HTTP";
constexpr std::string_view unreadServices = "entries that cannot be read, about alternative servers of any site";
constexpr std::string_view unreadChoices = "entries that cannot be read, about certificates chosen for servers of any site";
constexpr std::array stateRows{
    StateFileRow{"SiteSecurityServiceState.bin", TraceKind::networkState, 24, hostsOfSecurityState, unreadSecurity},
    StateFileRow{"SiteSecurityServiceState.txt", TraceKind::networkState, 0, hostsOfSecurityState, unreadSecurity},
    StateFileRow{"AlternateServices.bin", TraceKind::networkState, 1024, hostsOfAlternateService, unreadServices},
    StateFileRow{"AlternateServices.txt", TraceKind::networkState, 0, hostsOfAlternateService, unreadServices},
    StateFileRow{"ClientAuthRememberList.bin", TraceKind::settings, 1024, hostsOfClientCertificate, unreadChoices},
    StateFileRow{"ClientAuthRememberList.txt", TraceKind::settings, 0, hostsOfClientCertificate, unreadChoices},
};

struct SessionRow {
    std::string_view path;
    std::string_view meaning;  ///< of a file that cannot be read
};
constexpr std::array sessionRows{
    SessionRow{"sessionstore.jsonlz4", "open and recently closed tabs of all sites; without this file Firefox cannot reopen any of them"},
    SessionRow{"sessionstore-backups", "earlier states of the open tabs and windows of all sites"},
};

/** Below the profile's folder for caches. */
constexpr std::array mixedCaches{
    MixedRow{"activity-stream.shortcut_cache.json", TraceKind::predictions,
             "the sites shown on a new tab; Firefox finds them again"},
};
// clang-format on

}  // namespace

TraceStores firefoxFileStores(const ProfileFolders& folders,
                              const std::shared_ptr<const FileManager>& fileManager) {
    TraceStores stores;
    for (const FolderRow& row : folderRows) {
        stores.push_back(std::make_shared<FolderStore>(row, folders.data, fileManager));
    }
    stores.push_back(
        std::make_shared<ServiceWorkerListStore>(folders.data / "serviceworker.txt", fileManager));
    for (const SessionRow& row : sessionRows) {
        stores.push_back(
            std::make_shared<SessionStore>(folders.data / row.path, row.meaning, fileManager));
    }
    for (const StateFileRow& row : stateRows) {
        stores.push_back(std::make_shared<StateFileStore>(row, folders.data, fileManager));
    }
    for (const MixedRow& row : mixedRows) {
        stores.push_back(std::make_shared<MixedStore>(row, folders.data, fileManager));
    }
    stores.push_back(std::make_shared<FirefoxCacheStore>(folders.cache / "cache2", fileManager));
    for (const MixedRow& row : mixedCaches) {
        stores.push_back(std::make_shared<MixedStore>(row, folders.cache, fileManager));
    }
    return stores;
}

TraceStores storesBeforeDatabases(const ProfileFolders& folders,
                                  const std::shared_ptr<const FileManager>& fileManager) {
    return {std::make_shared<ThumbnailStore>(folders.cache / "thumbnails",
                                             folders.data / "places.sqlite", fileManager)};
}

}  // namespace browsersweep
