#include "browsersweep/traces/firefox/internal/FirefoxDatabases.h"

#include <array>
#include <utility>

#include "browsersweep/traces/firefox/internal/HeldPlaces.h"

namespace browsersweep {
namespace {

using Form = SiteForm;
using Kind = TraceKind;
using Rule = TableRule;
using Time = TimeForm;

// A page that a bookmark or a keyword holds stays, without what tells of visits.
constexpr std::string_view isHeld =
    "id IN (SELECT fk FROM moz_bookmarks WHERE fk IS NOT NULL UNION"
    " SELECT place_id FROM moz_keywords WHERE place_id IS NOT NULL)";
constexpr std::string_view isNotHeld =
    "id NOT IN (SELECT fk FROM moz_bookmarks WHERE fk IS NOT NULL UNION"
    " SELECT place_id FROM moz_keywords WHERE place_id IS NOT NULL)";

// The columns that do not tell of use are for the browser to compute anew.
// clang-format off
constexpr std::array placeResets{
    ColumnReset{"visit_count", "0"},
    ColumnReset{"typed", "0"},
    ColumnReset{"last_visit_date", "NULL"},
    ColumnReset{"preview_image_url", "NULL"},
    ColumnReset{"description", "NULL"},
    ColumnReset{"site_name", "NULL"},
    ColumnReset{"frecency", "-1", false},
    ColumnReset{"recalc_frecency", "1", false},
    ColumnReset{"alt_frecency", "NULL", false},
    ColumnReset{"recalc_alt_frecency", "1", false},
};

constexpr TableRelation ofPlace(std::string_view column) {
    return {column, "moz_places", "id", {"url"}};
}

// What follows a page goes also where the page itself stays.
constexpr std::array placeTables{
    TraceTable{.name = "moz_historyvisits", .rule = Rule::follows, .relation = ofPlace("place_id")},
    TraceTable{.name = "moz_inputhistory", .rule = Rule::follows, .relation = ofPlace("place_id")},
    TraceTable{.name = "moz_annos", .rule = Rule::follows, .relation = ofPlace("place_id")},
    TraceTable{.name = "moz_places_metadata", .rule = Rule::follows, .relation = ofPlace("place_id")},
    TraceTable{.name = "moz_places_metadata", .rule = Rule::follows,
               .relation = {"referrer_place_id", "moz_places", "id", {"url"}, false}},
    TraceTable{.name = "moz_places_extra", .rule = Rule::follows, .relation = ofPlace("place_id")},
    TraceTable{.name = "moz_newtab_shortcuts_interaction", .rule = Rule::follows, .relation = ofPlace("place_id")},
    TraceTable{.name = "moz_places", .columns = {{{"url"}}}, .lastUsed = {"last_visit_date", Time::microsecondsSince1970}, .condition = isNotHeld},
    TraceTable{.name = "moz_places", .rule = Rule::resets, .columns = {{{"url"}}},
               .lastUsed = {"last_visit_date", Time::microsecondsSince1970}, .condition = isHeld, .resets = placeResets},
    TraceTable{.name = "moz_historyvisits", .rule = Rule::orphans, .relation = ofPlace("place_id")},
    TraceTable{.name = "moz_historyvisits_extra", .rule = Rule::orphans, .relation = {"visit_id", "moz_historyvisits", "id", {}}},
    TraceTable{.name = "moz_inputhistory", .rule = Rule::orphans, .relation = ofPlace("place_id")},
    TraceTable{.name = "moz_annos", .rule = Rule::orphans, .relation = ofPlace("place_id")},
    TraceTable{.name = "moz_places_metadata", .rule = Rule::orphans, .relation = ofPlace("place_id")},
    TraceTable{.name = "moz_places_metadata", .rule = Rule::orphans, .relation = ofPlace("referrer_place_id")},
    TraceTable{.name = "moz_places_metadata_search_queries", .rule = Rule::orphans,
               .relation = {"id", "moz_places_metadata", "search_query_id", {}}},
    TraceTable{.name = "moz_places_extra", .rule = Rule::orphans, .relation = ofPlace("place_id")},
    TraceTable{.name = "moz_newtab_shortcuts_interaction", .rule = Rule::orphans, .relation = ofPlace("place_id")},
    TraceTable{.name = "moz_origins", .columns = {{{"host", Form::host}}},
               .condition = "id NOT IN (SELECT origin_id FROM moz_places WHERE origin_id IS NOT NULL)"},
    TraceTable{.name = "moz_previews_tombstones", .rule = Rule::mixed, .meaning = "hashes of pages whose pictures were deleted"},
    TraceTable{.name = "moz_newtab_story_click", .rule = Rule::mixed, .meaning = "articles opened from the new tab page"},
    TraceTable{.name = "moz_newtab_story_impression", .rule = Rule::mixed, .meaning = "articles shown on the new tab page"},
};

// The icon of a page may lie on another site: it goes with either, but a page that is kept keeps
// it. What a held page needs stays, and the icon of its whole site, to which no page need refer.
constexpr std::array iconTables{
    TraceTable{.name = "moz_pages_w_icons", .kind = Kind::icons, .columns = {{{"page_url"}}}, .condition = "NOT isProtected(page_url)"},
    TraceTable{.name = "moz_icons_to_pages", .kind = Kind::icons, .rule = Rule::orphans, .relation = {"page_id", "moz_pages_w_icons", "id", {}}},
    TraceTable{.name = "moz_icons_to_pages", .kind = Kind::icons, .rule = Rule::follows,
               .relation = {"icon_id", "moz_icons", "id", {"icon_url"}, false},
               .condition = "page_id NOT IN (SELECT id FROM moz_pages_w_icons WHERE isProtected(page_url))"},
    TraceTable{.name = "moz_icons", .kind = Kind::icons, .columns = {{{"icon_url"}}},
               .condition = "id NOT IN (SELECT icon_id FROM moz_icons_to_pages) AND NOT (root <> 0 AND isProtected(icon_url))"},
    TraceTable{.name = "moz_icons", .kind = Kind::icons, .rule = Rule::orphans, .relation = {"id", "moz_icons_to_pages", "icon_id", {}},
               .condition = "root = 0"},
    TraceTable{.name = "moz_icons_to_pages", .kind = Kind::icons, .rule = Rule::orphans, .relation = {"icon_id", "moz_icons", "id", {}}},
};

constexpr std::array cookieTables{
    TraceTable{.name = "moz_cookies", .kind = Kind::cookies, .columns = {{{"host", Form::host}, {"originAttributes", Form::originAttributes}}},
               .lastUsed = {"lastAccessed", Time::microsecondsSince1970}},
};

constexpr std::array formTables{
    TraceTable{.name = "moz_formhistory", .kind = Kind::formData, .rule = Rule::mixed, .meaning = "text typed into forms and search fields"},
    TraceTable{.name = "moz_deleted_formhistory", .kind = Kind::formData, .rule = Rule::mixed, .meaning = "when typed text was deleted"},
    TraceTable{.name = "moz_history_to_sources", .kind = Kind::formData, .rule = Rule::orphans, .relation = {"history_id", "moz_formhistory", "id", {}}},
    TraceTable{.name = "moz_sources", .kind = Kind::formData, .rule = Rule::orphans, .relation = {"id", "moz_history_to_sources", "source_id", {}}},
};

// Some permissions are not the user's: the browser grants them by itself, and names a second site.
constexpr std::string_view isNoted = "type IN ('storageAccessAPI', 'https-only-load-insecure', 'gpc-allow') OR type LIKE '3rdParty%'";
constexpr std::string_view isDecided = "NOT (type IN ('storageAccessAPI', 'https-only-load-insecure', 'gpc-allow') OR type LIKE '3rdParty%')";

constexpr std::array permissionTables{
    TraceTable{.name = "moz_perms", .kind = Kind::networkState, .columns = {{{"origin", Form::firefoxOrigin}, {"type", Form::networkKey}}},
               .lastUsed = {"modificationTime", Time::millisecondsSince1970}, .condition = isNoted},
    TraceTable{.name = "moz_perms", .kind = Kind::settings, .columns = {{{"origin", Form::firefoxOrigin}, {"type", Form::networkKey}}},
               .lastUsed = {"modificationTime", Time::millisecondsSince1970}, .condition = isDecided},
    TraceTable{.name = "moz_hosts", .kind = Kind::settings, .columns = {{{"host", Form::host}}},
               .lastUsed = {"modificationTime", Time::millisecondsSince1970}},
    TraceTable{.name = "moz_origin_interactions", .kind = Kind::predictions, .columns = {{{"origin", Form::firefoxOrigin}}},
               .lastUsed = {"lastInteractionTime", Time::millisecondsSince1970}},
};

// Where the last download went is a note; zoom and the like are what the user decided.
constexpr std::string_view isNote =
    "groupID IS NOT NULL AND settingID IN (SELECT id FROM settings WHERE name LIKE 'browser.download.%' OR name LIKE 'browser.upload.%')";
constexpr std::string_view isNoNote =
    "groupID IS NOT NULL AND settingID NOT IN (SELECT id FROM settings WHERE name LIKE 'browser.download.%' OR name LIKE 'browser.upload.%')";
constexpr TableRelation ofGroup{"groupID", "groups", "id", {"name", Form::hostOrAddress}};

constexpr std::array preferenceTables{
    TraceTable{.name = "prefs", .kind = Kind::predictions, .lastUsed = {"timestamp", Time::secondsSince1970}, .relation = ofGroup,
               .condition = isNote},
    TraceTable{.name = "prefs", .kind = Kind::settings, .lastUsed = {"timestamp", Time::secondsSince1970}, .relation = ofGroup,
               .condition = isNoNote},
    TraceTable{.name = "prefs", .kind = Kind::predictions, .rule = Rule::orphans, .relation = ofGroup},
    TraceTable{.name = "groups", .kind = Kind::predictions, .columns = {{{"name", Form::hostOrAddress}}},
               .condition = "id NOT IN (SELECT groupID FROM prefs WHERE groupID IS NOT NULL)"},
    TraceTable{.name = "groups", .kind = Kind::settings, .columns = {{{"name", Form::hostOrAddress}}},
               .condition = "id NOT IN (SELECT groupID FROM prefs WHERE groupID IS NOT NULL)"},
};

constexpr std::array bounceTables{
    TraceTable{.name = "sites", .kind = Kind::networkState,
               .columns = {{{"siteHost", Form::host}, {"originAttributeSuffix", Form::originAttributes}}},
               .lastUsed = {"timeStamp", Time::microsecondsSince1970}},
};

constexpr std::array localStorageTables{
    TraceTable{.name = "webappsstore2", .kind = Kind::siteStorage, .columns = {{{"originKey", Form::reversedHost}, {"originAttributes", Form::originAttributes}}}},
};

// What the browser keeps for itself and for extensions has no host.
constexpr std::array originTables{
    TraceTable{.name = "origin", .kind = Kind::siteStorage,
               .columns = {{{"origin", Form::firefoxOrigin}, {"suffix", Form::originAttributes}}},
               .lastUsed = {"last_access_time", Time::microsecondsSince1970}, .condition = "origin LIKE 'http%'"},
};

constexpr std::array protectionTables{
    TraceTable{.name = "events", .kind = Kind::networkState, .rule = Rule::mixed, .meaning = "how many trackers were blocked on which day"},
};

constexpr std::array databases{
    FirefoxDatabase{"places.sqlite",                     placeTables},
    FirefoxDatabase{"favicons.sqlite",                   iconTables, true},
    FirefoxDatabase{"cookies.sqlite",                    cookieTables},
    FirefoxDatabase{"formhistory.sqlite",                formTables},
    FirefoxDatabase{"permissions.sqlite",                permissionTables},
    FirefoxDatabase{"content-prefs.sqlite",              preferenceTables},
    FirefoxDatabase{"bounce-tracking-protection.sqlite", bounceTables},
    FirefoxDatabase{"webappsstore.sqlite",               localStorageTables},
    FirefoxDatabase{"storage.sqlite",                    originTables},
    FirefoxDatabase{"protections.sqlite",                protectionTables},
};
// clang-format on

}  // namespace

std::span<const FirefoxDatabase> firefoxDatabases() noexcept {
    return databases;
}

TraceStores firefoxDatabaseStores(const std::filesystem::path& profileFolder,
                                  const std::shared_ptr<const FileManager>& fileManager) {
    TraceStores stores;
    for (const FirefoxDatabase& row : databases) {
        TraceDatabase database{profileFolder / row.file, row.tables};
        if (row.keepsHeldPlaces) {
            database.protectedAddresses = [profileFolder, fileManager] {
                return heldPlaces(profileFolder / "places.sqlite", fileManager);
            };
        }
        stores.push_back(std::make_shared<DatabaseTraceStore>(std::move(database), fileManager));
    }
    return stores;
}

}  // namespace browsersweep
