"""The program at work: the question, running browsers, terminals, signals, failing outputs."""

import fcntl
import os
import pty
import shutil
import signal
import socket
import sqlite3
import subprocess
import sys
import unittest

from fixture import PROGRAM, HostProgramTest, database, exact, rows, write

CHROMIUM = "--browser=chromium"


class Question(HostProgramTest):
    def test_nothing_is_deleted_without_a_yes(self):
        before = self.snapshot()
        for answer in (b"n\n", b"\n", b"yess\n", b"\x04"):
            with self.subTest(answer=answer):
                status, output, screen = self.run_on_terminal("clean", CHROMIUM, answer=answer)
                self.assertEqual((status, output), (1, b""))
                self.assertIn("To be removed", screen)
                self.assertIn("nothing was deleted", screen)
                self.assertEqual(self.snapshot(), before)

    def test_a_yes_deletes(self):
        for answer in (b"y\n", b"yes\n"):
            with self.subTest(answer=answer):
                self.make_cache_file()
                status, output, _ = self.run_on_terminal("clean", CHROMIUM, answer=answer)
                self.assertEqual(status, 0)
                self.assertIn(b"Removed", output)
                self.assertEqual(list(self.cache.rglob("data_*")), [])

    def make_cache_file(self):
        write(self.cache / "data_9", b"z")

    def test_under_json_the_question_is_on_standard_error(self):
        status, output, screen = self.run_on_terminal("--json", "clean", CHROMIUM, answer=b"y\n")
        self.assertEqual(status, 0)
        self.assertIs(self.checked_document(output, "clean")["dryRun"], False)
        self.assertIn("Delete this? [y/N]", screen)

    def test_what_was_typed_before_the_question_is_no_answer(self):
        before = self.snapshot()
        for command in (("clean", CHROMIUM), ("forget", "one.example", CHROMIUM)):
            status, output, screen = self.run_on_terminal(*command, typed=b"y\n", answer=b"n\n")
            self.assertEqual((status, output), (1, b""), screen)
            self.assertIn("nothing was deleted", screen)
            self.assertEqual(self.snapshot(), before)

    def test_yes_and_dry_run_ask_nothing(self):
        for option in ("--dry-run", "--yes"):
            _, _, screen = self.run_on_terminal("clean", CHROMIUM, option)
            self.assertNotIn("Delete this?", screen)


class Running(HostProgramTest):
    def lock(self, target):
        path = self.support / "Chromium" / "SingletonLock"
        if path.is_symlink():
            path.unlink()
        path.symlink_to(target)

    def ended_process(self):
        process = subprocess.Popen([sys.executable, "-c", ""])
        process.wait()
        return process.pid

    def test_a_live_lock_refuses_the_clean_before_anything_is_deleted(self):
        self.lock(f"{socket.gethostname()}-{os.getpid()}")
        before = self.snapshot()
        result = self.run_program("clean", "--yes")
        self.assertEqual((result.status, result.output), (1, b""))
        self.assertEqual(
            result.error, "browsersweep: Chromium seems to be running (its data folder is locked); "
                          "nothing was deleted. Quit it, or add --force.\n")
        self.assertEqual(self.snapshot(), before)

    def test_a_lock_of_another_machine_counts_as_live(self):
        self.lock(f"not-{socket.gethostname()}-{self.ended_process()}")
        self.assertEqual(self.run_program("clean", "--yes").status, 1)

    def test_force_goes_on(self):
        self.lock(f"{socket.gethostname()}-{os.getpid()}")
        self.assertEqual(self.run_program("clean", "--yes", "--force").status, 0)
        self.assertEqual(rows(self.history, "SELECT count(*) FROM urls"), [(0,)])

    def test_stale_and_foreign_locks_do_not_count(self):
        for target in (f"{socket.gethostname()}-{self.ended_process()}", "nonsense", "host-", "-1x",
                       "host-0"):
            with self.subTest(target=target):
                self.lock(target)
                self.assertEqual(self.run_program("clean", "--yes").status, 0)

    def test_only_selected_browsers_count(self):
        self.lock(f"{socket.gethostname()}-{os.getpid()}")
        self.assertEqual(self.run_program("clean", "--yes", "--browser=brave").status, 0)

    def test_data_that_may_be_cleaned_under_a_running_browser_is_cleaned(self):
        self.lock(f"{socket.gethostname()}-{os.getpid()}")
        self.assertEqual(self.run_program("clean", "--yes", "--category=flashCookies").status, 0)

    def test_sizes_and_dry_runs_do_not_mind(self):
        self.lock(f"{socket.gethostname()}-{os.getpid()}")
        self.assertEqual(self.run_program("size").status, 0)
        self.assertEqual(self.run_program("clean", "--dry-run").status, 0)


