"""`sites` and `forget` beside the real Chromium and Firefox.

As in browsers_test.py each browser makes one home, every test works on a copy of it, and
BROWSERSWEEP_E2E_PLANTED is a folder where homes are kept for later runs. The program
runs with an SQLite that leaves deleted rows in a file, as the one of macOS does: beside Debian's no test
could find any. BROWSERSWEEP_KILLS is how often the program is killed.
"""

from __future__ import annotations

import contextlib
import os
import pathlib
import shutil
import sqlite3
import subprocess
import sys

import pytest

from browser import BrowserError, Layout, find_browser
from browsers_test import PROGRAM, ROOT, scratch_folder

for module in ("cryptography", "lz4.block", "plyvel", "snappy"):
    pytest.importorskip(module)

# pylint: disable=wrong-import-position
import carriers  # noqa: E402
import firefoxstates  # noqa: E402
import forgetting  # noqa: E402
from markers import markers_in  # noqa: E402
from planted import GONE, KEPT  # noqa: E402
from plantedchromium import make_chromium  # noqa: E402
from plantedfirefox import make_firefox  # noqa: E402
from plantedweb import PlantedWeb  # noqa: E402

MAKERS = {"chromium": make_chromium, "firefox": make_firefox}


def plain_sqlite() -> dict[str, str]:
    """The environment in which a program runs with an SQLite like that of macOS."""
    if sys.platform == "darwin":
        return {}
    done = subprocess.run([ROOT / "scripts/lib/plain-sqlite"], capture_output=True, text=True, check=False)
    if done.returncode == 77:
        pytest.skip(done.stderr.strip())
    assert done.returncode == 0, done.stderr
    return {"LD_LIBRARY_PATH": done.stdout.strip()}


def planted_home(family: str, binary: str, web: PlantedWeb, scratch: pathlib.Path) -> pathlib.Path:
    home, ready = scratch / family, os.environ.get("BROWSERSWEEP_E2E_PLANTED")
    if ready and (pathlib.Path(ready) / family).is_dir():
        shutil.copytree(pathlib.Path(ready) / family, home, symlinks=True)
        return home
    layout = Layout(home)
    layout.downloads.mkdir(parents=True)
    try:
        MAKERS[family](layout, binary, web, scratch / f"{family}.log")
    except BrowserError:
        print((scratch / f"{family}.log").read_text(errors="replace")[-2000:])
        raise
    if ready:
        shutil.copytree(home, pathlib.Path(ready) / family, symlinks=True)
    return home


class Browser:
    """The browsers know nothing of each other, so the tests of each are a class of their own."""

    @pytest.fixture(scope="class")
    def bench(self, request):
        family = request.cls.family
        try:
            binary, _ = find_browser(family)
        except BrowserError as error:
            pytest.skip(str(error))
        environment = plain_sqlite()
        with scratch_folder() as scratch, PlantedWeb() as web:
            yield forgetting.PlantedBench(PROGRAM, family, binary,
                                          planted_home(family, binary, web, scratch), scratch,
                                          environment, web)

    @pytest.mark.parametrize("case", forgetting.CASES, ids=lambda case: case.__name__)
    def test(self, bench, case):
        case(bench)


def hosts_of_network_state(bench, layout, site):
    return {host for listed in bench.told(layout, "sites")["sites"] if listed["site"] == site.registrable
            for trace in listed["traces"] if trace["kind"] == "networkState" for host in trace["hosts"]}


class TestForgettingInChromium(Browser):
    family = "chromium"


class TestForgettingInFirefox(Browser):
    family = "firefox"

    def test_other_ways_to_servers_go_record_by_record(self, bench):
        with bench.copy() as layout:
            folders = bench.profiles_of(layout)
            old = [firefoxstates.ways(folder) for folder in folders]
            for site in (GONE, KEPT):
                alternative = f"alt.{site.registrable}"
                for each in old:
                    said = firefoxstates.pairs_of(each)[firefoxstates.way_by_firefox(site)]
                    assert said.startswith(f"https:{site.host}:443:{alternative}:443:")
                assert alternative in hosts_of_network_state(bench, layout, site)
            bench.forget(layout, GONE.registrable, "--mixed")
            kept = [[each for each in records if GONE.registrable.encode() not in each] for records in old]
            assert [firefoxstates.ways(folder) for folder in folders] == kept
            assert hosts_of_network_state(bench, layout, GONE) == set()
            forgetting.run_once_more(bench, layout)
            for folder, records in zip(folders, kept):
                after = firefoxstates.pairs_of(firefoxstates.ways(folder))
                # To take pictures of pages Firefox visits those of the site that is kept.
                assert firefoxstates.pairs_of(records).items() <= after.items()
                assert not [pair for pair in after.items() if GONE.registrable in str(pair)]


DELETE_A_ROW = """import sqlite3, sys
database = sqlite3.connect(sys.argv[1])
database.execute("CREATE TABLE t(v TEXT)")
database.executemany("INSERT INTO t VALUES(?)", [["qzckvlalder"], ["kept"]])
database.commit()
database.execute("DELETE FROM t WHERE v <> 'kept'")
database.commit()"""


def test_rows_deleted_beside_this_sqlite_stay_in_the_file(tmp_path):
    """Otherwise none of the tests above could fail for free pages."""
    path = tmp_path / "database"
    subprocess.run([sys.executable, "-c", DELETE_A_ROW, str(path)], check=True,
                   env={**os.environ, **plain_sqlite()})
    with contextlib.closing(sqlite3.connect(path)) as database:
        assert database.execute("SELECT v FROM t").fetchall() == [("kept",)]
    assert markers_in(path.read_bytes()) == {"qzckvlalder": 1}
    with carriers.copied(path) as database:
        assert not markers_in(carriers.compacted(database))
