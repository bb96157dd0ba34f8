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
import subprocess
import unittest

from changeable import by_cleaning, by_forgetting
from hostile_homes import HostileHome, make_template, may_mount
from homes import PROGRAM, environment
from trees import Tree, files_in

HOMES = int(os.environ.get("BROWSERSWEEP_HOSTILE_HOMES", "1000"))
SEED = int(os.environ.get("BROWSERSWEEP_SEED", "1"))
SERIES = 8
SECONDS = 60  # for one command; none takes a tenth of one
ORDINARY = 65534

READING = (("profiles",), ("size",), ("size", "--ignore-errors"), ("size", "--keep-going"),
           ("clean", "--dry-run"), ("bookmarks",), ("notifications",), ("doctor",),
           ("size", "--exclude", "example.com"), ("sites",), ("sites", "--kind", "cookies"),
           ("forget", "--all", "--dry-run"), ("forget", "example.com", "--dry-run"))
CLEANING = (("clean", "--yes"), ("clean", "--yes", "--keep-going"), ("clean", "--yes", "--ignore-errors"),
            ("clean", "--yes", "--keep-going", "--include", "example.com"))
FORGETTING = (("forget", "--all", "--yes"), ("forget", "example.com", "--yes"),
              ("forget", "--all", "--keep", "example.com", "--settings", "--yes"),
              ("forget", "example.com", "example.org", "--mixed", "--yes"))
# The items that are folders, and count all that lies in them.
FOLDERS = re.compile(r"/(Caches/Chromium/[^/]+|cache2|Local Storage|Pepper Data|Macromedia|LocalStorage)/?$")
SUCCESS = {"measured", "emptied", "nothingThere"}


