"""Runs a program on a sample home that is made for it, and removed again.

    run_on_sample.py [--expect FILE] PROGRAM [ARGUMENT...]

The program gets the home's path as its last argument, and HOME, with what macOS asks instead of it, and
TMPDIR in private folders. It must end with status 0 and, with --expect, print what the file holds:
there "#" stands for any digits, and HOME for the home's path.
"""

import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True

ROOT = pathlib.Path(__file__).resolve().parents[2]


def run(command, folder):
    sample = folder / "sample"
    maker = ROOT / "scripts" / "sample" / "make_home.py"
    subprocess.run([sys.executable, maker, sample], stdout=subprocess.DEVNULL, check=True)
    environment = {key: os.environ[key] for key in os.environ if not key.startswith("XDG_")}
    for key, name in (("HOME", "home"), ("CFFIXED_USER_HOME", "home"), ("TMPDIR", "tmp")):
        (folder / name).mkdir(exist_ok=True)
        environment[key] = str(folder / name)
    finished = subprocess.run(
        [*command, sample], env=environment, stdout=subprocess.PIPE, text=True, check=False
    )
    return finished.returncode, finished.stdout.replace(str(sample), "HOME")


def is_as_expected(output, expected):
    return re.fullmatch(re.escape(expected).replace(r"\#", "[0-9]+"), output) is not None


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--expect", type=pathlib.Path)
    parser.add_argument("command", nargs=argparse.REMAINDER)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="browsersweep-sample.") as folder:
        status, output = run(options.command, pathlib.Path(folder).resolve())
    if status != 0:
        print(f"{output}ended with status {status}")
        return 1
    if options.expect and not is_as_expected(output, options.expect.read_text(encoding="utf-8")):
        print(f"{output}is not what {options.expect} says")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
