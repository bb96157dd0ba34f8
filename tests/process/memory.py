"""The most memory that a program held."""

import subprocess
import sys

# Starts the program and tells the most memory that it held. The system counts a process from before
# it became the program: so what becomes the program must be smaller, and tells how large it is. A
# fork is; it has none of the files that its parent has mapped and read.
STARTER = """
import os, resource, sys
unit = 1 if sys.platform == "darwin" else 1024
reading, writing = os.pipe()
program = os.fork()
if program == 0:
    own = b"0"
    if os.path.exists("/proc/self/status"):
        with open("/proc/self/status", "rb") as file:
            own = next(line.split()[1] for line in file if line.startswith(b"VmHWM:"))
    os.write(writing, own)
    os.execv(sys.argv[2], sys.argv[2:])
_, status, usage = os.wait4(program, 0)
with open(sys.argv[1], "w") as file:
    file.write(f"{int(os.read(reading, 20)) * 1024} {usage.ru_maxrss * unit}")
sys.exit(os.waitstatus_to_exitcode(status))
"""


def run_measured(command, environment, report):
    """What a command ended with, and the most memory that it held, in bytes."""
    finished = subprocess.run([sys.executable, "-I", "-S", "-c", STARTER, str(report), *command],
                              env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, check=False)
    starter, held = map(int, report.read_text(encoding="ascii").split())
    if held <= starter:
        raise AssertionError("what was measured is not the program")
    return finished, held
