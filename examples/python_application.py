#!/usr/bin/env python3
"""A small application in Python: tells what each browser keeps, and cleans the history of one of them
for certain sites alone. Its user presses Stop once, and then lets it go to its end.

    python_application.py LIBRARY HOME

LIBRARY is the shared library, such as /usr/local/lib/libbrowsersweep.so.
"""

import sys
from ctypes import (
    POINTER,
    Structure,
    byref,
    c_bool,
    c_char_p,
    c_size_t,
    c_uint,
    c_uint32,
    c_void_p,
    sizeof,
)

from python_ctypes import ALL_CATEGORIES, ERROR, FUNCTIONS, PROGRESS, Library, Size


class Patterns(Structure):
    _fields_ = [
        ("struct_size", c_size_t),
        ("include", c_bool),
        ("patterns", POINTER(c_char_p)),
        ("count", c_size_t),
    ]


# What this application needs besides.
FUNCTIONS |= {
    "browser_from_raw_value": (c_bool, [c_char_p, POINTER(c_size_t)]),
    "category_from_raw_value": (c_bool, [c_char_p, POINTER(c_uint)]),
    "data_of_browser": (c_void_p, [c_void_p, c_size_t, ERROR]),
    "data_clean": FUNCTIONS["data_size"],
    "filters_new": (c_void_p, [ERROR]),
    "filters_add": (c_bool, [c_void_p, POINTER(Patterns), c_void_p, ERROR]),
    "filters_free": (None, [c_void_p]),
}


class Data:
    """What one browser keeps."""

    def __init__(self, library, home, browser):
        self.library = library
        self.handle = library.checked(library.data_of_browser, home, browser)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.library.data_free(self.handle)

    def work(self, function, categories, filters=None, progress=None):
        """Measures or cleans; gives what the function says, and why it did not go to its end."""
        size = Size(sizeof(Size))
        try:
            self.library.checked(
                function,
                self.handle,
                c_uint32(categories),
                filters,
                0,
                PROGRESS(progress) if progress else PROGRESS(),
                None,
                byref(size),
            )
        except RuntimeError as error:
            return size, str(error)
        return size, None


def show_sizes(library, home):
    for browser in range(library.browser_count()):
        with Data(library, home, browser) as data:
            size, error = data.work(library.data_size, ALL_CATEGORIES)
        name = library.browser_display_name(browser).decode()
        if error:
            print(f"{name}: {error}")
        elif size.items:
            print(f"{name}: {size.items} items, {size.bytes} bytes")


def filters_for(library, *sites):
    texts = (c_char_p * len(sites))(*[site.encode() for site in sites])
    patterns = Patterns(sizeof(Patterns), True, texts, len(sites))
    filters = library.checked(library.filters_new)
    library.checked(library.filters_add, filters, byref(patterns), None)
    return filters


def clean_cookies(library, home, filters):
    browser, category = c_size_t(), c_uint()
    library.browser_from_raw_value(b"googleChrome", byref(browser))
    library.category_from_raw_value(b"httpCookies", byref(category))
    cookies = 1 << category.value

    def show(_, __, done, total):
        print(f"{done} of {total}", file=sys.stderr)
        return not is_stop_pressed

    with Data(library, home, browser) as data:
        for is_stop_pressed in (True, False):
            removed, error = data.work(library.data_clean, cookies, filters, show)
            print(f"{'stopped' if error else 'done'}: {removed.items} cookies removed")


def main(arguments):
    if len(arguments) != 2:
        print("usage: python_application.py LIBRARY HOME", file=sys.stderr)
        return 2
    library = Library(arguments[0])
    home = library.checked(library.home_at, arguments[1].encode())
    show_sizes(library, home)
    filters = filters_for(library, "example.com", "example.org")
    clean_cookies(library, home, filters)
    library.filters_free(filters)
    library.home_free(home)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
