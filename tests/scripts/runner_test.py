"""scripts/test adds up its stages, and the programs under it count what they run."""

import shutil
import sys

sys.dont_write_bytecode = True

from support import ROOT, ScriptTest, run_all

TOOLS = ("bash env dirname basename find sort sed awk mktemp mkdir rm cat tail chmod python3 uname "
         "touch sleep nice")


class Runner(ScriptTest):
    """scripts/test in a project of its own, with stages made for the test."""

    def setUp(self):
        super().setUp()
        self.borrow(*TOOLS.split())
        self.project = self.folder / "project"
        shutil.copytree(ROOT / "scripts" / "lib", self.project / "scripts" / "lib")
        shutil.copy(ROOT / "scripts" / "test", self.project / "scripts" / "test")
        (self.project / "scripts" / "stages").mkdir()
        setup = self.project / "scripts" / "setup"
        setup.write_text("#!/usr/bin/env bash\necho set up for $1\n")
        setup.chmod(0o755)

    def stage(self, name, text):
        path = self.project / "scripts" / "stages" / name
        head = f'. "{self.project}/scripts/lib/stage.sh"\n'
        path.write_text(head + text + "\n")

    def run_all_stages(self, *arguments):
        return self.run_script(self.project / "scripts" / "test", *arguments)

    def last_line(self, finished):
        return finished.stdout.splitlines()[-1]

    def test_the_last_line_adds_up_all_stages(self):
        self.stage("10-one", "check right true; skip browser 'not installed'")
        self.stage("20-two", "count 40 0 2")
        finished = self.run_all_stages()
        self.assertEqual(self.last_line(finished), "41 passed, 0 failed, 3 skipped")
        self.assertEqual(finished.returncode, 0)
        self.assertEqual(finished.stdout.splitlines()[0], "set up for test")

    def test_a_failed_check_fails_the_run_and_later_stages_still_run(self):
        self.stage("10-one", "check wrong bash -c 'echo because; exit 1'")
        self.stage("20-two", "check right true")
        finished = self.run_all_stages()
        self.assertEqual(self.last_line(finished), "1 passed, 1 failed, 0 skipped")
        self.assertEqual(finished.returncode, 1)
        self.assertIn("    because\n", finished.stdout)

    def test_a_stage_that_breaks_off_is_a_failure(self):
        self.stage("10-one", "check right true; exit 3; check wrong true")
        self.assertEqual(self.last_line(self.run_all_stages()), "1 passed, 1 failed, 0 skipped")

    def test_a_stage_that_checks_nothing_is_a_failure(self):
        self.stage("10-one", ":")
        self.assertEqual(self.last_line(self.run_all_stages()), "0 passed, 1 failed, 0 skipped")

    def test_a_check_without_its_tool_is_skipped(self):
        self.stage("10-one", "check_with no-such-tool style true")
        finished = self.run_all_stages()
        self.assertEqual(self.last_line(finished), "0 passed, 0 failed, 1 skipped")
        self.assertIn("skipped: style (no-such-tool is not installed)", finished.stdout)

    def test_a_program_of_many_tests_is_counted_by_its_last_line(self):
        self.stage("10-one", "run_counting bash -c 'echo 5 passed, 0 failed, 1 skipped'")
        self.assertEqual(self.last_line(self.run_all_stages()), "5 passed, 0 failed, 1 skipped")

    def test_a_program_that_ends_without_its_counts_is_a_failure(self):
        self.stage("10-one", "run_counting bash -c 'echo all is well'")
        self.assertEqual(self.last_line(self.run_all_stages()), "0 passed, 1 failed, 0 skipped")

    def test_a_program_that_fails_after_its_counts_is_a_failure(self):
        self.stage("10-one", "run_counting bash -c 'echo 5 passed, 0 failed, 0 skipped; exit 9'")
        self.assertEqual(self.last_line(self.run_all_stages()), "5 passed, 1 failed, 0 skipped")

    def test_chosen_stages_run_in_their_own_order(self):
        for name in ("10-one", "20-two", "30-three"):
            self.stage(name, "count 1 0 0")
        finished = self.run_all_stages("three", "one")
        heads = [line for line in finished.stdout.splitlines() if line.startswith("== ")]
        self.assertEqual([line.split()[1].rstrip(":") for line in heads],
                         ["one", "one", "three", "three"])

    def test_stages_of_one_number_run_side_by_side_and_are_shown_in_order(self):
        meet = "touch {0}/{1}; while [ ! -e {0}/{2} ]; do sleep 0.1; done; say {1} met; count 1 0 0"
        self.stage("10-first", meet.format(self.folder, "first", "second"))
        self.stage("10-second", meet.format(self.folder, "second", "first"))
        self.stage("20-third", "count 0 0 1")
        finished = self.run_all_stages()
        self.assertEqual(self.last_line(finished), "2 passed, 0 failed, 1 skipped")
        said = [line for line in finished.stdout.splitlines() if "met" in line or "==" in line]
        self.assertEqual([line.split(":")[0] for line in said],
                         ["== first", "first met", "== first", "== second", "second met",
                          "== second", "== third", "== third"])

    def test_a_stage_that_is_killed_beside_another_is_a_failure(self):
        self.stage("10-one", "kill -9 $PPID")
        self.stage("10-two", "count 1 0 0")
        finished = self.run_all_stages()
        self.assertEqual(self.last_line(finished), "1 passed, 1 failed, 0 skipped")
        self.assertEqual(finished.returncode, 1)

    def test_stages_of_number_00_run_beside_all_others_and_are_shown_last(self):
        wait_for = "while [ ! -e {0}/{1} ]; do sleep 0.1; done; count 1 0 0"
        self.stage("00-beside", f"touch {self.folder}/began; " + wait_for.format(self.folder, "ends"))
        self.stage("10-one", wait_for.format(self.folder, "began"))
        self.stage("20-two", f"count 1 0 0; touch {self.folder}/ends")
        finished = self.run_all_stages()
        self.assertEqual(self.last_line(finished), "3 passed, 0 failed, 0 skipped")
        heads = [line for line in finished.stdout.splitlines() if line.startswith("== ")]
        self.assertEqual([line.split()[1].rstrip(":") for line in heads],
                         ["one", "one", "two", "two", "beside", "beside"])

    def test_a_stage_that_fails_or_is_killed_beside_all_others_is_a_failure(self):
        self.stage("00-fails", "check wrong false")
        self.stage("00-killed", "kill -9 $PPID")
        self.stage("10-one", "count 1 0 0")
        finished = self.run_all_stages()
        self.assertEqual(self.last_line(finished), "1 passed, 2 failed, 0 skipped")
        self.assertEqual(finished.returncode, 1)

    def test_stages_beside_all_others_may_be_all_there_are(self):
        self.stage("00-one", "count 1 0 0")
        self.assertEqual(self.last_line(self.run_all_stages()), "1 passed, 0 failed, 0 skipped")

    def test_stages_that_are_chosen_run_one_by_one(self):
        self.stage("10-one", f"touch {self.folder}/one; sleep 0.3; rm {self.folder}/one; count 1 0 0")
        self.stage("10-two", f"check 'one has ended' [ ! -e {self.folder}/one ]")
        finished = self.run_all_stages("one", "two")
        self.assertEqual(self.last_line(finished), "2 passed, 0 failed, 0 skipped")

    def test_an_unknown_stage_is_refused(self):
        self.stage("10-one", "count 1 0 0")
        finished = self.run_all_stages("two")
        self.assertEqual((finished.returncode, finished.stdout), (1, ""))
        self.assertIn("there is no stage two", finished.stderr)


