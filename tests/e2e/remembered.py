"""What the real browsers still know of the planted sites, asked through their own protocols."""

from __future__ import annotations

import json
import tempfile
from pathlib import Path

import plantedchromium
import plantedfirefox
import restart
from browser import Layout
from chromium import Chromium
from firefox import Firefox
from planted import SITES, Site
from plantedchromium import open_chromium, script
from plantedfirefox import open_firefox, run_script
from plantedweb import PlantedWeb

CHROMIUM_PASSWORDS = """(async () => {
    const groups = await chrome.passwordsPrivate.getCredentialGroups();
    return groups.flatMap(group => group.entries.map(entry => entry.username)).sort();
})()"""
CHROMIUM_ALLOWED = """(async () => {
    const {SiteSettingsBrowserProxyImpl: Proxy} = await import('chrome://settings/lazy_load.js');
    const list = await Proxy.getInstance().getExceptionList('notifications');
    return list.filter(entry => entry.setting === 'allow').map(entry => entry.origin).sort();
})()"""
FIREFOX_OF_SITE = """
    const {history, bookmarks} = PlacesUtils;
    const query = history.getNewQuery();
    query.domain = args[0];
    query.domainIsHost = false;
    const root = history.executeQuery(query, history.getNewQueryOptions()).root;
    root.containerOpen = true;
    const visited = [];
    for (let i = 0; i < root.childCount; i++) visited.push(root.getChild(i).uri);
    root.containerOpen = false;
    return {history: visited.sort(),
            allCookies: Services.cookies.cookies.filter(cookie => cookie.host.endsWith(args[0]))
                .map(cookie => cookie.name).sort()};"""
FIREFOX_OF_PROFILE = """
    const urls = node => [...(node.uri ? [node.uri] : []), ...(node.children || []).flatMap(urls)];
    return {bookmarks: urls(await PlacesUtils.promiseBookmarksTree()),
            allowed: Services.perms.all.filter(each => each.type === 'desktop-notification')
                .map(each => each.principal.origin).sort(),
            httpsOnly: Object.keys(args[0]).filter(word => Cc['@mozilla.org/ssservice;1']
                .getService(Ci.nsISiteSecurityService)
                .isSecureURI(Services.io.newURI(args[0][word]))),
            placesStatus: PlacesUtils.history.databaseStatus};"""


def ask_chromium(browser: Chromium, sites: tuple[Site, ...]) -> dict:
    page = browser.new_page()
    with tempfile.TemporaryDirectory(prefix="browsersweep-e2e-") as folder:
        known = restart.probed_chromium(browser, page, Path(folder))
    cookies = browser.tools.call("Storage.getCookies")["cookies"]
    told = {site.word: {
        "history": sorted(url for url in known["history"] if site.registrable in url),
        "allCookies": sorted(each["name"] for each in cookies
                             if each["domain"].endswith(site.registrable))} for site in SITES}
    for site in sites:
        page.navigate(f"{site.origin}/qzask")
        told[site.word].update(page.evaluate(f"{script('ask.js')}({json.dumps(site.word)})"))
    page.navigate("chrome://settings/appearance")
    return {**told, "bookmarks": sorted(known["bookmarks"]), "httpsOnly": [],
            "allowed": page.evaluate(CHROMIUM_ALLOWED)}


def chromium_passwords(browser: Chromium) -> list[str]:
    """The page of passwords fetches icons of their sites, which are traces."""
    page = browser.new_page()
    page.navigate("chrome://password-manager/passwords")
    return page.evaluate(CHROMIUM_PASSWORDS)


def ask_firefox(browser: Firefox, sites: tuple[Site, ...]) -> dict:
    remote = browser.marionette
    told = {site.word: remote.chrome(FIREFOX_OF_SITE, site.registrable) for site in SITES}
    for site in sites:
        remote.navigate(f"{site.origin}/qzask")
        told[site.word].update(run_script(remote, f"{script('ask.js')}({json.dumps(site.word)})"))
    return {**told, **remote.chrome(FIREFOX_OF_PROFILE,
                                    {site.word: f"https://{site.host}/" for site in SITES})}


def firefox_passwords(browser: Firefox) -> list[str]:
    return browser.marionette.chrome(
        "return (await Services.logins.getAllLogins()).map(login => login.username).sort();")


# How a family is opened on a profile, and asked.
OPEN = {"chromium": open_chromium, "firefox": open_firefox}
ASK = {"chromium": ask_chromium, "firefox": ask_firefox}
PASSWORDS = {"chromium": chromium_passwords, "firefox": firefox_passwords}
PROFILES = {"chromium": plantedchromium.PROFILES, "firefox": plantedfirefox.PROFILES}


def folders(layout: Layout, family: str) -> list[Path]:
    if family == "chromium":
        return [layout.chromium / name for name in plantedchromium.PROFILES]
    return [layout.firefox / "Profiles" / folder for _, folder in plantedfirefox.PROFILES]


def asked(layout: Layout, family: str, binary: str, profile, web: PlantedWeb, log: Path,
          sites: tuple[Site, ...]) -> dict:
    """Starts the browser on a profile, asks it of all sites and the pages of some, which are visited for
    that, and closes it as its user would."""
    with OPEN[family](binary, layout, profile, web, log) as browser:
        told = ASK[family](browser, sites)
    return {**told, "exitStatus": browser.exit_status}
