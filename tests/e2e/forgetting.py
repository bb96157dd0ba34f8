"""The tests of `sites` and `forget`, on homes whose every trace can be recognized.

Each takes a `PlantedBench`, raises `AssertionError` when a rule is broken, and is listed in `CASES`; a test
runs once per browser on its own copy of that browser's home.
"""

from __future__ import annotations

import contextlib
import functools
import json
import os
import random
import signal
import subprocess
import tempfile
import time
from collections import Counter
from collections.abc import Callable, Iterator
from dataclasses import dataclass
from pathlib import Path

import carriers
import remembered
from bench import Bench, check, differences, fingerprints, same
from browser import Layout, kill
from keeping import BELONGINGS, DECISIONS, EMBEDDED, OF_BROWSERS, WASTE, mixed
from markers import markers_in
from planted import FRAME, GONE, KEPT, MARKED, SITES, kind_of, word_of
from plantedchromium import script
from plantedfirefox import run_script
from plantedweb import PlantedWeb
from residue import Allowed, Found, alive, beyond, contents, of_words, residue

# How often the program is killed while it forgets, and what its moments depend on.
KILLS = int(os.environ.get("BROWSERSWEEP_KILLS", "3"))
SEED = int(os.environ.get("BROWSERSWEEP_SEED", "1"))
REFUSED = 1


@dataclass(frozen=True)
class PlantedBench(Bench):
    """A browser with its planted home, and the sites."""

    web: PlantedWeb = None

    @property
    def log(self) -> Path:
        return self.scratch / f"{self.family}.log"

    def told(self, layout: Layout, *arguments: str) -> dict:
        done = self.run(layout, *arguments, "--json")
        same((done.returncode, done.stderr), (0, ""), f"browsersweep {' '.join(arguments)}")
        return json.loads(done.stdout)

    def forget(self, layout: Layout, *arguments: str) -> dict:
        """Forced, because a browser of somebody else may be running on this machine."""
        return self.told(layout, "forget", *arguments, "--yes", "--force")

    def profiles_of(self, layout: Layout) -> list[Path]:
        return remembered.folders(layout, self.family)

    def asked(self, layout: Layout, profile, *sites) -> dict:
        return remembered.asked(layout, self.family, self.binary, profile, self.web, self.log, sites)

    @functools.cached_property
    def planted(self) -> set[Found]:
        return residue(self.original / "Library")

    @property
    def belongings(self) -> tuple[Allowed, ...]:
        return BELONGINGS[self.family]

    @property
    def decisions(self) -> tuple[Allowed, ...]:
        return DECISIONS[self.family]


def whole(bench: PlantedBench, layout: Layout) -> None:
    """Every database that is left is sound, and no browser has set one aside."""
    for folder in bench.profiles_of(layout):
        for path in folder.rglob("*"):
            check("corrupt" not in path.name, f"set aside: {path}")
            if path.is_file() and path.stat().st_size and not path.is_symlink():
                with path.open("rb") as file:
                    is_database = file.read(len(carriers.SQLITE)) == carriers.SQLITE
                if is_database:
                    same(carriers.integrity(path), "ok", f"integrity of {path.name}")


def run_once_more(bench: PlantedBench, layout: Layout) -> None:
    """The browser starts on each profile and is closed as its user would close it."""
    for profile in remembered.PROFILES[bench.family]:
        with remembered.OPEN[bench.family](bench.binary, layout, profile, bench.web,
                                           bench.log) as browser:
            pass
        same(browser.exit_status, 0, f"exit status of the browser on {profile}")
    whole(bench, layout)


# --- The ground of all other tests --------------------------------------------------------------

EXPECTED_KINDS = {
    "chromium": """host titl path quer push stat late form fldn mail typd srch cknm ckvl ckdn ckdv
        jckn jckv bckn bckv pckn pckv plsk plsv pidb pidv lsky lsvl lsbg lsbv lsgn ls2k ls2v ssky ssvl
        idbn idbs idbk idbv idbg idbb capn capu capp capr capb opfn opfs swsc noti notb sync
        reso jscr jsbo csbo imgu icou body etag dict diid bigb down repo open clos hsts hmd5
        bmrk pwus pwpw exls exlv exst exsv exib exiv""",
    "firefox": """host titl path quer push stat late form fldn mail typd inpu cknm ckvl ckdn ckdv
        jckn jckv bckn bckv 3ckn 3ckv pckn pckv plsk plsv pidb pidv lsky lsvl lsbg lsbv ls2k ls2v ssky ssvl
        idbn idbs idbk idbv idbg idbb capn capu capp capr capb opfn opfs swsc
        reso jscr jsbo csbo imgu icou body etag dict diid bigb down open clos thmb
        bmrk keyw""",
}


