"""The tests. Each takes a `Bench`, raises `AssertionError` when a rule is broken, and is listed in
`CASES`; a test runs once per browser on its own copy of that browser's home."""

from __future__ import annotations

import datetime
import json
from collections.abc import Callable, Iterable
from pathlib import Path

import counts
import restart
from bench import Bench, check, differences, fingerprints, same
from browser import Layout
from counts import CATEGORIES, UTC, Database, Directory, Filter, Profile
from website import HOSTS, WebSite

TODAY = datetime.datetime.now(UTC).replace(microsecond=0)


def days_ago(days: int) -> datetime.datetime:
    return TODAY - datetime.timedelta(days=days)


FILTER_LISTS: tuple[tuple[Filter, ...], ...] = (
    (),
    (Filter("include", "news.example"),),
    (Filter("exclude", "bank"),),
    (Filter("include", "tracker"), Filter("include", "mail")),
    (Filter("exclude", "bank"), Filter("include", "example")),
    (Filter("exclude", "bank"), Filter("exclude", "news")),
    (Filter("include", "NEWS.Example"),),
    (Filter("include", "xn--bcher-kva"),),
    (Filter("include", "nowhere.invalid"),),
    (Filter("inside", start=days_ago(12), end=days_ago(3)),),
    (Filter("inside", end=days_ago(5)),),
    (Filter("outside", start=days_ago(12)),),
    (Filter("outside", end=days_ago(5)),),
    (Filter("inside"),),
    (Filter("outside"),),
    (Filter("inside", end=days_ago(12)), Filter("inside", start=days_ago(3))),
    (Filter("outside", start=days_ago(12), end=days_ago(3)), Filter("include", "example")),
    (Filter("include", "data"), Filter("inside", end=days_ago(5)), Filter("exclude", "bank")),
)


def options_of(filters: Iterable[Filter]) -> list[str]:
    return [argument for item in filters for argument in item.arguments()]


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
        done = bench.run(layout, "profiles", "--profile", "nobody", "--json")
        same((done.returncode, counts.figures_of(json.loads(done.stdout))),
             (1, counts.expected_profiles([], bench.family)), "a profile that is not there")
        check("nobody" in done.stderr, f"not told: {done.stderr}")


def dates_of_chromium_count_from_local_midnight(bench: Bench) -> None:
    """Where the user is decides which visits a date range holds; Firefox does not ask."""
    # Tokyo's clocks were more than nine hours ahead, and the home's latest visits are younger.
    filters = (Filter("inside", start=TODAY - datetime.timedelta(hours=9)),)
    with bench.copy() as layout:
        expected = {zone: counts.expected_size(bench.profiles(layout, zone), bench.family, filters)
                    for zone in counts.ZONES}
        same(expected["UTC"] != expected["Asia/Tokyo"], bench.family == "chromium",
             "whether the zone matters")
        for zone, size in expected.items():
            same(bench.report(layout, "size", *options_of(filters), zone=zone), size, zone)


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


# --- Cleaning -----------------------------------------------------------------------------------

def cleaned_items(found: list[Profile], categories: Iterable[str]) -> list:
    return [item for profile in found for category in categories
            for item in profile.items[category]]


def clean_and_check(bench: Bench, filters: tuple[Filter, ...],
                    categories: tuple[str, ...] = CATEGORIES, profile: str | None = None,
                    restarts: bool = True) -> None:
    with bench.copy() as layout:
        everything = bench.profiles(layout)
        found = [entry for entry in everything if profile in (None, entry.name)]
        items = cleaned_items(found, categories)
        databases = [item for item in items if isinstance(item, Database) and item.file.is_file()]
        rows = {item.file: counts.rows_of(item.file, item.tables, filters) for item in databases}
        doomed = {str(path.relative_to(layout.home)) for item in items
                  if isinstance(item, Directory) for path in item.files(filters)}
        before = fingerprints(layout.home)
        size_before = counts.expected_size(found, bench.family, filters, categories)

        options = [argument for category in categories for argument in ("--category", category)]
        options += ["--profile", profile] if profile else []
        report = bench.clean(layout, *options, *options_of(filters))

        size_after = counts.expected_size(found, bench.family, filters, categories)
        same(report, counts.expected_removed(size_before, size_after), "reported as removed")
        check(report["total"]["itemCount"]["value"] > 0, "there was nothing to remove")
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
        if restarts:
            restart_and_check(bench, layout, everything)


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


def clean_of_all_but_one_host_leaves_it(bench: Bench) -> None:
    clean_and_check(bench, (Filter("exclude", "news.example"),), restarts=False)


def clean_outside_of_a_date_range_leaves_the_range(bench: Bench) -> None:
    clean_and_check(bench, (Filter("outside", start=days_ago(12), end=days_ago(3)),),
                    restarts=False)


def clean_of_one_profile_leaves_the_other(bench: Bench) -> None:
    for profile in bench.profiles(Layout(bench.original)):
        clean_and_check(bench, (), profile=profile.name, restarts=False)


def second_clean_finds_nothing(bench: Bench) -> None:
    with bench.copy() as layout:
        bench.clean(layout)
        found = bench.profiles(layout)
        size = counts.expected_size(found, bench.family)
        same(bench.clean(layout), counts.expected_removed(size, size), "removed again")
        for category in size["browsers"][0]["categories"]:
            same(category["size"], counts.size_json(0, False, 0, False), category["category"])


def full_clean_leaves_bookmarks_and_permissions(bench: Bench) -> None:
    with bench.copy() as layout:
        kept = [bench.report(layout, command) for command in ("bookmarks", "notifications")]
        bench.clean(layout)
        same([bench.report(layout, command) for command in ("bookmarks", "notifications")],
             kept, "bookmarks and notifications after a clean")
    clean_and_check(bench, ())


CASES: tuple[Callable[[Bench], None], ...] = (
    home_holds_what_a_user_leaves,
    listings_equal_independent_ones,
    sizes_equal_independent_counts,
    selections_narrow_what_is_sized,
    dates_of_chromium_count_from_local_midnight,
    looking_changes_no_byte,
    dry_run_reports_what_size_says,
    clean_of_one_host_leaves_the_others,
    clean_of_all_but_one_host_leaves_it,
    clean_of_a_date_range_leaves_other_days,
    clean_outside_of_a_date_range_leaves_the_range,
    clean_of_one_profile_leaves_the_other,
    second_clean_finds_nothing,
    full_clean_leaves_bookmarks_and_permissions,
)
