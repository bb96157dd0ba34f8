"""Tests with a browser that is running. It is held still while the program works on its home, so
that what is compared does not change meanwhile."""

import contextlib
import json
import sqlite3
from pathlib import Path

import counts
import restart
from bench import Bench, check, differences, fingerprints, same
from browser import Layout, frozen
from chromium import Chromium
from counts import CATEGORIES, Database, Profile
from firefox import Firefox
from website import WebSite

# How firmly a browser holds a database: others may write to it; they may read it, and a deletion
# finds it busy; or they may not even prepare a statement.
FREE, BUSY, LOCKED = "free", "busy", "locked"

FORCED = ("history", "httpCookies", "formData")


def open_browser(bench: Bench, layout: Layout, profile: Profile, site: WebSite):
    log = bench.scratch / f"{bench.family}.log"
    if bench.family == "chromium":
        return Chromium(bench.binary, layout, profile.folder.name, site.port, log)
    return Firefox(bench.binary, layout, profile.name, profile.folder, site.port, log)


def ask(bench: Bench, browser) -> dict:
    if bench.family == "chromium":
        return restart.ask_chromium(browser, bench.scratch)
    return restart.ask_firefox(browser)


def sizes_equal_independent_counts_while_the_browser_runs(bench: Bench) -> None:
    """Databases are read from copies, whatever the browser holds locked."""
    with bench.copy() as layout, WebSite() as site:
        found = bench.profiles(layout)
        with open_browser(bench, layout, found[0], site) as browser, frozen(browser.process):
            before = fingerprints(layout.home)
            same(bench.report(layout, "size"), counts.expected_size(found, bench.family), "size")
            same(differences(before, fingerprints(layout.home)), [], "changed by sizing")


def clean_refuses_while_the_browser_runs(bench: Bench) -> None:
    with bench.copy() as layout, WebSite() as site:
        profile = bench.profiles(layout)[0]
        with open_browser(bench, layout, profile, site) as browser, frozen(browser.process):
            before = fingerprints(layout.home)
            done = bench.run(layout, "clean", "--yes", "--json")
            same(differences(before, fingerprints(layout.home)), [], "changed by a refused clean")
        same((done.returncode, done.stdout, done.stderr.strip()), (
            1, "", f"browsersweep: {bench.family.capitalize()} seems to be running (its data folder"
            " is locked); nothing was deleted. Quit it, or add --force."), "the refusal")
        done = bench.run(layout, "clean", "--yes", "--json")
        # The browser of somebody else may be running on this machine, which is refused as well.
        check("data folder is locked" not in done.stderr, f"still refused: {done.stderr}")


def hold_on(path: Path) -> str:
    """How firmly the running browser holds a database."""
    with contextlib.closing(sqlite3.connect(path, timeout=0, isolation_level=None)) as database:
        for statement, hold in (("SELECT COUNT(*) FROM sqlite_master", LOCKED),
                                ("BEGIN EXCLUSIVE", BUSY)):
            try:
                database.execute(statement).fetchall()
            except sqlite3.OperationalError as error:
                check("locked" in str(error), f"{path.name}: {error}")
                return hold
        database.execute("ROLLBACK")
    return FREE


def forced_clean_takes_only_what_the_browser_does_not_hold(bench: Bench) -> None:
    """What is busy is left as it is, silently. What is locked is the error of its category.

    Which of the two it is, or neither, differs from start to start: Chromium locks a database once
    it has written to it, and Firefox sometimes opens its places so that others may write.
    """
    with bench.copy() as layout, WebSite() as site:
        profile = bench.profiles(layout)[0]
        items = {category: profile.items[category] for category in FORCED}
        with open_browser(bench, layout, profile, site) as browser:
            seen = ask(bench, browser)
            with frozen(browser.process):
                holds = {item.file: hold_on(item.file) for group in items.values()
                         for item in group if isinstance(item, Database)}
                failing = {category for category, group in items.items() for item in group
                           if isinstance(item, Database) and holds[item.file] == LOCKED}
                clean_by_force(bench, layout, profile, failing, holds)
            check(set(holds.values()) != {FREE}, "the browser holds none of its databases")
            history = next(path for path in holds if path.name in ("History", "places.sqlite"))
            if holds[history] != FREE:
                again = ask(bench, browser)["history"]
                lost = [host for host, pages in seen["history"].items()
                        if again.get(host, 0) < pages]
                same(lost, [], "hosts that the browser no longer knows")
        same(browser.exit_status, 0, "exit status of the browser")
        for path in holds:
            same(counts.integrity(path), "ok", f"integrity of {path.name}")
        same(list(profile.folder.rglob("*.corrupt*")), [], "set aside as corrupt")


def clean_by_force(bench: Bench, layout: Layout, profile: Profile, failing: set[str],
                   holds: dict[Path, str]) -> None:
    """Cleans, and compares the report and the databases that are held."""
    before = counts.expected_size([profile], bench.family, (), FORCED)
    held = {path: path.read_bytes() for path, hold in holds.items() if hold != FREE}
    categories = [argument for name in FORCED for argument in ("--category", name)]
    done = bench.run(layout, "clean", "--yes", "--force", "--json", "--profile", profile.name,
                     *categories)
    told = json.loads(done.stdout)
    is_whole = all(counts.is_whole(category["items"]) for category in told["browsers"][0]["categories"])
    same(done.returncode, 0 if is_whole else 1, f"status of the forced clean: {done.stderr}")
    check(not (is_whole and failing), f"nothing is said of {failing}")
    items_of = {each["category"]: each["items"] for each in told["browsers"][0]["categories"]}
    document = counts.figures_of(told)
    after = counts.expected_size([profile], bench.family, (), FORCED)
    expected = counts.expected_removed(before, after)
    (browser,) = expected["browsers"]
    categories = document["browsers"][0]["categories"]
    if len(categories) != len(browser["categories"]):
        raise ValueError("the report lacks categories, or has some too many")
    for entry, reported in zip(browser["categories"], categories):
        if entry["category"] in failing:
            check("database is locked" in (reported["error"] or ""),
                  f"the error of {entry['category']} is {reported['error']!r}")
            entry.update(removed=None, error=reported["error"])
        elif not counts.is_whole(items_of[entry["category"]]):
            # What is held, or has changes beside it, is known approximately at most.
            for figure in entry["removed"].values():
                figure["isApproximate"] = True
    browser["removed"] = expected["total"] = counts.added(
        entry["removed"] for entry in browser["categories"] if entry["removed"])
    same(document, expected, "the report of the forced clean")
    changed = [path.name for path, content in held.items() if path.read_bytes() != content]
    same(changed, [], "changed although the browser holds it")


CASES = (
    sizes_equal_independent_counts_while_the_browser_runs,
    clean_refuses_while_the_browser_runs,
    forced_clean_takes_only_what_the_browser_does_not_hold,
)
