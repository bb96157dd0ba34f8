"""The program in a terminal of several widths: what people see, are asked and may press."""

import re
import shutil
import unittest

from fixture import COMMANDS, HANGS, PROGRAM, HostProgramTest, database, write

try:
    import pexpect
except ImportError:
    pexpect = None

WIDTHS = (60, 80, 120)
NARROWEST = 40

# What colours a text, and what wipes the line of progress.
ESCAPES = re.compile(r"\x1b\[[0-9;]*[mK]")

BROWSER_NAMES = {"chromium": "Chromium", "firefox": "Firefox"}
LONG_NAME = "A profile whose name is much longer than anybody would call one"


@unittest.skipIf(pexpect is None, "Python's pexpect is not installed")
class TerminalTest(HostProgramTest):
    def setUp(self):
        super().setUp()
        self.environment["NO_COLOR"] = ""

    def make_home(self):
        super().make_home()
        local_state = self.support / "Chromium" / "Local State"
        write(local_state, local_state.read_text("utf-8").replace("Work", LONG_NAME))
        write(self.profile / "Bookmarks", '{"roots": {"bar": {"children": [{"name": "%s", "url": '
              '"https://one.example/%s"}], "name": "bar"}}}' % ("name " * 30, "path/" * 30))

    def spawn(self, columns, *arguments):
        child = pexpect.spawn(PROGRAM, ["--home", str(self.home), *arguments],
                              env=self.environment, dimensions=(24, columns), encoding="utf-8",
                              timeout=HANGS)
        self.addCleanup(child.close)
        return child

    def screen(self, child):
        """All that came until the program ended, as lines, and its status."""
        child.expect(pexpect.EOF)
        child.close()
        return child.before

    def run_at(self, columns, *arguments):
        child = self.spawn(columns, *arguments)
        text = self.screen(child)
        self.assertIsNone(child.signalstatus)
        return child.exitstatus, text

    def lines(self, text):
        """What stands in each line of the screen; the line of progress is written over."""
        shown = ESCAPES.sub("", text.replace("\r\n", "\n"))
        return [part for line in shown.split("\n") for part in line.split("\r") if part]

    def assert_fits(self, text, columns):
        for line in self.lines(text):
            self.assertLessEqual(len(line), columns, line)


