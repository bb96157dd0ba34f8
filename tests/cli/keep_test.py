"""The keep list that lasts: what it says stays, every plan tells it, and a wrong one deletes nothing."""

import os
import subprocess
import sys

from fixture import ROOT, HostProgramTest, rows, write
from items_test import ItemsTest, cookie_file

CHROMIUM = "--browser=chromium"


class KeepTest(HostProgramTest):
    def setUp(self):
        super().setUp()
        self.list = self.support / "browsersweep" / "keep.conf"

    def keep(self, *lines):
        write(self.list, "".join(f"{line}\n" for line in lines))


class Cleaning(KeepTest):
    def test_a_site_a_browser_and_a_category_are_left_alone(self):
        self.keep("# mine", "site one.example", "category cache", "browser opera")
        found = self.document("clean", "--yes")
        self.assertEqual(found["keepList"], {
            "file": str(self.list), "sites": ["one.example"], "browsers": ["opera"],
            "categories": ["cache"]})
        self.assertNotIn("opera", [row["browser"] for row in found["browsers"]])
        self.assertEqual(rows(self.history, "SELECT url FROM urls"), [("https://one.example/",)])
        self.assertEqual(rows(self.cookies, "SELECT host_key FROM cookies"), [(".one.example",)])
        self.assertEqual(len(list(self.cache.rglob("data_*"))), 2)

    def test_what_no_filter_can_keep_is_told(self):
        self.keep("site one.example")
        found = self.document("clean", "--dry-run", CHROMIUM)
        self.assertEqual(found["unseen"]["size"]["itemCount"]["value"], 2)

    def test_it_is_told_in_every_plan_and_beside_every_result(self):
        self.keep("site one.example", "category cookies")
        line = (f"browsersweep: left alone because of {self.list}: sites one.example; "
                "categories Cookies (--no-config ignores it)\n")
        self.assertEqual(self.run_program("clean", "-n", CHROMIUM).error, line)
        _, _, screen = self.run_on_terminal("clean", CHROMIUM, answer=b"n\n")
        self.assertIn(line, screen.replace("\r", ""))
        self.assertEqual(self.run_program("clean", "--yes", CHROMIUM).error, line)

    def test_a_site_stays_where_data_hears_an_exclusion_only_alone(self):
        file = self.home / "Library" / "Cookies" / "Cookies.binarycookies"
        write(file, cookie_file())
        self.keep("site one.example")
        safari = ("--browser=safari", "--category=cookies")
        found = self.document("clean", "--yes", "--last=20y", *safari)
        self.assertEqual(found["total"]["itemCount"]["value"], 0)
        self.assertEqual(file.read_bytes(), cookie_file())
        self.document("clean", "--yes", "--last=20y", "--no-config", *safari)
        self.assertFalse(file.exists() and file.read_bytes() == cookie_file())

    def test_lines_may_end_in_a_return_alone(self):
        write(self.list, "# mine\rsite one.example\r")
        self.assertEqual(self.document("clean", "--dry-run", CHROMIUM)["keepList"]["sites"], ["one.example"])

    def test_no_config_ignores_it(self):
        self.keep("site one.example", "nonsense")
        found = self.document("clean", "--yes", "--no-config", CHROMIUM)
        self.assertNotIn("keepList", found)
        self.assertEqual(rows(self.history, "SELECT url FROM urls"), [])

    def test_an_empty_one_keeps_nothing(self):
        self.keep("# nothing yet")
        result = self.run_program("clean", "-n", CHROMIUM)
        self.assertEqual((result.status, result.error), (0, ""))

    def test_sizes_are_those_of_everything(self):
        self.keep("category cache", "nonsense")
        self.assertEqual(self.document("size", CHROMIUM)["total"]["itemCount"]["value"], 7)

    def test_only_that_of_the_home_given_counts(self):
        write(self.root / "own-home" / "Library" / "Application Support" / "browsersweep"
              / "keep.conf", "nonsense\n")
        self.assertEqual(self.run_program("clean", "-n", CHROMIUM).status, 0)

    def test_it_is_only_read(self):
        self.keep("site one.example")
        before = self.snapshot()
        self.run_program("clean", "-n", CHROMIUM)
        self.assertEqual(self.snapshot(), before)


