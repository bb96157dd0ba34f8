"""What a browser sees when it starts on a home again, and what its files say it ought to see.

`seen` asks the running browser through its own protocol; `on_disk` counts in the closed files. The
two answer with the same keys, so that a test compares whole dictionaries. Downloads are not asked
for: Chromium keeps a second record of them, in shared_proto_db, which no clean touches.
"""

import json
import time
from collections import Counter
from pathlib import Path
from urllib.parse import urlsplit

from browser import Layout
from chromium import Chromium, ChromiumPage
from counts import (EPOCH_1601, EPOCH_1970, Profile, has_table, opened, profile_bookmarks,
                    profile_subscriptions)
from firefox import Firefox
from home import STORAGE_HOSTS
from website import WebSite

PROBE_MANIFEST = {"manifest_version": 3, "name": "probe", "version": "1",
                  "permissions": ["history", "bookmarks"]}
CHROMIUM_PROBE = """(async () => {
    const urls = node => [...(node.url ? [node.url] : []), ...(node.children || []).flatMap(urls)];
    const history = await chrome.history.search({text: '', startTime: 0, maxResults: 1000000});
    const own = history.filter(item => !item.url.startsWith('chrome-extension:'));
    const visits = await Promise.all(own.map(item => chrome.history.getVisits({url: item.url})));
    return {history: own.map(item => item.url),
            visits: visits.reduce((sum, list) => sum + list.length, 0),
            bookmarks: (await chrome.bookmarks.getTree()).flatMap(urls)};
})()"""
FIREFOX_PROBE = """
    const listed = kind => {
        const options = PlacesUtils.history.getNewQueryOptions();
        options.resultType = options[kind];
        const root = PlacesUtils.history.executeQuery(
            PlacesUtils.history.getNewQuery(), options).root;
        root.containerOpen = true;
        const uris = [];
        for (let i = 0; i < root.childCount; i++) uris.push(root.getChild(i).uri);
        root.containerOpen = false;
        return uris;
    };
    const urls = node => [...(node.uri ? [node.uri] : []), ...(node.children || []).flatMap(urls)];
    const {FormHistory} = ChromeUtils.importESModule('resource://gre/modules/FormHistory.sys.mjs');
    return {history: listed('RESULTS_AS_URI'), visits: listed('RESULTS_AS_VISIT').length,
            cookies: Services.cookies.cookies.map(cookie => cookie.host),
            bookmarks: urls(await PlacesUtils.promiseBookmarksTree()),
            formEntries: await FormHistory.count({}),
            notificationsAllowed: Services.perms.all.filter(permission =>
                permission.type === 'desktop-notification' && permission.capability === 1).length,
            placesStatus: PlacesUtils.history.databaseStatus};"""

STORAGE_KEYS = 20


def by_host(urls: list[str]) -> dict[str, int]:
    return dict(Counter(urlsplit(url).hostname or url for url in urls))


# --- What the browsers say ----------------------------------------------------------------------

def probed_chromium(browser: Chromium, page: ChromiumPage, scratch: Path) -> dict:
    """What an extension is told, loaded for this."""
    extension = scratch / "probe-extension"
    extension.mkdir(exist_ok=True)
    (extension / "manifest.json").write_text(json.dumps(PROBE_MANIFEST), "utf-8")
    (extension / "probe.html").write_text("<!doctype html><title>probe</title>", "utf-8")
    number = browser.tools.call("Extensions.loadUnpacked", {"path": str(extension)})["id"]
    page.navigate(f"chrome-extension://{number}/probe.html")
    return page.evaluate(CHROMIUM_PROBE)


def ask_chromium(browser: Chromium, scratch: Path) -> dict:
    page = browser.new_page()
    answer = probed_chromium(browser, page, scratch)
    cookies = browser.tools.call("Storage.getCookies")["cookies"]
    page.navigate("chrome://settings/content/notifications")
    allowed = page.evaluate("""(async () => {
        const {SiteSettingsBrowserProxyImpl: Proxy} =
            await import('chrome://settings/lazy_load.js');
        const list = await Proxy.getInstance().getExceptionList('notifications');
        return list.filter(entry => entry.setting === 'allow').length;
    })()""")
    keys = {}
    for host in STORAGE_HOSTS:
        page.navigate(f"http://{host}/page/verify")
        keys[host] = page.evaluate("localStorage.length")
    return {"history": by_host(answer["history"]), "visits": answer["visits"],
            "bookmarks": sorted(answer["bookmarks"]),
            "cookies": dict(Counter(cookie["domain"] for cookie in cookies)),
            "notifications": allowed, "localStorage": keys}


