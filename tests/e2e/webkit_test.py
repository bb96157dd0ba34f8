"""`sites` and `forget` on a home of Safari, beside the engine itself.

WebKitGTK leaves its traces of the planted sites, which are put where Safari keeps them; the rest is made
by hand (plantedsafari.py). Every test works on a copy; what the program left is put back for the engine,
which is asked what it still finds. BROWSERSWEEP_E2E_PLANTED is a folder where homes are kept for later
runs. As in forgetting_test.py the program runs with an SQLite that leaves deleted rows in a file.
"""

from __future__ import annotations

import json
import os
import pathlib
import shutil
import tempfile

import pytest

from bench import Bench, check, differences, fingerprints, same
from browsers_test import PROGRAM, scratch_folder

for module in ("cryptography", "lz4.block", "plyvel", "snappy"):
    pytest.importorskip(module)

# pylint: disable=wrong-import-position
import carriers  # noqa: E402
import webkitgtk  # noqa: E402
from forgetting import STALE  # noqa: E402
from forgetting_test import plain_sqlite  # noqa: E402
from planted import FRAME, GONE, KEPT, MARKED, SITES, kind_of  # noqa: E402
from plantedsafari import Folders, copy, make_safari  # noqa: E402
from plantedweb import PlantedWeb  # noqa: E402
from residue import Allowed, beyond, of_words, residue  # noqa: E402

BELONGINGS = (
    Allowed("Safari/Bookmarks.plist", "file", "host path quer bmrk", MARKED.word),
    Allowed("Safari/Favicon Cache/favicons.db", "row of (page_url|icon_info)", "host path quer icou",
            MARKED.word),
    Allowed("Safari/Favicon Cache/favicons/.*", "file", "icon", MARKED.word),
    Allowed("Safari/Touch Icons Cache/TouchIconCacheSettings.db", "row of cache_settings", "host",
            MARKED.word),
    Allowed("Safari/Touch Icons Cache/Images/.*", "file|name", "icon hmd5", MARKED.word),
)
DECISIONS = (
    Allowed("Safari/PerSitePreferences.db", "row of preference_values", "host", "alder birch cedar"),
)
# The list of pages to go back to names a forgotten site; the tab itself stays.
WASTE = (Allowed("Safari/LastSession.plist", "file", "body", KEPT.word),)
EXPECTED_KINDS = """host path quer titl late push stat icou icon imgu open clos body etag
    cknm ckvl ckdn ckdv down bmrk lsky lsvl lsbg lsbv idbn idbs idbk idbv idbg idbb
    capn capu capp capr capb swsc reso jscr jsbo csbo dict"""


class SafariBench(Bench):
    """A home of Safari whose engine's part can be asked."""

    def __init__(self, version: str, original: pathlib.Path, scratch: pathlib.Path, environment: dict,
                 web: PlantedWeb) -> None:
        super().__init__(PROGRAM, "safari", "", original, scratch, environment)
        object.__setattr__(self, "version", version)
        object.__setattr__(self, "web", web)
        object.__setattr__(self, "planted", residue(original / "Library"))

    def told(self, layout, *arguments: str) -> dict:
        done = self.run(layout, *arguments, "--json")
        same((done.returncode, done.stderr), (0, ""), f"browsersweep {' '.join(arguments)}")
        return json.loads(done.stdout)

    def forget(self, layout, *arguments: str) -> dict:
        return self.told(layout, "forget", *arguments, "--yes", "--force")

    def asked(self, layout, *sites) -> dict:
        """What the engine finds when it is started on what lies in Safari's folders."""
        with tempfile.TemporaryDirectory(prefix="engine-", dir=self.scratch) as folder:
            engine = webkitgtk.Engine(self.version, pathlib.Path(folder), self.web)
            pairs = Folders(layout.home).of_engine(engine, self.version)
            copy([(there, here) for here, there in pairs])
            return engine.ask(*sites)


def whole(layout) -> None:
    for path in (layout.home / "Library").rglob("*"):
        if path.is_file() and path.stat().st_size:
            with path.open("rb") as file:
                is_database = file.read(len(carriers.SQLITE)) == carriers.SQLITE
            if is_database:
                same(carriers.integrity(path), "ok", f"integrity of {path.name}")


def home_holds_traces_of_every_kind(bench: SafariBench) -> None:
    kinds = {kind_of(found.marker) for found in bench.planted}
    same(sorted(set(EXPECTED_KINDS.split()) - kinds), [], "kinds that are missing")


def sites_lists_the_planted_ones_and_changes_no_byte(bench: SafariBench) -> None:
    with bench.copy() as layout:
        before = fingerprints(layout.home)
        listed = bench.told(layout, "sites")
        same(listed["errors"], [], "errors")
        same({each["site"] for each in listed["sites"]}, {site.registrable for site in SITES}, "sites")
        profiles = {trace.get("profile") for each in listed["sites"] for trace in each["traces"]}
        check("Work" in profiles, f"the named profile is not among {profiles}")
        bench.told(layout, "forget", "--all", "--dry-run")
        same(differences(before, fingerprints(layout.home)), [], "changed by looking")


def all_leaves_only_what_is_named(bench: SafariBench) -> None:
    with bench.copy() as layout:
        bench.forget(layout, "--all")
        left = residue(layout.home / "Library")
        same(beyond(left, *BELONGINGS, *DECISIONS), [], "left")
        belongings = {found for found in bench.planted
                      if found.why not in STALE and any(rule.holds(found) for rule in BELONGINGS)}
        same(sorted(map(str, belongings - left)), [], "gone")
        bench.forget(layout, "--all", "--settings")
        same(beyond(residue(layout.home / "Library"), *BELONGINGS), [], "left without settings")
        whole(layout)
        found = bench.asked(layout, GONE, KEPT)
        for word in (GONE.word, KEPT.word):
            nothing_is_found(found[word])


