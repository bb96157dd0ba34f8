#!/usr/bin/env python3
"""Measure the library against the same work done without it, pair by pair.

    run.py --programs BUILD/benchmarks --host BUILD/cli/browsersweep --data DIR [--runs 7]
           [--json FILE] [--only TEXT]

Each row runs ours and its reference in turn and takes the median of the ratios of each pair.
Peak memory is ours, above that of a program that does nothing; in rows of growth, of the larger run.
"""

from __future__ import annotations

import argparse
import json
import os
import re
import resource
import shutil
import statistics
import subprocess
import sys
import time
from dataclasses import dataclass, field
from pathlib import Path
from typing import Callable

import data

HERE = Path(__file__).resolve().parent
TWENTY_PATTERNS = ",".join(f"host{number * 37}." for number in range(20))
DATES = "250000:750000"
# What was changed within the last seconds is read again each time; a browser's files lie there longer.
SECONDS_UNTIL_SETTLED = 4


def likes(patterns: str, column: str = "url") -> str:
    return " OR ".join(f"{column} LIKE '%{pattern}%'" for pattern in patterns.split(","))


@dataclass
class Sample:
    seconds: float
    cpu: float
    peak_kib: int
    output: str


@dataclass
class Row:
    """One comparison. The commands are made anew for each run, on fresh data where they need it."""

    name: str
    ours: Callable[[], list]
    reference: Callable[[], list]
    reach: str
    limit: float | None = None
    same_output: bool = False
    floor_ms: float | None = None
    limit_mb: float | None = None
    results: dict = field(default_factory=dict)


def run_once(command: list) -> Sample:
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    started = time.monotonic()
    process = subprocess.Popen([str(part) for part in command], stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE)
    output, notes = (text.decode(errors="replace").strip() for text in process.communicate())
    seconds = time.monotonic() - started
    if process.returncode != 0:
        raise SystemExit(f"{' '.join(map(str, command))} ended with {process.returncode}")
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    peak = re.search(r"peak (\d+) KiB", notes)
    return Sample(seconds, used.ru_utime + used.ru_stime - before.ru_utime - before.ru_stime,
                  int(peak[1]) if peak else 0, output)


def measure(row: Row, runs: int, idle_kib: int) -> None:
    pairs = []
    for number in range(runs + 1):
        pair = (run_once(row.ours()), run_once(row.reference()))
        if row.same_output and pair[0].output != pair[1].output:
            raise SystemExit(f"{row.name}: {pair[0].output} is not {pair[1].output}")
        if number > 0:  # the first pair warms up
            pairs.append(pair)
    row.results = {
        "oursSeconds": statistics.median(ours.seconds for ours, _ in pairs),
        "referenceSeconds": statistics.median(other.seconds for _, other in pairs),
        "ratio": statistics.median(ours.seconds / other.seconds for ours, other in pairs),
        "cpuRatio": statistics.median(ours.cpu / max(other.cpu, 1e-4) for ours, other in pairs),
        "moreMilliseconds": 1000 * statistics.median(
            ours.seconds - other.seconds for ours, other in pairs),
        "peakMemoryKiB": max(0, max(ours.peak_kib for ours, _ in pairs) - idle_kib),
    }


