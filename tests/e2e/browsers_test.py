"""The program beside the real Chromium and Firefox.

Each browser makes one home; every test works on a copy of it. The tests of a browser that is not
installed are skipped. BROWSERSWEEP_PROGRAM is the program to test, and BROWSERSWEEP_E2E_HOME a home from
an earlier run, which saves making one.
"""

from __future__ import annotations

import contextlib
import os
import pathlib
import shutil
import tempfile
from collections.abc import Iterator

import pytest

import cases
import running
from bench import Bench
from browser import BrowserError, Layout, find_browser
from home import make_home

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = pathlib.Path(os.environ.get("BROWSERSWEEP_PROGRAM", ROOT / "build/debug/cli/browsersweep"))
MEMORY = pathlib.Path("/dev/shm")


@contextlib.contextmanager
def scratch_folder() -> Iterator[pathlib.Path]:
    """A folder for what a browser and its tests make, in memory where there is some."""
    scratch = pathlib.Path(tempfile.mkdtemp(
        prefix="browsersweep-e2e-", dir=MEMORY if os.access(MEMORY, os.W_OK) else None)).resolve()
    try:
        yield scratch
    finally:
        shutil.rmtree(scratch, ignore_errors=True)  # a browser may still be writing there


def made_home(family, binary, scratch):
    """A home that the browser has made, or a copy of one from an earlier run."""
    home, ready = scratch / family, os.environ.get("BROWSERSWEEP_E2E_HOME")
    if ready:
        shutil.copytree(pathlib.Path(ready) / "Library", home / "Library", symlinks=True)
        return home
    home.mkdir()
    try:
        make_home(Layout(home), family, binary)
    except BrowserError:
        log = home / f"{family}.log"
        print(log.read_text(errors="replace")[-2000:] if log.is_file() else "(no log)")
        raise
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
        with scratch_folder() as scratch:
            yield Bench(PROGRAM, family, binary, made_home(family, binary, scratch), scratch)

    @pytest.mark.parametrize("case", cases.CASES + running.CASES, ids=lambda case: case.__name__)
    def test(self, bench, case):
        case(bench)


class TestChromium(Browser):
    family = "chromium"


class TestFirefox(Browser):
    family = "firefox"
