"""scripts/test adds up the reports of its parts, and ends with all that it has started."""

import shutil
import signal
import subprocess
import sys
import time

from support import ROOT, ScriptTest

TOOLS = ("bash env dirname basename sed awk mktemp mkdir rm cp cat tail tee chmod uname id "
         "ps sleep test touch")

# What has not ended after so many seconds never will.
HANGS = 120

# What the stand-in for ctest reports: JUnit's elements inside of a test.
PASSES = "<testcase name='adds'/>"
FAILS = "<testcase name='adds'/><testcase name='fails'><failure message='wrong'/>" \
        "<system-out>Actual: 2</system-out></testcase>"
SKIPS = "<testcase name='adds'/><testcase name='skips'><skipped message='no browser'/></testcase>"


class Runner(ScriptTest):
    """scripts/test in a project of its own, with tools made for the test."""

    def setUp(self):
        super().setUp()
        self.borrow(*TOOLS.split())
        (self.commands / "python3").symlink_to(sys.executable)
        self.project = self.folder / "project"
        shutil.copytree(ROOT / "scripts", self.project / "scripts")
        setup = self.project / "scripts" / "setup"
        setup.write_text("#!/usr/bin/env bash\necho set up for $1\n", encoding="utf-8")
        self.stand_in("cmake")
        self.stand_in("clang++")
        self.reports(PASSES)

    def reports(self, cases, status=0):
        """Lets ctest write a report to the file that its options name."""
        body = 'while [ "$1" != --output-junit ]; do shift; done\n'
        self.stand_in("ctest", f'{body}echo "<testsuite>{cases}</testsuite>" >"$2"; exit {status}')

    def run_parts(self, *parts):
        return self.run_script(self.project / "scripts" / "test", *parts)

    def assert_ends_with(self, line, status, *parts):
        finished = self.run_parts(*parts)
        self.assertEqual(finished.stdout.splitlines()[-1:], [line], finished)
        self.assertEqual(finished.returncode, status)
        return finished

    def test_the_last_line_adds_up_the_parts(self):
        self.reports(SKIPS)
        finished = self.assert_ends_with("2 passed, 0 failed, 2 skipped", 0, "asan", "clang")
        self.assertEqual(finished.stdout.splitlines()[0], "set up for test")
        self.assertIn("skipped: skips no browser", finished.stdout)

    def test_a_failed_test_fails_the_run_and_is_shown(self):
        self.reports(FAILS, status=8)
        finished = self.assert_ends_with("1 passed, 1 failed, 0 skipped", 1, "asan")
        self.assertIn("failed: fails wrong\n      Actual: 2\n", finished.stdout)

    def test_what_failed_stands_once_more_at_the_end(self):
        self.reports(FAILS, status=8)
        self.stand_in("cmake", 'case "$*" in *libcxx*) echo no such file; exit 1 ;; esac')
        finished = self.assert_ends_with("1 passed, 2 failed, 0 skipped", 1, "asan", "libcxx")
        end = finished.stdout[finished.stdout.index("== what failed"):]
        self.assertEqual(end, "== what failed\nasan: failed: fails wrong\n      Actual: 2\n"
                              "      no such file\nlibcxx: FAILED: it ended with status 1\n\n"
                              "1 passed, 2 failed, 0 skipped\n")
        self.reports(PASSES)
        self.assertNotIn("what failed", self.run_parts("asan").stdout)

    def test_a_build_that_fails_is_a_failure_and_later_parts_still_run(self):
        self.stand_in("cmake", 'case "$*" in *asan*) echo no such file; exit 1 ;; esac')
        finished = self.assert_ends_with("1 passed, 1 failed, 0 skipped", 1, "asan", "clang")
        self.assertIn("      no such file\n", finished.stdout)

    def test_a_tool_that_fails_after_its_tests_is_a_failure(self):
        self.reports(PASSES, status=8)
        self.assert_ends_with("1 passed, 1 failed, 0 skipped", 1, "asan")

    def test_no_test_no_report_and_half_a_report_are_failures(self):
        for report in ("", "<testcase"):
            self.reports(report)
            self.assert_ends_with("0 passed, 1 failed, 0 skipped", 1, "asan")
        self.stand_in("ctest")
        self.assert_ends_with("0 passed, 1 failed, 0 skipped", 1, "asan")

    def test_an_older_report_is_not_counted(self):
        self.run_parts("asan")
        self.stand_in("ctest", "kill -9 $$")
        self.assert_ends_with("0 passed, 1 failed, 0 skipped", 1, "asan")

    def test_the_sanitizers_and_the_fuzz_targets_of_clang_share_a_build(self):
        self.stand_in("ctest", 'case "$*" in "--preset fuzz "*) ;; *) exit 8 ;; esac\n'
                               'case "$*" in *"--label-exclude fuzz"*) name=unit ;;\n'
                               '*"--label-regex fuzz"*) name=fuzz ;; esac\n'
                               'while [ "$1" != --output-junit ]; do shift; done\n'
                               'echo "<testsuite><testcase name=\'$name\'/></testsuite>" >"$2"')
        self.assert_ends_with("2 passed, 0 failed, 0 skipped", 0, "clang", "fuzz")
        built = [words for words in self.recorded("cmake") if words.startswith("--build")]
        self.assertEqual(built, ["--build --preset fuzz",
                                 "--build --preset fuzz --target browsersweep_fuzzers"])

    def test_a_part_without_its_tool_is_skipped(self):
        (self.commands / "clang++").unlink()
        finished = self.assert_ends_with("0 passed, 0 failed, 1 skipped", 0, "clang")
        self.assertIn("skipped: clang++ is not installed", finished.stdout)

    def test_every_part_is_listed_and_no_other_is_taken(self):
        parts = self.run_parts("--list").stdout.split()
        self.assertIn("end-to-end", parts)
        self.assertEqual(len(parts), len(set(parts)))
        finished = self.run_parts("asan", "no-such")
        self.assertEqual((finished.returncode, finished.stdout), (1, ""))
        self.assertIn("there is no part no-such", finished.stderr)

    def test_it_ends_with_everything_that_it_has_started(self):
        # What is started in a session of its own, and what does not listen.
        self.borrow("setsid")
        started = self.folder / "started"
        self.stand_in("stubborn", f"trap '' TERM INT; echo $$ >>{started}; while :; do sleep 1; done")
        self.stand_in("ctest", "setsid stubborn & stubborn & wait")
        environment = {"PATH": str(self.commands), "HOME": str(self.folder), "TMPDIR": str(self.folder)}
        for number in (signal.SIGTERM, signal.SIGINT):
            started.unlink(missing_ok=True)
            process = subprocess.Popen([self.project / "scripts" / "test", "asan"], env=environment,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            while not started.exists() or len(started.read_text().splitlines()) < 2:
                self.assertIsNone(process.poll(), "it ended by itself")
                time.sleep(0.05)
            process.send_signal(number)
            self.assertEqual(process.wait(), 130)
            for running in started.read_text().split():
                self.assert_ends(running)
            self.assertEqual(list(self.folder.glob("browsersweep-test.*")), [])

    def assert_ends(self, process):
        """Who is killed is gone a moment later, which on a busy machine may be a long one."""
        deadline = time.monotonic() + HANGS
        while self.is_running(process):
            self.assertLess(time.monotonic(), deadline, f"{process} was not ended")
            time.sleep(0.05)

    def is_running(self, process):
        """Whether it runs; one that has ended and was not waited for is named in brackets."""
        found = subprocess.run(["ps", "-o", "stat=", "-p", process], stdout=subprocess.PIPE, text=True,
                               check=False).stdout
        return bool(found.strip()) and not found.startswith("Z")
