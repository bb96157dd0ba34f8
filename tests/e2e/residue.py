"""Looks for markers under a home: where each stands, and why.

A place is a file without what differs from home to home: "C:" and "F:" are a profile's folder of
Chromium and Firefox, "Ccache:" and "Fcache:" its cache, "Croot:" and "Froot:" what lies above the
profiles. Not looked into: blocks of the disk that no file has, and bodies that a server compressed.
"""

from __future__ import annotations

import json
import os
import re
from collections import Counter
from collections.abc import Iterable, Iterator
from dataclasses import dataclass
from pathlib import Path

import carriers
from markers import markers_in
from planted import kind_of, word_of

FOLDERS = (
    (r"^Application Support/Chromium/(Default|Profile \d+)/", "C:"),
    (r"^Application Support/Firefox/Profiles/[^/]+/", "F:"),
    (r"^Application Support/Chromium/", "Croot:"),
    (r"^Application Support/Firefox/", "Froot:"),
    (r"^Caches/Chromium/[^/]+/", "Ccache:"),
    (r"^Caches/Firefox/Profiles/[^/]+/", "Fcache:"),
)
# What stands for a whole store, and how it is called.
STORES = (
    (r"C:(Service Worker/\w+|WebStorage/QuotaManager)(/|$)", r"C:\1"),
    (r"C:WebStorage/.*", "C:WebStorage/*"),
    (r"C:(Sessions|Sessions_Encrypted|IndexedDB|Local Storage|Session Storage|File System"
     r"|Platform Notifications|Shared Dictionary|shared_proto_db|Site Characteristics Database"
     r"|Local Extension Settings|BudgetDatabase|Download Service|blob_storage)/.*", r"C:\1"),
    (r"F:storage/([\w-]+)/[^/]+/(idb|ls|cache|fs)/.*", r"F:storage/\1/*/\2"),
    (r"F:storage/([\w-]+)/[^/]+(/.*|$)", r"F:storage/\1/*\2"),
    (r"F:(sessionstore-backups|bookmarkbackups)/.*", r"F:\1"),
    (r"([CF]cache:[^/]+(/(js|wasm|entries|doomed|Cache_Data))?)/.*", r"\1"),
)
LEVELDB_FILE = re.compile(r"(\.log|\.ldb|/LOG|/LOG\.old|/MANIFEST-\d+)$")
JOURNAL = re.compile(r"-(wal|shm|journal)$")


@dataclass(frozen=True, order=True)
class Found:
    place: str
    why: str
    marker: str

    def __str__(self) -> str:
        return f"{self.place} ({self.why}): {self.marker}"


def place_of(relative: str) -> str:
    for pattern, name in FOLDERS:
        relative = re.sub(pattern, name, relative)
    relative = JOURNAL.sub("", relative)
    for pattern, name in STORES:
        if re.match(pattern, relative):
            return re.sub(f"^{pattern}.*$", name, relative)
    return relative


def files_of(library: Path) -> Iterator[Path]:
    return (path for path in sorted(library.rglob("*")) if path.is_file() and not path.is_symlink())


def in_database(path: Path, data: bytes) -> Iterator[tuple[str, Iterable[str]]]:
    with carriers.copied(path) as database:
        for table, values in carriers.table_values(database).items():
            yield f"row of {table}", markers_in(values)
        whole = markers_in(data)
        dense = markers_in(carriers.compacted(database)) if whole else whole
    yield "free space", [marker for marker in whole if whole[marker] > dense[marker]]


def keys_with_markers(value: object, keys: tuple[str, ...] = ()) -> Iterator[tuple[str, str]]:
    """Of a document: where markers stand, without the key that names the site itself."""
    if isinstance(value, dict):
        for key, inner in value.items():
            for marker in markers_in(key.encode()):
                yield ".".join(keys), marker
            yield from keys_with_markers(inner, (*keys, key))
    elif isinstance(value, list):
        for inner in value:
            yield from keys_with_markers(inner, keys)
    else:
        for marker in markers_in(str(value).encode()):
            yield ".".join(keys), marker


def in_preferences(data: bytes) -> Iterator[tuple[str, Iterable[str]]]:
    yield from ((f"key {keys}", [marker]) for keys, marker in keys_with_markers(json.loads(data)))


def in_file(path: Path) -> Iterator[tuple[str, Iterable[str]]]:
    """Why markers stand in a file, and which."""
    data = path.read_bytes()
    if JOURNAL.search(path.name):
        yield "journal", markers_in(data)
    elif data.startswith(carriers.SQLITE):
        yield from in_database(path, data)
    elif path.name in ("Preferences", "Secure Preferences"):
        yield from in_preferences(data)
    else:
        why = "leveldb" if LEVELDB_FILE.search(str(path)) else "file"
        yield why, markers_in(data) + markers_in(carriers.decoded(path, data))


def residue(library: Path) -> set[Found]:
    """Every marker below the folder, in files and in names."""
    found = set()
    for path in files_of(library):
        place = place_of(str(path.relative_to(library)))
        found |= {Found(place, why, marker) for why, markers in in_file(path) for marker in markers}
    for path in library.rglob("*"):
        place = place_of(str(path.relative_to(library)))
        found |= {Found(place, "name", marker) for marker in markers_in(os.fsencode(path.name))}
    return found


# --- What must stay -----------------------------------------------------------------------------

LIVE_LEVELDB = ("Local Storage/leveldb", "Session Storage", "Platform Notifications",
                "File System/Origins", "Service Worker/Database")


def databases_of(profile: Path) -> Iterator[Path]:
    for path in files_of(profile):
        with path.open("rb") as file:
            if file.read(len(carriers.SQLITE)) == carriers.SQLITE:
                yield path


def contents(profile: Path) -> dict[str, dict[str, bytes]]:
    """What is alive in a profile's databases, by database and by table; leveldb has one."""
    found = {}
    for path in databases_of(profile):
        with carriers.copied(path) as database:
            found[str(path.relative_to(profile))] = carriers.table_values(database)
    for name in LIVE_LEVELDB:
        if (profile / name).is_dir():
            found[name] = {"records": b"\n".join(
                key + b" " + value for key, value in carriers.leveldb_records(profile / name))}
    return found


def alive(profile: Path, folder: str) -> Counter:
    """How often each marker stands in each place of what is alive in a profile."""
    found: Counter = Counter()
    for name, tables in contents(profile).items():
        place = place_of(f"{folder}{name}/" if name in LIVE_LEVELDB else f"{folder}{name}")
        for table, values in tables.items():
            for marker, count in markers_in(values).items():
                found[place, table, marker] += count
    return found


def of_words(found: Iterable[Found], *words: str) -> set[Found]:
    return {each for each in found if word_of(each.marker) in words}


@dataclass(frozen=True)
class Allowed:
    """What may stay: markers of these words and kinds in a place, for a reason."""

    place: str
    why: str
    kinds: str
    words: str

    def holds(self, found: Found) -> bool:
        return (re.fullmatch(self.place, found.place) is not None
                and re.fullmatch(self.why, found.why) is not None
                and kind_of(found.marker) in self.kinds.split()
                and word_of(found.marker) in self.words.split())


def beyond(found: Iterable[Found], *allowed: Allowed) -> list[str]:
    """What stands where it may not, as text."""
    return sorted(str(each) for each in found if not any(rule.holds(each) for rule in allowed))
