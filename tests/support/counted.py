"""Runs a program's tests and counts them the way that scripts/test adds up."""

import os
import sys
import unittest


def run_all():
    """Runs the tests of the program, or those that its arguments name (Class, Class.test), and ends
    with the line that scripts/test counts."""
    os.environ["PYTHONDONTWRITEBYTECODE"] = "1"
    module, names = sys.modules["__main__"], sys.argv[1:]
    loader = unittest.defaultTestLoader
    suite = loader.loadTestsFromNames(names, module) if names else loader.loadTestsFromModule(module)
    result = unittest.TextTestRunner(stream=sys.stdout, verbosity=0).run(suite)
    # A test with several failing rows is one failed test; a row is known by the test it belongs to.
    failures = [test for test, _ in result.failures + result.errors] + result.unexpectedSuccesses
    failed = len({getattr(test, "test_case", test).id() for test in failures})
    skipped = len(result.skipped)
    for test, reason in result.skipped:
        print(f"skipped: {test} ({reason})")
    passed = max(0, result.testsRun - failed - skipped)
    # Tests that a class skips as a whole are not run; a module in which nothing is left is wrong.
    if result.testsRun == 0 and skipped == 0:
        failed = 1
    print(f"{passed} passed, {failed} failed, {skipped} skipped")
    sys.exit(1 if failed else 0)
