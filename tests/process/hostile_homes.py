"""Homes in which another program has done its worst: names, links, pipes, damage, permissions.

A home is a copy of a template with Chromium, Firefox and Safari, to which some hostilities are done; a
seed says which. What they put out of reach is noted, because no figure may be exact about it.
"""

import json
import os
import pathlib
import random
import shutil
import signal
import sqlite3
import stat
import subprocess
import tempfile

from homes import ROOT, scratch

CHROMIUM = pathlib.PurePath("Library/Application Support/Chromium")
FIREFOX = pathlib.PurePath("Library/Application Support/Firefox")
SAFARI = pathlib.PurePath("Library/Safari")
OTHER_BROWSERS = ("Google", "Microsoft Edge", "Vivaldi", "Orvo", "Yandex", "BraveSoftware", "Quenby",
                  "TARROW Software", "Brellis", "com.operasoftware.Opera")

# Names by which an entry of a list of profiles may lead elsewhere.
NAMES = ("", ".", "..", "../../..", "../..", "/", "/etc", "a/b", "Default\0x", "\0", "Default/", "x" * 300,
         "\u202edefault", "Profile 1/../..", "~", "*", "%", "'", "-rf")
PATHS = ("", ".", "..", "../../..", "/", "/etc", "Profiles/../../../..", "Profiles/x\0y", "~/Documents")


class HostileHome:
    """One home. Every choice follows from the seed."""

    def __init__(self, template, seed):
        self.random = random.Random(seed)
        # Where root runs the tests, every other home belongs to an ordinary user, who is denied things.
        self.is_of_root = os.getuid() == 0 and seed % 2 == 0
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="hostile.", dir=template.parent))
        self.home = self.root / "home"
        self.temporary = self.root / "tmp"
        self.precious = self.root / "precious"
        self.done = []    # what was done, for people
        self.unseen = set()  # files and folders of which nobody can tell what they hold
        self.holders = []  # processes that hold a database, and what they wait for
        subprocess.run(["cp", "-R", "-P", "-p", str(template), str(self.home)], check=True)
        for folder in (self.temporary, self.root / "own-home", self.precious):
            folder.mkdir()
        self._plant_precious()
        for _ in range(self.random.randint(1, 6)):
            hostility = self.random.choice(HOSTILITIES)
            note = hostility(self)
            if note:
                self.done.append(f"{hostility.__name__}: {note}")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for child, end in self.holders:
            os.kill(child, signal.SIGKILL)  # a later one has a copy of what an earlier one waits for
            os.waitpid(child, 0)
            os.close(end)
        for place, folders, _ in os.walk(self.root):
            for name in folders:
                path = os.path.join(place, name)
                if not os.path.islink(path):
                    os.chmod(path, 0o700)
        shutil.rmtree(self.root)

    def _plant_precious(self):
        for folder in (self.precious, self.home / "Documents", self.home / "Library/Mail",
                       self.home / "Library", self.home / CHROMIUM.parent, self.home / CHROMIUM):
            folder.mkdir(exist_ok=True)
            (folder / "letter.txt").write_text("Dear Sir", encoding="utf-8")
            (folder / "Cache").mkdir(exist_ok=True)
            (folder / "Cache" / "kept").write_text("kept", encoding="utf-8")
            with sqlite3.connect(folder / "History") as connection:
                connection.execute("CREATE TABLE IF NOT EXISTS urls (id, url, last_visit_time)")
                connection.execute("INSERT INTO urls VALUES (1, 'https://secret.example/', 1)")
            connection.close()

    # What hostilities are done to.

    def files(self, *below):
        """Regular files below some places, in an order that only the template decides."""
        found = []
        for start in below:
            if os.path.realpath(self.home / start) != os.path.join(os.path.realpath(self.home), start):
                continue  # a hostility has put a link on the way
            for place, folders, names in os.walk(self.home / start):
                folders.sort()
                found += [pathlib.Path(place, name) for name in sorted(names)]
        return [path for path in found if stat.S_ISREG(path.lstat().st_mode)]

    def databases(self):
        return [path for path in self.files(CHROMIUM, FIREFOX, SAFARI)
                if os.access(path, os.R_OK) and path.read_bytes()[:16] == b"SQLite format 3\0"
                and path.parent != self.home / CHROMIUM]

    def cached(self):
        return self.files("Library/Caches/Chromium", "Library/Caches/Firefox")

    def any_database(self):
        found = self.databases()
        return self.random.choice(found) if found else None

    def any_file(self):
        found = self.databases() + self.cached()
        return self.random.choice(found) if found else None

    def hide(self, path):
        """Notes that nobody can tell any more what was at this path."""
        self.unseen.add(str(path))

    def shown(self, path):
        return str(path.relative_to(self.root))


