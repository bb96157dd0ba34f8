"""Makes a home whose browser data was written by the real browsers themselves.

Each browser gets two profiles in the layout of macOS, visits pages on several hosts, fills a form,
downloads a file, stores local storage, gets bookmarks and notification permissions, and is closed
as its user would close it. Part of the history is dated back, so that date ranges have something
to divide.
"""

import contextlib
import json
import sqlite3
from pathlib import Path

from browser import BrowserError, Layout
from chromium import Chromium
from firefox import Firefox, create_firefox_profile
from website import HOSTS, WebSite, page_paths

FORM_HOST, STORAGE_HOSTS = "shop.example.test", ("mail.localhost", "shop.example.test")
FORM_VALUES = {"name": "Ada Lovelace", "nickname": "ada99"}
ICON_TIMEOUT = 240.0
DAY_US = 86_400_000_000

BOOKMARKS = (
    {"folder": "", "title": "News", "url": "http://news.example.test/page/0"},
    {"folder": "", "title": "", "url": "http://mail.localhost/page/4"},
    {"folder": "Bücher & more", "title": "Bücher", "url": "http://xn--bcher-kva.test/page/5"},
    {"folder": "Bücher & more", "title": "Never visited", "url": "https://unseen.example.test/a?b"},
)
ALLOWED = ("https://push.example.test", "http://mail.localhost")
BLOCKED = ("https://noisy.example.test",)
# Chromium keeps a granted origin with its port, and a pattern typed into the settings as it is.
CHROMIUM_ALLOWED = ("https://push.example.test:443", "http://mail.localhost:80",
                    "[*.]wild.example.test")
CHROMIUM_BLOCKED = ("https://noisy.example.test:443",)
CONTAINER_ALLOWED = "https://push.example.test^userContextId=2"

CHROMIUM_PROFILES = ({"folder": "Default", "name": "Personal"},
                     {"folder": "Profile 1", "name": "Work Büro"})
FIREFOX_PROFILES = (
    {"folder": "a1b2c3d4.default-release", "name": "default-release", "preferences": {}},
    # A profile that keeps localStorage where Firefox kept it before version 68, and permissions
    # per container.
    {"folder": "e5f6a7b8.work", "name": "work", "preferences": {
        "dom.storage.enable_unsupported_legacy_implementation": True,
        "permissions.isolateBy.userContext": True}},
)


def visit_pages(site, pages, visit):
    """Visit the pages in order; on the first one of each host stay until its icon is fetched."""
    seen = set()
    for host, path in pages:
        first = host not in seen
        seen.add(host)
        visit(f"http://{host}{path}", first)
        if first:
            if not site.wait_served(host, "/icon.png", ICON_TIMEOUT):
                raise BrowserError("not fetched in time")


def fill_form_chromium(page):
    page.navigate(f"http://{FORM_HOST}/form")
    for element, text in FORM_VALUES.items():
        page.type_text(element, text)
    page.tools.forget_events()
    page.press_enter()
    page.tools.wait_event("Page.loadEventFired", page.session)


def download_chromium(browser, page, downloads):
    browser.tools.call("Browser.setDownloadBehavior", {
        "behavior": "allow", "downloadPath": str(downloads), "eventsEnabled": True})
    page.evaluate("document.getElementById('dl').click()")
    browser.tools.wait_event("Browser.downloadProgress",
                             matches=lambda event: event["state"] == "completed")


def add_bookmarks_chromium(page):
    page.navigate("chrome://bookmarks/")
    page.evaluate("""(async marks => {
        const folders = {'': '1'};
        for (const {folder, title, url} of marks) {
            if (!(folder in folders))
                folders[folder] =
                    (await chrome.bookmarks.create({parentId: '2', title: folder})).id;
            await chrome.bookmarks.create({parentId: folders[folder], title, url});
        }
    })(%s)""" % json.dumps(BOOKMARKS))


def set_notifications_chromium(page):
    """Through the settings page's own code, which writes "Preferences" as a click there does."""
    page.evaluate("""(async wanted => {
        const {SiteSettingsBrowserProxyImpl: Proxy} =
            await import('chrome://settings/lazy_load.js');
        const proxy = Proxy.getInstance();
        await proxy.getExceptionList('notifications');
        for (const [origin, setting] of wanted)
            proxy.setCategoryPermissionForPattern(origin, '', 'notifications', setting, false);
        await proxy.getExceptionList('notifications');
    })(%s)""" % json.dumps([[origin, "allow"] for origin in CHROMIUM_ALLOWED]
                           + [[origin, "block"] for origin in CHROMIUM_BLOCKED]))


