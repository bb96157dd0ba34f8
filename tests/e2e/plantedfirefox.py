"""Lets a real Firefox leave the traces of the planted sites in two profiles."""

from __future__ import annotations

import json
import time
from pathlib import Path

from browser import BrowserError, Layout
from firefox import Firefox, Marionette, create_firefox_profile
from firefoxstates import add_records
from planted import FRAME, GONE, KEPT, MARKED, Site
from plantedchromium import script
from plantedweb import PlantedWeb

PROFILES = (("default-release", "a1b2c3d4.default-release"), ("work", "e5f6a7b8.work"))
# The second profile keeps local storage where Firefox kept it before version 68.
OLD_STORAGE = {"dom.storage.enable_unsupported_legacy_implementation": True}
ICON_TIMEOUT = 240.0
PREFERENCES = {
    "permissions.default.desktop-notification": 0,
    "browser.pagethumbnails.capturing_disabled": False,
    "browser.sessionstore.interval": 1000,
    "privacy.bounceTrackingProtection.mode": 1,
    # The server is a proxy, and Firefox does not believe one that there are other ways to a site.
    "network.http.altsvc.proxy_checks": False,
}


def open_firefox(binary: str, layout: Layout, profile: tuple[str, str], web: PlantedWeb,
                 log: Path) -> Firefox:
    name, folder = profile
    preferences = {**PREFERENCES, **(OLD_STORAGE if profile == PROFILES[1] else {})}
    return _Trusting(binary, layout, name, layout.firefox / "Profiles" / folder, web, log,
                     preferences)


class _Trusting(Firefox):
    """A Firefox that knows the authority of the server's certificates."""

    def __init__(self, binary, layout, name, folder, web, log, preferences):
        super().__init__(binary, layout, name, folder, web.port, log, preferences)
        self._authority = web.authority

    def _connect(self):
        super()._connect()
        self.marionette.call("WebDriver:SetTimeouts", {"script": 600000, "pageLoad": 240000})
        lines = self._authority.splitlines()
        self.marionette.chrome(
            "Cc['@mozilla.org/security/x509certdb;1'].getService(Ci.nsIX509CertDB)"
            ".addCertFromBase64(args[0], 'CT,,');",
            "".join(line for line in lines if not line.startswith("-")))


def run_script(remote: Marionette, source: str) -> object:
    """The value of an asynchronous expression in the page."""
    return remote.call("WebDriver:ExecuteAsyncScript", {"args": [], "script":
                       "const done = arguments[arguments.length - 1];"
                       f"({source}).then(done, error => done(String(error)));"})


# --- What a person does in the settings ---------------------------------------------------------

def allow(remote: Marionette) -> None:
    remote.chrome("""
        const manager = Services.scriptSecurityManager;
        for (const origin of args[0])
            for (const kind of ['desktop-notification', 'geo', 'persistent-storage'])
                Services.perms.addFromPrincipal(
                    manager.createContentPrincipalFromOrigin(origin), kind, 1);
        """, [site.origin for site in (GONE, KEPT, FRAME)])


def save_passwords(remote: Marionette) -> None:
    for site in (GONE, KEPT):
        remote.chrome("""
            const login = Cc['@mozilla.org/login-manager/loginInfo;1']
                .createInstance(Ci.nsILoginInfo);
            login.init(args[0], args[0], null, args[1], args[2], '', '');
            await Services.logins.addLoginAsync(login);
            """, site.origin, site.marker("pwus"), site.marker("pwpw"))


def add_bookmarks(remote: Marionette) -> None:
    remote.chrome("""
        const {bookmarks} = PlacesUtils;
        await bookmarks.insert({parentGuid: bookmarks.toolbarGuid, title: args[1], url: args[0]});
        await PlacesUtils.keywords.insert({keyword: args[2], url: args[0]});
        const {PlacesBackups} =
            ChromeUtils.importESModule('resource://gre/modules/PlacesBackups.sys.mjs');
        await PlacesBackups.create();
        """, MARKED.bookmark, MARKED.marker("bmrk"), MARKED.marker("keyw"))


def add_search_engine(remote: Marionette) -> None:
    remote.chrome("""
        let search = Services.search;
        for (const name of ['moz-src:///toolkit/components/search/SearchService.sys.mjs',
                            'resource://gre/modules/SearchService.sys.mjs']) {
            if (search) break;
            try { search = ChromeUtils.importESModule(name).SearchService; } catch (error) {}
        }
        await search.addUserEngine({name: 'planted', url: args[0] + '/find?q={searchTerms}',
                                    alias: 'planted'});""", MARKED.origin)


# --- What a person does on the sites ------------------------------------------------------------

def visit(remote: Marionette, site: Site, web: PlantedWeb) -> None:
    names = ("0", "1", "frame") if site in (GONE, KEPT) else ("0", "1")
    for name in names:
        remote.navigate(f"{site.origin}/qzpath{site.word}/{name}?q=qzquer{site.word}")
    failed = run_script(remote, f"{script('plant.js')}({json.dumps(site.word)})")
    if failed:
        raise BrowserError(f"{site.host} could not plant everything: {failed}")
    deadline = time.monotonic() + ICON_TIMEOUT
    while not web.has_served(site, f"/qzicou{site.word}.png"):
        if time.monotonic() > deadline:
            raise BrowserError(f"the icon of {site.host} is not fetched")
        time.sleep(0.05)


