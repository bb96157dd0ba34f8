"""Forgetting sites where something is in the way: a denied folder, another program, a full disk, a signal.

What can be forgotten is; of everything else the report says that it is still there, and why; and the next
run does the rest.
"""

import json
import os
import shutil
import signal
import sqlite3
import subprocess
import unittest

from homes import PROGRAM, Home, ProcessTest, damage_of, leave_log, read_tree, strace, strace_problem

BROWSERS = ("--browser=chromium", "--browser=firefox")
SITE = ("--json", "forget", "example.com", "--yes", *BROWSERS)
ALL = ("--json", "forget", "--all", "--yes", *BROWSERS)
SUCCESS = {"emptied", "nothingThere"}
CHROMIUM = "Library/Application Support/Chromium"
HISTORY = f"{CHROMIUM}/Default/History"
COOKIES = f"{CHROMIUM}/Default/Cookies"
NOBODY = 65534


class Forgetting(ProcessTest):
    def check_status(self, finished, status):
        self.assertEqual(finished.returncode, status, finished.stderr.decode())
        return {row["what"]: row for row in json.loads(finished.stdout)["stores"]}

    def check_rest(self, home, *failed):
        """The next run, with nothing in the way, does what is left; then nothing is."""
        home.run(*SITE)
        stores = self.check_status(home.run(*SITE), 0)
        self.assertEqual({row["verdict"] for row in stores.values()}, {"nothingThere"})
        for name in (HISTORY, COOKIES, *failed):
            self.assertIsNone(damage_of(home.home / name))
            self.assertNotIn(b"example.com", (home.home / name).read_bytes())
        self.assertEqual(home.left_temporary_files(), [])

    def check_told(self, home, finished, stores, failed, verdict):
        """One store failed, and a line names it; all others are empty."""
        for what, row in stores.items():
            expected = {verdict} if what == str(home.home / failed) else SUCCESS
            self.assertIn(row["verdict"], expected, row)
        self.assertEqual(stores[str(home.home / failed)]["verdict"], verdict)
        self.assertIn(str(home.home / failed), finished.stderr.decode())

    def test_a_database_that_another_program_holds_stays_and_the_others_are_forgotten(self):
        with Home(self.template) as home:
            holder = sqlite3.connect(home.home / COOKIES, isolation_level=None)
            self.addCleanup(holder.close)
            holder.execute("BEGIN IMMEDIATE")
            finished = home.run(*SITE)
            holder.execute("ROLLBACK")
            stores = self.check_status(finished, 1)
            self.check_told(home, finished, stores, COOKIES, "held")
            self.assertEqual((home.home / COOKIES).read_bytes(), self.template.before[COOKIES])
            self.assertNotIn(b"example.com", (home.home / HISTORY).read_bytes())
            self.check_rest(home)

    @unittest.skipIf(strace_problem(), strace_problem())
    def test_a_signal_in_the_middle_leaves_later_stores_alone_and_each_file_whole(self):
        for number, status in ((signal.SIGINT, 130), (signal.SIGTERM, 143), (signal.SIGHUP, 129)):
            with self.subTest(number=number), Home(self.template) as home:
                rule = f"inject=unlinkat,unlink:signal={number.name}:when=1"
                finished = home.run(*SITE, prefix=strace("-f", "-o", os.devnull, "-e", "trace=unlinkat,unlink",
                                                         "-e", rule))
                stores = self.check_status(finished, status)
                self.assertIn(b"interrupted; the report says what was done", finished.stderr)
                verdicts = [row["verdict"] for row in stores.values()]
                self.assertEqual(verdicts[0], "cancelled")
                self.assertLessEqual(set(verdicts[1:]), {"cancelled"})
                self.assertNotIn(b"before it was begun", finished.stderr)
                changed = [name for name, contents in read_tree(home.home).items()
                           if self.template.before.get(name) != contents]
                self.assertLessEqual(set(changed), {HISTORY})
                self.assertIsNone(damage_of(home.home / HISTORY))
                self.assertEqual(list(home.temporary.iterdir()), [])
                self.check_rest(home)

    def denied(self, name, mode, *arguments):
        """Runs as an ordinary user, who may not do something with a file or folder."""
        with Home(self.template) as home:
            options = {}
            if os.getuid() == 0:
                self.template.folder.chmod(0o755)
                subprocess.run(["chown", "-RhP", f"{NOBODY}:{NOBODY}", str(home.root)], check=True)
                options = {"user": NOBODY, "group": NOBODY, "extra_groups": []}
                probe = subprocess.run(["/bin/test", "-x", str(PROGRAM)], check=False, **options)
                if probe.returncode != 0:
                    self.skipTest("another user cannot run the program where it lies")
            place = home.home / name
            place.chmod(mode)
            finished = home.run(*arguments, cwd="/", **options)
            place.chmod(0o700)
            yield home, finished, self.check_status(finished, 1)
            home.run(*arguments, cwd="/", **options)
            self.check_status(home.run(*arguments, cwd="/", **options), 0)

    def test_a_database_that_may_not_be_read_is_no_exact_nothing(self):
        for home, finished, stores in self.denied(COOKIES, 0o000, *SITE):
            self.check_told(home, finished, stores, COOKIES, "couldNotLook")

    def test_a_database_that_may_not_be_written_is_told(self):
        for home, finished, stores in self.denied(COOKIES, 0o400, *SITE):
            self.check_told(home, finished, stores, COOKIES, "couldNotDelete")

    def test_a_folder_that_may_not_be_entered_is_told(self):
        for home, finished, stores in self.denied(f"{CHROMIUM}/Default/Sessions", 0o000, *ALL):
            self.check_told(home, finished, stores, f"{CHROMIUM}/Default/Sessions", "couldNotDelete")

    def test_a_profile_that_may_not_be_changed_keeps_its_data_and_every_store_says_so(self):
        profile = f"{CHROMIUM}/Default"
        for home, finished, stores in self.denied(profile, 0o500, *SITE):
            self.assertIn(b"example.com", (home.home / HISTORY).read_bytes())
            for name in (HISTORY, COOKIES):
                self.assertEqual(stores[str(home.home / name)]["verdict"], "couldNotDelete")
                self.assertIn(str(home.home / name), finished.stderr.decode())

    @unittest.skipIf(os.getuid() != 0 or shutil.which("unshare") is None, "needs the right to mount")
    def test_a_full_temporary_folder_keeps_nothing(self):
        with Home(self.template) as home:
            # A log of changes without its index is read with one in memory.
            leave_log(home.home / COOKIES, home.root / "written")
            # One that is in the mode of logs and has none is read as it lies.
            with sqlite3.connect(home.home / CHROMIUM / "Profile 1" / "Cookies") as connection:
                connection.execute("PRAGMA journal_mode = WAL")
            connection.close()
            finished = home.run(*SITE, prefix=["unshare", "--mount", "sh", "-c",
                                               'mount -t tmpfs -o size=8k none "$1" && shift && exec "$@"',
                                               "sh", str(home.temporary)])
            stores = self.check_status(finished, 0)
            self.assertLessEqual({row["verdict"] for row in stores.values()}, SUCCESS)
            for name in (HISTORY, COOKIES, f"{CHROMIUM}/Profile 1/Cookies"):
                self.assertEqual(stores[str(home.home / name)]["verdict"], "emptied")
                self.assertNotIn(b"example.com", (home.home / name).read_bytes())
            self.check_rest(home)
