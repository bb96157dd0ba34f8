"""What the host program holds to read a document that another program has made as dense as it can."""

import json
import os
import pathlib
import shutil
import tempfile
import unittest

from homes import PROGRAM, environment, scratch
from memory import run_measured

LENGTH = 2_000_000
MOST = 8
# What a site takes in the list of all, with its host and its figures.
MOST_PER_SITE = 1200
STATE = "Application Support/Chromium/Local State"
BOOKMARKS = "Application Support/Chromium/Default/Bookmarks"
PROFILES = "Application Support/Firefox/profiles.ini"
SAFARI_BOOKMARKS = "Safari/Bookmarks.plist"
PERMISSIONS = "Safari/RemoteNotifications/Permissions.plist"
TOP_SITES = "Safari/TopSites.plist"
SESSION = "Safari/LastSession.plist"
PLIST = '<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>'
PLIST_END = "</dict></plist>"
VALUES = ("<true/>", "<dict/>", "<array/>", "<integer>1</integer>", "<real>1</real>",
          "<string>a</string>", "<data>AA==</data>", "<array><true/></array>",
          "<dict><key/><true/></dict>", "<dict><key>#</key><real>1</real></dict>")
PROFILE = {"profile": {"info_cache": {"Default": {"name": "a", "is_consented_primary_account": False}},
                       "last_active_profiles": []}}


def repeated(value, between=","):
    """So many values in a row as make a document of the length; "#" becomes a number of its own."""
    pieces, length = [], 0
    while length < LENGTH:
        pieces.append(value.replace("#", f"{len(pieces):x}"))
        length += len(pieces[-1]) + len(between)
    return between.join(pieces)


@unittest.skipIf("ASAN_OPTIONS" in os.environ, "the sanitizer takes memory of its own")
class Memory(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="browsersweep-memory.", dir=scratch()))
        self.addCleanup(shutil.rmtree, self.folder)
        for name in ("tmp", "own-home"):
            (self.folder / name).mkdir()
        self.write(STATE, json.dumps(PROFILE))

    def write(self, name, text):
        path = self.folder / "home" / "Library" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def held(self, command, name, text, status=0):
        self.write(name, text)
        browser = next(each for each in ("Chromium", "Firefox", "Safari") if each in name)
        finished, held = run_measured(
            [str(PROGRAM), "--home", str(self.folder / "home"), command,
             "--browser=" + browser.lower()],
            environment(self.folder / "tmp", self.folder / "own-home"), self.folder / "memory")
        self.assertEqual(finished.returncode, status, finished.stderr)
        return held

    def check(self, command, name, start, value, end, between=",", status=0):
        text = start + repeated(value, between) + end
        more = self.held(command, name, text, status) - self.held(command, name, start + end)
        self.assertLess(more, MOST * len(text))

    def test_a_document_takes_less_than_eight_times_its_length(self):
        start = '{"profile": {"info_cache": {}, "last_active_profiles": []}, "ignored": ['
        for value in ("0", '""', "[]", "{}", "1e9", "1234567890", "null", '{"":0}', '"text"'):
            with self.subTest(value=value):
                self.check("profiles", STATE, start, value, "]}")

    def test_bookmarks_take_less_than_eight_times_their_length(self):
        for value in ('"#":{}', '"#":{"url":""}', '"#":{"#":{}}', '"#":{"children":[{},{},{}]}'):
            with self.subTest(value=value):
                self.check("bookmarks", BOOKMARKS, '{"roots": {', value, "}}")

    def test_a_property_list_in_xml_takes_less_than_eight_times_its_length(self):
        for value in VALUES:
            for name, command in ((SAFARI_BOOKMARKS, "bookmarks"), (PERMISSIONS, "notifications")):
                with self.subTest(value=value, name=name):
                    self.check(command, name, PLIST + "<key>a</key><array>", value,
                               "</array>" + PLIST_END, "")
        for value in ("<key/><true/>", "<key>#</key><dict/>", "<key/><data>AA==</data>"):
            with self.subTest(value=value):
                self.check("bookmarks", SAFARI_BOOKMARKS, PLIST, value, PLIST_END, "")

    def test_bookmarks_in_xml_take_less_than_eight_times_their_length(self):
        for value in ("<dict/>", "<dict><key>URLString</key><string/></dict>",
                      "<dict><key>Children</key><array><dict/><dict/><dict/></array></dict>"):
            with self.subTest(value=value):
                self.check("bookmarks", SAFARI_BOOKMARKS, PLIST + "<key>Children</key><array>",
                           value, "</array>" + PLIST_END, "")

    def test_xml_that_its_parser_would_keep_takes_less_than_eight_times_its_length(self):
        for start, value, end, status in (
                ("<key>a</key><array>", '<true a#="" b#="" c#="" d#=""/>', "</array>", 0),
                ("<key>a</key><true", ' a#=""', "/>", 1), ("<!--", "text", "-->", 1)):
            with self.subTest(value=value):
                self.check("bookmarks", SAFARI_BOOKMARKS, PLIST + start, value, end + PLIST_END, "",
                           status)

    def test_entities_are_not_expanded(self):
        """Each reference would be a hundred thousand arrays."""
        start = ('<!DOCTYPE plist [<!ENTITY a "' + "<array/>" * 1000 + '"><!ENTITY b "' + "&a;" * 100
                 + '">]><plist><array>')
        text = start + " " * LENGTH + "&b;" * 100 + "</array></plist>"
        more = (self.held("bookmarks", SAFARI_BOOKMARKS, text, 1)
                - self.held("bookmarks", SAFARI_BOOKMARKS, "", 1))
        self.assertLess(more, MOST * len(text))

    def test_a_property_list_in_old_text_takes_less_than_eight_times_its_length(self):
        for value, status in (("a", 1), ("()", 1), ("{a;}", 1), ("a" * 63, 0)):
            with self.subTest(value=value):
                self.check("bookmarks", SAFARI_BOOKMARKS, "{a=(", value, ");}", ",", status)

    def test_a_list_of_profiles_takes_less_than_eight_times_its_length(self):
        for value in ("[#]\n", "a#=b\n", "\n", "[Profile#]\n", "[Profile#]\nName=a\n"):
            with self.subTest(value=value):
                self.check("profiles", PROFILES, "[Profile0]\n", value, "", "")

    def test_stores_of_sites_in_xml_take_less_than_eight_times_their_length(self):
        for name, key in ((TOP_SITES, "TopSites"), (SESSION, "SessionWindows"), (PERMISSIONS, "a")):
            for value in VALUES:
                with self.subTest(value=value, name=name):
                    self.check("sites", name, PLIST + f"<key>{key}</key><array>", value,
                               "</array>" + PLIST_END, "")

    def test_a_list_of_many_sites_takes_little_for_each(self):
        self.check_sites(TOP_SITES, "TopSites", 0)

    def test_what_many_sites_share_takes_little_for_each(self):
        self.check_sites(PERMISSIONS, "a", 0)

    def check_sites(self, name, key, status):
        start, end = PLIST + f"<key>{key}</key><array>", "</array>" + PLIST_END
        text = start + repeated("<string>http://a#.de</string>", "") + end
        more = self.held("sites", name, text, status) - self.held("sites", name, start + end)
        self.assertLess(more, MOST_PER_SITE * text.count("<string>"))
