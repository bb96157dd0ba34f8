"""Homes in which another program has planted names, links and sizes that lead elsewhere."""

import json
import os
import shutil
import subprocess
import tempfile
import unittest

from fixture import HANGS, HostProgramTest, database, rows, write

CHROMIUM = "--browser=chromium"
FIREFOX = "--browser=firefox"
SAFARI = "--browser=safari"

VISITS = ("CREATE TABLE urls (id INTEGER, url TEXT, last_visit_time INTEGER)",
          "INSERT INTO urls VALUES (1, 'https://secret.example/', 1)")


class Names(HostProgramTest):
    """A profile's folder is where the browser keeps profiles, whatever its list says."""

    def setUp(self):
        super().setUp()
        self.precious = self.root / "precious"
        for folder in (self.precious, self.home / "Library", self.caches, self.caches / "Chromium",
                       self.support, self.support / "Chromium"):
            write(folder / "file", "kept")
            database(folder / "History", *VISITS)

    def name_folder(self, folder):
        write(self.support / "Chromium" / "Local State", json.dumps({"profile": {
            "last_active_profiles": [],
            "info_cache": {
                folder: {"name": "hostile", "is_consented_primary_account": False},
                "Default": {"name": "ordinary", "is_consented_primary_account": False}}}}))

    def check_left_out(self, result, browser, folder):
        document = json.loads(result.output)["browsers"][0]
        self.assertEqual(result.status, 1, result.error)
        self.assertEqual([(each["name"], each["folder"]) for each in document["leftOut"]],
                         [("hostile", folder)])
        self.assertIn(f"{browser}, hostile: left out, ", result.error)

    def test_a_chromium_profile_with_a_name_that_leads_elsewhere_is_left_out_and_told(self):
        for folder in (str(self.precious), "/etc", "../../..", "..", ".", "", "a/b",
                       f"../../../{self.precious.name}", "Default\0x", "\0"):
            with self.subTest(folder=folder):
                self.history.unlink()
                self.cookies.unlink()
                self.make_home()
                self.name_folder(folder)
                before = self.snapshot()
                for command in ("profiles", "size", "bookmarks", "notifications"):
                    self.check_left_out(self.run_program("--json", command, CHROMIUM), "Chromium",
                                        folder)
                    self.assertEqual(self.snapshot(), before)
                self.check_left_out(self.run_program("--json", "clean", "--yes", CHROMIUM),
                                    "Chromium", folder)
                after = self.snapshot()
                gone = {path for path in before if path not in after}
                changed = {path for path in after if before[path] != after[path]}
                ours = os.path.relpath(self.profile, self.root)
                self.assertEqual(gone, {os.path.relpath(path, self.root) for path in
                                        (self.cache / "Cache" / "data_0",
                                         self.cache / "Cache" / "data_1")})
                self.assertEqual(changed, {ours + "/History"})

    def test_the_profile_is_listed_all_the_same(self):
        self.name_folder("/etc")
        found = self.document("profiles", CHROMIUM, status=1)["browsers"][0]["profiles"]
        self.assertEqual([(row["name"], row["folder"]) for row in found],
                         [("hostile", "/etc"), ("ordinary", "Default")])

    def test_a_profile_that_is_not_selected_is_not_told_of(self):
        self.name_folder("/etc")
        result = self.run_program("size", CHROMIUM, "--profile=ordinary")
        self.assertEqual((result.status, result.error), (0, ""))

    def make_places(self, folder):
        database(folder / "places.sqlite",
                 "CREATE TABLE moz_places (id INTEGER, url TEXT, foreign_count INTEGER, "
                 "last_visit_date INTEGER)",
                 "INSERT INTO moz_places VALUES (1, 'https://secret.example/', 0, 1)")
        write(folder / "cache2" / "entry", "kept")

    def test_a_firefox_profile_whose_path_leads_elsewhere_is_left_out_and_told(self):
        self.make_places(self.home)
        self.make_places(self.precious)
        for path, is_relative in ((".", 0), ("precious", 0), ("../../../../precious", 1),
                                  ("/precious/../precious", 0), (f"{self.precious}\0x", 0),
                                  ("Profiles/a\0b", 1), ("..", 1)):
            with self.subTest(path=path):
                write(self.support / "Firefox" / "profiles.ini",
                      f"[Profile0]\nName=hostile\nIsRelative={is_relative}\nPath={path}\n")
                before = self.snapshot()
                for arguments in (("size",), ("clean", "--yes"), ("bookmarks",)):
                    result = self.run_program("--json", *arguments, FIREFOX, cwd=self.home)
                    self.check_left_out(result, "Firefox", path)
                    self.assertEqual(self.snapshot(), before)