class Wrong(KeepTest):
    def test_a_link_that_leads_nowhere(self):
        self.list.parent.mkdir(parents=True)
        self.list.symlink_to(self.root / "away" / "keep.conf")
        self.check("cannot be read")

    def test_a_name_with_a_blank_that_is_not_seen(self):
        for mark in ("\u00a0", "\u200b", "\u3002"):
            self.keep(f"site one{mark}.example")
            self.check("is not a site")

    def check(self, says):
        for command in (["clean", "--yes"], ["clean", "-n"]):
            self.assert_usage_error(*command, CHROMIUM,
                                    says=[str(self.list), says, "nothing was deleted"])

    def test_a_line_that_is_no_rule(self):
        for line in ("sites one.example", "site", "site not/one", "browser lynx", "category all"):
            with self.subTest(line=line):
                self.keep("# mine", line)
                self.check("wrong in line 2")

    def test_a_file_that_is_no_text(self):
        for contents in (b"site \xff.com\n", b"site a.com\0\n", b"\xff\xfes\0i\0"):
            with self.subTest(contents=contents):
                write(self.list, contents)
                self.check("not UTF-8 text")

    def test_a_file_that_is_too_large(self):
        write(self.list, b"# " + b"x" * 65536)
        self.check("larger than 64 KiB")

    def test_more_sites_than_databases_take(self):
        write(self.list, "".join(f"site a{number}.com\n" for number in range(1000)))
        for command in (["clean", "--yes"], ["clean", "-n"]):
            self.assert_usage_error(*command, CHROMIUM, says=[
                str(self.list), "1,000 patterns", "1,000 of them sites of the keep list", "--no-config",
                "nothing was done"])

    def test_what_is_no_file(self):
        self.list.mkdir(parents=True)
        self.check("not a regular file")
        self.list.rmdir()
        os.mkfifo(self.list)
        before = self.cache / "Cache" / "data_0"
        result = self.run_program("clean", "--yes", CHROMIUM)
        self.assertEqual(result.status, 2)
        self.assertIn("not a regular file", result.error)
        self.assertTrue(before.exists())

    def test_a_link_that_leads_nowhere_keeps_nothing_and_one_in_a_circle_is_refused(self):
        self.list.parent.mkdir(parents=True)
        self.list.symlink_to(self.list.name)
        result = self.run_program("clean", "--yes", CHROMIUM)
        self.assertEqual(result.status, 2)
        self.assertIn("cannot be read", result.error)


class Denied(ItemsTest):
    def test_one_that_may_not_be_read_deletes_nothing(self):
        file = self.support / "browsersweep" / "keep.conf"
        write(file, "site one.example\n")
        self.deny(file, 0)
        result = self.run_program("clean", "--yes", CHROMIUM, **self.identity)
        self.assertEqual((result.status, result.output), (2, b""))
        self.assertIn(f"{file} cannot be read: Permission denied", result.error)
        self.assertTrue((self.cache / "Cache" / "data_0").exists())


class Forgetting(KeepTest):
    """On the sample home, whose browsers hold traces of three sites."""

    FIREFOX = ("--browser=firefox", "--browser=opera")

    def make_home(self):
        subprocess.run([sys.executable, "-B", ROOT / "scripts" / "sample" / "make_home.py", self.home],
                       check=True, stdout=subprocess.DEVNULL)

    def forget(self, *arguments):
        return self.document("forget", *self.FIREFOX, *arguments)

    def sites(self, document):
        return {row["site"] for row in document["forgotten"]}

    def traces(self, document):
        return [trace for row in document["forgotten"] for trace in row["traces"]]

    def test_a_site_stays_where_all_are_forgotten(self):
        self.assertEqual(self.sites(self.forget("--all", "--dry-run")),
                         {"example.com", "example.net", "example.org"})
        self.keep("site www.example.com")
        found = self.forget("--all", "--yes", "--keep=example.net")
        self.assertEqual(self.sites(found), {"example.org"})
        self.assertEqual(found["keepList"]["sites"], ["example.com"])
        left = self.document("sites", *self.FIREFOX)
        self.assertEqual({row["site"] for row in left["sites"]}, {"example.com", "example.net"})

    def test_to_name_a_site_that_is_kept_is_refused(self):
        self.keep("site example.com")
        self.assert_usage_error("forget", "example.org", "www.example.com", "--yes",
                                says=["example.com is kept", "--no-config"])
        self.assertEqual(self.sites(self.forget("example.com", "--no-config", "-n")),
                         {"example.com"})

    def test_browsers_and_categories_are_left_alone(self):
        self.keep("browser opera", "category cookies", "category history")
        traces = self.traces(self.forget("--all", "--yes"))
        self.assertEqual({trace["browser"] for trace in traces}, {"firefox"})
        self.assertEqual({trace["kind"] for trace in traces}, {"siteStorage"})

    def test_a_kind_of_a_category_that_is_kept_is_none_and_not_all(self):
        self.keep("category cookies")
        before = self.document("sites", *self.FIREFOX)
        found = self.forget("--all", "--yes", "--kind=cookies")
        self.assertEqual(found["forgotten"], [])
        self.assertEqual({store["verdict"] for store in found["stores"]}, {"nothingThere"})
        self.assertEqual(self.document("sites", *self.FIREFOX), before)


class Documented(KeepTest):
    def test_the_example_of_the_documents_is_a_list(self):
        text = (ROOT / "docs" / "host-program.md").read_text()
        example = text.split("## What is kept for good", 1)[1].split("\n\n    ", 1)[1]
        lines = [line.strip() for line in example.split("\n\n", 1)[0].splitlines()]
        self.keep(*lines)
        self.assertEqual(self.run_program("clean", "-n", CHROMIUM).status, 0)
