"""A home of a Chromium that was used for years: one profile with 500,000 addresses, 1,000,000 visits,
100,000 files in its cache and 5,000 sites with a database of their own."""

import json
import sqlite3
import struct
from pathlib import Path

SITES, ADDRESSES, VISITS, CACHED = 5_000, 500_000, 1_000_000, 100_000
NOW = 13_439_821_254_805_914
MAGIC, VERSION = 0xFCFB6D1BA7725C30, 5

HISTORY = """
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE urls(id INTEGER PRIMARY KEY AUTOINCREMENT, url LONGVARCHAR, title LONGVARCHAR,
    visit_count INTEGER DEFAULT 0 NOT NULL, typed_count INTEGER DEFAULT 0 NOT NULL,
    last_visit_time INTEGER NOT NULL, hidden INTEGER DEFAULT 0 NOT NULL);
CREATE TABLE visits(id INTEGER PRIMARY KEY AUTOINCREMENT, url INTEGER NOT NULL,
    visit_time INTEGER NOT NULL, from_visit INTEGER, external_referrer_url TEXT,
    transition INTEGER DEFAULT 0 NOT NULL, segment_id INTEGER,
    visit_duration INTEGER DEFAULT 0 NOT NULL, opener_visit INTEGER, originator_visit_id INTEGER,
    visited_link_id INTEGER DEFAULT 0 NOT NULL);
CREATE TABLE context_annotations(visit_id INTEGER PRIMARY KEY, context_annotation_flags INTEGER NOT NULL,
    duration_since_last_visit INTEGER, page_end_reason INTEGER, total_foreground_duration INTEGER,
    browser_type INTEGER DEFAULT 0 NOT NULL, response_code INTEGER DEFAULT 0 NOT NULL);
"""
INDICES = """
CREATE INDEX urls_url_index ON urls (url);
CREATE INDEX visits_url_index ON visits (url);
CREATE INDEX visits_from_index ON visits (from_visit);
CREATE INDEX visits_time_index ON visits (visit_time);
CREATE INDEX visits_originator_id_index ON visits (originator_visit_id);
"""
COOKIES = """
CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);
CREATE TABLE cookies(creation_utc INTEGER NOT NULL, host_key TEXT NOT NULL,
    top_frame_site_key TEXT NOT NULL, name TEXT NOT NULL, value TEXT NOT NULL,
    encrypted_value BLOB NOT NULL, path TEXT NOT NULL, expires_utc INTEGER NOT NULL,
    last_access_utc INTEGER NOT NULL, last_update_utc INTEGER NOT NULL);
"""


def host(number: int) -> str:
    return f"www.host{number % SITES}.test"


def make_history(path: Path) -> None:
    with sqlite3.connect(path) as database:
        database.executescript(HISTORY)
        database.executemany(
            "INSERT INTO urls VALUES (?, ?, ?, 2, 0, ?, 0)",
            ((number, f"https://{host(number)}/section/{number // SITES}/page/{number}?q=some+words",
              f"Page {number} of a site", NOW - number) for number in range(1, ADDRESSES + 1)))
        database.executemany(
            "INSERT INTO visits (id, url, visit_time, from_visit) VALUES (?, ?, ?, ?)",
            ((number, 1 + number % ADDRESSES, NOW - number, number - 1)
             for number in range(1, VISITS + 1)))
        database.executemany(
            "INSERT INTO context_annotations (visit_id, context_annotation_flags) VALUES (?, 0)",
            ((number,) for number in range(1, VISITS + 1)))
        database.executescript(INDICES)
    database.close()


def make_cookies(path: Path) -> None:
    with sqlite3.connect(path) as database:
        database.executescript(COOKIES)
        database.executemany(
            "INSERT INTO cookies VALUES (?, ?, '', ?, '', ?, '/', ?, ?, ?)",
            ((NOW, host(number), f"name{number}", b"v10" + bytes(32), NOW, NOW, NOW)
             for number in range(5 * SITES)))
    database.close()


def make_cache(folder: Path) -> None:
    """Entries of the simple cache, each a file: a header, the key, and what was answered."""
    folder.mkdir(parents=True)
    for number in range(CACHED):
        site = f"https://host{number % SITES}.test"
        key = f"1/0/_dk_{site} {site} https://{host(number)}/image/{number}.png".encode()
        header = struct.pack("<QIIII", MAGIC, VERSION, len(key), number, 0)
        (folder / f"{number:016x}_0").write_bytes(header + key + bytes(200))


def make_storage(folder: Path) -> None:
    for number in range(SITES):
        database = folder / f"https_{host(number)}_0.indexeddb.leveldb"
        database.mkdir(parents=True)
        (database / "CURRENT").write_text("MANIFEST-000001\n", "ascii")
        (database / "000003.log").write_bytes(bytes(500))


def make_home(home: Path) -> Path:
    if not home.exists():
        browser = home / "Library" / "Application Support" / "Chromium"
        profile = browser / "Default"
        profile.mkdir(parents=True)
        (browser / "Local State").write_text(
            json.dumps({"profile": {"info_cache": {"Default": {
                "is_consented_primary_account": False, "name": "Person 1"}},
                                    "last_active_profiles": ["Default"]}}), "utf-8")
        make_history(profile / "History")
        make_cookies(profile / "Cookies")
        make_storage(profile / "IndexedDB")
        make_cache(home / "Library" / "Caches" / "Chromium" / "Default" / "Cache" / "Cache_Data")
    return home
