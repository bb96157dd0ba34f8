"""scripts/format with stand-ins for the versions of clang-format that a system may have."""

import shutil

from support import ROOT, ScriptTest


class Format(ScriptTest):
    def setUp(self):
        super().setUp()
        self.borrow("bash", "env", "dirname", "basename", "find", "grep", "sed", "sort", "tr", "xargs")
        self.stand_in("uname", "echo Linux", records=False)
        self.project = self.folder.resolve() / "project"
        shutil.copytree(ROOT / "scripts" / "lib", self.project / "scripts" / "lib",
                        ignore=shutil.ignore_patterns("mutation"))
        shutil.copy(ROOT / "scripts" / "format", self.project / "scripts")
        (self.project / "Cookie.cpp").touch()

    def clang_format(self, command, version, status=0):
        body = f'if [ "$1" = --version ]; then echo "clang-format version {version}.0.6"; else exit {status}; fi'
        self.stand_in(command, body)

    def format(self, *arguments):
        return self.run_script(self.project / "scripts" / "format", *arguments)

    def formatted(self, command):
        return [call for call in self.recorded(command) if call != "--version"]

    def test_a_check_looks_with_both_versions(self):
        self.clang_format("clang-format-14", 14)
        self.clang_format("clang-format-19", 19)
        finished = self.format("--check")
        self.assertEqual(finished.returncode, 0, finished.stderr)
        for command in ("clang-format-14", "clang-format-19"):
            self.assertEqual(self.formatted(command), ["--dry-run -Werror Cookie.cpp"])

    def test_a_check_fails_where_one_version_would_write_otherwise(self):
        for first, second in ((0, 1), (1, 0)):
            with self.subTest(first=first):
                self.clang_format("clang-format-14", 14, first)
                self.clang_format("clang-format-19", 19, second)
                self.assertEqual(self.format("--check").returncode, 1)

    def test_a_command_is_known_by_the_version_that_it_tells(self):
        self.clang_format("clang-format", 19)
        self.assertEqual(self.format("--check").returncode, 0)
        self.assertEqual(self.formatted("clang-format"), ["--dry-run -Werror Cookie.cpp"])

    def test_another_version_checks_nothing_and_says_so(self):
        self.clang_format("clang-format", 21)
        finished = self.format("--check")
        self.assertEqual(finished.returncode, 77)
        self.assertIn("clang-format 14 or 19 decides", finished.stdout)
        self.assertEqual(self.formatted("clang-format"), [])

    def test_the_older_version_formats(self):
        self.clang_format("clang-format-14", 14)
        self.clang_format("clang-format-19", 19)
        self.assertEqual(self.format().returncode, 0)
        self.assertEqual(self.formatted("clang-format-14"), ["-i Cookie.cpp"])
        self.assertEqual(self.formatted("clang-format-19"), [])

    def test_a_missing_clang_format_is_named_with_what_installs_it(self):
        finished = self.format()
        self.assertEqual(finished.returncode, 1)
        self.assertIn("run scripts/setup", finished.stderr)