class Workloads:
    def __init__(self, programs: Path, host: Path, paths: dict, scratch: Path):
        self.ours = programs / "browsersweep_bench_ours"
        self.other = programs / "browsersweep_bench_reference"
        self.peak = programs / "browsersweep_bench_peak"
        self.host, self.paths, self.scratch = host, paths, scratch
        self.empty_home = scratch / "home"
        self.empty_home.mkdir(parents=True, exist_ok=True)

    def on(self, program: Path, workload: str, path: str, *argument) -> Callable[[], list]:
        return lambda: [program, workload, self.paths[path], *argument]

    def on_copy(self, program: Path, workload: str, path: str, *argument) -> Callable[[], list]:
        def command() -> list:
            return [program, workload,
                    data.fresh_copy(self.paths[path], self.scratch / path), *argument]
        return command

    def tool_on_copy(self, path: str, *command) -> Callable[[], list]:
        def make() -> list:
            copy = str(data.fresh_copy(self.paths[path], self.scratch / path))
            return [copy if part == "{}" else part for part in command]
        return make

    def in_python(self, script: str) -> Callable[[], list]:
        return lambda: [sys.executable, HERE / script, self.paths["cookies"]]

    def rows(self) -> list[Row]:
        return [*self.tree_rows(), *self.database_rows(), *self.file_rows(), *self.host_rows(),
                *self.site_rows(), *self.growth_rows()]

    def tree_rows(self) -> list[Row]:
        tree = self.paths["tree"]
        size = self.on(self.ours, "tree-size", "tree")
        clean = self.on_copy(self.ours, "tree-clean", "tree")
        return [
            Row("size of a tree of 200,000 files", size,
                self.on(self.other, "tree-size", "tree"), "<= 1.10 x", 1.10, True),
            Row("  against du -s", size, lambda: ["du", "-s", tree], "faster", 1.0),
            Row("  against find -printf", size,
                lambda: ["find", tree, "-type", "f", "-printf", "%s\n"], "faster", 1.0),
            Row("  with a pattern", self.on(self.ours, "tree-size-pattern", "tree", "00a"),
                self.on(self.other, "tree-size-pattern", "tree", "00a"), "<= 1.15 x", 1.15, True),
            Row("  with a date", self.on(self.ours, "tree-size-date", "tree"),
                self.on(self.other, "tree-size-date", "tree"), "<= 1.15 x", 1.15, True),
            Row("clean of that tree", clean,
                self.on_copy(self.other, "tree-clean", "tree"), "<= 1.10 x", 1.10),
            Row("  against find -delete", clean,
                self.tool_on_copy("tree", "find", "{}", "-type", "f", "-delete"), "faster", 1.0),
            Row("  against rm -r", clean, self.tool_on_copy("tree", "rm", "-r", "{}"),
                "no slower", 1.0),
        ]

    def database_rows(self) -> list[Row]:
        count = "SELECT COUNT(*) FROM urls"
        start, end = DATES.split(":")
        between = f"{count} WHERE last_visit_time BETWEEN {start} AND {end};"
        return [
            Row("size of a history of 1,000,000 rows", self.on(self.ours, "history-size", "history"),
                self.on(self.other, "count-on-copy", "history", f"{count};"),
                "<= 1.05 x", 1.05, True),
            Row("  with 20 patterns",
                self.on(self.ours, "history-size-patterns", "history", TWENTY_PATTERNS),
                self.on(self.other, "count-on-copy", "history",
                        f"{count} WHERE {likes(TWENTY_PATTERNS)};"), "<= 1.05 x", 1.05, True),
            Row("  with a range of dates", self.on(self.ours, "history-size-dates", "history", DATES),
                self.on(self.other, "count-on-copy", "history", between), "<= 1.05 x", 1.05, True),
            Row("clean of it with a pattern",
                self.on_copy(self.ours, "history-clean", "history", "host7"),
                self.on_copy(self.other, "execute", "history",
                             f"DELETE FROM urls WHERE {likes('host7')};"), "<= 1.05 x", 1.05),
            Row("size of a Safari history of 1,000,000 visits, filtered",
                self.on(self.ours, "safari-size", "safari", "host7"),
                self.on(self.other, "count", "safari",
                        "SELECT COUNT(*) FROM (SELECT history_items.url, history_visits.visit_time "
                        "FROM history_visits LEFT JOIN history_items ON history_items.id == "
                        f"history_visits.history_item WHERE ({likes('host7', 'history_items.url')}))"
                        ";"), "<= 1.05 x", 1.05, True),
            Row("clean of it, filtered", self.on_copy(self.ours, "safari-clean", "safari", "host7"),
                self.on_copy(self.other, "execute", "safari",
                             "DELETE FROM history_visits WHERE id IN (SELECT history_visits.id FROM "
                             "history_visits LEFT JOIN history_items ON history_items.id == "
                             "history_visits.history_item WHERE "
                             f"({likes('host7', 'history_items.url')})); DELETE FROM history_items "
                             "WHERE id NOT IN (SELECT history_item FROM history_visits);"),
                "<= 1.05 x", 1.05),
        ]

    def file_rows(self) -> list[Row]:
        read = self.on(self.ours, "cookies-read", "cookies")
        return [
            Row("decode of 100,000 cookies", read,
                self.on(self.other, "cookies-read", "cookies"), "<= 3 x", 3.0, True),
            Row("  against the same decoder in Python", read,
                self.in_python("decode_cookies.py"), ">= 20 x faster", 0.05, True),
            Row("  against a flat parser in Python", read,
                self.in_python("read_cookies.py"), "for comparison", same_output=True),
            Row("decode, remove and encode of them",
                self.on(self.ours, "cookies-rewrite", "cookies", "50000"),
                self.on(self.other, "cookies-rewrite", "cookies", "50000"), "<= 3 x", 3.0, True),
            Row("bookmarks of a file of 20 MB", self.on(self.ours, "bookmarks", "bookmarks"),
                self.on(self.other, "json", "bookmarks"), "<= 1.5 x", 1.5),
            Row("notifications of a file of 20 MB",
                self.on(self.ours, "notifications", "preferences"),
                self.on(self.other, "json", "preferences"), "<= 1.5 x", 1.5),
        ]

    def host_rows(self) -> list[Row]:
        home = ["--home", self.empty_home]
        true = ["sh", "-c", "true"]
        return [
            Row("host program: size, empty home", lambda: [self.host, *home, "size"],
                lambda: true, "<= 20 ms more", floor_ms=20),
            Row("host program: browsers", lambda: [self.host, *home, "browsers"],
                lambda: true, "<= 10 ms more", floor_ms=10),
        ]

    def on_home(self, *arguments: str) -> list:
        return [self.peak, self.host, "--home", self.paths["used-home"], *arguments,
                "--browser", "chromium"]

    def on_used_home(self, *arguments: str) -> Callable[[], list]:
        """The host program on a fresh copy. Forced: a browser may be running on this machine."""
        def command() -> list:
            copy = data.fresh_copy(self.paths["used-home"], self.scratch / "used-home")
            time.sleep(SECONDS_UNTIL_SETTLED)
            return [self.peak, self.host, "--home", copy, *arguments, "--yes", "--force",
                    "--browser", "chromium"]
        return command

    def site_rows(self) -> list[Row]:
        one = self.on_used_home("forget", "host7.test")
        return [
            Row("sites of a home of 1,000,000 visits", lambda: self.on_home("sites", "--json"),
                lambda: ["sh", "-c", "true"], "<= 3 s, 64 MB", floor_ms=3000, limit_mb=64),
            Row("forget --all of it, against clean", self.on_used_home("forget", "--all"),
                self.on_used_home("clean"), "<= 1.2 x", 1.2),
            Row("forget of one site of it, against compact statements", one,
                self.on_copy(self.other, "forget-site-compact", "used-home", "www.host7.test"),
                "<= 1.5 x", 1.5),
            Row("  against plain statements, which leave the bytes", one,
                self.on_copy(self.other, "forget-site", "used-home", "www.host7.test"),
                "for comparison"),
        ]

    def growth_rows(self) -> list[Row]:
        return [
            Row("2,000,000 files against 200,000", self.on(self.ours, "tree-size", "tree-large"),
                self.on(self.ours, "tree-size", "tree"), "<= 10.5 x", 10.5),
            Row("  the reference loop on both", self.on(self.other, "tree-size", "tree-large"),
                self.on(self.other, "tree-size", "tree"), "for comparison"),
            Row("1,000,000 rows against 100,000", self.on(self.ours, "history-size-patterns", "history", "host7"),
                self.on(self.ours, "history-size-patterns", "history-small", "host7"),
                "<= 10.5 x", 10.5),
        ]


