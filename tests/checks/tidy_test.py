"""clang-tidy, which takes as long as a build."""

import shutil

import pytest

from static_test import run


@pytest.mark.skipif(shutil.which("clang-tidy") is None, reason="clang-tidy is not installed")
def test_clang_tidy_finds_nothing():
    run("scripts/tidy")
