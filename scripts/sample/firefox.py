"""The data of Firefox: two profiles, as it lays them out on macOS."""

import datetime
import pathlib

from common import NEWEST, day_of, host_of, write_database

# Folder, display name, the share of PAGES that the profile has seen, whether it is the default.
PROFILES = (
    ("Profiles/x7k2mq9d.default-release", "default-release", 1, True),
    ("Profiles/b41c0nze.work", "work", 3, False),
)

HOSTS = ("www.example.com", "news.example.org", "shop.example.net", "mail.example.com")
PAGES = tuple(f"https://{host}/article/{number}" for number in range(1, 10) for host in HOSTS)
EPOCH = datetime.datetime(1970, 1, 1)

PLACES = """
PRAGMA page_size = 32768;
PRAGMA journal_mode = WAL;
CREATE TABLE moz_origins(id INTEGER PRIMARY KEY, prefix TEXT NOT NULL, host TEXT NOT NULL,
    frecency INTEGER NOT NULL, UNIQUE(prefix, host));
CREATE TABLE moz_places(id INTEGER PRIMARY KEY, url LONGVARCHAR, title LONGVARCHAR,
    rev_host LONGVARCHAR, visit_count INTEGER DEFAULT 0, hidden INTEGER DEFAULT 0 NOT NULL,
    typed INTEGER DEFAULT 0 NOT NULL, frecency INTEGER DEFAULT -1 NOT NULL,
    last_visit_date INTEGER, guid TEXT, foreign_count INTEGER DEFAULT 0 NOT NULL,
    url_hash INTEGER DEFAULT 0 NOT NULL, description TEXT, preview_image_url TEXT, site_name TEXT,
    origin_id INTEGER REFERENCES moz_origins(id));
CREATE TABLE moz_historyvisits(id INTEGER PRIMARY KEY, from_visit INTEGER, place_id INTEGER,
    visit_date INTEGER, visit_type INTEGER, session INTEGER, source INTEGER DEFAULT 0 NOT NULL,
    triggeringPlaceId INTEGER);
CREATE TABLE moz_inputhistory(place_id INTEGER NOT NULL, input LONGVARCHAR NOT NULL,
    use_count INTEGER, PRIMARY KEY(place_id, input));
CREATE TABLE moz_bookmarks(id INTEGER PRIMARY KEY, type INTEGER, fk INTEGER DEFAULT NULL,
    parent INTEGER, position INTEGER, title LONGVARCHAR, keyword_id INTEGER, folder_type TEXT,
    dateAdded INTEGER, lastModified INTEGER, guid TEXT, syncStatus INTEGER NOT NULL DEFAULT 0,
    syncChangeCounter INTEGER NOT NULL DEFAULT 1);
CREATE TABLE moz_keywords(id INTEGER PRIMARY KEY AUTOINCREMENT, keyword TEXT UNIQUE,
    place_id INTEGER, post_data TEXT);
CREATE INDEX moz_places_hostindex ON moz_places(rev_host);
CREATE INDEX moz_places_lastvisitdateindex ON moz_places(last_visit_date);
CREATE UNIQUE INDEX moz_places_guid_uniqueindex ON moz_places(guid);
CREATE INDEX moz_historyvisits_placedateindex ON moz_historyvisits(place_id, visit_date);
CREATE INDEX moz_historyvisits_dateindex ON moz_historyvisits(visit_date);
CREATE INDEX moz_bookmarks_itemindex ON moz_bookmarks(fk, type);
PRAGMA user_version = 77;
"""

COOKIES = """
PRAGMA journal_mode = WAL;
CREATE TABLE moz_cookies(id INTEGER PRIMARY KEY, originAttributes TEXT NOT NULL DEFAULT '',
    name TEXT, value TEXT, host TEXT, path TEXT, expiry INTEGER, lastAccessed INTEGER,
    creationTime INTEGER, isSecure INTEGER, isHttpOnly INTEGER,
    inBrowserElement INTEGER DEFAULT 0, sameSite INTEGER DEFAULT 0, schemeMap INTEGER DEFAULT 0,
    isPartitionedAttributeSet INTEGER DEFAULT 0,
    CONSTRAINT moz_uniqueid UNIQUE(name, host, path, originAttributes));
PRAGMA user_version = 15;
"""

FORM_HISTORY = """
PRAGMA journal_mode = WAL;
CREATE TABLE moz_formhistory(id INTEGER PRIMARY KEY, fieldname TEXT NOT NULL, value TEXT NOT NULL,
    timesUsed INTEGER, firstUsed INTEGER, lastUsed INTEGER, guid TEXT);
CREATE TABLE moz_deleted_formhistory(id INTEGER PRIMARY KEY, timeDeleted INTEGER, guid TEXT);
CREATE INDEX moz_formhistory_index ON moz_formhistory(fieldname);
CREATE UNIQUE INDEX moz_formhistory_guid_index ON moz_formhistory(guid);
PRAGMA user_version = 5;
"""

WEB_APPS_STORE = """
CREATE TABLE webappsstore2(originAttributes TEXT, originKey TEXT, scope TEXT, key TEXT, value TEXT);
CREATE UNIQUE INDEX origin_key_index ON webappsstore2(originAttributes, originKey, key);
PRAGMA user_version = 2;
"""