class Streams(HostProgramTest):
    def test_progress_is_shown_on_a_terminal_alone(self):
        result = self.run_program("size")
        self.assertEqual((result.status, result.error), (0, ""))
        status, output, screen = self.run_on_terminal("size")
        self.assertEqual(status, 0)
        self.assertIn("Measuring Chromium: History", screen)
        self.assertTrue(screen.endswith("\r\x1b[K"), screen)
        self.assertEqual(output, result.output)

    def test_the_line_of_progress_stands_before_anything_is_read(self):
        local_state = self.support / "Chromium" / "Local State"
        local_state.unlink()
        os.mkfifo(local_state)
        screen = self.screen_of_a_blocked_run("size", CHROMIUM)
        self.assertIn("Measuring Chromium", screen)

    def screen_of_a_blocked_run(self, *arguments):
        """What a run shows that cannot go on; it is ended then."""
        master, slave = pty.openpty()
        process = subprocess.Popen(self.command(*arguments), env=self.environment, stdin=slave,
                                   stdout=subprocess.DEVNULL, stderr=slave)
        os.close(slave)
        try:
            return os.read(master, 4096).decode("utf-8")
        finally:
            process.kill()
            process.wait()
            os.close(master)

    def test_a_terminal_that_cannot_wipe_a_line_shows_no_progress(self):
        self.environment["TERM"] = "dumb"
        _, _, screen = self.run_on_terminal("size")
        self.assertEqual(screen, "")

    def test_colours_are_for_a_terminal_that_has_them_and_a_user_who_wants_them(self):
        for variables, is_colourful in (({"NO_COLOR": ""}, True), ({"NO_COLOR": "1"}, False),
                                        ({"NO_COLOR": "", "TERM": "dumb"}, False)):
            with self.subTest(variables=variables):
                self.environment.update(variables)
                _, _, screen = self.run_on_terminal("size", output_too=True)
                self.assertEqual("\x1b[36m#" in screen, is_colourful, screen)
                self.assertNotIn(b"\x1b", self.run_program("size").output)

    def test_the_locale_decides_what_the_bars_are_drawn_with(self):
        for locale, mark in (("C", "  #"), ("de_DE.UTF-8", "  \u2588"), ("C.UTF-8", "  \u2588")):
            with self.subTest(locale=locale):
                self.environment["LC_ALL"] = locale
                self.assertIn(mark, self.run_program("size").text)

    def test_a_terminal_without_utf_8_gets_question_marks_and_a_file_the_name(self):
        _, _, screen = self.run_on_terminal("profiles", CHROMIUM, output_too=True)
        self.assertIn("Chromium  Zo? ??   Default    yes", screen)
        self.assertIn("Chromium  Zo\u00eb \u65e5\u672c  Default    yes",
                      self.run_program("profiles", CHROMIUM).text)

    def test_the_report_stands_on_a_line_of_its_own_when_both_are_one_terminal(self):
        status, _, screen = self.run_on_terminal("browsers", "--browser=safari", output_too=True)
        self.assertEqual(status, 0)
        self.assertTrue(screen.endswith(
            "\r\x1b[KName    Browser  Bundle identifier\r\n"
            "Safari  safari   com.apple.Safari\r\n"), screen)

    @unittest.skipUnless(os.path.exists("/dev/full"), "the system has no /dev/full")
    def test_a_report_that_cannot_be_written_is_a_failure(self):
        for arguments in (("size",), ("--json", "size"), ("--help",), ("--version",)):
            with self.subTest(arguments=arguments), open("/dev/full", "wb") as full:
                completed = subprocess.run(self.command(*arguments), env=self.environment,
                                           stdout=full, stderr=subprocess.PIPE, check=False)
                self.assertEqual(completed.returncode, 1)
                self.assertEqual(completed.stderr, b"browsersweep: cannot write the whole report: "
                                                   b"No space left on device\n")

    def test_a_reader_that_goes_away_ends_the_program_quietly(self):
        reading, writing = os.pipe()
        os.close(reading)
        completed = subprocess.run(self.command("size"), env=self.environment, stdout=writing,
                                   stderr=subprocess.PIPE, check=False)
        os.close(writing)
        self.assertEqual(completed.returncode, 1)
        self.assertEqual(completed.stderr, b"")

    def test_head_ends_a_report_quietly(self):
        for arguments in (("size", "--all"), ("--json", "size"), ("help",), ("size", "--html", "-")):
            with self.subTest(arguments=arguments):
                completed = subprocess.run(
                    ["/bin/sh", "-c", '"$@" | head -n 1', "sh", *self.command(*arguments)],
                    env=self.environment, capture_output=True, check=False)
                self.assertEqual(completed.stdout.count(b"\n"), 1)
                self.assertEqual((completed.returncode, completed.stderr), (0, b""))

    def test_closed_standard_streams_never_hit_a_database(self):
        before = self.snapshot()
        completed = subprocess.run(
            ["/bin/sh", "-c", 'exec "$@" <&- >&- 2>&-', "sh", *self.command("size")],
            env=self.environment, check=False)
        self.assertEqual(completed.returncode, 1)
        self.assertEqual(self.snapshot(), before)

    def test_a_home_of_linux_is_told_apart(self):
        home = self.root / "linux"
        (home / ".mozilla" / "firefox").mkdir(parents=True)
        says = (f"browsersweep: {home}: this looks like a Linux home; only the macOS layout is "
                "read\n")
        for command in ("size", "profiles", "bookmarks", "doctor"):
            with self.subTest(command=command):
                result = self.run_program("--home", home, command, home=False)
                self.assertEqual((result.status, result.error), (0, says))
        self.assertEqual([path.name for path in home.iterdir()], [".mozilla"])

    def test_bookmarks_of_a_home_without_safari_are_no_error(self):
        shutil.rmtree(self.home / "Library" / "Safari")
        result = self.run_program("bookmarks")
        self.assertEqual((result.status, result.error), (0, ""))
        self.assertEqual(self.document("bookmarks", "-b", "safari"), {"browsers": [
            {"browser": "safari", "error": None, "leftOut": [], "bookmarks": []}]})

    def test_safari_without_its_bookmarks_file_is_an_error(self):
        (self.home / "Library" / "Safari" / "Bookmarks.plist").unlink()
        result = self.run_program("bookmarks", "--browser=safari")
        self.assertEqual(result.status, 1)
        self.assertIn("browsersweep: Safari: nothing there: ", result.error)

    def test_a_home_that_is_not_there_is_empty_and_noted(self):
        result = self.run_program("--home", self.root / "nowhere", "size", home=False)
        self.assertEqual(result.status, 0)
        self.assertIn("nowhere is not an existing folder", result.error)

    def test_text_that_is_no_utf_8_does_not_break_the_document(self):
        home = os.fsencode(self.root) + b"/h\xff"
        try:
            os.rename(self.home, home)
        except OSError as error:
            self.skipTest(f"the file system takes no name that is no UTF-8: {error}")
        completed = subprocess.run([PROGRAM, b"--home", home, "--json", "notifications", CHROMIUM],
                                   env=self.environment, capture_output=True, check=False)
        self.assertEqual(completed.returncode, 0)
        found = self.checked_document(completed.stdout, "notifications")
        store = found["browsers"][0]["profiles"][0]["subscriptions"][0]["store"]
        self.assertIn("/h\ufffd/Library", store)

    def test_names_cannot_play_tricks_on_the_terminal(self):
        write(self.profile / "Bookmarks", '{"roots": {"bar": {"children": [], "url": "a:b", '
                                          '"name": "x\\u001b[2Jy\\nz"}}}')
        result = self.run_program("bookmarks", CHROMIUM)
        self.assertIn("x\ufffd[2Jy\ufffdz", result.text)

    def test_the_users_own_home_is_left_alone(self):
        self.run_program("clean", "--yes")
        self.assertEqual(list((self.root / "own-home").iterdir()), [])