class Links(HostProgramTest):
    """Nothing is deleted through a link below the Library folder."""

    def setUp(self):
        super().setUp()
        self.precious = self.root / "precious"
        write(self.precious / "Default" / "file", "kept")
        write(self.precious / "Cookies.binarycookies", "kept")

    def plant(self, place):
        if place.exists():
            place.rename(self.root / "aside")
        place.parent.mkdir(parents=True, exist_ok=True)
        place.symlink_to(self.precious)

    def test_a_folder_that_is_a_link_is_left_out_and_told(self):
        self.plant(self.cache)
        before = self.snapshot()
        result = self.run_program("clean", "--yes", CHROMIUM, "--category=cache")
        self.assertEqual(result.status, 1)
        self.assertIn(f"Chromium, Zoë 日本, Cache: left out: it is a link: {self.cache}\n", result.error)
        self.assertEqual(self.snapshot(), before)

    def test_a_link_above_the_folder_is_left_out_and_told(self):
        self.plant(self.caches / "Chromium")
        before = self.snapshot()
        for arguments in (("size",), ("clean", "--yes")):
            result = self.run_program(*arguments, CHROMIUM, "--category=cache")
            self.assertEqual(result.status, 1)
            self.assertIn(f"left out: it is a link: {self.caches / 'Chromium'}", result.error)
        self.assertEqual(self.snapshot(), before)

    def test_no_row_behind_a_linked_profile_goes(self):
        database(self.precious / "History", *VISITS)
        self.plant(self.second)
        before = self.snapshot()
        for arguments in (("clean", "--yes", "--category=history", "--profile=Work"),
                          ("clean", "--yes", "--keep-going", "--profile=Work")):
            result = self.run_program(*arguments, CHROMIUM)
            self.assertEqual(result.status, 1)
            self.assertIn(f"left out: it is a link: {self.second}\n", result.error)
            self.assertEqual(self.snapshot(), before)

    def test_the_cookie_file_of_a_linked_folder_stays(self):
        self.plant(self.home / "Library" / "Cookies")
        before = self.snapshot()
        self.run_program("clean", "--yes", SAFARI, "--category=httpCookies")
        self.assertEqual(self.snapshot(), before)

    def test_a_folder_in_the_place_of_the_cookie_file_stays(self):
        write(self.home / "Library" / "Cookies" / "Cookies.binarycookies" / "file", "kept")
        before = self.snapshot()
        for _ in range(2):
            self.run_program("clean", "--yes", SAFARI, "--category=httpCookies")
        self.assertEqual(self.snapshot(), before)


@unittest.skipIf(os.geteuid() != 0 or
                 subprocess.run(["unshare", "--mount", "true"], check=False).returncode != 0,
                 "needs the right to mount")
class Mounts(HostProgramTest):
    def test_what_is_mounted_below_a_folder_is_left_out_and_told(self):
        precious = self.root / "precious"
        write(precious / "file", "kept")
        place = self.cache / "Cache" / "mounted"
        place.mkdir()
        completed = subprocess.run(
            ["unshare", "--mount", "sh", "-c", 'mount --bind "$1" "$2" && shift 2 && exec "$@"',
             "sh", precious, place,
             *self.command("clean", "--yes", CHROMIUM, "--category=cache")],
            env=self.environment, capture_output=True, text=True, check=False, timeout=HANGS)
        self.assertEqual(completed.returncode, 1, completed.stderr)
        self.assertIn(f"left out: another disk or folder is mounted there: {place}",
                      completed.stderr)
        self.assertEqual((precious / "file").read_text(), "kept")
        self.assertFalse((self.cache / "Cache" / "data_0").exists())


