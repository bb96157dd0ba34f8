"""Runs the tests: first all with a map of what each one reaches, then for each mutant those that reach it."""

import dataclasses
import json
import mmap
import multiprocessing
import os
import pathlib
import pwd
import resource
import signal
import subprocess
import tempfile
import time

from . import confine

# Quick tests are run first. Those of other files that are slow are left out where others reach a mutant;
# and of the tests of other rooms so many seconds are run, the quickest first.
QUICK, SLOW = 0.2, 1.0
OF_OTHER_ROOMS = 1.5
# In a process for itself a test may take so many times as long as it did among all, and seconds more.
TIMES, SECONDS = 4, 3
MEMORY = 8 << 30


@dataclasses.dataclass(frozen=True)
class Test:
    number: int
    name: str
    file: str
    seconds: float


def become_ordinary(folder):
    """Root is refused nothing: what tests of permissions need is somebody else."""
    if os.getuid() == 0:
        user = pwd.getpwnam(os.environ.get("BROWSERSWEEP_USER", "nobody"))
        os.chown(folder, user.pw_uid, user.pw_gid)
        os.setgroups([])
        os.setgid(user.pw_gid)
        os.setuid(user.pw_uid)


def enter(folder):
    """Makes this process one that runs mutants."""
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    own = pathlib.Path(folder) / str(os.getpid())
    own.mkdir()
    become_ordinary(own)
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    confine.confine(str(own))
    for name in ("HOME", "CFFIXED_USER_HOME", "TMPDIR"):
        os.environ[name] = str(own)
    os.chdir(own)
    os.environ["TZ"] = "UTC"
    os.environ["RC_PARAMS"] = "seed=1"


def execute(program, options, environment, seconds):
    """The status of a run of the tests; nothing where it was ended for the time it took."""
    child = subprocess.Popen([program, "--gtest_brief=1", *options], stdin=subprocess.DEVNULL,
                             stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                             env={**os.environ, **environment}, start_new_session=True)
    # Of the processor's time first, which does not depend on what else the machine does.
    limit = int(seconds) + 1
    resource.prlimit(child.pid, resource.RLIMIT_CPU, (limit, limit))
    try:
        return child.wait(timeout=10 + 5 * seconds)
    except subprocess.TimeoutExpired:
        return None
    finally:
        try:
            os.killpg(child.pid, signal.SIGKILL)
        except (ProcessLookupError, PermissionError):
            pass
        child.wait()


def run_mutant(task):
    """The first group of tests of which one fails, or nothing; and how long it took."""
    program, number, groups = task
    started = time.monotonic()
    for name, tests in groups:
        limit = TIMES * sum(each.seconds for each in tests) + SECONDS
        status = execute(program, ["--gtest_fail_fast", "--gtest_filter=" +
                                   ":".join(each.name for each in tests)],
                         {"BROWSERSWEEP_MUTANT": str(number)}, limit)
        if status != 0:
            return number, name, time.monotonic() - started
    return number, None, time.monotonic() - started


def listed(program, root):
    """The tests in the order of the program: the name of each and its file."""
    with tempfile.TemporaryDirectory() as folder:
        report = pathlib.Path(folder) / "tests.json"
        subprocess.run([program, "--gtest_list_tests", f"--gtest_output=json:{report}"],
                       stdout=subprocess.DEVNULL, check=True)
        suites = json.loads(report.read_text(encoding="utf-8"))["testsuites"]
    return [(f"{suite['name']}.{each['name']}", file_of(each, root))
            for suite in suites for each in suite["testsuite"]]


def file_of(test, root):
    path = pathlib.PurePath(test.get("file", ""))
    return os.path.relpath(path, root) if path.is_absolute() else str(path).lstrip("./")


def record(task):
    """Runs the tests of one part of a few, unchanged, and says where the map and the report lie."""
    program, part, parts, tests, width, without = task
    folder = pathlib.Path(os.environ["TMPDIR"])
    seen, report = folder / f"map.{part}", folder / f"report.{part}"
    with open(seen, "wb") as file:
        file.truncate((tests + 1) * width)
    execute(program, [f"--gtest_output=json:{report}", "--gtest_filter=-" + ":".join(without)],
            {"BROWSERSWEEP_MUTANT_MAP": str(seen), "BROWSERSWEEP_MUTANTS": str(width),
             "GTEST_TOTAL_SHARDS": str(parts), "GTEST_SHARD_INDEX": str(part)}, 900)
    return str(seen), str(report)


