"""The JSON documents, whole, on a home that is known to the last byte."""

import json

from fixture import (BROWSERS, CATEGORIES, ZERO, HostProgramTest, approximate, exact, rows, size,
                     without_items, write)


class Documents(HostProgramTest):
    def chromium_sizes(self, key, values):
        """The document of size or clean for Chromium, from the sizes of its six categories."""
        items = sum(value["itemCount"]["value"] for value in values)
        bytes_ = sum(value["byteCount"]["value"] for value in values)
        is_approximate = any(value["byteCount"]["isApproximate"] for value in values)
        total = size(exact(items), {"value": bytes_, "isApproximate": is_approximate})
        closed = [True, True, True, False, True, True]
        return {"total": total, "browsers": [{
            "browser": "chromium", "error": None, "leftOut": [], key: total,
            "requiresClosedBrowserToClean": True,
            "categories": [
                {"category": category, "error": None, key: value,
                 "requiresClosedBrowserToClean": must_be_closed}
                for category, value, must_be_closed in zip(CATEGORIES, values, closed)]}]}

    def all_sizes(self):
        return [size(exact(2), exact(2000)),
                size(exact(3), approximate(self.history.stat().st_size)),
                size(exact(2), approximate(self.cookies.stat().st_size)), ZERO, ZERO, ZERO]

    def test_browsers_lists_all_thirteen_in_the_order_of_the_catalogue(self):
        found = self.document("browsers")["browsers"]
        self.assertEqual([row["browser"] for row in found], BROWSERS)
        self.assertEqual(found[5], {"browser": "googleChrome", "displayName": "Google Chrome",
                                    "bundleIdentifier": "com.google.Chrome"})

    def test_the_selection_keeps_the_order_of_the_catalogue(self):
        found = self.document("browsers", "--browser", "opera", "--browser=brave")
        self.assertEqual([row["browser"] for row in found["browsers"]], ["brave", "opera"])

    def test_profiles(self):
        self.assertEqual(self.document("profiles", "--browser", "chromium"), {"browsers": [
            {"browser": "chromium", "error": None, "leftOut": [], "profiles": [
                {"name": "Zoë 日本", "isPrimary": True, "folder": "Default"},
                {"name": "Work", "isPrimary": False, "folder": "Profile 1"}]}]})

    def test_names_are_written_as_utf_8(self):
        result = self.run_program("--json", "profiles", "--browser", "chromium")
        self.assertIn("Zoë 日本".encode(), result.output)

    def test_what_a_terminal_would_act_on_is_escaped(self):
        name = "a\x7f\x85\u202eb\u2066"
        write(self.support / "Chromium" / "Local State", json.dumps({"profile": {
            "last_used": "Default", "last_active_profiles": ["Default"],
            "info_cache": {"Default": {"name": name, "is_consented_primary_account": False}}}}))
        result = self.run_program("--json", "profiles", "-b", "chromium")
        self.assertIn(rb'"a\u007f\u0085\u202eb\u2066"', result.output)
        self.assertEqual(json.loads(result.output)["browsers"][0]["profiles"][0]["name"], name)

    def test_a_profile_is_selected_by_exactly_its_name_or_folder(self):
        for name, expected in (("Work", ["Work"]), ("Profile 1", ["Work"]), ("work", []),
                               ("Wor", []), ("", [])):
            with self.subTest(name=name):
                found = self.document("profiles", "--browser=chromium", "--profile", name,
                                      status=0 if expected else 1)
                self.assertEqual([p["name"] for p in found["browsers"][0]["profiles"]], expected)

    def test_a_profile_that_no_selected_browser_has_is_told_and_the_rest_is_done(self):
        result = self.run_program("clean", "--yes", "-b", "chromium", "-c", "cookies",
                                  "--profile=Work", "--profile=Wrok")
        self.assertEqual((result.status, result.error), (
            1, "browsersweep: no selected browser has the profile 'Wrok'; did you mean 'Work'?\n"))
        self.assertEqual(rows(self.cookies, "SELECT * FROM cookies"), [])

    def test_primary_only_and_names_restrict_together(self):
        found = self.document("profiles", "--browser=chromium", "--primary-only")
        self.assertEqual([p["name"] for p in found["browsers"][0]["profiles"]], ["Zoë 日本"])
        found = self.document("profiles", "--browser=chromium", "--primary-only",
                              "--profile=Work")
        self.assertEqual(found["browsers"][0]["profiles"], [])

    def test_size(self):
        self.assertEqual(without_items(self.document("size", "--browser", "chromium")),
                         self.chromium_sizes("size", self.all_sizes()))

    def test_size_of_all_browsers_lists_those_without_profiles_too(self):
        found = self.document("size")
        self.assertEqual([row["browser"] for row in found["browsers"]], BROWSERS)
        self.assertEqual(found["browsers"][0], {
            "browser": "quenbySecureBrowser", "error": None, "leftOut": [], "size": ZERO,
            "requiresClosedBrowserToClean": False, "categories": [], "profiles": []})

    def test_each_profile_has_its_own_figures(self):
        history, cookies = (path.stat().st_size for path in (self.history, self.cookies))
        for command, key, extra in (("size", "size", {}),
                                    ("clean", "removed", {"freedBytes": 0})):
            arguments = [command, "--browser=chromium", "--category=history",
                         "--category=cookies", *["--dry-run"] * bool(extra)]

            def part(category, count, byte_count):
                return {"category": category, "error": None, **extra,
                        key: size(exact(count), byte_count)}
            with self.subTest(command=command):
                self.assertEqual(self.document(*arguments)["browsers"][0]["profiles"], [
                    {"name": "Zoë 日本", "isPrimary": True, "folder": "Default", **extra,
                     key: size(exact(3), approximate(history)),
                     "categories": [part("history", 3, approximate(history)),
                                    part("httpCookies", 0, exact(0))]},
                    {"name": "Work", "isPrimary": False, "folder": "Profile 1", **extra,
                     key: size(exact(2), approximate(cookies)),
                     "categories": [part("history", 0, exact(0)),
                                    part("httpCookies", 2, approximate(cookies))]}])

    def test_size_of_selected_categories(self):
        found = self.document("size", "--browser=chromium", "--category=flashCookies",
                              "--category", "cache")
        self.assertEqual([c["category"] for c in found["browsers"][0]["categories"]],
                         ["cache", "flashCookies"])
        self.assertEqual(found["total"], size(exact(2), exact(2000)))

    def test_size_under_filters(self):
        history = "--browser=chromium", "--category=history"
        for filters, count in (
                (["--include", "example"], 2),
                (["--exclude", "example"], 1),
                (["--include=one.", "--include=three"], 2),
                (["--inside", "2024-01-01..2024-12-31"], 2),
                (["--inside", "..2020-12-31T23:59:59.999Z"], 1),
                (["--outside", "2024-01-01..2024-12-31"], 1),
                (["--inside", "725803200..@1704110400"], 2),
                (["--include=example", "--inside=2024-01-01.."], 1),
                (['--filter={"patterns":{"rule":"include","patterns":["two","three"]}}'], 2),
                (['--filter={"dates":{"rule":"insideRange","startDate":"2024-01-01",'
                  '"endDate":null},"patterns":null}'], 2),
                (["--filter", "{}"], 3)):
            with self.subTest(filters=filters):
                found = self.document("size", *history, *filters)
                self.assertEqual(found["total"]["itemCount"], exact(count))

    def test_clean(self):
        self.assertEqual(
            without_items(self.document("clean", "--browser", "chromium", "--yes")),
            {"dryRun": False, **self.chromium_sizes("removed", self.all_sizes())})
        self.assertEqual(self.document("size", "--browser", "chromium")["total"], ZERO)

    def test_a_dry_run_says_what_size_says_and_deletes_nothing(self):
        before = self.snapshot()
        self.assertEqual(
            without_items(self.document("clean", "--browser", "chromium", "--dry-run")),
            {"dryRun": True, **self.chromium_sizes("removed", self.all_sizes())})
        self.assertEqual(self.snapshot(), before)

    def test_bookmarks(self):
        self.assertEqual(self.document("bookmarks", "--browser", "chromium"), {"browsers": [
            {"browser": "chromium", "error": None, "leftOut": [], "bookmarks": [
                {"name": "Ünï", "url": "https://one.example/"},
                {"name": None, "url": "https://two.example/"}]}]})

    def test_notifications(self):
        self.assertEqual(self.document("notifications", "--browser", "chromium"), {"browsers": [
            {"browser": "chromium", "error": None, "leftOut": [], "profiles": [
                {"name": "Zoë 日本", "isPrimary": True, "error": None, "subscriptions": [
                    {"sourceURL": "https://push.example:443",
                     "store": str(self.profile / "Preferences")}]},
                {"name": "Work", "isPrimary": False, "error": None, "subscriptions": []}]}]})

    def test_the_keys_stand_in_the_order_of_the_contract(self):
        def keys(value):
            return list(json.loads(value, object_pairs_hook=lambda pairs: [k for k, _ in pairs])
                        if isinstance(value, str) else value)
        text = self.run_program("--json", "clean", "--dry-run").text
        self.assertEqual(keys(text), ["dryRun", "total", "browsers"])
        text = self.run_program("--json", "size").text
        self.assertEqual(keys(text), ["total", "browsers"])

    def test_global_options_may_stand_before_and_after_the_command(self):
        before = self.run_program("--json", "--browser=chromium", "profiles").output
        after = self.run_program("profiles", "--browser=chromium", "--json").output
        self.assertEqual(before, after)

    def test_nothing_is_left_in_the_temporary_folder(self):
        self.document("size")
        self.document("clean", "--yes")
        self.assertEqual(list(self.temporary.iterdir()), [])


