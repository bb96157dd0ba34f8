#include "browsersweep/traces/safari/internal/SafariStores.h"

#include <array>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "browsersweep/profiles/safari/internal/SafariIdentifier.h"
#include "browsersweep/sites/internal/FolderStore.h"
#include "browsersweep/sites/internal/MixedStore.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/traces/safari/SafariNamedProfileReader.h"
#include "browsersweep/traces/safari/internal/CookieFileStore.h"
#include "browsersweep/traces/safari/internal/OriginRecord.h"
#include "browsersweep/traces/safari/internal/OriginStore.h"
#include "browsersweep/traces/safari/internal/PropertyListStore.h"
#include "browsersweep/traces/safari/internal/SafariDatabases.h"
#include "browsersweep/traces/safari/internal/ServiceWorkerStore.h"
#include "browsersweep/traces/safari/internal/TabListStore.h"
#include "browsersweep/traces/safari/internal/WebKitCacheStore.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using Kind = TraceKind;
using Manager = std::shared_ptr<const FileManager>;
using Place = SafariPlace;

/** "https_www.example.com_0.localstorage", with what a database has beside it. */
std::optional<FolderOwner> ownerInName(const FileManager& /*fileManager*/,
                                       const fs::path& /*parent*/, const FolderEntry& entry) {
    const std::string_view name = entry.name;
    const std::string_view identifier = name.substr(0, name.find(".localstorage"));
    const bool isFolderOfSite = entry.kind == FolderEntry::Kind::folder;
    if (!isFolderOfSite && identifier.size() == name.size()) {
        return std::nullopt;
    }
    auto hosts = hostsIn(SiteForm::originIdentifier, identifier);
    const bool isOfNoSite = hosts.empty();
    return FolderOwner{std::move(hosts), isOfNoSite};
}

std::optional<FolderOwner> ownerInFile(const FileManager& fileManager, const fs::path& parent,
                                       const FolderEntry& entry) {
    if (entry.kind != FolderEntry::Kind::folder) {
        return std::nullopt;
    }
    return ownerOfOriginFolder(fileManager, parent / entry.name);
}

template <typename Row>
struct Placed {
    Place place;
    Row row;
};

// clang-format off
constexpr std::array folderRows{
    Placed<FolderRow>{Place::safari,       {"LocalStorage", Kind::siteStorage, ownerInName, {}}},
    Placed<FolderRow>{Place::safari,       {"Databases", Kind::siteStorage, ownerInName, {}}},
    Placed<FolderRow>{Place::websiteData,  {"LocalStorage", Kind::siteStorage, ownerInName, {}}},
    Placed<FolderRow>{Place::websiteData,  {"WebSQL", Kind::siteStorage, ownerInName, {}}},
    Placed<FolderRow>{Place::webKitCaches, {"CacheStorage", Kind::serviceWorkers, ownerInFile,
                                            "caches that do not say which site they belong to; any site may have filled them"}},
};

/** A folder of folders of sites. */
struct OriginRow {
    Place place;
    std::string_view path;
    OriginLayout (*layout)();
};

constexpr std::array originRows{
    OriginRow{Place::originFolders, "",               layoutByOriginFile},
    OriginRow{Place::websiteData,   "MediaKeys/v1",   layoutByOriginFile},
    OriginRow{Place::websiteData,   "IndexedDB/v0",   layoutByName},
    OriginRow{Place::websiteData,   "IndexedDB/v1",   layoutByName},
    OriginRow{Place::safari,        "Databases/___IndexedDB",    layoutByName},
    OriginRow{Place::safari,        "Databases/___IndexedDB/v0", layoutByName},
    OriginRow{Place::safari,        "Databases/___IndexedDB/v1", layoutByName},
};

struct PathRow {
    Place place;
    std::string_view path;
};

constexpr std::array serviceWorkerRows{
    PathRow{Place::websiteData,  "ServiceWorkers"},
    PathRow{Place::webKitCaches, "ServiceWorkers"},
};

