"""The host program while the system fails single calls, or every call from one on.

The faults are injected by strace beneath the program, one run each. The runs are a sample, spread
over the calls of the undisturbed run that concern the home or the temporary folder: as many for
each system call and command as BROWSERSWEEP_FAULTS says.
"""

import json
import os
import re
import unittest

from homes import Home, ProcessTest, Selection, strace, strace_problem

SAMPLES = int(os.environ.get("BROWSERSWEEP_FAULTS", "2"))
ERRORS = ("EIO", "EACCES", "ENOSPC", "EMFILE", "ENOENT")
COMMANDS = {
    "clean": ("clean", "--yes"),
    "size": ("size",),
    "bookmarks": ("bookmarks",),
    "notifications": ("notifications",),
    "profiles": ("profiles",),
}
CALLS = ("openat", "unlinkat", "unlink", "rmdir", "mkdir", "getdents64", "statx", "newfstatat",
         "read", "pread64", "write", "pwrite64", "copy_file_range", "rename", "fsync", "fdatasync",
         "ftruncate", "fchmod", "fcntl")
# With these a copy is removed; where one fails the copy may stay, for its owner alone.
REMOVING = ("unlinkat", "unlink", "rmdir", "openat", "getdents64", "newfstatat", "statx",
            "fcntl")
CALL = re.compile(r"^(?:\d+ +)?(\w+)\(")


def traced(home, log, expression, *arguments):
    return home.run("--json", *arguments, prefix=strace("-f", "-y", "-o", str(log), *expression))


def concerned_calls(log, root):
    """System call -> which of its calls, from 1 on, concern what lies below the root."""
    counts, found = {}, {}
    for line in log.read_text(encoding="utf-8", errors="replace").splitlines():
        match = CALL.match(line)
        if match:
            name = match[1]
            counts[name] = counts.get(name, 0) + 1
            if str(root) in line:
                found.setdefault(name, []).append(counts[name])
    return found


def spread(numbers, count):
    """A sample that is spread evenly: the first, the last and what lies between."""
    if len(numbers) <= count:
        return numbers
    return [numbers[index * (len(numbers) - 1) // max(1, count - 1)] for index in range(count)]


@unittest.skipIf(strace_problem(), strace_problem())
class Faults(ProcessTest):
    def check_run(self, home, selection, log, finished):
        error = finished.stderr.decode("utf-8", "replace")
        self.assertIn(finished.returncode, (0, 1), error)
        if finished.returncode == 1:
            self.assertTrue(error.startswith("browsersweep: "), error)
        if finished.stdout and "cannot write the whole report" not in error:
            self.assertIn("browsers", json.loads(finished.stdout))
        injected = [line for line in log.read_text(errors="replace").splitlines()
                    if line.endswith("(INJECTED)")]
        self.assertEqual(selection.problems(home), [])
        if not self.hits_removal(home, injected):
            self.assertEqual(home.left_temporary_files(), [])
        return bool(injected)

    def hits_removal(self, home, injected):
        """Whether a call failed that removing a temporary copy needs."""
        return any(str(home.temporary) in line and CALL.match(line)[1] in REMOVING
                   for line in injected)

    def baseline(self, name):
        with Home(self.template) as home:
            log = home.root / "log"
            finished = traced(home, log, ["-e", "trace=" + ",".join(CALLS)], *COMMANDS[name])
            self.assertEqual(finished.returncode, 0, finished.stderr)
            return concerned_calls(log, home.root)

    def run_command(self, name):
        selection = Selection(self.template, *COMMANDS[name])
        runs = hits = 0
        for call, numbers in sorted(self.baseline(name).items()):
            for number in spread(numbers, SAMPLES):
                error, lasting = ERRORS[runs % len(ERRORS)], "+" if runs // 2 % 2 else ""
                runs += 1
                rule = f"inject={call}:error={error}:when={number}{lasting}"
                with self.subTest(rule=rule), Home(self.template) as home:
                    log = home.root / "log"
                    finished = traced(
                        home, log, ["--seccomp-bpf", "-e", f"trace={call}", "-e", rule],
                        *COMMANDS[name])
                    hits += self.check_run(home, selection, log, finished)
        print(f"{name}: {runs} runs, {hits} with a fault")
        self.assertGreater(hits, runs // 2)

    def test_a_clean_survives_every_fault(self):
        self.run_command("clean")

    def test_a_size_survives_every_fault(self):
        self.run_command("size")

    def test_listing_bookmarks_survives_every_fault(self):
        self.run_command("bookmarks")

    def test_listing_notifications_survives_every_fault(self):
        self.run_command("notifications")

    def test_listing_profiles_survives_every_fault(self):
        self.run_command("profiles")
