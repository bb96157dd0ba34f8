"""scripts/demo as its reader runs it, what it cleans, and what it leaves behind."""

import os
import pathlib
import sqlite3
import subprocess
import sys
import tempfile

from support import ROOT, ScriptTest

DEMO = ROOT / "scripts" / "demo"
PROGRAM = ROOT / "build" / "demo" / "cli" / "browsersweep"

# Databases of a Chromium-based profile -> the tables that a clean empties.
CLEANED = {
    "History": ("urls", "segments", "downloads"),
    "Favicons": ("favicons", "icon_mapping"),
    "Network Action Predictor": ("network_action_predictor",),
    "Top Sites": ("top_sites",),
    "Cookies": ("cookies",),
    "Web Data": ("autofill",),
}


def files_below(folder):
    """Relative path -> bytes of every file in a folder, databases left out."""
    files = (path for path in sorted(folder.rglob("*")) if path.is_file())
    return {
        path.relative_to(folder).as_posix(): path.read_bytes()
        for path in files
        if not path.read_bytes().startswith(b"SQLite format 3")
    }


class Demo(ScriptTest):
    """The build is made once, by the first demonstration; it has a home and a TMPDIR of its own."""

    @classmethod
    def setUpClass(cls):
        cls.place = tempfile.TemporaryDirectory(prefix="browsersweep-demo-test.")
        cls.home = pathlib.Path(cls.place.name) / "home"
        cls.temporary = pathlib.Path(cls.place.name) / "tmp"
        cls.home.mkdir()
        cls.temporary.mkdir()
        cls.finished = cls.demo("--keep")
        lines = cls.finished.stdout.splitlines()
        mark = "The sample home is kept: "
        kept = [line[len(mark) :] for line in lines if line.startswith(mark)]
        cls.sample = pathlib.Path(kept[0]) if kept else None

    @classmethod
    def tearDownClass(cls):
        cls.place.cleanup()

    @classmethod
    def demo(cls, *arguments):
        environment = dict(os.environ, HOME=str(cls.home), CFFIXED_USER_HOME=str(cls.home),
                           TMPDIR=str(cls.temporary))
        return subprocess.run(
            [str(DEMO), *arguments],
            env=environment,
            cwd=cls.temporary,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            check=False,
        )

    def test_it_succeeds(self):
        self.assertEqual(self.finished.returncode, 0, self.finished.stdout[-6000:])
        self.assertIsNotNone(self.sample)

    def test_it_shows_profiles_bookmarks_and_sites(self):
        for text in ("Google Chrome", "Personal", "Work", "https://news.example.org/",
                     "https://mail.example.com:443"):
            with self.subTest(text):
                self.assertIn(text, self.finished.stdout)

    def test_it_cleans_every_table_of_every_browser(self):
        profiles = sorted(self.sample.glob("Library/Application Support/**/Preferences"))
        self.assertEqual(len(profiles), 22)
        for profile in profiles:
            for name, tables in CLEANED.items():
                database = sqlite3.connect(profile.parent / name)
                for table in tables:
                    with self.subTest(f"{profile.parent}/{name}: {table}"):
                        rows = database.execute(f"SELECT COUNT(*) FROM {table}").fetchone()[0]
                        self.assertEqual(rows, 0)
                database.close()

    def test_it_empties_folders_and_keeps_them(self):
        library = self.sample / "Library"
        support = library / "Application Support" / "Google" / "Chrome" / "Default"
        caches = library / "Caches" / "Google" / "Chrome" / "Default" / "Cache" / "Cache_Data"
        for folder in (caches, support / "Sessions", support / "Local Storage" / "leveldb"):
            with self.subTest(folder):
                self.assertTrue(folder.is_dir())
                self.assertEqual(list(folder.iterdir()), [])

    def test_it_leaves_everything_else_as_it_was(self):
        fresh = pathlib.Path(self.place.name) / "fresh"
        subprocess.run([sys.executable, ROOT / "scripts/sample/make_home.py", fresh], check=True)
        before, after = files_below(fresh), files_below(self.sample)
        kept = ("Bookmarks", "Preferences", "Local State")
        names = [name for name in before if name.endswith(kept)]
        self.assertGreaterEqual(len(names), 55)
        for name in names:
            with self.subTest(name):
                self.assertEqual(after.get(name), before[name])

    def test_it_does_not_touch_the_home_of_its_caller(self):
        self.assertEqual(list(self.home.iterdir()), [])

    def test_it_removes_the_sample_unless_told_to_keep_it(self):
        before = sorted(self.temporary.iterdir())
        finished = self.demo("--program", str(PROGRAM))
        self.assertEqual(finished.returncode, 0, finished.stdout[-6000:])
        self.assertEqual(sorted(self.temporary.iterdir()), before)

    def test_an_unknown_option_is_refused(self):
        self.assertEqual(self.demo("--everything").returncode, 2)