def bad_profile_names(home):
    """Any program of the user can write the list of profiles."""
    state = home.home / CHROMIUM / "Local State"
    try:
        document = json.loads(state.read_text(encoding="utf-8"))
    except (OSError, ValueError):
        return None
    name = home.random.choice(NAMES + (str(home.precious),))
    document["profile"]["info_cache"][name] = {"name": "hostile", "is_consented_primary_account": False}
    state.write_text(json.dumps(document), encoding="utf-8")
    return repr(name)


def bad_profile_paths(home):
    path = home.random.choice(PATHS + (str(home.precious), os.path.relpath(home.precious, home.home)))
    relative = home.random.choice("01")
    with open(home.home / FIREFOX / "profiles.ini", "a", encoding="utf-8") as ini:
        ini.write(f"\n[Profile9]\nName=hostile\nIsRelative={relative}\nPath={path}\n")
    return repr(path)


def broken_lists(home):
    path = home.home / home.random.choice((CHROMIUM / "Local State", FIREFOX / "profiles.ini",
                                           CHROMIUM / "Default/Preferences", CHROMIUM / "Default/Bookmarks"))
    if not path.is_file():
        return None
    contents = bytearray(path.read_bytes())
    for _ in range(home.random.randint(1, 4)):
        contents[home.random.randrange(len(contents))] = home.random.randrange(256)
    path.write_bytes(contents[:home.random.randint(1, len(contents))])
    return home.shown(path)


def link_for_file(home):
    path = home.any_file()
    if path is None:
        return None
    path.unlink()
    path.symlink_to(home.random.choice((home.precious / "letter.txt", home.precious / "History",
                                        home.precious, home.root / "nothing")))
    home.hide(path)
    return home.shown(path)


def link_for_folder(home):
    folder = home.home / home.random.choice((
        CHROMIUM / "Default", CHROMIUM / "Profile 1", CHROMIUM / "Default/Local Storage", CHROMIUM,
        FIREFOX / "Profiles", SAFARI, "Library/Caches/Chromium", "Library/Caches/Chromium/Default/Cache",
        "Library/Caches", "Library/Caches/Firefox"))
    if folder.is_symlink() or not folder.is_dir():
        return None
    shutil.rmtree(folder)
    folder.symlink_to(home.random.choice((home.precious, home.home / "Documents", "..", "/")))
    home.hide(folder)
    return home.shown(folder)


def another_name(home):
    """A hard link: the name may go, what the file holds may not."""
    path = home.any_file()
    if path is None:
        return None
    if path in home.databases():
        companion = path.with_name(path.name + home.random.choice(("-wal", "-shm", "-journal")))
        if companion.exists():
            return None
        os.link(home.precious / "letter.txt", companion)
        home.hide(path)
        return home.shown(companion)
    path.unlink()
    os.link(home.precious / "letter.txt", path)
    return home.shown(path)


def pipe(home):
    path = home.any_file()
    if path is None:
        return None
    if path in home.databases() and home.random.random() < 0.5:
        home.hide(path)
        path = path.with_name(path.name + home.random.choice(("-wal", "-shm", "-journal")))
        if path.exists():
            return None
    else:
        path.unlink()
        if path not in home.cached():
            home.hide(path)
    os.mkfifo(path)
    return home.shown(path)


