"""The commands about sites, as far as they go without any data: what they take, say and refuse."""

import base64
import contextlib
import hashlib
import json
import os
import re
import sqlite3
import subprocess

from fixture import PROGRAM, ROOT, HostProgramTest, approximate, database, size, write
from html_test import Page


class SitesTest(HostProgramTest):
    """A home whose browsers hold nothing of any site."""

    def make_home(self):
        (self.home / "Library").mkdir(parents=True)


class Sites(SitesTest):
    def test_an_empty_home_has_no_sites(self):
        self.assertEqual(self.document("sites"), {"sites": [], "notBySite": [], "errors": []})
        result = self.run_program("sites")
        self.assertEqual((result.status, result.text), (0, "No traces of sites were found.\n"))

    def test_the_page_says_that_there_are_none(self):
        page = Page(self.run_program("sites", "--html", "-").text)
        self.assertEqual(page.problems, [])
        self.assertIn("No traces of sites were found.", page.texts("p"))

    def test_the_page_is_written_beside_the_report(self):
        file = self.root / "page.html"
        result = self.run_program("sites", "--html", file)
        self.assertEqual((result.status, result.text), (0, "No traces of sites were found.\n"))
        text = file.read_text()
        style = re.search(r"<style>(.*?)</style>", text, re.S)[1]
        digest = base64.b64encode(hashlib.sha256(style.encode()).digest()).decode()
        self.assertIn(f"style-src 'sha256-{digest}'", text)

    def test_profiles_are_chosen_as_for_other_commands(self):
        result = self.run_program("sites", "--browser", "chromium", "--profile", "nobody")
        self.assertEqual(result.status, 1)
        self.assertIn("nobody", result.error)


class Script(HostProgramTest):
    def test_the_policy_of_the_page_names_the_script_that_it_has(self):
        source = (ROOT / "cli" / "SiteHTML.cpp").read_text()
        script = re.search(r'R"js\((.*?)\)js"', source, re.S)[1]
        digest = re.search(r'\)js",\s*"(.*?)"', source)[1]
        self.assertEqual(base64.b64encode(hashlib.sha256(script.encode()).digest()).decode(), digest)


class Safari(SitesTest):
    WORK = "0F1E2D3C-0000-4000-8000-0123456789AB"

    def make_home(self):
        super().make_home()
        self.safari = self.home / "Library" / "Safari"
        self.container = self.home / "Library" / "Containers" / "com.apple.Safari" / "Data" / "Library"
        for folder, site in ((self.safari, "https://own.example/"),
                             (self.safari / "Profiles" / self.WORK, "https://work.example/")):
            database(folder / "History.db",
                     "CREATE TABLE history_items (id INTEGER PRIMARY KEY, url TEXT)",
                     "CREATE TABLE history_visits (id INTEGER PRIMARY KEY, history_item INTEGER,"
                     " visit_time REAL)",
                     f"INSERT INTO history_items VALUES (1, '{site}')")
        database(self.container / "Safari" / "SafariTabs.db",
                 "CREATE TABLE bookmarks (id INTEGER PRIMARY KEY, parent INTEGER, type INTEGER,"
                 " subtype INTEGER, title TEXT, url TEXT, external_uuid TEXT)",
                 f"INSERT INTO bookmarks VALUES (1, 0, 1, 2, 'Work', NULL, '{self.WORK}')")

    def profiles(self, *arguments):
        document = self.document("sites", "--browser=safari", *arguments)
        self.assertEqual(document["errors"], [])
        return {each["site"]: [trace["profile"] for trace in each["traces"]] for each in document["sites"]}

    def test_a_named_profile_is_shown_by_its_title_and_chosen_by_it(self):
        self.assertEqual(self.profiles(), {"own.example": [None], "work.example": ["Work"]})
        self.assertEqual(self.profiles("--profile=Work"), {"work.example": ["Work"]})
        self.assertEqual(self.profiles(f"--profile={self.WORK}"), {"work.example": ["Work"]})
        result = self.run_program("forget", "--all", "--yes", "--force", "--browser=safari", "--profile=Work")
        self.assertEqual((result.status, result.error), (0, ""))
        self.assertEqual(self.profiles(), {"own.example": [None]})

    def test_other_commands_know_one_profile_alone(self):
        result = self.run_program("size", "--browser=safari", "--profile=Work")
        self.assertEqual(result.status, 1)
        self.assertIn("no selected browser has the profile 'Work'", result.error)

    def test_a_profile_whose_identifier_is_none_is_left_out(self):
        with contextlib.closing(sqlite3.connect(self.container / "Safari" / "SafariTabs.db")) as tabs:
            tabs.execute("UPDATE bookmarks SET external_uuid = '../../Documents'")
            tabs.commit()
        result = self.run_program("sites", "--browser=safari")
        self.assertEqual(result.status, 1)
        self.assertIn("left out, its identifier is not of the form of a UUID", result.error)
        self.assertIn("own.example", result.text)

    def test_what_may_not_be_looked_at_is_an_error_and_not_nothing(self):
        for path in (self.root, *self.root.rglob("*")):
            path.chmod(0o777 if path.is_dir() else 0o666)
        containers = self.home / "Library" / "Containers"
        containers.chmod(0)
        self.addCleanup(containers.chmod, 0o777)
        become = {"user": 65534, "group": 65534} if os.geteuid() == 0 else {}
        if become and subprocess.run(["/bin/test", "-x", PROGRAM], check=False, **become).returncode != 0:
            self.skipTest("another user cannot run the program where it lies")
        for arguments in (("sites",), ("forget", "--all", "--dry-run")):
            result = self.run_program(*arguments, "--browser=safari", **become)
            self.assertEqual(result.status, 1, result.error)
            # Each store in it meets it, and it is said once of each profile.
            self.assertEqual(result.error.count("no permission: Its permissions forbid it to this user; its "
                                                f"owner can change them: {containers}\n"), 2)
            self.assertLess(len(result.error.splitlines()), 6)
            self.assertIn("own.example", result.text)


