"""What the documents show of the program: pictures of its output, and commands to try."""

import re
import shlex
import subprocess
import sys

from fixture import ROOT, HostProgramTest

MAKER = ROOT / "scripts" / "sample" / "make_home.py"
DOCUMENTS = ("README.md", "docs/host-program.md")

# A block between fences or one that is indented; a picture begins with the command at a prompt.
BLOCK = re.compile(r"^```\w*\n(?P<fenced>.*?)^```$|(?P<indented>(?:^ {4}[^\n]*\n)+)", re.M | re.S)
PROMPT = "$ browsersweep "
COMMAND = re.compile(r"browsersweep (?!\[)(?P<arguments>.*?)(?: {2,}.*)?$")


def blocks(name):
    """The lines of every block of a document, without its indentation."""
    for found in BLOCK.finditer((ROOT / name).read_text("utf-8")):
        text = found["fenced"]
        yield text.splitlines() if text is not None else [
            line[4:] for line in found["indented"].splitlines()]


def pictures(name):
    """(arguments, output) of every picture of the program at work."""
    return [(shlex.split(block[0][len(PROMPT):]), "\n".join(block[1:]) + "\n")
            for block in blocks(name) if block[0].startswith(PROMPT)]


def commands(name):
    """The arguments of every command that a document tells its readers to try."""
    found = [COMMAND.fullmatch(line) for block in blocks(name) for line in block]
    return [shlex.split(match["arguments"]) for match in found if match]


class Shown(HostProgramTest):
    def setUp(self):
        super().setUp()
        self.environment["LC_ALL"] = "C.UTF-8"

    def make_home(self):
        subprocess.run([sys.executable, "-B", MAKER, self.home], check=True,
                       stdout=subprocess.DEVNULL)

    def test_the_program_prints_what_its_pictures_show(self):
        for name in DOCUMENTS:
            shown = pictures(name)
            self.assertNotEqual(shown, [], f"{name} has no picture")
            for arguments, output in shown:
                with self.subTest(f"{name}: {arguments}"):
                    result = self.run_program(*arguments)
                    # A picture says "~" for the home.
                    said = result.text.replace(str(self.home), "~")
                    self.assertEqual((said, result.error), (output, ""))
                    self.assertEqual(result.status, 0)

    def test_every_command_to_try_works(self):
        for name in DOCUMENTS:
            shown = commands(name)
            self.assertNotEqual(shown, [], f"{name} has no command")
            for arguments in shown:
                asks = {"clean", "forget"} & set(arguments) and not {"--dry-run", "help"} & set(
                    arguments)
                with self.subTest(f"{name}: {arguments}"):
                    result = self.run_program(*arguments, *["--dry-run"] * bool(asks), cwd=self.root)
                    self.assertEqual((result.status, result.error_without_notes_on_sites),
                                     (0, ""))
