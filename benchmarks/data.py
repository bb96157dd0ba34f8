"""The data that the benchmarks work on, made once in a folder and reused."""

import json
import os
import plistlib
import shutil
import sqlite3
import struct
import subprocess
from pathlib import Path

from home import make_home

TREE_FOLDERS = 256
HOSTS = [f"www.host{number}.test" for number in range(1000)]


def make_tree(root: Path, files: int, with_bytes: bool = True) -> Path:
    """Files of up to 49 bytes, spread evenly over the folders of a tree. Without their bytes they
    say the same about themselves, and take a fifth of the memory."""
    if not root.exists():
        for number in range(TREE_FOLDERS):
            (root / f"d{number:03}").mkdir(parents=True)
        for number in range(files):
            path = root / f"d{number % TREE_FOLDERS:03}" / f"f_{number:06x}_entry"
            path.write_bytes(b"x" * (number % 50) if with_bytes else b"")
            if not with_bytes:
                os.truncate(path, number % 50)
    return root


def make_history(path: Path, rows: int) -> Path:
    """A "History" database of a Chromium-based browser; dates are plain numbers from 1 to rows."""
    if not path.exists():
        with sqlite3.connect(path) as database:
            database.execute("CREATE TABLE urls (id INTEGER PRIMARY KEY, url LONGVARCHAR, title "
                             "LONGVARCHAR, visit_count INTEGER, last_visit_time INTEGER NOT NULL)")
            database.executemany(
                "INSERT INTO urls VALUES (?, ?, ?, 1, ?)",
                ((n, f"https://{HOSTS[n % len(HOSTS)]}/page/{n}?q=some+words", f"Page {n}", n)
                 for n in range(1, rows + 1)))
        database.close()
    return path


def make_safari_history(path: Path, visits: int) -> Path:
    if not path.exists():
        with sqlite3.connect(path) as database:
            database.execute("CREATE TABLE history_items (id INTEGER PRIMARY KEY, url TEXT NOT NULL "
                             "UNIQUE, visit_count INTEGER NOT NULL)")
            database.execute("CREATE TABLE history_visits (id INTEGER PRIMARY KEY, history_item "
                             "INTEGER NOT NULL, visit_time REAL NOT NULL, title TEXT)")
            database.executemany("INSERT INTO history_items VALUES (?, ?, 4)",
                                 ((n, f"https://{HOSTS[n % len(HOSTS)]}/page/{n}")
                                  for n in range(1, visits // 4 + 1)))
            database.executemany("INSERT INTO history_visits VALUES (?, ?, ?, 'title')",
                                 ((n, 1 + n % (visits // 4), 500_000_000.5 + n)
                                  for n in range(1, visits + 1)))
            database.execute("CREATE INDEX history_visits__item ON history_visits (history_item)")
        database.close()
    return path


def cookie_record(number: int, created: float) -> bytes:
    texts = [HOSTS[number % len(HOSTS)], f"name{number}", "/", f"value-{number}-" + "v" * 20]
    offsets, position, body = [], 56, b""
    for text in texts:
        encoded = text.encode("ascii") + b"\0"
        offsets.append(position)
        position += len(encoded)
        body += encoded
    header = struct.pack("<4I6I2d", position, 1, 0, 0, *offsets, 0, 0, created + 1e7, created)
    return header + body


def make_cookies(path: Path, count: int, per_page: int = 20) -> Path:
    """A binary cookie file; creation dates are 1 to count."""
    if not path.exists():
        pages = []
        for start in range(0, count, per_page):
            records = [cookie_record(n, float(n + 1))
                       for n in range(start, min(start + per_page, count))]
            position, offsets = 12 + 4 * len(records), []
            for record in records:
                offsets.append(position)
                position += len(record)
            pages.append(struct.pack(f"<2I{len(records)}I", 0x100, len(records), *offsets)
                         .replace(struct.pack("<I", 0x100), b"\0\0\1\0", 1)
                         + b"\0\0\0\0" + b"".join(records))
        checksum = sum(sum(page[::4]) for page in pages) & 0xFFFFFFFF
        tail = plistlib.dumps({"NSHTTPCookieAcceptPolicy": 2}, fmt=plistlib.FMT_BINARY)
        path.write_bytes(b"cook" + struct.pack(f">I{len(pages)}I", len(pages), *map(len, pages))
                         + b"".join(pages) + struct.pack(">I", checksum)
                         + bytes.fromhex("071720050000004B") + tail)
    return path


def make_bookmarks(path: Path, size: int) -> Path:
    if not path.exists():
        node = {"date_added": "13285000000000000", "guid": "0" * 36, "id": "7", "type": "url",
                "name": "A bookmark with a title", "url": "https://www.example.test/some/page?q=1"}
        count = size // len(json.dumps(node, indent=3))
        roots = {name: {"children": [node] * (count // 3), "name": name, "type": "folder"}
                 for name in ("bookmark_bar", "other", "synced")}
        path.write_text(json.dumps({"roots": roots, "version": 1}, indent=3), "utf-8")
    return path


def make_preferences(path: Path, size: int) -> Path:
    if not path.exists():
        entry = {"last_modified": "13285000000000000", "setting": 1, "expiration": "0"}
        count = size // (len(json.dumps(entry)) + 40)
        sites = {f"https://site{number}.example.test:443,*": entry for number in range(count)}
        path.write_text(json.dumps({"profile": {"content_settings": {
            "exceptions": {"notifications": sites}}}}), "utf-8")
    return path


def make_all(folder: Path) -> dict[str, Path]:
    folder.mkdir(parents=True, exist_ok=True)
    return {
        "tree": make_tree(folder / "tree", 200_000),
        "tree-large": make_tree(folder / "tree-large", 2_000_000, with_bytes=False),
        "history": make_history(folder / "history", 1_000_000),
        "history-small": make_history(folder / "history-small", 100_000),
        "safari": make_safari_history(folder / "safari", 1_000_000),
        "cookies": make_cookies(folder / "cookies", 100_000),
        "bookmarks": make_bookmarks(folder / "bookmarks", 20_000_000),
        "preferences": make_preferences(folder / "preferences", 20_000_000),
        "used-home": make_home(folder / "used-home"),
    }


def fresh_copy(source: Path, target: Path) -> Path:
    """A copy to destroy, cheap where the file system can share blocks."""
    if target.is_dir():
        shutil.rmtree(target)
    subprocess.run(["cp", "-a", source, target], check=True)
    return target