class Signals(HostProgramTest):
    def interrupted_run(self, number, *arguments):
        """Starts the program with the signal already waiting, so that no timing is involved."""
        def deliver():
            # What runs in the background of a shell ignores some signals, and so would the program.
            signal.signal(number, signal.SIG_DFL)
            signal.pthread_sigmask(signal.SIG_BLOCK, {number})
            os.kill(os.getpid(), number)
        return subprocess.run(self.command(*arguments), env=self.environment, check=False,
                              stdin=subprocess.DEVNULL, capture_output=True, preexec_fn=deliver)

    def test_an_interrupted_clean_says_what_was_not_begun_and_exits_with_the_signal(self):
        before = self.snapshot()
        for number, status in ((signal.SIGINT, 130), (signal.SIGTERM, 143)):
            with self.subTest(number=number):
                completed = self.interrupted_run(number, "--json", "clean", "--yes", CHROMIUM)
                self.assertEqual(completed.returncode, status)
                found = self.checked_document(completed.stdout, "clean")["browsers"][0]
                self.assertEqual(found["error"], "interrupted before it was begun")
                self.assertEqual(completed.stderr,
                                 b"browsersweep: interrupted; the report says what was done\n")
                self.assertEqual(self.snapshot(), before)


class HeldDatabases(HostProgramTest):
    HISTORY = ("--browser=chromium", "--category=history")

    def test_changes_in_a_write_ahead_log_are_noted(self):
        connection = sqlite3.connect(self.history)
        self.addCleanup(connection.close)
        connection.execute("PRAGMA journal_mode=WAL")
        connection.execute("INSERT INTO urls VALUES (4, 'https://four.test/', 1)")
        connection.commit()
        result = self.run_program("size", *self.HISTORY)
        self.assertEqual((result.status, result.error), (
            0, "browsersweep: Chromium, History: "
               "the browser's latest changes to History are not counted\n"))

    def test_an_unfinished_transaction_is_noted_and_a_finished_one_is_not(self):
        journal = self.history.with_name("History-journal")
        for start, is_noted in ((b"\xd9\xd5\x05\xf9\x20\xa1\x63\xd7", True),
                                (b"\0" * 8, False), (b"", False)):
            with self.subTest(start=start):
                write(journal, start + b"\0" * (504 if start else 0))
                result = self.run_program("size", *self.HISTORY)
                self.assertEqual("latest changes to History" in result.error, is_noted)

    def test_rows_that_a_clean_could_not_delete_are_noted(self):
        holder = sqlite3.connect(self.history, isolation_level=None)
        self.addCleanup(holder.close)
        holder.execute("BEGIN IMMEDIATE")
        result = self.run_program("clean", "--yes", *self.HISTORY)
        self.assertEqual(result.status, 1)
        self.assertIn("Chromium, Zoë 日本, History: held by another program: rows are left; the "
                      f"browser seems to hold the database: {self.history}\n", result.error)
        holder.execute("ROLLBACK")
        result = self.run_program("clean", "--yes", *self.HISTORY)
        self.assertEqual((result.status, result.error), (0, ""))


