#!/usr/bin/env python3
"""End-to-end tests of `browsersweep` with the real Chromium and Firefox.

    run.py --program PATH [--browsers chromium,firefox] [--only WORD] [--home DIR]

Each browser makes one home; every test works on a copy of it. One line is printed per test and,
last, `N passed, N failed, N skipped`. The exit status is 1 if a test failed. The tests of a
browser that is not installed are skipped.
"""

from __future__ import annotations

import argparse
import shutil
import sys
import tempfile
import time
import traceback
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

sys.dont_write_bytecode = True

from browser import BrowserError, Layout, find_browser  # noqa: E402
import cases  # noqa: E402
import running  # noqa: E402
from bench import Bench  # noqa: E402
from home import make_home  # noqa: E402

FAMILIES = ("chromium", "firefox")


def say(text: str) -> None:
    """In one piece, because two browsers report at the same time."""
    sys.stdout.write(text + "\n")
    sys.stdout.flush()


def made_home(family: str, binary: str, scratch: Path, ready: Path | None) -> Path:
    """A home that the browser has made, or a copy of one from an earlier run."""
    home = scratch / family
    if ready:
        shutil.copytree(ready / "Library", home / "Library", symlinks=True)
        return home
    home.mkdir()
    try:
        make_home(Layout(home), family, binary)
    except BrowserError:
        log = home / f"{family}.log"
        say(log.read_text(errors="replace")[-2000:] if log.is_file() else "(no log)")
        raise
    return home


def run_case(case, bench: Bench) -> str:
    started = time.monotonic()
    try:
        case(bench)
        outcome, details = "passed", ""
    except AssertionError as error:
        outcome, details = "failed", f"\n  {error}"
    except Exception:  # a test that breaks counts as failed, and the next ones still run
        outcome, details = "failed", "\n" + traceback.format_exc()
    say(f"{outcome}  {bench.family}: {case.__name__} ({time.monotonic() - started:.1f} s){details}")
    return outcome


def run_family(family: str, options: argparse.Namespace, scratch: Path) -> Counter:
    chosen = [case for case in cases.CASES + running.CASES if options.only in case.__name__]
    try:
        binary, version = find_browser(family)
    except BrowserError as error:
        for case in chosen:
            say(f"skipped {family}: {case.__name__}: {error}")
        return Counter(skipped=len(chosen))
    started = time.monotonic()
    try:
        home = made_home(family, binary, scratch, options.home)
    except Exception:
        say(f"failed  {family}: makes a home\n{traceback.format_exc()}")
        return Counter(failed=len(chosen) + 1)
    made = Counter() if options.home else Counter(passed=1)
    word = "given  " if options.home else "passed "
    say(f"{word} {family}: makes a home, {version} ({time.monotonic() - started:.1f} s)")
    bench = Bench(options.program, family, binary, home, scratch)
    return made + Counter(run_case(case, bench) for case in chosen)


def parse_arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--program", required=True, type=Path, help="the browsersweep to test")
    parser.add_argument("--browsers", default=",".join(FAMILIES), help="default: %(default)s")
    parser.add_argument("--only", default="", metavar="WORD", help="tests whose name holds WORD")
    parser.add_argument("--home", type=Path, help="use this home instead of making one")
    options = parser.parse_args()
    options.program = options.program.resolve()
    if not options.program.is_file():
        parser.error(f"there is no program {options.program}")
    options.browsers = options.browsers.split(",")
    if unknown := set(options.browsers) - set(FAMILIES):
        parser.error(f"--browsers takes {' and '.join(FAMILIES)}, not {', '.join(unknown)}")
    return options


def main() -> int:
    options, total = parse_arguments(), Counter()
    scratch = tempfile.mkdtemp(prefix="browsersweep-e2e-")
    try:
        # The browsers know nothing of each other, so their tests run side by side.
        with ThreadPoolExecutor() as pool:
            for counted in pool.map(lambda family: run_family(
                    family, options, Path(scratch).resolve()), options.browsers):
                total += counted
    finally:
        shutil.rmtree(scratch, ignore_errors=True)  # a browser may still be writing there
    say(f"{total['passed']} passed, {total['failed']} failed, {total['skipped']} skipped")
    return 1 if total["failed"] else 0


if __name__ == "__main__":
    sys.exit(main())
