"""The manual page and the completions of the shells know what the program's parser knows."""

import re
import shutil
import subprocess

from fixture import BROWSERS, CATEGORIES, COMMANDS, KINDS, ROOT, HostProgramTest

MANUAL = ROOT / "docs" / "man" / "browsersweep.1"
COMPLETIONS = ROOT / "cli" / "completions"
BASH, ZSH, FISH = (COMPLETIONS / name for name in
                   ("browsersweep.bash", "_browsersweep", "browsersweep.fish"))


class ShellTest(HostProgramTest):
    def words_of_the_parser(self, *arguments):
        """What the parser says would be right in place of something that is like nothing."""
        error = self.run_program(*arguments).error
        return error.strip().split("; it must be one of ")[1].split(", ")

    def options(self):
        return self.words_of_the_parser("size", "--zzzzzzzzzzzzzzzz")

    def options_of(self, command):
        """The options that the parser takes with a command, as its help shows them."""
        return set(re.findall(r"^  (?:-\w, )?(--[a-z-]+)", self.run_program("help", command).text,
                              re.M))

    def require(self, program):
        if shutil.which(program) is None:
            self.skipTest(f"{program} is not installed")


class Parser(ShellTest):
    def test_the_words_of_these_tests_are_those_of_the_parser(self):
        self.assertEqual(self.words_of_the_parser("zzzzzzzzzzzzzzzz"), [*COMMANDS, "help"])
        self.assertEqual(self.words_of_the_parser("size", "--browser=zzzzzzzzzzzzzzzz"), BROWSERS)
        self.assertEqual(self.words_of_the_parser("size", "--category=zzzzzzzzzzzzz"), CATEGORIES)


class Manual(ShellTest):
    def rendered(self):
        self.require("groff")
        completed = subprocess.run(
            ["groff", "-man", "-Tascii", "-ww", "-P-cbou", MANUAL], capture_output=True,
            text=True, check=True)
        self.assertEqual(completed.stderr, "")
        return completed.stdout

    def test_it_has_an_entry_for_every_option_and_command_and_no_other(self):
        entries = re.findall(r"^\.TP\n\.[BIR]+ (.*)$", MANUAL.read_text(), re.M)
        entries = [entry.replace("\\", "") for entry in entries]
        options = {word for entry in entries for word in re.findall(r"--[a-z-]+", entry)
                   if not entry.startswith("browsersweep")}
        self.assertEqual(options, set(self.options()))
        commands = [entry for entry in entries if re.fullmatch("[a-z]+", entry)]
        self.assertEqual(commands, [*COMMANDS, "help"])

    def test_its_examples_are_those_of_the_commands_help(self):
        examples = []
        for command in COMMANDS:
            lines = self.run_program("help", command).text.splitlines()
            examples += [line.strip() for line in lines[lines.index("examples"):]
                         if line.startswith("  browsersweep ")]
        manual = [line.replace("\\", "") for line in
                  re.findall(r"^\.B (browsersweep .+)$", MANUAL.read_text(), re.M)]
        self.assertEqual(manual, examples)

    def test_it_is_rendered_without_a_warning(self):
        text = self.rendered()
        for heading in ("NAME", "SYNOPSIS", "EXAMPLES", "COMMANDS", "OPTIONS", "EXIT STATUS"):
            self.assertIn(f"\n{heading}\n", text)
        self.assertIn("--inside START..END", text)


class Completions(ShellTest):
    def test_each_knows_every_word_and_no_option_besides(self):
        for file in (BASH, ZSH, FISH):
            text = file.read_text()
            with self.subTest(file=file.name):
                words = set(re.findall(r"[A-Za-z]+", text))
                self.assertEqual(set([*COMMANDS, "help", *BROWSERS, *CATEGORIES, *KINDS]) - words, set())
                pattern = r"^complete .*-l ([a-z-]+)" if file == FISH else r"--([a-z][a-z-]+)"
                found = {f"--{name}" for name in re.findall(pattern, text, re.M)} - {"--option"}
                self.assertEqual(found, set(self.options()))