def ask_firefox(browser: Firefox) -> dict:
    remote = browser.marionette
    answer = remote.chrome(FIREFOX_PROBE)
    keys = {}
    for host in STORAGE_HOSTS:
        remote.navigate(f"http://{host}/page/verify")
        keys[host] = remote.call("WebDriver:ExecuteScript",
                                 {"script": "return localStorage.length", "args": []})
    return {"history": by_host(answer["history"]), "visits": answer["visits"],
            "bookmarks": sorted(answer["bookmarks"]), "formEntries": answer["formEntries"],
            "cookies": dict(Counter(answer["cookies"])),
            "notifications": answer["notificationsAllowed"], "localStorage": keys,
            "placesStatus": answer["placesStatus"]}


def seen(layout: Layout, family: str, binary: str, profile: Profile, site: WebSite,
         scratch: Path) -> dict:
    """Start the browser on the profile, ask it, and close it as its user would."""
    log = scratch / f"{family}.log"
    if family == "chromium":
        with Chromium(binary, layout, profile.folder.name, site.port, log) as browser:
            answer = ask_chromium(browser, scratch)
    else:
        with Firefox(binary, layout, profile.name, profile.folder, site.port, log) as browser:
            answer = ask_firefox(browser)
    return {**answer, "exitStatus": browser.exit_status}


# --- What the files say -------------------------------------------------------------------------

def column(path: Path, sql: str, *values: object) -> list:
    with opened(path) as database:
        database.text_factory = str
        return [row[0] for row in database.execute(sql, values)]


def chromium_on_disk(profile: Profile) -> dict:
    folder = profile.folder
    now = int((time.time() + (EPOCH_1970 - EPOCH_1601).total_seconds()) * 1e6)
    stored = any(path.suffix in (".log", ".ldb")
                 for path in (folder / "Local Storage").rglob("*") if path.stat().st_size)
    return {
        "history": by_host(column(
            folder / "History", "SELECT url FROM urls WHERE hidden = 0 "
            "AND EXISTS (SELECT 1 FROM visits WHERE visits.url = urls.id)")),
        "visits": len(column(
            folder / "History", "SELECT visits.id FROM visits JOIN urls ON urls.id = visits.url "
            "WHERE urls.hidden = 0")),
        "bookmarks": sorted(mark["url"] for mark in profile_bookmarks(profile, "chromium")),
        # A browser drops session cookies when it starts.
        "cookies": dict(Counter(column(
            folder / "Cookies", "SELECT host_key FROM cookies "
            "WHERE is_persistent = 1 AND expires_utc > ?", now))),
        "notifications": len(profile_subscriptions(profile, "chromium")),
        "localStorage": dict.fromkeys(STORAGE_HOSTS, STORAGE_KEYS if stored else 0),
        "exitStatus": 0,
    }


def firefox_on_disk(profile: Profile) -> dict:
    folder, places = profile.folder, profile.folder / "places.sqlite"
    return {
        # Firefox lists a page by its last visit date, whether or not a visit is left.
        "history": by_host(column(places, "SELECT url FROM moz_places "
                                  "WHERE hidden = 0 AND last_visit_date IS NOT NULL")),
        "visits": len(column(
            places, "SELECT v.id FROM moz_historyvisits v JOIN moz_places p "
            "ON p.id = v.place_id WHERE p.hidden = 0 AND v.visit_type NOT IN (0, 4, 8)")),
        "bookmarks": sorted(mark["url"] for mark in profile_bookmarks(profile, "firefox")),
        "formEntries": len(column(folder / "formhistory.sqlite",
                                  "SELECT id FROM moz_formhistory")),
        "cookies": dict(Counter(column(
            folder / "cookies.sqlite", "SELECT host FROM moz_cookies WHERE CASE WHEN "
            "expiry > 100000000000 THEN expiry / 1000 ELSE expiry END > ?", time.time()))),
        "notifications": len(column(
            folder / "permissions.sqlite", "SELECT id FROM moz_perms "
            "WHERE type = 'desktop-notification' AND permission = 1")),
        "localStorage": {host: firefox_storage_keys(folder, host) for host in STORAGE_HOSTS},
        "placesStatus": 0,
        "exitStatus": 0,
    }


def firefox_storage_keys(folder: Path, host: str) -> int:
    """Profiles that keep local storage in storage/default have nothing in the older database."""
    if any((folder / "storage" / "default" / f"http+++{host}" / "ls").glob("data.sqlite")):
        return STORAGE_KEYS
    with opened(folder / "webappsstore.sqlite") as database:
        if not has_table(database, "webappsstore2"):
            return 0
        return database.execute("SELECT COUNT(*) FROM webappsstore2 WHERE originKey LIKE ?",
                                (f"{host[::-1]}.:%",)).fetchone()[0]


ON_DISK = {"chromium": chromium_on_disk, "firefox": firefox_on_disk}
