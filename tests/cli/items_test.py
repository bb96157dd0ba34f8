"""What becomes of each item: nothing that was not seen or not deleted is told as a plain zero."""

import os
import plistlib
import shutil
import sqlite3
import struct
import subprocess
import sys
import unittest
from contextlib import closing

from fixture import HANGS, PROGRAM, HostProgramTest, database, rows, write

CHROMIUM = "--browser=chromium"
SAFARI = "--browser=safari"
HISTORY = (CHROMIUM, "--category=history", "--profile=Zoë 日本")
CACHE = (CHROMIUM, "--category=cache", "--profile=Zoë 日本")
COOKIES = (SAFARI, "--category=httpCookies")
NOBODY = 65534


def cookie_file(domain=b"one.example"):
    """A cookie file of Safari with one cookie."""
    texts = [domain, b"name", b"/", b"value"]
    offsets = [56 + sum(len(each) + 1 for each in texts[:index]) for index in range(4)]
    record = struct.pack("<IIIIIIIIIIdd", offsets[3] + 6, 0, 0, 0, *offsets, 0, 0, 1e9, 6e8)
    record += b"".join(each + b"\0" for each in texts)
    page = b"\0\0\1\0" + struct.pack("<III", 1, 16, 0) + record
    return (b"cook" + struct.pack(">II", 1, len(page)) + page + struct.pack(">I", 0)
            + struct.pack(">Q", 0x071720050000004B) + plistlib.dumps({}, fmt=plistlib.FMT_BINARY))


INTERRUPTED = """import os, signal, sqlite3, sys
connection = sqlite3.connect(sys.argv[1], isolation_level=None)
connection.execute("PRAGMA cache_size = 1")
connection.execute("BEGIN IMMEDIATE")
connection.execute("DELETE FROM filling")
connection.execute(f"DELETE FROM {sys.argv[2]}")
connection.execute("INSERT INTO filling VALUES (hex(zeroblob(100000)))")
os.kill(os.getpid(), signal.SIGKILL)"""


class ItemsTest(HostProgramTest):
    """Runs as an ordinary user where root would not be refused."""

    def setUp(self):
        super().setUp()
        self.identity = {}

    def become_ordinary(self):
        if os.geteuid() != 0:
            return
        probe = subprocess.run(["/bin/test", "-x", PROGRAM], user=NOBODY, group=NOBODY,
                               check=False)
        if probe.returncode != 0:
            self.skipTest("another user cannot run the program where it lies")
        for path in (self.root, *self.root.rglob("*")):
            os.chown(path, NOBODY, NOBODY, follow_symlinks=False)
        self.identity = {"user": NOBODY, "group": NOBODY}

    def deny(self, path, mode):
        self.become_ordinary()
        before = path.stat().st_mode
        path.chmod(mode)
        self.addCleanup(path.chmod, before)

    def mark(self, flag, path):
        """Makes a file immutable or append-only, where that can be done."""
        if shutil.which("chattr") is None:
            self.skipTest("the system has no chattr")
        made = subprocess.run(["chattr", f"+{flag}", path], capture_output=True, check=False)
        if made.returncode != 0:
            self.skipTest(f"no right to set attributes of files here: {made.stderr.decode()}")
        self.addCleanup(subprocess.run, ["chattr", f"-{flag}", path], check=False)

    def run_checked(self, *arguments):
        result = self.run_program("--json", *arguments, **self.identity)
        return result, self.checked_document(result.output, *arguments)

    def items(self, document, name=""):
        return [item for browser in document["browsers"] for category in browser["categories"]
                for item in category["items"] if name in item["what"]]

    def check(self, arguments, name, verdict):
        """Runs, and finds the verdict in the document, on standard error and in the status."""
        result, document = self.run_checked(*arguments)
        item = self.items(document, name)[0]
        self.assertEqual(item["verdict"], verdict, result.error)
        self.assertEqual(result.status, 1, result.error)
        self.assertIn(item["what"], result.error)
        self.assertIn("Zoë 日本" if CHROMIUM in arguments else "Safari", result.error)
        return item

    def fill_history(self, count):
        self.history.unlink()
        database(self.history, "CREATE TABLE urls (id INTEGER, url TEXT, last_visit_time INTEGER)")
        connection = sqlite3.connect(self.history)
        connection.executemany("INSERT INTO urls VALUES (?, ?, 1)",
                               ((each, f"https://{each}.example/") for each in range(count)))
        connection.commit()
        connection.close()