class HostileHomes(unittest.TestCase):
    """One class for each share of the homes, so that they are tested side by side."""

    share = None

    @classmethod
    def setUpClass(cls):
        if cls.share is None:
            raise unittest.SkipTest("the shares of this class are tested")
        cls.template = make_template()
        cls.addClassCleanup(shutil.rmtree, cls.template.parent)
        cls.has_mounts = may_mount()

    def test_five_rules_hold_on_homes_of_a_hostile_program(self):
        for seed in range(SEED + self.share, SEED + HOMES, SERIES):
            with HostileHome(self.template, seed, self.has_mounts) as home:
                self.as_user = ORDINARY if os.getuid() == 0 and not home.is_of_root else None
                if self.as_user is not None:
                    subprocess.run(["chown", "-RhP", f"{ORDINARY}:{ORDINARY}", str(home.root)], check=True)
                    home.root.chmod(0o755)
                with self.subTest(seed=seed, done=home.done):
                    self.check_home(home)

    def check_home(self, home):
        self.now = Tree(home.root)
        self.check_reading(home, home.random.choice(READING))
        browser = home.random.choice(("chromium", "firefox", "safari", None))
        of_browser = ("--browser", browser, "--force") if browser else ("--force",)
        if home.random.random() < 0.4:
            words = home.random.choice(FORGETTING) + of_browser
            self.check_change(home, words, by_forgetting(browser, words))
        else:
            categories = home.random.sample(["cache", "history", "httpCookies", "formData", "localStorage"],
                                            home.random.choice((0, 1, 2)))
            words = home.random.choice(CLEANING) + of_browser
            for category in categories:
                words += ("--category", category)
            self.check_change(home, words, by_cleaning(browser, categories))
        home.unseen.clear()  # what could not be told may be gone by now
        home.unlisted.clear()
        self.check_reading(home, ("size", "--keep-going"))

    def run_program(self, home, words):
        """What the program reports, with what it has changed."""
        prefix = home.prefix(self.as_user)
        options = {} if self.as_user is None or prefix else {"user": self.as_user, "group": self.as_user,
                                                             "extra_groups": []}
        finished = subprocess.run([*prefix, str(PROGRAM), "--home", str(home.home), "--json", *words],
                                  env=environment(home.temporary, home.root / "own-home"),
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                  cwd="/", timeout=SECONDS, check=False, **options)
        self.assertIn(finished.returncode, (0, 1), (words, finished.stderr.decode("utf-8", "replace")))
        self.assertEqual(os.listdir(home.temporary), [], words)
        self.assertEqual(os.listdir(home.root / "own-home"), [], words)
        document = json.loads(finished.stdout)
        if words[0] != "doctor":
            self.check_status(words, document, finished)
        before, self.now = self.now, Tree(home.root, self.now)
        return document, before.differences(self.now), before

    def check_status(self, words, document, finished):
        """0 where the report tells of nothing but success."""
        failed = [each for each in parts(document)
                  if each.get("error") or each.get("leftOut") or
                  each.get("verdict", "measured") not in SUCCESS]
        self.assertEqual(finished.returncode, 1 if failed else 0,
                         (words, finished.stderr.decode("utf-8", "replace"), failed))

    def check_reading(self, home, words):
        document, changed, _ = self.run_program(home, words)
        self.assertEqual(changed, [], words)
        self.check_report(home, words, document)

    def check_change(self, home, words, allowed):
        document, changed, before = self.run_program(home, words)
        # A clean leaves folders as they are.
        wrong = [name for name in changed if not allowed.fullmatch(name) or
                 (words[0] == "clean" and before.is_folder(name))]
        self.assertEqual(wrong, [], words)
        self.check_report(home, words, document)

    def check_report(self, home, words, document):
        if words[0] == "forget":
            kept = {row["what"] for row in document["kept"]}
            for store in document["stores"]:
                with self.subTest(words=words, store=store):
                    self.check_store(home, store, kept)
        elif words[0] in ("size", "clean") and not (words[:2] == ("clean", "--yes") and "--include" in words):
            key = "removed" if words[0] == "clean" else "size"
            for item in (item for browser in document["browsers"] for category in browser["categories"]
                         for item in category["items"]):
                with self.subTest(words=words, item=item):
                    self.check_item(home, item, key, "--exclude" in words)

    def check_item(self, home, item, key, filtered):
        """No exact 0 of what could not be seen; of folders that could, the right number."""
        path = pathlib.Path(item["what"])
        # No pattern is compared with cookie files: all or nothing of them is selected.
        if item["verdict"] not in SUCCESS or (filtered and path.suffix == ".binarycookies"):
            return
        figure = item[key]["itemCount"]
        if item["verdict"] == "emptied":
            self.assertTrue(not path.is_dir() or path.is_symlink() or files_in(path) == 0)
            return
        self.check_zero(home, path, item["verdict"], figure)
        is_counted = FOLDERS.search(str(path)) and self.as_user is None and not filtered and key == "size"
        is_whole = not hidden_at(home, path) and home.seen(path) == path and not figure["isApproximate"]
        if is_counted and is_whole and path.is_dir():
            self.assertEqual(figure["value"], files_in(path))

    def check_store(self, home, store, kept):
        """No exact 0 of what could not be seen, unless it says why that stays."""
        path = pathlib.Path(store["what"])
        if store["verdict"] == "nothingThere":
            self.assertEqual(store["removed"]["itemCount"]["value"], 0)
        is_kept = any(what == str(path) or what.startswith(f"{path}/") for what in kept)
        if store["verdict"] in ("measured", "nothingThere") and not is_kept:
            # The index of Firefox's cache, beside the entries, is none of them.
            index = {str(path / "index")} if path.name == "cache2" else set()
            self.check_zero(home, path, store["verdict"], store["removed"]["itemCount"], index)

    def check_zero(self, home, path, verdict, figure, uncounted=frozenset()):
        if str(path) in home.without_tables:
            return
        is_zero = figure["value"] == 0 and not figure["isApproximate"]
        hidden, seen = set(hidden_at(home, path)) - uncounted, home.seen(path)
        if hidden and (is_zero or verdict == "nothingThere") and seen and os.path.lexists(seen):
            self.assertFalse(holds_something(seen), hidden)


def parts(value):
    """Every object of a document."""
    if isinstance(value, dict):
        yield value
        value = list(value.values())
    if isinstance(value, list):
        for each in value:
            yield from parts(each)


def hidden_at(home, path):
    """What nobody can see of a path, or above it."""
    return [hidden for hidden in home.unseen | home.unlisted
            if str(path) == hidden or hidden.startswith(f"{path}/") or
            (hidden in home.unseen and str(path).startswith(f"{hidden}/"))]


def holds_something(path):
    """Whether something is there that an exact 0 would deny. Of a database that is another kind of file, or
    is damaged or held, nobody can say that it is empty."""
    if path.is_dir() and not path.is_symlink():
        return files_in(path) > 0
    return True


for number in range(SERIES):
    name = f"HostileHomes{number + 1}"
    globals()[name] = type(name, (HostileHomes,), {"share": number})
