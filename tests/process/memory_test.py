"""What the host program holds to read a document that another program has made as dense as it can."""

import json
import os
import pathlib
import shutil
import tempfile
import unittest

from homes import PROGRAM, environment, scratch
from memory import run_measured

LENGTH = 2_000_000
MOST = 8
STATE = "Application Support/Chromium/Local State"
BOOKMARKS = "Application Support/Chromium/Default/Bookmarks"
PROFILE = {"profile": {"info_cache": {"Default": {"name": "a", "is_consented_primary_account": False}},
                       "last_active_profiles": []}}


def repeated(value):
    """So many values in a row as make a document of the length; "#" becomes a number of its own."""
    pieces, length = [], 0
    while length < LENGTH:
        pieces.append(value.replace("#", f"{len(pieces):x}"))
        length += len(pieces[-1]) + 1
    return ",".join(pieces)


@unittest.skipIf("ASAN_OPTIONS" in os.environ, "the sanitizer takes memory of its own")
class Memory(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="browsersweep-memory.", dir=scratch()))
        self.addCleanup(shutil.rmtree, self.folder)
        for name in ("tmp", "own-home"):
            (self.folder / name).mkdir()
        self.write(STATE, json.dumps(PROFILE))

    def write(self, name, text):
        path = self.folder / "home" / "Library" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def held(self, command, name, text):
        self.write(name, text)
        finished, held = run_measured(
            [str(PROGRAM), "--home", str(self.folder / "home"), command, "--browser=chromium"],
            environment(self.folder / "tmp", self.folder / "own-home"), self.folder / "memory")
        self.assertEqual(finished.returncode, 0, finished.stderr)
        return held

    def check(self, command, name, start, value, end):
        text = start + repeated(value) + end
        more = self.held(command, name, text) - self.held(command, name, start + end)
        self.assertLess(more, MOST * len(text))

    def test_a_document_takes_less_than_eight_times_its_length(self):
        start = '{"profile": {"info_cache": {}, "last_active_profiles": []}, "ignored": ['
        for value in ("0", '""', "[]", "{}", "1e9", "1234567890", "null", '{"":0}', '"text"'):
            with self.subTest(value=value):
                self.check("profiles", STATE, start, value, "]}")

    def test_bookmarks_take_less_than_eight_times_their_length(self):
        for value in ('"#":{}', '"#":{"url":""}', '"#":{"#":{}}', '"#":{"children":[{},{},{}]}'):
            with self.subTest(value=value):
                self.check("bookmarks", BOOKMARKS, '{"roots": {', value, "}}")
