"""Wrong command lines: status 2, nothing on standard output, one line that says what is right."""

import os

from fixture import COMMANDS, HostProgramTest


class Usage(HostProgramTest):
    def test_commands(self):
        self.assert_usage_error(says=("no command", "browsers, profiles, size, clean"))
        self.assert_usage_error("siez", says=("'siez'", "did you mean size?"))
        self.assert_usage_error("SIZE", says=("did you mean size?",))
        self.assert_usage_error("", says=("not a command",))
        self.assert_usage_error("size", "clean", says=("'clean'",))
        self.assert_usage_error("size", "line\nbreak")

    def test_browsers_and_categories(self):
        self.assert_usage_error("size", "--browser", "Chrome", says=("mean googleChrome?",))
        self.assert_usage_error("size", "--browser", "Chromium", says=("mean chromium?",))
        self.assert_usage_error("size", "--browser", "nothing like it", says=("yandexBrowser",))
        self.assert_usage_error("size", "--browser=", says=("'' is not a browser",))
        self.assert_usage_error("size", "--category", "Cookies", says=("mean httpCookies?",))
        self.assert_usage_error("size", "--browser=safari", "--browser=x", says=("'x'",))

    def test_options(self):
        self.assert_usage_error("size", "--primary", says=("'--primary'", "--primary-only"))
        self.assert_usage_error("size", "--bogus=1", says=("'--bogus'", "--browser"))
        self.assert_usage_error("size", "-x", says=("'-x'",))
        self.assert_usage_error("bookmarks", "-c", "cache", says=("--category belongs to",))
        self.assert_usage_error("size", "--json=false")
        self.assert_usage_error("size", "--home", "a", "--home", "b", says=("twice",), home=False)
        self.assert_usage_error("size", "--home=", says=("Library",), home=False)

    def test_an_option_that_lacks_its_value_does_not_swallow_the_next_one(self):
        for option in ("--home", "--browser", "--profile", "--category", "--include", "--exclude",
                       "--inside", "--outside", "--filter"):
            with self.subTest(option=option):
                self.assert_usage_error("clean", "--dry-run", option, home=False,
                                        says=(f"{option} needs a value",))
                self.assert_usage_error("clean", option, "--yes", home=False,
                                        says=(f"{option} needs a value",))

    def test_options_of_other_commands(self):
        for command in ("browsers", "profiles", "bookmarks", "notifications", "doctor"):
            for option in ("--category=cache", "--include=a", "--exclude=a", "--inside=..",
                           "--outside=..", "--filter={}", "--ignore-errors", "--keep-going"):
                with self.subTest(command=command, option=option):
                    self.assert_usage_error(command, option, says=("size and clean",))
        for option in ("--dry-run", "--yes", "--force"):
            with self.subTest(option=option):
                self.assert_usage_error("size", option, says=(f"{option} belongs to", "clean"))

    def test_patterns_that_would_not_survive_in_sql(self):
        for pattern in ("", "it's", "100%", "a_b", "a\tb", "a\nb", "\x7f", "a\u0085b", os.fsdecode(b"\xff")):
            with self.subTest(pattern=pattern):
                self.assert_usage_error("size", f"--include={pattern}")
                self.assert_usage_error("size", "--exclude", pattern)
        self.assert_usage_error("size", '--filter={"patterns":{"rule":"include",'
                                        '"patterns":["a","b\\u0000"]}}')

    def test_dates(self):
        for text in ("2024-02-30", "2023-02-29", "1900-02-29", "2024-13-01", "2024-00-01",
                     "2024-1-1", "24-01-01", "2024-01-01T24:00:00Z", "2024-01-01T12:60:00Z",
                     "2024-01-01T12:00:60Z", "2024-01-01T12:00:00", "2024-01-01T12:00:00.Z",
                     "2024-01-01t12:00:00Z", "2024-01-01T12:00:00+01:00", "2024-01-01 ", "today",
                     "1e", "0x10", "inf", "nan", "--5", "@", "@@5", "5.", ".5", "1e400", "-1e400"):
            with self.subTest(text=text):
                self.assert_usage_error("size", f"--inside={text}..")
                self.assert_usage_error("size", f"--outside=..{text}")

    def test_dates_that_no_database_can_hold(self):
        for text in ("9223372036854", "-9224400000000", "@9223372036854", "@-9223372036855",
                     "1e300"):
            with self.subTest(text=text):
                self.assert_usage_error("size", f"--inside={text}..", says=("too far away",))
        for text in ("9e12", "-9e11", "0000-01-01", "9999-12-31"):
            with self.subTest(text=text):
                self.assertEqual(self.run_program("size", f"--inside={text}..").status, 0)

    def test_a_number_of_ten_digits_has_two_readings(self):
        for text in ("1704110400..", "..1704110400.5"):
            with self.subTest(text=text):
                self.assert_usage_error("size", "--inside", text,
                                        says=("2024-01-01T12:00:00Z", "2055-01-01T12:00:00Z"))

    def test_ranges(self):
        self.assert_usage_error("size", "--inside", "2024-01-01", says=("START..END",))
        self.assert_usage_error("size", "--inside", "2024-01-02..2024-01-01", says=("starts after",))
        self.assert_usage_error("size", "--outside", "5..4.5", says=("starts after",))
        self.assert_usage_error("size", "--inside", "1..2..3")
        self.assertEqual(self.run_program("size", "--inside", "5..5").status, 0)
        self.assertEqual(self.run_program("size", "--inside", "-5..5").status, 0)
        self.assertEqual(self.run_program("size", "--inside", "..").status, 0)

    def test_filters_in_json(self):
        for text in ("", "{", "[]", "null", "1", '"a"', "{} {}", '{"pattern":{}}',
                     '{"patterns":[]}', '{"patterns":{}}', '{"patterns":{"rule":"include"}}',
                     '{"patterns":{"rule":"Include","patterns":[]}}',
                     '{"patterns":{"rule":1,"patterns":[]}}',
                     '{"patterns":{"patterns":["a"]}}',
                     '{"patterns":{"rule":"include","patterns":"a"}}',
                     '{"patterns":{"rule":"include","patterns":[1]}}',
                     '{"patterns":{"rule":"include","patterns":[""]}}',
                     '{"patterns":{"rule":"include","patterns":["a"],"more":1}}',
                     '{"dates":{"startDate":1}}',
                     '{"dates":{"rule":"include"}}',
                     '{"dates":{"rule":"insideRange","startDate":true}}',
                     '{"dates":{"rule":"insideRange","startDate":"2024-02-30"}}',
                     '{"dates":{"rule":"insideRange","startDate":2,"endDate":1}}',
                     '{"dates":{"rule":"insideRange","startDate":1e300}}',
                     '{"dates":{"rule":"insideRange","start":1}}',
                     '{"dates":null,"dates":null}'):
            with self.subTest(text=text):
                self.assert_usage_error("size", f"--filter={text}")

    def test_more_filters_than_databases_take(self):
        patterns = [f"--exclude={number}.test" for number in range(1000)]
        for command in (["clean", "--yes"], ["clean", "--dry-run"], ["size"]):
            with self.subTest(command=command):
                self.assert_usage_error(*command, "--browser=chromium", *patterns,
                                        says=("1,000 patterns", "at most 990", "nothing was done"))
        self.assert_usage_error("clean", "--yes", *patterns[:600],
                                says=("600 patterns", "Safari's history", "at most 490"))
        for arguments in (patterns[:990], [f"--inside={number}..{number}" for number in range(990)]):
            self.assertEqual(self.run_program("size", "--browser=chromium", *arguments).status, 0)
        self.assertEqual(self.run_program("size", *patterns[:490]).status, 0)

    def test_a_pattern_longer_than_databases_compare(self):
        self.assert_usage_error("size", "--include=" + "a" * 60000, says=("longer than databases",))

    def test_clean_without_a_terminal_needs_yes_or_a_dry_run(self):
        self.assert_usage_error("clean", says=("--yes", "--dry-run"))
        self.assert_usage_error("clean", "--force", "--json", says=("--yes",))

    def test_the_first_mistake_is_found_before_anything_is_read_or_changed(self):
        self.assert_usage_error("clean", "--yes", "--browser=chromium", "--include=a'b")

    def test_help_of_what_is_no_command(self):
        self.assert_usage_error("help", "sizes", says=("did you mean size?",))
        self.assert_usage_error("help", "size", "clean", says=("'clean'",))


