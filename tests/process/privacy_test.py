"""What the host program copies for itself is its user's alone from the first instant on."""

import json
import os
import re
import signal
import unittest

from homes import Home, ProcessTest, strace, strace_problem

MADE = re.compile(r'(?:mkdir|mkdirat)\(.*?"([^"]+)", (0[0-7]+)\) = 0')
CREATED = re.compile(r'openat\(.*?"([^"]+)", [A-Z_|]*O_CREAT[A-Z_|]*, (0[0-7]+)\) = \d')
WIDENED = re.compile(r'(?:fchmod|chmod|fchmodat)\(.*?(0[0-7]+)(?:, \w+)?\) = 0')
SIGNALS = {signal.SIGINT: 130, signal.SIGTERM: 143}
SIZE = ("--json", "size", "--browser=chromium", "--browser=firefox")


@unittest.skipIf(strace_problem(), strace_problem())
class Privacy(ProcessTest):
    def traced(self, home, rules, *arguments, **options):
        log = home.root / "log"
        finished = home.run(*arguments, prefix=strace("-f", "-y", "-o", str(log), *rules), **options)
        return finished, log.read_text(errors="replace").splitlines()

    def test_copies_are_private_at_the_first_instant_whatever_the_mask(self):
        for mask in (0o000, 0o022, 0o077):
            with self.subTest(mask=oct(mask)), Home(self.template) as home:
                finished, lines = self.traced(
                    home, ["-e", "trace=mkdir,mkdirat,openat,open,creat,chmod,fchmod,fchmodat"],
                    *SIZE, umask=mask)
                self.assertEqual(finished.returncode, 0, finished.stderr)
                lines = [line for line in lines if str(home.temporary) in line]
                folders = [found[2] for found in map(MADE.search, lines) if found]
                created = [found for found in map(CREATED.search, lines) if found]
                # The last to be put in is the first that was made: SQLite opens what is there.
                copies = dict((found[1], found[2]) for found in reversed(created)).values()
                widened = [found[1] for found in map(WIDENED.search, lines) if found]
                self.assertEqual(set(folders), {"0700"})
                self.assertGreater(len(copies), 0)
                self.assertEqual(set(copies), {"0600"})
                self.assertLessEqual(set(widened), {"0600", "0700"})
                self.assertEqual(list(home.temporary.iterdir()), [])

    def test_a_copy_that_fails_is_removed(self):
        for error in ("EIO", "ENOSPC", "EDQUOT"):
            with self.subTest(error=error), Home(self.template) as home:
                calls = "copy_file_range,sendfile"
                finished, lines = self.traced(
                    home, ["-e", f"trace={calls}", "-e", f"inject={calls}:error={error}"], *SIZE)
                self.assertIn(finished.returncode, (0, 1))
                self.assertTrue(any(line.endswith("(INJECTED)") for line in lines))
                self.assertEqual(list(home.temporary.iterdir()), [])

    def test_a_signal_in_the_middle_of_a_copy_removes_it_and_says_what_was_done(self):
        for number, status in SIGNALS.items():
            with self.subTest(number=number), Home(self.template) as home:
                rule = f"inject=copy_file_range:signal={number.name}:when=3"
                finished, _ = self.traced(home, ["-e", "trace=copy_file_range", "-e", rule], *SIZE)
                self.assertEqual(finished.returncode, status, finished.stderr)
                self.assertIn(b"interrupted; the report says what was done", finished.stderr)
                self.assertIn(b'"error": "interrupted before it was begun"', finished.stdout)
                self.assertIn(b'"error": "interrupted before it was finished"', finished.stdout)
                self.assertEqual(list(home.temporary.iterdir()), [])

    def test_a_signal_in_the_middle_of_a_clean_ends_it_and_says_what_is_gone(self):
        for number, status in SIGNALS.items():
            with self.subTest(number=number), Home(self.template) as home:
                rule = f"inject=unlinkat:signal={number.name}:when=1"
                finished, _ = self.traced(
                    home, ["-e", "trace=unlinkat", "-e", rule], "--json", "clean", "--yes")
                self.assertEqual(finished.returncode, status, finished.stderr)
                self.assertIn(b"interrupted; the report says what was done", finished.stderr)
                removed = json.loads(finished.stdout)["total"]["itemCount"]
                self.assertGreater(removed["value"], 0)
                self.assertEqual(list(home.temporary.iterdir()), [])
                kept = home.home / "Library/Safari/History.db"
                self.assertEqual(kept.read_bytes(),
                                 self.template.before[os.fspath(kept.relative_to(home.home))])
