"""What another program may have done to a home. Each is done to a HostileHome and returns what it did, for
people, or None where it found nothing to do it to. What it puts out of reach it hides: no figure may be
exact about that.
"""

import json
import os
import pathlib
import shutil
import sqlite3

from homes import leave_log

CHROMIUM = pathlib.PurePath("Library/Application Support/Chromium")
FIREFOX = pathlib.PurePath("Library/Application Support/Firefox")
SAFARI = pathlib.PurePath("Library/Safari")

# Names by which an entry of a list of profiles may lead elsewhere.
NAMES = ("", ".", "..", "../../..", "../..", "/", "/etc", "a/b", "Default\0x", "\0", "Default/", "x" * 300,
         "\u202edefault", "Profile 1/../..", "~", "*", "%", "'", "-rf")
PATHS = ("", ".", "..", "../../..", "/", "/etc", "Profiles/../../../..", "Profiles/x\0y", "~/Documents")


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
    home.unseen.discard(str(path))  # a folder holds no rows
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
    journal = path.with_name(path.name + "-journal")
    journal.unlink(missing_ok=True)  # it may have become a pipe, which would wait for a reader
    journal.write_bytes(header.ljust(512, b"\0") + tail)
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


def has_pipe_beside(path):
    """Who opens such a database waits for ever, but for the program."""
    return any(path.with_name(path.name + end).is_fifo() for end in ("-wal", "-shm", "-journal"))


def hostile_schema(home):
    path = home.any_database()
    if path is None or has_pipe_beside(path):
        return None
    with sqlite3.connect(path, timeout=0) as connection:
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
                home.without_tables.add(str(path))  # a view is no table, and has no rows
        except (sqlite3.Error, UnicodeDecodeError, IndexError):
            pass  # it was damaged before
    connection.close()
    return home.shown(path)


def waiting_log(home):
    """A browser that was killed leaves the log of its changes."""
    path = home.any_database()
    if path is None or any(path.with_name(path.name + end).exists() for end in ("-wal", "-journal", "-shm")):
        return None
    try:
        leave_log(path, home.root / "written")
    except (sqlite3.Error, UnicodeDecodeError):
        return None
    return home.shown(path)


def held(home):
    """Another program has the database for itself. Its own process: a lock of this one would be lost as
    soon as anything here closes the file."""
    path = home.any_database()
    if path is None or has_pipe_beside(path):
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
        path = os.path.join(os.fsencode(folder), name)
        if not os.path.lexists(path):  # it may have become a pipe, which would wait for a reader
            with open(path, "wb") as file:
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
    mode = home.random.choice((0o000, 0o100) if path.is_dir() else (0o000,))
    path.chmod(mode)
    if not home.is_of_root:
        # What may be entered and not listed shows the files whose names are known.
        (home.unseen if mode == 0 else home.unlisted).add(str(path))
    return f"{home.shown(path)} {mode:o}"


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


def mount(home):
    """A folder or a file of somebody else appears in the place of one that is selected, or nothing does."""
    if not home.has_mounts:
        return None
    path = home.any_file()
    if path is None:
        return None
    place = home.random.choice((path, path.parent, path.parent.parent))
    if place == home.home / "Library":
        return None
    if place.is_dir():
        what = home.random.choice((home.precious, home.home / "Documents", "empty"))
    else:
        what = home.random.choice((home.precious / "History", home.precious / "letter.txt"))
    if place.is_dir():
        home.hide(place)
    home.mounts.append(("empty" if what == "empty" else "bind", pathlib.Path(what), place))
    return f"{what} at {home.shown(place)}"


HOSTILITIES = (bad_profile_names, bad_profile_paths, broken_lists, link_for_file, link_for_folder,
               another_name, pipe, folder_for_file, journal_that_names_a_file, garbage, damaged_pages,
               hostile_schema, waiting_log, held, odd_names, deep_folders, sparse_file, denied, read_only,
               cookies_of_nobody, mount)