class HeldStores(HostProgramTest):
    """What is held of the stores that are wrapped, or have a class of their own."""

    def make_home(self):
        super().make_home()
        self.storage = self.support / "Firefox" / "Profiles" / "a.default" / "webappsstore.sqlite"
        write(self.support / "Firefox" / "profiles.ini",
              "[Profile0]\nName=default\nPath=Profiles/a.default\nIsRelative=1\n")
        database(self.storage,
                 "CREATE TABLE webappsstore2 (originAttributes TEXT, originKey TEXT, scope TEXT,"
                 " key TEXT, value TEXT)",
                 "INSERT INTO webappsstore2 VALUES"
                 " ('', 'elpmaxe.eno.:https:443', 'elpmaxe.eno.:https:443', 'k', 'v'),"
                 " ('', 'tset.owt.:https:443', 'tset.owt.:https:443', 'k', 'v')")
        self.safari_history = self.home / "Library" / "Safari" / "History.db"
        database(self.safari_history,
                 "CREATE TABLE history_items (id INTEGER PRIMARY KEY, url TEXT)",
                 "CREATE TABLE history_visits (id INTEGER PRIMARY KEY, history_item INTEGER,"
                 " visit_time REAL)",
                 "INSERT INTO history_items VALUES (1, 'https://one.example/')",
                 "INSERT INTO history_visits VALUES (1, 1, 0.0)")

    def hold(self, path):
        holder = sqlite3.connect(path, isolation_level=None)
        self.addCleanup(holder.close)
        holder.execute("BEGIN IMMEDIATE")
        return holder

    def test_rows_left_in_firefoxs_local_storage_are_noted(self):
        arguments = ("clean", "--yes", "--browser=firefox", "--category=localStorage",
                     "--include=one.example")
        holder = self.hold(self.storage)
        result = self.run_program(*arguments)
        self.assertEqual(result.status, 1)
        self.assertIn("Firefox, default, Local storage: held by another program: rows are left; "
                      f"the browser seems to hold the database: {self.storage}\n", result.error)
        holder.execute("ROLLBACK")
        result = self.run_program(*arguments)
        self.assertEqual((result.status, result.error), (0, ""))
        self.assertEqual(rows(self.storage, "SELECT originKey FROM webappsstore2"),
                         [("tset.owt.:https:443",)])

    def test_changes_beside_firefoxs_local_storage_are_noted(self):
        connection = sqlite3.connect(self.storage)
        self.addCleanup(connection.close)
        connection.execute("PRAGMA journal_mode=WAL")
        connection.execute("DELETE FROM webappsstore2")
        connection.commit()
        result = self.run_program("size", "--browser=firefox", "--category=localStorage")
        self.assertEqual((result.status, result.error), (
            0, "browsersweep: Firefox, Local storage: "
               "the browser's latest changes to webappsstore.sqlite are not counted\n"))

    def test_visits_left_in_safaris_history_are_noted(self):
        arguments = ("clean", "--yes", "--browser=safari", "--category=history")
        holder = self.hold(self.safari_history)
        result = self.run_program(*arguments)
        self.assertEqual(result.status, 1)
        self.assertIn("Safari, History: held by another program: rows are left; the browser seems "
                      f"to hold the database: {self.safari_history}\n", result.error)
        holder.execute("ROLLBACK")
        result = self.run_program(*arguments)
        self.assertEqual((result.status, result.error), (0, ""))

    def test_changes_beside_safaris_history_are_counted_and_not_noted(self):
        connection = sqlite3.connect(self.safari_history)
        self.addCleanup(connection.close)
        connection.execute("PRAGMA journal_mode=WAL")
        connection.execute("INSERT INTO history_visits VALUES (2, 1, 1.0)")
        connection.commit()
        document = self.document("size", "--browser=safari", "--category=history")
        self.assertEqual(document["total"]["itemCount"], exact(2))
        self.assertEqual(
            self.run_program("size", "--browser=safari", "--category=history").error, "")