PERMISSIONS = """
CREATE TABLE moz_perms(id INTEGER PRIMARY KEY, origin TEXT, type TEXT, permission INTEGER,
    expireType INTEGER, expireTime INTEGER, modificationTime INTEGER);
CREATE TABLE moz_hosts(id INTEGER PRIMARY KEY, host TEXT, type TEXT, permission INTEGER,
    expireType INTEGER, expireTime INTEGER, modificationTime INTEGER, isInBrowserElement INTEGER);
PRAGMA user_version = 12;
"""


def microseconds(moment):
    """Microseconds since 1970, which is how Firefox stores a time."""
    return (moment - EPOCH) // datetime.timedelta(microseconds=1)


def write_places(folder, pages):
    """The first page of every host is a bookmark, and one bookmark was never visited."""
    hosts = sorted({host_of(page) for page in pages})
    kept = {next(number for number, page in enumerate(pages, 1) if host_of(page) == host)
            for host in hosts}
    places = [
        (number, page, f"Article {number}", host_of(page)[::-1] + ".", 1, f"place{number:07d}",
         int(number in kept), microseconds(day_of(number)))
        for number, page in enumerate(pages, 1)
    ]
    unvisited = len(pages) + 1
    places.append((unvisited, "https://docs.example.org/", "Manual", "gro.elpmaxe.scod.", 0,
                   f"place{unvisited:07d}", 1, None))
    bookmarks = [(1, 2, None, 0, "root"), (2, 2, None, 1, "menu")]
    bookmarks += [
        (number, 1, place, 2, f"Bookmark {place}" if place % 2 else None)
        for number, place in enumerate(sorted(kept | {unvisited}), 3)
    ]
    write_database(
        folder / "places.sqlite",
        PLACES,
        {
            "moz_places": (
                ("id", "url", "title", "rev_host", "visit_count", "guid", "foreign_count",
                 "last_visit_date"),
                places,
            ),
            "moz_historyvisits": (
                ("place_id", "visit_date", "visit_type"),
                [(row[0], row[7], 1) for row in places if row[7] is not None],
            ),
            "moz_inputhistory": (("place_id", "input", "use_count"), [(1, "exa", 2), (2, "ne", 1)]),
            "moz_keywords": (("keyword", "place_id"), [("manual", unvisited)]),
            "moz_bookmarks": (("id", "type", "fk", "parent", "title"), bookmarks),
        },
    )


def write_small_databases(folder, pages):
    hosts = sorted({host_of(page) for page in pages})
    now = microseconds(NEWEST)
    expiry = now // 1_000_000 + 10 * 365 * 86400
    write_database(
        folder / "cookies.sqlite",
        COOKIES,
        {
            "moz_cookies": (
                ("name", "value", "host", "path", "expiry", "lastAccessed", "creationTime",
                 "isSecure", "isHttpOnly"),
                [(name, "value", "." + host, "/", expiry, now, now, 1, 0)
                 for host in hosts for name in ("session", "theme")],
            )
        },
    )
    form = [("email", "ann@example.com"), ("city", "Vienna"), ("searchbar-history", "tea pots")]
    write_database(
        folder / "formhistory.sqlite",
        FORM_HISTORY,
        {
            "moz_formhistory": (
                ("fieldname", "value", "timesUsed", "firstUsed", "lastUsed", "guid"),
                [(name, value, 1, now, now, f"form{number:07d}")
                 for number, (name, value) in enumerate(form)],
            )
        },
    )
    write_database(
        folder / "webappsstore.sqlite",
        WEB_APPS_STORE,
        {
            "webappsstore2": (
                ("originAttributes", "originKey", "scope", "key", "value"),
                [("", f"{host[::-1]}.:https:443", f"{host[::-1]}.:https:443", key, "{}")
                 for host in hosts for key in ("settings", "seen")],
            )
        },
    )
    write_database(
        folder / "permissions.sqlite",
        PERMISSIONS,
        {
            "moz_perms": (
                ("origin", "type", "permission", "expireType", "expireTime", "modificationTime"),
                [("https://mail.example.com", "desktop-notification", 1, 0, 0, now // 1000),
                 ("https://shop.example.net", "desktop-notification", 2, 0, 0, now // 1000),
                 ("https://www.example.com", "camera", 1, 0, 0, now // 1000)],
            )
        },
    )


def write_cache(folder, count):
    entries = folder / "cache2" / "entries"
    entries.mkdir(parents=True)
    for number in range(1, count + 1):
        (entries / f"{number:040X}").write_bytes(bytes(1500 * number))
    (folder / "cache2" / "index").write_bytes(bytes(12))


def write_profiles_ini(folder):
    lines = ["[General]", "StartWithLastProfile=1", "Version=2", ""]
    lines += ["[Install2656FF1E876E9973]", f"Default={PROFILES[0][0]}", "Locked=1", ""]
    for number, (path, name, _, default) in enumerate(PROFILES):
        lines += [f"[Profile{number}]", f"Name={name}", "IsRelative=1", f"Path={path}"]
        lines += ["Default=1"] if default else []
        lines.append("")
    (folder / "profiles.ini").write_text("\n".join(lines), encoding="utf-8")


def make(home: pathlib.Path) -> None:
    support = home / "Library" / "Application Support" / "Firefox"
    for path, _, step, _ in PROFILES:
        folder = support / path
        folder.mkdir(parents=True)
        pages = PAGES[::step]
        write_places(folder, pages)
        write_small_databases(folder, pages)
        write_cache(home / "Library" / "Caches" / "Firefox" / path, len(pages) // 2)
    write_profiles_ini(support)
