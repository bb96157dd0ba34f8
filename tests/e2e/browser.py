"""What both browsers share: where their data is, how they are found, started and stopped.

The browsers run with a throw-away HOME, so that nothing but Library/ is written in the home under
test.
"""

from __future__ import annotations

import contextlib
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from collections.abc import Iterator
from pathlib import Path

# Only what never ends is meant to reach these: beside other tests a browser may need a minute to answer.
START_TIMEOUT = CALL_TIMEOUT = QUIT_TIMEOUT = 240.0
STOP_TIMEOUT = 240.0

# As ps tells them: stopped, traced, ended, gone.
STOPPED = "TtZX"

CHROMIUM_NAMES = ("chromium", "chromium-browser", "google-chrome-stable", "google-chrome")
FIREFOX_NAMES = ("firefox-esr", "firefox")


class BrowserError(Exception):
    """A browser is missing, does not start, or answers with an error."""


def find_browser(family: str) -> tuple[str, str]:
    """The path and version text of an installed browser of the family."""
    names = CHROMIUM_NAMES if family == "chromium" else FIREFOX_NAMES
    for name in names:
        path = shutil.which(name)
        if path:
            return path, browser_version(path)
    raise BrowserError(f"no {family} found: none of {', '.join(names)} is on PATH "
                       f"(Debian: apt-get install {names[0]})")


def browser_version(path: str) -> str:
    with tempfile.TemporaryDirectory(prefix="browsersweep-e2e-") as home:
        done = subprocess.run([path, "--version"], capture_output=True, text=True, timeout=60,
                              env={**os.environ, "HOME": home, "CFFIXED_USER_HOME": home}, check=False)
    text = done.stdout.strip()
    if done.returncode or not text:
        raise BrowserError(f"{path} --version failed: {done.stderr.strip()[-300:]}")
    return text


class Layout:
    """Where the browsers keep their data under a home folder on macOS."""

    def __init__(self, home: Path) -> None:
        self.home = Path(home).resolve()
        self.application_support = self.home / "Library" / "Application Support"
        self.caches = self.home / "Library" / "Caches"
        self.chromium = self.application_support / "Chromium"
        self.firefox = self.application_support / "Firefox"
        self.firefox_caches = self.caches / "Firefox"
        self.downloads = self.home / "Downloads"

    def chromium_profiles(self) -> list[str]:
        """The profile folder names that "Local State" lists."""
        state = self.chromium / "Local State"
        if not state.is_file():
            return []
        return sorted(json.loads(state.read_text("utf-8"))["profile"]["info_cache"])

    def firefox_profiles(self) -> list[tuple[str, Path]]:
        """(name, folder) of the relative profiles that "profiles.ini" lists."""
        ini = self.firefox / "profiles.ini"
        found, current = [], {}
        lines = ini.read_text("utf-8").splitlines() if ini.is_file() else []
        for line in lines + ["["]:
            if line.startswith("["):
                if current.get("IsRelative") == "1" and "Name" in current:
                    found.append((current["Name"], self.firefox / current["Path"]))
                current = {}
            elif "=" in line:
                key, value = line.split("=", 1)
                current[key] = value
        return found