def folder_for_file(home):
    path = home.any_database()
    if path is None:
        return None
    path.unlink()
    path.mkdir()
    (path / "inside").write_text("kept", encoding="utf-8")
    return home.shown(path)


def journal_that_names_a_file(home):
    """SQLite deletes what the end of a journal names, once it has played it back."""
    path = home.any_database()
    if path is None:
        return None
    name = str(home.precious / "letter.txt").encode()
    magic = b"\xd9\xd5\x05\xf9\x20\xa1\x63\xd7"
    header = magic + (0).to_bytes(4, "big") + bytes(4) + (1).to_bytes(4, "big")
    header += (512).to_bytes(4, "big") + (4096).to_bytes(4, "big")
    pages = (0x40000000 // 4096 + 1).to_bytes(4, "big")
    tail = pages + name + len(name).to_bytes(4, "big") + (sum(name) & 0xFFFFFFFF).to_bytes(4, "big") + magic
    path.with_name(path.name + "-journal").write_bytes(header.ljust(512, b"\0") + tail)
    home.hide(path)
    return home.shown(path)


def garbage(home):
    path = home.any_database()
    if path is None:
        return None
    path.write_bytes(home.random.randbytes(home.random.choice((100, 5000))))
    home.hide(path)
    return home.shown(path)


def damaged_pages(home):
    path = home.any_database()
    if path is None:
        return None
    contents = bytearray(path.read_bytes())
    for _ in range(home.random.randint(1, 3)):
        start = home.random.randrange(100, len(contents))
        contents[start:start + 64] = home.random.randbytes(64)
    path.write_bytes(contents[:home.random.choice((len(contents), len(contents) // 2))])
    home.hide(path)
    return home.shown(path)


def hostile_schema(home):
    path = home.any_database()
    if path is None:
        return None
    with sqlite3.connect(path) as connection:
        try:
            tables = [name for (name,) in connection.execute(
                "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite_%'")]
            table, other = home.random.choice(tables), home.random.choice(tables)
            connection.execute(f'CREATE TRIGGER bomb BEFORE DELETE ON "{table}" BEGIN '
                               f'DELETE FROM "{other}"; END')
            if home.random.random() < 0.5:
                connection.execute(f'ALTER TABLE "{table}" RENAME TO hidden')
                connection.execute(f'CREATE VIEW "{table}" AS WITH RECURSIVE n(i) AS '
                                   "(VALUES(1) UNION ALL SELECT i + 1 FROM n) SELECT i, i AS url FROM n")
        except (sqlite3.Error, IndexError):
            pass
    connection.close()
    return home.shown(path)


def waiting_log(home):
    """A browser that was killed leaves the log of its changes."""
    path = home.any_database()
    if path is None or any(path.with_name(path.name + end).exists() for end in ("-wal", "-journal", "-shm")):
        return None
    copy = home.root / "written"
    shutil.copyfile(path, copy)
    connection = sqlite3.connect(copy)
    try:
        connection.execute("PRAGMA journal_mode = WAL")
        connection.execute("PRAGMA wal_autocheckpoint = 0")
        connection.execute("CREATE TABLE IF NOT EXISTS later (x)")
        connection.execute("INSERT INTO later VALUES (1)")
        connection.commit()
        for end in ("", "-wal"):
            shutil.copyfile(f"{copy}{end}", f"{path}{end}")
    except sqlite3.Error:
        return None
    finally:
        connection.close()
        for end in ("", "-wal", "-shm"):
            pathlib.Path(f"{copy}{end}").unlink(missing_ok=True)
    return home.shown(path)


def held(home):
    """Another program has the database for itself. Its own process: a lock of this one would be lost as
    soon as anything here closes the file."""
    path = home.any_database()
    if path is None:
        return None
    ready, tell = os.pipe()
    wait, end = os.pipe()
    child = os.fork()
    if child == 0:
        os.close(end)
        hold(path, tell, wait)
    os.close(tell)
    os.close(wait)
    is_held = os.read(ready, 1) == b"1"
    os.close(ready)
    home.holders.append((child, end))
    if is_held:
        home.hide(path)
    return home.shown(path) if is_held else None


def hold(path, tell, wait):
    """Holds a database until the other end of a pipe is closed. Never returns."""
    connection = sqlite3.connect(path, isolation_level=None, timeout=0)
    try:
        connection.execute("BEGIN EXCLUSIVE")
        os.write(tell, b"1")
    except sqlite3.Error:
        os.write(tell, b"0")
    os.read(wait, 1)
    os._exit(0)


def odd_names(home):
    folder = home.home / "Library/Caches/Chromium/Default/Cache"
    if not folder.is_dir() or folder.is_symlink():
        return None
    for name in (b"\n", b"\xff\xfe", b" ", b"-rf", b"\x1b[2J", "e\u0301".encode(), b"x" * 255):
        with open(os.path.join(os.fsencode(folder), name), "wb") as file:
            file.write(b"data")
    return home.shown(folder)


def deep_folders(home):
    folder = home.home / "Library/Caches/Chromium/Default"
    if not folder.is_dir() or folder.is_symlink() or (folder / "deep-below").exists():
        return None
    # Longer than a path may be, so by steps.
    here = os.open(folder, os.O_RDONLY)
    for _ in range(300):
        os.mkdir("deep-below", dir_fd=here)
        deeper = os.open("deep-below", os.O_RDONLY, dir_fd=here)
        os.close(here)
        here = deeper
    os.close(os.open("file", os.O_CREAT | os.O_WRONLY, 0o600, dir_fd=here))
    os.close(here)
    return home.shown(folder)


def sparse_file(home):
    found = home.cached()
    if not found:
        return None
    path = home.random.choice(found)
    try:
        os.truncate(path, home.random.choice((1 << 32, 1 << 40)))
    except OSError:
        return None
    return home.shown(path)


def denied(home):
    path = home.any_file()
    if path is None:
        return None
    path = home.random.choice((path, path.parent))
    path.chmod(home.random.choice((0o000, 0o100) if path.is_dir() else (0o000,)))
    if not home.is_of_root:
        home.hide(path)
    return home.shown(path)


def read_only(home):
    path = home.any_file()
    if path is None:
        return None
    path = home.random.choice((path, path.parent))
    path.chmod(0o500 if path.is_dir() else 0o400)
    return home.shown(path)


def cookies_of_nobody(home):
    path = home.home / "Library/Cookies/Cookies.binarycookies"
    if not path.is_file():
        return None
    contents = bytearray(path.read_bytes())
    for _ in range(home.random.randint(1, 8)):
        contents[home.random.randrange(len(contents))] = home.random.randrange(256)
    path.write_bytes(contents[:home.random.randint(1, len(contents))])
    home.hide(path)
    return home.shown(path)


HOSTILITIES = (bad_profile_names, bad_profile_paths, broken_lists, link_for_file, link_for_folder,
               another_name, pipe, folder_for_file, journal_that_names_a_file, garbage, damaged_pages,
               hostile_schema, waiting_log, held, odd_names, deep_folders, sparse_file, denied, read_only,
               cookies_of_nobody)


def make_template():
    """A home with three browsers, in a folder of its own; who asked removes that."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix="browsersweep-hostile.", dir=scratch()))
    folder.chmod(0o755)
    home = folder / "template"
    subprocess.run([os.sys.executable, "-B", str(ROOT / "scripts/sample/make_home.py"), str(home)], check=True,
                   stdout=subprocess.DEVNULL)
    for name in OTHER_BROWSERS:
        for parent in ("Application Support", "Caches"):
            shutil.rmtree(home / "Library" / parent / name, ignore_errors=True)
    for place, _, names in os.walk(home / "Library" / "Caches"):
        for name in sorted(names)[3:]:
            os.remove(os.path.join(place, name))
    return home