def save_address_chromium(page):
    """An address as the settings page saves it (not one of the tables named "autofill...")."""
    page.evaluate("""(async () => {
        await chrome.autofillPrivate.saveAddress({fields: [
            {type: 'NAME_FULL', value: 'Ada Lovelace'},
            {type: 'ADDRESS_HOME_STREET_ADDRESS', value: '12 St James Square'},
            {type: 'ADDRESS_HOME_CITY', value: 'London'},
            {type: 'ADDRESS_HOME_ZIP', value: 'SW1Y 4JH'},
            {type: 'ADDRESS_HOME_COUNTRY', value: 'GB'}], languageCode: 'en'});
        await chrome.autofillPrivate.getAddressList();
    })()""")


def name_profile_chromium(page, name):
    page.evaluate("""(async name => {
        const {ManageProfileBrowserProxyImpl: Proxy} =
            await import('chrome://settings/lazy_load.js');
        const proxy = Proxy.getInstance();
        await proxy.getAvailableIcons();
        proxy.setProfileName(name);
        await proxy.getAvailableIcons();
    })(%s)""" % json.dumps(name))


def make_chromium_profile(binary, layout, site, profile, pages, log):
    site.forget()
    with Chromium(binary, layout, profile["folder"], site.port, log) as browser:
        page = browser.new_page()
        visit_pages(site, pages, lambda url, first: page.navigate(
            url, "typed" if first else "link"))
        for host in STORAGE_HOSTS:
            page.navigate(f"http://{host}/storage")
        fill_form_chromium(page)
        page.navigate(f"http://{FORM_HOST}/page/download")
        download_chromium(browser, page, layout.downloads)
        add_bookmarks_chromium(page)
        # The three that follow act on a page of the settings, whichever it is.
        page.navigate("chrome://settings/content/notifications")
        set_notifications_chromium(page)
        save_address_chromium(page)
        name_profile_chromium(page, profile["name"])
    return {"folder": profile["folder"], "name": profile["name"],
            "exitStatus": browser.exit_status, "notificationsAllowed": CHROMIUM_ALLOWED,
            "notificationsBlocked": CHROMIUM_BLOCKED}


