#include "tests/support/SafariSchemas.h"

#include <map>
#include <string>

namespace browsersweep::tests {
namespace {

// Those of WebKit as WebKitGTK 2.50 makes them, the others as published of Safari 27 and of earlier
// versions. What a rule needs not know of a table is left out where only its columns are published,
// and so are triggers, which would run while a test plants its rows.
const std::map<std::string, std::string> schemas{
    {"History.db", R"sql(
PRAGMA journal_mode = WAL;
CREATE TABLE history_items (id INTEGER PRIMARY KEY AUTOINCREMENT, url TEXT NOT NULL UNIQUE,
  domain_expansion TEXT NULL, visit_count INTEGER NOT NULL, daily_visit_counts BLOB NOT NULL,
  weekly_visit_counts BLOB NULL, autocomplete_triggers BLOB NULL,
  should_recompute_derived_visit_counts INTEGER NOT NULL, visit_count_score INTEGER NOT NULL,
  status_code INTEGER NOT NULL DEFAULT 0);
CREATE TABLE history_visits (id INTEGER PRIMARY KEY AUTOINCREMENT, history_item INTEGER NOT NULL
  REFERENCES history_items(id) ON DELETE CASCADE, visit_time REAL NOT NULL, title TEXT NULL,
  load_successful BOOLEAN NOT NULL DEFAULT 1, http_non_get BOOLEAN NOT NULL DEFAULT 0, synthesized
  BOOLEAN NOT NULL DEFAULT 0, redirect_source INTEGER NULL UNIQUE REFERENCES history_visits(id) ON
  DELETE CASCADE, redirect_destination INTEGER NULL UNIQUE REFERENCES history_visits(id) ON DELETE
  CASCADE, origin INTEGER NOT NULL DEFAULT 0, generation INTEGER NOT NULL DEFAULT 0, attributes
  INTEGER NOT NULL DEFAULT 0, score INTEGER NOT NULL DEFAULT 0);
CREATE INDEX history_visits__last_visit ON history_visits (history_item, visit_time DESC,
  synthesized ASC);
CREATE TABLE history_tombstones (id INTEGER PRIMARY KEY AUTOINCREMENT, start_time REAL NOT NULL,
  end_time REAL NOT NULL, url TEXT, generation INTEGER NOT NULL DEFAULT 0, udid TEXT, attributes
  INTEGER NOT NULL DEFAULT 0);
CREATE TABLE metadata (key TEXT NOT NULL UNIQUE, value);
CREATE TABLE history_client_versions (client_version INTEGER PRIMARY KEY, last_seen REAL NOT NULL);
CREATE TABLE history_event_listeners (listener_name TEXT PRIMARY KEY NOT NULL UNIQUE, last_seen
  REAL NOT NULL);
CREATE TABLE history_events (id INTEGER PRIMARY KEY AUTOINCREMENT, event_type TEXT NOT NULL,
  event_time REAL NOT NULL, pending_listeners TEXT NOT NULL, value BLOB);
CREATE TABLE history_tags (id INTEGER PRIMARY KEY, type INTEGER NOT NULL, level INTEGER NOT NULL,
  identifier TEXT NOT NULL, title TEXT NOT NULL, modification_timestamp REAL NOT NULL, item_count
  INTEGER NOT NULL DEFAULT 0);
CREATE TABLE history_items_to_tags (history_item INTEGER NOT NULL, tag_id INTEGER NOT NULL,
  timestamp REAL NOT NULL, FOREIGN KEY(tag_id) REFERENCES history_tags(id) ON DELETE CASCADE,
  FOREIGN KEY(history_item) REFERENCES history_items(id) ON DELETE CASCADE,
  UNIQUE(history_item, tag_id) ON CONFLICT REPLACE);
)sql"},
    {"favicons.db", R"sql(
PRAGMA journal_mode = WAL;
CREATE TABLE database_info (key TEXT, value TEXT);
CREATE TABLE page_url (url TEXT PRIMARY KEY, uuid TEXT NOT NULL);
CREATE TABLE icon_info (uuid TEXT PRIMARY KEY, url TEXT NOT NULL, timestamp REAL, width INTEGER,
  height INTEGER, has_generated_representations INTEGER);
CREATE TABLE rejected_resources (page_url TEXT NOT NULL, icon_url TEXT NOT NULL, timestamp REAL);
)sql"},
    {"TouchIconCacheSettings.db", R"sql(
CREATE TABLE cache_settings (host TEXT PRIMARY KEY, last_request_date REAL, icon_is_in_cache
  INTEGER, transparency_analysis_result INTEGER);
)sql"},
    {"PerSitePreferences.db", R"sql(
CREATE TABLE default_preferences (id INTEGER PRIMARY KEY, preference TEXT NOT NULL, default_value);
CREATE TABLE preference_values (id INTEGER PRIMARY KEY, domain TEXT NOT NULL, preference TEXT NOT
  NULL, preference_value, timestamp REAL);
)sql"},
    {"IgnoredSiriSuggestedSites.db", R"sql(
CREATE TABLE ignored_siri_suggested_sites (siriSuggestedSiteURL TEXT, query TEXT, timestamp REAL,
  visitedURL TEXT);
)sql"},
    {"StorageTracker.db", R"sql(
CREATE TABLE Origins (origin TEXT UNIQUE ON CONFLICT REPLACE, path TEXT);
)sql"},
    {"Databases.db", R"sql(
CREATE TABLE Origins (origin TEXT UNIQUE ON CONFLICT REPLACE, quota INTEGER NOT NULL ON CONFLICT
  FAIL);
CREATE TABLE Databases (guid INTEGER PRIMARY KEY AUTOINCREMENT, origin TEXT, name TEXT, displayName
  TEXT, estimatedSize INTEGER, path TEXT);
)sql"},
    {"observations.db", R"sql(
PRAGMA journal_mode = WAL;
CREATE TABLE ObservedDomains (domainID INTEGER PRIMARY KEY, registrableDomain TEXT NOT NULL UNIQUE
  ON CONFLICT FAIL, lastSeen REAL NOT NULL, hadUserInteraction INTEGER NOT NULL);
CREATE TABLE TopLevelDomains (topLevelDomainID INTEGER PRIMARY KEY);
CREATE TABLE StorageAccessUnderTopFrameDomains (domainID INTEGER NOT NULL, topLevelDomainID INTEGER
  NOT NULL);
CREATE TABLE TopFrameUniqueRedirectsTo (sourceDomainID INTEGER NOT NULL, toDomainID INTEGER NOT
  NULL);
CREATE TABLE TopFrameUniqueRedirectsToSinceSameSiteStrictEnforcement (sourceDomainID INTEGER NOT
  NULL, toDomainID INTEGER NOT NULL);
CREATE TABLE TopFrameUniqueRedirectsFrom (targetDomainID INTEGER NOT NULL, fromDomainID INTEGER NOT
  NULL);
CREATE TABLE TopFrameLinkDecorationsFrom (toDomainID INTEGER NOT NULL, lastUpdated REAL NOT NULL,
  fromDomainID INTEGER NOT NULL);
CREATE TABLE TopFrameLoadedThirdPartyScripts (topFrameDomainID INTEGER NOT NULL,
  subresourceDomainID INTEGER NOT NULL);
CREATE TABLE SubframeUnderTopFrameDomains (subFrameDomainID INTEGER NOT NULL, lastUpdated REAL NOT
  NULL, topFrameDomainID INTEGER NOT NULL);
CREATE TABLE SubresourceUnderTopFrameDomains (subresourceDomainID INTEGER NOT NULL, lastUpdated
  REAL NOT NULL, topFrameDomainID INTEGER NOT NULL);
CREATE TABLE SubresourceUniqueRedirectsTo (subresourceDomainID INTEGER NOT NULL, lastUpdated REAL
  NOT NULL, toDomainID INTEGER NOT NULL);
CREATE TABLE SubresourceUniqueRedirectsFrom (subresourceDomainID INTEGER NOT NULL, fromDomainID
  INTEGER NOT NULL);
CREATE TABLE OperatingDates (year INTEGER NOT NULL, month INTEGER NOT NULL, monthDay INTEGER NOT
  NULL);
)sql"},
    {"ServiceWorkerRegistrations-8.sqlite3", R"sql(
CREATE TABLE Records(key TEXT NOT NULL ON CONFLICT FAIL UNIQUE ON CONFLICT REPLACE, origin TEXT NOT
  NULL ON CONFLICT FAIL, scopeURL TEXT NOT NULL ON CONFLICT FAIL, topOrigin TEXT NOT NULL ON
  CONFLICT FAIL, lastUpdateCheckTime DOUBLE NOT NULL ON CONFLICT FAIL, updateViaCache TEXT NOT NULL
  ON CONFLICT FAIL, scriptURL TEXT NOT NULL ON CONFLICT FAIL, workerType TEXT NOT NULL ON CONFLICT
  FAIL);
)sql"},
    {"Cache.db", R"sql(
CREATE TABLE cfurl_cache_schema_version(schema_version INTEGER);
CREATE TABLE cfurl_cache_response(entry_ID INTEGER PRIMARY KEY AUTOINCREMENT UNIQUE, version
  INTEGER, hash_value INTEGER, storage_policy INTEGER, request_key TEXT UNIQUE, time_stamp NOT NULL
  DEFAULT CURRENT_TIMESTAMP, partition TEXT);
CREATE TABLE cfurl_cache_blob_data(entry_ID INTEGER PRIMARY KEY, response_object BLOB,
  request_object BLOB, proto_props BLOB, user_info BLOB);
CREATE TABLE cfurl_cache_receiver_data(entry_ID INTEGER PRIMARY KEY, isDataOnFS INTEGER,
  receiver_data BLOB);
)sql"},
    {"Metadata.db", R"sql(
CREATE TABLE snapshot_metadata (uuid TEXT PRIMARY KEY NOT NULL, date_created REAL DEFAULT 0,
  filename TEXT NOT NULL, url TEXT NOT NULL);
)sql"},
    {"SafariTabs.db", R"sql(
PRAGMA journal_mode = WAL;
CREATE TABLE bookmarks (id INTEGER PRIMARY KEY AUTOINCREMENT, special_id INTEGER DEFAULT 0, parent
  INTEGER, type INTEGER, title TEXT, url TEXT COLLATE NOCASE, num_children INTEGER DEFAULT 0,
  order_index INTEGER NOT NULL, external_uuid TEXT UNIQUE, extra_attributes BLOB DEFAULT NULL,
  local_attributes BLOB DEFAULT NULL, last_selected_child INTEGER DEFAULT NULL, subtype INTEGER
  DEFAULT 0, FOREIGN KEY (last_selected_child) REFERENCES bookmarks (id) ON DELETE SET NULL);
CREATE TABLE bookmark_title_words (id INTEGER PRIMARY KEY, bookmark_id INTEGER NOT NULL, word TEXT,
  word_index INTEGER);
CREATE TABLE windows (id INTEGER PRIMARY KEY, active_tab_group_id INTEGER DEFAULT NULL,
  extra_attributes BLOB DEFAULT NULL, uuid TEXT NOT NULL UNIQUE, restoration_archive BLOB DEFAULT
  NULL);
CREATE TABLE windows_tab_groups (id INTEGER PRIMARY KEY, active_tab_id INTEGER DEFAULT NULL,
  tab_group_id INTEGER NOT NULL, window_id INTEGER NOT NULL, FOREIGN KEY (active_tab_id) REFERENCES
  bookmarks (id) ON UPDATE CASCADE ON DELETE CASCADE, UNIQUE (tab_group_id, window_id));
CREATE TABLE session_state (uuid TEXT PRIMARY KEY, data BLOB);
CREATE TABLE settings (id INTEGER PRIMARY KEY, key TEXT NOT NULL, value NUMERIC NOT NULL);
CREATE TABLE sync_properties (key TEXT NOT NULL, value TEXT NOT NULL);
)sql"},
    {"CloudTabs.db", R"sql(
CREATE TABLE cloud_tab_devices (device_uuid TEXT PRIMARY KEY NOT NULL, system_fields BLOB NOT NULL,
  device_name TEXT, last_modified REAL NOT NULL);
CREATE TABLE cloud_tabs (tab_uuid TEXT PRIMARY KEY NOT NULL, system_fields BLOB NOT NULL,
  device_uuid TEXT NOT NULL, position BLOB NOT NULL, title TEXT, url TEXT NOT NULL,
  last_viewed_time REAL DEFAULT 0);
CREATE TABLE cloud_tab_close_requests (close_request_uuid TEXT PRIMARY KEY NOT NULL, system_fields
  BLOB NOT NULL, destination_device_uuid TEXT NOT NULL, url TEXT NOT NULL, tab_uuid TEXT NOT NULL);
CREATE TABLE metadata (key TEXT NOT NULL UNIQUE, value);
)sql"},
};

}  // namespace

Database makeSafariDatabase(const std::filesystem::path& path) {
    std::filesystem::create_directories(path.parent_path());
    Database database(path);
    database.execute(schemas.at(path.filename().string()));
    return database;
}

}  // namespace browsersweep::tests
