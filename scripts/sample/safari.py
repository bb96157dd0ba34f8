"""The data of Safari: history, bookmarks, permissions, cookies, cache and local storage."""

import datetime
import pathlib
import plistlib
import sqlite3
import struct

HOSTS = ("www.example.com", "news.example.org", "shop.example.net", "mail.example.com")
PAGES = tuple(f"https://{host}/page/{number}" for number in range(1, 7) for host in HOSTS)
NEWEST = datetime.datetime(2024, 6, 30, 12, 0, 0)
EPOCH = datetime.datetime(2001, 1, 1)
VISITS_PER_PAGE = 2

HISTORY = """
CREATE TABLE history_items(id INTEGER PRIMARY KEY AUTOINCREMENT, url TEXT NOT NULL UNIQUE,
    domain_expansion TEXT NULL, visit_count INTEGER NOT NULL, daily_visit_counts BLOB NOT NULL,
    weekly_visit_counts BLOB NULL, autocomplete_triggers BLOB NULL,
    should_recompute_derived_visit_counts INTEGER NOT NULL, visit_count_score INTEGER NOT NULL,
    status_code INTEGER NOT NULL DEFAULT 0);
CREATE TABLE history_visits(id INTEGER PRIMARY KEY AUTOINCREMENT,
    history_item INTEGER NOT NULL REFERENCES history_items(id) ON DELETE CASCADE,
    visit_time REAL NOT NULL, title TEXT NULL, load_successful BOOLEAN NOT NULL DEFAULT 1,
    http_non_get BOOLEAN NOT NULL DEFAULT 0, synthesized BOOLEAN NOT NULL DEFAULT 0,
    redirect_source INTEGER NULL UNIQUE, redirect_destination INTEGER NULL UNIQUE,
    origin INTEGER NOT NULL DEFAULT 0, generation INTEGER NOT NULL DEFAULT 0,
    attributes INTEGER NOT NULL DEFAULT 0, score INTEGER NOT NULL DEFAULT 0);
CREATE TABLE metadata(key TEXT NOT NULL UNIQUE, value);
CREATE INDEX history_visits__last_visit ON history_visits(history_item, visit_time DESC);
"""

# Each cookie: domain, name, path, value. One page of the file per line.
COOKIE_PAGES = (
    ((".example.com", "session", "/", "c1d2e3"), (".example.com", "theme", "/", "dark")),
    (("news.example.org", "edition", "/", "europe"),),
    (("shop.example.net", "basket", "/shop", "3"), ("shop.example.net", "seen", "/", "1")),
)
FOOTER = bytes.fromhex("071720050000004b")

CACHE = """
CREATE TABLE cfurl_cache_response(entry_ID INTEGER PRIMARY KEY, request_key TEXT UNIQUE, time_stamp,
    partition TEXT);
CREATE TABLE cfurl_cache_blob_data(entry_ID INTEGER PRIMARY KEY, response_object BLOB);
CREATE TABLE cfurl_cache_receiver_data(entry_ID INTEGER PRIMARY KEY, isDataOnFS INTEGER, receiver_data BLOB);
INSERT INTO cfurl_cache_response VALUES(1, 'https://www.example.com/', '2024-01-01', '');
INSERT INTO cfurl_cache_receiver_data VALUES(1, 1, '1');
"""

FILES = {
    "Containers/com.apple.Safari/Data/Library/Caches/com.apple.Safari/fsCachedData/1": 4096,
    "Containers/com.apple.Safari/Data/Library/Caches/WebKit/NetworkCache/salt": 8,
    "Caches/com.apple.Safari/Webpage Previews/1.jpeg": 6144,
    "Preferences/Macromedia/Flash Player/settings.sol": 128,
    "Safari/LocalStorage/https_www.example.com_0.localstorage": 4096,
    "Safari/LocalStorage/https_news.example.org_0.localstorage": 2048,
}


def safari_time(moment):
    """Seconds since 2001, which is how Safari stores a time."""
    return (moment - EPOCH).total_seconds()


def day_of(index):
    """When the page of this index was last seen: one page a day, backwards from NEWEST."""
    return NEWEST - datetime.timedelta(days=index)


