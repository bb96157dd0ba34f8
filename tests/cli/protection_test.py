"""What the program says of folders that privacy protection keeps from it: where macOS is emulated."""

import unittest

from fixture import PROGRAM, HostProgramTest, write

NEEDED = "needs Full Disk Access"


@unittest.skipUnless("darwin-on-linux" in PROGRAM, "the program asks the real kernel")
class Protection(HostProgramTest):
    def setUp(self):
        super().setUp()
        self.safari = self.home / "Library" / "Safari"
        write(self.safari / "History.db", b"x" * 100)
        self.environment["DARWIN_PROTECTED"] = str(self.safari)

    def test_the_doctor_tells_protected_folders_from_those_that_are_missing(self):
        document = self.document("doctor", "--browser", "safari", status=1)
        self.assertTrue(document["needsFullDiskAccess"])
        states = {place["path"]: place["state"] for place in document["browsers"][0]["places"]}
        self.assertEqual(states.pop(str(self.safari)), "deniedByPrivacyProtection")
        self.assertEqual(set(states.values()), {"missing"})

    def test_a_protected_file_that_can_be_seen_is_a_failure_and_the_remedy_is_told(self):
        self.environment["DARWIN_EMULATION"] = "hide=no"
        result = self.run_program("size", "--browser", "safari")
        self.assertEqual(result.status, 1, result.text)
        self.assertIn("Operation not permitted", result.error)
        self.assertEqual(result.error.count(NEEDED), 1, result.error)

    def test_other_browsers_need_nothing(self):
        result = self.run_program("size", "--browser", "chromium")
        self.assertEqual((result.status, result.error), (0, ""))

    def test_protected_files_that_are_hidden_are_no_exact_nothing(self):
        result = self.run_program("size", "--browser", "safari")
        self.assertEqual(result.status, 1, result.text)
        self.assertEqual(result.error.count(NEEDED), 1, result.error)
