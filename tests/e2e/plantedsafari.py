"""Makes a home of Safari whose every trace can be recognized: what WebKit writes comes from the engine,
everything else is made by hand, as published of Safari 27. A second profile has a title and its own."""

from __future__ import annotations

import contextlib
import hashlib
import plistlib
import shutil
import sqlite3
import sys
from datetime import datetime
from pathlib import Path

from planted import FRAME, GONE, KEPT, MARKED, SITES, Site
from webkitgtk import Engine

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scripts" / "sample"))
import safari as sample  # noqa: E402  pylint: disable=wrong-import-position

WORK = "0F1E2D3C-0000-4000-8000-0123456789AB"
SECONDS = 780_000_000.0
DATE = datetime(2025, 9, 19, 18, 40)

HISTORY = """PRAGMA journal_mode = WAL;
CREATE TABLE history_items (id INTEGER PRIMARY KEY AUTOINCREMENT, url TEXT NOT NULL UNIQUE,
    domain_expansion TEXT, visit_count INTEGER NOT NULL, daily_visit_counts BLOB NOT NULL,
    visit_count_score INTEGER NOT NULL);
CREATE TABLE history_visits (id INTEGER PRIMARY KEY AUTOINCREMENT, history_item INTEGER NOT NULL, visit_time
    REAL NOT NULL, title TEXT, redirect_source INTEGER UNIQUE, redirect_destination INTEGER UNIQUE);
CREATE TABLE history_tombstones (id INTEGER PRIMARY KEY AUTOINCREMENT, start_time REAL, end_time REAL,
    url TEXT);
CREATE TABLE history_events (id INTEGER PRIMARY KEY AUTOINCREMENT, event_type TEXT, value BLOB);
CREATE TABLE history_tags (id INTEGER PRIMARY KEY, title TEXT NOT NULL, item_count INTEGER);
CREATE TABLE history_items_to_tags (history_item INTEGER NOT NULL, tag_id INTEGER NOT NULL);
CREATE TABLE metadata (key TEXT NOT NULL UNIQUE, value);
INSERT INTO metadata VALUES('kept', 1);"""
ICONS = """CREATE TABLE page_url (url TEXT PRIMARY KEY, uuid TEXT NOT NULL);
CREATE TABLE icon_info (uuid TEXT PRIMARY KEY, url TEXT NOT NULL, timestamp REAL);
CREATE TABLE rejected_resources (page_url TEXT, icon_url TEXT, timestamp REAL);"""
SITE_ICONS = "CREATE TABLE cache_settings (host TEXT PRIMARY KEY, last_request_date REAL);"
PREFERENCES = """CREATE TABLE preference_values (id INTEGER PRIMARY KEY, domain TEXT, preference TEXT,
    timestamp REAL);"""
TABS = """PRAGMA journal_mode = WAL;
CREATE TABLE bookmarks (id INTEGER PRIMARY KEY, parent INTEGER, type INTEGER, subtype INTEGER DEFAULT 0,
    title TEXT, url TEXT, external_uuid TEXT UNIQUE, extra_attributes BLOB, local_attributes BLOB,
    last_selected_child INTEGER);
CREATE TABLE bookmark_title_words (id INTEGER PRIMARY KEY, bookmark_id INTEGER NOT NULL, word TEXT);
CREATE TABLE session_state (uuid TEXT PRIMARY KEY, data BLOB);
CREATE TABLE windows_tab_groups (id INTEGER PRIMARY KEY, active_tab_id INTEGER, tab_group_id INTEGER);"""
CLOUD_TABS = "CREATE TABLE cloud_tabs (tab_uuid TEXT PRIMARY KEY, title TEXT, url TEXT NOT NULL);"
CACHE = """CREATE TABLE cfurl_cache_response(entry_ID INTEGER PRIMARY KEY, request_key TEXT UNIQUE,
    time_stamp, partition);
CREATE TABLE cfurl_cache_blob_data(entry_ID INTEGER PRIMARY KEY, response_object BLOB, request_object BLOB);
CREATE TABLE cfurl_cache_receiver_data(entry_ID INTEGER PRIMARY KEY, isDataOnFS INTEGER,
    receiver_data BLOB);"""