class Sizes(ItemsTest):
    def test_items_stand_with_profile_folder_and_file(self):
        result, document = self.run_checked("size", *HISTORY)
        self.assertEqual((result.status, result.error), (0, ""))
        found = self.items(document, "Default/History")[0]
        self.assertEqual(found["size"]["itemCount"], {"value": 3, "isApproximate": False})
        del found["size"]
        self.assertEqual(found, {"profile": "Zoë 日本", "folder": "Default", "detail": None,
                                 "what": str(self.history), "verdict": "measured"})
        self.assertEqual({item["verdict"] for item in self.items(document)
                          if item["what"] != str(self.history)}, {"nothingThere"})

    def test_a_damaged_page_among_five_thousand_rows(self):
        self.fill_history(5000)
        with open(self.history, "r+b") as file:
            file.seek(10 * 4096)
            file.write(b"\xff" * 4096)
        item = self.check(("size", *HISTORY), "Default/History", "notUnderstood")
        self.assertTrue(item["size"] is None or item["size"]["itemCount"]["isApproximate"])
        self.check(("clean", "--yes", *HISTORY), "Default/History", "notUnderstood")

    def test_a_folder_that_may_not_be_entered(self):
        self.deny(self.cache, 0)
        for command in (("size",), ("clean", "--yes")):
            item = self.check((*command, *CACHE), "Caches/Chromium/Default", "couldNotLook")
            figure = item.get("size", item.get("removed"))
            self.assertTrue(figure["itemCount"]["isApproximate"])
            self.assertIn("no permission", item["detail"])

    def test_a_subfolder_that_may_not_be_entered(self):
        write(self.cache / "open" / "file", b"z")
        self.deny(self.cache / "Cache", 0)
        item = self.check(("size", *CACHE), "Caches/Chromium/Default", "couldNotLook")
        self.assertEqual(item["size"]["itemCount"], {"value": 1, "isApproximate": True})
        self.assertEqual(item["what"], str(self.cache / "Cache"))

    def test_a_folder_above_that_may_not_be_entered(self):
        self.deny(self.caches / "Chromium", 0)
        self.check(("size", *CACHE), "Caches/Chromium/Default", "couldNotLook")

    def test_a_cookie_file_that_cannot_be_read_or_understood(self):
        file = self.home / "Library" / "Cookies" / "Cookies.binarycookies"
        for contents in (b"damaged", cookie_file()[:-30], cookie_file(b"caf\xc3\xa9.example")):
            with self.subTest(contents=contents):
                write(file, contents)
                item = self.check(("size", *COOKIES), "Cookies", "notUnderstood")
                self.assertTrue(item["size"]["itemCount"]["isApproximate"])
                self.check(("clean", "--yes", "--outside=2024-01-01..", *COOKIES), "Cookies",
                           "notUnderstood")
                self.assertTrue(file.exists())
                self.check(("clean", "--yes", *COOKIES), "Cookies", "notUnderstood")

    def test_a_cookie_file_that_is_whole_is_measured_and_emptied(self):
        write(self.home / "Library" / "Cookies" / "Cookies.binarycookies", cookie_file())
        for command, verdict in ((("size",), "measured"), (("clean", "--yes"), "emptied")):
            result, document = self.run_checked(*command, *COOKIES)
            self.assertEqual((result.status, result.error), (0, ""))
            self.assertEqual(self.items(document)[0]["verdict"], verdict)

    def test_a_cookie_file_that_may_not_be_read(self):
        file = self.home / "Library" / "Cookies" / "Cookies.binarycookies"
        write(file, cookie_file())
        self.deny(file, 0)
        self.check(("size", *COOKIES), "Cookies", "couldNotLook")

    def test_rows_of_a_database_that_is_held_whole_are_no_zero(self):
        self.fill_history(0)
        holder = sqlite3.connect(self.history, isolation_level=None)
        self.addCleanup(holder.close)
        holder.execute("BEGIN EXCLUSIVE")
        self.check(("size", *HISTORY), "Default/History", "held")


