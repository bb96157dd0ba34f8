"""The documents: the code in them is that of the examples, and their links lead somewhere."""

import re

from support import ROOT, ScriptTest

DOCUMENTS = [ROOT / name for name in ("README.md", "CONTRIBUTING.md", "CHANGELOG.md")]
DOCUMENTS += sorted((ROOT / "docs").glob("*.md"))

LINK = re.compile(r"\]\(([^)#]+)(?:#[^)]*)?\)")
CODE = re.compile(r"^```.*?^```$", re.M | re.S)


def code_of(document):
    """The first piece of C++ in a document."""
    return re.search(r"^```cpp\n(.*?)^```$", document.read_text("utf-8"), re.M | re.S)[1]


class Documents(ScriptTest):
    def test_the_code_that_readers_see_first_is_an_example(self):
        example = (ROOT / "examples" / "size_history.cpp").read_text("utf-8")
        for name in ("README.md", "docs/guide.md"):
            with self.subTest(name):
                self.assertEqual(code_of(ROOT / name), example.split("\n\n", 1)[1])

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
