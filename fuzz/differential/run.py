#!/usr/bin/env python3
"""Compares the library's readers with Python's on documents that a seed decides.

    run.py [--program FILE] [--seed N]... [--inputs N] [--formats NAME,...] [--no-corpus]
    run.py [--program FILE] --file FILE --formats NAME

Without --seed one is drawn and printed. --inputs is the number for each format and seed. Input I
of a format is decided by the seed, the format, I and the files to start from: those of fuzz/seeds
and fuzz/regressions and, without --no-corpus, what scripts/fuzz has found, in build/fuzz-corpus.
The first inputs are those of fuzz/regressions as they are. --file compares one file. Every
difference that no rule of rules.py explains is printed with its input and both views.

The last line is "N passed, N failed, N skipped", one for each format and seed. The exit status is
1 if something failed.
"""

import argparse
import functools
import multiprocessing
import os
import random
import struct
import subprocess
import sys
from collections import Counter
from pathlib import Path

sys.dont_write_bytecode = True

import documents  # noqa: E402
import mutations  # noqa: E402
import readers  # noqa: E402
from rules import Undecided  # noqa: E402

ROOT = Path(__file__).resolve().parents[2]
PROGRAM = ROOT / "build" / "debug" / "fuzz" / "browsersweep_describe"

LISTS = ("propertyList", "safariBookmarks")
# Format -> the program's letter for it, what makes documents, and whose seeds it starts from.
FORMATS = {
    "json": ("j", documents.json_document, ("localState", "chromiumBookmarks", "preferences")),
    "binary": ("p", documents.binary_document, LISTS),
    "xml": ("p", documents.xml_document, LISTS),
    "text": ("p", documents.old_document, LISTS),
    "cookies": ("c", documents.cookie_document, ("cookieFile",)),
}

BATCH = 500
LARGEST_FILE = 1 << 14
MOST_FINDINGS = 5
SHOWN = 600


@functools.lru_cache(maxsize=None)
class Format:
    def __init__(self, name, with_corpus):
        self.name = name
        self.letter, self.make, targets = FORMATS[name]
        folders = [ROOT / "fuzz" / "seeds" / target for target in targets]
        if with_corpus:
            folders += [ROOT / "build" / "fuzz-corpus" / target for target in targets]
        once_wrong = [ROOT / "fuzz" / "regressions" / target for target in targets]
        self.once_wrong = self.contents(once_wrong)
        self.files = self.contents(folders) + self.once_wrong

    def contents(self, folders):
        files = [file for folder in folders if folder.is_dir() for file in sorted(folder.iterdir())]
        small = [file.read_bytes() for file in files if file.stat().st_size <= LARGEST_FILE]
        return [each for each in small if self.letter != "p" or readers.form(each) == self.name]

    def document(self, seed, index):
        """What was once wrong, and then a new document, or a damaged one, old or new."""
        if index < len(self.once_wrong):
            return self.once_wrong[index]
        chance = random.Random(f"{seed}/{self.name}/{index}")
        kind = chance.random()
        if kind < 0.4:
            return self.make(chance)
        data = self.make(chance) if kind < 0.7 else chance.choice(self.files)
        return mutations.mutated(chance, data, self.files)


def ask(program, letter, inputs):
    """The program's answers, and what it said at its end if that came too early."""
    message = b"".join(letter.encode() + struct.pack(">I", len(each)) + each for each in inputs)
    done = subprocess.run([program], input=message, capture_output=True, check=False)
    answers, place = [], 0

    def piece():
        nonlocal place
        (size,) = struct.unpack_from(">I", done.stdout, place)
        place += 4 + size
        return done.stdout[place - size : place]

    while place < len(done.stdout):
        place += 1
        accepted = done.stdout[place - 1 : place] == b"+"
        answers.append((accepted, piece(), piece()))
    error = done.stderr.decode(errors="replace")
    return answers, f"status {done.returncode}: {error}" if done.returncode else ""


def compare(letter, data, answer):
    """What became of the input, and what is wrong with that."""
    accepted, value, written = answer
    try:
        description, why = readers.view(letter, data)
    except Undecided as error:
        return f"undecided: {error}", ""
    ours = show(value) if accepted else "refused: " + value.decode(errors="replace")
    python = why if description is None else show(description)
    if (value if accepted else None) != description:
        return "finding", f"library: {ours}\n  Python:  {python}"
    if not accepted:
        return "refused", ""
    if not readers.is_well_written(letter, data, value, written):
        return "finding", f"library: {ours}\n  writes:  {written.hex()}"
    return "accepted", ""


