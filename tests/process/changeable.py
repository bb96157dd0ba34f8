"""What commands may change or delete below Library, by what they select; everything else is somebody's."""

import re

COMPANIONS = r"(-journal|-wal|-shm)?"
CHROMIUM = "Application Support/Chromium/[^/]+/"
FIREFOX = "Application Support/Firefox/Profiles/[^/]+/"
SAFARIS_LIBRARY = r"(Containers/com\.apple\.Safari/Data/Library/)?"
BY_CATEGORY = {
    ("chromium", "cache"): r"Caches/Chromium/[^/]+/.*",
    ("chromium", "history"): rf"{CHROMIUM}((History|Favicons|Top Sites|Network Action Predictor){COMPANIONS}"
                             r"|Sessions/.*)",
    ("chromium", "httpCookies"): rf"{CHROMIUM}Cookies{COMPANIONS}",
    ("chromium", "flashCookies"): rf"{CHROMIUM}Pepper Data/.*",
    ("chromium", "formData"): rf"{CHROMIUM}Web Data{COMPANIONS}",
    ("chromium", "localStorage"): rf"{CHROMIUM}Local Storage/.*",
    ("firefox", "cache"): r"Caches/Firefox/Profiles/[^/]+/cache2/.*",
    ("firefox", "history"): rf"{FIREFOX}places\.sqlite{COMPANIONS}",
    ("firefox", "httpCookies"): rf"{FIREFOX}cookies\.sqlite{COMPANIONS}",
    ("firefox", "flashCookies"): r"Preferences/Macromedia/.*",
    ("firefox", "formData"): rf"{FIREFOX}formhistory\.sqlite{COMPANIONS}",
    ("firefox", "localStorage"): rf"{FIREFOX}webappsstore\.sqlite{COMPANIONS}",
    ("safari", "cache"): r"(Containers/com\.apple\.Safari/Data/Library/Caches/(com\.apple\.Safari|WebKit)"
                         r"|Caches/com\.apple\.Safari)/.*",
    ("safari", "history"): rf"Safari/History\.db{COMPANIONS}",
    ("safari", "httpCookies"): rf"{SAFARIS_LIBRARY}Cookies/Cookies\.binarycookies",
    ("safari", "flashCookies"): r"Preferences/Macromedia/.*",
    ("safari", "localStorage"): r"Safari/LocalStorage/.*",
}
# Of what the template has; forgetting removes whole folders, too.
BY_FORGETTING = {
    "chromium": rf"{CHROMIUM}((History|Favicons|Top Sites|Network Action Predictor|Cookies|Web Data)"
                rf"{COMPANIONS}|Preferences|(Sessions|Local Storage/leveldb)(/.*)?)"
                r"|Caches/Chromium/[^/]+/(Cache|Code Cache)/.*",
    "firefox": rf"{FIREFOX}(places|cookies|formhistory|webappsstore|permissions)\.sqlite{COMPANIONS}"
               r"|Caches/Firefox/Profiles/[^/]+/cache2(/.*)?",
    "safari": rf"Safari/(History\.db{COMPANIONS}|LocalStorage(/.*)?)|{SAFARIS_LIBRARY}Cookies/Cookies\.binarycookies"
              rf"|{SAFARIS_LIBRARY}Caches/(com\.apple\.Safari|WebKit)(/.*)?",
}
# A file of nothing else; the other families have them beside what else forgetting takes.
DECISIONS = {"safari": r"Safari/RemoteNotifications/Permissions\.plist"}


def below_library(patterns):
    return re.compile("home/Library/(" + "|".join(patterns or ["^$"]) + ")", re.S)


def by_cleaning(browser, categories):
    """All names of a tree that a clean of a browser, or of all, and of categories, or all, may change."""
    return below_library([pattern for (name, category), pattern in BY_CATEGORY.items()
                          if browser in (None, name) and (not categories or category in categories)])


def by_forgetting(browser, words):
    """The same of forgetting, which with these words may take what the user decided for sites."""
    tables = (BY_FORGETTING, DECISIONS) if "--settings" in words else (BY_FORGETTING,)
    return below_library([pattern for table in tables for name, pattern in table.items()
                          if browser in (None, name)])
