"""Independent figures: what `browsersweep` has to report, and what has to be left after a clean.

Everything here is written from the documented rules, with Python's sqlite3 module and the
file-system calls of the operating system. Nothing calls the library.
"""

from __future__ import annotations

import contextlib
import datetime
import json
import os
import shutil
import sqlite3
import subprocess
import tempfile
from collections.abc import Iterable, Iterator
from dataclasses import dataclass
from pathlib import Path

from browser import Layout

CATEGORIES = ("cache", "history", "httpCookies", "flashCookies", "formData", "localStorage")
UTC = datetime.timezone.utc
EPOCH_1601 = datetime.datetime(1601, 1, 1, tzinfo=UTC)
# Chromium's times count from midnight where the user is; Tokyo had its own local mean time then.
ZONES = {"UTC": datetime.timedelta(0), "Asia/Tokyo": datetime.timedelta(seconds=33539)}
EPOCH_1970 = datetime.datetime(1970, 1, 1, tzinfo=UTC)


@dataclass(frozen=True)
class Filter:
    """One filter as the command line gives it: an option and its value."""

    option: str  # include, exclude, inside or outside
    value: str = ""
    start: datetime.datetime | None = None
    end: datetime.datetime | None = None

    @property
    def is_pattern(self) -> bool:
        return self.option in ("include", "exclude")

    def arguments(self) -> list[str]:
        if self.is_pattern:
            return [f"--{self.option}", self.value]
        ends = ["" if date is None else date.strftime("%Y-%m-%dT%H:%M:%SZ")
                for date in (self.start, self.end)]
        return [f"--{self.option}", "..".join(ends)]

    @property
    def is_range(self) -> bool:
        """Without a bound there is no range, and the filter says nothing."""
        return not self.is_pattern and (self.start is not None or self.end is not None)

    def accepts_date(self, date: datetime.datetime) -> bool:
        if not self.is_range:
            return True
        is_inside = ((self.start is None or self.start <= date)
                     and (self.end is None or date <= self.end))
        return is_inside == (self.option == "inside")


@dataclass(frozen=True)
class Table:
    name: str
    pattern_column: str | None = None
    date_column: str | None = None
    epoch: datetime.datetime = EPOCH_1970
    always: str | None = None
    reverses_patterns: bool = False

    def condition(self, filters: Iterable[Filter]) -> tuple[str, list[object]]:
        """Which rows the filters select, as an SQL condition and its parameters."""
        groups: dict[str, list[tuple[str, list[object]]]] = {"exclude": [], "include": [],
                                                             "dates": []}
        for item in filters:
            if item.is_pattern and self.pattern_column:
                text = item.value[::-1] if self.reverses_patterns else item.value
                word = "LIKE" if item.option == "include" else "NOT LIKE"
                groups[item.option].append((f"{self.pattern_column} {word} ?", [f"%{text}%"]))
            elif item.is_range and self.date_column:
                groups["dates"].append(self._date_condition(item))
        texts, values = ([f"({self.always})"] if self.always else []), []
        for group, joint in (("exclude", " AND "), ("include", " OR "), ("dates", " OR ")):
            if groups[group]:
                texts.append("(" + joint.join(text for text, _ in groups[group]) + ")")
                values += [value for _, some in groups[group] for value in some]
        return " AND ".join(texts) or "1", values

    def _date_condition(self, item: Filter) -> tuple[str, list[object]]:
        bounds = [(sign, int((date - self.epoch) / datetime.timedelta(microseconds=1)))
                  for sign, date in ((">=", item.start), ("<=", item.end)) if date is not None]
        text = " AND ".join(f"{self.date_column} {sign} ?" for sign, _ in bounds)
        values: list[object] = [value for _, value in bounds]
        return (f"({text})" if item.option == "inside" else f"(NOT ({text}))"), values


@dataclass(frozen=True)
class Database:
    file: Path
    tables: tuple[Table, ...]
    needs_closed_browser = True


@dataclass(frozen=True)
class Directory:
    folder: Path
    needs_closed_browser: bool
    own_pattern: str | None = None

    def files(self, filters: Iterable[Filter]) -> dict[Path, int]:
        """The selected regular files and their sizes."""
        own = [Filter("include", self.own_pattern)] if self.own_pattern else []
        return {path: size for path, size, created in regular_files(self.folder)
                if accepts(own, path.name, created) and accepts(filters, path.name, created)}