def home_holds_traces_of_every_kind(bench: PlantedBench) -> None:
    kinds = {kind_of(found.marker) for found in bench.planted}
    same(sorted(set(EXPECTED_KINDS[bench.family].split()) - kinds), [], "kinds that are missing")
    for site in (GONE, KEPT):
        of_site = {(found.place, kind_of(found.marker)) for found in of_words(bench.planted, site.word)}
        check(len(of_site) > 100, f"{site.word} left only {len(of_site)} traces")


# --- Listing ------------------------------------------------------------------------------------

def sites_lists_the_planted_ones(bench: PlantedBench) -> None:
    with bench.copy() as layout:
        listed = bench.told(layout, "sites")
        same(listed["errors"], [], "errors")
        same({each["site"] for each in listed["sites"]} - OF_BROWSERS,
             {site.registrable for site in SITES}, "sites")
        for each in listed["sites"]:
            check(all(trace["browser"] == bench.family for trace in each["traces"]), "browsers")
            check(each["size"]["itemCount"]["value"] > 0, f"no items of {each['site']}")


def looking_changes_no_byte(bench: PlantedBench) -> None:
    with bench.copy() as layout:
        before = fingerprints(layout.home)
        bench.told(layout, "sites")
        bench.told(layout, "forget", "--all", "--dry-run")
        bench.told(layout, "forget", GONE.registrable, "--mixed", "--dry-run")
        same(differences(before, fingerprints(layout.home)), [], "changed by looking")


# --- Forgetting everything ----------------------------------------------------------------------

def all_leaves_only_what_is_named(bench: PlantedBench) -> None:
    with bench.copy() as layout:
        bench.forget(layout, "--all")
        left = residue(layout.home / "Library")
        same(beyond(left, *bench.belongings, *bench.decisions), [], "left")
        bookmarks = {found for found in bench.planted if kind_of(found.marker) in ("bmrk", "pwus")}
        same(sorted(map(str, bookmarks - left)), [], "bookmarks and passwords that are gone")
        whole(bench, layout)
        same([trace for site in bench.told(layout, "sites")["sites"] for trace in site["traces"]
              if trace["kind"] != "settings"], [], "listed although all is forgotten")


def all_with_settings_after_a_kill_leaves_no_trace(bench: PlantedBench) -> None:
    """Journals of a browser that was killed hold traces too."""
    with bench.copy() as layout:
        kill_while_visiting(bench, layout)
        journals = [path for folder in bench.profiles_of(layout) for path in folder.rglob("*")
                    if path.name.endswith(("-wal", "-journal")) and path.stat().st_size]
        check(bool(journals), "the killed browser left no journal")
        bench.forget(layout, "--all", "--settings")
        same(beyond(residue(layout.home / "Library"), *bench.belongings), [], "left")
        whole(bench, layout)
        run_once_more(bench, layout)
        same(beyond(residue(layout.home / "Library"), *bench.belongings), [],
             "left when the browser has run")


def kill_while_visiting(bench: PlantedBench, layout: Layout) -> None:
    profile = remembered.PROFILES[bench.family][0]
    browser = remembered.OPEN[bench.family](bench.binary, layout, profile, bench.web, bench.log)
    with contextlib.suppress(Exception), browser:
        visit_all(bench, browser)
        kill(browser.process)
        raise InterruptedError  # it is not asked to end


def visit_all(bench: PlantedBench, browser) -> None:
    page = browser.new_page() if bench.family == "chromium" else browser.marionette
    for site in SITES:
        page.navigate(f"{site.origin}/qzlate{site.word}/killed")
        planting = f"{script('plant.js')}({json.dumps(site.word)})"
        if bench.family == "chromium":
            page.evaluate(planting)
        else:
            run_script(page, planting)


# --- Forgetting one site ------------------------------------------------------------------------

def one_site_goes_and_the_others_stay(bench: PlantedBench) -> None:
    """What is mixed stays, and is told; with --mixed it goes as well."""
    with bench.copy() as layout:
        told = bench.forget(layout, GONE.registrable)
        left = residue(layout.home / "Library")
        gone = of_words(left, GONE.word)
        same(beyond(gone, *bench.belongings, *bench.decisions, *mixed(bench.family, GONE.word)), [],
             f"left of {GONE.word}")
        untold = {found.place for found in gone
                  if not any(rule.holds(found) for rule in (*bench.belongings, *bench.decisions))
                  and Path(found.place.split(":")[1]).name not in json.dumps(told["kept"])}
        same(untold, set(), "places that stay without being told")
        others_are_whole(bench, layout, left, but=())
        whole(bench, layout)
        bench.forget(layout, GONE.registrable, "--mixed")
        left = residue(layout.home / "Library")
        same(beyond(of_words(left, GONE.word), *bench.belongings, *bench.decisions), [],
             f"left of {GONE.word} with --mixed")
        others = f"{KEPT.word} {FRAME.word} {MARKED.word}"
        others_are_whole(bench, layout, left, but=mixed(bench.family, others))


