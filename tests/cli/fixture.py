"""A home folder made for one test, and the host program run on it."""

import json
import os
import pathlib
import plistlib
import pty
import select
import shutil
import sqlite3
import subprocess
import tempfile
import unittest

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parents[2]
# A bound in seconds that ends what hangs, on the slowest machine.
HANGS = 600
PROGRAM = os.environ.get("BROWSERSWEEP_PROGRAM", str(ROOT / "build/debug/cli/browsersweep"))

BROWSERS = ["quenbySecureBrowser", "tarrowSecureBrowser", "brave", "chromium", "firefox",
            "googleChrome", "microsoftEdge", "orvo", "brellisPrivateBrowser", "opera", "safari",
            "vivaldi", "yandexBrowser"]

COMMANDS = ["browsers", "profiles", "size", "clean", "sites", "forget", "bookmarks",
            "notifications", "doctor"]

KINDS = ["history", "downloads", "icons", "cookies", "siteStorage", "serviceWorkers", "cachedFiles",
         "openTabs", "formData", "settings", "networkState", "predictions"]

CATEGORIES = ["cache", "history", "httpCookies", "flashCookies", "formData", "localStorage"]

# Microseconds since 1601 at noon UTC of a day, as Chromium-based browsers store dates.
NOON_2020_01_01 = (1577880000 + 11644473600) * 1_000_000
NOON_2024_01_01 = (1704110400 + 11644473600) * 1_000_000


def exact(value):
    return {"value": value, "isApproximate": False}


def approximate(value):
    return {"value": value, "isApproximate": True}


def size(items, byte_count):
    return {"itemCount": items, "byteCount": byte_count}


ZERO = size(exact(0), exact(0))


def database(path, *statements):
    path.parent.mkdir(parents=True, exist_ok=True)
    with sqlite3.connect(path) as connection:
        for statement in statements:
            connection.execute(statement)
    connection.close()


def schema_of(command):
    """The schema of a command's document."""
    text = (ROOT / "docs" / "schemas" / f"{command}.schema.json").read_text(encoding="utf-8")
    return json.loads(text)


def problems(document, command):
    """What the schema of the command finds wrong with a document."""
    found = jsonschema.Draft7Validator(schema_of(command)).iter_errors(document)
    return [f"{error.json_path}: {error.message}" for error in found]


def without_items(document):
    """A document of size or clean as far as its figures go."""
    for browser in document["browsers"]:
        browser.pop("freedBytes", None)
        del browser["profiles"]
        for category in browser["categories"]:
            del category["items"]
            category.pop("freedBytes", None)
    return document


def rows(path, query):
    connection = sqlite3.connect(path)
    try:
        return connection.execute(query).fetchall()
    finally:
        connection.close()


