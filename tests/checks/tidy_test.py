"""clang-tidy, which takes as long as a build."""

import re
import shutil
import subprocess

import pytest

from static_test import run

# Each version has checks of its own: the one of Debian 12 decides.
DECIDING = "14"


def reason_to_skip():
    """Why nothing can be checked here; nothing where it can."""
    if shutil.which("clang-tidy") is None:
        return "clang-tidy is not installed"
    told = subprocess.run(["clang-tidy", "--version"], stdout=subprocess.PIPE, text=True, check=False)
    version = re.search(r"version (\d+)", told.stdout)
    if version is None or version[1] != DECIDING:
        return f"clang-tidy {DECIDING} decides, and this is another one: {told.stdout.strip()}"
    return ""


def test_clang_tidy_finds_nothing():
    if reason := reason_to_skip():
        pytest.skip(reason)
    run("scripts/tidy")
