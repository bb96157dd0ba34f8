"""The sample home of the demonstration holds what Safari keeps."""

import plistlib
import sqlite3
import struct

from support import ScriptTest, sample

safari = sample("safari")


def query(path, sql):
    database = sqlite3.connect(f"file:{path}?mode=ro", uri=True)
    rows = database.execute(sql).fetchall()
    database.close()
    return rows


class Safari(ScriptTest):
    def setUp(self):
        super().setUp()
        safari.make(self.folder)
        self.library = self.folder / "Library"

    def test_every_page_was_visited_twice(self):
        history = self.library / "Safari" / "History.db"
        self.assertEqual(query(history, "PRAGMA integrity_check"), [("ok",)])
        self.assertEqual(query(history, "SELECT COUNT(*) FROM history_visits"), [(48,)])
        orphans = "SELECT COUNT(*) FROM history_items WHERE id NOT IN"
        orphans += " (SELECT history_item FROM history_visits)"
        self.assertEqual(query(history, orphans), [(0,)])

    def test_times_are_seconds_since_2001(self):
        history = self.library / "Safari" / "History.db"
        # 2024-06-29 12:00:00 UTC is 1719662400 seconds after 1970.
        newest = [(1719662400 - 978307200.0,)]
        self.assertEqual(query(history, "SELECT MAX(visit_time) FROM history_visits"), newest)

    def test_property_lists_can_be_read(self):
        bookmarks = plistlib.loads((self.library / "Safari" / "Bookmarks.plist").read_bytes())
        self.assertEqual(len(bookmarks["Children"]), 2)
        permissions = self.library / "Safari" / "RemoteNotifications" / "Permissions.plist"
        domains = [row["Allowed Domains"] for row in plistlib.loads(permissions.read_bytes()).values()]
        self.assertEqual(domains, [["https://mail.example.com"], ["https://news.example.org"]][::-1])

    def test_the_cookie_file_is_tightly_packed(self):
        data = (self.library / "Cookies" / "Cookies.binarycookies").read_bytes()
        self.assertEqual(data[:4], b"cook")
        count = struct.unpack_from(">I", data, 4)[0]
        sizes = struct.unpack_from(f">{count}I", data, 8)
        self.assertEqual(count, len(safari.COOKIE_PAGES))
        position = 8 + 4 * count
        names = []
        for size in sizes:
            page = data[position : position + size]
            names += self.names_of(page)
            position += size
        self.assertEqual(names, [b"session", b"theme", b"edition", b"basket", b"seen"])
        self.assertEqual(data[position + 4 : position + 12], safari.FOOTER)
        self.assertEqual(plistlib.loads(data[position + 12 :]), {"NSHTTPCookieAcceptPolicy": 2})

    def names_of(self, page):
        header, count = struct.unpack_from("<2I", page)
        self.assertEqual(header, 0x00010000)
        names, end = [], 12 + 4 * count
        for start in struct.unpack_from(f"<{count}I", page, 8):
            self.assertEqual(start, end)
            offset = struct.unpack_from("<I", page, start + 20)[0]
            names.append(page[start + offset : page.index(b"\0", start + offset)])
            end = start + struct.unpack_from("<I", page, start)[0]
        self.assertEqual(end, len(page))
        return names