# A test program in miniature: it lists its tests and plays what its MODE says.
PROGRAM = r'''#!{python}
import os, pathlib, sys
if "--gtest_list_tests" in sys.argv:
    print("Running main() from a file\nSize.\n  adds\n  fails\nAll/Date.\n  reads/0  # GetParam() = 1")
    sys.exit(0)
shard, shards = int(os.environ["GTEST_SHARD_INDEX"]), int(os.environ["GTEST_TOTAL_SHARDS"])
mode = "{mode}"
locked = pathlib.Path(os.environ["HOME"]) / "locked"
locked.mkdir()
(locked / "file").touch()
locked.chmod(0)
names = ["Size.adds", "Size.fails", "All/Date.reads/0"]
for index, name in enumerate(names):
    if index % shards != shard:
        continue
    print("[ RUN      ]", name, flush=True)
    if mode == "crash" and index == 1:
        os.abort()
    result = "OK"
    if mode == "fail" and index == 1:
        print("  Actual: 2", flush=True)
        result = "FAILED"
    if mode == "skip" and index == 2:
        result = "SKIPPED"
    label = {{"OK": "[       OK ]", "FAILED": "[  FAILED  ]", "SKIPPED": "[  SKIPPED ]"}}[result]
    suffix = ", where GetParam() = 1" if "/0" in name and result == "FAILED" else ""
    print("without a line end", end="")
    print(f"{{label}} {{name}}{{suffix}} (0 ms)", flush=True)
sys.exit(1 if mode in ("fail", "leak") else 0)
'''


class GoogleTestRunner(ScriptTest):
    def run_mode(self, mode, shards=2):
        program = self.folder / "program_tests"
        program.write_text(PROGRAM.format(python=sys.executable, mode=mode))
        program.chmod(0o755)
        runner = ROOT / "scripts" / "lib" / "run-gtest"
        finished = self.run_script(sys.executable, runner, "--shards", shards, program)
        self.assertEqual(list(self.folder.glob("browsersweep-tests.*")), [])
        return finished

    def last_line(self, finished):
        return finished.stdout.splitlines()[-1]

    def test_every_shard_is_counted(self):
        for shards in (1, 2, 3):
            with self.subTest(shards):
                finished = self.run_mode("pass", shards)
                self.assertEqual(self.last_line(finished), "3 passed, 0 failed, 0 skipped")
                self.assertEqual(finished.returncode, 0, finished.stderr)

    def test_a_failed_test_is_counted_and_shown(self):
        finished = self.run_mode("fail")
        self.assertEqual(self.last_line(finished), "2 passed, 1 failed, 0 skipped")
        self.assertIn("  Actual: 2", finished.stdout)
        self.assertEqual(finished.returncode, 1)

    def test_a_skipped_test_is_counted_and_named(self):
        finished = self.run_mode("skip")
        self.assertEqual(self.last_line(finished), "2 passed, 0 failed, 1 skipped")
        self.assertIn("skipped: All/Date.reads/0", finished.stdout)

    def test_tests_that_a_dead_process_left_out_have_failed(self):
        finished = self.run_mode("crash", shards=1)
        self.assertEqual(self.last_line(finished), "1 passed, 2 failed, 0 skipped")
        self.assertIn("did not finish: Size.fails", finished.stdout)
        self.assertIn("did not finish: All/Date.reads/0", finished.stdout)

    def test_a_process_that_fails_after_its_last_test_has_failed(self):
        finished = self.run_mode("leak")
        self.assertEqual(self.last_line(finished), "3 passed, 1 failed, 0 skipped")
        self.assertEqual(finished.returncode, 1)


if __name__ == "__main__":
    run_all()
