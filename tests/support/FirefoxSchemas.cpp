#include "tests/support/FirefoxSchemas.h"

#include <map>
#include <string>

namespace browsersweep::tests {
namespace {

// As Firefox 153 makes them.
const std::map<std::string, std::string> schemas{
    {"places.sqlite", R"sql(
PRAGMA page_size = 32768;
PRAGMA journal_mode = WAL;
CREATE TABLE moz_origins ( id INTEGER PRIMARY KEY, prefix TEXT NOT NULL, host TEXT NOT NULL,
  frecency INTEGER NOT NULL, recalc_frecency INTEGER NOT NULL DEFAULT 0, alt_frecency INTEGER,
  recalc_alt_frecency INTEGER NOT NULL DEFAULT 0, block_until_ms INTEGER, block_pages_until_ms
  INTEGER, UNIQUE (prefix, host) );
CREATE TABLE moz_places ( id INTEGER PRIMARY KEY, url LONGVARCHAR, title LONGVARCHAR, rev_host
  LONGVARCHAR, visit_count INTEGER DEFAULT 0, hidden INTEGER DEFAULT 0 NOT NULL, typed INTEGER
  DEFAULT 0 NOT NULL, frecency INTEGER DEFAULT -1 NOT NULL, last_visit_date INTEGER , guid TEXT,
  foreign_count INTEGER DEFAULT 0 NOT NULL, url_hash INTEGER DEFAULT 0 NOT NULL , description
  TEXT, preview_image_url TEXT, site_name TEXT, origin_id INTEGER REFERENCES moz_origins(id),
  recalc_frecency INTEGER NOT NULL DEFAULT 0, alt_frecency INTEGER, recalc_alt_frecency INTEGER
  NOT NULL DEFAULT 0);
CREATE TABLE moz_places_extra ( place_id INTEGER PRIMARY KEY NOT NULL, sync_json TEXT, FOREIGN
  KEY (place_id) REFERENCES moz_places(id) ON DELETE CASCADE );
CREATE TABLE moz_historyvisits ( id INTEGER PRIMARY KEY, from_visit INTEGER, place_id INTEGER,
  visit_date INTEGER, visit_type INTEGER, session INTEGER, source INTEGER DEFAULT 0 NOT NULL,
  triggeringPlaceId INTEGER);
CREATE TABLE moz_historyvisits_extra ( visit_id INTEGER PRIMARY KEY NOT NULL, sync_json TEXT,
  FOREIGN KEY (visit_id) REFERENCES moz_historyvisits(id) ON DELETE CASCADE);
CREATE TABLE moz_inputhistory ( place_id INTEGER NOT NULL, input LONGVARCHAR NOT NULL, use_count
  INTEGER, PRIMARY KEY (place_id, input));
CREATE TABLE moz_bookmarks ( id INTEGER PRIMARY KEY, type INTEGER, fk INTEGER DEFAULT NULL,
  parent INTEGER, position INTEGER, title LONGVARCHAR, keyword_id INTEGER, folder_type TEXT,
  dateAdded INTEGER, lastModified INTEGER, guid TEXT, syncStatus INTEGER NOT NULL DEFAULT 0,
  syncChangeCounter INTEGER NOT NULL DEFAULT 1);
CREATE TABLE moz_bookmarks_deleted ( guid TEXT PRIMARY KEY, dateRemoved INTEGER NOT NULL DEFAULT
  0);
CREATE TABLE moz_keywords ( id INTEGER PRIMARY KEY AUTOINCREMENT, keyword TEXT UNIQUE, place_id
  INTEGER, post_data TEXT);
CREATE TABLE moz_anno_attributes ( id INTEGER PRIMARY KEY, name VARCHAR(32) UNIQUE NOT NULL);
CREATE TABLE moz_annos ( id INTEGER PRIMARY KEY, place_id INTEGER NOT NULL, anno_attribute_id
  INTEGER, content LONGVARCHAR, flags INTEGER DEFAULT 0, expiration INTEGER DEFAULT 0, type
  INTEGER DEFAULT 0, dateAdded INTEGER DEFAULT 0, lastModified INTEGER DEFAULT 0);
CREATE TABLE moz_items_annos ( id INTEGER PRIMARY KEY, item_id INTEGER NOT NULL,
  anno_attribute_id INTEGER, content LONGVARCHAR, flags INTEGER DEFAULT 0, expiration INTEGER
  DEFAULT 0, type INTEGER DEFAULT 0, dateAdded INTEGER DEFAULT 0, lastModified INTEGER DEFAULT
  0);
CREATE TABLE moz_meta (key TEXT PRIMARY KEY, value NOT NULL) WITHOUT ROWID;
CREATE TABLE moz_places_metadata (id INTEGER PRIMARY KEY, place_id INTEGER NOT NULL,
  referrer_place_id INTEGER, created_at INTEGER NOT NULL DEFAULT 0, updated_at INTEGER NOT NULL
  DEFAULT 0, total_view_time INTEGER NOT NULL DEFAULT 0, typing_time INTEGER NOT NULL DEFAULT 0,
  key_presses INTEGER NOT NULL DEFAULT 0, scrolling_time INTEGER NOT NULL DEFAULT 0,
  scrolling_distance INTEGER NOT NULL DEFAULT 0, document_type INTEGER NOT NULL DEFAULT 0,
  search_query_id INTEGER, FOREIGN KEY (place_id) REFERENCES moz_places(id) ON DELETE CASCADE,
  FOREIGN KEY (referrer_place_id) REFERENCES moz_places(id) ON DELETE CASCADE, FOREIGN
  KEY(search_query_id) REFERENCES moz_places_metadata_search_queries(id) ON DELETE CASCADE
  CHECK(place_id != referrer_place_id) );
CREATE TABLE moz_places_metadata_search_queries ( id INTEGER PRIMARY KEY, terms TEXT NOT NULL
  UNIQUE );
CREATE TABLE moz_previews_tombstones ( hash TEXT PRIMARY KEY ) WITHOUT ROWID;
CREATE TABLE moz_newtab_story_click ( feature TEXT NOT NULL, timestamp_s INTEGER NOT NULL,
  card_format_enum INTEGER NOT NULL, position INTEGER NOT NULL, section_position INTEGER NOT
  NULL, feature_value REAL NOT NULL DEFAULT 1 );
CREATE TABLE moz_newtab_story_impression ( feature TEXT NOT NULL, timestamp_s INTEGER NOT NULL,
  card_format_enum INTEGER NOT NULL, position INTEGER NOT NULL, section_position INTEGER NOT
  NULL, feature_value REAL NOT NULL DEFAULT 1 );
CREATE TABLE moz_newtab_shortcuts_interaction ( id INTEGER PRIMARY KEY, place_id INTEGER NOT
  NULL REFERENCES moz_places(id) ON DELETE CASCADE, event_type INTEGER NOT NULL, timestamp_s
  INTEGER NOT NULL, pinned INTEGER NOT NULL CHECK (pinned IN (0, 1)), tile_position INTEGER NOT
  NULL);
CREATE INDEX moz_places_url_hashindex ON moz_places (url_hash);
CREATE INDEX moz_places_hostindex ON moz_places (rev_host);
CREATE INDEX moz_places_visitcount ON moz_places (visit_count);
CREATE INDEX moz_places_frecencyindex ON moz_places (frecency);
CREATE INDEX moz_places_lastvisitdateindex ON moz_places (last_visit_date);
CREATE UNIQUE INDEX moz_places_guid_uniqueindex ON moz_places (guid);
CREATE INDEX moz_places_originidindex ON moz_places (origin_id);
CREATE INDEX moz_places_altfrecencyindex ON moz_places (alt_frecency);
CREATE INDEX moz_historyvisits_placedateindex ON moz_historyvisits (place_id, visit_date);
CREATE INDEX moz_historyvisits_fromindex ON moz_historyvisits (from_visit);
CREATE INDEX moz_historyvisits_dateindex ON moz_historyvisits (visit_date);
CREATE INDEX moz_bookmarks_itemindex ON moz_bookmarks (fk, type);
CREATE INDEX moz_bookmarks_parentindex ON moz_bookmarks (parent, position);
CREATE INDEX moz_bookmarks_itemlastmodifiedindex ON moz_bookmarks (fk, lastModified);
CREATE INDEX moz_bookmarks_dateaddedindex ON moz_bookmarks (dateAdded);
CREATE UNIQUE INDEX moz_bookmarks_guid_uniqueindex ON moz_bookmarks (guid);
CREATE UNIQUE INDEX moz_keywords_placepostdata_uniqueindex ON moz_keywords (place_id, post_data);
CREATE UNIQUE INDEX moz_annos_placeattributeindex ON moz_annos (place_id, anno_attribute_id);
CREATE UNIQUE INDEX moz_items_annos_itemattributeindex ON moz_items_annos (item_id,
  anno_attribute_id);
CREATE UNIQUE INDEX moz_places_metadata_placecreated_uniqueindex ON moz_places_metadata
  (place_id, created_at);
CREATE INDEX moz_places_metadata_referrerindex ON moz_places_metadata (referrer_place_id);
CREATE INDEX moz_newtab_story_click_newtab_click_timestampindex ON moz_newtab_story_click
  (timestamp_s);
CREATE INDEX moz_newtab_story_impression_newtab_impression_timestampindex ON
  moz_newtab_story_impression (timestamp_s);
CREATE INDEX moz_newtab_shortcuts_interaction_timestampindex ON moz_newtab_shortcuts_interaction
  (timestamp_s);
CREATE INDEX moz_newtab_shortcuts_interaction_placeidindex ON moz_newtab_shortcuts_interaction
  (place_id);
)sql"},
    {"favicons.sqlite", R"sql(
PRAGMA page_size = 32768;
PRAGMA auto_vacuum = 2;
PRAGMA journal_mode = WAL;
CREATE TABLE moz_icons ( id INTEGER PRIMARY KEY, icon_url TEXT NOT NULL, fixed_icon_url_hash
  INTEGER NOT NULL, width INTEGER NOT NULL DEFAULT 0, root INTEGER NOT NULL DEFAULT 0, color
  INTEGER, expire_ms INTEGER NOT NULL DEFAULT 0, flags INTEGER NOT NULL DEFAULT 0, data BLOB );
CREATE TABLE moz_pages_w_icons ( id INTEGER PRIMARY KEY, page_url TEXT NOT NULL, page_url_hash
  INTEGER NOT NULL );
CREATE TABLE moz_icons_to_pages ( page_id INTEGER NOT NULL, icon_id INTEGER NOT NULL, expire_ms
  INTEGER NOT NULL DEFAULT 0, PRIMARY KEY (page_id, icon_id), FOREIGN KEY (page_id) REFERENCES
  moz_pages_w_icons ON DELETE CASCADE, FOREIGN KEY (icon_id) REFERENCES moz_icons ON DELETE
  CASCADE ) WITHOUT ROWID;
CREATE INDEX moz_icons_iconurlhashindex ON moz_icons (fixed_icon_url_hash);
CREATE INDEX moz_pages_w_icons_urlhashindex ON moz_pages_w_icons (page_url_hash);
)sql"},
    {"cookies.sqlite", R"sql(
PRAGMA page_size = 32768;
PRAGMA journal_mode = WAL;
CREATE TABLE moz_cookies (id INTEGER PRIMARY KEY, originAttributes TEXT NOT NULL DEFAULT '',
  name TEXT, value TEXT, host TEXT, path TEXT, expiry INTEGER, lastAccessed INTEGER,
  creationTime INTEGER, isSecure INTEGER, isHttpOnly INTEGER, inBrowserElement INTEGER DEFAULT
  0, sameSite INTEGER DEFAULT 0, schemeMap INTEGER DEFAULT 0, isPartitionedAttributeSet INTEGER
  DEFAULT 0, updateTime INTEGER, CONSTRAINT moz_uniqueid UNIQUE (name, host, path,
  originAttributes));
)sql"},
    {"formhistory.sqlite", R"sql(
PRAGMA page_size = 32768;
CREATE TABLE moz_formhistory ( id INTEGER PRIMARY KEY, fieldname TEXT NOT NULL, value TEXT NOT
  NULL, timesUsed INTEGER, firstUsed INTEGER, lastUsed INTEGER, guid TEXT );
CREATE TABLE moz_deleted_formhistory ( id INTEGER PRIMARY KEY, timeDeleted INTEGER, guid TEXT );
CREATE TABLE moz_sources ( id INTEGER PRIMARY KEY, source TEXT NOT NULL );
CREATE TABLE moz_history_to_sources ( history_id INTEGER, source_id INTEGER , PRIMARY KEY
  (history_id, source_id), FOREIGN KEY (history_id) REFERENCES moz_formhistory(id) ON DELETE
  CASCADE, FOREIGN KEY (source_id) REFERENCES moz_sources(id) ON DELETE CASCADE ) WITHOUT ROWID;
CREATE INDEX moz_formhistory_index ON moz_formhistory(fieldname);
CREATE INDEX moz_formhistory_lastused_index ON moz_formhistory(lastUsed);
CREATE INDEX moz_formhistory_guid_index ON moz_formhistory(guid);
)sql"},
    {"permissions.sqlite", R"sql(
PRAGMA page_size = 32768;
CREATE TABLE moz_perms ( id INTEGER PRIMARY KEY,origin TEXT,type TEXT,permission
  INTEGER,expireType INTEGER,expireTime INTEGER,modificationTime INTEGER);
CREATE TABLE moz_hosts ( id INTEGER PRIMARY KEY,host TEXT,type TEXT,permission
  INTEGER,expireType INTEGER,expireTime INTEGER,modificationTime INTEGER,isInBrowserElement
  INTEGER);
CREATE TABLE moz_origin_interactions ( origin TEXT PRIMARY KEY,lastInteractionTime INTEGER);
)sql"},
    {"content-prefs.sqlite", R"sql(
PRAGMA page_size = 32768;
PRAGMA auto_vacuum = 2;
CREATE TABLE groups (id INTEGER PRIMARY KEY, name TEXT NOT NULL);
CREATE TABLE settings (id INTEGER PRIMARY KEY, name TEXT NOT NULL);
CREATE TABLE prefs (id INTEGER PRIMARY KEY, groupID INTEGER REFERENCES groups(id), settingID
  INTEGER NOT NULL REFERENCES settings(id), value BLOB, timestamp INTEGER NOT NULL DEFAULT 0);
CREATE INDEX groups_idx ON groups(name);
CREATE INDEX settings_idx ON settings(name);
CREATE INDEX prefs_idx ON prefs(timestamp, groupID, settingID);
)sql"},
    {"bounce-tracking-protection.sqlite", R"sql(
PRAGMA page_size = 32768;
CREATE TABLE sites (originAttributeSuffix TEXT NOT NULL,siteHost TEXT NOT NULL, entryType
  INTEGER NOT NULL, timeStamp INTEGER NOT NULL, PRIMARY KEY (originAttributeSuffix, siteHost));
)sql"},
    {"webappsstore.sqlite", R"sql(
PRAGMA page_size = 32768;
PRAGMA journal_mode = WAL;
CREATE TABLE webappsstore2 (originAttributes TEXT, originKey TEXT, scope TEXT, key TEXT, value
  TEXT);
CREATE UNIQUE INDEX origin_key_index ON webappsstore2(originAttributes, originKey, key);
)sql"},
    {"storage.sqlite", R"sql(
PRAGMA page_size = 512;
CREATE TABLE database( cache_version INTEGER NOT NULL DEFAULT 0);
CREATE TABLE cache( valid INTEGER NOT NULL DEFAULT 0, build_id TEXT NOT NULL DEFAULT '');
CREATE TABLE repository( id INTEGER PRIMARY KEY, name TEXT NOT NULL);
CREATE TABLE origin( repository_id INTEGER NOT NULL, suffix TEXT, group_ TEXT NOT NULL, origin
  TEXT NOT NULL, client_usages TEXT NOT NULL, usage INTEGER NOT NULL, last_access_time INTEGER
  NOT NULL, last_maintenance_date INTEGER NOT NULL, accessed INTEGER NOT NULL, persisted INTEGER
  NOT NULL, PRIMARY KEY (repository_id, origin), FOREIGN KEY (repository_id) REFERENCES
  repository(id) );
)sql"},
    {"protections.sqlite", R"sql(
PRAGMA page_size = 32768;
CREATE TABLE events (id INTEGER PRIMARY KEY, type INTEGER NOT NULL, count INTEGER NOT NULL,
  timestamp DATE );
)sql"},
};

}  // namespace

Database makeFirefoxDatabase(const std::filesystem::path& folder, const std::string& file) {
    Database database(folder / file);
    database.execute(schemas.at(file));
    return database;
}

}  // namespace browsersweep::tests