def accepts(filters: Iterable[Filter], name: str, created: datetime.datetime | None) -> bool:
    """Each filter with an opinion replaces the verdict of those before it."""
    verdict = True
    for item in filters:
        if item.is_pattern:
            if item.value in name:
                verdict = item.option == "include"
        elif created is not None:
            verdict = item.accepts_date(created)
    return verdict


def regular_files(folder: Path) -> Iterator[tuple[Path, int, datetime.datetime | None]]:
    """Every regular file below the folder: path, size and, where there is one, its birth time."""
    if not folder.is_dir():
        return
    listed = subprocess.run(["find", str(folder), "-type", "f", "-exec", "stat", "--printf",
                             "%s %.9W %n\\0", "{}", "+"], capture_output=True, check=True).stdout
    for line in filter(None, listed.split(b"\0")):
        size, born, path = line.split(b" ", 2)
        seconds = float(born)  # zero where the file system keeps none
        yield (Path(os.fsdecode(path)), int(size),
               datetime.datetime.fromtimestamp(seconds, UTC) if seconds > 0 else None)


Item = Database | Directory


@dataclass(frozen=True)
class Profile:
    name: str
    folder: Path
    is_primary: bool
    items: dict[str, list[Item]]


def chromium_items(folder: Path, cache: Path, epoch: datetime.datetime) -> dict[str, list[Item]]:
    forms = ("autofill", *(f"autofill_profile{end}" for end in (
        "_addresses", "_emails", "_names", "_phones", "s", "s_trash")))
    return {
        "cache": [Directory(cache, True)],
        "history": [
            Database(folder / "Favicons", (Table("favicons", "url"),
                                           Table("icon_mapping", "page_url"))),
            Database(folder / "History", (Table("urls", "url", "last_visit_time", epoch),
                                          Table("segments", "name"), Table("downloads"))),
            Database(folder / "Network Action Predictor",
                     (Table("network_action_predictor", "url"),)),
            Database(folder / "Top Sites", (Table("top_sites", "url"),)),
            Directory(folder / "Sessions", True, own_pattern="Tabs")],
        "httpCookies": [Database(folder / "Cookies", (Table("cookies", "host_key"),))],
        "flashCookies": [Directory(folder / "Pepper Data", False)],
        "formData": [Database(folder / "Web Data", tuple(map(Table, forms)))],
        "localStorage": [Directory(folder / "Local Storage", True)],
    }


def firefox_items(folder: Path, cache: Path, library: Path) -> dict[str, list[Item]]:
    return {
        "cache": [Directory(cache / "cache2", True)],
        "history": [Database(folder / "places.sqlite", (
            Table("moz_historyvisits", None, "visit_date"), Table("moz_inputhistory"),
            Table("moz_keywords"),
            Table("moz_places", "url", "last_visit_date", always="foreign_count = 0")))],
        "httpCookies": [Database(folder / "cookies.sqlite", (Table("moz_cookies", "host"),))],
        "flashCookies": [Directory(library / "Preferences" / "Macromedia", False)],
        "formData": [Database(folder / "formhistory.sqlite", (Table("moz_formhistory"),))],
        "localStorage": [Database(folder / "webappsstore.sqlite",
                                  (Table("webappsstore2", "originKey",
                                         reverses_patterns=True),))],
    }


def chromium_profiles(layout: Layout, zone: str) -> list[Profile]:
    state = json.loads((layout.chromium / "Local State").read_text("utf-8"))["profile"]
    known, last = state["info_cache"], state["last_active_profiles"]
    consented = {key for key, entry in known.items() if entry["is_consented_primary_account"]}
    primary = consented or {(last or list(known))[0]}
    epoch = EPOCH_1601 - ZONES[zone]
    return [Profile(entry["name"], layout.chromium / key, key in primary,
                    chromium_items(layout.chromium / key, layout.caches / "Chromium" / key, epoch))
            for key, entry in known.items()]


def firefox_profiles(layout: Layout, _zone: str) -> list[Profile]:
    ini = (layout.firefox / "profiles.ini").read_text("utf-8")
    sections = [dict(line.split("=", 1) for line in section.splitlines() if "=" in line)
                for section in ini.split("[")]
    return [Profile(entry["Name"], layout.firefox / entry["Path"], entry.get("Default") == "1",
                    firefox_items(layout.firefox / entry["Path"],
                                  layout.firefox_caches / entry["Path"],
                                  layout.home / "Library"))
            for entry in sections if "Name" in entry]