class Widths(TerminalTest):
    ARGUMENTS = {"clean": ["--dry-run"], "forget": ["--all", "--dry-run"]}

    def test_no_line_is_longer_than_the_terminal_is_wide(self):
        for command in COMMANDS:
            for columns in (NARROWEST, *WIDTHS):
                with self.subTest(command=command, columns=columns):
                    status, text = self.run_at(columns, command, *self.ARGUMENTS.get(command, []))
                    self.assertEqual(status, 0, text)
                    self.assert_fits(text, columns)

    def test_sizes_fit_in_every_form(self):
        for columns in (NARROWEST, *WIDTHS):
            for form in (["--by", "browser"], ["--by", "category"], ["--by", "profile"], ["--all"],
                         ["-b", "chromium"]):
                with self.subTest(form=form, columns=columns):
                    status, text = self.run_at(columns, "size", *form)
                    self.assertEqual(status, 0, text)
                    self.assert_fits(text, columns)
                    self.assertIn("Total", text)

    def test_what_filters_cannot_see_fits_and_is_said_whole(self):
        database(self.history, "CREATE TABLE downloads (id INTEGER)", "INSERT INTO downloads VALUES (1)")
        shutil.copytree(self.support / "Chromium", self.support / "Google" / "Chrome")
        shutil.copytree(self.caches / "Chromium", self.caches / "Google" / "Chrome")
        text, both = ["--include=no-such-site"], ["--exclude=x", "--last=7d"]
        for filters, lacks in ((text, "text"), (["--last=7d"], "date"), (both, "text or date")):
            for columns in (NARROWEST, *WIDTHS):
                for arguments in (["size"], ["clean", "-n"], ["clean", "-n", "-b", "chromium"],
                                  ["clean", "-n", "--strict"], ["clean", "--list"]):
                    with self.subTest(filters=filters, columns=columns, arguments=arguments):
                        status, text = self.run_at(columns, *arguments, *filters)
                        self.assertEqual(status, 0, text)
                        self.assert_fits(text, columns)
                        rows = self.lines(text)
                        self.assertTrue(any(line.endswith("  Has no") for line in rows), text)
                        self.assertTrue(any(line.endswith(f"  {lacks}") for line in rows), text)

    def test_a_plan_says_of_each_trace_whose_it_is(self):
        for arguments in (["one.example"], ["--all"]):
            plan = self.document("forget", *arguments, "-n")
            for columns in (NARROWEST, *WIDTHS):
                with self.subTest(arguments=arguments, columns=columns):
                    status, text = self.run_at(columns, "forget", *arguments, "-n")
                    self.assertEqual(status, 0, text)
                    self.assert_fits(text, columns)
                    self.assert_tells_traces(text, plan)

    def test_a_table_of_what_is_of_no_single_site_says_where_it_is(self):
        write(self.second / "Sessions" / "Tabs_1", b"t" * 500)
        for columns in (NARROWEST, *WIDTHS):
            with self.subTest(columns=columns):
                status, text = self.run_at(columns, "sites", "-b", "chromium")
                self.assertEqual(status, 0, text)
                self.assert_fits(text, columns)
                table = text[text.index("Of no single site"):]
                self.assertIn(f"Chromium, {LONG_NAME}", self.words(table))

    def words(self, text):
        """What the screen says, with one sign for letters that the terminal cannot show."""
        return re.sub(r"[?]+", "?", " ".join(" ".join(self.lines(text)).split()))

    def assert_tells_traces(self, text, plan):
        """The place of each trace is read whole, in a column or in a heading that may be broken."""
        words = self.words(text[:text.index("Total")])
        for site in plan["forgotten"]:
            self.assertIn(site["site"], words)
            for trace in site["traces"]:
                place = f"{BROWSER_NAMES[trace['browser']]}, {trace['profile']}"
                self.assertIn(re.sub(r"[^ -~]+", "?", place), words)

    def test_bars_grow_with_the_terminal(self):
        longest = [max(line.count("#") for line in self.lines(self.run_at(columns, "size")[1])
                       if "Measuring" not in line)
                   for columns in (NARROWEST, *WIDTHS)]
        self.assertEqual(longest, sorted(set(longest)))

    def test_size_fits_one_screen(self):
        _, text = self.run_at(80, "size")
        lines = [line for line in self.lines(text) if "Measuring" not in line]
        self.assertRegex(lines[0], "^Browser +Items +Size$")
        self.assertRegex(lines[1], "^Chromium .*#$")
        self.assertLess(len(lines), 24)

    def test_a_pipe_gets_everything_whole(self):
        text = self.run_program("bookmarks").text
        self.assertIn("https://one.example/" + "path/" * 30, text)
        self.assertIn(LONG_NAME, self.run_program("profiles").text)

    def test_a_terminal_that_does_not_know_its_width_takes_it_from_the_environment(self):
        self.environment["COLUMNS"] = "60"
        _, text = self.run_at(0, "bookmarks")
        self.assert_fits(text, 60)
        self.assertIn("..", text)

    def test_notes_are_broken_between_words_and_a_path_is_kept_whole(self):
        write(self.history, b"no database" * 100)
        for columns in WIDTHS:
            with self.subTest(columns=columns):
                status, text = self.run_at(columns, "size", "-b", "chromium", "-c", "history")
                self.assertEqual(status, 1)
                lines = [line for line in self.lines(text) if str(self.history) not in line]
                self.assert_fits("\n".join(lines), columns)
                self.assertIn(str(self.history), text)

    def test_the_helps_fit_80_columns(self):
        for arguments in ([], ["help"], *(["help", command] for command in COMMANDS)):
            with self.subTest(arguments=arguments):
                status, text = self.run_at(80, *arguments) if arguments else self.run_bare(80)
                self.assertEqual(status, 0)
                self.assert_fits(text, 80)
                self.assertTrue(text.endswith("The manual: man browsersweep\r\n"), text)

    def run_bare(self, columns):
        child = pexpect.spawn(PROGRAM, [], env=self.environment, dimensions=(24, columns),
                              encoding="utf-8", timeout=HANGS)
        text = self.screen(child)
        return child.exitstatus, text


