"""The tests. Each takes a `Bench`, raises `AssertionError` when a rule is broken, and is listed in
`CASES`; a test runs once per browser on its own copy of that browser's home."""

import datetime
import hashlib
import json
import os
import shutil
import subprocess
import tempfile
from collections.abc import Callable, Iterable
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path

import counts
import restart
from browser import Layout
from chromium import Chromium
from counts import CATEGORIES, UTC, Database, Directory, Filter, Profile
from firefox import Firefox
from website import HOSTS, WebSite

RUN_TIMEOUT = 120.0
TODAY = datetime.datetime.now(UTC).replace(microsecond=0)


def days_ago(days: int) -> datetime.datetime:
    return TODAY - datetime.timedelta(days=days)


FILTER_LISTS: tuple[tuple[Filter, ...], ...] = (
    (),
    (Filter("include", "news.example"),),
    (Filter("exclude", "bank"),),
    (Filter("include", "tracker"), Filter("include", "mail")),
    (Filter("exclude", "bank"), Filter("include", "example")),
    (Filter("include", "nowhere.invalid"),),
    (Filter("inside", start=days_ago(12), end=days_ago(3)),),
    (Filter("inside", end=days_ago(5)),),
    (Filter("outside", start=days_ago(12)),),
    (Filter("outside", start=days_ago(12), end=days_ago(3)), Filter("include", "example")),
)


@dataclass(frozen=True)
class Bench:
    """One browser, the home it made, and the program under test."""

    program: Path
    family: str
    binary: str
    original: Path
    scratch: Path

    @contextmanager
    def copy(self):
        with tempfile.TemporaryDirectory(prefix="home-", dir=self.scratch) as folder:
            home = Path(folder).resolve()
            shutil.copytree(self.original / "Library", home / "Library", symlinks=True)
            (home / "Downloads").mkdir()
            yield Layout(home)

    def run(self, layout: Layout, *arguments: str) -> subprocess.CompletedProcess:
        """Run the program with a temporary folder of its own, which it has to leave empty."""
        with tempfile.TemporaryDirectory(prefix="tmp-", dir=self.scratch) as temporary:
            done = subprocess.run(
                [str(self.program), "--home", str(layout.home), *arguments,
                 "--browser", self.family],
                env={**os.environ, "TMPDIR": temporary, "TZ": "UTC"}, stdin=subprocess.DEVNULL,
                capture_output=True, text=True, timeout=RUN_TIMEOUT, check=False)
            same(os.listdir(temporary), [], "left behind in TMPDIR")
        return done

    def report(self, layout: Layout, *arguments: str) -> dict:
        done = self.run(layout, *arguments, "--json")
        same((done.returncode, done.stderr), (0, ""), f"browsersweep {' '.join(arguments)}")
        return counts.in_fixed_order(json.loads(done.stdout))

    def profiles(self, layout: Layout) -> list[Profile]:
        return counts.profiles(layout, self.family)


def same(got: object, wanted: object, what: str) -> None:
    if got != wanted:
        raise AssertionError(f"{what}:\n    got    {got!r:.3000}\n    wanted {wanted!r:.3000}")


def check(holds: bool, what: str) -> None:
    if not holds:
        raise AssertionError(what)


def options_of(filters: Iterable[Filter]) -> list[str]:
    return [argument for item in filters for argument in item.arguments()]


def fingerprints(folder: Path) -> dict[str, str]:
    """Every entry below the folder with its kind and content."""
    found = {}
    for path in sorted(folder.rglob("*")):
        name = str(path.relative_to(folder))
        if path.is_symlink():
            found[name] = f"link {os.readlink(path)}"
        elif path.is_file():
            found[name] = hashlib.sha256(path.read_bytes()).hexdigest()
        else:
            found[name] = "folder"
    return found


# --- Listing and sizing -------------------------------------------------------------------------

