#include "browsersweep/traces/chromium/internal/ChromiumDatabases.h"

#include <array>
#include <utility>

#include "browsersweep/profiles/chromium/ChromiumBookmarks.h"
#include "browsersweep/traces/chromium/internal/ChromiumRowFiles.h"

namespace browsersweep {
namespace {

using Form = SiteForm;
using Kind = TraceKind;
using Rule = TableRule;
using Time = TimeForm;

// Rows go with the sites that their columns name; what refers to such a row stands below it, and
// goes after it. Tables of newer and of older versions stand side by side.
// clang-format off

// An address that came from another program: it names a site of its own beside the visited page's.
constexpr std::array referrerResets{ColumnReset{"external_referrer_url", "''"}};

constexpr std::array historyTables{
    TraceTable{.name = "urls", .columns = {{{"url"}}}, .lastUsed = {"last_visit_time"}},
    TraceTable{.name = "visits", .rule = Rule::orphans, .relation = {"url", "urls", "id", {}}},
    TraceTable{.name = "visits", .rule = Rule::resets, .columns = {{{"external_referrer_url"}}},
               .lastUsed = {"visit_time"}, .condition = "external_referrer_url <> ''", .resets = referrerResets},
    TraceTable{.name = "visit_source", .rule = Rule::orphans, .relation = {"id", "visits", "id", {}}},
    TraceTable{.name = "content_annotations", .rule = Rule::orphans, .relation = {"visit_id", "visits", "id", {}}},
    TraceTable{.name = "context_annotations", .rule = Rule::orphans, .relation = {"visit_id", "visits", "id", {}}},
    TraceTable{.name = "keyword_search_terms", .rule = Rule::orphans, .relation = {"url_id", "urls", "id", {}}},
    TraceTable{.name = "segments", .columns = {{{"name"}}}},
    TraceTable{.name = "segments", .rule = Rule::orphans, .relation = {"url_id", "urls", "id", {}}, .condition = "coalesce(name, '') NOT LIKE 'http%'"},
    TraceTable{.name = "segment_usage", .rule = Rule::orphans, .relation = {"segment_id", "segments", "id", {}}},
    TraceTable{.name = "visited_links", .columns = {{{"top_level_url"}, {"frame_url"}}}, .relation = {"link_url_id", "urls", "id", {"url"}}},
    TraceTable{.name = "visited_links", .rule = Rule::orphans, .relation = {"link_url_id", "urls", "id", {}}},
    TraceTable{.name = "clusters_and_visits", .columns = {{{"url_for_deduping"}, {"normalized_url"}}}},
    TraceTable{.name = "clusters_and_visits", .rule = Rule::orphans, .relation = {"visit_id", "visits", "id", {}}},
    TraceTable{.name = "cluster_visit_duplicates", .rule = Rule::orphans, .relation = {"visit_id", "visits", "id", {}}},
    TraceTable{.name = "cluster_visit_duplicates", .rule = Rule::orphans, .relation = {"duplicate_visit_id", "visits", "id", {}}},
    TraceTable{.name = "clusters", .rule = Rule::orphans, .relation = {"cluster_id", "clusters_and_visits", "cluster_id", {}}},
    TraceTable{.name = "cluster_keywords", .rule = Rule::orphans, .relation = {"cluster_id", "clusters", "cluster_id", {}}},
    TraceTable{.name = "journeys", .rule = Rule::mixed, .meaning = "summaries of browsing"},
    TraceTable{.name = "journey_history_entries", .rule = Rule::orphans, .relation = {"journey_id", "journeys", "journey_id", {}}},
    TraceTable{.name = "journey_continuation_queries", .rule = Rule::orphans, .relation = {"journey_id", "journeys", "journey_id", {}}},
    TraceTable{.name = "downloads", .kind = Kind::downloads, .columns = {{{"tab_url"}, {"site_url"}, {"referrer"}, {"tab_referrer_url"}}},
               .lastUsed = {"start_time"}, .relation = {"id", "downloads_url_chains", "id", {"url"}}},
    TraceTable{.name = "downloads_url_chains", .kind = Kind::downloads, .rule = Rule::orphans, .relation = {"id", "downloads", "id", {}}},
    TraceTable{.name = "downloads_slices", .kind = Kind::downloads, .rule = Rule::orphans, .relation = {"download_id", "downloads", "id", {}}},
};

// The icon of a page may lie on another site: it goes with either. A page that is kept keeps its
// icon; an icon's own site keeps no page of another one. An icon that no page has goes.
constexpr std::array iconTables{
    TraceTable{.name = "icon_mapping", .kind = Kind::icons, .columns = {{{"page_url"}}},
               .relation = {"icon_id", "favicons", "id", {"url"}, false}, .condition = "NOT isProtected(page_url)"},
    TraceTable{.name = "icon_mapping", .kind = Kind::icons, .rule = Rule::orphans, .relation = {"icon_id", "favicons", "id", {}},
               .condition = "NOT isProtected(page_url)"},
    TraceTable{.name = "favicons", .kind = Kind::icons, .columns = {{{"url"}}},
               .condition = "id NOT IN (SELECT icon_id FROM icon_mapping WHERE icon_id IS NOT NULL)"},
    TraceTable{.name = "favicons", .kind = Kind::icons, .rule = Rule::orphans, .relation = {"id", "icon_mapping", "icon_id", {}}},
    TraceTable{.name = "favicon_bitmaps", .kind = Kind::icons, .rule = Rule::orphans, .relation = {"icon_id", "favicons", "id", {}}},
};

constexpr std::array predictionTables{
    TraceTable{.name = "network_action_predictor", .kind = Kind::predictions, .columns = {{{"url"}}}},
    TraceTable{.name = "resource_prefetch_predictor_url", .kind = Kind::predictions,
               .columns = {{{"key", Form::hostOrAddress}, {"proto", Form::message}}}},
    TraceTable{.name = "resource_prefetch_predictor_url_redirect", .kind = Kind::predictions,
               .columns = {{{"key", Form::hostOrAddress}, {"proto", Form::message}}}},
    TraceTable{.name = "resource_prefetch_predictor_host", .kind = Kind::predictions,
               .columns = {{{"key", Form::hostOrAddress}, {"proto", Form::message}}}},
    TraceTable{.name = "resource_prefetch_predictor_host_redirect", .kind = Kind::predictions,
               .columns = {{{"key", Form::hostOrAddress}, {"proto", Form::message}}}},
    TraceTable{.name = "resource_prefetch_predictor_manifest", .kind = Kind::predictions,
               .columns = {{{"key", Form::hostOrAddress}, {"proto", Form::message}}}},
    TraceTable{.name = "resource_prefetch_predictor_origin", .kind = Kind::predictions,
               .columns = {{{"key", Form::hostOrAddress}, {"proto", Form::message}}}},
    TraceTable{.name = "lcp_critical_path_predictor", .kind = Kind::predictions,
               .columns = {{{"key", Form::hostOrAddress}, {"proto", Form::message}}}},
    TraceTable{.name = "lcp_critical_path_predictor_initiator_origin", .kind = Kind::predictions,
               .columns = {{{"key", Form::hostOrAddress}, {"proto", Form::message}}}},
};

constexpr std::array topSiteTables{
    TraceTable{.name = "top_sites", .kind = Kind::history, .columns = {{{"url"}}}},
    TraceTable{.name = "thumbnails", .kind = Kind::history, .columns = {{{"url"}}}, .lastUsed = {"last_updated"}},
};

constexpr std::array shortcutTables{
    TraceTable{.name = "omni_box_shortcuts", .kind = Kind::predictions, .columns = {{{"url"}}}, .lastUsed = {"last_access_time"}},
};

constexpr std::array cookieTables{
    TraceTable{.name = "cookies", .kind = Kind::cookies, .columns = {{{"host_key", Form::host}, {"top_frame_site_key"}}},
               .lastUsed = {"last_access_utc"}},
};

constexpr std::array formTables{
    TraceTable{.name = "autofill", .kind = Kind::formData, .rule = Rule::mixed, .meaning = "text typed into forms"},
    TraceTable{.name = "autocomplete", .kind = Kind::formData, .rule = Rule::mixed, .meaning = "text typed into forms"},
};

constexpr std::array bounceTables{
    TraceTable{.name = "bounces", .kind = Kind::networkState, .columns = {{{"site", Form::host}}}, .lastUsed = {"last_user_activation_time"}},
    TraceTable{.name = "popups", .kind = Kind::networkState,
               .columns = {{{"opener_site", Form::host}, {"popup_site", Form::host}}}, .lastUsed = {"last_popup_time"}},
};

constexpr std::array reportingTables{
    TraceTable{.name = "nel_policies", .kind = Kind::networkState, .columns = {{{"origin_host", Form::host}, {"nik", Form::networkKey}}},
               .lastUsed = {"last_access_us_since_epoch"}},
    TraceTable{.name = "reporting_endpoints", .kind = Kind::networkState,
               .columns = {{{"origin_host", Form::host}, {"nik", Form::networkKey}, {"url"}}}},
    TraceTable{.name = "reporting_endpoint_groups", .kind = Kind::networkState,
               .columns = {{{"origin_host", Form::host}, {"nik", Form::networkKey}}}, .lastUsed = {"last_access_us_since_epoch"}},
};

constexpr std::array tokenTables{
    TraceTable{.name = "trust_tokens_issuer_config", .kind = Kind::networkState,
               .columns = {{{"key", Form::networkKey}, {"proto", Form::message}}}},
    TraceTable{.name = "trust_tokens_toplevel_config", .kind = Kind::networkState,
               .columns = {{{"key", Form::networkKey}, {"proto", Form::message}}}},
    TraceTable{.name = "trust_tokens_issuer_toplevel_pair_config", .kind = Kind::networkState,
               .columns = {{{"key", Form::networkKey}, {"proto", Form::message}}}},
};

constexpr std::array heavyAdTables{
    TraceTable{.name = "previews_v1", .kind = Kind::networkState, .columns = {{{"host_name", Form::host}}}, .lastUsed = {"time"}},
};

constexpr std::array performanceTables{
    TraceTable{.name = "declarative_performance_observer_policies", .kind = Kind::networkState, .columns = {{{"origin"}}},
               .lastUsed = {"created_at"}},
    TraceTable{.name = "declarative_performance_observer_reports", .kind = Kind::networkState, .columns = {{{"origin"}}},
               .lastUsed = {"created_at"}},
};

// What extensions store belongs to them.
constexpr std::array quotaTables{
    TraceTable{.name = "buckets", .kind = Kind::siteStorage, .columns = {{{"storage_key", Form::storageKey}}},
               .lastUsed = {"last_accessed"}, .condition = "storage_key NOT LIKE 'chrome%'"},
    TraceTable{.name = "quota", .kind = Kind::siteStorage, .columns = {{{"host", Form::host}}}},
    TraceTable{.name = "eviction_info", .kind = Kind::siteStorage, .columns = {{{"origin"}}},
               .condition = "origin NOT LIKE 'chrome%'"},
};

constexpr std::array dictionaryTables{
    TraceTable{.name = "dictionaries", .kind = Kind::cachedFiles,
               .columns = {{{"frame_origin"}, {"top_frame_site"}, {"host", Form::hostOrAddress}, {"url"}}}, .lastUsed = {"last_used_time"}},
};

constexpr std::array metricTables{
    TraceTable{.name = "urls", .columns = {{{"url"}}}, .lastUsed = {"last_timestamp"}},
    TraceTable{.name = "metrics", .rule = Rule::orphans, .relation = {"url_id", "urls", "url_id", {}}},
};

// Some of the files lie in a folder of their own where the browser confines its network service.
constexpr std::array databases{
    ChromiumDatabase{"History",                           historyTables},
    ChromiumDatabase{"Favicons",                          iconTables, {}, true},
    ChromiumDatabase{"Network Action Predictor",          predictionTables},
    ChromiumDatabase{"Top Sites",                         topSiteTables},
    ChromiumDatabase{"Shortcuts",                         shortcutTables},
    ChromiumDatabase{"Cookies",                           cookieTables},
    ChromiumDatabase{"Network/Cookies",                   cookieTables},
    ChromiumDatabase{"Web Data",                          formTables},
    ChromiumDatabase{"Account Web Data",                  formTables},
    ChromiumDatabase{"DIPS",                              bounceTables},
    ChromiumDatabase{"Reporting and NEL",                 reportingTables},
    ChromiumDatabase{"Network/Reporting and NEL",         reportingTables},
    ChromiumDatabase{"Trust Tokens",                      tokenTables},
    ChromiumDatabase{"Network/Trust Tokens",              tokenTables},
    ChromiumDatabase{"heavy_ad_intervention_opt_out.db",  heavyAdTables},
    ChromiumDatabase{"declarative_performance_observer.db", performanceTables},
    ChromiumDatabase{"WebStorage/QuotaManager",           quotaTables, bucketFolders},
    ChromiumDatabase{"Shared Dictionary/db",              dictionaryTables, dictionaryEntries},
};

constexpr std::array sharedDatabases{
    ChromiumDatabase{"segmentation_platform/ukm_db",      metricTables},
};
// clang-format on

using Bookmarks = ChromiumBookmarks;

/** The files of bookmarks: of the profile, and of the account that is signed in. */
constexpr std::array<std::string_view, 2> bookmarkFiles{"Bookmarks", "AccountBookmarks"};

// An icon that was kept too much is better than bookmarks without icons, so an error of reading
// them is passed on: nothing goes then.
ProtectedAddresses bookmarkedAddresses(const std::filesystem::path& profileFolder,
                                       const FileManager& fileManager) {
    ProtectedAddresses addresses;
    for (const std::string_view name : bookmarkFiles) {
        const std::filesystem::path file = profileFolder / name;
        if (fileManager.fileExists(file).isFile()) {
            for (const auto& bookmark : Bookmarks::decode(fileManager.contents(file)).bookmarks()) {
                addresses.insert(bookmark.url.absoluteString());
            }
        }
    }
    return addresses;
}

TraceStores storesOf(std::span<const ChromiumDatabase> rows, const std::filesystem::path& folder,
                     const std::shared_ptr<const FileManager>& fileManager) {
    TraceStores stores;
    for (const ChromiumDatabase& row : rows) {
        TraceDatabase database{folder / row.file, row.tables, {}, row.files};
        if (row.keepsBookmarked) {
            database.protectedAddresses = [folder, fileManager] {
                return bookmarkedAddresses(folder, *fileManager);
            };
        }
        stores.push_back(std::make_shared<DatabaseTraceStore>(std::move(database), fileManager));
    }
    return stores;
}

}  // namespace

std::span<const ChromiumDatabase> chromiumDatabases() noexcept {
    return databases;
}

std::span<const ChromiumDatabase> sharedChromiumDatabases() noexcept {
    return sharedDatabases;
}

TraceStores databaseStores(const std::filesystem::path& profileFolder,
                           const std::shared_ptr<const FileManager>& fileManager) {
    return storesOf(databases, profileFolder, fileManager);
}

TraceStores sharedDatabaseStores(const std::filesystem::path& browserFolder,
                                 const std::shared_ptr<const FileManager>& fileManager) {
    return storesOf(sharedDatabases, browserFolder, fileManager);
}

}  // namespace browsersweep
