"""The comparison with Python's readers: its rules have examples, and it finds what differs."""

import random
import re
import struct
import subprocess
import sys

from support import ROOT, ScriptTest

FOLDER = ROOT / "fuzz" / "differential"
sys.path.insert(0, str(FOLDER))

import documents  # noqa: E402
import readers  # noqa: E402
from rules import RULES, UNDECIDED, Undecided  # noqa: E402

# Reads JSON as the comparison does; what `lie` does with one answer is each test's.
STAND_IN = f"""#!{sys.executable}
import struct, sys
sys.dont_write_bytecode = True
sys.path.insert(0, {str(FOLDER)!r})
import readers
sys.setrecursionlimit(6000)
def lie(data, found): return found
LIE
while head := sys.stdin.buffer.read(5):
    data = sys.stdin.buffer.read(struct.unpack(">I", head[1:])[0])
    found = lie(data, readers.view("j", data)[0])
    answer = b"-" if found is None else b"+"
    for piece in (found or b"", b""):
        answer += struct.pack(">I", len(piece)) + piece
    sys.stdout.buffer.write(answer)
    sys.stdout.buffer.flush()
"""


def binary(objects, within=(), size=1):
    """A binary property list of these objects, and of some that lie within others."""
    data, offsets = b"bplist00", []
    for each in objects:
        offsets.append(len(data))
        data += each
    offsets += within
    table = b"".join(offset.to_bytes(size, "big") for offset in offsets)
    return data + table + struct.pack(">6xBBQQQ", size, 1, len(offsets), 0, len(data))


def xml(text):
    return f"<plist>{text}</plist>".encode()


# Rule -> letters and documents that Python takes and the rule refuses.
EXAMPLES = {
    "JSON in UTF-8": [("j", "[1]".encode("utf-16"))],
    "no constants": [("j", b"[NaN]"), ("j", b"-Infinity")],
    "whole characters": [("j", b'"\\ud800"'), ("j", b'{"\\udc00": 1}')],
    "numbers in range": [("j", b"[1e999]"), ("j", b"9" * 400), ("p", xml("<real>1e999</real>"))],
    "512 levels": [
        ("j", b"[" * 513 + b"]" * 513),
        ("p", b"(" * 513 + b")" * 513),
        ("p", xml("<array>" * 513 + "</array>" * 513)),
    ],
    "exact trailer": [("p", binary([b"\x09"]) + bytes(32)), ("p", binary([b"\x09"], size=9))],
    "objects in their place": [("p", binary([b"\xa1\x01", b"\x10"])), ("p", binary([b"\x11\x01"]))],
    "objects apart": [("p", binary([b"\xa2\x01\x02", b"\x53\x51aa"], within=[12]))],
    "counts of integers": [("p", binary([b"\x4f\x20\x01a"]))],
    "no null": [("p", binary([b"\x00"])), ("p", binary([b"\x0f"]))],
    "64 bits": [
        ("p", binary([b"\x14\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0"])),
        ("p", binary([b"\x15" + bytes(32)])),
        ("p", binary([b"\x88" + bytes(9)])),
        ("p", xml("<integer>18446744073709551616</integer>")),
    ],
    "keys are texts": [("p", binary([b"\xd1\x01\x01", b"\x10\x01"]))],
    "no cycles": [("p", binary([b"\xa1\x00"]))],
    "known elements": [("p", xml("<set/>"))],
    "elements in their place": [
        ("p", xml("<true/><true/>")),
        ("p", xml("<string>a<true/>b</string>")),
        ("p", xml("<dict><key></key></dict>")),
        ("p", xml("<true>x</true>")),
    ],
    "no text between": [("p", xml("x<true/>"))],
    "known encodings": [("p", b"<?xml version='1.0' encoding='koi8-r'?><true/>")],
    "plain integers": [("p", xml("<integer>1_0</integer>"))],
    "plain reals": [("p", xml("<real>1_0.5</real>"))],
    "whole dates": [
        ("p", xml("<date>2001Z</date>")),
        ("p", xml("<date>2001-01-01T00:00:00Zx</date>")),
    ],
    "strict base 64": [("p", xml("<data>Q!Q==</data>"))],
    "some value": [("p", b"<plist/>"), ("p", b"")],
    "text grammar": [("p", b"{ a = "), ("p", b"a = b;\0"), ("p", b"/* ")],
    "cookie layout": [("c", b"kooc"), ("c", b"cook\0\0\0\1")],
}


