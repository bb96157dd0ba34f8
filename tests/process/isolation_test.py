"""No test can reach the home of whoever runs it.

Every test program runs under strace, which shows each path that it or a child of it uses. HOME is a
canary when it starts; neither the canary nor the home of the account may occur.
"""

import concurrent.futures
import os
import pathlib
import pwd
import re
import subprocess
import tempfile
import unittest

from homes import ROOT, strace, strace_problem

PROGRAMS = os.environ.get("BROWSERSWEEP_TEST_PROGRAMS", str(ROOT / "build" / "debug"))
# These repeat the calls of other tests tens of thousands of times, each of which strace would stop at.
# What they touch is behind the guarded file manager, which refuses every path outside its fixture.
REPETITIONS = "-Races.aFolderThatBecomesALink*:*FileFaultsOfOperation*"
PATH = re.compile(r'"((?:/[^"/]*)+)"')


def test_programs():
    return [path for path in sorted(pathlib.Path(PROGRAMS).rglob("*_tests"))
            if path.is_file() and os.access(path, os.X_OK)]


def below(path, folder):
    return path == folder or path.startswith(folder + "/")


@unittest.skipIf(strace_problem(), strace_problem())
class Isolation(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="browsersweep-isolation.")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()
        self.canary = self.folder / "canary"
        self.canary.mkdir()
        (self.canary / "Library").mkdir()

    def paths_used_by(self, program, *arguments, shard=0, shards=1):
        """Every absolute path in a system call of the program, after it was started itself."""
        log = self.folder / f"log-{program.name}-{shard}"
        finished = subprocess.run(
            strace("-f", "-qq", "--seccomp-bpf", "-s", "4096", "-e", "trace=%file", "-e",
                   "signal=none", "-o", str(log), str(program), *arguments),
            env={**os.environ, "HOME": str(self.canary), "CFFIXED_USER_HOME": str(self.canary),
                 "TMPDIR": str(self.folder),
                 "GTEST_TOTAL_SHARDS": str(shards), "GTEST_SHARD_INDEX": str(shard)},
            cwd=self.folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, check=False)
        with open(log, encoding="utf-8", errors="replace") as lines:
            used = {found for line in lines if " execve(" not in line
                    for found in PATH.findall(line)}
        return finished, used

    def forbidden(self, used):
        account = pwd.getpwuid(os.getuid()).pw_dir.rstrip("/")
        # What is built or kept there, such as the sources themselves, is no data of a browser.
        return sorted(path for path in used
                      if below(path, str(self.canary)) or (
                          account and below(path, account + "/Library")))

    def test_no_test_program_uses_a_path_in_the_users_home(self):
        programs = test_programs()
        self.assertTrue(programs, f"there is no test program in {PROGRAMS}")
        shards = 2 * os.cpu_count()
        pieces = [(program, shard) for program in programs for shard in range(shards)]
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
            outcomes = workers.map(lambda piece: self.paths_used_by(
                piece[0], "--gtest_brief=1", f"--gtest_filter={REPETITIONS}", shard=piece[1],
                shards=shards), pieces)
        for (program, shard), (finished, used) in zip(pieces, outcomes):
            with self.subTest(program=program.name, shard=shard):
                self.assertEqual(finished.returncode, 0, finished.stdout[-4000:])
                self.assertTrue(used)
                self.assertEqual(self.forbidden(used), [])

    def test_the_guard_sees_a_program_that_does(self):
        _, used = self.paths_used_by(pathlib.Path("/bin/ls"), str(self.canary / "Library"))
        self.assertEqual(self.forbidden(used), [str(self.canary / "Library")])