@contextlib.contextmanager
def process_environment(layout: Layout) -> Iterator[dict[str, str]]:
    """The environment of a browser process, with a throw-away HOME.

    Chromium keeps the cache of a profile under XDG_CONFIG_HOME at the same relative path under
    XDG_CACHE_HOME, which is exactly what it does with Application Support and Caches on macOS.
    Firefox does the same with ~/.mozilla/firefox and ~/.cache/mozilla/firefox; there the folders
    are links into Library.
    """
    for folder in (layout.application_support, layout.caches):
        folder.mkdir(parents=True, exist_ok=True)
    # Beside the home, which is removed later: Chromium's crash handler outlives the browser and
    # may write here again.
    scratch = Path(tempfile.mkdtemp(prefix="browser-", dir=layout.home.parent))
    try:
        layout.firefox.mkdir(exist_ok=True)
        layout.firefox_caches.mkdir(exist_ok=True)
        for link, target in ((scratch / ".mozilla" / "firefox", layout.firefox),
                             (scratch / ".cache" / "mozilla" / "firefox", layout.firefox_caches)):
            link.parent.mkdir(parents=True)
            link.symlink_to(target, target_is_directory=True)
        (scratch / "run").mkdir(mode=0o700)
        keep = {key: value for key, value in os.environ.items()
                if key in ("PATH", "LANG", "LC_ALL", "TZ", "LD_LIBRARY_PATH", "USER", "LOGNAME")}
        yield {**keep, "HOME": str(scratch), "CFFIXED_USER_HOME": str(scratch),
               "XDG_RUNTIME_DIR": str(scratch / "run"),
               "MOZ_LEGACY_HOME": "1", "MOZ_CRASHREPORTER_DISABLE": "1",
               "DBUS_SESSION_BUS_ADDRESS": "disabled:"}
    finally:
        shutil.rmtree(scratch, ignore_errors=True)
        for folder in (layout.firefox, layout.firefox_caches):
            with contextlib.suppress(OSError):
                folder.rmdir()


@contextlib.contextmanager
def frozen(process: subprocess.Popen) -> Iterator[None]:
    """Hold a child process still, and those it started, so that no file changes meanwhile.

    The process must lead a process group of its own.
    """
    os.killpg(process.pid, signal.SIGSTOP)
    try:
        wait_until_still(process.pid)
        yield
    finally:
        os.killpg(process.pid, signal.SIGCONT)


def kill(process: subprocess.Popen) -> None:
    """Kill a child process that leads a process group, and those it started: a file may be locked for as
    long as one of them has not ended."""
    os.killpg(process.pid, signal.SIGKILL)
    process.wait()
    wait_until_still(process.pid)


def wait_until_still(group: int) -> None:
    """Wait until a process group that was stopped or killed has come to that."""
    deadline = time.monotonic() + STOP_TIMEOUT
    while runs_on(group):
        if time.monotonic() > deadline:
            raise BrowserError(f"process group {group} does not stop")
        time.sleep(0.01)


def runs_on(group: int) -> bool:
    """Whether a thread of the process group still works: one that is told to stop does so when its
    system call ends, such as the writing of a file."""
    threads = ["-L"] if sys.platform == "linux" else []
    listed = subprocess.run(["ps", "-e", *threads, "-o", "pgid=", "-o", "stat="], check=True,
                            stdout=subprocess.PIPE, text=True).stdout
    states = (line.split() for line in listed.splitlines())
    return any(int(owner) == group and state[0] not in STOPPED for owner, state in states)


def stop_process(process: subprocess.Popen) -> None:
    """Make sure that our own child process is gone."""
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(10)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


class RunningBrowser:
    """A browser process on one profile of a home folder; a context manager.

    A family starts `self.process` with `self.environment`, and says how one connects to it, asks it
    to end, and lets go of what was needed to talk to it.
    """

    process: subprocess.Popen

    def __init__(self, layout: Layout) -> None:
        self._resources = contextlib.ExitStack()
        self.environment = self._resources.enter_context(process_environment(layout))
        self.exit_status: int | None = None

    def __enter__(self):
        try:
            self._connect()
        except (BrowserError, OSError):
            self._give_up()
            raise
        return self

    def __exit__(self, kind, *_) -> None:
        try:
            if kind is None:
                self.quit()
        finally:
            self._give_up()

    def quit(self) -> None:
        """Close the browser as its user would and wait until it has written its files."""
        with contextlib.suppress(BrowserError, OSError):
            self._ask_to_quit()
        try:
            self.exit_status = self.process.wait(QUIT_TIMEOUT)
        except subprocess.TimeoutExpired:
            raise BrowserError(f"{type(self).__name__} did not end as it was asked to") from None

    def _give_up(self) -> None:
        stop_process(self.process)
        self.exit_status = self.process.returncode
        self._let_go()
        self._resources.close()

    def _connect(self) -> None:
        raise NotImplementedError

    def _ask_to_quit(self) -> None:
        raise NotImplementedError

    def _let_go(self) -> None:
        raise NotImplementedError