class Folders:
    """Where Safari keeps its files in a home."""

    def __init__(self, home: Path) -> None:
        self.library = home / "Library"
        self.safari = self.library / "Safari"
        self.container = self.library / "Containers" / "com.apple.Safari" / "Data" / "Library"
        self.website_data = self.container / "WebKit" / "WebsiteData"
        self.caches = self.container / "Caches" / "WebKit"
        self.work = self.container / "WebKit" / "WebsiteDataStore" / WORK.lower()

    def of_engine(self, engine: Engine, version: str) -> list[tuple[Path, Path]]:
        """What the engine calls a folder, and Safari."""
        both = [(engine.data / "storage", self.website_data / "Default"),
                (engine.data / "itp", self.website_data / "ResourceLoadStatistics"),
                (engine.data / "serviceworkers", self.caches / "ServiceWorkers"),
                (engine.cache / "CacheStorage", self.caches / "CacheStorage"),
                (engine.cache / "WebKitCache", self.caches / "NetworkCache")]
        if version == "6.0":
            return both
        return [*both, (engine.data / "localstorage", self.website_data / "LocalStorage"),
                (engine.data / "databases" / "indexeddb", self.website_data / "IndexedDB")]

    def of_work(self, engine: Engine) -> list[tuple[Path, Path]]:
        return [(engine.data / "storage", self.work / "Origins"),
                (engine.data / "serviceworkers", self.work / "ServiceWorkers"),
                (engine.cache / "CacheStorage", self.work / "CacheStorage"),
                (engine.cache / "WebKitCache", self.work / "NetworkCache")]


def copy(pairs: list[tuple[Path, Path]]) -> None:
    """Files with two names get them again: the engine knows by that what is in use."""
    for source, target in pairs:
        if not source.is_dir():
            continue
        made: dict[int, Path] = {}
        for path in sorted(source.rglob("*")):
            place = target / path.relative_to(source)
            if path.is_dir():
                place.mkdir(parents=True, exist_ok=True)
                continue
            place.parent.mkdir(parents=True, exist_ok=True)
            number = path.stat().st_ino
            if number in made:
                place.hardlink_to(made[number])
            else:
                shutil.copy2(path, place)
            made[number] = place


@contextlib.contextmanager
def new_database(path: Path, schema: str):
    path.parent.mkdir(parents=True, exist_ok=True)
    with contextlib.closing(sqlite3.connect(path)) as database:
        database.executescript(schema)
        yield database
        database.commit()


def write_list(path: Path, value: object, form: plistlib.PlistFormat = plistlib.FMT_BINARY) -> None:
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(plistlib.dumps(value, fmt=form, sort_keys=False))


def page(site: Site, name: str = "0") -> str:
    return f"{site.origin}/qzpath{site.word}/{name}?q=qzquer{site.word}"


def history(path: Path, sites: tuple[Site, ...]) -> None:
    with new_database(path, HISTORY) as database:
        for number, site in enumerate(sites, 1):
            database.execute("INSERT INTO history_items VALUES(?, ?, ?, 1, x'00', 1)",
                             (number, page(site), site.registrable))
            database.execute("INSERT INTO history_visits VALUES(?, ?, ?, ?, ?, NULL)",
                             (number, number, SECONDS, f"qztitl{site.word}", number - 1 or None))
            database.execute("INSERT INTO history_tombstones(url) VALUES(?)",
                             (f"{site.origin}/qzlate{site.word}",))
            value = plistlib.dumps({"address": f"{site.origin}/qzpush{site.word}"}, fmt=plistlib.FMT_BINARY)
            database.execute("INSERT INTO history_events(event_type, value) VALUES('e', ?)", (value,))
            database.execute("INSERT INTO history_tags VALUES(?, ?, 1)", (number, f"qzstat{site.word}"))
            database.execute("INSERT INTO history_items_to_tags VALUES(?, ?)", (number, number))


