"""The library's readers beside Python's: the same documents every time, and as many new ones.

DIFFERENTIAL_INPUTS says how many documents of each format are compared.
"""

import os
import pathlib
import subprocess
import sys

import pytest

PROGRAM = pathlib.Path(__file__).resolve().parents[2] / "fuzz" / "differential" / "run.py"
INPUTS = os.environ.get("DIFFERENTIAL_INPUTS", "3000")


@pytest.mark.parametrize("arguments", [["--seed", "1", "--no-corpus"], []], ids=["same", "new"])
@pytest.mark.parametrize("name", ["json", "binary", "xml", "text", "cookies"])
def test_both_read_the_same(name, arguments):
    finished = subprocess.run([sys.executable, PROGRAM, "--inputs", INPUTS, "--formats", name, *arguments],
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False)
    if finished.returncode != 0:
        pytest.fail(finished.stdout, pytrace=False)
