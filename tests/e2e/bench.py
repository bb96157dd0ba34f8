"""What every test works with: a browser, the home it made, and the program under test."""

import hashlib
import json
import os
import shutil
import subprocess
import tempfile
from contextlib import contextmanager
from dataclasses import dataclass, field
from pathlib import Path

import counts
from browser import Layout
from counts import Profile

RUN_TIMEOUT = 600.0


@dataclass(frozen=True)
class Bench:
    """One browser, the home it made, and the program under test."""

    program: Path
    family: str
    binary: str
    original: Path
    scratch: Path
    environment: dict[str, str] = field(default_factory=dict)

    @contextmanager
    def copy(self):
        with tempfile.TemporaryDirectory(prefix="home-", dir=self.scratch) as folder:
            home = Path(folder).resolve()
            shutil.copytree(self.original / "Library", home / "Library", symlinks=True)
            (home / "Downloads").mkdir()
            yield Layout(home)

    def run(self, layout: Layout, *arguments: str,
            zone: str = "UTC") -> subprocess.CompletedProcess:
        """Run the program with a temporary folder of its own, which it has to leave empty."""
        with tempfile.TemporaryDirectory(prefix="tmp-", dir=self.scratch) as temporary:
            done = subprocess.run(
                [str(self.program), "--home", str(layout.home), *arguments,
                 "--browser", self.family],
                env={**os.environ, **self.environment, "TMPDIR": temporary, "TZ": zone}, stdin=subprocess.DEVNULL,
                capture_output=True, text=True, timeout=RUN_TIMEOUT, check=False)
            same(os.listdir(temporary), [], "left behind in TMPDIR")
        return done

    def report(self, layout: Layout, *arguments: str, zone: str = "UTC") -> dict:
        done = self.run(layout, *arguments, "--json", zone=zone)
        same((done.returncode, done.stderr), (0, ""), f"browsersweep {' '.join(arguments)}")
        return counts.in_fixed_order(counts.figures_of(json.loads(done.stdout)))

    def clean(self, layout: Layout, *arguments: str) -> dict:
        """Forced, because a browser of somebody else may be running on this machine."""
        return self.report(layout, "clean", "--yes", "--force", *arguments)

    def profiles(self, layout: Layout, zone: str = "UTC") -> list[Profile]:
        return counts.profiles(layout, self.family, zone)


def same(got: object, wanted: object, what: str) -> None:
    if got != wanted:
        raise AssertionError(f"{what}:\n    got    {got!r:.3000}\n    wanted {wanted!r:.3000}")


def check(holds: bool, what: str) -> None:
    if not holds:
        raise AssertionError(what)


def fingerprints(folder: Path) -> dict[str, str]:
    """Every entry below the folder: its rights, kind and content, and a file's time of change."""
    found = {}
    for path in sorted(folder.rglob("*")):
        name, status = str(path.relative_to(folder)), path.lstat()
        if path.is_symlink():
            found[name] = f"link {os.readlink(path)}"
        elif path.is_file():
            found[name] = (f"{status.st_mode:o} {status.st_mtime_ns} "
                           + hashlib.sha256(path.read_bytes()).hexdigest())
        else:
            found[name] = f"{status.st_mode:o}"
    return found


def differences(before: dict[str, str], after: dict[str, str]) -> list[str]:
    return sorted(name for name in before.keys() | after.keys()
                  if before.get(name) != after.get(name))