class Failures(HostProgramTest):
    """The kinds of failure, from the files on disk to the words."""

    FULL_DISK_ACCESS = ("browsersweep: macOS guards Safari's data: the terminal or application that"
                        " runs this program needs Full Disk Access, in the privacy settings.\n")

    def error_of(self, *arguments):
        document = self.document(*arguments, status=1)
        browser = document["browsers"][0]
        return browser["error"] or browser["categories"][0]["error"]

    def test_a_database_that_is_held_for_reading_too_is_locked(self):
        holder = sqlite3.connect(self.history, isolation_level=None)
        self.addCleanup(holder.close)
        holder.execute("PRAGMA locking_mode=EXCLUSIVE")
        holder.execute("BEGIN EXCLUSIVE")
        self.assertEqual(
            self.error_of("clean", "--yes", CHROMIUM, "--category=history"),
            "locked by a running browser: database is locked")

    def test_a_file_that_is_no_database_is_not_understood(self):
        write(self.history, "plain text, and more of it than the header of a database has" * 20)
        self.assertEqual(self.error_of("size", CHROMIUM, "--category=history"),
                         "not understood: file is not a database")

    def test_bookmarks_that_are_not_there_are_nothing_there(self):
        write(self.home / "Library" / "Safari" / "History.db", "never read")
        (self.home / "Library" / "Safari" / "Bookmarks.plist").unlink()
        found = self.error_of("bookmarks", "--browser=safari")
        self.assertTrue(found.startswith("nothing there: "), found)

    def run_without_permission(self, folder, *arguments):
        """Runs without the right to read what a folder holds: as nobody where this is root."""
        for path in (self.root, *self.root.rglob("*")):
            path.chmod(0o777 if path.is_dir() else 0o666)
        folder.chmod(0)
        self.addCleanup(folder.chmod, 0o777)
        become = {"user": 65534, "group": 65534} if os.geteuid() == 0 else {}
        if become and not self.is_reachable_for_others():
            self.skipTest("another user cannot run the program where it lies")
        return self.run_program(*arguments, **become)

    def is_reachable_for_others(self):
        probe = subprocess.run(["/bin/test", "-x", PROGRAM], user=65534, group=65534, check=False)
        return probe.returncode == 0

    def test_safaris_data_without_permission_asks_for_full_disk_access_once(self):
        history = self.home / "Library" / "Safari" / "History.db"
        write(history, "never read")
        result = self.run_without_permission(history, "size", "--browser=safari")
        self.assertEqual(result.status, 1, result.error)
        self.assertIn("Safari, History: no permission: ", result.error)
        self.assertEqual(result.error.count(self.FULL_DISK_ACCESS), 1, result.error)

    def test_other_data_without_permission_does_not(self):
        result = self.run_without_permission(self.history, "size", CHROMIUM)
        self.assertEqual(result.status, 1, result.error)
        self.assertIn("Chromium, Zoë 日本, History: no permission: ", result.error)
        self.assertNotIn("Full Disk Access", result.error)


class Locked(HostProgramTest):
    def test_a_firefox_lock_is_recognised(self):
        profile = self.support / "Firefox" / "Profiles" / "a.default"
        write(self.support / "Firefox" / "profiles.ini",
              "[Profile0]\nName=default\nPath=Profiles/a.default\nIsRelative=1\n")
        write(profile / ".parentlock", "")
        with open(profile / ".parentlock", "r+b") as held:
            fcntl.lockf(held, fcntl.LOCK_EX)
            self.assertEqual(self.run_program("clean", "--yes", "--browser=firefox").status, 1)
        self.assertEqual(self.run_program("clean", "--yes", "--browser=firefox").status, 0)