STALE = ("free space", "journal", "leveldb")


def others_are_whole(bench: PlantedBench, layout: Layout, left: set[Found],
                     but: tuple[Allowed, ...]) -> None:
    """Two sites stay exactly, in rows, records and files. What the third one left as a frame of the
    forgotten site goes with that one."""
    lost = {found for found in of_words(bench.planted, KEPT.word, MARKED.word) - left
            if found.why not in STALE}
    same(beyond(lost, WASTE, *but), [], "lost of the others")
    prefix = {"chromium": "C:", "firefox": "F:"}[bench.family]
    folders = zip(bench.profiles_of(Layout(bench.original)), bench.profiles_of(layout))
    for before, after in ((alive(old, prefix), alive(new, prefix)) for old, new in folders):
        fewer = {key: (count, after[key]) for key, count in before.items()
                 if not is_mixed(key, but) and (
                     after[key] != count if word_of(key[2]) in (KEPT.word, MARKED.word)
                     else word_of(key[2]) == FRAME.word and not after[key])}
        same(fewer, {}, "rows and records that are fewer")


def is_mixed(key: tuple[str, str, str], but: tuple[Allowed, ...]) -> bool:
    place, table, marker = key
    return any(rule.holds(Found(place, why, marker)) for rule in but
               for why in (f"row of {table}", "leveldb"))


# --- Forgetting all but one site ----------------------------------------------------------------

# Which sites the browser says to load by https alone; Chromium is not asked.
HTTPS_ONLY: dict[str, list[str]] = {"chromium": [], "firefox": [GONE.word, KEPT.word]}


def all_but_one_leaves_that_one_to_the_browser(bench: PlantedBench) -> None:
    first = remembered.PROFILES[bench.family][0]
    with bench.copy() as layout:
        before = bench.asked(layout, first, KEPT)
        check(before[KEPT.word]["workers"] == 1 and before[KEPT.word]["isUsed"],
              f"the home is poor: {before[KEPT.word]}")
        same(before["httpsOnly"], HTTPS_ONLY[bench.family], "loaded by https alone")
    with bench.copy() as layout:
        bench.forget(layout, "--all", "--keep", KEPT.registrable)
        allowed = (*bench.belongings, *bench.decisions, *EMBEDDED[bench.family])
        left = residue(layout.home / "Library")
        same(beyond(of_words(left, GONE.word, FRAME.word, MARKED.word), *allowed), [], "left")
        lost = {found for found in of_words(bench.planted, KEPT.word) - left
                if found.why not in STALE}
        same(beyond(lost, WASTE, *mixed(bench.family, KEPT.word)), [], f"lost of {KEPT.word}")
        whole(bench, layout)

        after = bench.asked(layout, first, KEPT)
        same(after, {**before, **{word: {"history": [], "allCookies": after[word]["allCookies"]}
                                  for word in (GONE.word, FRAME.word, MARKED.word)},
                     "httpsOnly": [word for word in before["httpsOnly"] if word == KEPT.word]},
             "the browser knows")
        same((after[GONE.word]["allCookies"], after[MARKED.word]["allCookies"]), ([], []), "cookies")
        whole(bench, layout)
        left = residue(layout.home / "Library")
        same(beyond(of_words(left, GONE.word, MARKED.word), *allowed), [],
             "left when the browser has run")
        nothing_is_found_by(bench, layout, first)


def nothing_is_found_by(bench: PlantedBench, layout: Layout, profile) -> None:
    """The page of a forgotten site finds itself as on its first day; its password is there."""
    with remembered.OPEN[bench.family](bench.binary, layout, profile, bench.web, bench.log) as browser:
        told = remembered.ASK[bench.family](browser, (GONE,))[GONE.word]
        passwords = remembered.PASSWORDS[bench.family](browser)
    for name in ("cookies", "localStorage", "caches", "files"):
        same(told[name], [], name)
    same((told["indexedDB"], told["cachedResponse"], told["workers"], told["isUsed"]),
         (None, None, 0, False), "database, response, workers and used room")
    same(passwords, [GONE.marker("pwus"), KEPT.marker("pwus")], "passwords")


# --- Beside the browser's own removal -----------------------------------------------------------