class Cleans(ItemsTest):
    def check_rows_stay(self, *verdicts):
        result, document = self.run_checked("clean", "--yes", *HISTORY)
        item = self.items(document, "Default/History")[0]
        self.assertIn(item["verdict"], verdicts, result.error)
        self.assertEqual(result.status, 1)
        self.assertIn("Chromium, Zoë 日本, History: ", result.error)
        self.assertIn(str(self.history), result.error)
        self.assertNotIn("seems to hold", result.error)
        self.assertEqual(rows(self.history, "SELECT count(*) FROM urls"), [(3,)])

    def test_a_database_that_may_not_be_written(self):
        self.deny(self.history, 0o444)
        self.check_rows_stay("couldNotDelete")

    def test_a_database_in_a_folder_that_may_not_be_written(self):
        self.deny(self.profile, 0o555)
        self.check_rows_stay("couldNotDelete")

    def test_a_database_that_is_immutable_or_append_only(self):
        for flag in "ia":
            with self.subTest(flag=flag):
                self.mark(flag, self.history)
                try:
                    self.check_rows_stay("couldNotDelete")
                finally:
                    subprocess.run(["chattr", f"-{flag}", self.history], check=False)

    def test_rows_that_a_constraint_keeps(self):
        self.history.unlink()
        database(self.history, "PRAGMA foreign_keys=ON",
                 "CREATE TABLE urls (id INTEGER PRIMARY KEY, url TEXT, last_visit_time INTEGER)",
                 "CREATE TRIGGER keep BEFORE DELETE ON urls BEGIN "
                 "SELECT RAISE(ABORT, 'rows are kept'); END",
                 "INSERT INTO urls VALUES (1, 'a', 1), (2, 'b', 2), (3, 'c', 3)")
        result, document = self.run_checked("clean", "--yes", *HISTORY)
        left = rows(self.history, "SELECT count(*) FROM urls")[0][0]
        item = self.items(document, "Default/History")[0]
        self.assertEqual(item["verdict"] == "emptied", left == 0, result.error)
        self.assertEqual(result.status, int(left > 0))

    @unittest.skipIf(sys.platform == "darwin", "root is refused nothing there")
    def test_one_file_that_cannot_be_deleted_under_ignore_errors(self):
        for number in range(100):
            write(self.cache / "Cache" / f"file{number}", b"x")
        self.deny(self.cache / "Cache", 0o555)
        item = self.check(("clean", "--yes", "--ignore-errors", *CACHE), "Default",
                          "couldNotDelete")
        self.assertIn("102 of 102 are still there", item["detail"])
        self.assertIn("no permission", item["detail"])

    def test_an_immutable_file_under_ignore_errors(self):
        for number in range(100):
            write(self.cache / "Cache" / f"file{number}", b"x")
        self.mark("i", self.cache / "Cache" / "file50")
        result, document = self.run_checked("clean", "--yes", "--ignore-errors", *CACHE)
        self.assertEqual(result.status, 1, result.error)
        item = self.items(document)[0]
        self.assertIn(item["verdict"], ("partlyEmptied", "couldNotDelete"))
        self.assertEqual(item["removed"]["itemCount"]["value"],
                         102 - len(list(self.cache.rglob("*[0-9]"))))
        self.assertTrue(item["removed"]["itemCount"]["isApproximate"])

    def test_what_the_disk_gained_stands_beside_what_was_removed(self):
        write(self.cache / "Cache" / "large", b"x" * 1_000_000)
        files = [path for path in self.cache.rglob("*") if path.is_file()]
        occupied = sum(path.stat().st_blocks * 512 for path in files)
        _, document = self.run_checked("clean", "--yes", *CACHE)
        self.assertEqual(self.items(document)[0]["freedBytes"], occupied)
        browser = document["browsers"][0]
        self.assertEqual(browser["freedBytes"], occupied)
        self.assertEqual(browser["categories"][0]["freedBytes"], occupied)

    def test_rows_free_nothing_on_the_disk(self):
        _, document = self.run_checked("clean", "--yes", *HISTORY)
        item = self.items(document, "Default/History")[0]
        self.assertEqual((item["verdict"], item["freedBytes"]), ("emptied", 0))
        self.assertEqual(item["removed"]["itemCount"]["value"], 3)

    def test_a_dry_run_frees_nothing(self):
        _, document = self.run_checked("clean", "--dry-run", CHROMIUM)
        self.assertEqual({item["freedBytes"] for item in self.items(document)}, {0})


