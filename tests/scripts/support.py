"""What the tests of the scripts share."""

import importlib
import pathlib
import shutil
import stat
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


class ScriptTest(unittest.TestCase):
    """A test with a folder of its own, and with commands that stand in for those of a system."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="browsersweep-scripts."))
        self.addCleanup(shutil.rmtree, self.folder)
        self.commands = self.folder / "commands"
        self.commands.mkdir()
        self.calls = self.folder / "calls"

    def borrow(self, *names):
        """Makes commands of this system available beside the stand-ins."""
        for name in names:
            path = shutil.which(name)
            self.assertIsNotNone(path, f"{name} is needed by this test")
            (self.commands / name).symlink_to(path)

    def stand_in(self, name, body="", records=True):
        """Makes a command that records its arguments and then does what the shell text says."""
        record = f'printf \'%s\\n\' "{name} $*" >>"{self.calls}"\n' if records else ""
        path = self.commands / name
        if path.is_symlink():
            path.unlink()
        path.write_text(f"#!{shutil.which('bash')}\n{record}{body}\n", encoding="utf-8")
        path.chmod(path.stat().st_mode | stat.S_IXUSR)

    def run_script(self, *arguments, environment=None, folder=None):
        """Runs a script of the project with nothing but this test's commands in reach."""
        values = {"PATH": str(self.commands), "HOME": str(self.folder), "TMPDIR": str(self.folder)}
        values.update(environment or {})
        return subprocess.run(
            [str(argument) for argument in arguments],
            env=values,
            cwd=folder or self.folder,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
            check=False,
        )

    def recorded(self, name):
        """The recorded calls of a command, without its name."""
        lines = self.calls.read_text().splitlines() if self.calls.exists() else []
        return [line[len(name) + 1 :] for line in lines if line.startswith(name + " ")]


def sample(name):
    """A module of the sample home's. It goes by a name that no test has, and is looked for last."""
    for folder in ("scripts", "scripts/sample"):
        if str(ROOT / folder) not in sys.path:
            sys.path.append(str(ROOT / folder))
    return importlib.import_module(f"sample.{name}")


def package_list(name):
    """One of the lists of scripts/lib/packages.sh, as the shell reads it."""
    script = f'. "{ROOT}/scripts/lib/packages.sh"; echo ${name}'
    output = subprocess.run(["bash", "-c", script], stdout=subprocess.PIPE, text=True, check=True)
    return output.stdout.split()