CLEAR_IN_FIREFOX = """
    const {Services: {clearData}, Ci: {nsIClearDataService: Kinds}} = {Services, Ci};
    const flags = Kinds.CLEAR_ALL & ~(Kinds.CLEAR_PERMISSIONS | Kinds.CLEAR_SITE_PERMISSIONS
        | Kinds.CLEAR_CONTENT_PREFERENCES | Kinds.CLEAR_CREDENTIAL_MANAGER_STATE);
    await new Promise(done => clearData.deleteDataFromSite(args[0], {}, true, flags,
        {onDataDeleted: done}));"""


def clear_by_browser(bench: PlantedBench, layout: Layout) -> None:
    for profile in remembered.PROFILES[bench.family]:
        with remembered.OPEN[bench.family](bench.binary, layout, profile, bench.web,
                                           bench.log) as browser:
            if bench.family == "chromium":
                page = browser.new_page()
                browser.tools.call("Storage.clearDataForOrigin", {
                    "origin": GONE.origin, "storageTypes": "all"}, page.session)
            else:
                browser.marionette.chrome(CLEAR_IN_FIREFOX, GONE.registrable)


def what_the_browser_removes_does_not_stay(bench: PlantedBench) -> None:
    with bench.copy() as layout:
        clear_by_browser(bench, layout)
        by_browser = of_words(residue(layout.home / "Library"), GONE.word)
    with bench.copy() as layout:
        bench.forget(layout, GONE.registrable, "--mixed")
        by_us = of_words(residue(layout.home / "Library"), GONE.word)
    planted = of_words(bench.planted, GONE.word)
    check(len(by_browser) < len(planted), "the browser removed nothing")
    # Firefox takes the passwords along.
    same(beyond((planted - by_browser) & by_us, *bench.belongings), [], "stays with us alone")
    more = Counter(found.place for found in (planted & by_browser) - by_us)
    print(f"{bench.family}: markers of one site that its browser leaves and we do not:")
    for place, count in sorted(more.items()):
        print(f"    {place}: {count}")


# --- Kills --------------------------------------------------------------------------------------

Contents = list[dict[str, dict[str, bytes]]]


def contents_of(bench: PlantedBench, layout: Layout) -> Contents:
    return [contents(folder) for folder in bench.profiles_of(layout)]


def is_without_traces(tables: dict[str, bytes]) -> bool:
    return not any(markers_in(values) for values in tables.values())


def torn(now: Contents, old: Contents, new: Contents) -> list[str]:
    """Databases that are neither what they were nor what they shall be. One that shall be gone may still be
    there without traces."""
    return [name for here, before, after in zip(now, old, new) for name in before.keys() | here.keys()
            if here.get(name) not in (before.get(name), after.get(name))
            and not (is_without_traces(here.get(name, {})) and is_without_traces(after.get(name, {})))]


def forget_until(bench: PlantedBench, layout: Layout, seconds: float) -> bool:
    """Starts to forget and kills the program; whether it was still at it."""
    with tempfile.TemporaryDirectory(prefix="tmp-", dir=bench.scratch) as temporary:
        process = subprocess.Popen(
            [str(bench.program), "--home", str(layout.home), "forget", "--all", "--yes", "--force",
             "--browser", bench.family], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL, env={**os.environ, **bench.environment, "TMPDIR": temporary})
        with contextlib.suppress(subprocess.TimeoutExpired):
            process.wait(seconds)
        process.kill()
        return process.wait() == -signal.SIGKILL


def a_kill_leaves_each_store_old_or_new(bench: PlantedBench) -> None:
    with bench.copy() as layout:
        old, begin = contents_of(bench, layout), time.monotonic()
        bench.forget(layout, "--all")
        took, new = time.monotonic() - begin, contents_of(bench, layout)
    moments, killed = random.Random(SEED), 0
    for _ in range(KILLS):
        moment = moments.uniform(0, took)
        with bench.copy() as layout:
            if forget_until(bench, layout, moment):
                killed += 1
            else:
                took = moment  # it was faster than the first time: a later moment comes too late
            same(torn(contents_of(bench, layout), old, new), [], f"torn by a kill after {moment:.3f} s")
            whole(bench, layout)
            bench.forget(layout, "--all")
            same(beyond(residue(layout.home / "Library"), *bench.belongings, *bench.decisions), [],
                 f"left when all is forgotten again after a kill after {moment:.3f} s")
    check(killed > 0, "every run had ended before it was killed")


CASES: tuple[Callable[[PlantedBench], None], ...] = (
    home_holds_traces_of_every_kind,
    sites_lists_the_planted_ones,
    looking_changes_no_byte,
    all_leaves_only_what_is_named,
    all_with_settings_after_a_kill_leaves_no_trace,
    one_site_goes_and_the_others_stay,
    all_but_one_leaves_that_one_to_the_browser,
    what_the_browser_removes_does_not_stay,
    a_kill_leaves_each_store_old_or_new,
)