constexpr std::array cacheRows{
    PathRow{Place::webKitCaches, "NetworkCache"},
    PathRow{Place::urlCaches,    "WebKitCache"},
};

constexpr std::array tabListRows{
    PathRow{Place::safari, "LastSession.plist"},
    PathRow{Place::safari, "RecentlyClosedTabs.plist"},
};

constexpr std::array topSiteRows{
    PropertyListRow{"TopSites", Kind::history},
    PropertyListRow{"BannedURLStrings", Kind::settings},
};
constexpr std::array transportRows{
    PropertyListRow{"com.apple.CFNetwork.defaultStorageSession", Kind::networkState, SiteForm::host},
};
constexpr std::array permissionRows{PropertyListRow{"", Kind::settings}};
constexpr std::array sitePermissionRows{PropertyListRow{"", Kind::settings, SiteForm::address}};

constexpr std::array propertyListRows{
    Placed<PropertyListForm>{Place::safari,  {"TopSites.plist", topSiteRows}},
    Placed<PropertyListForm>{Place::safari,  {"RemoteNotifications/Permissions.plist", permissionRows}},
    Placed<PropertyListForm>{Place::safari,  {"UserNotificationPermissions.plist", sitePermissionRows}},
    Placed<PropertyListForm>{Place::cookies, {"HSTS.plist", transportRows}},
};

constexpr std::array mixedRows{
    Placed<MixedRow>{Place::safari, {"HistoryIndex.sk", Kind::history,
                     "words from visited pages of any site, for searching the history; Safari rebuilds the index"}},
    Placed<MixedRow>{Place::safari, {"Form Values", Kind::formData, "text typed into forms, encrypted"}},
    Placed<MixedRow>{Place::safari, {"SearchDescriptions.plist", Kind::predictions, "search fields of any site visited"}},
    Placed<MixedRow>{Place::safari, {"ContentBlockerStatistics.db", Kind::networkState, "which trackers were blocked on which site"}},
    Placed<MixedRow>{Place::safari, {"ContentBlockerStatistics.db-wal", Kind::networkState, "which trackers were blocked on which site"}},
    Placed<MixedRow>{Place::safari, {"ContentBlockerStatistics.db-shm", Kind::networkState, "which trackers were blocked on which site"}},
    Placed<MixedRow>{Place::websiteData, {"DeviceIdHashSalts", Kind::siteStorage, "the numbers by which any site recognizes a camera or microphone"}},
    Placed<MixedRow>{Place::webKitCaches, {"HSTS", Kind::networkState,
                     "sites that must be loaded over HTTPS; without this file the first request goes over HTTP"}},
    Placed<MixedRow>{Place::webKitCaches, {"AlternativeServices", Kind::networkState, "alternative servers of any site"}},
    Placed<MixedRow>{Place::webKitCaches, {"OfflineWebApplicationCache", Kind::cachedFiles, "pages of any site that work offline"}},
    Placed<MixedRow>{Place::urlCaches, {"Webpage Previews", Kind::history, "pictures of visited pages of any site, named by hashes of their addresses"}},
};

constexpr std::array downloadRows{
    PropertyListRow{"DownloadHistory", Kind::downloads, {}, "DownloadEntryDateAddedKey"},
};
// clang-format on
constexpr PropertyListForm downloads{"Downloads.plist", downloadRows};

/** Whose a download is; of the profile that every user has, where no named one is told. */
std::string profileOf(const PropertyList& download) {
    const PropertyList* const found = download.find("DownloadEntryProfileUUIDStringKey");
    const std::string* const text = found == nullptr ? nullptr : found->asString();
    return text == nullptr ? std::string() : inCapitals(*text);
}

std::string identifierOf(const BrowserProfile& profile) {
    return inCapitals(profile.folder().value_or(""));
}