class Offers(ShellTest):
    """What the shells really offer, where they can be asked."""

    LINES = (
        ("", [*COMMANDS, "help"]),
        ("si", ["size", "sites"]),
        ("--json pro", ["profiles"]),
        ("size --browser xyz", []),
        ("size --browser goo", ["googleChrome"]),
        ("size -b goo", ["googleChrome"]),
        ("clean -c hi", ["history"]),
        ("help ", COMMANDS),
        ("help si", ["size", "sites"]),
        ("size --category ", CATEGORIES),
        ("--browser ", BROWSERS),
        ("clean --f", ["--filter", "--force"]),
        ("size --f", ["--filter"]),
        ("bookmarks --f", []),
        ("bookmarks --h", ["--help", "--home"]),
        ("size --h", ["--help", "--home", "--html"]),
        ("clean --profile size --h", ["--help", "--home"]),
        ("sites --kind ", KINDS),
        ("sites --sort ", ["size", "name", "items", "last"]),
        ("size --by ", ["browser", "category", "profile"]),
        ("size --al", ["--all"]),
        ("clean --al", []),
        ("forget --keep a.com --ke", ["--keep", "--keep-list"]),
    )

    def check(self, offers):
        for line, expected in self.LINES:
            with self.subTest(line=line):
                self.assertEqual(sorted(offers(line)), sorted(expected))
        for command in ("profiles", "size", "clean", "sites", "forget"):
            with self.subTest(command=command):
                self.assertEqual(set(offers(f"{command} --")), self.options_of(command))

    def bash(self, line):
        words = ["browsersweep", *re.findall(r"=|[^ =]+", line)]
        if not line or line.endswith(" "):
            words.append("")
        script = ('. "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _browsersweep; '
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        completed = subprocess.run(["bash", "--norc", "-c", script, "bash", str(BASH), *words],
                                   capture_output=True, text=True, check=True, cwd=self.root)
        self.assertEqual(completed.stderr, "")
        return completed.stdout.split()

    def test_bash(self):
        self.require("bash")
        self.check(self.bash)
        self.assertEqual(self.bash("size --browser=goo"), ["googleChrome"])
        self.assertEqual(self.bash("size --category="), CATEGORIES)
        self.assertEqual(self.bash("--profile=size --browser=fire"), ["firefox"])
        self.assertEqual(self.bash("--home ho"), ["home"])

    def test_fish(self):
        self.require("fish")
        def offers(line):
            completed = subprocess.run(
                ["fish", "--no-config", "-c", "source $argv[1]; complete -C $argv[2]",
                 str(FISH), f"browsersweep {line}"], capture_output=True, text=True, check=True,
                env={**self.environment, "HOME": str(self.root),
                     "CFFIXED_USER_HOME": str(self.root)}, cwd=self.root)
            self.assertEqual(completed.stderr, "")
            return [row.split("\t")[0] for row in completed.stdout.splitlines()
                    if not re.match(r"-\w\t", row)]
        self.check(offers)

    def zsh(self, line):
        """The specifications that the file hands to zsh's own _arguments."""
        script = ('file=$1; shift; words=("$@"); CURRENT=$#; '
                  '_arguments() { print -rl -- "$@" }; source $file')
        completed = subprocess.run(
            ["zsh", "-f", "-c", script, "zsh", str(ZSH), "browsersweep", *line.split(" ")],
            capture_output=True, text=True, check=True)
        self.assertEqual(completed.stderr, "")
        return completed.stdout

    def test_zsh(self):
        self.require("zsh")
        for command in ("profiles", "size", "clean", "sites", "forget"):
            with self.subTest(command=command):
                offered = re.findall(r"--[a-z][a-z-]+", self.zsh(f"{command} "))
                self.assertEqual(set(offered), self.options_of(command))
        self.assertEqual(set(re.findall(r"--[a-z][a-z-]+", self.zsh(""))), set(self.options()))
        self.assertIn(f":browser:({' '.join(BROWSERS)})\n", self.zsh("size "))
        self.assertIn(f":category:({' '.join(CATEGORIES)})\n", self.zsh("size "))
        self.assertIn(f":kind:({' '.join(KINDS)})\n", self.zsh("sites "))