def spread_chromium_history(folder, days):
    """Move every second address of a closed profile back in time, as a browser in use would have
    it: each at its own day, its visits with it."""
    database = sqlite3.connect(folder / "History")
    with contextlib.closing(database), database:
        rows = database.execute("SELECT id FROM urls ORDER BY id").fetchall()[1::2]
        for index, (number,) in enumerate(rows):
            back = DAY_US * (1 + index * days // max(1, len(rows)))
            database.execute("UPDATE urls SET last_visit_time = last_visit_time - ? WHERE id = ?",
                             (back, number))
            database.execute("UPDATE visits SET visit_time = visit_time - ? WHERE url = ?",
                             (back, number))


def make_chromium(binary, layout, site, pages, spread_days, log):
    made = []
    for index, profile in enumerate(CHROMIUM_PROFILES):
        own_pages = pages if index == 0 else pages[:len(pages) // 2]
        made.append({**make_chromium_profile(binary, layout, site, profile, own_pages, log),
                     "pages": [f"http://{host}{path}" for host, path in own_pages]})
        if spread_days:
            spread_chromium_history(layout.chromium / profile["folder"], spread_days)
    return made


def fill_form_firefox(remote):
    remote.navigate(f"http://{FORM_HOST}/form")
    for element, text in FORM_VALUES.items():
        remote.type_text(f"#{element}", text)
    remote.click("#send")


def download_firefox(remote):
    remote.chrome("""
        const {Downloads} = ChromeUtils.importESModule('resource://gre/modules/Downloads.sys.mjs');
        const list = await Downloads.getList(Downloads.ALL);
        window.browsersweepDownload = new Promise(resolve => list.addView({
            onDownloadAdded: download => download.whenSucceeded().then(resolve)}));""")
    remote.click("#dl")
    remote.chrome("await window.browsersweepDownload;")


def add_bookmarks_firefox(remote):
    remote.chrome("""
        const {bookmarks} = PlacesUtils;
        const folders = {'': bookmarks.toolbarGuid};
        for (const {folder, title, url} of args[0]) {
            if (!(folder in folders))
                folders[folder] = (await bookmarks.insert({parentGuid: bookmarks.menuGuid,
                    type: bookmarks.TYPE_FOLDER, title: folder})).guid;
            await bookmarks.insert({parentGuid: folders[folder], title, url});
        }""", BOOKMARKS)


def add_keyword_and_input_firefox(remote):
    remote.chrome("""
        await PlacesUtils.keywords.insert({keyword: 'n', url: args[0]});
        const names = ['moz-src:///browser/components/urlbar/UrlbarUtils.sys.mjs',
                       'resource:///modules/UrlbarUtils.sys.mjs'];
        for (const name of names) {
            try {
                const {UrlbarUtils} = ChromeUtils.importESModule(name);
                await UrlbarUtils.addToInputHistory(args[0], 'news');
                return;
            } catch (error) {
                if (name === names.at(-1)) throw error;
            }
        }""", BOOKMARKS[0]["url"])


def set_notifications_firefox(remote, allowed):
    remote.chrome("""
        const manager = Services.scriptSecurityManager;
        for (const [origin, value] of args[0])
            Services.perms.addFromPrincipal(
                manager.createContentPrincipalFromOrigin(origin), 'desktop-notification', value);
        """, [[origin, 1] for origin in allowed] + [[origin, 2] for origin in BLOCKED])


def spread_firefox_history(remote, pages, days):
    """Older visits, one per page, entered through the browser's own history interface."""
    remote.chrome("""
        const day = 86400000, now = Date.now();
        await PlacesUtils.history.insertMany(args[0].map(([url, back]) => ({
            url, title: 'older', visits: [{date: new Date(now - back * day)}]})));""",
        [[f"http://{host}/old{path}", 1 + index * days // len(pages)]
         for index, (host, path) in enumerate(pages)])


def make_firefox_profile(binary, layout, site, profile, pages, spread_days, log):
    site.forget()
    folder = layout.firefox / "Profiles" / profile["folder"]
    allowed = list(ALLOWED)
    if profile["preferences"].get("permissions.isolateBy.userContext"):
        allowed.append(CONTAINER_ALLOWED)
    create_firefox_profile(binary, layout, profile["name"], profile["folder"])
    with Firefox(binary, layout, profile["name"], folder, site.port, log,
                 profile["preferences"]) as browser:
        remote = browser.marionette
        visit_pages(site, pages, lambda url, _first: remote.navigate(url))
        for host in STORAGE_HOSTS:
            remote.navigate(f"http://{host}/storage")
        fill_form_firefox(remote)
        remote.navigate(f"http://{FORM_HOST}/page/download")
        download_firefox(remote)
        add_bookmarks_firefox(remote)
        add_keyword_and_input_firefox(remote)
        set_notifications_firefox(remote, allowed)
        if spread_days:
            spread_firefox_history(remote, pages, spread_days)
    return {"folder": profile["folder"], "name": profile["name"],
            "exitStatus": browser.exit_status, "notificationsAllowed": allowed,
            "notificationsBlocked": BLOCKED}


def make_firefox(binary, layout, site, pages, spread_days, log):
    made = []
    for index, profile in enumerate(FIREFOX_PROFILES):
        own_pages = pages if index == 0 else pages[:len(pages) // 2]
        made.append({
            **make_firefox_profile(binary, layout, site, profile, own_pages, spread_days, log),
            "pages": [f"http://{host}{path}" for host, path in own_pages]})
    return made


PAGES, SPREAD_DAYS = 18, 20
MAKERS = {"chromium": make_chromium, "firefox": make_firefox}


def make_home(layout: Layout, family: str, binary: str) -> None:
    """Fill an empty home with the data of one browser."""
    layout.downloads.mkdir(parents=True)
    with WebSite() as site:
        profiles = MAKERS[family](binary, layout, site, page_paths(PAGES), SPREAD_DAYS,
                                  layout.home / f"{family}.log")
    for profile in profiles:
        if profile["exitStatus"] != 0:
            raise BrowserError(f"{family} ended with status {profile['exitStatus']}")