class Going(ItemsTest):
    """What one item's failure does to the others."""

    def setUp(self):
        super().setUp()
        self.other = self.second / "History"
        shutil.copy(self.history, self.other)
        write(self.history, b"no database" * 100)
        self.category = (CHROMIUM, "--category=history")

    def test_the_first_error_ends_its_category_and_says_so(self):
        result, document = self.run_checked("clean", "--yes", *self.category)
        self.assertEqual(result.status, 1)
        self.assertEqual(self.items(document, str(self.other))[0]["verdict"], "leftOut")
        self.assertIn("this ended the category", result.error)
        self.assertNotIn(str(self.other), result.error)
        self.assertEqual(rows(self.other, "SELECT count(*) FROM urls"), [(3,)])

    def test_keep_going_handles_every_item(self):
        shutil.copy(self.history, self.profile / "Favicons")
        result, document = self.run_checked("clean", "--yes", "--keep-going", *self.category)
        self.assertEqual(result.status, 1)
        self.assertEqual(self.items(document, str(self.other))[0]["verdict"], "emptied")
        self.assertIn(str(self.history), result.error)
        self.assertIn(str(self.profile / "Favicons"), result.error)
        self.assertEqual(rows(self.other, "SELECT count(*) FROM urls"), [(0,)])
        category = document["browsers"][0]["categories"][0]
        self.assertEqual(category["removed"]["itemCount"]["value"], 3)
        self.assertIsNotNone(category["error"])

    def test_keep_going_measures_every_item(self):
        result, document = self.run_checked("size", "--keep-going", *self.category)
        self.assertEqual(result.status, 1)
        self.assertEqual(document["total"]["itemCount"]["value"], 3)

    def test_a_failed_category_tells_what_went(self):
        shutil.copy(self.other, self.history)
        holder = sqlite3.connect(self.other, isolation_level=None)
        self.addCleanup(holder.close)
        holder.execute("BEGIN EXCLUSIVE")
        result, document = self.run_checked("clean", "--yes", *self.category)
        self.assertEqual(result.status, 1)
        category = document["browsers"][0]["categories"][0]
        self.assertIsNone(category["removed"])
        first = self.items(document, str(self.history))[0]
        self.assertEqual((first["verdict"], first["removed"]["itemCount"]["value"]), ("emptied", 3))
        self.assertEqual(self.items(document, str(self.other))[0]["verdict"], "held")


@unittest.skipIf(os.geteuid() != 0 or
                 subprocess.run(["unshare", "--mount", "true"], check=False).returncode != 0,
                 "needs the right to mount")