def icons(folder: Path) -> None:
    with new_database(folder / "Favicon Cache" / "favicons.db", ICONS) as database:
        (folder / "Favicon Cache" / "favicons").mkdir()
        for number, site in enumerate(SITES):
            uuid = f"{number:08X}-0000-4000-8000-0123456789AB"
            database.execute("INSERT INTO page_url VALUES(?, ?)", (page(site), uuid))
            database.execute("INSERT INTO icon_info VALUES(?, ?, ?)",
                             (uuid, f"{site.origin}/qzicou{site.word}.png", SECONDS))
            database.execute("INSERT INTO rejected_resources VALUES(?, ?, ?)",
                             (page(site, "1"), f"{site.origin}/qzimgu{site.word}", SECONDS))
            (folder / "Favicon Cache" / "favicons" / uuid.replace("-", "")).write_text(f"qzicon{site.word}")
    with new_database(folder / "Touch Icons Cache" / "TouchIconCacheSettings.db", SITE_ICONS) as database:
        images = folder / "Touch Icons Cache" / "Images"
        images.mkdir()
        for site in SITES:
            database.execute("INSERT INTO cache_settings VALUES(?, ?)", (site.host, SECONDS))
            name = hashlib.md5(site.host.encode()).hexdigest().upper()
            (images / f"{name}.png").write_text(f"qzicon{site.word}")


def tab(site: Site, kind: str, before: Site | None = None) -> dict:
    """A tab, and the pages to go back to: of another site, if one is given."""
    entries = [{"SessionHistoryEntryURL": f"{other.origin}/qzbody{other.word}"}
               for other in (before or site, site)]
    state = b"\0\0\0\2" + plistlib.dumps({"SessionHistory": {"SessionHistoryEntries": entries}},
                                         fmt=plistlib.FMT_BINARY)
    return {"TabTitle": site.marker("titl"), "TabURL": f"{site.origin}/qz{kind}{site.word}",
            "LastVisitTime": DATE, "SessionState": state}


def tab_lists(folder: Path) -> None:
    windows = [{"SelectedTabIndex": 1, "TabStates": [tab(GONE, "open"), tab(KEPT, "open", GONE)]},
               {"SelectedTabIndex": 0, "TabStates": [tab(site, "open") for site in SITES]}]
    write_list(folder / "LastSession.plist", {"SessionVersion": "1.0", "SessionWindows": windows})
    closed = [{"PersistentStateType": 0, "PersistentState": tab(site, "clos")} for site in SITES]
    closed.append({"PersistentStateType": 1, "PersistentState": {"TabStates": [tab(GONE, "clos"),
                                                                               tab(MARKED, "clos")]}})
    write_list(folder / "RecentlyClosedTabs.plist",
               {"ClosedTabOrWindowPersistentStatesVersion": "1", "ClosedTabOrWindowPersistentStates": closed})


def tabs(folders: Folders) -> None:
    with new_database(folders.container / "Safari" / "SafariTabs.db", TABS) as database:
        database.execute("INSERT INTO bookmarks(id, type, subtype, title, external_uuid) VALUES"
                         "(1, 1, 2, '', 'DefaultProfile'), (2, 1, 2, 'Work', ?), (3, 1, 0, 'group', 'G')",
                         (WORK,))
        for number, site in enumerate(SITES, 10):
            extra = plistlib.dumps({"LocalURL": f"{site.origin}/qzopen{site.word}"}, fmt=plistlib.FMT_BINARY)
            local = plistlib.dumps(tab(site, "open"), fmt=plistlib.FMT_BINARY)
            database.execute("INSERT INTO bookmarks VALUES(?, 3, 0, 0, ?, ?, ?, ?, ?, NULL)",
                             (number, site.marker("titl"), f"{site.origin}/qzopen{site.word}", f"T{number}",
                              extra, local))
            database.execute("INSERT INTO bookmark_title_words(bookmark_id, word) VALUES(?, ?)",
                             (number, site.marker("titl")))
            database.execute("INSERT INTO session_state VALUES(?, ?)",
                             (f"T{number}", tab(site, "open")["SessionState"]))
    with new_database(folders.container / "Safari" / "CloudTabs.db", CLOUD_TABS) as database:
        for site in SITES:
            database.execute("INSERT INTO cloud_tabs VALUES(?, ?, ?)",
                             (site.word, site.marker("titl"), f"{site.origin}/qzopen{site.word}"))


