"""Homes with the data of all browsers for the host program to work on, and what may become of them.

A home is a copy of a template, which is made once. What a full clean may touch is learnt from one
that nothing disturbs; everything else is precious and must stay as it is, byte for byte.
"""

import itertools
import os
import pathlib
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = pathlib.Path(
    os.environ.get("BROWSERSWEEP_PROGRAM", ROOT / "build" / "debug" / "cli" / "browsersweep"))
COOKIES = pathlib.PurePath("Library", "Cookies", "Cookies.binarycookies")
SQLITE_START = b"SQLite format 3\0"
FILES_KEPT_PER_FOLDER = 2

# Whose turn it is among the processors; programs that run side by side begin with different ones.
turns = itertools.count(os.getpid())

# Never touched, whatever is selected.
PRECIOUS = ("Bookmarks", "Bookmarks.plist", "Preferences", "Local State", "profiles.ini",
            "Permissions.plist", "Login Data", "letter.txt")


def scratch():
    """Where homes are quick to make: a file system in memory, if there is one."""
    memory = pathlib.Path("/dev/shm")
    return str(memory) if os.access(memory, os.W_OK) else None


def read_tree(folder):
    """Relative path -> bytes of every file; links by their target."""
    found, waiting = {}, [""]
    while waiting:
        place = waiting.pop()
        with os.scandir(os.path.join(folder, place)) as entries:
            for entry in entries:
                relative = place + entry.name
                if entry.is_symlink():
                    found[relative] = os.readlink(entry.path).encode()
                elif entry.is_dir():
                    waiting.append(relative + "/")
                else:
                    found[relative] = read_file(entry.path)
    return found


def read_file(path):
    """As open(path, "rb").read(), but these are tens of thousands of small files."""
    descriptor = os.open(path, os.O_RDONLY)
    try:
        pieces = []
        while piece := os.read(descriptor, 1 << 20):
            pieces.append(piece)
        return b"".join(pieces)
    finally:
        os.close(descriptor)


def tables_of(path):
    """Table -> its rows, in the order of their row numbers."""
    connection = sqlite3.connect(path)
    connection.text_factory = bytes
    try:
        names = connection.execute("SELECT name FROM sqlite_master WHERE type = 'table'").fetchall()
        return {name: connection.execute(f'SELECT * FROM "{name.decode()}"').fetchall()
                for (name,) in names}
    finally:
        connection.close()


def leave_log(path, scratch):
    """Leaves the log of a change beside a database, without its index, as a browser that was killed."""
    shutil.copyfile(path, scratch)
    connection = sqlite3.connect(scratch)
    try:
        connection.execute("PRAGMA journal_mode = WAL")
        connection.execute("PRAGMA wal_autocheckpoint = 0")
        connection.execute("CREATE TABLE IF NOT EXISTS later (x)")
        connection.execute("INSERT INTO later VALUES (1)")
        connection.commit()
        for end in ("", "-wal"):
            shutil.copyfile(f"{scratch}{end}", f"{path}{end}")
    finally:
        connection.close()
        for end in ("", "-wal", "-shm"):
            pathlib.Path(f"{scratch}{end}").unlink(missing_ok=True)


def damage_of(path):
    """What PRAGMA integrity_check finds, or None."""
    connection = sqlite3.connect(path)
    try:
        found = connection.execute("PRAGMA integrity_check").fetchall()
    finally:
        connection.close()
    return None if found == [("ok",)] else found


def is_database(contents):
    return contents.startswith(SQLITE_START)


def environment(temporary, own_home):
    values = {"PATH": os.environ["PATH"], "TMPDIR": str(temporary), "LC_ALL": "C",
              "HOME": str(own_home), "CFFIXED_USER_HOME": str(own_home)}  # which counts on macOS
    for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"):
        if name in os.environ:
            values[name] = os.environ[name]
    return values