class Differential(ScriptTest):
    def setUp(self):
        super().setUp()
        self.addCleanup(sys.setrecursionlimit, sys.getrecursionlimit())
        sys.setrecursionlimit(6000)

    def compare(self, lie="", *arguments):
        program = self.folder / "describe"
        program.write_text(STAND_IN.replace("LIE", lie), encoding="utf-8")
        program.chmod(0o700)
        return subprocess.run(
            [sys.executable, FOLDER / "run.py", "--program", program, "--formats", "json"]
            + ["--no-corpus", "--inputs", "600", *arguments],
            capture_output=True,
            text=True,
            check=False,
        )

    def test_every_rule_refuses_its_examples(self):
        self.assertEqual(set(EXAMPLES), set(RULES))
        for rule, examples in EXAMPLES.items():
            for letter, document in examples:
                with self.subTest(rule=rule, document=document[:60]):
                    self.assertEqual(readers.view(letter, document), (None, f"Refused: {rule}"))

    def test_what_no_rule_decides_is_no_view(self):
        lattice = binary([b"\xa2" + bytes([i + 1, i + 1]) for i in range(30)] + [b"\x09"])
        self.assertEqual(set(UNDECIDED), {"bounded growth"})
        with self.assertRaises(Undecided):
            readers.view("p", lattice)

    def test_the_three_forms_of_one_list_are_one_value(self):
        value = "{1:s1:a[2:s1:bx1:\1"
        for document in (
            xml("<dict><key>a</key><array><string>b</string><data>AQ==</data></array></dict>"),
            binary([b"\xd1\x01\x02", b"\x51a", b"\xa2\x03\x04", b"\x51b", b"\x41\x01"]),
            b"{ a = (b, <01>); }",
        ):
            self.assertEqual(readers.view("p", document), (value.encode(), ""))

    def test_a_seed_decides_every_document(self):
        for make in (documents.json_document, documents.cookie_document, documents.xml_document):
            first, again, other = (make(random.Random(seed)) for seed in (1, 1, 2))
            self.assertEqual(first, again)
            self.assertNotEqual(first, other)

    def test_the_same_views_pass(self):
        done = self.compare("", "--seed", "1", "--seed", "2")
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertEqual(done.stdout.splitlines()[-1], "2 passed, 0 failed, 0 skipped")

    def test_another_view_is_shown_with_its_input(self):
        lie = "def lie(data, found): return b'n' if found == b't' else found"
        done = self.compare(lie, "--seed", "1")
        self.assertEqual(done.returncode, 1, done.stderr)
        finding = re.search(r"^json, seed 1, input \d+: ([0-9a-f]+)\n  library: n\n  Python:  t$",
                            done.stdout, re.M)
        self.assertEqual(bytes.fromhex(finding[1]).strip(b"\xef\xbb\xbf \t\r\n"), b"true")
        self.assertEqual(done.stdout.splitlines()[-1], "0 passed, 1 failed, 0 skipped")

    def test_an_input_that_ends_the_program_is_a_finding_and_the_others_are_compared(self):
        lie = "def lie(data, found): return found if found != b't' else sys.exit(3)"
        done = self.compare(lie, "--seed", "1")
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertIn("the program ended: status 3", done.stdout)
        counts = re.search(r"^FAILED: json, seed 1: (.*)$", done.stdout, re.M)[1]
        self.assertEqual(sum(map(int, re.findall(r"\d+", counts))), 600)

    def test_a_program_that_refuses_everything_is_found_out(self):
        done = self.compare("def lie(data, found): return None", "--seed", "1")
        self.assertEqual(done.returncode, 1)
        self.assertIn("too few of one kind to compare", done.stdout)
