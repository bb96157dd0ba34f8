"""Lets a real Chromium leave the traces of the planted sites in two profiles."""

from __future__ import annotations

import json
import tempfile
import time
from pathlib import Path

from browser import BrowserError, Layout
from chromium import Chromium, ChromiumPage
from markers import markers_in
from planted import FRAME, GONE, KEPT, MARKED, Site
from plantedrows import add_rows
from plantedweb import PlantedWeb

WRITING_TIMEOUT = 240.0
PROFILES = ("Default", "Profile 1")
SCRIPTS = Path(__file__).parent

EXTENSION = {"manifest.json": json.dumps({"manifest_version": 3, "name": "planted", "version": "1",
                                          "permissions": ["storage"]}),
             "page.html": "<!doctype html><title>extension</title>"}


def script(name: str) -> str:
    """The expression of a file, after the comment that tells of it."""
    text = (SCRIPTS / name).read_text("utf-8")
    return text[text.index("\n(") + 1:].rstrip()


def open_chromium(binary: str, layout: Layout, profile: str, web: PlantedWeb, log: Path) -> Chromium:
    return Chromium(binary, layout, profile, web.port, log,
                    (f"--ignore-certificate-errors-spki-list={web.spki}",))


# --- What a person does in the settings ---------------------------------------------------------

def allow(page: ChromiumPage) -> None:
    page.navigate("chrome://settings/content/notifications")
    page.evaluate("""(async wanted => {
        const {SiteSettingsBrowserProxyImpl: Proxy} =
            await import('chrome://settings/lazy_load.js');
        const proxy = Proxy.getInstance();
        for (const [origin, kind] of wanted) {
            await proxy.getExceptionList(kind);
            proxy.setCategoryPermissionForPattern(origin, '', kind, 'allow', false);
            await proxy.getExceptionList(kind);
        }
    })(%s)""" % json.dumps([[site.origin, kind] for site in (GONE, KEPT, FRAME)
                            for kind in ("notifications", "location", "popups")]))


def save_passwords(page: ChromiumPage) -> None:
    page.navigate("chrome://password-manager/passwords")
    for site in (GONE, KEPT):
        page.evaluate("chrome.passwordsPrivate.addPassword({url: %s, username: %s, password: %s,"
                      " note: '', useAccountStore: false})"
                      % tuple(json.dumps(text) for text in
                              (f"{site.origin}/", site.marker("pwus"), site.marker("pwpw"))))


def add_bookmarks(page: ChromiumPage) -> None:
    page.navigate("chrome://bookmarks/")
    page.evaluate("chrome.bookmarks.create({parentId: '1', title: %s, url: %s})"
                  % (json.dumps(MARKED.marker("bmrk")), json.dumps(MARKED.bookmark)))


def fill_extension(browser: Chromium, page: ChromiumPage) -> None:
    with tempfile.TemporaryDirectory(prefix="browsersweep-e2e-") as folder:
        for name, text in EXTENSION.items():
            Path(folder, name).write_text(text, "utf-8")
        number = browser.tools.call("Extensions.loadUnpacked", {"path": folder})["id"]
        page.navigate(f"chrome-extension://{number}/page.html")
        page.evaluate("""(async w => {
            localStorage.setItem('qzexls' + w, 'qzexlv' + w);
            await chrome.storage.local.set({['qzexst' + w]: 'qzexsv' + w});
            await new Promise((done, reject) => {
                const request = indexedDB.open('qzexib' + w, 1);
                request.onupgradeneeded = () => request.result.createObjectStore('s');
                request.onerror = () => reject(request.error);
                request.onsuccess = () => {
                    const change = request.result.transaction('s', 'readwrite');
                    change.objectStore('s').put('qzexiv' + w, 'k');
                    change.oncomplete = () => done();
                };
            });
        })(%s)""" % json.dumps(MARKED.word))


# --- What a person does on the sites ------------------------------------------------------------

def visit(page: ChromiumPage, site: Site) -> None:
    page.navigate(site.bookmark, "typed")
    for name in ("1", "frame") if site in (GONE, KEPT) else ("1",):
        page.navigate(f"{site.origin}/qzpath{site.word}/{name}?q=qzquer{site.word}")
    failed = page.evaluate(f"{script('plant.js')}({json.dumps(site.word)})")
    if failed:
        raise BrowserError(f"{site.host} could not plant everything: {failed}")


def fill_form(page: ChromiumPage, site: Site) -> None:
    page.navigate(f"{site.origin}/qzpath{site.word}/form")
    page.type_text("text", site.marker("form"))
    page.type_text("email", f"{site.marker('mail')}@x.test")
    page.tools.forget_events()
    page.press_enter()
    page.tools.wait_event("Page.loadEventFired", page.session)
    page.click("#next")


def download(browser: Chromium, page: ChromiumPage, layout: Layout) -> None:
    browser.tools.call("Browser.setDownloadBehavior", {
        "behavior": "allow", "downloadPath": str(layout.downloads), "eventsEnabled": True})
    page.evaluate("document.getElementById('dl').click()")
    browser.tools.wait_event("Browser.downloadProgress",
                             matches=lambda event: event["state"] == "completed")


def open_tab(browser: Chromium, url: str) -> str:
    page = browser.new_page()
    page.navigate(url)
    return page.target


def first_run(browser: Chromium, layout: Layout, profile: str) -> None:
    page = browser.new_page()
    allow(page)
    fill_extension(browser, page)
    sites = (GONE, KEPT, FRAME, MARKED) if profile == PROFILES[0] else (GONE, KEPT)
    for site in sites:
        visit(page, site)
        fill_form(page, site)
        download(browser, page, layout)
    page.navigate(f"{KEPT.origin}/qzpath{KEPT.word}/bounce")
    page.click("#bounce")
    add_bookmarks(page)
    save_passwords(page)
    for site in (GONE, KEPT):
        closed = open_tab(browser, f"{site.origin}/qzclos{site.word}/tab")
        browser.tools.call("Target.closeTarget", {"targetId": closed})
        open_tab(browser, f"{site.origin}/qzopen{site.word}/tab")


def wait_for(marker: str, folder: Path) -> None:
    """Some files are written seconds later, and there is no event for it."""
    deadline = time.monotonic() + WRITING_TIMEOUT
    while not any(markers_in(path.read_bytes())[marker] for path in folder.glob("*.log")):
        if time.monotonic() > deadline:
            raise BrowserError(f"{marker} is not written to {folder.name}")
        time.sleep(0.1)


def second_run(browser: Chromium, folder: Path) -> None:
    """What is left by a browser that finds traces already. What a session kept goes when the next one
    starts."""
    page = browser.new_page()
    for site in (GONE, KEPT):
        page.navigate(f"{site.origin}/qzlate{site.word}/0")
        page.evaluate("localStorage.setItem('qzls2k%(w)s', 'qzls2v%(w)s');"
                      "sessionStorage.setItem('qzssky%(w)s', 'qzssvl%(w)s')" % {"w": site.word})
        open_tab(browser, f"{site.origin}/qzopen{site.word}/again")
        wait_for(site.marker("ssvl"), folder / "Session Storage")


def make_chromium(layout: Layout, binary: str, web: PlantedWeb, log: Path) -> None:
    for profile in PROFILES:
        for run in (lambda browser: first_run(browser, layout, profile),
                    lambda browser: second_run(browser, layout.chromium / profile)):
            with open_chromium(binary, layout, profile, web, log) as browser:
                run(browser)
            if browser.exit_status:
                raise BrowserError(f"Chromium ended with status {browser.exit_status}")
        add_rows(layout.chromium / profile)
