"""The host program on homes that another program has made as hostile as it can.

Five rules hold after each command, whatever the home is like: nothing outside the selection has changed;
the command ends; it shows no exact 0, and says of nothing that it is gone, where it could not look; the
temporary folder is empty; and the exit status agrees with the report.

BROWSERSWEEP_HOSTILE_HOMES says how many homes are made, BROWSERSWEEP_SEED which is the first. Where root
runs the tests, every other home belongs to an ordinary user, who runs the program.
"""

import json
import os
import pathlib
import re
import shutil
import stat
import subprocess
import unittest

from hostile_homes import HostileHome, make_template
from homes import PROGRAM, environment, read_file

HOMES = int(os.environ.get("BROWSERSWEEP_HOSTILE_HOMES", "100"))
SEED = int(os.environ.get("BROWSERSWEEP_SEED", "1"))
SERIES = 8
SECONDS = 60  # for one command; none takes a tenth of one
ORDINARY = 65534

ROWS = {"chromium": "Chromium", "firefox": "Firefox", "safari": "Safari"}
COMPANIONS = r"(-journal|-wal|-shm)?"
# What cleaning a category of a browser may change or delete, below Library.
CHANGEABLE = {
    ("chromium", "cache"): r"Caches/Chromium/[^/]+/.*",
    ("chromium", "history"): r"Application Support/Chromium/[^/]+/((History|Favicons|Top Sites|"
                             rf"Network Action Predictor){COMPANIONS}|Sessions/.*)",
    ("chromium", "httpCookies"): rf"Application Support/Chromium/[^/]+/Cookies{COMPANIONS}",
    ("chromium", "flashCookies"): r"Application Support/Chromium/[^/]+/Pepper Data/.*",
    ("chromium", "formData"): rf"Application Support/Chromium/[^/]+/Web Data{COMPANIONS}",
    ("chromium", "localStorage"): r"Application Support/Chromium/[^/]+/Local Storage/.*",
    ("firefox", "cache"): r"Caches/Firefox/Profiles/[^/]+/cache2/.*",
    ("firefox", "history"): rf"Application Support/Firefox/Profiles/[^/]+/places\.sqlite{COMPANIONS}",
    ("firefox", "httpCookies"): rf"Application Support/Firefox/Profiles/[^/]+/cookies\.sqlite{COMPANIONS}",
    ("firefox", "flashCookies"): r"Preferences/Macromedia/.*",
    ("firefox", "formData"): rf"Application Support/Firefox/Profiles/[^/]+/formhistory\.sqlite{COMPANIONS}",
    ("firefox", "localStorage"): rf"Application Support/Firefox/Profiles/[^/]+/webappsstore\.sqlite{COMPANIONS}",
    ("safari", "cache"): r"(Containers/com\.apple\.Safari/Data/Library/Caches/(com\.apple\.Safari|WebKit)"
                         r"|Caches/com\.apple\.Safari)/.*",
    ("safari", "history"): rf"Safari/History\.db{COMPANIONS}",
    ("safari", "httpCookies"): r"(Containers/com\.apple\.Safari/Data/Library/)?Cookies/"
                               r"Cookies\.binarycookies",
    ("safari", "flashCookies"): r"Preferences/Macromedia/.*",
    ("safari", "localStorage"): r"Safari/LocalStorage/.*",
}
READING = (("profiles",), ("size",), ("size", "--ignore-errors"), ("size", "--keep-going"),
           ("clean", "--dry-run"), ("bookmarks",), ("notifications",), ("doctor",),
           ("size", "--exclude", "example.com"))
CLEANING = (("clean", "--yes"), ("clean", "--yes", "--keep-going"), ("clean", "--yes", "--ignore-errors"),
            ("clean", "--yes", "--keep-going", "--include", "example.com"))
# The items that are folders, and count all that lies in them.
FOLDERS = re.compile(r"/(Caches/Chromium/[^/]+|cache2|Local Storage|Pepper Data|Macromedia|LocalStorage)/?$")
SUCCESS = {"measured", "emptied", "nothingThere"}


def state_of(path):
    """What a file is: its kind, mode and contents."""
    found = os.lstat(path)
    kind = stat.S_IFMT(found.st_mode)
    if kind == stat.S_IFLNK:
        return (kind, os.readlink(path))
    if kind != stat.S_IFREG:
        return (kind, stat.S_IMODE(found.st_mode))
    # A sparse file of a terabyte is known by its size.
    contents = b"" if found.st_size > 1 << 24 else read_file(path)
    return (kind, stat.S_IMODE(found.st_mode), found.st_size, contents)


def tree(root):
    """Path below the root -> its state. Folders count with their mode; no link is followed. Goes by
    descriptors, because paths may be longer than the system takes."""
    found, waiting = {}, [""]
    while waiting:
        place = waiting.pop()
        if len(place) > 3000:
            continue
        with os.scandir(os.path.join(os.fsencode(root), os.fsencode(place))) as entries:
            for entry in entries:
                relative = place + os.fsdecode(entry.name)
                found[relative] = state_of(entry.path)
                if entry.is_dir(follow_symlinks=False):
                    waiting.append(relative + "/")
    return found


def files_in(folder):
    """How many files and links lie in a folder, at any depth."""
    count = 0
    for _, folders, names, descriptor in os.fwalk(folder):
        count += len(names) + sum(stat.S_ISLNK(os.lstat(name, dir_fd=descriptor).st_mode) for name in folders)
    return count


