"""The sample home of the demonstration holds what real browsers keep."""

import json
import sqlite3
import sys

from support import ROOT, ScriptTest, sample

chromium, firefox = sample("chromium"), sample("firefox")

DATABASES = ("Cookies", "Favicons", "History", "Network Action Predictor", "Top Sites", "Web Data")


def count(path, table):
    database = sqlite3.connect(f"file:{path}?mode=ro", uri=True)
    rows = database.execute(f"SELECT COUNT(*) FROM {table}").fetchone()[0]
    database.close()
    return rows


class ChromiumBasedBrowsers(ScriptTest):
    def setUp(self):
        super().setUp()
        chromium.make(self.folder)
        self.support = self.folder / "Library" / "Application Support"

    def test_every_browser_lists_its_two_profiles(self):
        self.assertEqual(len(chromium.BROWSERS), 11)
        for path, _ in chromium.BROWSERS:
            with self.subTest(path):
                state = json.loads((self.support / path / "Local State").read_text())["profile"]
                names = {key: value["name"] for key, value in state["info_cache"].items()}
                self.assertEqual(names, {"Default": "Personal", "Profile 1": "Work"})
                self.assertEqual(state["last_active_profiles"], ["Default"])

    def test_every_database_is_sound(self):
        for path, _ in chromium.BROWSERS:
            for profile in ("Default", "Profile 1"):
                for name in DATABASES:
                    with self.subTest(f"{path}/{profile}/{name}"):
                        database = sqlite3.connect(self.support / path / profile / name)
                        answer = database.execute("PRAGMA integrity_check").fetchall()
                        database.close()
                        self.assertEqual(answer, [("ok",)])

    def test_the_second_profile_has_seen_half_of_the_pages(self):
        folder = self.support / "Google" / "Chrome"
        self.assertEqual(count(folder / "Default" / "History", "urls"), 24)
        self.assertEqual(count(folder / "Profile 1" / "History", "urls"), 12)

    def test_old_browsers_keep_addresses_in_tables_of_their_own(self):
        web_data = self.support / "Orvo" / "Default" / "Web Data"
        self.assertEqual(count(web_data, "autofill_profile_emails"), 1)
        with self.assertRaises(sqlite3.OperationalError):
            count(self.support / "Vivaldi" / "Default" / "Web Data", "autofill_profile_emails")

    def test_times_are_microseconds_since_1601(self):
        history = sqlite3.connect(self.support / "Chromium" / "Default" / "History")
        newest = history.execute("SELECT MAX(last_visit_time) FROM urls").fetchone()[0]
        history.close()
        # 2024-06-29 12:00:00 UTC is 1719662400 seconds after 1970.
        self.assertEqual(newest, (1719662400 + 11644473600) * 1_000_000)


class Firefox(ScriptTest):
    NAMES = ("places", "cookies", "formhistory", "webappsstore", "permissions")

    def setUp(self):
        super().setUp()
        firefox.make(self.folder)
        self.support = self.folder / "Library" / "Application Support" / "Firefox"
        self.profiles = [self.support / path for path, _, _, _ in firefox.PROFILES]

    def test_every_database_is_sound_and_left_without_a_log(self):
        for profile in self.profiles:
            for name in self.NAMES:
                with self.subTest(f"{profile.name}/{name}"):
                    database = sqlite3.connect(profile / f"{name}.sqlite")
                    answer = database.execute("PRAGMA integrity_check").fetchall()
                    database.close()
                    self.assertEqual(answer, [("ok",)])
        self.assertEqual(list(self.support.rglob("*.sqlite-*")), [])

    def test_the_profiles_are_listed_and_one_is_the_default(self):
        lines = (self.support / "profiles.ini").read_text().splitlines()
        for path, name, _, _ in firefox.PROFILES:
            self.assertIn(f"Path={path}", lines)
            self.assertIn(f"Name={name}", lines)
        self.assertEqual(lines.count("Default=1"), 1)

    def test_bookmarked_places_are_the_ones_that_something_refers_to(self):
        for profile in self.profiles:
            database = sqlite3.connect(profile / "places.sqlite")
            kept = database.execute("SELECT id FROM moz_places WHERE foreign_count > 0").fetchall()
            marked = database.execute(
                "SELECT fk FROM moz_bookmarks WHERE fk NOT NULL ORDER BY fk"
            ).fetchall()
            database.close()
            self.assertEqual(kept, marked)
            self.assertGreater(len(kept), 1)

    def test_the_second_profile_has_seen_a_third_of_the_pages(self):
        visits = [count(profile / "places.sqlite", "moz_historyvisits") for profile in self.profiles]
        self.assertEqual(visits, [36, 12])

    def test_times_are_microseconds_since_1970(self):
        places = sqlite3.connect(self.profiles[0] / "places.sqlite")
        newest = places.execute("SELECT MAX(visit_date) FROM moz_historyvisits").fetchone()[0]
        places.close()
        self.assertEqual(newest, 1719662400 * 1_000_000)  # 2024-06-29 12:00:00 UTC


class MakeHome(ScriptTest):
    def make(self, *arguments):
        script = ROOT / "scripts" / "sample" / "make_home.py"
        return self.run_script(sys.executable, script, *arguments)

    def test_a_folder_that_holds_something_is_refused_and_left_alone(self):
        home = self.folder / "home"
        home.mkdir()
        (home / "letter").write_text("dear")
        finished = self.make(home)
        self.assertEqual(finished.returncode, 1)
        self.assertIn("is not empty", finished.stderr)
        self.assertEqual([path.name for path in home.iterdir()], ["letter"])

    def test_the_families_made_are_named(self):
        finished = self.make(self.folder / "home")
        self.assertEqual(finished.returncode, 0, finished.stderr)
        self.assertEqual(finished.stdout.split()[0], "chromium")

    def test_without_a_folder_nothing_is_made(self):
        self.assertEqual(self.make().returncode, 2)