def show(text):
    return repr(text[:SHOWN])[2:-1] + ("..." if len(text) > SHOWN else "")


class Tally:
    """What became of a format's inputs."""

    def __init__(self):
        self.counts = Counter()
        self.findings = []

    def add(self, index, data, difference):
        self.counts["findings"] += 1
        self.findings.append(f"input {index}: {data.hex()}\n  {difference}")

    def merge(self, other):
        self.counts += other.counts
        self.findings += other.findings

    def is_useful(self):
        """A comparison of nothing but refusals, or of none, would find little."""
        enough = sum(self.counts.values()) / 10
        return min(self.counts["accepted"], self.counts["refused"]) >= enough

    def report(self, name):
        """Prints the outcome; True if it is as it should be."""
        for finding in self.findings[:MOST_FINDINGS]:
            print(f"{name}, {finding}")
        counts = ", ".join(f"{count} {kind}" for kind, count in sorted(self.counts.items()))
        passed = not self.findings and self.is_useful()
        note = "" if self.is_useful() else "; too few of one kind to compare"
        print(f"{'passed' if passed else 'FAILED'}: {name}: {counts}{note}", flush=True)
        return passed


def compare_all(program, letter, first, inputs):
    """Goes on after an input at which the program ends."""
    tally = Tally()
    while inputs:
        answers, error = ask(program, letter, inputs)
        for data, answer in zip(inputs, answers):
            kind, difference = compare(letter, data, answer)
            if difference:
                tally.add(first, data, difference)
            else:
                tally.counts[kind] += 1
            first += 1
        inputs = inputs[len(answers) :]
        if inputs:
            tally.add(first, inputs[0], f"the program ended: {error}")
            inputs, first = inputs[1:], first + 1
    return tally


def run(task):
    program, name, seed, indices, with_corpus = task
    allow_depth()
    chosen = Format(name, with_corpus)
    inputs = [chosen.document(seed, index) for index in indices]
    return name, seed, compare_all(program, chosen.letter, indices[0], inputs)


def allow_depth():
    """Python's readers must get deeper than what the library allows."""
    sys.setrecursionlimit(6000)


def batches(count):
    return [range(first, min(first + BATCH, count)) for first in range(0, count, BATCH)]


def run_all(chosen, seeds):
    """Runs every format with every seed; True for each that holds."""
    tasks = [
        (chosen.program, name, seed, indices, not chosen.no_corpus)
        for seed in seeds
        for name in chosen.formats
        for indices in batches(chosen.inputs)
    ]
    tallies = {(task[1], task[2]): Tally() for task in tasks}
    with multiprocessing.Pool(os.cpu_count()) as pool:
        for name, seed, tally in pool.imap(run, tasks):
            tallies[name, seed].merge(tally)
    return [tally.report(f"{name}, seed {seed}") for (name, seed), tally in tallies.items()]


def run_file(program, name, path):
    allow_depth()
    letter, data = FORMATS[name][0], path.read_bytes()
    answers, error = ask(program, letter, [data])
    if not answers:
        print(f"the program ended: {error}")
        return 1
    kind, difference = compare(letter, data, answers[0])
    print(kind, difference, sep="\n  " if difference else "")
    return 1 if difference else 0


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--program", type=Path, default=PROGRAM)
    parser.add_argument("--seed", type=int, action="append")
    parser.add_argument("--inputs", type=int, default=10000)
    parser.add_argument("--formats", default=",".join(FORMATS))
    parser.add_argument("--no-corpus", action="store_true")
    parser.add_argument("--file", type=Path)
    chosen = parser.parse_args()
    chosen.formats = chosen.formats.split(",")
    for name in chosen.formats:
        if name not in FORMATS:
            parser.error(f"there is no format {name}")
    return chosen


def main():
    chosen = arguments()
    if chosen.file:
        return run_file(chosen.program, chosen.formats[0], chosen.file)
    outcomes = run_all(chosen, chosen.seed or [random.SystemRandom().getrandbits(32)])
    passed = sum(outcomes)
    print(f"{passed} passed, {len(outcomes) - passed} failed, 0 skipped")
    return 0 if all(outcomes) else 1


if __name__ == "__main__":
    sys.exit(main())