def profiles(layout: Layout, browser: str, zone: str = "UTC") -> list[Profile]:
    return {"chromium": chromium_profiles, "firefox": firefox_profiles}[browser](layout, zone)


# --- What the databases hold --------------------------------------------------------------------

@contextlib.contextmanager
def opened(path: Path, suffixes: tuple[str, ...] = ("", "-wal", "-journal")
           ) -> Iterator[sqlite3.Connection]:
    """A copy of the database, so that looking at it changes nothing."""
    with tempfile.TemporaryDirectory(prefix="browsersweep-e2e-") as folder:
        for suffix in suffixes:
            if Path(f"{path}{suffix}").is_file():
                shutil.copy(f"{path}{suffix}", folder)
        with contextlib.closing(sqlite3.connect(Path(folder) / path.name)) as database:
            database.text_factory = bytes
            yield database


def has_table(database: sqlite3.Connection, name: str) -> bool:
    return database.execute("SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' "
                            "AND name = ?", (name,)).fetchone()[0] > 0


def selected_rows(database: Database, filters: Iterable[Filter]) -> int:
    """The rows that the filters select in the main file, which is what sizing copies."""
    if not database.file.is_file():
        return 0
    with opened(database.file, suffixes=("",)) as connection:
        total = 0
        for table in database.tables:
            if has_table(connection, table.name):
                where, values = table.condition(filters)
                total += connection.execute(
                    f"SELECT COUNT(*) FROM {table.name} WHERE {where}", values).fetchone()[0]
    return total


Rows = dict[str, list[tuple]]


def rows_of(path: Path, tables: Iterable[Table] = (), filters: Iterable[Filter] = ()) -> Rows:
    """Every row of every table, without those that the filters select in the given tables."""
    chosen = {table.name: table for table in tables}
    with opened(path) as database:
        names = [name.decode() for (name,) in database.execute(
            "SELECT name FROM sqlite_master WHERE type = 'table' AND sql NOT LIKE '%VIRTUAL%' "
            "ORDER BY name")]
        found = {}
        for name in names:
            where, values = (chosen[name].condition(filters) if name in chosen else ("0", []))
            # A row whose condition is NULL is not selected, so it stays.
            rows = database.execute(
                f'SELECT * FROM "{name}" WHERE ({where}) IS NOT TRUE', values).fetchall()
            found[name] = sorted(rows, key=repr)
    return found


def integrity(path: Path) -> str:
    with opened(path) as database:
        return database.execute("PRAGMA integrity_check").fetchone()[0].decode()


# --- The JSON that is expected ------------------------------------------------------------------

def size_json(items: int, item_approximate: bool, count: int, byte_approximate: bool) -> dict:
    return {"itemCount": {"value": items, "isApproximate": item_approximate},
            "byteCount": {"value": count, "isApproximate": byte_approximate}}


def added(sizes: Iterable[dict]) -> dict:
    total = size_json(0, False, 0, False)
    for size in sizes:
        for key, measurement in total.items():
            measurement["value"] += size[key]["value"]
            measurement["isApproximate"] |= size[key]["isApproximate"]
    return total


def subtracted(before: dict, after: dict) -> dict:
    return {key: {"value": before[key]["value"] - after[key]["value"],
                  "isApproximate": before[key]["isApproximate"] or after[key]["isApproximate"]}
            for key in before}


def item_size(item: Item, filters: Iterable[Filter]) -> dict:
    if isinstance(item, Directory):
        files = item.files(filters)
        return size_json(len(files), False, sum(files.values()), False)
    rows = selected_rows(item, filters)
    return size_json(rows, False, item.file.stat().st_size if rows else 0, rows > 0)


def expected_size(found: list[Profile], browser: str, filters: Iterable[Filter] = (),
                  categories: Iterable[str] = CATEGORIES, key: str = "size") -> dict:
    """The whole document of `size --json`; with the key "removed" the common part of `clean`."""
    entries = []
    for category in CATEGORIES:
        items = [item for profile in found for item in profile.items[category]]
        if category in categories and found:
            entries.append({
                "category": category, "error": None,
                key: added(item_size(item, filters) for item in items),
                "requiresClosedBrowserToClean": any(item.needs_closed_browser
                                                    for item in items)})
    total = added(entry[key] for entry in entries)
    return {"total": total, "browsers": [{
        "browser": browser, "error": None, key: total,
        "requiresClosedBrowserToClean": any(entry["requiresClosedBrowserToClean"]
                                            for entry in entries),
        "categories": entries}]}