PropertyListStore::IsOwn isDownloadOf(const std::string& identifier) {
    return [identifier](const PropertyList& each) { return profileOf(each) == identifier; };
}

/** What a profile loaded that is not there any more counts for the one that every user has. */
PropertyListStore::IsOwn isDownloadOfNoNamedProfile(const Home& home) {
    std::set<std::string> named;
    for (const auto& profile : SafariNamedProfileReader(home).profiles()) {
        named.insert(identifierOf(*profile));
    }
    return [named](const PropertyList& each) { return !named.contains(profileOf(each)); };
}

PropertyListStore::OwnersOf ownersOfDownloads(const BrowserProfile& profile, const Home& home) {
    if (profile.isPrimary()) {
        return [home] { return isDownloadOfNoNamedProfile(home); };
    }
    return [identifier = identifierOf(profile)] { return isDownloadOf(identifier); };
}

/** Makes a store in each folder of a row's place. */
class Maker {
public:
    Maker(SafariPlaces places, Home home) : places_(std::move(places)), home_(std::move(home)) {}

    template <typename Store, typename... Arguments>
    void add(Place place, const Arguments&... arguments) {
        for (const fs::path& folder : places_.at(place)) {
            stores_.push_back(std::make_shared<Store>(arguments..., folder, manager()));
        }
    }

    void addCookies(CookieFileStore::Owner owner) {
        for (const fs::path& folder : places_.at(Place::cookies)) {
            stores_.push_back(
                std::make_shared<CookieFileStore>(folder / "Cookies.binarycookies", owner, home_));
        }
    }

    void addDatabases(std::span<const SafariDatabase> rows) {
        const TraceStores found = databaseStores(rows, places_, manager());
        stores_.insert(stores_.end(), found.begin(), found.end());
    }

    template <typename Store>
    void addPaths(std::span<const PathRow> rows) {
        for (const PathRow& row : rows) {
            for (const fs::path& folder : places_.at(row.place)) {
                stores_.push_back(std::make_shared<Store>(folder / row.path, manager()));
            }
        }
    }

    void addOrigins() {
        for (const OriginRow& row : originRows) {
            for (const fs::path& folder : places_.at(row.place)) {
                stores_.push_back(std::make_shared<OriginStore>(
                    row.path.empty() ? folder : folder / row.path, row.layout(), manager()));
            }
        }
    }

    void addDownloads(const BrowserProfile& profile) {
        stores_.push_back(
            std::make_shared<PropertyListStore>(downloads, places_.bookmarks.parent_path(),
                                                manager(), ownersOfDownloads(profile, home_)));
    }

    TraceStores stores() && { return std::move(stores_); }

private:
    Manager manager() const { return home_.fileManager(); }

    SafariPlaces places_;
    Home home_;
    TraceStores stores_;
};

}  // namespace

TraceStores safariStores(const BrowserProfile& profile, const Home& home) {
    Maker maker(safariPlaces(profile, home), home);
    maker.addDatabases(safariDatabases());
    maker.addDownloads(profile);
    maker.addCookies(profile.isPrimary() ? CookieFileStore::Owner::system
                                         : CookieFileStore::Owner::profile);
    maker.addOrigins();
    for (const auto& [place, row] : folderRows) {
        maker.add<FolderStore>(place, row);
    }
    maker.addPaths<ServiceWorkerStore>(serviceWorkerRows);
    maker.addPaths<WebKitCacheStore>(cacheRows);
    maker.addPaths<TabListStore>(tabListRows);
    for (const auto& [place, row] : propertyListRows) {
        maker.add<PropertyListStore>(place, row);
    }
    for (const auto& [place, row] : mixedRows) {
        maker.add<MixedStore>(place, row);
    }
    return std::move(maker).stores();
}

TraceStores sharedSafariStores(const Home& home) {
    Maker maker(sharedSafariPlaces(home), home);
    maker.addDatabases(sharedSafariDatabases());
    return std::move(maker).stores();
}

}  // namespace browsersweep