class Links(HostProgramTest):
    def test_no_site_is_forgotten_behind_a_linked_profile(self):
        precious = self.root / "precious"
        database(precious / "History", "CREATE TABLE urls (id INTEGER PRIMARY KEY, url TEXT)",
                 "INSERT INTO urls VALUES (1, 'https://secret.example/')")
        write(precious / "Preferences", '{"profile": {}}')
        self.second.rename(self.root / "aside")
        self.second.symlink_to(precious)
        before = self.snapshot()
        for arguments in (("sites",), ("forget", "--all", "--yes"), ("forget", "secret.example", "--yes")):
            result = self.run_program(*arguments, "--browser=chromium", "--profile=Work")
            self.assertEqual(result.status, 1)
            # Each store meets it, and it is said once.
            self.assertEqual(result.error.count(f"left out: it is a link: {self.second}\n"), 1)
            self.assertNotIn("secret.example 1", result.text)
            self.assertEqual(self.snapshot(), before)


class Forget(SitesTest):
    def test_of_nothing_nothing_is_forgotten_and_nobody_is_asked(self):
        status, output, screen = self.run_on_terminal("forget", "example.com")
        self.assertEqual((status, output), (0, b"Nothing was removed.\n"))
        self.assertIn("nothing of example.com was found", screen)
        self.assertNotIn("[y/N]", screen)

    def test_the_document_of_nothing(self):
        for extra, is_dry in (("--yes", False), ("--dry-run", True)):
            document = self.document("forget", "example.com", extra)
            self.assertEqual(document["dryRun"], is_dry)
            for key in ("forgotten", "notBySite", "kept", "errors"):
                self.assertEqual(document[key], [], key)

    def test_what_could_not_be_looked_at_leaves_no_exact_nothing(self):
        write(self.support / "Chromium" / "Local State", "{")
        for extra in ("--yes", "--dry-run"):
            result = self.run_program("--json", "forget", "example.com", extra)
            self.assertEqual(result.status, 1)
            total = json.loads(result.output)["total"]
            self.assertEqual(total, size(approximate(0), approximate(0)))
            self.assertIn("nothing of example.com was found where the program could look", result.error)

    def test_a_host_names_its_site(self):
        result = self.run_program("forget", "--dry-run", "www.Example.co.uk")
        self.assertIn("browsersweep: www.Example.co.uk means all of example.co.uk\n", result.error)

    def test_letters_beyond_ascii_are_written_as_browsers_do(self):
        result = self.run_program("forget", "--dry-run", "münchen.de")
        self.assertIn("münchen.de means all of xn--mnchen-3ya.de\n", result.error)
        self.assert_usage_error("forget", "--dry-run", "mu\u0308nchen.de", says=("is not a site",))

    def test_all_is_asked_about_and_a_no_ends_it(self):
        status, output, screen = self.run_on_terminal("forget", "--all", answer=b"n\n")
        self.assertEqual((status, output), (1, b""))
        self.assertIn("nothing was deleted", screen)
        status, _, _ = self.run_on_terminal("forget", "--all", answer=b"y\n")
        self.assertEqual(status, 0)

    def test_without_a_terminal_it_needs_yes_or_a_dry_run(self):
        self.assert_usage_error("forget", "example.com", says=("--yes", "--dry-run"))
        self.assert_usage_error("forget", "--all", "--json", says=("--yes",))

    def test_a_running_browser_is_told_of(self):
        data = self.support / "Chromium"
        (data / "Default").mkdir(parents=True)
        (data / "SingletonLock").symlink_to("host-1")
        result = self.run_program("forget", "--all", "--yes", "--browser", "chromium")
        self.assertEqual((result.status, result.output), (1, b""))
        self.assertIn("Chromium seems to be running", result.error)
        self.assertEqual(self.run_program("forget", "--all", "--yes", "--force", "--browser",
                                          "chromium").status, 0)

    def test_the_list_of_sites_to_keep(self):
        file = self.root / "keep"
        file.write_text("# mine\nexample.com\n\nwww.other.org # shop\n")
        result = self.run_program("forget", "--all", "--dry-run", "--keep-list", file)
        self.assertEqual(result.status, 0, result.error)
        self.assertIn("www.other.org means all of other.org", result.error)
        file.write_text("example.com\n\nno site\n")
        self.assert_usage_error("forget", "--all", "--dry-run", "--keep-list", file,
                                says=(f"{file}, line 3: 'no site' is not a site",))
        for path in (self.root / "missing", self.root):
            self.assert_usage_error("forget", "--all", "--yes", "--keep-list", path,
                                    says=("cannot be read", "--keep-list"))

    def test_what_does_not_fit_together_is_refused(self):
        self.assert_usage_error("forget", "--yes", says=("--all",))
        self.assert_usage_error("forget", "--yes", "--all", "a.com", says=("leave out",))
        self.assert_usage_error("forget", "--yes", "a.com", "--keep", "b.com", says=("--all",))
        self.assert_usage_error("forget", "--yes", "a/b", says=("'a/b' is not a site",))
