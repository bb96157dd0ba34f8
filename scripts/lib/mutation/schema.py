"""Writes a file anew with its mutants in it: which of them acts is chosen when the program runs."""

import dataclasses
import pathlib

# So many numbers are kept for each file, so that those of one do not depend on the others.
NUMBERS_OF_A_FILE = 1024
STATEMENTS = ("removed", "result")
TABLE, ITS_LENGTH = "const    ", len("constexpr")


@dataclasses.dataclass
class Region:
    """What a mutant has added to the text: from `begin` to `inner` and from `inner_end` to `end`."""

    number: int
    begin: int
    inner: int
    inner_end: int = 0
    end: int = 0

    def adds(self, offset):
        return self.begin <= offset < self.inner or self.inner_end <= offset < self.end


class Schema:
    """A file and those of its mutants, by number, that are not yet given up."""

    def __init__(self, path, text, mutants):
        self.path = pathlib.PurePath(path)
        self.original = text
        self.mutants = dict(mutants)
        self.refused = {}
        self.regions = []
        self.text = ""
        self.refuse(self.crossing(), "crosses another one")
        self.write()

    def refuse(self, numbers, why):
        for number in numbers:
            if number in self.mutants:
                self.refused[number] = (self.mutants.pop(number), why)

    def placed(self):
        """The insertions, the outer ones first."""
        every = [(each, number) for number, mutant in self.mutants.items() for each in mutant.insertions]
        return sorted(every, key=lambda pair: (pair[0].begin, -pair[0].end,
                                               self.mutants[pair[1]].kind not in STATEMENTS, pair[1]))

    def crossing(self):
        found, around = set(), []
        for insertion, number in self.placed():
            while around and around[-1] <= insertion.begin:
                around.pop()
            if around and insertion.end > around[-1]:
                found.add(number)
            else:
                around.append(insertion.end)
        return found

    def question(self, number):
        name = "chosenWhereRun" if self.mutants[number].constant else "chosen"
        return f"browsersweep::mutation::{name}({number})"

    def write(self):
        """The text of the changed file, in lines as long as there were."""
        self.regions, pieces, length, position, around = [], [], 0, 0, []
        tables = sorted({each.table for each in self.mutants.values() if each.table is not None})
        source = self.original
        for place in tables:
            source = source[:place] + TABLE + source[place + ITS_LENGTH:]

        def put(text):
            nonlocal length
            pieces.append(text)
            length += len(text)

        def copy_to(end):
            nonlocal position
            put(source[position:end])
            position = end

        def close():
            insertion, region = around.pop()
            copy_to(insertion.end)
            region.inner_end = length
            put(insertion.after)
            region.end = length

        for insertion, number in self.placed():
            while around and around[-1][0].end <= insertion.begin:
                close()
            copy_to(insertion.begin)
            region = Region(number, length, 0)
            put(insertion.before.replace("@", self.question(number)))
            region.inner = length
            self.regions.append(region)
            around.append((insertion, region))
        while around:
            close()
        copy_to(len(source))
        self.text = "".join(pieces)

    def blamed(self, spots):
        """The mutants that a compiler means with these spots, each a line and a column of bytes."""
        lines = self.text.split("\n")
        starts = [0]
        for line in lines:
            starts.append(starts[-1] + len(line) + 1)
        offsets = [starts[line - 1] + column - 1 for line, column in spots if line < len(starts)]
        for offset in offsets:
            inside = [each for each in self.regions if each.adds(offset)]
            if inside:
                return {min(inside, key=lambda each: each.end - each.begin).number}
        for offset in offsets:
            around = [each for each in self.regions if each.begin <= offset < each.end]
            if around:
                return {min(around, key=lambda each: each.end - each.begin).number}
        named = self.tables_named(spots)
        return named or {each.number for each in self.regions
                         if any(starts[line - 1] <= each.begin < starts[line] for line, _ in spots
                                if line < len(starts))}

    def tables_named(self, spots):
        """The mutants of a table that is declared on one of these lines."""
        lines = {line for line, _ in spots}
        return {number for number, mutant in self.mutants.items() if mutant.table is not None
                and self.original.count("\n", 0, mutant.table) + 1 in lines}