def nothing_is_found(told: dict) -> None:
    for name in ("localStorage", "caches", "files"):
        same(told[name], [], name)
    same((told["indexedDB"], told["cachedResponse"], told["workers"], told["isCached"]),
         (None, None, 0, False), "database, response, workers and cached file")


def one_site_goes_and_the_others_stay(bench: SafariBench) -> None:
    with bench.copy() as layout:
        before = bench.asked(layout, KEPT, FRAME, MARKED)
        # Behind a certificate that is nobody's the engine asks the server all the same.
        check(before[KEPT.word]["workers"] == 1 and before[MARKED.word]["isCached"],
              f"the home is poor: {before}")
        told = bench.forget(layout, GONE.registrable)
        same([kept for kept in told["kept"] if kept["kind"] != "settings"], [], "what is told to stay")
        left = residue(layout.home / "Library")
        same(beyond(of_words(left, GONE.word), *BELONGINGS, *DECISIONS), [], f"left of {GONE.word}")
        lost = {found for found in of_words(bench.planted, KEPT.word, MARKED.word) - left
                if found.why not in STALE}
        same(beyond(lost, *WASTE), [], "lost of the others")
        whole(layout)
        after = bench.asked(layout, GONE, KEPT, FRAME, MARKED)
        nothing_is_found(after.pop(GONE.word))
        same(after, before, "the engine knows of the others")


def a_site_without_tls_is_forgotten_with_its_cached_files(bench: SafariBench) -> None:
    with bench.copy() as layout:
        bench.forget(layout, MARKED.registrable)
        same(beyond(of_words(residue(layout.home / "Library"), MARKED.word), *BELONGINGS), [], "left")
        same(bench.asked(layout, MARKED)[MARKED.word],
             {"cookies": [], "localStorage": [], "indexedDB": None, "isCached": False}, "the engine knows")


def all_but_one_leaves_that_one_to_the_engine(bench: SafariBench) -> None:
    with bench.copy() as layout:
        before = bench.asked(layout, KEPT)
        bench.forget(layout, "--all", "--keep", KEPT.registrable)
        left = residue(layout.home / "Library")
        # What a frame keeps in the kept site, and a page with the frame, has the frame's name; a tab of
        # the kept site goes back to the forgotten one.
        shared = (Allowed(".*/(origin|NetworkCache/.*)", "file", "host", FRAME.word),
                  Allowed("Safari/LastSession.plist", "file", "host body", GONE.word))
        same(beyond(of_words(left, GONE.word, FRAME.word, MARKED.word), *BELONGINGS, *DECISIONS, *shared),
             [], "left")
        lost = {found for found in of_words(bench.planted, KEPT.word) - left if found.why not in STALE}
        same(beyond(lost), [], f"lost of {KEPT.word}")
        whole(layout)
        after = bench.asked(layout, KEPT, GONE)
        nothing_is_found(after.pop(GONE.word))
        same(after, before, "the engine knows of the kept site")


def a_named_profile_alone_can_be_chosen(bench: SafariBench) -> None:
    with bench.copy() as layout:
        bench.forget(layout, "--all", "--profile", "Work")
        folders = Folders(layout.home)
        same(beyond(residue(folders.work)), [], "left of the named profile")
        same(beyond(residue(folders.safari / "Profiles")), [], "left of its history")
        left = {found for found in residue(layout.home / "Library")
                if "/WebsiteDataStore/" not in found.place}
        lost = {found for found in bench.planted - left
                if "/WebsiteDataStore/" not in found.place and "Profiles/" not in found.place
                and found.why not in STALE}
        same(beyond(lost), [], "lost of the other profile")


CASES = (home_holds_traces_of_every_kind, sites_lists_the_planted_ones_and_changes_no_byte,
         all_leaves_only_what_is_named, one_site_goes_and_the_others_stay,
         a_site_without_tls_is_forgotten_with_its_cached_files,
         all_but_one_leaves_that_one_to_the_engine, a_named_profile_alone_can_be_chosen)


def planted_home(version: str, web: PlantedWeb, scratch: pathlib.Path) -> pathlib.Path:
    home, ready = scratch / "safari", os.environ.get("BROWSERSWEEP_E2E_PLANTED")
    kept = pathlib.Path(ready) / f"safari-{version}" if ready else None
    if kept and kept.is_dir():
        copy([(kept, home)])
        return home
    engine = webkitgtk.Engine(version, scratch / "engine", web)
    engine.plant()
    make_safari(home, engine, version)
    if kept:
        copy([(home, kept)])
    return home


class Safari:
    """The tests of each version of the engine are a class of their own."""

    @pytest.fixture(scope="class")
    def bench(self, request):
        version = request.cls.version
        reason = webkitgtk.reason_against(version)
        if reason:
            pytest.skip(reason)
        environment = plain_sqlite()
        with scratch_folder() as scratch, PlantedWeb() as web:
            yield SafariBench(version, planted_home(version, web, scratch), scratch, environment, web)

    @pytest.mark.parametrize("case", CASES, ids=lambda case: case.__name__)
    def test(self, bench, case):
        case(bench)


class TestForgettingInSafari(Safari):
    version = "6.0"


class TestForgettingInSafariOfTheOlderLayout(Safari):
    version = "4.1"
