#include "browsersweep/traces/safari/internal/SafariDatabases.h"

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "browsersweep/profiles/safari/SafariBookmarks.h"
#include "browsersweep/traces/safari/internal/SafariRowFiles.h"

namespace browsersweep {
namespace {

using Form = SiteForm;
using Kind = TraceKind;
using Place = SafariPlace;
using Rule = TableRule;
using Time = TimeForm;

// What refers to a row that goes stands below it, and goes after it. Tables of newer and of older
// versions stand side by side.
// clang-format off

// A visit that led to another one, or came from it, loses the other alone.
constexpr std::array historyTables{
    TraceTable{.name = "history_visits", .lastUsed = {"visit_time", Time::secondsSince2001},
               .relation = {"history_item", "history_items", "id", {"url"}}},
    TraceTable{.name = "history_items", .columns = {{{"url"}}}},
    TraceTable{.name = "history_visits", .rule = Rule::orphans, .relation = {"history_item", "history_items", "id", {}}},
    TraceTable{.name = "history_visits", .rule = Rule::loosens, .relation = {"redirect_source", "history_visits", "id", {}}},
    TraceTable{.name = "history_visits", .rule = Rule::loosens, .relation = {"redirect_destination", "history_visits", "id", {}}},
    TraceTable{.name = "history_tombstones", .columns = {{{"url"}}}, .lastUsed = {"end_time", Time::secondsSince2001}},
    TraceTable{.name = "history_events", .columns = {{{"value", Form::bytes}}}, .lastUsed = {"event_time", Time::secondsSince2001}},
    TraceTable{.name = "history_items_to_tags", .rule = Rule::orphans, .relation = {"history_item", "history_items", "id", {}}},
    TraceTable{.name = "history_tags", .rule = Rule::orphans, .relation = {"id", "history_items_to_tags", "tag_id", {}}},
};

// The icon of a page may lie on another site: it goes with either, but a page that is kept keeps
// it. An icon that no page has goes.
constexpr std::array iconTables{
    TraceTable{.name = "page_url", .kind = Kind::icons, .columns = {{{"url"}}},
               .relation = {"uuid", "icon_info", "uuid", {"url"}, false}, .condition = "NOT isProtected(url)"},
    TraceTable{.name = "page_url", .kind = Kind::icons, .rule = Rule::orphans, .relation = {"uuid", "icon_info", "uuid", {}},
               .condition = "NOT isProtected(url)"},
    TraceTable{.name = "icon_info", .kind = Kind::icons, .columns = {{{"url"}}}, .lastUsed = {"timestamp", Time::secondsSince2001},
               .condition = "uuid NOT IN (SELECT uuid FROM page_url WHERE uuid IS NOT NULL)"},
    TraceTable{.name = "icon_info", .kind = Kind::icons, .rule = Rule::orphans, .relation = {"uuid", "page_url", "uuid", {}}},
    TraceTable{.name = "rejected_resources", .kind = Kind::icons, .columns = {{{"page_url"}, {"icon_url"}}},
               .lastUsed = {"timestamp", Time::secondsSince2001}},
};

constexpr std::array siteIconTables{
    TraceTable{.name = "cache_settings", .kind = Kind::icons, .columns = {{{"host", Form::host}}},
               .lastUsed = {"last_request_date", Time::secondsSince2001}, .condition = "NOT isProtected(host)"},
};

constexpr std::array preferenceTables{
    TraceTable{.name = "preference_values", .kind = Kind::settings, .columns = {{{"domain", Form::host}}},
               .lastUsed = {"timestamp", Time::secondsSince2001}},
};

constexpr std::array suggestionTables{
    TraceTable{.name = "ignored_siri_suggested_sites", .kind = Kind::settings,
               .columns = {{{"siriSuggestedSiteURL", Form::hostOrAddress}, {"visitedURL", Form::hostOrAddress}}},
               .lastUsed = {"timestamp", Time::secondsSince2001}},
};

// A tab has an address; a group of tabs, and a profile, is a folder without one. A tab of another
// site stays, without the list of pages to go back to where that names a site that goes. What lies
// in a group's folder of favourites (subtype 1) was put there by the user, and is no tab.
constexpr std::string_view isTab =
    "type IS NOT 1 AND url IS NOT NULL AND id NOT IN (WITH RECURSIVE held(folder) AS ("
    "SELECT id FROM bookmarks WHERE type IS 1 AND subtype IS 1"
    " UNION SELECT bookmarks.id FROM bookmarks, held WHERE parent = folder) SELECT folder FROM held)";
constexpr std::array pagesBefore{ColumnReset{"local_attributes", "NULL"}};
constexpr std::array archives{ColumnReset{"restoration_archive", "NULL"}};

constexpr std::array tabTables{
    TraceTable{.name = "bookmarks", .kind = Kind::openTabs, .columns = {{{"url"}, {"extra_attributes", Form::bytes}}}, .condition = isTab},
    TraceTable{.name = "bookmarks", .kind = Kind::openTabs, .rule = Rule::resets, .columns = {{{"local_attributes", Form::bytes}}},
               .condition = isTab, .resets = pagesBefore},
    TraceTable{.name = "bookmarks", .kind = Kind::openTabs, .rule = Rule::loosens, .relation = {"last_selected_child", "bookmarks", "id", {}}},
    TraceTable{.name = "bookmark_title_words", .kind = Kind::openTabs, .rule = Rule::orphans, .relation = {"bookmark_id", "bookmarks", "id", {}}},
    TraceTable{.name = "session_state", .kind = Kind::openTabs, .columns = {{{"data", Form::bytes}}}},
    TraceTable{.name = "session_state", .kind = Kind::openTabs, .rule = Rule::orphans, .relation = {"uuid", "bookmarks", "external_uuid", {}}},
    TraceTable{.name = "windows", .kind = Kind::openTabs, .rule = Rule::resets, .columns = {{{"restoration_archive", Form::bytes}}}, .resets = archives},
    TraceTable{.name = "windows_tab_groups", .kind = Kind::openTabs, .rule = Rule::loosens, .relation = {"active_tab_id", "bookmarks", "id", {}}},
};

constexpr std::array cloudTabTables{
    TraceTable{.name = "cloud_tabs", .kind = Kind::openTabs, .columns = {{{"url"}}}, .lastUsed = {"last_viewed_time", Time::secondsSince2001}},
    TraceTable{.name = "cloud_tab_close_requests", .kind = Kind::openTabs, .columns = {{{"url"}}}},
};

constexpr std::array urlCacheTables{
    TraceTable{.name = "cfurl_cache_response", .kind = Kind::cachedFiles, .columns = {{{"request_key"}, {"partition", Form::hostOrAddress}}}},
    TraceTable{.name = "cfurl_cache_blob_data", .kind = Kind::cachedFiles, .rule = Rule::orphans,
               .relation = {"entry_ID", "cfurl_cache_response", "entry_ID", {}}},
    TraceTable{.name = "cfurl_cache_receiver_data", .kind = Kind::cachedFiles, .rule = Rule::orphans,
               .relation = {"entry_ID", "cfurl_cache_response", "entry_ID", {}}},
};

constexpr std::array snapshotTables{
    TraceTable{.name = "snapshot_metadata", .kind = Kind::openTabs, .columns = {{{"url"}}}, .lastUsed = {"date_created", Time::secondsSince2001}},
};

constexpr TraceTable pairOf(std::string_view table, std::string_view column) {
    return {.name = table, .kind = Kind::networkState, .rule = Rule::orphans, .relation = {column, "ObservedDomains", "domainID", {}}};
}

// Pairs of sites: each goes with either.
constexpr std::array observationTables{
    TraceTable{.name = "ObservedDomains", .kind = Kind::networkState, .columns = {{{"registrableDomain", Form::host}}},
               .lastUsed = {"lastSeen", Time::secondsSince1970}},
    pairOf("TopLevelDomains", "topLevelDomainID"),
    pairOf("StorageAccessUnderTopFrameDomains", "domainID"),
    pairOf("StorageAccessUnderTopFrameDomains", "topLevelDomainID"),
    pairOf("TopFrameUniqueRedirectsTo", "sourceDomainID"),
    pairOf("TopFrameUniqueRedirectsTo", "toDomainID"),
    pairOf("TopFrameUniqueRedirectsToSinceSameSiteStrictEnforcement", "sourceDomainID"),
    pairOf("TopFrameUniqueRedirectsToSinceSameSiteStrictEnforcement", "toDomainID"),
    pairOf("TopFrameUniqueRedirectsFrom", "targetDomainID"),
    pairOf("TopFrameUniqueRedirectsFrom", "fromDomainID"),
    pairOf("TopFrameLinkDecorationsFrom", "toDomainID"),
    pairOf("TopFrameLinkDecorationsFrom", "fromDomainID"),
    pairOf("TopFrameLoadedThirdPartyScripts", "topFrameDomainID"),
    pairOf("TopFrameLoadedThirdPartyScripts", "subresourceDomainID"),
    pairOf("SubframeUnderTopFrameDomains", "subFrameDomainID"),
    pairOf("SubframeUnderTopFrameDomains", "topFrameDomainID"),
    pairOf("SubresourceUnderTopFrameDomains", "subresourceDomainID"),
    pairOf("SubresourceUnderTopFrameDomains", "topFrameDomainID"),
    pairOf("SubresourceUniqueRedirectsTo", "subresourceDomainID"),
    pairOf("SubresourceUniqueRedirectsTo", "toDomainID"),
    pairOf("SubresourceUniqueRedirectsFrom", "subresourceDomainID"),
    pairOf("SubresourceUniqueRedirectsFrom", "fromDomainID"),
};

// The older layout of what scripts keep has a database beside its files, also of what extensions keep.
constexpr TraceTable originsIn(std::string_view table) {
    return {.name = table, .kind = Kind::siteStorage, .columns = {{{"origin", Form::originIdentifier}}}, .condition = "origin LIKE 'http%'"};
}

constexpr std::array localStorageTables{originsIn("Origins")};
constexpr std::array webSQLTables{originsIn("Origins"), originsIn("Databases")};

constexpr std::array databases{
    SafariDatabase{Place::safari,       "History.db",                               historyTables},
    SafariDatabase{Place::safari,       "Favicon Cache/favicons.db",                iconTables, iconFiles, true},
    SafariDatabase{Place::safari,       "Touch Icons Cache/TouchIconCacheSettings.db", siteIconTables, siteIconFiles, true},
    SafariDatabase{Place::safari,       "PerSitePreferences.db",                    preferenceTables},
    SafariDatabase{Place::safari,       "IgnoredSiriSuggestedSites.db",             suggestionTables},
    SafariDatabase{Place::safari,       "LocalStorage/StorageTracker.db",           localStorageTables},
    SafariDatabase{Place::safari,       "Databases/Databases.db",                   webSQLTables},
    SafariDatabase{Place::websiteData,  "LocalStorage/StorageTracker.db",           localStorageTables},
    SafariDatabase{Place::websiteData,  "WebSQL/Databases.db",                      webSQLTables},
    SafariDatabase{Place::websiteData,  "ResourceLoadStatistics/observations.db",   observationTables},
    SafariDatabase{Place::urlCaches,    "Cache.db",                                 urlCacheTables, bodyFiles},
    SafariDatabase{Place::urlCaches,    "TabSnapshots/Metadata.db",                 snapshotTables, snapshotFiles},
};

constexpr std::array sharedDatabases{
    SafariDatabase{Place::container,    "SafariTabs.db",                            tabTables},
    SafariDatabase{Place::container,    "CloudTabs.db",                             cloudTabTables},
};
// clang-format on

/** Whether nothing stands behind the host and the port: icons then have the address with a slash.
 */
bool isWithoutPath(std::string_view address) {
    constexpr std::string_view separator = "://";
    const auto scheme = address.find(separator);
    return scheme != std::string_view::npos &&
           address.find_first_of("/?#", scheme + separator.size()) == std::string_view::npos;
}

// An icon that was kept too much is better than bookmarks without icons, so an error of reading
// them is passed on: nothing goes then.
ProtectedAddresses bookmarked(const std::filesystem::path& file, const FileManager& fileManager) {
    ProtectedAddresses addresses;
    if (!fileManager.fileExists(file).isFile()) {
        return addresses;
    }
    for (const Bookmark& bookmark :
         SafariBookmarks::decode(fileManager.contents(file)).bookmarks()) {
        const std::string& address = bookmark.url.absoluteString();
        addresses.insert(address);
        if (isWithoutPath(address)) {
            addresses.insert(address + '/');
        }
        addresses.insert(hostOfAddress(address));
    }
    return addresses;
}

}  // namespace

std::span<const SafariDatabase> safariDatabases() noexcept {
    return databases;
}

std::span<const SafariDatabase> sharedSafariDatabases() noexcept {
    return sharedDatabases;
}

TraceStores databaseStores(std::span<const SafariDatabase> rows, const SafariPlaces& places,
                           const std::shared_ptr<const FileManager>& fileManager) {
    TraceStores stores;
    for (const SafariDatabase& row : rows) {
        for (const auto& folder : places.at(row.place)) {
            TraceDatabase database{folder / row.file, row.tables, {}, row.files};
            if (row.keepsBookmarked) {
                database.protectedAddresses = [bookmarks = places.bookmarks, fileManager] {
                    return bookmarked(bookmarks, *fileManager);
                };
            }
            stores.push_back(
                std::make_shared<DatabaseTraceStore>(std::move(database), fileManager));
        }
    }
    return stores;
}

}  // namespace browsersweep
