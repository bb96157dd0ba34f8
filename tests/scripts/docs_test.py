"""The documents: the code in them is that of the examples, and their links lead somewhere."""

import re
import subprocess

from support import ROOT, ScriptTest

DOCUMENTS = [ROOT / name for name in ("README.md", "CONTRIBUTING.md", "CHANGELOG.md")]
DOCUMENTS += sorted((ROOT / "docs").glob("*.md"))

LINK = re.compile(r"\]\(([^)#]+)(?:#[^)]*)?\)")
CODE = re.compile(r"^```.*?^```$", re.M | re.S)


# What the pieces of code in the guide take for granted.
BEFORE_CPP = """
#include <iostream>
#include "browsersweep/catalogue/BrowserCleaners.h"
#include "browsersweep/hosting/FilterDivision.h"
#include "browsersweep/hosting/ItemEntries.h"
#include "browsersweep/hosting/ItemSweep.h"
#include "browsersweep/platform/Accessibility.h"
#include "browsersweep/platform/ForwardingFileManager.h"
using namespace browsersweep;
void pieces(const std::filesystem::path& folder, CleanableDataFilters filters,
            const std::shared_ptr<OperationControl>& control, bool stopWasPressed) {
    const auto home = Home::at(folder);
    const auto chrome = cleaner(Browser::googleChrome, home);
    const auto everyProfile = [](const BrowserProfile&) { return true; };
    const auto show = [](auto... counts) { ((std::cout << counts), ...); };
"""
BEFORE_C = """
#include <stdio.h>
#include "browsersweep/c/browsersweep.h"
void pieces(const browsersweep_data* data, browsersweep_categories categories,
            const browsersweep_filters* filters, browsersweep_error* error) {
"""


def codes_of(document, language):
    """The pieces of code of a language in a document."""
    return re.findall(rf"^```{language}\n(.*?)^```$", document.read_text("utf-8"), re.M | re.S)


def code_of(document):
    """The first piece of C++ in a document."""
    return codes_of(document, "cpp")[0]


class Documents(ScriptTest):
    def test_the_code_that_readers_see_first_is_an_example(self):
        example = (ROOT / "examples" / "size_history.cpp").read_text("utf-8")
        for name in ("README.md", "docs/guide.md"):
            with self.subTest(name):
                self.assertEqual(code_of(ROOT / name), example.split("\n\n", 1)[1])

    def test_the_code_of_the_guide_compiles(self):
        guide = ROOT / "docs" / "guide.md"
        for compiler, ending, before, pieces in (
                (["c++", "-std=c++20"], "cpp", BEFORE_CPP, codes_of(guide, "cpp")[1:]),
                (["cc", "-std=c11"], "c", BEFORE_C, codes_of(guide, "c"))):
            with self.subTest(ending):
                self.assertTrue(pieces)
                source = self.folder / f"pieces.{ending}"
                source.write_text(before + "".join(f"{{\n{piece}}}\n" for piece in pieces) + "}\n", "utf-8")
                finished = subprocess.run([*compiler, "-fsyntax-only", "-I", ROOT, source],
                                          stderr=subprocess.PIPE, text=True, check=False)
                self.assertEqual((finished.returncode, finished.stderr), (0, ""))

    def test_every_example_is_run(self):
        programs = {path.stem for path in (ROOT / "examples").glob("*.c*")}
        programs |= {path.stem for path in (ROOT / "examples").glob("*.py")}
        expected = {path.stem for path in (ROOT / "tests" / "examples").glob("*.expected")}
        self.assertEqual(programs, expected)

    def test_links_lead_somewhere(self):
        for document in DOCUMENTS:
            prose = CODE.sub("", document.read_text("utf-8"))
            for link in LINK.findall(prose):
                if not link.startswith("https://"):
                    with self.subTest(f"{document.name}: {link}"):
                        self.assertTrue((document.parent / link).exists())
