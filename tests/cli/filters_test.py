"""What filters cannot see: told in plans, questions and documents, and left out where that is asked."""

import datetime

from fixture import HostProgramTest, ZERO, approximate, database, exact, rows, size, write
from items_test import cookie_file

CHROMIUM = "--browser=chromium"
CACHE = ("--category=cache", CHROMIUM)
HISTORY = ("--category=history", CHROMIUM)


class FiltersTest(HostProgramTest):
    def make_home(self):
        super().make_home()
        database(self.history, "CREATE TABLE downloads (id INTEGER)",
                 "INSERT INTO downloads VALUES (1), (2)")

    def items(self, document):
        return {item["what"]: item for browser in document["browsers"]
                for category in browser["categories"] for item in category["items"]}

    def addresses(self):
        return [row[0] for row in rows(self.history, "SELECT url FROM urls")]


class Unseen(FiltersTest):
    def test_without_filters_nothing_is_said(self):
        found = self.document("size", CHROMIUM)
        self.assertNotIn("unseen", found)
        self.assertFalse(any("unseen" in item for item in self.items(found).values()))

    def test_a_document_tells_it_item_by_item_and_in_all(self):
        for command, key in ((("size",), "size"), (("clean", "--dry-run"), "removed")):
            with self.subTest(command=command):
                found = self.document(*command, CHROMIUM, "--include=one.example")
                items = self.items(found)
                whole = approximate(self.history.stat().st_size)
                self.assertEqual(items[str(self.cache)]["unseen"], {
                    "filters": ["include"], "tables": [], "size": size(exact(2), exact(2000))})
                self.assertEqual(items[str(self.history)]["unseen"], {
                    "filters": ["include"], "tables": ["downloads"],
                    "size": size(exact(2), whole)})
                self.assertEqual(items[str(self.history)][key]["itemCount"], exact(3))
                self.assertNotIn("unseen", items[str(self.cookies)])
                self.assertEqual(found["unseen"], {"isTaken": True, "size": size(
                    exact(4), {**whole, "value": whole["value"] + 2000})})

    def test_what_a_clean_took_unseen_is_told_after_it(self):
        found = self.document("clean", "--yes", *HISTORY, "--include=one.example")
        self.assertEqual(found["unseen"]["size"]["itemCount"], exact(2))
        self.assertEqual(self.addresses(), ["https://two.example/", "https://three.test/"])

    def test_each_part_of_a_filter_is_told_by_its_name(self):
        found = self.document("size", CHROMIUM, "--exclude=x", "--inside=2024-01-01..")
        items = self.items(found)
        self.assertEqual(items[str(self.cache)]["unseen"]["filters"], ["exclude"])
        self.assertEqual(items[str(self.cookies)]["unseen"]["filters"], ["dates"])
        self.assertEqual(items[str(self.history)]["unseen"]["filters"], ["exclude", "dates"])

    def test_people_read_it_below_the_figures(self):
        text = self.run_program("size", *CACHE, "--include=no-such-site").text
        self.assertIn('Filter: only what contains "no-such-site"\n', text)
        self.assertIn("cannot see this, which counts whole", text)
        self.assertRegex(text, r"Chromium +Cache +2 +2\.0 KB +text\n")
        self.assertIn("That is 2 of 2 items, and 2.0 KB of 2.0 KB.\n", text)

    def test_nothing_is_said_where_the_filters_see_all(self):
        text = self.run_program("size", CHROMIUM, "--category=cookies", "--include=one").text
        self.assertIn("Filter: ", text)
        self.assertNotIn("cannot see", text)

    def test_the_question_names_it(self):
        before = self.snapshot()
        _, _, screen = self.run_on_terminal("clean", CHROMIUM, "--include=no-such-site",
                                            answer=b"n\n")
        self.assertIn("which goes whole (--strict leaves it out)", screen)
        self.assertRegex(screen, r"\nThe filters cannot see 4 items \(~[\d.]+ KB\) of this\.\r\n"
                                 r"Delete this\? \[y/N\] ")
        self.assertEqual(self.snapshot(), before)
        _, _, screen = self.run_on_terminal("clean", CHROMIUM, "--category=cookies",
                                            "--include=no-such-site", answer=b"n\n")
        self.assertIn("\nDelete this? [y/N]", screen.replace("\r", ""))

    def test_safaris_cookies_are_seen_by_exclusions_alone(self):
        file = self.home / "Library" / "Cookies" / "Cookies.binarycookies"
        write(file, cookie_file())
        for filters, unseen in ((["--include=x"], ["include"]), (["--days=2020-01"], ["dates"]),
                                (["--exclude=x"], None)):
            with self.subTest(filters=filters):
                found = self.items(self.document("size", "-b", "safari", "-c", "cookies", *filters))
                self.assertEqual(found[str(file)].get("unseen", {}).get("filters"), unseen)