class Template:
    """The home that all homes are copied from, and what an undisturbed full clean makes of it."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="browsersweep-process.", dir=scratch()))
        self.home = self.folder / "template"
        subprocess.run([sys.executable, "-B", str(ROOT / "scripts/sample/make_home.py"),
                        str(self.home)], check=True, stdout=subprocess.DEVNULL)
        self._thin_out()
        (self.home / "Documents").mkdir()
        (self.home / "Documents" / "letter.txt").write_text("Dear Sir", encoding="utf-8")
        self.before = read_tree(self.home)
        self.tables = {name: tables_of(self.home / name)
                       for name, contents in self.before.items() if is_database(contents)}

    def _thin_out(self):
        """Hundreds of equal cache files teach nothing more than two, and cost time."""
        for place, _, names in os.walk(self.home / "Library" / "Caches"):
            for name in sorted(names)[FILES_KEPT_PER_FOLDER:]:
                os.remove(os.path.join(place, name))

    def remove(self):
        shutil.rmtree(self.folder)


class Home:
    """One copy of the template, with folders of its own for temporary files."""

    def __init__(self, template):
        self.template = template
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="home.", dir=template.folder))
        self.home = self.root / "home"
        self.temporary = self.root / "tmp"
        # Hundreds of small files: twice as fast as shutil.copytree.
        subprocess.run(["cp", "-R", "-P", "-p", str(template.home), str(self.home)], check=True)
        self.temporary.mkdir()
        (self.root / "own-home").mkdir()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.root)

    @property
    def environment(self):
        return environment(self.temporary, self.root / "own-home")

    def command(self, *arguments):
        return [str(PROGRAM), "--home", str(self.home), *arguments]

    def run(self, *arguments, prefix=(), **options):
        return subprocess.run([*prefix, *self.command(*arguments)], env=self.environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, check=False, timeout=600, **options)

    def left_temporary_files(self):
        return [str(path) for path in self.temporary.rglob("*") if not path.is_dir()]


class Selection:
    """What a command may change: learnt from a run of it that nothing disturbs."""

    def __init__(self, template, *arguments):
        self.template = template
        with Home(template) as home:
            finished = home.run(*arguments)
            if finished.returncode != 0:
                raise AssertionError(finished.stderr.decode())
            self.after = read_tree(home.home)
            self.tables = {name: tables_of(home.home / name)
                           for name, contents in self.after.items() if is_database(contents)}
        self._verdicts = {}
        before = template.before
        self.removable = before.keys() - self.after.keys()
        self.changeable = {name for name, contents in self.after.items()
                           if before.get(name) != contents}
        touched = [name for name in self.removable | self.changeable
                   if pathlib.PurePath(name).name in PRECIOUS]
        if touched or not self.after.keys() <= before.keys():
            raise AssertionError(f"touched although nothing selects it: {touched}")

    def problems(self, home, after_crash=False):
        """What is wrong with a home on which the command ran, maybe not to its end."""
        found, now = [], read_tree(home.home)
        for name, contents in self.template.before.items():
            if name not in now:
                if name not in self.removable:
                    found.append(f"{name} is gone")
            elif now[name] != contents:
                found += self._problems_of_change(home, name, now[name])
        for name in now.keys() - self.template.before.keys():
            if not self._may_stay(name, after_crash):
                found.append(f"{name} was left behind")
        for name, contents in now.items():
            if is_database(contents) and name in self.template.before:
                found += self._verdict_on_database(home, name, now)
        if any((home.root / "own-home").iterdir()):
            found.append("the user's own home was touched")
        return found

    def _problems_of_change(self, home, name, contents):
        if name not in self.changeable:
            return [f"{name} was changed"]
        if pathlib.PurePath(name) == COOKIES and contents != self.after[name]:
            return [f"{name} is neither the old nor the new one"]
        return []

    def _may_stay(self, name, after_crash):
        """
        A journal or a log, which the next to open its database plays back: SQLite must leave it
        where it was cut off or could not play it back or remove it. After a crash the new cookie
        file, not yet in its place.
        """
        database, _, suffix = name.rpartition("-")
        if suffix in ("journal", "wal", "shm"):
            return database in self.changeable
        path = pathlib.PurePath(name)
        return (after_crash and path.parent == COOKIES.parent and
                path.name.startswith(f".{COOKIES.name}."))

    def _verdict_on_database(self, home, name, now):
        """What is wrong with a database. Cut at any moment most are as they were or as they become:
        what the same bytes with the same companions were found to be is not asked again."""
        state = (name, *(now.get(name + suffix) for suffix in ("", "-journal", "-wal", "-shm")))
        if state not in self._verdicts:
            self._verdicts[state] = self._problems_of_database(home, name)
        return self._verdicts[state]

    def _problems_of_database(self, home, name):
        damage = damage_of(home.home / name)
        if damage:
            return [f"{name}: {damage}"]
        if name not in self.changeable:
            return []
        now, old, new = tables_of(home.home / name), self.template.tables[name], self.tables[name]
        return [f"{name}: rows of {table.decode()} are lost"
                for table in old if not set(new[table]) <= set(now[table])]


class ProcessTest(unittest.TestCase):
    """Shares the template among the tests of a class."""

    @classmethod
    def setUpClass(cls):
        cls.template = Template()
        cls.addClassCleanup(cls.template.remove)


def strace(*options):
    """The command that runs another one under strace. Both stay on one processor: they always wait
    for each other, and to wake another processor at each system call takes five times as long."""
    if shutil.which("taskset") is None:
        return ["strace", *options]
    processors = sorted(os.sched_getaffinity(0))
    processor = processors[next(turns) % len(processors)]
    return ["taskset", "-c", str(processor), "strace", *options]


def strace_problem():
    """Why strace cannot be used here, or None."""
    if shutil.which("strace") is None:
        return "strace is not installed"
    tried = subprocess.run(strace("-f", "-o", os.devnull, "-e", "trace=none", "true"),
                           stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    return None if tried.returncode == 0 else tried.stdout.decode().strip()