def url_cache(folder: Path) -> None:
    with new_database(folder / "Cache.db", CACHE) as database:
        (folder / "fsCachedData").mkdir()
        for number, site in enumerate(SITES, 1):
            database.execute("INSERT INTO cfurl_cache_response VALUES(?, ?, 't', '')",
                             (number, f"{site.origin}/qzimgu{site.word}.png"))
            database.execute("INSERT INTO cfurl_cache_blob_data VALUES(?, ?, ?)",
                             (number, f"qzetag{site.word}", f"{site.origin}/qzimgu{site.word}.png"))
            database.execute("INSERT INTO cfurl_cache_receiver_data VALUES(?, 1, ?)",
                             (number, f"BODY-{number}"))
            (folder / "fsCachedData" / f"BODY-{number}").write_text(f"qzbody{site.word}")


def cookies(path: Path, sites: tuple[Site, ...]) -> None:
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(sample.cookie_file([
        [(site.host, site.marker("cknm"), "/", site.marker("ckvl")),
         (f".{site.registrable}", site.marker("ckdn"), "/", site.marker("ckdv"))] for site in sites]))


def lists(folder: Path) -> None:
    downloads = [{"DownloadEntryURL": f"{site.origin}/download/qzdown{site.word}.bin",
                  "DownloadEntryDateAddedKey": DATE,
                  "DownloadEntryPath": f"/Users/x/Downloads/qzdown{site.word}.bin",
                  **({"DownloadEntryProfileUUIDStringKey": WORK} if is_work else {})}
                 for site in SITES for is_work in (False, True)]
    write_list(folder / "Downloads.plist", {"DownloadHistory": downloads, "Kept": 1}, plistlib.FMT_XML)
    write_list(folder / "TopSites.plist", {
        "BannedURLStrings": [], "TopSites": [
            {"TopSiteTitle": site.marker("titl"), "TopSiteURLString": page(site)} for site in SITES]})
    write_list(folder / "Bookmarks.plist", {"Children": [
        {"URLString": MARKED.bookmark, "URIDictionary": {"title": MARKED.marker("bmrk")}}]})
    with new_database(folder / "PerSitePreferences.db", PREFERENCES) as database:
        for site in (GONE, KEPT, FRAME):
            database.execute("INSERT INTO preference_values(domain, preference, timestamp)"
                             " VALUES(?, 'zoom', ?)", (site.host, SECONDS))


def make_safari(home: Path, engine: Engine, version: str) -> None:
    folders = Folders(home)
    copy(folders.of_engine(engine, version))
    copy(folders.of_work(engine))
    history(folders.safari / "History.db", SITES)
    history(folders.safari / "Profiles" / WORK / "History.db", (GONE, KEPT))
    icons(folders.safari)
    tab_lists(folders.safari)
    lists(folders.safari)
    tabs(folders)
    url_cache(folders.library / "Caches" / "com.apple.Safari")
    cookies(folders.library / "Cookies" / "Cookies.binarycookies", SITES)
    cookies(folders.container / "Cookies" / "Cookies.binarycookies", SITES)
    cookies(folders.work / "Cookies" / "Cookies.binarycookies", (GONE, KEPT))
