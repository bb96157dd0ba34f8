#include "tests/support/FirefoxDatabases.h"

namespace browsersweep::tests {
namespace {

constexpr const char* placesSchema = R"(
PRAGMA page_size = 32768;
CREATE TABLE moz_origins (id INTEGER PRIMARY KEY, prefix TEXT NOT NULL, host TEXT NOT NULL,
    frecency INTEGER NOT NULL, recalc_frecency INTEGER NOT NULL DEFAULT 0, alt_frecency INTEGER,
    recalc_alt_frecency INTEGER NOT NULL DEFAULT 0, UNIQUE (prefix, host));
CREATE TABLE moz_places (id INTEGER PRIMARY KEY, url LONGVARCHAR, title LONGVARCHAR,
    rev_host LONGVARCHAR, visit_count INTEGER DEFAULT 0, hidden INTEGER DEFAULT 0 NOT NULL,
    typed INTEGER DEFAULT 0 NOT NULL, frecency INTEGER DEFAULT -1 NOT NULL,
    last_visit_date INTEGER, guid TEXT, foreign_count INTEGER DEFAULT 0 NOT NULL,
    url_hash INTEGER DEFAULT 0 NOT NULL, description TEXT, preview_image_url TEXT, site_name TEXT,
    origin_id INTEGER REFERENCES moz_origins(id), recalc_frecency INTEGER NOT NULL DEFAULT 0,
    alt_frecency INTEGER, recalc_alt_frecency INTEGER NOT NULL DEFAULT 0);
CREATE TABLE moz_historyvisits (id INTEGER PRIMARY KEY, from_visit INTEGER, place_id INTEGER,
    visit_date INTEGER, visit_type INTEGER, session INTEGER, source INTEGER DEFAULT 0 NOT NULL,
    triggeringPlaceId INTEGER);
CREATE TABLE moz_inputhistory (place_id INTEGER NOT NULL, input LONGVARCHAR NOT NULL,
    use_count INTEGER, PRIMARY KEY (place_id, input));
CREATE TABLE moz_bookmarks (id INTEGER PRIMARY KEY, type INTEGER, fk INTEGER DEFAULT NULL,
    parent INTEGER, position INTEGER, title LONGVARCHAR, keyword_id INTEGER, folder_type TEXT,
    dateAdded INTEGER, lastModified INTEGER, guid TEXT, syncStatus INTEGER NOT NULL DEFAULT 0,
    syncChangeCounter INTEGER NOT NULL DEFAULT 1);
CREATE TABLE moz_keywords (id INTEGER PRIMARY KEY AUTOINCREMENT, keyword TEXT UNIQUE,
    place_id INTEGER, post_data TEXT);
CREATE INDEX moz_places_hostindex ON moz_places (rev_host);
CREATE INDEX moz_places_lastvisitdateindex ON moz_places (last_visit_date);
CREATE UNIQUE INDEX moz_places_guid_uniqueindex ON moz_places (guid);
CREATE INDEX moz_historyvisits_placedateindex ON moz_historyvisits (place_id, visit_date);
CREATE INDEX moz_historyvisits_dateindex ON moz_historyvisits (visit_date);
CREATE INDEX moz_bookmarks_itemindex ON moz_bookmarks (fk, type);
CREATE UNIQUE INDEX moz_keywords_placepostdata_uniqueindex ON moz_keywords (place_id, post_data);
PRAGMA user_version = 77;
)";

constexpr const char* cookiesSchema = R"(
CREATE TABLE moz_cookies (id INTEGER PRIMARY KEY, originAttributes TEXT NOT NULL DEFAULT '',
    name TEXT, value TEXT, host TEXT, path TEXT, expiry INTEGER, lastAccessed INTEGER,
    creationTime INTEGER, isSecure INTEGER, isHttpOnly INTEGER,
    inBrowserElement INTEGER DEFAULT 0, sameSite INTEGER DEFAULT 0, schemeMap INTEGER DEFAULT 0,
    isPartitionedAttributeSet INTEGER DEFAULT 0,
    CONSTRAINT moz_uniqueid UNIQUE (name, host, path, originAttributes));
PRAGMA user_version = 15;
)";

constexpr const char* formHistorySchema = R"(
CREATE TABLE moz_formhistory (id INTEGER PRIMARY KEY, fieldname TEXT NOT NULL, value TEXT NOT NULL,
    timesUsed INTEGER, firstUsed INTEGER, lastUsed INTEGER, guid TEXT);
CREATE TABLE moz_deleted_formhistory (id INTEGER PRIMARY KEY, timeDeleted INTEGER, guid TEXT);
CREATE INDEX moz_formhistory_index ON moz_formhistory (fieldname);
CREATE UNIQUE INDEX moz_formhistory_guid_index ON moz_formhistory (guid);
PRAGMA user_version = 5;
)";

constexpr const char* webAppsStoreSchema = R"(
CREATE TABLE webappsstore2 (originAttributes TEXT, originKey TEXT, scope TEXT, key TEXT,
    value TEXT);
CREATE UNIQUE INDEX origin_key_index ON webappsstore2 (originAttributes, originKey, key);
PRAGMA user_version = 2;
)";

constexpr const char* permissionsSchema = R"(
CREATE TABLE moz_perms (id INTEGER PRIMARY KEY, origin TEXT, type TEXT, permission INTEGER,
    expireType INTEGER, expireTime INTEGER, modificationTime INTEGER);
CREATE TABLE moz_hosts (id INTEGER PRIMARY KEY, host TEXT, type TEXT, permission INTEGER,
    expireType INTEGER, expireTime INTEGER, modificationTime INTEGER,
    isInBrowserElement INTEGER);
PRAGMA user_version = 12;
)";

Database make(const std::filesystem::path& path, const char* schema) {
    Database database(path);
    database.execute(schema);
    return database;
}

}  // namespace

Database makePlacesDatabase(const std::filesystem::path& path) {
    return make(path, placesSchema);
}

Database makeCookiesDatabase(const std::filesystem::path& path) {
    return make(path, cookiesSchema);
}

Database makeFormHistoryDatabase(const std::filesystem::path& path) {
    return make(path, formHistorySchema);
}

Database makeWebAppsStoreDatabase(const std::filesystem::path& path) {
    return make(path, webAppsStoreSchema);
}

Database makePermissionsDatabase(const std::filesystem::path& path) {
    return make(path, permissionsSchema);
}

}  // namespace browsersweep::tests