def home_holds_what_a_user_leaves(bench: Bench) -> None:
    """Guards all other tests: figures of an empty home would agree as well."""
    with bench.copy() as layout:
        found = bench.profiles(layout)
        same(len(found), 2, "profiles")
        size = counts.expected_size(found, bench.family)
        for entry in size["browsers"][0]["categories"]:
            if entry["category"] != "flashCookies":
                check(entry["size"]["itemCount"]["value"] > 0, f"no {entry['category']}")
        for profile in found:
            held = restart.ON_DISK[bench.family](profile)
            check(set(HOSTS) <= set(held["history"]), f"history of {sorted(held['history'])}")
            check(len(held["cookies"]) > len(HOSTS) // 2, f"cookies of {sorted(held['cookies'])}")
            check(len(held["bookmarks"]) >= 4, "bookmarks")
            check(held["notifications"] >= 2, "notifications")
            check(all(held["localStorage"].values()), "localStorage")


def listings_equal_independent_ones(bench: Bench) -> None:
    with bench.copy() as layout:
        found = bench.profiles(layout)
        for command, expected in (("profiles", counts.expected_profiles),
                                  ("bookmarks", counts.expected_bookmarks),
                                  ("notifications", counts.expected_notifications)):
            same(bench.report(layout, command),
                 counts.in_fixed_order(expected(found, bench.family)), command)


def sizes_equal_independent_counts(bench: Bench) -> None:
    with bench.copy() as layout:
        found = bench.profiles(layout)
        for filters in FILTER_LISTS:
            options = options_of(filters)
            same(bench.report(layout, "size", *options),
                 counts.expected_size(found, bench.family, filters), f"size {options}")


def selections_narrow_what_is_sized(bench: Bench) -> None:
    with bench.copy() as layout:
        found = bench.profiles(layout)
        for category in CATEGORIES:
            same(bench.report(layout, "size", "--category", category),
                 counts.expected_size(found, bench.family, categories=[category]), category)
        for profile in found:
            same(bench.report(layout, "size", "--profile", profile.name),
                 counts.expected_size([profile], bench.family), profile.name)
        primary = [profile for profile in found if profile.is_primary]
        same(bench.report(layout, "size", "--primary-only"),
             counts.expected_size(primary, bench.family), "--primary-only")
        same(bench.report(layout, "profiles", "--profile", "nobody"),
             counts.expected_profiles([], bench.family), "a profile that is not there")


def looking_changes_no_byte(bench: Bench) -> None:
    with bench.copy() as layout:
        before = fingerprints(layout.home)
        for command in ("profiles", "size", "bookmarks", "notifications"):
            bench.report(layout, command)
        bench.report(layout, "size", "--include", "example", "--ignore-errors")
        bench.report(layout, "clean", "--dry-run")
        same(differences(before, fingerprints(layout.home)), [], "changed by looking")


def dry_run_reports_what_size_says(bench: Bench) -> None:
    with bench.copy() as layout:
        for filters in FILTER_LISTS[:2]:
            expected = counts.expected_size(bench.profiles(layout), bench.family, filters,
                                            key="removed")
            same(bench.report(layout, "clean", "--dry-run", *options_of(filters)),
                 {"dryRun": True, **expected}, f"dry run {options_of(filters)}")


def differences(before: dict[str, str], after: dict[str, str]) -> list[str]:
    return sorted(name for name in before.keys() | after.keys()
                  if before.get(name) != after.get(name))


# --- Cleaning -----------------------------------------------------------------------------------

def cleaned_items(found: list[Profile], categories: Iterable[str]) -> list:
    return [item for profile in found for category in categories
            for item in profile.items[category]]


def clean_and_check(bench: Bench, filters: tuple[Filter, ...],
                    categories: tuple[str, ...] = CATEGORIES) -> None:
    with bench.copy() as layout:
        found = bench.profiles(layout)
        items = cleaned_items(found, categories)
        databases = [item for item in items if isinstance(item, Database) and item.file.is_file()]
        rows = {item.file: counts.rows_of(item.file, item.tables, filters) for item in databases}
        doomed = {str(path.relative_to(layout.home)) for item in items
                  if isinstance(item, Directory) for path in item.files(filters)}
        before = fingerprints(layout.home)
        size_before = counts.expected_size(found, bench.family, filters, categories)

        options = [argument for category in categories for argument in ("--category", category)]
        report = bench.report(layout, "clean", "--yes", *options, *options_of(filters))

        size_after = counts.expected_size(found, bench.family, filters, categories)
        same(report, counts.expected_removed(size_before, size_after), "reported as removed")
        for path, wanted in rows.items():
            # Without a write-ahead log, the rows found below are those of the main file.
            for suffix in ("-wal", "-shm"):
                check(not Path(f"{path}{suffix}").exists(), f"{path.name}{suffix} was left")
            same(counts.rows_of(path), wanted, f"rows left in {path.name}")
            same(counts.integrity(path), "ok", f"integrity of {path.name}")
        touched = {str(path.relative_to(layout.home)) for path in rows}
        expected = {name: value for name, value in before.items() if name not in doomed}
        journals = {name + suffix for name in touched for suffix in ("-wal", "-shm", "-journal")}
        same([name for name in differences(expected, fingerprints(layout.home))
              if name not in touched | journals], [], "changed outside the selected data")
        restart_and_check(bench, layout, found)


def restart_and_check(bench: Bench, layout: Layout, found: list[Profile]) -> None:
    """The browser starts on what was left and sees exactly that."""
    expected = {profile.name: restart.ON_DISK[bench.family](profile) for profile in found}
    with WebSite() as site:
        for profile in found:
            same(restart.seen(layout, bench.family, bench.binary, profile, site, bench.scratch),
                 expected[profile.name], f"seen by the browser in {profile.name}")
    set_aside = [path.name for profile in found for path in profile.folder.rglob("*.corrupt*")]
    same(set_aside, [], "databases that the browser set aside as corrupt")


def clean_of_one_host_leaves_the_others(bench: Bench) -> None:
    clean_and_check(bench, (Filter("include", "news.example"),), ("history", "httpCookies"))


def clean_of_a_date_range_leaves_other_days(bench: Bench) -> None:
    clean_and_check(bench, (Filter("inside", start=days_ago(12), end=days_ago(3)),))


def full_clean_leaves_bookmarks_and_permissions(bench: Bench) -> None:
    with bench.copy() as layout:
        kept = [bench.report(layout, command) for command in ("bookmarks", "notifications")]
        bench.report(layout, "clean", "--yes")
        same([bench.report(layout, command) for command in ("bookmarks", "notifications")],
             kept, "bookmarks and notifications after a clean")
    clean_and_check(bench, ())


# --- A running browser --------------------------------------------------------------------------

def open_browser(bench: Bench, layout: Layout, profile: Profile, site: WebSite):
    log = bench.scratch / f"{bench.family}.log"
    if bench.family == "chromium":
        return Chromium(bench.binary, layout, profile.folder.name, site.port, log)
    return Firefox(bench.binary, layout, profile.name, profile.folder, site.port, log)


def clean_refuses_while_the_browser_runs(bench: Bench) -> None:
    with bench.copy() as layout, WebSite() as site:
        profile = bench.profiles(layout)[0]
        with open_browser(bench, layout, profile, site):
            held = counts.rows_of(profile.items["httpCookies"][0].file)
            done = bench.run(layout, "clean", "--yes", "--json")
            same((done.returncode, done.stdout), (1, ""), "clean of a running browser")
            lines = done.stderr.strip().splitlines()
            check(bool(lines) and "running" in done.stderr and "--force" in done.stderr,
                  f"the refusal does not say why: {done.stderr!r}")
            check(len(counts.rows_of(profile.items["httpCookies"][0].file)) == len(held),
                  "the refused clean changed the cookies")
        done = bench.run(layout, "clean", "--yes", "--json")
        same(done.returncode, 0, f"clean once the browser is closed: {done.stderr}")


def forced_clean_of_a_running_browser_harms_no_database(bench: Bench) -> None:
    with bench.copy() as layout, WebSite() as site:
        profile = bench.profiles(layout)[0]
        with open_browser(bench, layout, profile, site) as browser:
            done = bench.run(layout, "clean", "--yes", "--force", "--json")
            check(done.returncode in (0, 1), f"status {done.returncode}: {done.stderr}")
            errors = [entry["error"] for entry in
                      json.loads(done.stdout)["browsers"][0]["categories"] if entry["error"]]
            same(done.returncode, 1 if errors else 0, f"status for the errors {errors}")
        same(browser.exit_status, 0, "exit status of the browser")
        for item in cleaned_items([profile], CATEGORIES):
            if isinstance(item, Database) and item.file.is_file():
                same(counts.integrity(item.file), "ok", f"integrity of {item.file.name}")
        same(list(profile.folder.rglob("*.corrupt*")), [], "set aside as corrupt")


def forced_clean_takes_nothing_that_firefox_locks(bench: Bench) -> None:
    """Firefox holds its databases exclusively, so that cleaning them is an error of its own."""
    with bench.copy() as layout, WebSite() as site:
        profile = bench.profiles(layout)[0]
        with open_browser(bench, layout, profile, site) as browser:
            before = browser.marionette.chrome(restart.FIREFOX_PROBE)
            done = bench.run(layout, "clean", "--yes", "--force", "--json", "--profile",
                             profile.name, "--category", "history", "--category", "httpCookies")
            same(done.returncode, 1, f"status: {done.stderr}")
            for entry in json.loads(done.stdout)["browsers"][0]["categories"]:
                check(entry["removed"] is None and "locked" in (entry["error"] or ""),
                      f"a locked database was cleaned: {entry}")
            same(browser.marionette.chrome(restart.FIREFOX_PROBE), before, "seen by Firefox")


CASES: tuple[Callable[[Bench], None], ...] = (
    home_holds_what_a_user_leaves,
    listings_equal_independent_ones,
    sizes_equal_independent_counts,
    selections_narrow_what_is_sized,
    looking_changes_no_byte,
    dry_run_reports_what_size_says,
    clean_of_one_host_leaves_the_others,
    clean_of_a_date_range_leaves_other_days,
    full_clean_leaves_bookmarks_and_permissions,
    clean_refuses_while_the_browser_runs,
    forced_clean_of_a_running_browser_harms_no_database,
    forced_clean_takes_nothing_that_firefox_locks,
)

ONLY_FOR = {forced_clean_takes_nothing_that_firefox_locks: "firefox"}