def verdict(row: Row) -> str:
    if row.limit is None and row.floor_ms is None:
        return ""
    if row.limit_mb is not None and row.results["peakMemoryKiB"] > 1024 * row.limit_mb:
        return "NO"
    if row.floor_ms is not None:
        return "yes" if row.results["moreMilliseconds"] <= row.floor_ms else "NO"
    return "yes" if row.results["ratio"] <= row.limit else "NO"


def line(row: Row) -> str:
    found = row.results
    ratio = (f"+{found['moreMilliseconds']:.1f} ms" if row.floor_ms is not None
             else f"{found['ratio']:.3f}")
    return (f"| {row.name} | {1000 * found['oursSeconds']:.1f} ms | "
            f"{1000 * found['referenceSeconds']:.1f} ms | {ratio} | {found['cpuRatio']:.2f} | "
            f"{row.reach} | {verdict(row)} | {found['peakMemoryKiB'] / 1024:.1f} MB |")


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--programs", type=Path, required=True)
    parser.add_argument("--host", type=Path, required=True)
    parser.add_argument("--data", type=Path, required=True)
    parser.add_argument("--runs", type=int, default=7)
    parser.add_argument("--json", type=Path)
    parser.add_argument("--only", default="")
    options = parser.parse_args()

    scratch = options.data / "scratch"
    scratch.mkdir(parents=True, exist_ok=True)
    os.environ["TMPDIR"] = str(scratch)
    os.environ["HOME"] = str(scratch / "home")
    workloads = Workloads(options.programs, options.host, data.make_all(options.data), scratch)
    idle = max(run_once([workloads.ours, "nothing", "x"]).peak_kib for _ in range(5))
    rows = [row for row in workloads.rows() if options.only in row.name]
    print("| workload | ours | reference | ratio | CPU ratio | reach | reached | peak memory |")
    print("|---|---|---|---|---|---|---|---|", flush=True)
    for row in rows:
        measure(row, options.runs, idle)
        print(line(row), flush=True)
    shutil.rmtree(scratch)
    if options.json:
        options.json.write_text(json.dumps(
            [{"workload": row.name.strip(), "reach": row.reach, "reached": verdict(row) != "NO",
              **row.results} for row in rows], indent=1), "utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