def write(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    if isinstance(text, bytes):
        path.write_bytes(text)
    else:
        path.write_text(text, encoding="utf-8")


# What is said of a home that has nothing of a site, or a browser whose sites are not known.
NOTES_ON_SITES = (" was found", "is not known to this version")


class Result:
    def __init__(self, completed):
        self.status = completed.returncode
        self.output = completed.stdout
        self.error = completed.stderr.decode("utf-8")

    @property
    def text(self):
        return self.output.decode("utf-8")

    @property
    def error_without_notes_on_sites(self):
        return "".join(line for line in self.error.splitlines(keepends=True)
                       if not line.rstrip().endswith(NOTES_ON_SITES))


class HostProgramTest(unittest.TestCase):
    """Gives every test a home of its own, with two Chromium profiles."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.mkdtemp(prefix="browsersweep-cli-")
        self.addCleanup(shutil.rmtree, folder)
        self.root = pathlib.Path(folder).resolve()
        self.home = self.root / "home"
        self.support = self.home / "Library" / "Application Support"
        self.caches = self.home / "Library" / "Caches"
        self.temporary = self.root / "tmp"
        self.temporary.mkdir()
        own_home = self.root / "own-home"
        self.environment = {"PATH": os.environ["PATH"], "HOME": str(own_home),
                            "CFFIXED_USER_HOME": str(own_home),  # what counts on macOS
                            "TMPDIR": str(self.temporary), "LC_ALL": "C",
                            "TERM": "xterm", "NO_COLOR": "1"}
        for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]
        own_home.mkdir()
        self.make_home()

    def make_home(self):
        self.profile = self.support / "Chromium" / "Default"
        self.second = self.support / "Chromium" / "Profile 1"
        write(self.support / "Chromium" / "Local State", json.dumps({"profile": {
            "last_used": "Default",
            "last_active_profiles": ["Default"],
            "info_cache": {
                "Default": {"name": "Zoë 日本", "is_consented_primary_account": False},
                "Profile 1": {"name": "Work", "is_consented_primary_account": False}}}}))
        self.history = self.profile / "History"
        database(
            self.history,
            "CREATE TABLE urls (id INTEGER, url TEXT, last_visit_time INTEGER)",
            "INSERT INTO urls VALUES "
            f"(1, 'https://one.example/', {NOON_2020_01_01}),"
            f"(2, 'https://two.example/', {NOON_2024_01_01}),"
            f"(3, 'https://three.test/', {NOON_2024_01_01})")
        self.cookies = self.second / "Cookies"
        database(self.cookies,
                 "CREATE TABLE cookies (host_key TEXT, name TEXT)",
                 "INSERT INTO cookies VALUES ('.one.example', 'a'), ('two.test', 'b')")
        self.cache = self.caches / "Chromium" / "Default"
        write(self.cache / "Cache" / "data_0", b"x" * 1500)
        write(self.cache / "Cache" / "data_1", b"y" * 500)
        write(self.profile / "Bookmarks", json.dumps({"roots": {"bookmark_bar": {
            "children": [{"name": "Ünï", "url": "https://one.example/"},
                         {"url": "https://two.example/"}],
            "name": "bar"}}}))
        write(self.profile / "Preferences", json.dumps({"profile": {"content_settings": {
            "exceptions": {"notifications": {
                "https://push.example:443,*": {"setting": 1, "last_modified": "1"},
                "https://no.example:443,*": {"setting": 2, "last_modified": "1"}}}}}}))

        # Safari always has a profile, and a home without its bookmarks is an error.
        write(self.home / "Library" / "Safari" / "Bookmarks.plist", plistlib.dumps(
            {"WebBookmarkType": "WebBookmarkTypeList", "Children": []}))

    def snapshot(self):
        """Every file of the home with its bytes."""
        return {str(path.relative_to(self.root)): path.read_bytes()
                for path in sorted(self.root.rglob("*")) if path.is_file()}

    def command(self, *arguments, home=True):
        return [PROGRAM, *(["--home", str(self.home)] if home else []), *map(str, arguments)]

    def run_program(self, *arguments, home=True, **options):
        options.setdefault("stdin", subprocess.DEVNULL)
        completed = subprocess.run(self.command(*arguments, home=home), env=self.environment,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False,
                                   timeout=HANGS, **options)
        result = Result(completed)
        if "--json" in arguments and result.output:
            self.checked_document(result.output, *arguments)
        return result

    def checked_document(self, output, *arguments):
        """The JSON document of a run, checked against the schema of its command."""
        found = json.loads(output.decode("utf-8"))
        name = next(a for a in arguments if a in COMMANDS)
        self.assertEqual(problems(found, name), [])
        return found

    def document(self, *arguments, status=0):
        result = self.run_program("--json", *arguments)
        self.assertEqual(result.status, status, result.error)
        return self.checked_document(result.output, *arguments)

    def assert_usage_error(self, *arguments, says=(), home=True):
        before = self.snapshot()
        result = self.run_program(*arguments, home=home)
        self.assertEqual((result.status, result.output), (2, b""), result.error)
        self.assertTrue(result.error.startswith("browsersweep: "), result.error)
        self.assertEqual(result.error.count("\n"), 1, result.error)
        self.assertTrue(result.error.endswith("\n"))
        for part in says:
            self.assertIn(part, result.error)
        self.assertEqual(self.snapshot(), before)

    def run_on_terminal(self, *arguments, answer=None, output_too=False, typed=b""):
        """Runs with a terminal as standard input and error; gives status, output, screen. What is typed
        is so before the program starts; the answer comes after the question."""
        master, slave = pty.openpty()
        os.write(master, typed)
        output = slave if output_too else subprocess.PIPE
        process = subprocess.Popen(self.command(*arguments), env=self.environment, stdin=slave,
                                   stdout=output, stderr=slave)
        os.close(slave)
        screen = self._talk(master, answer)
        written = b"" if output_too else process.stdout.read()
        if not output_too:
            process.stdout.close()
        status = process.wait(timeout=HANGS)
        os.close(master)
        return status, written, screen.decode("utf-8", "replace")

    def _talk(self, master, answer):
        screen = b""
        while True:
            readable, _, _ = select.select([master], [], [], 60)
            self.assertTrue(readable, f"nothing more came after {screen!r}")
            try:
                piece = os.read(master, 4096)
            except OSError:  # the other end is closed
                return screen
            if not piece:
                return screen
            screen += piece
            if answer is not None and b"[y/N] " in screen:
                os.write(master, answer)
                answer = None
