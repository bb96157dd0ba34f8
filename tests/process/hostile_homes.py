"""Homes in which another program has done its worst: names, links, pipes, mounts, damage, permissions.

A home is a copy of a template with Chromium, Firefox and Safari, to which some hostilities are done; a
seed says which. What they put out of reach is noted, because no figure may be exact about it.
"""

import os
import pathlib
import random
import shutil
import signal
import sqlite3
import stat
import subprocess
import sys
import tempfile

from homes import ROOT, scratch
from hostilities import CHROMIUM, FIREFOX, HOSTILITIES, SAFARI

OTHER_BROWSERS = ("Google", "Microsoft Edge", "Vivaldi", "Orvo", "Yandex", "BraveSoftware", "Quenby",
                  "TARROW Software", "Brellis", "com.operasoftware.Opera")
# Does the mounts that precede "--", each as three words, in a process that has its own, then the command.
MOUNTER = """
while [ "$1" != -- ]; do
    if [ "$1" = empty ]; then mount -t tmpfs none "$3"; else mount --bind "$2" "$3"; fi || exit 99
    shift 3
done
shift
exec "$@"
"""


def may_mount():
    """Whether this process may have mounts of its own."""
    return (os.getuid() == 0 and shutil.which("unshare") is not None and shutil.which("setpriv") is not None
            and subprocess.run(["unshare", "--mount", "mount", "-t", "tmpfs", "none", "/mnt"], check=False,
                               stderr=subprocess.DEVNULL).returncode == 0)


class HostileHome:
    """One home. Every choice follows from the seed."""

    def __init__(self, template, seed, has_mounts=False):
        self.random = random.Random(seed)
        # Where root runs the tests, every other home belongs to an ordinary user, who is denied things.
        self.is_of_root = os.getuid() == 0 and seed % 2 == 0
        self.has_mounts = has_mounts
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="hostile.", dir=template.parent))
        self.home = self.root / "home"
        self.temporary = self.root / "tmp"
        self.precious = self.root / "precious"
        self.done = []    # what was done, for people
        self.unseen = set()  # files and folders of which nobody can tell what they hold
        self.unlisted = set()  # folders of which only their list is denied
        self.without_tables = set()  # databases with something else in the place of a table
        self.mounts = []  # what is mounted where while the program runs
        self.holders = []  # processes that hold a database, and what they wait for
        subprocess.run(["cp", "-R", "-P", "-p", f"{template}/.", str(self.root)], check=True)
        for _ in range(self.random.randint(1, 6)):
            hostility = self.random.choice(HOSTILITIES)
            note = hostility(self)
            if note:
                self.done.append(f"{hostility.__name__}: {note}")
        self._settle_mounts()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for child, end in self.holders:
            os.kill(child, signal.SIGKILL)  # a later one has a copy of what an earlier one waits for
            os.waitpid(child, 0)
            os.close(end)
        if os.getuid() != 0:
            for place, folders, _ in os.walk(self.root):
                for name in folders:
                    path = os.path.join(place, name)
                    if not os.path.islink(path):
                        os.chmod(path, 0o700)
        shutil.rmtree(self.root)

    def _settle_mounts(self):
        """What lies deepest is mounted first, before another mount hides its place; no mount follows a link."""
        home = os.path.realpath(self.home)

        def is_possible(mount):
            _, what, place = mount
            return (os.path.exists(place) and place.is_dir() == (not what.is_file()) and
                    os.path.realpath(place) == os.path.join(home, place.relative_to(self.home)))

        self.mounts = sorted(filter(is_possible, self.mounts), key=lambda mount: -len(mount[2].parts))
        # A sound database in the place of a file can be looked into, whatever was done to that file before.
        sound = self.precious / "History"
        self.unseen -= {str(place) for *_, place in self.mounts if self.seen(place) == sound}

    def prefix(self, user):
        """What is put before a command so that it finds the mounts, and is run by that user."""
        if not self.mounts:
            return []
        as_user = [] if user is None else ["setpriv", f"--reuid={user}", f"--regid={user}", "--clear-groups"]
        places = [str(word) for mount in self.mounts for word in mount]
        return ["unshare", "--mount", "sh", "-c", MOUNTER, "sh", *places, "--", *as_user]

    def seen(self, path):
        """Where that lies which the program finds at a path; None where an empty folder hides it."""
        for kind, what, place in reversed(self.mounts):
            if path.is_relative_to(place):
                return None if kind == "empty" and path != place else what / path.relative_to(place)
        return path

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
                if path.parent != self.home / CHROMIUM and is_database(path)]

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


def is_database(path):
    if not os.access(path, os.R_OK):
        return False
    with open(path, "rb") as file:
        return file.read(16) == b"SQLite format 3\0"


def plant_precious(root):
    """Puts beside what browsers keep, and above it, what looks like it and is the user's own."""
    home = root / "home"
    for folder in (root / "precious", home / "Documents", home / "Library/Mail", home / "Library",
                   home / CHROMIUM.parent, home / CHROMIUM):
        folder.mkdir(exist_ok=True)
        (folder / "letter.txt").write_text("Dear Sir", encoding="utf-8")
        (folder / "Cache").mkdir(exist_ok=True)
        (folder / "Cache" / "kept").write_text("kept", encoding="utf-8")
        with sqlite3.connect(folder / "History") as connection:
            connection.execute("CREATE TABLE IF NOT EXISTS urls (id, url, last_visit_time)")
            connection.execute("INSERT INTO urls VALUES (1, 'https://secret.example/', 1)")
        connection.close()


def make_template():
    """A home with three browsers and what is around it, in a folder of its own; who asked removes that."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix="browsersweep-hostile.", dir=scratch()))
    folder.chmod(0o755)
    root = folder / "template"
    for name in ("tmp", "own-home"):
        (root / name).mkdir(parents=True)
    home = root / "home"
    subprocess.run([sys.executable, "-B", str(ROOT / "scripts/sample/make_home.py"), str(home)], check=True,
                   stdout=subprocess.DEVNULL)
    for name in OTHER_BROWSERS:
        for parent in ("Application Support", "Caches"):
            shutil.rmtree(home / "Library" / parent / name, ignore_errors=True)
    for place, _, names in os.walk(home / "Library" / "Caches"):
        for name in sorted(names)[3:]:
            os.remove(os.path.join(place, name))
    plant_precious(root)
    return root