def expected_removed(before: dict, after: dict) -> dict:
    """What a clean has to report, from the expected sizes before and after it."""
    (old,), (new,) = before["browsers"], after["browsers"]
    categories = []
    if len(old["categories"]) != len(new["categories"]):
        raise ValueError("the clean changed which categories there are")
    for first, last in zip(old["categories"], new["categories"]):
        categories.append({"category": first["category"], "error": None,
                           "removed": subtracted(first["size"], last["size"]),
                           "requiresClosedBrowserToClean":
                               first["requiresClosedBrowserToClean"]})
    total = added(entry["removed"] for entry in categories)
    return {"dryRun": False, "total": total, "browsers": [{
        "browser": old["browser"], "error": None, "removed": total,
        "requiresClosedBrowserToClean": old["requiresClosedBrowserToClean"],
        "categories": categories}]}


def expected_profiles(found: list[Profile], browser: str) -> dict:
    return {"browsers": [{"browser": browser, "error": None, "profiles": [
        {"name": profile.name, "isPrimary": profile.is_primary} for profile in found]}]}


def chromium_bookmarks(node: dict) -> Iterator[dict]:
    for child in node.get("children", ()):
        yield from chromium_bookmarks(child)
    if "url" in node:
        yield {"name": node.get("name"), "url": node["url"]}


def profile_bookmarks(profile: Profile, browser: str) -> list[dict]:
    if browser == "chromium":
        roots = json.loads((profile.folder / "Bookmarks").read_text("utf-8"))["roots"]
        return [mark for root in roots.values() for mark in chromium_bookmarks(root)]
    with opened(profile.folder / "places.sqlite", suffixes=("",)) as database:
        database.text_factory = str
        return [{"name": title, "url": url} for title, url in database.execute(
            "SELECT b.title, (SELECT url FROM moz_places p WHERE p.id = b.fk) AS address "
            "FROM moz_bookmarks b WHERE address IS NOT NULL ORDER BY b.id")]


def expected_bookmarks(found: list[Profile], browser: str) -> dict:
    return {"browsers": [{"browser": browser, "error": None, "bookmarks": [
        mark for profile in found for mark in profile_bookmarks(profile, browser)]}]}


def profile_subscriptions(profile: Profile, browser: str) -> list[dict]:
    if browser == "chromium":
        store = profile.folder / "Preferences"
        settings = json.loads(store.read_text("utf-8"))["profile"]["content_settings"]
        origins = [piece for key, entry in settings["exceptions"]["notifications"].items()
                   if entry["setting"] == 1 for piece in key.split(",") if piece not in ("", "*")]
    else:
        store = profile.folder / "permissions.sqlite"
        with opened(store, suffixes=("",)) as database:
            # "^" begins a suffix of the browser's own, which makes the origin no URL.
            origins = [origin.decode() for (origin,) in database.execute(
                "SELECT origin FROM moz_perms WHERE type = 'desktop-notification' "
                "AND permission = 1 ORDER BY id") if b"^" not in origin]
    return [{"sourceURL": origin, "store": str(store)} for origin in origins]


def expected_notifications(found: list[Profile], browser: str) -> dict:
    return {"browsers": [{"browser": browser, "error": None, "profiles": [
        {"name": profile.name, "isPrimary": profile.is_primary, "error": None,
         "subscriptions": profile_subscriptions(profile, browser)} for profile in found]}]}


# What documents say besides the figures that are counted here independently.
BESIDES = ("items", "freedBytes", "leftOut", "folder", "unseen")


def figures_of(document: object) -> object:
    """The document without what tells of single items, and of the same figures by profile."""
    if isinstance(document, dict):
        return {key: figures_of(value) for key, value in document.items()
                if key not in BESIDES and not (key == "profiles" and "categories" in document)}
    return [figures_of(value) for value in document] if isinstance(document, list) else document


def is_whole(items: list[dict]) -> bool:
    """Whether all that was selected of these items is gone, by what the document says of them."""
    return all(item["verdict"] in ("emptied", "nothingThere") for item in items)


def in_fixed_order(document: object) -> object:
    """The document with the lists that have no fixed order (profiles, bookmarks, sites) sorted."""
    if isinstance(document, dict):
        return {key: sorted(map(in_fixed_order, value), key=lambda v: json.dumps(v, sort_keys=True))
                if key in ("profiles", "bookmarks", "subscriptions") else in_fixed_order(value)
                for key, value in document.items()}
    if isinstance(document, list):
        return [in_fixed_order(value) for value in document]
    return document