class HostileHomes(unittest.TestCase):
    """One class for each share of the homes, so that they are tested side by side."""

    share = None

    @classmethod
    def setUpClass(cls):
        if cls.share is None:
            raise unittest.SkipTest("the shares of this class are tested")
        cls.template = make_template()

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.template.parent)

    def test_five_rules_hold_on_homes_of_a_hostile_program(self):
        for seed in range(SEED + self.share, SEED + HOMES, SERIES):
            with HostileHome(self.template, seed) as home:
                self.as_user = ORDINARY if os.getuid() == 0 and not home.is_of_root else None
                if self.as_user is not None:
                    subprocess.run(["chown", "-RhP", str(ORDINARY), str(home.root)], check=True)
                    home.root.chmod(0o755)
                with self.subTest(seed=seed, done=home.done):
                    self.check_home(home)

    def check_home(self, home):
        self.check_reading(home, home.random.choice(READING))
        browser = home.random.choice(("chromium", "firefox", "safari", None))
        categories = home.random.sample(["cache", "history", "httpCookies", "formData", "localStorage"],
                                        home.random.choice((0, 1, 2)))
        words = home.random.choice(CLEANING)
        if browser:
            words += ("--browser", browser)
        for category in categories:
            words += ("--category", category)
        self.check_cleaning(home, words + ("--force",), browser, categories)
        home.unseen.clear()  # what could not be told may be gone by now
        self.check_reading(home, ("size", "--keep-going"))

    def run_program(self, home, words):
        options = {} if self.as_user is None else {"user": self.as_user, "group": self.as_user,
                                                   "extra_groups": []}
        finished = subprocess.run([str(PROGRAM), "--home", str(home.home), "--json", *words],
                                  env=environment(home.temporary, home.root / "own-home"),
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                  cwd="/", timeout=SECONDS, check=False, **options)
        self.assertIn(finished.returncode, (0, 1), (words, finished.stderr.decode("utf-8", "replace")))
        self.assertEqual(os.listdir(home.temporary), [], words)
        self.assertEqual(os.listdir(home.root / "own-home"), [], words)
        document = json.loads(finished.stdout)
        if words[0] != "doctor":
            self.check_status(words, document, finished)
        return document

    def check_status(self, words, document, finished):
        """0 where the report tells of nothing but success."""
        failed = [each for each in self.parts(document)
                  if each.get("error") or each.get("leftOut") or
                  each.get("verdict", "measured") not in SUCCESS]
        self.assertEqual(finished.returncode, 1 if failed else 0,
                         (words, finished.stderr.decode("utf-8", "replace"), failed))

    def parts(self, value):
        """Every object of a document."""
        if isinstance(value, dict):
            yield value
            value = list(value.values())
        if isinstance(value, list):
            for each in value:
                yield from self.parts(each)

    def check_reading(self, home, words):
        before = tree(home.root)
        document = self.run_program(home, words)
        self.assertEqual(self.differences(before, tree(home.root)), [], words)
        if words[0] == "size" or words[:2] == ("clean", "--dry-run"):
            self.check_figures(home, document, "removed" if words[0] == "clean" else "size",
                               "--exclude" in words)

    def check_cleaning(self, home, words, browser, categories):
        before = tree(home.root)
        document = self.run_program(home, words)
        allowed = [pattern for (name, category), pattern in CHANGEABLE.items()
                   if browser in (None, name) and (not categories or category in categories)]
        pattern = re.compile("home/Library/(" + "|".join(allowed or ["^$"]) + ")", re.S)
        wrong = [name for name in self.differences(before, tree(home.root))
                 if not pattern.fullmatch(name) or stat.S_ISDIR(before.get(name, (0,))[0])]
        self.assertEqual(wrong, [], words)
        if "--include" not in words:
            self.check_figures(home, document, "removed", False)

    @staticmethod
    def differences(before, after):
        return sorted(name for name in before.keys() | after.keys() if before.get(name) != after.get(name))

    def check_figures(self, home, document, key, filtered):
        for browser in document["browsers"]:
            for category in browser["categories"]:
                for item in category["items"]:
                    with self.subTest(item=item):
                        self.check_item(home, item, key, filtered)

    def check_item(self, home, item, key, filtered):
        """No exact 0 of what could not be seen; of folders that could, the right number."""
        path = pathlib.Path(item["what"])
        if item["verdict"] not in SUCCESS:
            return
        hidden = [each for each in home.unseen if self.concerns(each, path)]
        figure = item[key]["itemCount"]
        if item["verdict"] == "emptied":
            self.assertTrue(not path.is_dir() or path.is_symlink() or files_in(path) == 0)
            return
        is_zero = figure["value"] == 0 and not figure["isApproximate"]
        if hidden and (is_zero or item["verdict"] == "nothingThere") and os.path.lexists(path):
            self.assertFalse(self.holds_something(path), hidden)
        is_counted = FOLDERS.search(str(path)) and self.as_user is None and not filtered and key == "size"
        if is_counted and path.is_dir() and not hidden and not figure["isApproximate"]:
            self.assertEqual(figure["value"], files_in(path))

    def concerns(self, hidden, path):
        return str(path) == hidden or hidden.startswith(f"{path}/") or str(path).startswith(f"{hidden}/")

    @staticmethod
    def holds_something(path):
        """Whether something is there that an exact 0 would deny. Of a database that is another kind of
        file, or is damaged or held, nobody can say that it is empty."""
        if path.is_dir() and not path.is_symlink():
            return files_in(path) > 0
        return True


for number in range(SERIES):
    name = f"HostileHomes{number + 1}"
    globals()[name] = type(name, (HostileHomes,), {"share": number})