class Tests:
    """The tests of a program, and which of them reach a mutant."""

    def __init__(self, pool, program, width, root, parts, without=()):
        """The files and folders `without` below tests/ are left out."""
        known = listed(program, root)
        names = [name for name, _ in known]
        folders = [pathlib.PurePath("tests", each) for each in without]
        unused = {name for name, file in known
                  if any(each in (pathlib.PurePath(file), *pathlib.PurePath(file).parents)
                         for each in folders)}
        made = pool.map(record, [(program, part, parts, len(names), width, sorted(unused))
                                 for part in range(parts)], chunksize=1)
        outcome = {}
        for seen, report in made:
            if not os.path.exists(report):
                raise RuntimeError("the tests end early although no mutant is chosen")
            outcome.update(self.passed(report, root))
        self.all = [Test(index, name, *outcome[name]) for index, name in enumerate(names, 1)
                    if name in outcome]
        self.left_out = [name for name in names if name not in outcome and name not in unused]
        self.reached = {}
        self.outside = set()
        usable = {each.number: each for each in self.all}
        for seen, _ in made:
            with open(seen, "rb") as file, mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ) as data:
                self.read(data, len(names) + 1, width, usable)

    @staticmethod
    def passed(report, root):
        found = {}
        for suite in json.loads(pathlib.Path(report).read_text(encoding="utf-8"))["testsuites"]:
            for each in suite["testsuite"]:
                if each["result"] == "COMPLETED" and "failures" not in each:
                    found[f"{suite['name']}.{each['name']}"] = (
                        file_of(each, root), float(each["time"].rstrip("s")))
        return found

    def read(self, data, rows, width, usable):
        for row in range(rows):
            place = data.find(b"\1", row * width, (row + 1) * width)
            while place >= 0:
                number = place - row * width
                if row == 0:
                    self.outside.add(number)
                elif row in usable:
                    self.reached.setdefault(number, set()).add(usable[row])
                place = data.find(b"\1", place + 1, (row + 1) * width)

    def groups(self, number, file, numbers_of_file):
        """The tests for a mutant, those first that are made for its file."""
        own = self.reached.get(number, set())
        if number in self.outside or len(own) == 1:
            # What is made once is asked in the first test alone that needs it.
            for each in numbers_of_file:
                own = own | self.reached.get(each, set())
        room = f"tests/{pathlib.PurePath(file).parts[1]}/"
        path = pathlib.PurePath(file)
        if number in self.outside:
            own = own | {each for each in self.all if pathlib.PurePath(each.file).stem == f"{path.stem}Test"}
            own = own or {each for each in self.all if each.file.startswith(room)}
        groups = {"file": [], "room": [], "slow": [], "rest": []}
        for each in sorted(own, key=lambda test: test.number):
            of_file = pathlib.PurePath(each.file).stem in (f"{path.stem}Test",
                                                           f"{path.stem}PropertiesTest")
            near = "file" if of_file else "room" if each.file.startswith(room) else "rest"
            groups["slow" if near != "rest" and each.seconds > QUICK else near].append(each)
        others = [each for each in groups["slow"] if each.seconds <= SLOW or
                  pathlib.PurePath(each.file).stem.startswith(path.stem)]
        groups["slow"] = others if others or groups["file"] or groups["room"] else groups["slow"]
        groups["rest"] = quickest(groups["rest"], OF_OTHER_ROOMS)
        return [(name, tests) for name, tests in groups.items() if tests]


def quickest(tests, seconds):
    """As many as fit into that time, and always one."""
    chosen = []
    for each in sorted(tests, key=lambda test: (test.seconds, test.number)):
        seconds -= each.seconds
        if chosen and seconds < 0:
            break
        chosen.append(each)
    return chosen


def pool_of(jobs, folder):
    return multiprocessing.get_context("fork").Pool(jobs, enter, (str(folder),))


def readers(jobs):
    """Processes that read files only."""
    return multiprocessing.get_context("fork").Pool(jobs)