class Failures(HostProgramTest):
    def setUp(self):
        super().setUp()
        write(self.support / "Google" / "Chrome" / "Local State", "no JSON")

    def test_a_browser_whose_profiles_cannot_be_read_hides_no_other(self):
        found = self.document("profiles", status=1)["browsers"]
        broken = found.pop(5)
        self.assertEqual((broken["browser"], broken["profiles"]), ("googleChrome", []))
        self.assertTrue(broken["error"].startswith("not understood: "), broken["error"])
        self.assertEqual([row["error"] for row in found], [None] * 12)
        self.assertEqual(len(found[3]["profiles"]), 2)

    def test_its_size_is_null_and_counts_nothing(self):
        found = self.document("size", "--browser=googleChrome", "--browser=chromium",
                              "--category=cache", status=1)
        self.assertEqual(found["total"], size(exact(2), exact(2000)))
        broken = found["browsers"][1]
        self.assertIsNotNone(broken.pop("error"))
        self.assertEqual(broken, {"browser": "googleChrome", "size": None, "categories": [],
                                  "leftOut": [], "profiles": [],
                                  "requiresClosedBrowserToClean": False})

    def test_ignoring_errors_does_not_help_where_profiles_cannot_be_read(self):
        self.document("size", "--browser=googleChrome", "--ignore-errors", status=1)

    def test_a_failing_category_carries_its_error_and_the_others_are_measured(self):
        write(self.history, b"no database" * 100)
        found = without_items(self.document("size", "--browser=chromium", status=1))
        rows = {row["category"]: row for row in found["browsers"][0]["categories"]}
        self.assertEqual(rows["history"].pop("error"), "not understood: file is not a database")
        self.assertEqual(rows["history"], {"category": "history", "size": None,
                                           "requiresClosedBrowserToClean": True})
        self.assertEqual(rows["cache"]["size"], size(exact(2), exact(2000)))
        self.assertIsNone(found["browsers"][0]["error"])
        self.assertEqual(found["browsers"][0]["size"], found["total"])
        self.assertEqual(found["total"]["itemCount"], exact(4))

    def test_a_profile_whose_category_failed_has_its_error_and_no_figure_of_it(self):
        write(self.history, b"no database" * 100)
        first, second = self.document("size", "--browser=chromium", "--keep-going",
                                      status=1)["browsers"][0]["profiles"]
        rows = {row["category"]: row for row in first["categories"]}
        self.assertEqual(rows["history"]["error"], "not understood: file is not a database")
        self.assertEqual(rows["cache"], {"category": "cache", "error": None,
                                         "size": size(exact(2), exact(2000))})
        self.assertEqual([row["error"] for row in second["categories"]], [None] * 6)

    def test_ignoring_errors_a_broken_category_is_approximate_and_told_of(self):
        write(self.history, b"no database" * 100)
        found = self.document("size", "--browser=chromium", "--category=history",
                              "--ignore-errors", status=1)
        self.assertIsNone(found["browsers"][0]["categories"][0]["error"])
        self.assertEqual(found["total"], size(approximate(0), approximate(0)))

    def test_a_failing_clean_goes_on_with_the_other_categories(self):
        write(self.history, b"no database" * 100)
        found = self.document("clean", "--browser=chromium", "--yes", status=1)
        rows = {row["category"]: row for row in found["browsers"][0]["categories"]}
        self.assertIsNone(rows["history"]["removed"])
        self.assertEqual(rows["cache"]["removed"], size(exact(2), exact(2000)))
        self.assertEqual(rows["httpCookies"]["removed"]["itemCount"], exact(2))
        self.assertEqual(list(self.cache.rglob("data_*")), [])

    def test_bookmarks_that_cannot_be_read_are_the_browsers_error(self):
        write(self.profile / "Bookmarks", '{"roots": {"bar": "text"}}')
        found = self.document("bookmarks", "--browser=chromium", status=1)["browsers"][0]
        self.assertIn("Could not decode bookmarks root", found["error"])
        self.assertEqual(found["bookmarks"], [])

    def test_notifications_that_cannot_be_read_are_the_profiles_error(self):
        write(self.profile / "Preferences", "{}")
        found = self.document("notifications", "--browser=chromium", status=1)["browsers"][0]
        self.assertIsNone(found["error"])
        self.assertTrue(found["profiles"][0]["error"].startswith("not understood: "))
        self.assertEqual(found["profiles"][0]["subscriptions"], [])
        self.assertIsNone(found["profiles"][1]["error"])

    def test_every_failure_is_a_line_on_standard_error(self):
        write(self.history, b"no database" * 100)
        result = self.run_program("--json", "size")
        self.assertIn("browsersweep: Google Chrome: not understood: ", result.error)
        self.assertIn("browsersweep: Chromium, Zoë 日本, History: not understood: file is not a "
                      f"database: {self.history}\n", result.error)
        self.assertIn("browsersweep: Chromium, History: this ended the category, with 8 items left "
                      "out; --keep-going handles them\n", result.error)
        self.assertEqual(result.error.count("\n"), 3)