class FullTemporaryFolder(ItemsTest):
    def leave_log(self):
        """As a browser that was killed: the log lies there without its index."""
        written = self.root / "written"
        shutil.copyfile(self.history, written)
        connection = sqlite3.connect(written)
        connection.execute("PRAGMA journal_mode = WAL")
        connection.execute("INSERT INTO urls VALUES (1000, 'https://log.example/', 1)")
        connection.commit()
        for end in ("", "-wal"):
            shutil.copyfile(f"{written}{end}", f"{self.history}{end}")
        connection.close()

    def test_a_database_is_cleaned_all_the_same(self):
        self.fill_history(5000)
        completed = subprocess.run(
            ["unshare", "--mount", "sh", "-c",
             'mount -t tmpfs -o size=64k none "$1" && shift && exec "$@"', "sh", self.temporary,
             *self.command("--json", "clean", "--yes", *HISTORY)],
            env=self.environment, capture_output=True, check=False, timeout=HANGS)
        self.assertEqual(completed.returncode, 0, completed.stderr)
        document = self.checked_document(completed.stdout, "clean")
        item = self.items(document, "Default/History")[0]
        self.assertEqual((item["verdict"], item["removed"]["itemCount"]["value"]),
                         ("emptied", 5000))
        self.assertEqual(rows(self.history, "SELECT count(*) FROM urls"), [(0,)])


    def test_a_database_with_a_log_is_cleaned_all_the_same(self):
        self.fill_history(100)
        self.leave_log()
        completed = subprocess.run(
            ["unshare", "--mount", "sh", "-c",
             'mount -t tmpfs -o size=8k none "$1" && shift && exec "$@"', "sh", self.temporary,
             *self.command("--json", "clean", "--yes", *HISTORY)],
            env=self.environment, capture_output=True, check=False, timeout=HANGS)
        item = self.items(self.checked_document(completed.stdout, "clean"), "Default/History")[0]
        self.assertEqual((item["verdict"], rows(self.history, "SELECT count(*) FROM urls")),
                         ("emptied", [(0,)]), completed.stderr)

    def run_without_room(self, *arguments):
        return subprocess.run(
            ["unshare", "--mount", "sh", "-c",
             'mount -t tmpfs -o size=8k none "$1" && shift && exec "$@"', "sh", self.temporary,
             *self.command("--json", *arguments)],
            env=self.environment, capture_output=True, check=False, timeout=HANGS)

    def interrupt(self, file, table):
        """Kills a writer in the middle of deleting all rows; how many there were."""
        with closing(sqlite3.connect(file, isolation_level=None)) as connection:
            connection.execute("PRAGMA journal_mode = DELETE")
            connection.execute("CREATE TABLE filling (text)")
            connection.execute("INSERT INTO filling VALUES (hex(zeroblob(100000)))")
            count = connection.execute(f"SELECT count(*) FROM {table}").fetchone()[0]
        subprocess.run([sys.executable, "-c", INTERRUPTED, file, table], check=False, timeout=HANGS)
        self.assertGreater(os.path.getsize(f"{file}-journal"), 512)
        self.assertGreater(count, 0)
        return count

    def of_interrupted(self):
        """Options and file of a database of each browser, with its rows."""
        firefox, safari = self.support / "Firefox", self.home / "Library/Safari/History.db"
        write(firefox / "profiles.ini", b"[Profile0]\nName=work\nIsRelative=1\nPath=Profiles/work\n")
        (firefox / "Profiles/work").mkdir(parents=True)
        places = firefox / "Profiles/work/places.sqlite"
        database(places, "CREATE TABLE moz_places (id INTEGER PRIMARY KEY, url TEXT,"
                 " last_visit_date INTEGER, foreign_count INTEGER)",
                 "CREATE TABLE moz_historyvisits (place_id INTEGER, visit_date INTEGER)",
                 "INSERT INTO moz_historyvisits VALUES (1, 1), (1, 2)")
        database(safari, "CREATE TABLE history_items (id INTEGER PRIMARY KEY, url TEXT)",
                 "CREATE TABLE history_visits (id INTEGER, history_item INTEGER, visit_time REAL)",
                 "INSERT INTO history_items VALUES (1, 'https://one.example/')",
                 "INSERT INTO history_visits VALUES (1, 1, 1), (2, 1, 2)")
        for options, file, table in (
                (HISTORY, self.history, "urls"),
                (("--browser=firefox", "--category=history"), places, "moz_historyvisits"),
                ((SAFARI, "--category=history"), safari, "history_visits")):
            with self.subTest(file=file):
                yield options, file, table, self.interrupt(file, table)

    def test_what_was_not_finished_is_not_counted_where_it_lies(self):
        for options, file, _, _ in self.of_interrupted():
            completed = self.run_without_room("size", *options)
            item = self.items(self.checked_document(completed.stdout, "size"), f"/{file.name}")[0]
            self.assertEqual((completed.returncode, item["verdict"], item["size"]),
                             (1, "couldNotLook", None), completed.stderr)
            self.assertTrue(os.path.getsize(f"{file}-journal"))

    def test_a_database_with_an_unfinished_journal_is_cleaned_all_the_same(self):
        for options, file, table, count in self.of_interrupted():
            completed = self.run_without_room("clean", "--yes", *options)
            item = self.items(self.checked_document(completed.stdout, "clean"), f"/{file.name}")[0]
            self.assertEqual((completed.returncode, item["verdict"]), (0, "emptied"),
                             completed.stderr)
            removed = item["removed"]["itemCount"]
            self.assertTrue(removed["isApproximate"])
            self.assertGreaterEqual(removed["value"], count)
            self.assertEqual(rows(file, f"SELECT count(*) FROM {table}"), [(0,)])
            self.assertFalse(os.path.exists(f"{file}-journal"))

    def test_what_was_not_finished_is_not_forgotten_and_that_is_told(self):
        count = self.interrupt(self.history, "urls")
        completed = self.run_without_room("forget", "--all", "--yes", CHROMIUM)
        self.assertEqual((completed.returncode, rows(self.history, "SELECT count(*) FROM urls")),
                         (1, [(count,)]), completed.stderr)
        self.assertIn(str(self.history), completed.stderr.decode())

    def test_on_a_full_disk_what_stays_is_told(self):
        """The home itself lies on a disk without room: a journal cannot be made there."""
        self.fill_history(5000)
        completed = subprocess.run(
            ["unshare", "--mount", "sh", "-c",
             'cp -a "$1" "$2" && mount -t tmpfs -o size=1m none "$1" && cp -a "$2/." "$1" && '
             '{ cat /dev/zero >"$1/filling" 2>/dev/null; home=$1; copy=$2; shift 2; "$@"; '
             'status=$?; cp "$home/Library/Application Support/Chromium/Default/History" '
             '"$copy/after"; exit $status; }', "sh", self.home, self.root / "copy",
             *self.command("--json", "clean", "--yes", *HISTORY)],
            env=self.environment, capture_output=True, check=False, timeout=HANGS)
        item = self.items(self.checked_document(completed.stdout, "clean"), "Default/History")[0]
        left = rows(self.root / "copy" / "after", "SELECT count(*) FROM urls")[0][0]
        self.assertEqual(left, 5000)
        self.assertEqual((completed.returncode, item["verdict"]), (1, "couldNotDelete"),
                         completed.stderr)
        self.assertIn(str(self.history), completed.stderr.decode())


