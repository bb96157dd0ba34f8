#!/usr/bin/env python3
"""A small application in Python: tells what each browser keeps, looks at what a clean of one of them
for certain sites would take, and cleans the cookies of these sites. Its user presses Stop once, and then
lets it go to its end.

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
    c_int64,
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


class Entry(Structure):
    _fields_ = [
        ("struct_size", c_size_t),
        ("category", c_uint),
        ("profile", c_char_p),
        ("folder", c_char_p),
        ("path", c_char_p),
        ("table", c_char_p),
        ("items", c_int64),
        ("bytes", c_int64),
        ("items_are_approximate", c_bool),
        ("bytes_are_approximate", c_bool),
        ("has_bytes", c_bool),
        ("is_unseen", c_bool),
    ]


STRICT = 2  # leaves out what filters cannot see

# What this application needs besides.
FUNCTIONS |= {
    "browser_from_raw_value": (c_bool, [c_char_p, POINTER(c_size_t)]),
    "category_from_raw_value": (c_bool, [c_char_p, POINTER(c_uint)]),
    "data_of_browser": (c_void_p, [c_void_p, c_size_t, ERROR]),
    "data_clean": FUNCTIONS["data_size"],
    "plan_of_data": (
        c_void_p,
        [c_void_p, c_uint32, c_void_p, c_uint, PROGRESS, c_void_p, ERROR],
    ),
    "plan_entry": (c_bool, [c_void_p, c_size_t, POINTER(Entry)]),
    "plan_free": (None, [c_void_p]),
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
                STRICT,
                PROGRESS(progress) if progress else PROGRESS(),
                None,
                byref(size),
            )
        except RuntimeError as error:
            return size, str(error)
        return size, None


    def plan(self, categories, filters):
        """What a clean that is not strict would take, one by one."""
        plan = self.library.checked(
            self.library.plan_of_data, self.handle, categories, filters, 0, PROGRESS(), None
        )
        entry, index = Entry(sizeof(Entry)), 0
        while self.library.plan_entry(plan, index, byref(entry)):
            yield entry
            index += 1
        self.library.plan_free(plan)


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


def category_named(library, name):
    category = c_uint()
    library.category_from_raw_value(name, byref(category))
    return 1 << category.value


def show_plan(data, category, filters):
    for entry in data.plan(category, filters):
        what = f"{entry.items} rows of {entry.table.decode()}" if entry.table else "a file"
        print(f"{entry.profile.decode()}: {what}{', of any site' if entry.is_unseen else ''}")


def clean_cookies(library, home, filters):
    browser = c_size_t()
    library.browser_from_raw_value(b"googleChrome", byref(browser))
    cookies = category_named(library, b"httpCookies")

    def show(_, __, done, total):
        print(f"{done} of {total}", file=sys.stderr)
        return not is_stop_pressed

    with Data(library, home, browser) as data:
        show_plan(data, category_named(library, b"formData"), filters)
        show_plan(data, cookies, filters)
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
