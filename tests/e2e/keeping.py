"""What may stay of the planted sites, by name: everything else is residue.

Bookmarks with their icons, passwords, search engines and an extension's own data stay always. What a
person decided for a site stays unless it is asked for. What knows no site stays where only some sites are
forgotten, unless it is asked for.
"""

from __future__ import annotations

from planted import KINDS
from residue import Allowed

SECURE, ALL = "alder birch cedar", "alder birch cedar damson"
ANY = ".*"

BELONGINGS = {
    "chromium": (
        Allowed(r"C:Bookmarks(\.bak)?", "file", "host path quer bmrk", "damson"),
        Allowed("C:Favicons", "row of (icon_mapping|favicons)", "host path quer icou", "damson"),
        Allowed("C:Login Data", "row of logins", "host pwus pwpw", "alder birch"),
        Allowed("C:Web Data", "row of keywords", "host", "damson"),
        Allowed("C:(IndexedDB|Local Storage)", "leveldb", "exls exlv exib exiv", "damson"),
        Allowed("C:Local Extension Settings", "leveldb", "exst exsv", "damson"),
    ),
    "firefox": (
        Allowed("F:places.sqlite", "row of moz_places", "host path quer titl", "damson"),
        Allowed("F:places.sqlite", "row of moz_(bookmarks|keywords|origins)", "bmrk keyw host", "damson"),
        Allowed("F:favicons.sqlite", "row of moz_(icons|pages_w_icons)", "host path quer icou", "damson"),
        Allowed("F:bookmarkbackups", "file", "host path quer bmrk keyw icou", "damson"),
        Allowed("F:logins.json", "file", "host", "alder birch"),
        Allowed("F:search.json.mozlz4", "file", "host", "damson"),
    ),
}
DECISIONS = {
    "chromium": (
        Allowed("C:Preferences", r"key profile\.content_settings\.exceptions"
                r"\.(notifications|geolocation|popups)", "host", SECURE),
    ),
    "firefox": (
        Allowed("F:permissions.sqlite", "row of moz_perms", "host", SECURE),
        Allowed("F:content-prefs.sqlite", "row of groups", "host", ALL),
    ),
}
# What another site's frame left under a site that is kept belongs to that one too.
EMBEDDED = {
    "chromium": (
        Allowed(r"C:(Cookies|DIPS|Local Storage|WebStorage/.*|Network Persistent State)|Ccache:.*", ANY,
                "host pckn pckv plsk plsv pidb pidv", "cedar"),
    ),
    "firefox": (
        Allowed(r"F:(cookies\.sqlite|storage\.sqlite|storage/default/.*)|Fcache:cache2.*", ANY,
                "host 3ckn 3ckv pckn pckv plsk plsv pidb pidv", "cedar"),
        Allowed(r"F:permissions\.sqlite", "row of moz_perms", "host", "cedar damson"),
        Allowed(r"F:(SiteSecurityServiceState|AlternateServices)\.(bin|txt)", "file", "host", "cedar"),
    ),
}
# Whom a browser calls by itself, and what its first page shows.
OF_BROWSERS = {"google.com", "content-autofill.googleapis.com"}
# Files that tell no site apart, or whose form cannot be written anew, by place and reason.
MIXED = {
    "chromium": (
        ("C:(Sessions|Sessions_Encrypted|Visited Links|SCT Auditing Pending Reports|blob_storage)", "file"),
        ("C:(shared_proto_db|BudgetDatabase|Download Service)", "leveldb"),
        ("C:Web Data", "row of autofill"),
    ),
    "firefox": (
        ("F:formhistory.sqlite", "row of .*"),
    ),
}


def mixed(family: str, words: str) -> tuple[Allowed, ...]:
    return tuple(Allowed(place, why, " ".join(KINDS), words) for place, why in MIXED[family])


# What the browsers themselves have thrown away already.
WASTE = Allowed(r"Fcache:cache2(/doomed)?|F:storage/to-be-removed.*", ANY, " ".join(KINDS), ALL)
