#!/usr/bin/env python3
"""The library from Python, through its C interface: lists profiles and measures their data.

    python_ctypes.py LIBRARY HOME

LIBRARY is the shared library, such as /usr/local/lib/libbrowsersweep.so.
"""

import ctypes
import sys
from ctypes import POINTER, byref, c_bool, c_char_p, c_int64, c_size_t, c_uint, c_uint32, c_void_p

ALL_CATEGORIES = 0xFFFFFFFF


class Size(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_size_t),
        ("items", c_int64),
        ("bytes", c_int64),
        ("items_are_approximate", c_bool),
        ("bytes_are_approximate", c_bool),
    ]


PROGRESS = ctypes.CFUNCTYPE(c_bool, c_void_p, c_uint, c_size_t, c_size_t)
ERROR = POINTER(c_void_p)

# Function -> its result and its arguments, as the header declares them.
FUNCTIONS = {
    "browser_count": (c_size_t, []),
    "browser_display_name": (c_char_p, [c_size_t]),
    "error_text": (c_char_p, [c_void_p]),
    "error_free": (None, [c_void_p]),
    "home_at": (c_void_p, [c_char_p, ERROR]),
    "home_free": (None, [c_void_p]),
    "profiles_read": (c_void_p, [c_void_p, c_size_t, ERROR]),
    "profiles_count": (c_size_t, [c_void_p]),
    "profiles_name": (c_char_p, [c_void_p, c_size_t]),
    "profiles_free": (None, [c_void_p]),
    "data_of_profile": (c_void_p, [c_void_p, c_size_t, ERROR]),
    "data_size": (
        c_bool,
        [c_void_p, c_uint32, c_void_p, c_uint, PROGRESS, c_void_p, POINTER(Size), ERROR],
    ),
    "data_free": (None, [c_void_p]),
}


class Library:
    """The functions of the library, without their common prefix."""

    def __init__(self, path):
        library = ctypes.CDLL(path)
        for name, (result, arguments) in FUNCTIONS.items():
            function = getattr(library, f"browsersweep_{name}")
            function.restype, function.argtypes = result, arguments
            setattr(self, name, function)

    def checked(self, function, *arguments):
        """Calls a function that can fail; raises its error as an exception of Python."""
        error = c_void_p()
        result = function(*arguments, byref(error))
        if not result:
            text = self.error_text(error).decode()
            self.error_free(error)
            raise RuntimeError(text)
        return result


def items_of(library, profiles, index):
    data = library.checked(library.data_of_profile, profiles, index)
    try:
        size, no_progress = Size(ctypes.sizeof(Size)), PROGRESS()
        library.checked(
            library.data_size, data, ALL_CATEGORIES, None, 0, no_progress, None, byref(size)
        )
        return size.items
    finally:
        library.data_free(data)


def show(library, home, browser):
    profiles = library.checked(library.profiles_read, home, browser)
    try:
        for index in range(library.profiles_count(profiles)):
            name = library.profiles_name(profiles, index)
            browser_name = library.browser_display_name(browser).decode()
            shown = name.decode() if name is not None else "(no name)"
            print(f"{browser_name}, {shown}: {items_of(library, profiles, index)} items")
    finally:
        library.profiles_free(profiles)


def main(arguments):
    if len(arguments) != 2:
        print("usage: python_ctypes.py LIBRARY HOME", file=sys.stderr)
        return 2
    library = Library(arguments[0])
    home = library.checked(library.home_at, arguments[1].encode())
    for browser in range(library.browser_count()):
        show(library, home, browser)
    library.home_free(home)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