class Sizes(HostProgramTest):
    def setUp(self):
        # Of the file systems that are everywhere, the one in memory has the largest files.
        before = tempfile.tempdir
        if os.access("/dev/shm", os.W_OK):
            tempfile.tempdir = "/dev/shm"
        try:
            super().setUp()
        finally:
            tempfile.tempdir = before

    def make_huge(self, path):
        path.parent.mkdir(parents=True, exist_ok=True)
        with open(path, "wb") as file:
            file.truncate(2**63 - 1)

    def test_more_bytes_than_can_be_counted_are_an_error_and_hide_nothing_else(self):
        # Only some file systems have files of this size.
        try:
            self.make_huge(self.cache / "one")
            self.make_huge(self.cache / "two")
        except OSError:
            self.skipTest("this file system has no files so large")
        result = self.run_program("--json", "size", CHROMIUM)
        self.assertEqual(result.status, 1, result.error)
        self.assertIn("larger than can be counted", result.error)
        found = {row["category"]: row for row in
                 json.loads(result.output)["browsers"][0]["categories"]}
        self.assertIsNone(found["cache"]["size"])
        self.assertEqual(found["history"]["size"]["itemCount"]["value"], 3)

    def test_a_database_with_gigabytes_of_holes_is_counted_and_cleaned(self):
        for pages_in_header in (None, (3 << 30) // 4096):
            with self.subTest(pages_in_header=pages_in_header):
                self.history.unlink(missing_ok=True)
                shutil.rmtree(self.cache.parent)
                self.cookies.unlink()
                self.make_home()
                if pages_in_header:
                    with open(self.history, "r+b") as file:
                        file.seek(28)
                        file.write(pages_in_header.to_bytes(4, "big"))
                os.truncate(self.history, 3 << 30)
                figures = self.document("size", CHROMIUM, "--category=history")["total"]
                self.assertEqual(figures["itemCount"], {"value": 3, "isApproximate": False})
                self.assertEqual(self.run_program("clean", "--yes", CHROMIUM).status, 0)
                self.assertEqual(rows(self.history, "SELECT count(*) FROM urls"), [(0,)])
                self.assertEqual(list(self.temporary.iterdir()), [])

    def test_a_long_line_of_firefoxs_list_takes_no_time(self):
        write(self.support / "Firefox" / "profiles.ini",
              "[Profile0]\n" + "a" * 2_000_000 + "\n" + "a =" * 500_000 + "\n")
        self.assertEqual(self.run_program("profiles", FIREFOX).status, 0)

    def test_a_hundred_thousand_profiles_are_listed(self):
        write(self.support / "Chromium" / "Local State", json.dumps({"profile": {
            "last_active_profiles": ["Profile 99999"],
            "info_cache": {f"Profile {number}": {"name": "x", "is_consented_primary_account": False}
                           for number in range(100_000)}}}))
        found = self.document("profiles", CHROMIUM)["browsers"][0]["profiles"]
        self.assertEqual(len(found), 100_000)
        self.assertEqual([row["folder"] for row in found if row["isPrimary"]], ["Profile 99999"])


class Surroundings(HostProgramTest):
    def test_a_missing_temporary_folder_is_not_made(self):
        self.temporary.rmdir()
        result = self.run_program("size", CHROMIUM, "--category=history")
        self.assertEqual(result.status, 1)
        self.assertFalse(self.temporary.exists())

    def test_copies_that_a_killed_run_left_are_removed_and_nothing_else(self):
        stale = self.temporary / f"browsersweep-{'0' * 32}"
        write(stale / "History", "a copy")
        write(self.temporary / "browsersweep-notes" / "file", "kept")
        self.assertEqual(self.run_program("size", CHROMIUM).status, 0)
        self.assertEqual([path.name for path in self.temporary.iterdir()], ["browsersweep-notes"])

    @unittest.skipIf(os.geteuid() != 0, "only root can give a home away")
    def test_the_home_of_another_user_is_not_cleaned_without_force(self):
        os.chown(self.home, 12345, 12345)
        before = self.snapshot()
        result = self.run_program("clean", "--yes", CHROMIUM)
        self.assertEqual((result.status, result.output), (1, b""))
        self.assertIn("belongs to another user", result.error)
        self.assertEqual(self.snapshot(), before)
        self.assertEqual(self.run_program("clean", "--dry-run", CHROMIUM).status, 0)
        self.assertEqual(self.run_program("clean", "--yes", "--force", CHROMIUM).status, 0)
        self.assertEqual(rows(self.history, "SELECT count(*) FROM urls"), [(0,)])