class Questions(TerminalTest):
    def test_what_filters_cannot_see_is_in_the_question(self):
        for columns in (NARROWEST, *WIDTHS):
            with self.subTest(columns=columns):
                child = self.asked(columns, "clean", "-b", "chromium", "--include=no-such-site")
                self.assertRegex(child.before.replace("\r\n", " "), r"The filters cannot see .* of this\.")
                child.sendline("n")
                self.screen(child)

    def asked(self, columns, *arguments):
        child = self.spawn(columns, *arguments)
        child.expect_exact("Delete this? [y/N] ")
        self.assert_fits(child.before, columns)
        return child

    def test_the_plan_stands_before_the_question_and_no_is_the_default(self):
        before = self.snapshot()
        for columns in WIDTHS:
            for command in (["clean", "-b", "chromium"], ["forget", "--all", "-b", "chromium"]):
                with self.subTest(columns=columns, command=command):
                    child = self.asked(columns, *command)
                    self.assertIn("To be removed", child.before)
                    child.sendline("")
                    self.assertIn("nothing was deleted", self.screen(child))
                    self.assertEqual(child.exitstatus, 1)
                    self.assertEqual(self.snapshot(), before)

    def test_a_yes_deletes_and_says_what_is_gone(self):
        for columns in WIDTHS:
            with self.subTest(columns=columns):
                write(self.cache / "Cache" / "data_9", b"z" * 3000)
                child = self.asked(columns, "clean", "-b", "chromium")
                child.sendline("yes")
                text = self.screen(child)
                self.assertEqual(child.exitstatus, 0, text)
                self.assertIn("Removed", text)
                self.assert_fits(text, columns)
                self.assertEqual(list(self.cache.rglob("data_*")), [])

    def test_an_interrupt_at_the_question_deletes_nothing(self):
        before = self.snapshot()
        child = self.asked(80, "clean", "-b", "chromium")
        child.sendintr()
        self.screen(child)
        self.assertNotEqual(child.exitstatus, 0)
        self.assertEqual(self.snapshot(), before)

    def test_the_end_of_input_at_the_question_deletes_nothing(self):
        before = self.snapshot()
        child = self.asked(80, "clean", "-b", "chromium")
        child.sendeof()
        self.assertIn("nothing was deleted", self.screen(child))
        self.assertEqual(child.exitstatus, 1)
        self.assertEqual(self.snapshot(), before)


class SameNames(TerminalTest):
    def make_home(self):
        super().make_home()
        local_state = self.support / "Chromium" / "Local State"
        text = local_state.read_text("utf-8")
        write(local_state, text.replace("Zo\\u00eb \\u65e5\\u672c", "Work").replace(LONG_NAME, "Work"))
        write(self.caches / "Chromium" / "Profile 1" / "Cache" / "data_0", b"x" * 900)

    def test_profiles_of_one_name_are_told_apart_everywhere(self):
        for arguments in (["profiles"], ["size", "--by", "profile"]):
            for columns in WIDTHS:
                with self.subTest(arguments=arguments, columns=columns):
                    status, text = self.run_at(columns, *arguments, "-b", "chromium")
                    self.assertEqual(status, 0)
                    self.assertRegex(text, r"Work +Default|Work \(Default\)")
                    self.assertRegex(text, r"Work +Profile 1|Work \(Profile 1\)")

    def test_each_can_be_chosen(self):
        for given, folders in (("Work", ["Default", "Profile 1"]), ("Default", ["Default"]),
                               ("Profile 1", ["Profile 1"]), ("Work (Profile 1)", ["Profile 1"])):
            with self.subTest(given=given):
                found = self.document("profiles", "-b", "chromium", "--profile", given)
                self.assertEqual([row["folder"] for row in found["browsers"][0]["profiles"]],
                                 folders)
