"""Checks that read the sources and build nothing."""

import ast
import pathlib
import re
import shutil
import subprocess
import sys

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]


def run(*command):
    """Fails with all that the command says, where it fails. By the status 77 it says: skip this."""
    finished = subprocess.run(command, cwd=ROOT, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False)
    if finished.returncode == 77:
        pytest.skip(finished.stdout.strip())
    if finished.returncode != 0:
        pytest.fail(finished.stdout[-20000:], pytrace=False)


def needs(tool):
    if shutil.which(tool) is None:
        pytest.skip(f"{tool} is not installed")


def listed(function):
    """The files that a function of scripts/lib/common.sh lists."""
    script = f'. "{ROOT}/scripts/lib/common.sh"; {function}'
    output = subprocess.run(["bash", "-c", script], stdout=subprocess.PIPE, text=True, check=True)
    files = output.stdout.splitlines()
    assert files
    return files


def test_the_cxx_files_are_formatted():
    needs("clang-format")
    run("scripts/format", "--check")


def test_shellcheck_finds_nothing_in_the_scripts():
    needs("shellcheck")
    run("shellcheck", *listed("shell_files"))


def test_the_python_files_compile():
    """By Python 3.9 too, which is what Xcode brings: it knows no `X | Y` but in annotations that wait."""
    for name in listed("python_files"):
        text = (ROOT / name).read_text(encoding="utf-8")
        compile(text, name, "exec")
        ast.parse(text, name, feature_version=(3, 9))
        if re.search(r"(: |-> )[\w.\[\], ]+ \| None\b", text):
            assert "from __future__ import annotations" in text, name


def test_nobody_includes_what_is_above():
    run(sys.executable, "scripts/check-includes")


def test_the_reference_is_built_without_a_warning():
    needs("doxygen")
    run("scripts/docs")
