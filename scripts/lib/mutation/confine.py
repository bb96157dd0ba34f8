"""Keeps a process and all that it starts from changing anything outside one folder, whatever it does:
a mutant may delete what it likes. The kernel does it (Landlock, Linux 5.13)."""

import ctypes
import os

CREATE, ADD_RULE, RESTRICT = 444, 445, 446
VERSION, BENEATH, NO_NEW_PRIVILEGES = 1, 1, 38
WRITE_FILE = 1 << 1
# Writing, removing and making files of every kind: the bits 1 and 4 to 12.
CHANGES = WRITE_FILE | sum(1 << bit for bit in range(4, 13))
LINK_ACROSS, TRUNCATE = 1 << 13, 1 << 14


class Rules(ctypes.Structure):
    _fields_ = [("files", ctypes.c_uint64)]


class Beneath(ctypes.Structure):
    _pack_ = 1
    _fields_ = [("allowed", ctypes.c_uint64), ("folder", ctypes.c_int32)]


def call(number, *arguments):
    library = ctypes.CDLL(None, use_errno=True)
    result = library.syscall(number, *arguments)
    if result < 0:
        raise OSError(ctypes.get_errno(), "the kernel cannot confine a process")
    return result


def version():
    """What the kernel can do, 0 where it cannot."""
    try:
        return call(CREATE, None, ctypes.c_size_t(0), VERSION)
    except (OSError, AttributeError):
        return 0


def confine(folder):
    """From now on this process changes nothing but what lies in the folder, and devices."""
    changes = CHANGES
    if version() >= 2:
        changes |= LINK_ACROSS
    if version() >= 3:
        changes |= TRUNCATE
    rules = Rules(changes)
    ruleset = call(CREATE, ctypes.byref(rules), ctypes.c_size_t(ctypes.sizeof(rules)), 0)
    for path, allowed in ((folder, changes), ("/dev/null", WRITE_FILE & changes)):
        descriptor = os.open(path, os.O_PATH | os.O_CLOEXEC)
        beneath = Beneath(allowed, descriptor)
        call(ADD_RULE, ruleset, BENEATH, ctypes.byref(beneath), 0)
        os.close(descriptor)
    ctypes.CDLL(None).prctl(NO_NEW_PRIVILEGES, 1, 0, 0, 0)
    call(RESTRICT, ruleset, 0)
    os.close(ruleset)