class Strict(FiltersTest):
    def test_what_no_filter_sees_stays_and_is_no_failure(self):
        found = self.document("clean", "--yes", "--strict", CHROMIUM, "--include=one.example")
        items = self.items(found)
        self.assertEqual(items[str(self.cache)]["verdict"], "nothingThere")
        self.assertEqual(items[str(self.cache)]["removed"], ZERO)
        self.assertEqual(items[str(self.cache)]["unseen"]["size"], size(exact(2), exact(2000)))
        self.assertEqual(found["unseen"]["isTaken"], False)
        self.assertEqual(len(list(self.cache.rglob("data_*"))), 2)
        self.assertEqual(self.addresses(), ["https://two.example/", "https://three.test/"])
        self.assertEqual(rows(self.history, "SELECT id FROM downloads"), [(1,), (2,)])
        self.assertEqual(rows(self.cookies, "SELECT host_key FROM cookies"), [("two.test",)])

    def test_a_size_counts_only_what_is_seen(self):
        found = self.document("size", "--strict", CHROMIUM, "--inside=2024-01-01..2024-12-31")
        self.assertEqual(found["total"]["itemCount"], exact(2))

    def test_every_part_of_the_filters_has_to_see_it(self):
        found = self.document("size", "--strict", CHROMIUM, "--include=example", "--last=100y")
        self.assertEqual(found["total"]["itemCount"], exact(2))
        self.assertEqual(self.items(found)[str(self.cookies)]["size"], ZERO)

    def test_without_filters_it_changes_nothing(self):
        self.assertEqual(self.document("size", "--strict", CHROMIUM),
                         self.document("size", CHROMIUM))

    def test_the_plan_says_what_it_leaves_out(self):
        text = self.run_program("clean", "--strict", "-n", *CACHE, "--exclude=x").text
        self.assertIn("cannot see this, which is left out (--strict)", text)
        self.assertRegex(text, r"Chromium +Cache +2 +2\.0 KB +text\n")
        self.assertNotIn("That is", text)


class Listed(FiltersTest):
    def entries(self, document):
        return {what: item["entries"] for what, item in self.items(document).items()
                if item.get("entries")}

    def test_every_file_and_table_and_nothing_is_deleted(self):
        before = self.snapshot()
        found = self.document("clean", "--list", CHROMIUM, "--include=example")
        self.assertIs(found["dryRun"], True)
        entries = self.entries(found)
        folder = self.cache / "Cache"
        self.assertEqual(sorted(entries.pop(str(self.cache)), key=lambda entry: entry["what"]), [
            {"what": str(folder / "data_0"), "table": None, "itemCount": exact(1),
             "byteCount": exact(1500)},
            {"what": str(folder / "data_1"), "table": None, "itemCount": exact(1),
             "byteCount": exact(500)}])
        self.assertEqual(entries, {
            str(self.history): [
                {"what": str(self.history), "table": "urls", "itemCount": exact(2),
                 "byteCount": None},
                {"what": str(self.history), "table": "downloads", "itemCount": exact(2),
                 "byteCount": None}],
            str(self.cookies): [
                {"what": str(self.cookies), "table": "cookies", "itemCount": exact(1),
                 "byteCount": None}]})
        self.assertEqual(self.snapshot(), before)

    def test_what_is_left_out_is_not_listed(self):
        found = self.document("clean", "--list", "--strict", CHROMIUM, "--include=example")
        self.assertEqual({what: [entry["table"] for entry in entries]
                          for what, entries in self.entries(found).items()},
                         {str(self.history): ["urls"], str(self.cookies): ["cookies"]})

    def test_a_cookie_file_is_listed_with_its_cookies(self):
        file = self.home / "Library" / "Cookies" / "Cookies.binarycookies"
        write(file, cookie_file())
        found = self.document("clean", "--list", "-b", "safari", "-c", "cookies")
        self.assertEqual(self.entries(found), {str(file): [
            {"what": str(file), "table": None, "itemCount": exact(1),
             "byteCount": exact(file.stat().st_size)}]})

    def test_people_read_it_below_the_plan(self):
        text = self.run_program("clean", "--list", CHROMIUM, "--yes").text
        self.assertIn(f"\nChromium, Zoë 日本, Cache: {self.cache}\n", text)
        self.assertRegex(text, r"\n  Cache/data_0 +1\.5 KB\n")
        self.assertRegex(text, r"\n  table urls +3 rows\n")

    def test_other_reports_have_no_list(self):
        for arguments in (["size"], ["clean", "-n"]):
            self.assertEqual(self.entries(self.document(*arguments, CHROMIUM)), {})
        self.assert_usage_error("size", "--list", says=["--list", "clean"])


