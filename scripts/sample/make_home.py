#!/usr/bin/env python3
"""Makes a home folder in the macOS layout with the data of many browsers, for demonstrations.

    make_home.py DIR

DIR must not exist yet, or be empty: nothing that is there already is ever changed. The databases are
real SQLite files with the tables that the browsers themselves create. Each family of browsers has a
module beside this one, with a function make(home).
"""

import importlib
import pathlib
import sys

# The modules beside this one are run, not installed: no compiled copies in the source tree.
sys.dont_write_bytecode = True

FAMILIES = ("chromium", "firefox", "safari")


def make_home(home):
    """Fills the folder with every family whose module is there; returns their names."""
    if home.exists() and any(home.iterdir()):
        raise SystemExit(f"make_home.py: {home} is not empty")
    (home / "Library").mkdir(parents=True)
    made = []
    for family in FAMILIES:
        if (pathlib.Path(__file__).parent / f"{family}.py").is_file():
            importlib.import_module(family).make(home)
            made.append(family)
    return made


def main(arguments):
    if len(arguments) != 1 or arguments[0].startswith("-"):
        print("usage: make_home.py DIR", file=sys.stderr)
        return 2
    print(" ".join(make_home(pathlib.Path(arguments[0]))))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