def write_history(path):
    database = sqlite3.connect(path)
    # A sample need not outlive a power cut, and many small databases would wait long for the disk.
    database.execute("PRAGMA synchronous = OFF")
    database.execute("PRAGMA journal_mode = MEMORY")
    database.executescript(HISTORY)
    for number, page in enumerate(PAGES, 1):
        database.execute(
            "INSERT INTO history_items(id, url, visit_count, daily_visit_counts,"
            " should_recompute_derived_visit_counts, visit_count_score) VALUES(?, ?, ?, x'', 0, 100)",
            (number, page, VISITS_PER_PAGE),
        )
        for hour in range(VISITS_PER_PAGE):
            moment = day_of(number) - datetime.timedelta(hours=hour)
            database.execute(
                "INSERT INTO history_visits(history_item, visit_time, title) VALUES(?, ?, ?)",
                (number, safari_time(moment), f"Page {number}"),
            )
    database.commit()
    database.close()


def write_cache(path):
    """Five pages of 4096 bytes: one for each table, for the index and for the list of them."""
    database = sqlite3.connect(path)
    database.execute("PRAGMA page_size = 4096")
    database.execute("PRAGMA synchronous = OFF")
    database.executescript(CACHE)
    database.commit()
    database.close()


def bookmark(title, address):
    return {
        "WebBookmarkType": "WebBookmarkTypeLeaf",
        "URLString": address,
        "URIDictionary": {"title": title},
    }


def folder(title, children):
    return {"WebBookmarkType": "WebBookmarkTypeList", "Title": title, "Children": children}


def write_bookmarks(path):
    favourites = folder(
        "BookmarksBar",
        [
            bookmark("Example", "https://www.example.com/"),
            folder("News", [bookmark("The News", "https://news.example.org/")]),
        ],
    )
    menu = folder("BookmarksMenu", [bookmark("The Shop", "https://shop.example.net/")])
    root = folder("", [favourites, menu])
    root["WebBookmarkFileVersion"] = 1
    path.write_bytes(plistlib.dumps(root, fmt=plistlib.FMT_BINARY, sort_keys=False))


def write_permissions(path):
    permissions = {
        f"https://{host}": {
            "Allowed Domains": [f"https://{host}"],
            "Date Added": NEWEST,
            "Permission": True,
        }
        for host in ("news.example.org", "mail.example.com")
    }
    path.write_bytes(plistlib.dumps(permissions, fmt=plistlib.FMT_BINARY, sort_keys=False))


def cookie_record(domain, name, path, value):
    """One cookie: a fixed part of 56 bytes, then its texts, each ended by a zero byte."""
    texts = [text.encode("ascii") + b"\0" for text in (domain, name, path, value)]
    offsets = [56 + sum(map(len, texts[:index])) for index in range(len(texts))]
    size = 56 + sum(map(len, texts))
    numbers = (size, 0, 1, 0, *offsets, 0, 0)
    expires = safari_time(NEWEST + datetime.timedelta(days=365))
    times = struct.pack("<2d", expires, safari_time(NEWEST))
    return struct.pack("<10I", *numbers) + times + b"".join(texts)


def cookie_page(cookies):
    records = [cookie_record(*cookie) for cookie in cookies]
    first = 12 + 4 * len(records)
    offsets = [first + sum(map(len, records[:index])) for index in range(len(records))]
    head = struct.pack(f"<2I{len(records)}II", 0x00010000, len(records), *offsets, 0)
    return head + b"".join(records)


def cookie_file(pages):
    """A whole cookie file: its head counts in big-endian, its pages in little-endian."""
    encoded = [cookie_page(page) for page in pages]
    sizes = struct.pack(f">{len(encoded)}I", *map(len, encoded))
    checksum = sum(sum(page[::4]) for page in encoded) & 0xFFFFFFFF
    metadata = plistlib.dumps({"NSHTTPCookieAcceptPolicy": 2}, fmt=plistlib.FMT_BINARY)
    head = b"cook" + struct.pack(">I", len(encoded)) + sizes
    return head + b"".join(encoded) + struct.pack(">I", checksum) + FOOTER + metadata


def make(home: pathlib.Path) -> None:
    """Fills a home folder with the data of Safari."""
    library = home / "Library"
    for name, size in FILES.items():
        path = library / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(b"s" * size)
    (library / "Safari" / "RemoteNotifications").mkdir(parents=True, exist_ok=True)
    (library / "Cookies").mkdir(exist_ok=True)
    write_history(library / "Safari" / "History.db")
    write_cache(library / "Containers/com.apple.Safari/Data/Library/Caches/com.apple.Safari/Cache.db")
    write_bookmarks(library / "Safari" / "Bookmarks.plist")
    write_permissions(library / "Safari" / "RemoteNotifications" / "Permissions.plist")
    (library / "Cookies" / "Cookies.binarycookies").write_bytes(cookie_file(COOKIE_PAGES))