class Days(FiltersTest):
    def setUp(self):
        super().setUp()
        self.environment["TZ"] = "UTC0"

    def count(self, *filters):
        return self.document("size", "--strict", *HISTORY, *filters)["total"]["itemCount"]["value"]

    def test_the_last_day_belongs_to_them(self):
        self.assertEqual(self.count("--days=2023-12-01..2024-01-01"), 2)
        self.assertEqual(self.count("--inside=2023-12-01..2024-01-01"), 0)
        self.assertEqual(self.count("--days", "2020-01-01"), 1)
        self.assertEqual(self.count("--days", "2024-01"), 2)
        self.assertEqual(self.count("--days", "..2023-12"), 1)

    def test_bounds_on_chromiums_history_are_shifted_by_the_time_zone_of_1601(self):
        # 4 hours and 56 minutes behind UTC; 9 hours and 19 minutes ahead of it.
        for zone, minutes, found in (("UTC", 90, 0), ("America/New_York", 90, 1),
                                     ("America/New_York", 350, 1), ("America/New_York", 370, 0),
                                     ("Asia/Tokyo", 1, 0)):
            with self.subTest(zone=zone, minutes=minutes):
                self.environment["TZ"] = zone
                now = datetime.datetime.now(datetime.timezone.utc).timestamp()
                database(self.history, "DELETE FROM urls", "INSERT INTO urls VALUES "
                         f"(4, 'https://new.test/', "
                         f"{int((now - 60 * minutes + 11644473600) * 1_000_000)})")
                self.assertEqual(self.count("--last=1h"), found)

    def test_every_plan_says_how_they_are_shifted(self):
        line = "In the history of Chrome and its family, dates take effect about 5 hours earlier.\n"
        self.environment["TZ"] = "EST5"
        for arguments in (["size", *HISTORY], ["clean", "-n", CHROMIUM], ["clean", "--yes", *HISTORY]):
            with self.subTest(arguments=arguments):
                self.assertIn(line, self.run_program(*arguments, "--last=1h").text)
        for arguments in ([*HISTORY, "--include=x"], [*HISTORY, "--inside=.."],
                          ["-b", "safari", "-b", "firefox", "--last=1h"], [*CACHE, "--last=1h"]):
            with self.subTest(arguments=arguments):
                self.assertNotIn("Chrome and its family", self.run_program("size", *arguments).text)
        self.environment["TZ"] = "UTC0"
        self.assertNotIn("Chrome and its family", self.run_program("size", *HISTORY, "--last=1h").text)

    def test_the_last_hours_are_counted_from_now(self):
        now = datetime.datetime.now(datetime.timezone.utc).timestamp()
        database(self.history, "INSERT INTO urls VALUES (4, 'https://new.test/', "
                 f"{int((now - 1800 + 11644473600) * 1_000_000)})")
        self.assertEqual(self.count("--last=1h"), 1)
        self.assertEqual(self.count("--last", "100y"), 4)
        self.assertEqual(self.count("--days=today..", "--last=1h"), 1)

    def test_the_plan_shows_the_zone(self):
        self.environment["TZ"] = "CET-1"
        text = self.run_program("clean", "-n", *HISTORY, "--days=2024-01-01").text
        self.assertIn(
            "Filter: dated from 2024-01-01 00:00:00 CET to 2024-01-01 23:59:59 CET\n", text)
        text = self.run_program("clean", "-n", *HISTORY, "--inside=2024-01-01..").text
        self.assertIn("Filter: dated from 2024-01-01 01:00:00 CET\n", text)

    def test_what_is_no_day_or_age_is_refused(self):
        for value in ("", "2024", "tomorrow", "2024-02-30", "2024-02..2024-01"):
            self.assert_usage_error("size", f"--days={value}")
        for value in ("", "7", "soon", "-1d"):
            self.assert_usage_error("size", f"--last={value}", says=["not an age"])
        self.assert_usage_error("sites", "--last=1h", says=["size and clean"])
