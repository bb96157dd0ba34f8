"""The mutants that no test can notice, with the reason of each, as docs/survivors.txt lists them."""

import dataclasses
import re

FILE = re.compile(r"^== (\S+)$")


@dataclasses.dataclass(frozen=True)
class Key:
    """What a mutant is known by: its file below browsersweep/, its kind, its line and the change."""

    file: str
    kind: str
    line: str
    original: str
    mutated: str

    def text(self):
        return f"{self.file} | {self.of_file()}"

    def of_file(self):
        return f"{self.kind} | {self.line} | {self.original} => {self.mutated}"


def read(path):
    """The explained mutants of a list. Each file has its heading, `== FILE`, and below it reasons,
    `-- REASON`, each with its mutants, one a line as scripts/mutate prints them."""
    return Explained(path.read_text(encoding="latin-1")) if path.is_file() else Explained("")


class Explained:
    def __init__(self, text):
        self.texts, self.files, self.problems = set(), set(), []
        file = reason = None
        for number, line in enumerate(text.splitlines(), 1):
            heading = FILE.match(line)
            if heading:
                file, reason = heading[1], None
            elif line.startswith("-- "):
                reason = line[3:].strip()
            elif line.strip() and not line.startswith("#"):
                if file is None or not reason:
                    self.problems.append(f"line {number} has no file or no reason")
                else:
                    self.texts.add(f"{file} | {line.strip()}")
                    self.files.add(file)

    def __contains__(self, key):
        return key.text().strip() in self.texts
