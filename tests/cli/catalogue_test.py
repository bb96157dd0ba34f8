"""What names browsers and categories outside the library agrees with what the library knows.

The library's table of browsers is the only place that says what a browser is; the program prints
it. Whatever else holds a list of them is compared with that here, so that a row that was forgotten
somewhere fails in this one place.
"""

import json
import re

from fixture import BROWSERS, CATEGORIES, KINDS, ROOT, HostProgramTest

COMPLETIONS = {
    "browsersweep.bash": r'local {}="([^"]*)"',
    "_browsersweep": r"^ *{}='([^']*)'",
    "browsersweep.fish": r"^set -l {} ((?:.*\\\n)*.*)$",
}


def enumerations(schema):
    """Every list of allowed values in a schema."""
    if isinstance(schema, dict):
        if "enum" in schema:
            yield schema["enum"]
        for value in schema.values():
            yield from enumerations(value)
    elif isinstance(schema, list):
        for value in schema:
            yield from enumerations(value)


class Catalogue(HostProgramTest):
    def rows(self):
        return self.document("browsers")["browsers"]

    def test_the_tests_own_list_is_the_librarys(self):
        self.assertEqual([row["browser"] for row in self.rows()], BROWSERS)

    def test_the_completions_offer_them_in_their_order(self):
        for name, pattern in COMPLETIONS.items():
            text = (ROOT / "cli" / "completions" / name).read_text()
            for variable, expected in (("browsers", BROWSERS), ("categories", CATEGORIES),
                                       ("kinds", KINDS)):
                with self.subTest(file=name, variable=variable):
                    found = re.search(pattern.format(variable), text, re.M)
                    self.assertEqual(found[1].replace("\\\n", " ").split(), expected)

    def test_the_schemas_allow_them_and_no_other(self):
        for file in sorted((ROOT / "docs" / "schemas").glob("*.json")):
            with self.subTest(file=file.name):
                lists = list(enumerations(json.loads(file.read_text())))
                self.assertIn(BROWSERS, lists)
                for values in lists:
                    if set(values) & set(BROWSERS):
                        self.assertEqual(values, BROWSERS)
                    elif set(values) - set(CATEGORIES) and set(values) & set(KINDS):
                        self.assertEqual(values, KINDS)
                    elif set(values) & set(CATEGORIES):
                        self.assertEqual(values, CATEGORIES)

    def test_the_manual_names_them_in_their_order(self):
        bold = re.findall(r"^\.BR? (\w+)", (ROOT / "docs/man/browsersweep.1").read_text(), re.M)
        for expected in (BROWSERS, CATEGORIES, KINDS):
            start = next(i for i, name in enumerate(bold) if bold[i:i + 2] == expected[:2])
            self.assertEqual(bold[start:start + len(expected)], expected)

    def test_the_readme_names_the_family_of_chromium(self):
        text = " ".join((ROOT / "README.md").read_text().split())
        family = re.search(r"The Chromium family consists of (.*?)\. ", text)[1]
        named = re.split(r", | and ", family)
        others = {"firefox", "safari"}
        shown = [row["displayName"] for row in self.rows() if row["browser"] not in others]
        self.assertEqual([name.removesuffix(" Browser") if name == "Brave Browser" else name
                          for name in shown], named)