class Information(HostProgramTest):
    def information(self, *arguments):
        result = self.run_program(*arguments, home=False)
        self.assertEqual((result.status, result.error), (0, ""))
        return result.text

    def helps(self):
        """The short help, the overview, and the help of every command."""
        return [self.information(), self.information("help"),
                *(self.information("help", command) for command in COMMANDS)]

    def test_help(self):
        overview = self.information("help")
        self.assertTrue(overview.startswith("browsersweep - "))
        for arguments in (["--help"], ["-h"]):
            self.assertEqual(self.information(*arguments), overview)
        for command in COMMANDS:
            own = self.information("help", command)
            self.assertTrue(own.startswith(f"browsersweep {command} - "))
            self.assertEqual(self.information(command, "--help"), own)
            self.assertEqual(self.information("-h", command), own)

    def test_without_arguments_a_short_help_names_every_command(self):
        text = self.information()
        self.assertLessEqual(text.count("\n"), 23)
        for command in [*COMMANDS, "help"]:
            self.assertIn(f"\n  {command} ", text)

    def test_the_helps_name_every_option(self):
        text = "".join(self.helps())
        for option in ("--home", "--json", "--browser", "--profile", "--primary-only",
                       "--category", "--include", "--exclude", "--inside", "--outside", "--filter",
                       "--ignore-errors", "--keep-going", "--html", "--by", "--sort", "--all",
                       "--dry-run", "--yes", "--force", "--help", "--version"):
            self.assertIn(f" {option}", text)

    def test_the_help_of_a_command_says_what_an_option_means_there(self):
        self.assertIn("\n  --all                    show empty rows, too\n", self.information("help", "size"))
        self.assertIn("\n  --all                    every site except those that are kept\n",
                      self.information("help", "forget"))

    def test_the_lines_of_the_help_fit_a_terminal(self):
        for text in self.helps():
            for line in text.splitlines():
                self.assertLessEqual(len(line), 80, line)

    def test_every_help_ends_with_the_manual(self):
        for text in self.helps():
            self.assertTrue(text.endswith("\nThe manual: man browsersweep\n"))

    def test_the_examples_of_the_help_work(self):
        examples = {line for text in self.helps() for line in text.splitlines()[4:]
                    if line.startswith("  browsersweep ") and "[" not in line}
        examples = {example.split("  ")[1] for example in examples}
        self.assertGreaterEqual(len(examples), len(COMMANDS))
        for example in sorted(examples):
            words = example.split()[1:]
            with self.subTest(example=example):
                asks = words[0] in ("clean", "forget") and "--dry-run" not in words
                extra = ["--yes"] if asks else []
                result = self.run_program(*words, *extra, cwd=self.root)
                self.assertEqual((result.status, result.error_without_notes_on_sites), (0, ""))

    def test_version(self):
        result = self.run_program("--version")
        self.assertEqual((result.status, result.error), (0, ""))
        self.assertRegex(result.text, r"\Abrowsersweep \d+\.\d+\.\d+\n\Z")
