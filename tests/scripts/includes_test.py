"""scripts/check-includes on small trees, each with one breach."""

import sys

from support import ROOT, ScriptTest

# Files of a tree -> the lines that the check must print, no more and no fewer.
CASES = {
    "a header of a lower floor": (
        {"cleanable/A.h": '#include "browsersweep/platform/B.h"', "platform/B.h": ""},
        [],
    ),
    "a header of a higher floor": (
        {"platform/A.cpp": '#include "browsersweep/cleanable/B.h"', "cleanable/B.h": ""},
        ["browsersweep/platform/A.cpp:1: platform/ may not include browsersweep/cleanable/B.h"],
    ),
    "binary coding stands alone": (
        {"binarycoding/A.h": '#include "browsersweep/platform/B.h"', "platform/B.h": ""},
        ["browsersweep/binarycoding/A.h:1: binarycoding/ may not include browsersweep/platform/B.h"],
    ),
    "neighbours on one floor": (
        {"cookies/A.h": '#include "browsersweep/sqlite/B.h"', "sqlite/B.h": ""},
        ["browsersweep/cookies/A.h:1: cookies/ may not include browsersweep/sqlite/B.h"],
    ),
    "an internal header in a public one": (
        {"platform/A.h": '#include "browsersweep/base/internal/B.h"', "base/internal/B.h": ""},
        [
            "browsersweep/platform/A.h:1: browsersweep/base/internal/B.h is internal, and this "
            "header is public"
        ],
    ),
    "an internal header in a source and in an internal header": (
        {
            "platform/A.cpp": '#include "browsersweep/base/internal/B.h"',
            "platform/internal/C.h": '#include "browsersweep/base/internal/B.h"',
            "base/internal/B.h": "",
        },
        [],
    ),
    "a third party's header in a public header": (
        {"platform/A.h": "#include <expat.h>"},
        ["browsersweep/platform/A.h:1: <expat.h> in a public header"],
    ),
    "a third party's header in a source of the ground floor": (
        {"platform/A.cpp": "#include <expat.h>"},
        [],
    ),
    "a third party's header elsewhere": (
        {"profiles/A.cpp": "#include <vector>\n#include <expat.h>"},
        ["browsersweep/profiles/A.cpp:2: <expat.h> does not belong in profiles/"],
    ),
    "SQLite's header in its own sources": ({"sqlite/A.cpp": "#include <sqlite3.h>"}, []),
    "SQLite's header in a header": (
        {"sqlite/A.h": "#include <sqlite3.h>"},
        ["browsersweep/sqlite/A.h:1: <sqlite3.h> in a public header"],
    ),
    "conditional compilation on the ground floor": ({"platform/A.cpp": "#ifdef __APPLE__"}, []),
    "conditional compilation elsewhere": (
        {"cleanable/A.cpp": "\n#if defined(__APPLE__)"},
        ["browsersweep/cleanable/A.cpp:2: conditional compilation belongs in platform/"],
    ),
    "the header that C reads": (
        {"c/browsersweep.h": "#include <stdbool.h>\n#ifdef __cplusplus\n#endif"},
        [],
    ),
    "the header that C reads names its neighbour by its place": (
        {"c/browsersweep.h": '#include "../Export.h"', "Export.h": "#ifdef X\n#endif"},
        [],
    ),
    "a header named by its place elsewhere": (
        {"c/A.cpp": '#include "../Export.h"', "Export.h": ""},
        ['browsersweep/c/A.cpp:1: "../Export.h" is no file; write the path from the root'],
    ),
    "a header of C elsewhere": (
        {"cleanable/A.h": "#include <stdbool.h>"},
        ["browsersweep/cleanable/A.h:1: <stdbool.h> in a public header"],
    ),
    "the library uses the interface for C": (
        {"catalogue/A.h": '#include "browsersweep/c/browsersweep.h"', "c/browsersweep.h": ""},
        ["browsersweep/catalogue/A.h:1: catalogue/ may not include browsersweep/c/browsersweep.h"],
    ),
    "a directive inside a comment": ({"cleanable/A.cpp": "/*\n#ifdef X\n*/"}, []),
    "a file that is not there": (
        {"cleanable/A.cpp": '#include "B.h"'},
        ['browsersweep/cleanable/A.cpp:1: "B.h" is no file; write the path from the root'],
    ),
    "a folder without a floor": (
        {"attic/A.cpp": '#include "browsersweep/platform/B.h"', "platform/B.h": ""},
        ["browsersweep/attic/A.cpp:1: attic/ has no floor in scripts/check-includes"],
    ),
    "a cycle": (
        {
            "platform/A.h": '#include "browsersweep/platform/B.h"',
            "platform/B.h": '#include "browsersweep/platform/C.h"',
            "platform/C.h": '#include "browsersweep/platform/A.h"',
        },
        [
            "browsersweep/platform/A.h:1: includes itself: browsersweep/platform/A.h -> "
            "browsersweep/platform/B.h -> browsersweep/platform/C.h -> browsersweep/platform/A.h"
        ],
    ),
}


class CheckIncludes(ScriptTest):
    def check(self, root):
        return self.run_script(sys.executable, ROOT / "scripts" / "check-includes", root)

    def test_each_breach_is_found_and_nothing_else(self):
        for name, (files, wanted) in CASES.items():
            with self.subTest(name):
                root = self.folder / name
                for path, text in files.items():
                    file = root / "browsersweep" / path
                    file.parent.mkdir(parents=True, exist_ok=True)
                    file.write_text(text + "\n", encoding="utf-8")
                finished = self.check(root)
                self.assertEqual(finished.stdout.splitlines(), wanted, finished.stderr)
                self.assertEqual(finished.returncode, 1 if wanted else 0)

    def test_a_tree_without_files_is_a_failure(self):
        self.assertEqual(self.check(self.folder).returncode, 1)
