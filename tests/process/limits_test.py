"""The host program over a cache of a million files: the count, the deletion, and the memory."""

import json
import os
import pathlib
import shutil
import sys
import tempfile
import unittest

from homes import PROGRAM, environment, read_tree, scratch
from memory import run_measured

COUNT = 1_000_000
FOLDERS = 256
# As long as names in caches are.
NAME = "f_{:06x}_cached_entry"
LINKS_TO_ONE = 50_000  # fewer than any file system allows
MEMORY_ALLOWED = 8 * 1024 * 1024
if sys.platform == "darwin":
    # While it is deleted, the names of one folder are held, in a text that grows by doubling.
    MEMORY_ALLOWED += 2 * (COUNT // 2) * (len(NAME.format(0)) + 2)
# What a million empty files take, with something to spare.
INODES_NEEDED = COUNT + 10_000
BYTES_NEEDED = 2 << 30
SELECTION = ("--browser=chromium", "--category=cache")

def place():
    """Where a million files are quickly made, or None."""
    places = [folder for folder in (scratch(), tempfile.gettempdir()) if folder]
    return next((folder for folder in places if has_room(folder)), None)


def has_room(folder):
    found = os.statvfs(folder)
    has_inodes = found.f_files == 0 or found.f_favail > INODES_NEEDED  # 0 where any number fits
    return has_inodes and found.f_bavail * found.f_frsize > BYTES_NEEDED


def fill(cache):
    """Half of the files in one folder, the others spread evenly."""
    make_files(cache / "all", COUNT // 2)
    rest = COUNT - COUNT // 2
    for index in range(FOLDERS):
        make_files(cache / f"{index:02x}", rest // FOLDERS + (index < rest % FOLDERS))


def make_files(folder, count):
    """Files that share their contents: names are what is made, listed, examined and deleted."""
    folder.mkdir()
    descriptor = os.open(folder, os.O_RDONLY | os.O_DIRECTORY)
    try:
        for number in range(count):
            name = NAME.format(number)
            if number % LINKS_TO_ONE:
                os.link(first, name, src_dir_fd=descriptor, dst_dir_fd=descriptor)
            else:
                first = name
                os.close(os.open(first, os.O_CREAT | os.O_EXCL | os.O_WRONLY, 0o600,
                                 dir_fd=descriptor))
    finally:
        os.close(descriptor)


def files_below(folder):
    return sum(len(names) for _, _, names in os.walk(folder))


class Limits(unittest.TestCase):
    def setUp(self):
        where = place()
        if where is None:
            self.skipTest("there is no room for a million files")
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="browsersweep-limits.", dir=where))
        self.addCleanup(shutil.rmtree, self.folder)
        self.home = self.folder / "home"
        self.cache = self.home / "Library" / "Caches" / "Chromium" / "Default"
        self.make_home()

    def make_home(self):
        profile = {"name": "Me", "is_consented_primary_account": True}
        state = {"profile": {"info_cache": {"Default": profile},
                             "last_active_profiles": ["Default"]}}
        support = self.home / "Library" / "Application Support" / "Chromium"
        for path, text in ((support / "Local State", json.dumps(state)),
                           (support / "Default" / "Bookmarks", "precious"),
                           (self.cache.parent / "Beside", "precious"),
                           (self.home / "Documents" / "letter.txt", "Dear Sir")):
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        self.cache.mkdir()
        (self.folder / "tmp").mkdir()
        (self.folder / "own-home").mkdir()

    def run_program(self, *arguments):
        """What the program reports, and the most memory that it held."""
        finished, held = run_measured(
            [str(PROGRAM), "--home", str(self.home), "--json", *arguments, *SELECTION],
            environment(self.folder / "tmp", self.folder / "own-home"), self.folder / "memory")
        self.assertEqual(finished.returncode, 0, finished.stderr)
        return json.loads(finished.stdout), held

    def count_in(self, document):
        self.assertIs(document["total"]["itemCount"]["isApproximate"], False)
        return document["total"]["itemCount"]["value"]

    def test_a_million_files_are_counted_and_deleted_in_little_more_memory_than_none(self):
        before = read_tree(self.home)
        (self.cache / "link").symlink_to(self.home / "Documents")
        _, with_none = self.run_program("size")
        fill(self.cache)
        held = []
        for arguments, found in ((("size",), COUNT + 1), (("clean", "--yes"), COUNT + 1),
                                 (("size",), 0)):
            document, most = self.run_program(*arguments)
            self.assertEqual(self.count_in(document), found)
            held.append(most - with_none)
        self.assertEqual(files_below(self.cache), 0)
        self.assertFalse((self.cache / "link").is_symlink())
        self.assertEqual(read_tree(self.home), before)
        print(f"{COUNT} files: at most {max(held) // 1024} KB more than without any")
        self.assertLessEqual(max(held), MEMORY_ALLOWED)
