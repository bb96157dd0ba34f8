"""Lets WebKitGTK leave the traces of the planted sites, and asks it what it finds of them.

Its interface 6.0 lays out what scripts keep as Safari does, the older one, 4.1, as Safari did before.
"""

from __future__ import annotations

import json
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from browser import BrowserError
from planted import FRAME, GONE, KEPT, MARKED, Site
from plantedchromium import script
from plantedweb import PlantedWeb

DRIVER = Path(__file__).with_name("webkitdriver.py")
TIMEOUT = 400.0
VERSIONS = ("6.0", "4.1")
# A program that finds the engine's interface, so that a test need not load it into its own process.
PROBE = "import gi, sys; gi.require_version({'6.0': 'WebKit', '4.1': 'WebKit2'}[sys.argv[1]], sys.argv[1])"
# Safari has files of its own for scripts; the engine for other systems cannot write to them.
MAY_FAIL = {"files"}
# A text, so that no page loads what was cached.
QUIET = "/dict/ask"
# What a page loads from the cache, if it is there: whether the server is asked is for the server to say.
CACHED = "/qzreso{word}.css"
FETCH = "await (await fetch('%s', {cache: 'force-cache'})).text();"


def python() -> str:
    """The system's own, which the packages of the engine are made for."""
    return "/usr/bin/python3" if os.access("/usr/bin/python3", os.X_OK) else sys.executable


def reason_against(version: str) -> str:
    """Why the engine cannot be used here; empty where it can."""
    if not shutil.which("xvfb-run"):
        return "xvfb-run is not installed"
    done = subprocess.run([python(), "-c", PROBE, version], capture_output=True, text=True, check=False)
    return "" if done.returncode == 0 else f"WebKitGTK {version} is not installed"


def function(name: str) -> str:
    """The function in a script, without the remarks before it."""
    source = script(name)
    return source[source.index("(async"):].strip()


class Engine:
    """A folder with the engine's data and caches."""

    def __init__(self, version: str, folder: Path, web: PlantedWeb) -> None:
        self.data, self.cache = folder / "data", folder / "cache"
        self._version, self._web = version, web

    def run(self, visits: list[dict]) -> list:
        job = {"version": self._version, "data": str(self.data), "cache": str(self.cache),
               "port": self._web.port, "visits": visits}
        with tempfile.TemporaryDirectory(prefix="browsersweep-e2e-") as name:
            scratch = Path(name)
            (scratch / "run").mkdir(mode=0o700)
            done = subprocess.run(
                ["xvfb-run", "-a", python(), str(DRIVER)], input=json.dumps(job), capture_output=True,
                text=True, timeout=TIMEOUT, check=False,
                env={"PATH": os.environ["PATH"], "HOME": name, "XDG_RUNTIME_DIR": str(scratch / "run"),
                     # It loads nothing but these sites, and the sandbox needs sockets with short names.
                     "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS": "1",
                     "GIO_USE_VFS": "local", "GSK_RENDERER": "cairo", "LC_ALL": "C.UTF-8",
                     "WEBKIT_DISABLE_COMPOSITING_MODE": "1", "DBUS_SESSION_BUS_ADDRESS": "disabled:",
                     "GTK_A11Y": "none", "NO_AT_BRIDGE": "1"})
        results = json.loads(done.stdout or "[]")
        if len(results) != len(visits):
            raise BrowserError(f"WebKitGTK {self._version}: {results} {done.stderr[-2000:]}")
        return results

    def plant(self) -> None:
        visits = []
        for site in (GONE, KEPT, FRAME, MARKED):
            for name in ("0", "1", "frame") if site in (GONE, KEPT) else ("0", "1"):
                visits.append({"address": f"{site.origin}/qzpath{site.word}/{name}?q=qzquer{site.word}",
                               "script": "return {}"})
            visits.append({"address": f"{site.origin}/qzpath{site.word}/plant",
                           "script": f"return await {function('plant.js')}({json.dumps(site.word)})"})
        for visit, failed in zip(visits, self.run(visits)):
            if set(failed) - MAY_FAIL:
                raise BrowserError(f"{visit['address']} could not plant everything: {failed}")

    def ask(self, *sites: Site) -> dict:
        """What the pages of the sites find, and whether the engine has a cached file of theirs."""
        cached = {site: CACHED.replace("{word}", site.word) for site in sites}
        self._web.forget_served()
        found = self.run([{"address": f"{site.origin}{QUIET}",
                           "script": FETCH % cached[site]
                           + f"return await {function('ask.js')}({json.dumps(site.word)});"}
                          for site in sites])
        return {site.word: {**told, "isCached": not self._web.has_served(site, cached[site])}
                for site, told in zip(sites, found)}