def fill_form(remote: Marionette, site: Site) -> None:
    remote.navigate(f"{site.origin}/qzpath{site.word}/form")
    remote.type_text("#text", site.marker("form"))
    remote.type_text("#email", f"{site.marker('mail')}@x.test")
    remote.click("#send")
    remote.click("#next")


def zoom(remote: Marionette, site: Site) -> None:
    remote.chrome("""
        const service = Cc['@mozilla.org/content-pref/service;1']
            .getService(Ci.nsIContentPrefService2);
        await new Promise(done => service.set(args[0], 'browser.content.full-zoom', 1.3, null,
            {handleCompletion: done, handleResult() {}, handleError() {}}));""", site.origin)


def download(remote: Marionette) -> None:
    remote.chrome("""
        const {Downloads} = ChromeUtils.importESModule('resource://gre/modules/Downloads.sys.mjs');
        const list = await Downloads.getList(Downloads.ALL);
        window.browsersweepDownload = new Promise(done => list.addView({
            onDownloadAdded: download => download.whenSucceeded().then(done)}));""")
    remote.click("#dl")
    remote.chrome("await window.browsersweepDownload;")


def type_address(remote: Marionette, site: Site) -> None:
    remote.chrome("""
        const window = Services.wm.getMostRecentWindow('navigator:browser');
        window.gURLBar.focus();
        window.gURLBar.value = args[0];
        window.gURLBar.handleCommand();
        await new Promise(done => {
            const browser = window.gBrowser.selectedBrowser;
            const look = () => browser.currentURI.spec === args[0] && !browser.webProgress.isLoadingDocument
                ? done() : window.setTimeout(look, 50);
            look();
        });
        for (const name of ['moz-src:///browser/components/urlbar/UrlbarUtils.sys.mjs',
                            'resource:///modules/UrlbarUtils.sys.mjs']) {
            try {
                const {UrlbarUtils} = ChromeUtils.importESModule(name);
                await UrlbarUtils.addToInputHistory(args[0], args[1]);
                return;
            } catch (error) {}
        }
        throw new Error('there is no input history');
        """, f"{site.origin}/{site.marker('typd')}", site.marker("inpu"))


def keep_picture(remote: Marionette) -> None:
    remote.chrome("""
        const {PageThumbs} = ChromeUtils.importESModule('resource://gre/modules/PageThumbs.sys.mjs');
        const window = Services.wm.getMostRecentWindow('navigator:browser');
        await PageThumbs.captureAndStore(window.gBrowser.selectedBrowser);""")


def open_tabs(remote: Marionette, site: Site) -> None:
    remote.chrome("""
        const {gBrowser} = Services.wm.getMostRecentWindow('navigator:browser');
        const triggeringPrincipal = Services.scriptSecurityManager.getSystemPrincipal();
        const {TabStateFlusher} = ChromeUtils.importESModule(
            'resource:///modules/sessionstore/TabStateFlusher.sys.mjs');
        for (const [url, closes] of [[args[0], true], [args[1], false]]) {
            const tab = gBrowser.addTab(url, {triggeringPrincipal});
            await new Promise(done => tab.linkedBrowser.addProgressListener
                ? gBrowser.addTabsProgressListener({QueryInterface() {}, onStateChange(browser, p, r, flags) {
                    if (browser === tab.linkedBrowser && (flags & Ci.nsIWebProgressListener.STATE_STOP)
                        && (flags & Ci.nsIWebProgressListener.STATE_IS_WINDOW)) {
                        gBrowser.removeTabsProgressListener(this);
                        done();
                    }}}) : done());
            await TabStateFlusher.flush(tab.linkedBrowser);
            if (closes) gBrowser.removeTab(tab);
        }""", f"{site.origin}/qzclos{site.word}/tab", f"{site.origin}/qzopen{site.word}/tab")


def first_run(browser: Firefox, web: PlantedWeb, is_first: bool) -> None:
    remote = browser.marionette
    allow(remote)
    for site in (GONE, KEPT, FRAME, MARKED) if is_first else (GONE, KEPT):
        visit(remote, site, web)
        fill_form(remote, site)
        zoom(remote, site)
        download(remote)
        type_address(remote, site)
        keep_picture(remote)
    remote.navigate(f"{KEPT.origin}/qzpath{KEPT.word}/bounce")
    remote.click("#bounce")
    add_bookmarks(remote)
    save_passwords(remote)
    add_search_engine(remote)
    for site in (GONE, KEPT):
        open_tabs(remote, site)


def second_run(browser: Firefox) -> None:
    """What is left by a browser that finds traces already."""
    remote = browser.marionette
    for site in (GONE, KEPT):
        remote.navigate(f"{site.origin}/qzlate{site.word}/0")
        run_script(remote, "(async () => localStorage.setItem('qzls2k%(w)s', 'qzls2v%(w)s'))()"
                   % {"w": site.word})
        open_tabs(remote, site)


def make_firefox(layout: Layout, binary: str, web: PlantedWeb, log: Path) -> None:
    for profile in PROFILES:
        create_firefox_profile(binary, layout, *profile)
        for run in (lambda browser: first_run(browser, web, profile == PROFILES[0]), second_run):
            with open_firefox(binary, layout, profile, web, log) as browser:
                run(browser)
            if browser.exit_status:
                raise BrowserError(f"Firefox ended with status {browser.exit_status}")
        add_records(layout.firefox / "Profiles" / profile[1])
