"""The host program killed in the middle of a clean: nothing is torn, nothing else is touched.

BROWSERSWEEP_CRASHES says how many random moments of a full clean are tried.
"""

import concurrent.futures
import os
import random
import re
import subprocess
import time
import unittest

from homes import COOKIES, Home, ProcessTest, Selection, strace, strace_problem

CRASHES = int(os.environ.get("BROWSERSWEEP_CRASHES", "500"))
SERIES = 25
SEED = int(os.environ.get("BROWSERSWEEP_SEED", "1"))
KILLED = -9
CLEAN = ("clean", "--yes")
# With a filter the file is written anew; without one it is deleted.
REWRITE = ("clean", "--yes", "--browser=safari", "--category=httpCookies",
           "--inside=2024-06-01..2024-07-01")
CALL = re.compile(r"^(?:\d+ +)?(\w+)\(")


class CrashCuts(ProcessTest):
    def test_a_full_clean_cut_at_random_moments_tears_nothing(self):
        selection = Selection(self.template, *CLEAN)
        series = [range(first, min(first + SERIES, CRASHES)) for first in range(0, CRASHES, SERIES)]
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
            killed = sum(workers.map(lambda numbers: self.cut_in_turn(selection, numbers), series))
        print(f"{CRASHES} moments, {killed} of them before the end")
        self.assertGreater(killed, 0)

    def cut_in_turn(self, selection, numbers):
        """Cuts once for each number; tells how often the program still ran. How long a clean takes
        is measured anew for each series, because what else the machine does changes it."""
        moments, killed = random.Random(f"{SEED}-{numbers.start}"), 0
        with Home(self.template) as home:
            started = time.monotonic()
            home.run(*CLEAN)
            longest = time.monotonic() - started
        for number in numbers:
            with Home(self.template) as home:
                killed += self.cut(home, moments.uniform(0, longest))
                self.assertEqual(selection.problems(home, after_crash=True), [], number)
        return killed

    def cut(self, home, delay):
        """Kills the program after so many seconds; tells whether it still ran."""
        process = subprocess.Popen(home.command(*CLEAN), env=home.environment,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        time.sleep(delay)
        process.kill()
        return process.wait() == KILLED


@unittest.skipIf(strace_problem(), strace_problem())
class CookieRewrite(ProcessTest):
    """Cut at every system call, by strace."""

    def calls(self):
        """System call -> how often an undisturbed rewrite makes it."""
        with Home(self.template) as home:
            log = home.root / "log"
            finished = home.run(*REWRITE, prefix=strace("-f", "-o", str(log)))
            self.assertEqual(finished.returncode, 0, finished.stderr)
            counts = {}
            for line in log.read_text(errors="replace").splitlines():
                match = CALL.match(line)
                if match and match[1] != "execve":
                    counts[match[1]] = counts.get(match[1], 0) + 1
            return counts

    def test_the_cookie_file_is_the_old_or_the_new_one_at_every_system_call(self):
        name = str(COOKIES)
        selection = Selection(self.template, *REWRITE)
        self.assertIn(name, selection.changeable)
        old, new = self.template.before[name], selection.after[name]
        seen, runs = set(), 0
        with Home(self.template) as home:
            path = home.home / COOKIES
            for call, count in sorted(self.calls().items()):
                for number in range(1, count + 1):
                    path.write_bytes(old)
                    self.kill_at(home, call, number)
                    with self.subTest(call=call, number=number):
                        self.assertIn(path.read_bytes(), (old, new))
                    seen.add(path.read_bytes())
                    runs += 1
            self.assertEqual(selection.problems(home, after_crash=True), [])
        print(f"{runs} system calls")
        self.assertEqual(seen, {old, new})

    def kill_at(self, home, call, number):
        rule = f"inject={call}:signal=SIGKILL:when={number}"
        home.run(*REWRITE, prefix=strace("-o", os.devnull, "-e", f"trace={call}", "-e", rule))