@unittest.skipUnless(sys.platform == "linux" and shutil.which("cc"), "needs a compiler to stand in")
@unittest.skipIf("ASAN_OPTIONS" in os.environ, "the sanitizer must be loaded first")
class Protected(ItemsTest):
    """A folder that the system protects, as macOS does where there is no Full Disk Access."""

    STAND_IN = r"""
        #define _GNU_SOURCE
        #include <dlfcn.h>
        #include <errno.h>
        #include <fcntl.h>
        #include <stdarg.h>
        #include <string.h>
        static int isProtected(const char *path) {
            return strstr(path, "Library/Safari") != 0;
        }
        #define STAND_IN(name)                                              \
            int name(const char *path, int flags, ...) {                    \
                va_list more;                                               \
                va_start(more, flags);                                      \
                const int mode = va_arg(more, int);                         \
                va_end(more);                                               \
                if (isProtected(path)) {                                    \
                    errno = EPERM;                                          \
                    return -1;                                              \
                }                                                           \
                int (*real)(const char *, int, ...) = dlsym(RTLD_NEXT, #name); \
                return real(path, flags, mode);                             \
            }
        STAND_IN(open)
        STAND_IN(open64)
    """

    def test_full_disk_access_is_asked_for_once_and_before_anything_else(self):
        source, library = self.root / "stand_in.c", self.root / "stand_in.so"
        write(source, self.STAND_IN)
        subprocess.run(["cc", "-shared", "-fPIC", "-o", library, source, "-ldl"], check=True)
        self.environment["LD_PRELOAD"] = str(library)
        for command in (("size",), ("clean", "--yes")):
            result = self.run_program(*command, SAFARI)
            self.assertEqual(result.status, 1, result.error)
            self.assertTrue(result.error.startswith("browsersweep: macOS guards "), result.error)
            self.assertEqual(result.error.count("Full Disk Access, in the privacy settings.\n"), 1)
        self.assertNotIn("Full Disk Access, in the",
                         self.run_program("size", CHROMIUM).error)
